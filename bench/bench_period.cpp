// A period of a full hemisphere: assembly and solution, each as a ratio to the factorisation of one class by
// a bare CGETRF on one core in the same run.
#include "assembly/wavegr.hpp"
#include "base/lapack.hpp"
#include "boundary/incident_wave.hpp"
#include "hull_meshes.hpp"
#include "rankine/rankin.hpp"
#include "solve/solve.hpp"
#include "state/memory_plan.hpp"
#include "state/symmetry.hpp"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstring>
#include <omp.h>
#include <vector>

namespace {

double seconds_of(const auto &work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Case {
    RunState run;
    ThreadState thread;
    PeriodWave wave;
    double factor_seconds = 1; // bare CGETRF of the same order
};

// A hemisphere of radius 1 without symmetry: 4 m^2 panels, six modes, one heading. depth <= 0: deep water.
bool make_case(int m, f32 depth, Case &c) {
    constexpr f32 W = 1.3f;
    RunState &run = c.run;
    run.opt.IRAD = run.opt.IDIFF = 1;
    run.opt.HBOT = depth > 0 ? depth : -1;
    run.opt.ISOLVE = 1;
    run.memory.INCORE = true;
    hulls::set_body(hulls::hemisphere(1, m), run);
    run.periods.NPER = run.periods.NBETA = run.periods.NBETAM = 1;
    if (!run.periods.SINBET.alloc(1) || !run.periods.COSBET.alloc(1))
        return false;
    run.periods.COSBET(1) = 1;
    if (failed(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh)) ||
        failed(SYMSET(6, 0, 0, run.bodies.MODE, 1, run.sym)) ||
        failed(allocate_store(run.opt, run.sym, run.mesh.NEQN, run.store)) ||
        failed(RANKIN(run.opt, run.bodies, run.mesh, run.dipoles, run.sym, run.store)) ||
        failed(allocate_solution(run, c.thread)) || failed(ALLOCATE_WA(run, c.thread)))
        return false;
    f32 ratio = 1;
    if (depth > 0 && failed(depth_state(W, depth, c.thread.gstate, ratio)))
        return false;
    c.wave = frequency_variables(W, run.opt.HBOT, ratio);
    INCWAV(run, W * ratio, c.thread);
    if (failed(WAVEGR(run, c.wave, c.thread)))
        return false;
    Array<c32, 2> copy;
    std::vector<int> pivots(static_cast<std::size_t>(run.mesh.NEQN));
    if (!copy.alloc(run.mesh.NEQN, run.mesh.NEQN))
        return false;
    c.factor_seconds = 1e9;
    for (int repeat = 0; repeat < 3; ++repeat) {
        std::memcpy(copy.data(), c.thread.ACORE.data(), static_cast<std::size_t>(copy.size()) * sizeof(c32));
        const SerialBlas serial;
        const int n = run.mesh.NEQN;
        int info = 0;
        c.factor_seconds = std::min(
            c.factor_seconds, seconds_of([&] { cgetrf_(&n, &n, copy.data(), &n, pivots.data(), &info); }));
    }
    return true;
}

void report(benchmark::State &state, const Case &c, double seconds) {
    const double n = c.run.mesh.NEQN;
    state.counters["N"] = n;
    state.counters["ns_per_pair"] = seconds / (n * (n + 1) / 2) * 1e9;
    state.counters["over_CGETRF"] = seconds / c.factor_seconds;
}

void wavegr_of_a_period(benchmark::State &state) {
    Case c;
    omp_set_num_threads(1);
    if (!make_case(static_cast<int>(state.range(0)), static_cast<f32>(state.range(1)), c))
        return state.SkipWithError("no case");
    double best = 1e9;
    for (auto _ : state)
        best = std::min(best, seconds_of([&] { benchmark::DoNotOptimize(WAVEGR(c.run, c.wave, c.thread)); }));
    report(state, c, best);
}
BENCHMARK(wavegr_of_a_period)->ArgsProduct({{11, 22, 32}, {0, 3}})->Unit(benchmark::kMillisecond);

void solve_of_a_period(benchmark::State &state) {
    Case c;
    omp_set_num_threads(1);
    if (!make_case(static_cast<int>(state.range(0)), 0, c))
        return state.SkipWithError("no case");
    double best = 1e9;
    int ITER[2];
    for (auto _ : state)
        best = std::min(best, seconds_of([&] {
                            benchmark::DoNotOptimize(
                                SOLVE(c.run, {1, 1, 1}, c.thread.PHIR, c.thread.PHID, c.thread, ITER));
                        }));
    report(state, c, best);
}
BENCHMARK(solve_of_a_period)->Arg(11)->Arg(22)->Arg(32)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
