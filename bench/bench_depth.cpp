// Speed of the near field of finite depth: the kernels per point, and the coefficients of a period.
#include "green/depth_coefficients.hpp"
#include "green/near_kernels.hpp"

#include <benchmark/benchmark.h>
#include <cmath>
#include <random>
#include <vector>

namespace {

GSTATE state_of(f32 H, f32 M) {
    GSTATE state;
    f32 ratio = 0;
    if (HGRN98(H, ratio, state) != 0)
        std::abort();
    SCOEF(H, M, state.COEF91);
    PCOEF(H, M, state.COEF57);
    return state;
}

// Nanoseconds per point of a kernel on some blocks, read in turn.
template <class Kernel> void run(benchmark::State &bench, Kernel kernel, GreenOrder order, f32 Y0, f32 Y1) {
    const f32 H = 1.5f;
    const GSTATE state = state_of(H, 1.6221f);
    std::mt19937 random(3);
    std::uniform_real_distribution<f32> R(0, H), Y(Y0 * H, Y1 * H), part(-1, 1);
    std::vector<GreenBlock> blocks(64);
    for (GreenBlock &block : blocks) {
        block = {};
        for (int k = 0; k < GREEN_LANES; ++k) {
            block.X[k] = R(random);
            block.Y[k] = Y(random);
            block.D[k] = part(random) * std::fmin(block.Y[k], 2 * H - block.Y[k]);
        }
    }
    for (auto _ : bench) {
        for (GreenBlock &block : blocks)
            kernel(state, order, block);
        benchmark::ClobberMemory();
    }
    const double points = static_cast<double>(bench.iterations()) * 64 * GREEN_LANES;
    bench.counters["per_point"] =
        benchmark::Counter(points, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void gnear(benchmark::State &bench) {
    run(bench, GNEAR, GreenOrder::first, 0, 1);
}
void gnear_second(benchmark::State &bench) {
    run(bench, GNEAR, GreenOrder::second, 0, 1);
}
void gdeep(benchmark::State &bench) {
    run(bench, GDEEP, GreenOrder::first, 1, 2);
}
void gdeep_second(benchmark::State &bench) {
    run(bench, GDEEP, GreenOrder::second, 1, 2);
}

// SCOEF and PCOEF of a period, the argument is 10 H.
void coefficients(benchmark::State &bench) {
    const f32 H = static_cast<f32>(bench.range(0)) / 10, M = H > 1 ? H : std::sqrt(H);
    GSTATE state;
    for (auto _ : bench) {
        SCOEF(H, M, state.COEF91);
        PCOEF(H, M, state.COEF57);
        benchmark::DoNotOptimize(state);
    }
}

} // namespace

BENCHMARK(gnear);
BENCHMARK(gnear_second);
BENCHMARK(gdeep);
BENCHMARK(gdeep_second);
BENCHMARK(coefficients)->Arg(3)->Arg(25)->Arg(100)->Arg(500);
BENCHMARK_MAIN();
