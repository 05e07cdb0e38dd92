#include "boundary/source_rhs.hpp"

#include "geometry/lid.hpp"

namespace {

// Calls action(q, P) for each panel q of the strip behind waterline panel P.
template <class Action> void walk_strips(const RunState &run, Action action) {
    if (run.opt.IRR == 0)
        return;
    const Strips &strips = run.strips;
    std::int64_t at = 0;
    for (int w = 1; w <= run.waterline.NWL; ++w) {
        for (int left = strips.IRRP(++at); left > 0; --left)
            action(strips.IRRP(++at), strips.head(w));
    }
}

// Calls action(I, y) for each panel of a lid, y the ratio of vertical velocity to potential.
template <class Action> void walk_lids(const RunState &run, f32 K, Action action) {
    f32 EPS = 0;
    for (int I = 1; run.opt.IBDT3 == 1 && I <= run.mesh.NEQN; ++I) {
        if (LIDDMP(run.bodies, I, EPS))
            action(I, K - lid_factor(EPS, K));
    }
}

int dipole_mark(const RunState &run, int I) {
    return run.dipoles.IDIPOL ? run.dipoles.IDIP(I) : 0;
}
c32 resistance(const Dipoles &dipoles, int I, f32 Z) {
    return {-dipoles.DPORA(I) * Z, dipoles.DPORB(I) * Z};
}

// A porous plate at infinite frequency lets everything through.
bool is_open(const RunState &run, const PeriodWave &wave, int I) {
    return wave.IPLIM == 2 && is_porous(run.dipoles, I);
}

void radiation(const RunState &run, const PeriodWave &wave, View<c32, 2> RS) {
    const Symmetry &sym = run.sym;
    const f32 K = wave.NUL;
    walk_strips(run, [&](int q, int P) {
        for (int col = 1; col <= sym.NSYMD; ++col)
            RS(q, col) = -K * RS(P, col);
    });
    f32 EPS = 0;
    for (int I = 1; I <= run.mesh.NEQN; ++I) {
        if (run.mesh.IFSP(I) == 1 || LIDDMP(run.bodies, I, EPS))
            continue;
        const int mark = dipole_mark(run, I);
        const c32 z = mark != 0 ? resistance(run.dipoles, I, K * wave.F) : c32(0);
        for (int col = 1; col <= sym.NSYMD; ++col) {
            const c32 own = mark == 3 || is_open(run, wave, I) ? 0 : run.mesh.VEL(sym.MODLST(col), I);
            RS(I, col) = mark != 0 ? own - RS(I, col) * z : own;
        }
    }
    walk_lids(run, K, [&](int I, c32 y) {
        for (int col = 1; col <= sym.NSYMD; ++col)
            RS(I, col) *= y;
    });
}

void diffraction(const RunState &run, const PeriodWave &wave, ThreadState &thread) {
    const f32 K = wave.NUL;
    const auto each_column = [&](auto action) {
        for (int s = 1; s <= run.sym.NSYMR; ++s) {
            for (int b = 1; b <= run.periods.NBETAM; ++b)
                action(b, s);
        }
    };
    walk_strips(run, [&](int q, int P) {
        each_column(
            [&](int b, int s) { thread.SRCD(q, b, s) = -K * (thread.PHID(P, b, s) - thread.PHI0(P, b, s)); });
    });
    walk_lids(run, K, [&](int I, c32 y) {
        each_column([&](int b, int s) {
            thread.SRCD(I, b, s) = y * thread.PHID(I, b, s) - K * thread.PHI0(I, b, s);
        });
    });
    for (int I = 1; run.dipoles.IDIPOL && I <= run.mesh.NEQN; ++I) {
        if (run.dipoles.IDIP(I) == 0)
            continue;
        const c32 z = resistance(run.dipoles, I, K * wave.F);
        each_column([&](int b, int s) { thread.SRCD(I, b, s) -= thread.PHID(I, b, s) * z; });
    }
}

} // namespace

void ZEROFS(const RunState &run, ThreadState &thread) {
    for (int i = 1; i <= run.mesh.NEQN; ++i) {
        if (run.mesh.IFSP(i) != 1)
            continue;
        for (int c = 1; run.opt.IRAD != -1 && c <= run.sym.NSYMD; ++c)
            thread.PHIR(i, c) = 0;
        for (int s = 1; run.opt.IDIFF != -1 && s <= run.sym.NSYMR; ++s) {
            for (int b = 1; b <= run.periods.NBETAM; ++b)
                thread.PHID(i, b, s) = 0;
        }
    }
}

void shift_to_reference(const RunState &run, ThreadState &thread) {
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        for (int k = 1; run.sym.ICLS[s] == 1 && k <= run.sym.NMCLS[s]; ++k) {
            const int mode = run.sym.MODCLS(k, s);
            if (mode > 6)
                continue;
            c32 *phi = &thread.PHIR(1, run.sym.MODPOS(mode));
            const f32 reference = phi[run.opt.IRRX - 1].real();
            for (int i = 0; i < run.mesh.NEQN; ++i)
                phi[i] = phi[i].real() - reference;
        }
    }
}

void SRCRHS(const RunState &run, const PeriodWave &wave, View<c32, 2> RS, ThreadState &thread) {
    if (run.opt.IRAD != -1)
        radiation(run, wave, RS);
    if (run.opt.IDIFF != -1)
        diffraction(run, wave, thread);
}
