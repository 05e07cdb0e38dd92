#include "run/period_loop.hpp"

#include "assembly/wavegr.hpp"
#include "base/platform.hpp"
#include "base/text.hpp"
#include "boundary/incident_wave.hpp"
#include "results/p2f_writer.hpp"
#include "run/messages.hpp"
#include "run/progress.hpp"
#include "solve/solve.hpp"

#include <algorithm>
#include <omp.h>

namespace {

void require(Status status) {
    if (failed(status))
        STOPRN(0);
}

// Both iteration counts, or the one that is not 0 in its column; nothing when both are.
std::string report_counts(const int (&ITER)[2]) {
    if (ITER[0] != 0 && ITER[1] != 0)
        return " " + int_in(8, ITER[0]) + int_in(8, ITER[1]);
    if (ITER[0] != 0)
        return " " + int_in(8, ITER[0]);
    return std::string(9, ' ') + int_in(8, ITER[1]);
}

void write_report_row(RunState &run, int period, int thread_number, const int (&ITER)[2]) {
    if (ITER[0] == 0 && ITER[1] == 0)
        return;
    const std::string row = int_in(7, period) + int_in(7, thread_number) +
                            fixed(10, 4, run.periods.PER(period)) + "  " + DATTIM().time + report_counts(ITER);
    run.HDRSCR.push_back(row);
    list_line(row);
}

// Depth factor WVNH / WVN0 of the period, with the depth state of the thread: 1 in deep water and at the limits.
f32 depth_factor(const RunState &run, int period, ThreadState &thread) {
    f32 F = 1;
    if (run.opt.HBOT > 0 && run.periods.PER(period) > 0) {
        INIT_HGRN98_ARRAYS(thread.gstate);
        if (HGRN98(run.periods.WVN0(period) * run.opt.HBOT, F, thread.gstate) > 0)
            require(MSGOUT("Error return in HGRN98: depth HBOT is illegal "));
    }
    return F;
}

// All of a period but what must come in order. Returns the wave number at the depth of the run.
f32 solve_period(const RunState &run, int period, ThreadState &thread, int (&ITER)[2]) {
    const Options &opt = run.opt;
    const f32 W = run.periods.WVN0(period);
    require(ALLOCATE_WA(run, thread));
    const f32 F = depth_factor(run, period, thread);
    const PeriodWave wave = frequency_variables(W, opt.HBOT, F);
    if (opt.IDIFF >= 0)
        INCWAV(run, W * F, thread);
    require(WAVEGR(run, wave, thread));
    require(SOLVE(run, {opt.IRAD, opt.IDIFF}, thread.PHIR, thread.PHID, thread, ITER));
    if (opt.IDIFF >= 0 && opt.ISCATT == 1)
        ADDINC(thread);
    return W * F;
}

} // namespace

void period_loop(RunState &run, int threads, ScratchStore &scratch, RecordFile &RESSCR) {
    const int NPER = run.periods.NPER;
    Progress progress("period", NPER);
#pragma omp parallel num_threads(std::min(threads, NPER)) if (std::min(threads, NPER) > 1)
    {
        ThreadState thread;
        thread.scratch = &scratch;
        require(allocate_solution(run, thread));
#pragma omp for ordered schedule(dynamic, 1)
        for (int period = 1; period <= NPER; ++period) {
            int ITER[2] = {0, 0};
            run.periods.WVNH(period) = solve_period(run, period, thread, ITER);
#pragma omp ordered
            {
#pragma omp critical
                require(PERWRT(run.opt, thread, RESSCR));
            }
#pragma omp critical
            {
                write_report_row(run, period, omp_get_thread_num(), ITER);
                progress.step();
            }
            DEALLOCATE_WA(thread);
        }
    }
}
