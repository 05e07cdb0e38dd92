// Speed of the Green function and of the wave-number derivative per point, as a ratio to one expf of the
// vector library in the same run, and of the depth state of a period.
#include "base/simd.hpp"
#include "green/depth_heights.hpp"
#include "green/regpar.hpp"
#include "green/vgrn0.hpp"
#include "green/vgrn98.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <ctime>
#include <random>
#include <vector>

namespace {

constexpr int EXP_POINTS = 4096;

// CPU seconds of this thread, so that neighbours on the machine count little.
double cpu_time() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

VORDA_SIMD void exp_batch(const float *x, float *y) {
#pragma omp simd
    for (int i = 0; i < EXP_POINTS; ++i)
        y[i] = expf(x[i]);
}

// Seconds of one expf, the best of some tries.
double exp_time() {
    std::vector<float> x(EXP_POINTS), y(EXP_POINTS);
    for (int i = 0; i < EXP_POINTS; ++i)
        x[i] = -10.0f * static_cast<float>(i) / EXP_POINTS;
    double best = 1;
    for (int tries = 0; tries < 200; ++tries) {
        const double start = cpu_time();
        for (int i = 0; i < 20; ++i) {
            exp_batch(x.data(), y.data());
            benchmark::DoNotOptimize(y.data());
            benchmark::ClobberMemory();
        }
        best = std::min(best, (cpu_time() - start) / (20.0 * EXP_POINTS));
    }
    return best;
}

struct Region {
    float R0, R1, Y0, Y1;
    int singular; // one point in so many has ISNG 1, 2 or 3; 1: all have 3
    float H = -1; // depth, <= 0: deep water
};

void run(benchmark::State &bench, Region region, GreenOrder order) {
    const int n = static_cast<int>(bench.range(0));
    std::mt19937 random(7);
    std::uniform_real_distribution<float> R(region.R0, region.R1), Y(region.Y0, region.Y1), part(0, 1);
    std::vector<float> r(n), z(n), zeta(n), out(16 * n);
    std::vector<int> ISNG(n), IBOT(n);
    for (int i = 0; i < n; ++i) {
        const float y = Y(random), p = part(random);
        r[i] = R(random);
        z[i] = p * y;
        zeta[i] = y - z[i];
        if (region.H > 0) { // Y is reached from the bottom when it is more than H
            const float h = region.H, room = y < h ? y : 2 * h - y;
            z[i] = 0.5f * (y - room) + p * room;
            zeta[i] = y - z[i];
        }
        ISNG[i] = region.singular == 1 ? 3 : i % region.singular == 0 ? 1 + i / region.singular % 3 : 0;
    }
    GreenArrays result;
    for (int j = 0; j < GREEN_VALUES; ++j) {
        result.re[j] = out.data() + 2 * j * n;
        result.im[j] = out.data() + (2 * j + 1) * n;
    }
    const GreenPoints points{n, r.data(), z.data(), zeta.data(), ISNG.data(), IBOT.data()};
    GSTATE state;
    float ratio = 1;
    if (region.H > 0 && HGRN98(region.H, ratio, state) != 0) {
        bench.SkipWithError("depth out of range");
        return;
    }
    GreenWork work;
    if (!work.alloc(n)) {
        bench.SkipWithError("no memory");
        return;
    }
    const double one_exp = exp_time();
    const double start = cpu_time();
    for (auto _ : bench) {
        VGRN98(points, region.H, state, order, work, result);
        benchmark::ClobberMemory();
    }
    const double each = (cpu_time() - start) / (static_cast<double>(bench.iterations()) * n);
    bench.counters["ns_per_point"] = 1e9 * each;
    bench.counters["ns_per_expf"] = 1e9 * one_exp;
    bench.counters["expf_per_point"] = each / one_exp;
}

void mixed(benchmark::State &bench) {
    run(bench, {0, 20, 0, 10, 20}, GreenOrder::first);
}
void mixed_second(benchmark::State &bench) {
    run(bench, {0, 20, 0, 10, 20}, GreenOrder::second);
}
void near_axis(benchmark::State &bench) {
    run(bench, {0, 3, 0, 4, 20}, GreenOrder::first);
}
void far_from_axis(benchmark::State &bench) {
    run(bench, {3, 30, 0, 4, 20}, GreenOrder::first);
}
void far_and_deep(benchmark::State &bench) {
    run(bench, {3, 30, 4, 30, 20}, GreenOrder::first);
}
void without_logarithm(benchmark::State &bench) {
    run(bench, {0, 3, 0, 4, 1}, GreenOrder::first);
}

// Finite depth: R <= H with Y < H and with Y >= H, R > H; a row that has points of all kinds.
void finite_near(benchmark::State &bench) {
    run(bench, {0, 1.5f, 0, 1.5f, 20, 1.5f}, GreenOrder::first);
}
void finite_near_wide(benchmark::State &bench) {
    run(bench, {0, 20, 0, 10, 20, 20}, GreenOrder::first);
}
void finite_deep(benchmark::State &bench) {
    run(bench, {0, 1.5f, 1.5f, 3, 20, 1.5f}, GreenOrder::first);
}
void finite_far(benchmark::State &bench) {
    run(bench, {1.5f, 20, 0, 2, 20, 1.5f}, GreenOrder::first);
}
// A body ten depths long.
void finite_shallow(benchmark::State &bench) {
    run(bench, {0, 5, 0, 0.4f, 20, 0.5f}, GreenOrder::first);
}
void finite_mixed(benchmark::State &bench) {
    run(bench, {0, 8, 0, 3, 20, 4}, GreenOrder::first);
}
void finite_mixed_second(benchmark::State &bench) {
    run(bench, {0, 8, 0, 3, 20, 4}, GreenOrder::second);
}

// A row of the assembly: the panels of a box `length` by a quarter of it, strip by strip, their heights
// given; the field point in its middle.
void row_of_panels(benchmark::State &bench, float H, float length) {
    constexpr int ALONG = 40;
    const int n = static_cast<int>(bench.range(0));
    std::vector<float> r(n), z(n), zeta(n, 0.15f * H), out(16 * n);
    std::vector<int> ISNG(n), IBOT(n);
    for (int i = 0; i < n; ++i) {
        const float x = static_cast<float>(i % ALONG) / ALONG - 0.5f,
                    y = static_cast<float>(i / ALONG) / static_cast<float>(n / ALONG) - 0.5f;
        r[i] = length * std::hypot(x, 0.25f * y);
        z[i] = 0.3f * H * (1 - 4 * y * y);
        ISNG[i] = r[i] < 0.02f * length;
    }
    GreenArrays result;
    for (int j = 0; j < GREEN_VALUES; ++j) {
        result.re[j] = out.data() + 2 * j * n;
        result.im[j] = out.data() + (2 * j + 1) * n;
    }
    GSTATE state;
    float ratio = 1;
    HeightFactors heights;
    GreenWork work;
    if (HGRN98(H, ratio, state) != 0 || !heights.make(n, z.data(), H, state) || !work.alloc(n))
        return bench.SkipWithError("no state");
    const GreenPoints points{n,
                             r.data(),
                             z.data(),
                             zeta.data(),
                             ISNG.data(),
                             IBOT.data(),
                             heights.points > 0 ? heights.value.data() : nullptr,
                             heights.value.dim(1)};
    const double start = cpu_time();
    for (auto _ : bench) {
        VGRN98(points, H, state, GreenOrder::first, work, result);
        benchmark::ClobberMemory();
    }
    const double each = (cpu_time() - start) / (static_cast<double>(bench.iterations()) * n);
    bench.counters["ns_per_point"] = 1e9 * each;
}
void finite_row(benchmark::State &bench) {
    row_of_panels(bench, 4, 8);
}
void finite_row_long(benchmark::State &bench) {
    row_of_panels(bench, 4, 32);
}
void finite_row_shallow(benchmark::State &bench) {
    row_of_panels(bench, 0.5f, 5);
}

// The state of a period; the argument is 10 H.
void depth_state(benchmark::State &bench) {
    GSTATE state;
    float ratio = 0;
    for (auto _ : bench) {
        INIT_HGRN98_ARRAYS(state);
        benchmark::DoNotOptimize(HGRN98(0.1f * static_cast<float>(bench.range(0)), ratio, state));
        benchmark::DoNotOptimize(state);
    }
}

// Limit frequencies: R <= H, R > H, both.
void limit_frequency(benchmark::State &bench, float R0, float R1, GreenOrder order) {
    constexpr float H = 2;
    const int n = static_cast<int>(bench.range(0));
    std::mt19937 random(7);
    std::uniform_real_distribution<float> R(R0, R1), depth(0, H);
    std::vector<float> r(n), z(n), zeta(n), out(16 * n);
    std::vector<int> ISNG(n), IBOT(n);
    for (int i = 0; i < n; ++i) {
        r[i] = R(random);
        z[i] = depth(random);
        zeta[i] = depth(random);
        ISNG[i] = i % 20 == 0;
    }
    GreenArrays result;
    for (int j = 0; j < GREEN_VALUES; ++j) {
        result.re[j] = out.data() + 2 * j * n;
        result.im[j] = out.data() + (2 * j + 1) * n;
    }
    const double one_exp = exp_time();
    const double start = cpu_time();
    for (auto _ : bench) {
        limit_points({n, r.data(), z.data(), zeta.data(), ISNG.data(), IBOT.data()}, H, 1, order, result);
        benchmark::ClobberMemory();
    }
    const double each = (cpu_time() - start) / (static_cast<double>(bench.iterations()) * n);
    bench.counters["ns_per_point"] = 1e9 * each;
    bench.counters["expf_per_point"] = each / one_exp;
}
void limit_near(benchmark::State &bench) {
    limit_frequency(bench, 0, 2, GreenOrder::first);
}
void limit_far(benchmark::State &bench) {
    limit_frequency(bench, 2, 10, GreenOrder::first);
}
void limit_mixed(benchmark::State &bench) {
    limit_frequency(bench, 0, 4, GreenOrder::first);
}
void limit_mixed_second(benchmark::State &bench) {
    limit_frequency(bench, 0, 4, GreenOrder::second);
}

// The wave-number derivative of one field point against many source points at the distances R0 to R1.
void wave_number(benchmark::State &bench, float H, float R0, float R1) {
    const int n = static_cast<int>(bench.range(0));
    std::mt19937 random(7);
    std::uniform_real_distribution<float> R(R0, R1), depth(0, H > 0 ? std::min(H, 2.0f) : 2.0f),
        turn(0, 6.28f);
    std::vector<float> x(n), y(n), z(n);
    std::vector<int> near(n);
    std::vector<RegularTerms> result(n);
    for (int i = 0; i < n; ++i) {
        const float r = R(random), angle = turn(random);
        x[i] = r * std::cos(angle);
        y[i] = r * std::sin(angle);
        z[i] = depth(random);
        near[i] = i % 20 == 0;
    }
    const KernelPoints points{n, 0, 0, 0.1f, x.data(), y.data(), z.data(), near.data()};
    const GSTATE state;
    RegularWork work;
    if (!work.alloc(n) || failed(REGPAR(points, H, state, work, result.data()))) {
        bench.SkipWithError("REGPAR");
        return;
    }
    const double one_exp = exp_time();
    const double start = cpu_time();
    for (auto _ : bench) {
        benchmark::DoNotOptimize(REGPAR(points, H, state, work, result.data()));
        benchmark::ClobberMemory();
    }
    const double each = (cpu_time() - start) / (static_cast<double>(bench.iterations()) * n);
    bench.counters["ns_per_point"] = 1e9 * each;
    bench.counters["expf_per_point"] = each / one_exp;
}
void wave_number_deep(benchmark::State &bench) {
    wave_number(bench, -1, 0, 6);
}
// R up to H/2; the same with the images beyond the table; R from H/2 with many modes and with few.
void wave_number_near(benchmark::State &bench) {
    wave_number(bench, 4, 0, 2);
}
void wave_number_near_deep(benchmark::State &bench) {
    wave_number(bench, 30, 0, 6);
}
void wave_number_beside(benchmark::State &bench) {
    wave_number(bench, 4, 2, 4);
}
void wave_number_far(benchmark::State &bench) {
    wave_number(bench, 1, 3, 10);
}

} // namespace

