#include "run/period_loop.hpp"

#include "assembly/wavegr.hpp"
#include "base/platform.hpp"
#include "boundary/bvel.hpp"
#include "boundary/incident_derivatives.hpp"
#include "boundary/incident_wave.hpp"
#include "boundary/source_rhs.hpp"
#include "run/wdd_chain.hpp"
#include "solve/solve.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <omp.h>

namespace {

void require(Status status) {
    if (failed(status))
        STOPRN(0);
}

bool is_finite(c32 v) {
    return std::isfinite(v.real()) && std::isfinite(v.imag());
}

// Tells the first value of a column of `values` (NEQN, any, column) that is no number: class and panel.
template <int R>
Status check_finite(const RunState &run, int period, const char *what, const Array<c32, R> &values) {
    const c32 *first = values.data(), *end = first + values.size();
    const c32 *bad = std::find_if_not(first, end, is_finite);
    if (bad == end)
        return Status::ok;
    return MSGOUT_with("Error: the solution has values that are not finite, period ", period,
                       std::string(what) + ", panel " + std::to_string((bad - first) % run.mesh.NEQN + 1) +
                           ", column " + std::to_string((bad - first) / run.mesh.NEQN + 1) +
                           ": panels or lengths out of proportion");
}

// Of all that a period leaves.
Status check_period(const RunState &run, int period, const ThreadState &thread) {
    const bool sources = run.opt.ISOR == 1;
    const bool bad =
        (run.opt.IRAD >= 0 && failed(check_finite(run, period, "radiation potentials", thread.PHIR))) ||
        (run.opt.IDIFF >= 0 && failed(check_finite(run, period, "diffraction potentials", thread.PHID))) ||
        (sources && run.opt.IRAD >= 0 &&
         (failed(check_finite(run, period, "radiation sources", thread.SRCR)) ||
          failed(check_finite(run, period, "radiation velocities", thread.VELR)))) ||
        (sources && run.opt.IDIFF >= 0 &&
         (failed(check_finite(run, period, "diffraction sources", thread.SRCD)) ||
          failed(check_finite(run, period, "diffraction velocities", thread.VELD))));
    return bad ? Status::failed : Status::ok;
}

// The sources of a period and the velocities that they make, from its potentials.
void solve_sources(const RunState &run, const PeriodWave &wave, ThreadState &thread,
                   std::int32_t (&ITER)[2]) {
    const Options &opt = run.opt;
    if (opt.IRAD >= 0)
        std::copy_n(thread.PHIR.data(), thread.PHIR.size(), thread.SRCR.data());
    SRCRHS(run, wave, thread.SRCR, thread);
    const SolveRequest request{opt.IRAD, opt.IDIFF, 1, 0, 1, opt.IRR == 0 ? EPSIT : 1.0e-4f};
    require(SOLVE(run, request, thread.SRCR, thread.SRCD, thread, ITER));
    require(BVEL(run, thread));
}

// All of a period but what must come in order. Returns the wave number at the depth of the run.
f32 solve_period(const RunState &run, int period, ThreadState &thread, PeriodCounts &counts,
                 PhaseTimes &times) {
    const Options &opt = run.opt;
    const f32 W = run.periods.WVN0(period);
    Stopwatch watch;
    require(ALLOCATE_WA(run, thread));
    f32 F = 1;
    if (opt.IRRX == 0) // a tank has no waves
        require(depth_state(W, opt.HBOT, thread.gstate, F));
    const PeriodWave wave = frequency_variables(W, opt.HBOT, F);
    if (opt.IDIFF >= 0 && opt.IWADD == 1)
        INCWWD(run, W * F, thread);
    else if (opt.IDIFF >= 0)
        INCWAV(run, W * F, thread);
    require(WAVEGR(run, wave, thread));
    times.assembly += watch.lap();
    if (opt.IWADD == 1) {
        require(solve_second_order(run, wave, thread, counts));
        times.solve += watch.lap();
        return W * F;
    }
    SolveRequest request{opt.IRAD, opt.IDIFF};
    request.IRRX = opt.IRRX;
    require(
        (opt.IRRX != 0 ? SOLVE_R : SOLVE)(run, request, thread.PHIR, thread.PHID, thread, counts.potentials));
    if (opt.IDIFF >= 0 && opt.ISCATT == 1)
        ADDINC(thread);
    if (opt.IRR >= 1)
        ZEROFS(run, thread);
    if (opt.IRRX != 0)
        shift_to_reference(run, thread);
    if (opt.ISOR == 1)
        solve_sources(run, wave, thread, counts.sources);
    times.solve += watch.lap();
    return W * F;
}

// A period from its number to its records. The thread keeps its arrays for the next one.
void work_on(const RunState &run, PeriodHead &head, ThreadState &thread, PeriodExchange &periods,
             PhaseTimes &times) {
    try { // no exception may leave the region
        head.WVNH = solve_period(run, head.period, thread, head.counts, times);
        require(check_period(run, head.period, thread));
        std::strncpy(head.time, DATTIM().time.c_str(), sizeof head.time - 1);
        require(periods.finished(head, period_records(run.opt, thread)));
    } catch (const std::bad_alloc &) {
        require(MSGOUT(" RAM too small "));
    }
}

} // namespace

void period_loop(const RunState &run, LoopTeam team, ScratchStore &scratch, PeriodExchange &periods,
                 PhaseTimes &times) {
    if (team.threads < 1)
        return;
    Stopwatch watch;
    PhaseTimes sum;
    // Each period gets its share of the cores, for rows, field points and strips; with one core
    // it works serially.
    const int share = std::max(1, omp_get_max_threads() / team.threads);
    omp_set_max_active_levels(share > 1 ? 2 : 1);
#pragma omp parallel num_threads(team.threads) if (team.threads > 1)
    {
        omp_set_num_threads(share);
        ThreadState thread;
        PhaseTimes own;
        thread.scratch = &scratch;
        require(allocate_solution(run, thread));
        for (PeriodHead head; (head.period = periods.next()) > 0; head = {}) {
            head.thread = team.first_thread + omp_get_thread_num();
            work_on(run, head, thread, periods, own);
        }
#pragma omp critical
        {
            sum.assembly += own.assembly / team.threads;
            sum.solve += own.solve / team.threads;
        }
    }
    times.assembly += sum.assembly;
    times.solve += sum.solve;
    times.waiting += watch.lap() - sum.assembly - sum.solve;
}
