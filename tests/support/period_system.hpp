// The system of one period of a real hull, in memory, and its transfer to the scratch files.
#pragma once

#include "assembly/scratch_rows.hpp"
#include "assembly/wavegr.hpp"
#include "boundary/incident_wave.hpp"
#include "hull_meshes.hpp"
#include "rankine/rankin.hpp"
#include "state/memory_plan.hpp"
#include "state/symmetry.hpp"

#include <cmath>
#include <vector>

struct PeriodSystem {
    RunState run;
    ThreadState thread; // ACORE, and the right-hand sides in PHIR, PHID
};

// All modes and `headings` headings of a body of unit size in waves of wave number 1.3. False: no memory.
inline bool make_system(const hulls::Quads &panels, int ISX, int ISY, int headings, PeriodSystem &c) {
    constexpr f32 WAVE_NUMBER = 1.3f;
    RunState &run = c.run;
    run.opt.IRAD = run.opt.IDIFF = 1;
    run.opt.HBOT = -1;
    run.opt.ISX = ISX;
    run.opt.ISY = ISY;
    run.memory.INCORE = true;
    hulls::set_body(panels, run);
    run.periods.NPER = 1;
    run.periods.NBETA = run.periods.NBETAM = headings;
    if (!run.periods.SINBET.alloc(headings) || !run.periods.COSBET.alloc(headings))
        return false;
    for (int b = 1; b <= headings; ++b) {
        run.periods.SINBET(b) = std::sin(0.4f * static_cast<f32>(b - 1));
        run.periods.COSBET(b) = std::cos(0.4f * static_cast<f32>(b - 1));
    }
    if (failed(hulls::pre_pass(run)) || failed(SYMSET(6, ISX, ISY, run.bodies.MODE, 1, run.sym)) ||
        failed(allocate_store(run.opt, run.sym, run.mesh.NEQN, run.store)) ||
        failed(RANKIN(run.opt, run.bodies, run.mesh, run.dipoles, run.sym, run.store)) ||
        failed(allocate_solution(run, c.thread)) || failed(ALLOCATE_WA(run, c.thread)))
        return false;
    const PeriodWave wave = frequency_variables(WAVE_NUMBER, -1, 1);
    INCWAV(run, WAVE_NUMBER, c.thread);
    return !failed(WAVEGR(run, wave, c.thread));
}

// Rows of ACORE in the way the assembly hands them over, to the files of the dipole or the source matrix.
inline Status rows_to_scratch(const RunState &run, const ThreadState &core, UnitList &units, c32 *AMAT) {
    RowStore store{run, units, AMAT, 1, {}};
    const int n = run.mesh.NEQN;
    std::vector<std::vector<f32>> parts(20, // four of each class
                                        std::vector<f32>(static_cast<std::size_t>(n)));
    Split ROW[5], COL[5];
    for (std::size_t s = 1; s <= 4; ++s) {
        ROW[s] = {parts[4 * s].data(), parts[4 * s + 1].data()};
        COL[s] = {parts[4 * s + 2].data(), parts[4 * s + 3].data()};
    }
    if (failed(open_rows(store)))
        return Status::failed;
    for (int I = 1; I <= n; ++I) {
        for (int s = 1; s <= run.sym.NSYMR; ++s) {
            for (int J = 1; J <= I; ++J) {
                ROW[s].re[J - 1] = core.ACORE(I, J, s).real();
                ROW[s].im[J - 1] = core.ACORE(I, J, s).imag();
                COL[s].re[J - 1] = core.ACORE(J, I, s).real();
                COL[s].im[J - 1] = core.ACORE(J, I, s).imag();
            }
        }
        if (failed(store_row(store, I, ROW, COL)))
            return Status::failed;
    }
    return close_rows(store);
}
