// The iterative solver on the system of a full hemisphere with six modes and one heading, against yardsticks
// of the same run: CGETRF of the same order on one core, and the rate at which one core reads a large array.
#include "base/lapack.hpp"
#include "period_system.hpp"
#include "solve/solve.hpp"
#include "solve/sweeps.hpp"

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
double best_of(int times, const auto &work) {
    double best = 1e9;
    for (int k = 0; k < times; ++k)
        best = std::min(best, seconds_of(work));
    return best;
}

double factor_seconds(const PeriodSystem &c) {
    const int n = c.run.mesh.NEQN;
    Array<c32, 2> copy;
    std::vector<int> pivots(static_cast<std::size_t>(n));
    if (!copy.alloc(n, n))
        return 0;
    const SerialBlas serial;
    int info = 0;
    return best_of(2, [&] {
        std::memcpy(copy.data(), c.thread.ACORE.data(), static_cast<std::size_t>(copy.size()) * sizeof(c32));
        cgetrf_(&n, &n, copy.data(), &n, pivots.data(), &info);
    });
}

// Bytes a second of a plain sum over an array.
double read_rate(View<const c32, 2> A) {
    const f32 *values = reinterpret_cast<const f32 *>(A.data());
    const std::int64_t count = 2 * A.size();
    f32 sum = 0;
    const double seconds = best_of(5, [&] {
        f32 part = 0;
#pragma omp simd reduction(+ : part)
        for (std::int64_t i = 0; i < count; ++i)
            part += values[i];
        sum += part;
        benchmark::DoNotOptimize(sum);
    });
    return static_cast<double>(count) * sizeof(f32) / seconds;
}

bool prepare(benchmark::State &state, PeriodSystem &c) {
    omp_set_num_threads(2);
    if (make_system(hulls::hemisphere(1, static_cast<int>(state.range(0))), 0, 0, 1, c)) {
        omp_set_num_threads(1);
        return true;
    }
    state.SkipWithError("no case");
    return false;
}

struct Sides {
    Array<c32, 2> PHIR;
    Array<c32, 3> PHID;
    bool keep(const ThreadState &thread) {
        if (!PHIR.alloc(thread.PHIR.dim(1), thread.PHIR.dim(2)) || !PHID.alloc(thread.PHID.dim(1), 1, 1))
            return false;
        std::memcpy(PHIR.data(), thread.PHIR.data(), static_cast<std::size_t>(PHIR.size()) * sizeof(c32));
        std::memcpy(PHID.data(), thread.PHID.data(), static_cast<std::size_t>(PHID.size()) * sizeof(c32));
        return true;
    }
    void restore(ThreadState &thread) const {
        std::memcpy(thread.PHIR.data(), PHIR.data(), static_cast<std::size_t>(PHIR.size()) * sizeof(c32));
        std::memcpy(thread.PHID.data(), PHID.data(), static_cast<std::size_t>(PHID.size()) * sizeof(c32));
    }
};

double solve_seconds(PeriodSystem &c, ThreadState &thread, const Sides &sides, int KEEP, int FACT,
                     int (&ITER)[2]) {
    sides.restore(thread);
    return seconds_of([&] {
        if (failed(SOLVE(c.run, {1, 1, FACT, KEEP}, thread.PHIR, thread.PHID, thread, ITER)))
            std::abort();
    });
}

void in_core(benchmark::State &state) {
    PeriodSystem c;
    Sides sides;
    if (!prepare(state, c) || !sides.keep(c.thread))
        return;
    const double factor = factor_seconds(c);
    c.run.opt.ISOLVE = 0;
    omp_set_num_threads(static_cast<int>(state.range(1)));
    double best = 1e9;
    int ITER[2];
    for (auto _ : state)
        best = std::min(best, solve_seconds(c, c.thread, sides, 0, 1, ITER));
    state.counters["N"] = c.run.mesh.NEQN;
    state.counters["iterations"] = std::max(ITER[0], ITER[1]);
    state.counters["over_CGETRF"] = best / factor;
}
// Order by panels from waterline to pole, and cores.
BENCHMARK(in_core)->Args({11, 1})->Args({22, 1})->Args({32, 1})->Args({32, 2})->Unit(benchmark::kMillisecond);

// One sweep of the full matrix for state.range(1) right-hand sides.
void sweep(benchmark::State &state) {
    PeriodSystem c;
    if (!prepare(state, c))
        return;
    const int n = c.run.mesh.NEQN;
    const std::int64_t columns = state.range(1);
    Array<f32, 3> vectors;
    if (!vectors.alloc(n, 4, columns))
        return;
    std::vector<SweepColumn> work;
    for (std::int64_t k = 1; k <= columns; ++k)
        work.push_back({{&vectors(1, 1, k), &vectors(1, 2, k)}, {&vectors(1, 3, k), &vectors(1, 4, k)}});
    const FullMatrix matrix{c.thread.ACORE.data(), n};
    double best = 1e9;
    for (auto _ : state) {
        vectors.fill(1);
        best = std::min(best, seconds_of([&] { sweep_full(matrix, work); }));
    }
    const double bytes = static_cast<double>(n) * n * sizeof(c32);
    state.counters["GB_per_s"] = bytes / best / 1e9;
    state.counters["over_read_rate"] = bytes / best / read_rate(View<const c32, 3>(c.thread.ACORE).slice(1));
}
BENCHMARK(sweep)->Args({32, 1})->Args({32, 3})->Args({32, 7})->Unit(benchmark::kMillisecond);

// The same solve from files in the page cache, as a ratio to the one in memory: packed rows, then blocks.
void on_scratch(benchmark::State &state) {
    PeriodSystem c;
    Sides sides;
    if (!prepare(state, c) || !sides.keep(c.thread))
        return;
    int ITER[2];
    const double core = [&] {
        c.run.opt.ISOLVE = 0;
        double best = 1e9;
        for (int k = 0; k < 3; ++k)
            best = std::min(best, solve_seconds(c, c.thread, sides, 0, 1, ITER));
        return best;
    }();
    const int n = c.run.mesh.NEQN;
    const int blocks = static_cast<int>(state.range(1));
    c.run.memory.INCORE = false;
    c.run.opt.ISOLVE = blocks;
    c.run.opt.NCORE = 2;
    if (blocks > 1) {
        c.run.opt.NBLKSZ = c.run.opt.NCORE = (n + blocks - 1) / blocks;
        c.run.opt.NBLKLS = n - (blocks - 1) * c.run.opt.NBLKSZ;
    }
    ScratchStore scratch;
    ThreadState thread;
    thread.scratch = &scratch;
    if (failed(allocate_solution(c.run, thread)))
        return;
    double best = 1e9;
    for (auto _ : state) {
        state.PauseTiming();
        if (failed(rows_to_scratch(c.run, c.thread, scratch.IUL, thread.AMAT.data())))
            return state.SkipWithError("no disk");
        state.ResumeTiming();
        best = std::min(best, solve_seconds(c, thread, sides, 0, 1, ITER));
    }
    state.counters["iterations"] = std::max(ITER[0], ITER[1]);
    state.counters["over_in_core"] = best / core;
}
BENCHMARK(on_scratch)->Args({32, 0})->Args({32, 4})->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
