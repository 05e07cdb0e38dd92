#include "assembly/right_hand_sides.hpp"

#include "assembly/scratch_store.hpp"
#include "geometry/lid.hpp"
#include "state/messages.hpp"

#include <algorithm>

namespace {

int column_count(const RunState &run) {
    const int headings = run.opt.ISCATT == 1 && run.opt.IDIFF >= 0 ? run.periods.NBETAM * run.sym.NSYMR : 0;
    return run.sym.NSYMD + headings;
}

int heading_column(const RunState &run, int b, int s) {
    return run.sym.NSYMD + b + run.periods.NBETAM * (s - 1);
}

// What panel ip has as a source of the scattered wave: minus the normal velocity of the incident wave, and on
// a lid what it takes away of that wave. The image of an overhang is no hull and has none (a hull of no
// draught has the same mark, and scatters like any other), a dipole panel has an equation of its own.
c32 scattering(const RunState &run, const ThreadState &thread, f32 NUL, int ip, int b, int s) {
    f32 damping = 0;
    if (LIDDMP(run.bodies, ip, damping))
        return -lid_factor(damping, NUL) * thread.PHI0(ip, b, s);
    const bool overhang = run.mesh.IFSP(ip) == -1 && run.mesh.projected(ip) != 0;
    return overhang || is_dipole(run.dipoles, ip) ? c32(0) : thread.SRCD(ip, b, s);
}

} // namespace

bool SourceWeights::make(const RunState &run, f32 NUL, const ThreadState &thread) {
    const int n = run.mesh.NEQN;
    radiation = run.opt.IRAD >= 0;
    diffraction = run.opt.ISCATT == 1 && run.opt.IDIFF >= 0;
    if (radiation) {
        if (!velocity.alloc(n, run.sym.NSYMD))
            return false;
        for (int k = 1; k <= run.sym.NSYMD; ++k) {
            const int mode = run.sym.MODLST(k);
            for (int ip = 1; ip <= n; ++ip)
                velocity(ip, run.sym.MODPOS(mode)) = is_dipole(run.dipoles, ip) ? 0 : run.mesh.VEL(mode, ip);
        }
    }
    if (diffraction) {
        const int headings = run.periods.NBETAM;
        if (!incident_re.alloc(n, headings, run.sym.NSYMR) || !incident_im.alloc(n, headings, run.sym.NSYMR))
            return false;
        for (int s = 1; s <= run.sym.NSYMR; ++s) {
            for (int b = 1; b <= headings; ++b) {
                for (int ip = 1; ip <= n; ++ip) {
                    const c32 value = scattering(run, thread, NUL, ip, b, s);
                    incident_re(ip, b, s) = value.real();
                    incident_im(ip, b, s) = value.imag();
                }
            }
        }
    }
    return true;
}

bool BlockSums::alloc(int last, const RunState &run) {
    const int columns = column_count(run);
    return re.alloc(last, columns) && im.alloc(last, columns);
}

void add_radiation(const RunState &run, const SourceWeights &weights, const SourceRow &row, BlockSums &sums) {
    const auto &[part, s, SROW, SCOL] = row;
    const int I = part.I, J = part.from + 1;
    constexpr int TOGETHER = 8; // sums of a call
    for (int first = 1; first <= run.sym.NMCLS[s]; first += TOGETHER) {
        const int count = std::min(TOGETHER, run.sym.NMCLS[s] - first + 1);
        int column[TOGETHER];
        const f32 *velocity[TOGETHER];
        c32 own[TOGETHER];
        for (int k = 0; k < count; ++k) {
            column[k] = run.sym.MODPOS(run.sym.MODCLS(first + k, s));
            velocity[k] = &weights.velocity(J, column[k]);
        }
        weighted_sums(part.n, count, velocity, SROW, own);
        for (int k = 0; k < count; ++k) {
            sums.re(I, column[k]) += own[k].real();
            sums.im(I, column[k]) += own[k].imag();
            add_signed(part.columns(), weights.velocity(I, column[k]), SCOL,
                       {&sums.re(J, column[k]), &sums.im(J, column[k])});
        }
    }
}

