// The second-order right-hand sides on the body.
#include "boundary/class_kernels.hpp"
#include "boundary/field_loop.hpp"
#include "boundary/wdd_sums.hpp"
#include "green/field_kernels.hpp"
#include "green/wdkern.hpp"
#include "state/symmetry.hpp"

#include <algorithm>

namespace {

// Kernels of a body panel, by the columns of WDKERN: in the first three the gradient along the steady flow is
// added. They and U7 act on normal velocities, the others on potentials.
constexpr int ON_VELOCITY = 0, ON_POTENTIAL = 3, U7 = 7, U8 = 8; // the former two plus d = 1, 2, 3

struct BodyFrame {
    const RunState &run;
    const FieldWave wave;
    f32 K; // wave number at the depth
    const ThreadState &thread;
    const int *moved[4]; // WCLS1 to WCLS3, from 1
    FieldPanels body, surface;
    Array<c32, 2> VEL;
    bool diffraction() const { return run.opt.IDIFF == 1 && run.periods.NBETA > 0; }
};

struct BodyWork {
    WdkernWork wdkern;
    FieldWork body, surface;
    KernelValues U, GP, Q;
    ClassKernels on_body, on_surface;
    // Product of U8 with the potentials of a class or their heading derivatives (FIELD_STRIP,NBETAM).
    Array<c32, 2> h;
    bool alloc(const BodyFrame &f) {
        const Symmetry &sym = f.run.sym;
        const int columns = std::max(sym.NSYMD, f.run.periods.NBETAM);
        return wdkern.alloc(f.body) && body.alloc(f.body) && surface.alloc(f.surface) &&
               U.alloc(f.body, WDKERN_COLUMNS) && GP.alloc(f.body, PG_GF3) && Q.alloc(f.surface, 3) &&
               on_body.alloc(f.body.n, WDKERN_COLUMNS, columns, sym.NSYMR) &&
               on_surface.alloc(f.surface.n, 3, columns, sym.NSYMR) &&
               h.alloc(FIELD_STRIP, f.run.periods.NBETAM);
    }
};

// U(d) becomes E(d) - U(d) with E(1) = (i/nu) T(1), E(2) = (i/nu) T(2), E(3) = i T(3), T(d) the derivative of
// the integrated Green function along steady flow d.
void add_steady_flow(const BodyFrame &f, BodyWork &work) {
    for (int d = 1; d <= 3; ++d) {
        const f32 factor = d == 3 ? 1 : 1 / f.wave.NU;
        const f32 *v1 = &f.run.flow.STB3(1, 1, d), *v2 = &f.run.flow.STB3(1, 2, d),
                  *v3 = &f.run.flow.STB3(1, 3, d);
        const auto along = [&](const Array<f32, 2> &part, int NP) {
            return v1[NP - 1] * part(NP, PG_GP1) + v2[NP - 1] * part(NP, PG_GP2) +
                   v3[NP - 1] * part(NP, PG_GP3);
        };
        for (int NP = 1; NP <= f.body.n; ++NP) {
            work.U.re(NP, d) = -factor * along(work.GP.im, NP) - work.U.re(NP, d);
            work.U.im(NP, d) = factor * along(work.GP.re, NP) - work.U.im(NP, d);
        }
    }
}

// Kernels of all panels for field panels of a strip.
Status form_kernels(const BodyFrame &f, FieldStrip strip, BodyWork &work) {
    const Symmetry &sym = f.run.sym;
    const bool radiation = f.run.opt.IRAD >= 0;
    work.on_body.clear();
    work.on_surface.clear();
    for (int i = strip.first; i <= strip.last; ++i)
        for (int g = 1; g <= sym.NSYMG; ++g) {
            const int m = sym.ISYMG[g], p = i - strip.first + 1;
            const f32 P[4] = {0, static_cast<f32>(SGX[m]) * f.run.mesh.XCT(1, i),
                              static_cast<f32>(SGY[m]) * f.run.mesh.XCT(2, i), f.run.mesh.XCT(3, i)};
            if (failed(WDKERN(P, f.body, f.wave, work.wdkern, work.U)))
                return Status::failed;
            if (radiation) {
                if (failed(PANGRD(P, f.body, f.wave, 1, WANT_HORIZONTAL | WANT_GP3, work.body, work.GP)))
                    return Status::failed;
                add_steady_flow(f, work);
            }
            for (int k = radiation ? 1 : 4; k <= WDKERN_COLUMNS; ++k)
                work.on_body.add_image(sym, m, p, work.U, k, k);
            if (f.surface.n < 1)
                continue;
            if (failed(FSKERN(P, f.surface, f.wave, f.run.flow, work.surface, work.Q)))
                return Status::failed;
            for (int d = 1; d <= 3; ++d)
                work.on_surface.add_image(sym, m, p, work.Q, d, d);
        }
    return Status::ok;
}

// Body panels, radiation of class c: the column of the mode, the sign of the class that it moves to.
void body_radiation(const BodyFrame &f, FieldStrip strip, int c, ClassKernels &kernels, SecondOrder &out) {
    const Symmetry &sym = f.run.sym;
    const auto potential = radiation_columns<const c32>(sym, c, f.thread.PHIR);
    const auto velocity = radiation_columns<const c32>(sym, c, f.VEL);
    Array<c32, 2> *const moving[4] = {nullptr, &out.W2R1, &out.W2R2, &out.W2R3};
    kernels.multiply(U7, c, 1, velocity, strip, radiation_columns<c32>(sym, c, out.W2R0));
    kernels.multiply(U8, c, -1, potential, strip, radiation_columns<c32>(sym, c, out.W2R0));
    for (int d = 1; d <= 3; ++d) {
        const auto result = radiation_columns<c32>(sym, c, *moving[d]);
        kernels.multiply(ON_VELOCITY + d, f.moved[d][c], 1, velocity, strip, result);
        kernels.multiply(ON_POTENTIAL + d, f.moved[d][c], 1, potential, strip, result);
    }
}

// result(i,b,c) += factor(b) h(i,b)
template <class Factor>
void add_headings(FieldStrip strip, int c, const Array<c32, 2> &h, Factor factor, Array<c32, 3> &result) {
    for (int b = 1; b <= h.dim(2); ++b)
        for (int i = strip.first; i <= strip.last; ++i)
            result(i, b, c) += factor(b) * h(i - strip.first + 1, b);
}

// Body panels, diffraction: the field class c, the potential of the class that moves to it.
void body_diffraction(const BodyFrame &f, FieldStrip strip, int c, BodyWork &work, SecondOrder &out) {
    const Periods &periods = f.run.periods;
    const c32 yaw(0, -2 * f.wave.NU);
    const FieldStrip own{1, strip.last - strip.first + 1};
    const ColumnBlock<c32> h{work.h.data(), FIELD_STRIP, static_cast<int>(work.h.dim(2))};
    ClassKernels &kernels = work.on_body;
    work.h.fill(0);
    kernels.multiply(U8, c, 1, heading_columns<const c32>(c, f.thread.PHID), own, h);
    add_headings(
        strip, c, work.h, [](int) { return -1.0f; }, out.W2D0);
    add_headings(
        strip, c, work.h, [&](int b) { return 2 * f.K * periods.COSBET(b); }, out.W2D1);
    add_headings(
        strip, c, work.h, [&](int b) { return 2 * f.K * periods.SINBET(b); }, out.W2D2);
    work.h.fill(0);
    kernels.multiply(U8, c, 1, heading_columns<const c32>(c, f.thread.second.PHID2), own, h);
    add_headings(
        strip, c, work.h, [](int) { return -1.0f; }, out.W2D0B);
    add_headings(
        strip, c, work.h, [&](int) { return yaw; }, out.W2D3);
    Array<c32, 3> *const moving[4] = {nullptr, &out.W2D1, &out.W2D2, &out.W2D3};
    for (int d = 1; d <= 3; ++d)
        kernels.multiply(ON_POTENTIAL + d, c, 1, heading_columns<const c32>(f.moved[d][c], f.thread.PHID),
                         strip, heading_columns<c32>(c, *moving[d]));
}

// What the body panels add.
void WDDBOD(const BodyFrame &f, FieldStrip strip, BodyWork &work, SecondOrder &out) {
    for (int c = 1; c <= f.run.sym.NSYMR; ++c) {
        if (f.run.opt.IRAD >= 0 && f.run.sym.NMCLS[c] > 0)
            body_radiation(f, strip, c, work.on_body, out);
        if (f.diffraction())
            body_diffraction(f, strip, c, work, out);
    }
}

// What the free-surface panels add: the class that the solution moves to, in both problems.
void WDDFRE(const BodyFrame &f, FieldStrip strip, ClassKernels &kernels, SecondOrder &out) {
    const Symmetry &sym = f.run.sym;
    Array<c32, 2> *const radiation[4] = {nullptr, &out.W2R1, &out.W2R2, &out.W2R3};
    Array<c32, 3> *const diffraction[4] = {nullptr, &out.W2D1, &out.W2D2, &out.W2D3};
    for (int c = 1; c <= sym.NSYMR; ++c)
        for (int d = 1; d <= 3; ++d) {
            const int to = f.moved[d][c];
            const c32 factor(0, d == 3 ? f.wave.NU : 1.0f);
            if (f.run.opt.IRAD >= 0 && sym.NMCLS[c] > 0)
                kernels.multiply(d, to, factor, radiation_columns<const c32>(sym, c, out.FSR1), strip,
                                 radiation_columns<c32>(sym, c, *radiation[d]));
            if (f.diffraction())
                kernels.multiply(d, to, factor, heading_columns<const c32>(c, out.FSD1), strip,
                                 heading_columns<c32>(to, *diffraction[d]));
        }
}

Status strip_right_hand_sides(const BodyFrame &f, FieldStrip strip, BodyWork &work, SecondOrder &out) {
    if (failed(form_kernels(f, strip, work)))
        return Status::failed;
    WDDBOD(f, strip, work, out);
    if (f.surface.n > 0)
        WDDFRE(f, strip, work.on_surface, out);
    return Status::ok;
}

} // namespace