BENCHMARK(mixed)->Arg(64)->Arg(200)->Arg(4000);
BENCHMARK(mixed_second)->Arg(200)->Arg(4000);
BENCHMARK(near_axis)->Arg(2000);
BENCHMARK(far_from_axis)->Arg(2000);
BENCHMARK(far_and_deep)->Arg(2000);
BENCHMARK(without_logarithm)->Arg(2000);
BENCHMARK(finite_near)->Arg(200)->Arg(2000);
BENCHMARK(finite_near_wide)->Arg(2000);
BENCHMARK(finite_deep)->Arg(2000);
BENCHMARK(finite_far)->Arg(2000);
BENCHMARK(finite_mixed)->Arg(64)->Arg(200)->Arg(4000);
BENCHMARK(finite_shallow)->Arg(64)->Arg(200)->Arg(4000);
BENCHMARK(finite_mixed_second)->Arg(2000);
BENCHMARK(finite_row)->Arg(1000);
BENCHMARK(finite_row_long)->Arg(1000);
BENCHMARK(finite_row_shallow)->Arg(200)->Arg(1000);
BENCHMARK(wave_number_deep)->Arg(64)->Arg(2000);
BENCHMARK(wave_number_near)->Arg(64)->Arg(2000);
BENCHMARK(wave_number_near_deep)->Arg(2000);
BENCHMARK(wave_number_beside)->Arg(2000);
BENCHMARK(wave_number_far)->Arg(2000);
BENCHMARK(depth_state)->Arg(3)->Arg(25)->Arg(300);
BENCHMARK(limit_near)->Arg(2000);
BENCHMARK(limit_far)->Arg(2000);
BENCHMARK(limit_mixed)->Arg(64)->Arg(2000);
BENCHMARK(limit_mixed_second)->Arg(2000);
BENCHMARK_MAIN();