void add_diffraction(const RunState &run, const SourceWeights &weights, const SourceRow &row,
                     BlockSums &sums) {
    const auto &[part, s, SROW, SCOL] = row;
    const int I = part.I, J = part.from + 1;
    for (int b = 1; b <= run.periods.NBETAM; ++b) {
        const int column = heading_column(run, b, s);
        const ConstSplit incident(&weights.incident_re(J, b, s), &weights.incident_im(J, b, s));
        const c32 own = complex_sum(part.n, incident, SROW);
        sums.re(I, column) += own.real();
        sums.im(I, column) += own.imag();
        add_scaled(part.columns(), {weights.incident_re(I, b, s), weights.incident_im(I, b, s)}, SCOL,
                   {&sums.re(J, column), &sums.im(J, column)});
    }
}

void BlockSums::clear() {
    re.fill(0);
    im.fill(0);
}

Status start_right_hand_sides(const RunState &run, f32 NUL, ThreadState &thread) {
    if (run.opt.ISCATT == 1 && run.opt.IDIFF >= 0)
        thread.PHID.fill(0);
    if (run.opt.IRAD < 0)
        return Status::ok;
    const auto add_level = [&](int level, View<const f32, 2> share) {
        const f32 factor = level == 0 ? 1.0f : NUL;
        for (int k = 1; k <= run.sym.NSYMD; ++k) {
            for (int ip = 1; ip <= run.mesh.NEQN; ++ip)
                thread.PHIR(ip, k) = (level == 0 ? c32(0) : thread.PHIR(ip, k)) + factor * share(ip, k);
        }
    };
    if (run.memory.INCORE) {
        for (int level = 0; level <= run.opt.ILOG; ++level)
            add_level(level, run.store.RHSRAN.slice(level));
        return Status::ok;
    }
    RecordFile &unit = thread.scratch->RANKRHS;
    Array<f32, 2> RBUF;
    if (!RBUF.alloc(run.mesh.NEQN, run.sym.NSYMD))
        return MSGOUT(" RAM too small to allocate WAVEGR arrays ");
    if (failed(rewind_unit(unit)))
        return Status::failed;
    for (int level = 0; level <= run.opt.ILOG; ++level) {
        if (!unit.read({{RBUF.data(), static_cast<std::size_t>(RBUF.size()) * sizeof(f32)}}))
            return MSGOUT_with(" Error reading scratch file for Rankine LHS, UNIT=", unit.unit(),
                               unit.error());
        add_level(level, RBUF);
    }
    return Status::ok;
}

void add_dipole_rows(const RunState &run, ThreadState &thread) {
    const bool diffraction = run.opt.ISCATT == 1 && run.opt.IDIFF >= 0;
    for (int ip = 1; ip <= run.mesh.NEQN; ++ip) {
        if (!is_dipole(run.dipoles, ip))
            continue;
        for (int k = 1; run.opt.IRAD >= 0 && run.dipoles.IDIP(ip) != 3 && k <= run.sym.NSYMD; ++k)
            thread.PHIR(ip, k) -= PI4 * run.mesh.VEL(run.sym.MODLST(k), ip);
        for (int s = 1; diffraction && s <= run.sym.NSYMR; ++s) {
            for (int b = 1; b <= run.periods.NBETAM; ++b)
                thread.PHID(ip, b, s) -= PI4 * thread.SRCD(ip, b, s);
        }
    }
}

void clear_open_plates(const RunState &run, ThreadState &thread) {
    const bool diffraction = run.opt.IDIFF >= 0;
    for (int ip = 1; ip <= run.mesh.NEQN; ++ip) {
        if (!is_porous(run.dipoles, ip))
            continue;
        for (int k = 1; run.opt.IRAD >= 0 && k <= run.sym.NSYMD; ++k)
            thread.PHIR(ip, k) = 0;
        for (int s = 1; diffraction && s <= run.sym.NSYMR; ++s) {
            for (int b = 1; b <= run.periods.NBETAM; ++b)
                thread.PHID(ip, b, s) = 0;
        }
    }
}

void add_block(const RunState &run, const SourceWeights &weights, const BlockSums &sums, int last,
               ThreadState &thread) {
    const auto add = [&](int column, c32 *to) {
        for (int ip = 1; ip <= last; ++ip)
            to[ip - 1] += c32(sums.re(ip, column), sums.im(ip, column));
    };
    for (int k = 1; weights.radiation && k <= run.sym.NSYMD; ++k)
        add(k, &thread.PHIR(1, k));
    for (int s = 1; weights.diffraction && s <= run.sym.NSYMR; ++s) {
        for (int b = 1; b <= run.periods.NBETAM; ++b)
            add(heading_column(run, b, s), &thread.PHID(1, b, s));
    }
}