Status WDDRHS(const RunState &run, const PeriodWave &wave, ThreadState &thread) {
    SecondOrder &out = thread.second;
    for (Array<c32, 2> *set : {&out.W2R0, &out.W2R1, &out.W2R2, &out.W2R3})
        set->fill(0);
    if (run.opt.IDIFF == 1)
        for (Array<c32, 3> *set : {&out.W2D1, &out.W2D2, &out.W2D3})
            set->fill(0);
    BodyFrame frame{run,
                    {run.opt.HBOT, wave.W, &thread.gstate},
                    wave.W * wave.F,
                    thread,
                    {nullptr, run.sym.WCLS1, run.sym.WCLS2, run.sym.WCLS3},
                    {},
                    {},
                    {}};
    if (!frame.body.make(run.mesh, run.opt.IQUAD) || !frame.surface.make(run.surface, run.opt.IQUAD) ||
        !velocity_columns(run.mesh, run.sym, frame.VEL))
        return MSGOUT(" RAM too small ");
    const int NEQN = run.mesh.NEQN;
    return for_field_points<BodyWork>(
        strips_of(NEQN), [&](BodyWork &work) { return work.alloc(frame); },
        [&](int k, BodyWork &work) { return strip_right_hand_sides(frame, strip_of(k, NEQN), work, out); });
}
