// Whole runs of the built program on a full hemisphere, six modes and one heading, direct: seconds, and the
// ratio to the bare CGETRF calls of the run on the same cores in the same run.
#include "base/array.hpp"
#include "base/lapack.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <omp.h>
#include <random>
#include <string>
#include <vector>

namespace {

double seconds_of(const auto &work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Seconds of `count` factorisations of order n, `threads` of them at a time, each on one core.
double factorisations(int n, int count, int threads) {
    Array<c32, 2> source;
    if (!source.alloc(n, n))
        return 0;
    std::mt19937 random(3);
    std::uniform_real_distribution<f32> unit(-0.01f, 0.01f);
    for (std::int64_t i = 0; i < source.size(); ++i)
        source.data()[i] = {unit(random), unit(random)};
    for (int i = 1; i <= n; ++i)
        source(i, i) += 6.28f;
    std::vector<Array<c32, 2>> matrices(static_cast<std::size_t>(threads));
    for (Array<c32, 2> &matrix : matrices) {
        if (!matrix.alloc(n, n))
            return 0;
        matrix.fill(1);
    }
    std::vector<double> total(static_cast<std::size_t>(threads));
#pragma omp parallel num_threads(threads)
    {
        Array<c32, 2> &matrix = matrices[static_cast<std::size_t>(omp_get_thread_num())];
        std::vector<int> pivots(static_cast<std::size_t>(n));
        const SerialBlas serial;
        for (int k = omp_get_thread_num(); k < count; k += threads) {
            std::memcpy(matrix.data(), source.data(), static_cast<std::size_t>(matrix.size()) * sizeof(c32));
            int info = 0;
            total[static_cast<std::size_t>(omp_get_thread_num())] +=
                seconds_of([&] { cgetrf_(&n, &n, matrix.data(), &n, pivots.data(), &info); });
        }
    }
    return *std::max_element(total.begin(), total.end());
}

double run_seconds(int m, int periods, int threads, int ISOR = 0, int IWADD = 0) {
    std::string pattern = (std::filesystem::temp_directory_path() / "vorda_bench_XXXXXX").string();
    const std::filesystem::path folder = mkdtemp(pattern.data());
    std::ofstream(folder / "config.vrd") << "MAXSCR=20000\nISOLVE=1\nIPERIO=3\nIWADD=" << IWADD << "\n";
    std::ofstream(folder / "fnames.vrd") << "run.gdf\nrun.pot\n\n\nrun.fdf\n";
    std::ofstream pot(folder / "run.pot");
    pot << "bench\n0\n" << ISOR << "\n0\n0 0 0 0 0\n0 0 0\n1 1\n1 1 1 1 1 1\n" << periods << "\n";
    for (int i = 1; i <= periods; ++i)
        pot << 0.4 * i << " ";
    pot << "\n1\n0.0\n";
    pot.close();
    const std::string in_folder = "cd " + folder.string() + " && ";
    const std::string mesh = in_folder +
                             VORDA_BINARY_DIR "/vorda-mesh hemisphere --part full -o run.gdf --nu " +
                             std::to_string(m) + " --nv " + std::to_string(m);
    const std::string solve =
        in_folder + "OMP_NUM_THREADS=" + std::to_string(threads) + " " VORDA_BINARY_DIR "/vorda";
    double seconds = -1;
    if (std::system(mesh.c_str()) == 0)
        seconds = seconds_of([&] { (void)!std::system(solve.c_str()); });
    if (!std::filesystem::exists(folder / "run.p2f"))
        seconds = -1;
    std::filesystem::remove_all(folder);
    return seconds;
}

// Arguments: m (4 m^2 panels), periods, threads.
void whole_run(benchmark::State &state) {
    const int m = static_cast<int>(state.range(0));
    const int periods = static_cast<int>(state.range(1));
    const int threads = static_cast<int>(state.range(2));
    double seconds = 0;
    for (auto _ : state)
        seconds = run_seconds(m, periods, threads);
    if (seconds < 0)
        return state.SkipWithError("the run left no result");
    const double bare = factorisations(4 * m * m, periods, threads);
    state.counters["N"] = 4 * m * m;
    state.counters["seconds"] = seconds;
    state.counters["over_CGETRF"] = seconds / bare;
}
BENCHMARK(whole_run)
    ->Args({11, 2, 1})
    ->Args({11, 2, 2})
    ->Args({22, 2, 1})
    ->Args({22, 2, 2})
    ->Args({22, 1, 2})
    ->Args({16, 8, 2})
    ->Args({22, 8, 2})
    ->Args({32, 8, 2})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

// A run with sources and velocities, as a ratio to the one without. Arguments as above.
void run_with_sources(benchmark::State &state) {
    const int m = static_cast<int>(state.range(0));
    const int periods = static_cast<int>(state.range(1));
    const int threads = static_cast<int>(state.range(2));
    double seconds = 0;
    for (auto _ : state)
        seconds = run_seconds(m, periods, threads, 1);
    const double without = run_seconds(m, periods, threads);
    if (seconds < 0 || without < 0)
        return state.SkipWithError("the run left no result");
    state.counters["N"] = 4 * m * m;
    state.counters["seconds"] = seconds;
    state.counters["over_ISOR0"] = seconds / without;
}
BENCHMARK(run_with_sources)->Args({22, 2, 1})->Args({22, 2, 2})->Iterations(1)->Unit(benchmark::kSecond);

// A run for wave drift damping on the free surface that it makes itself (8 m^2 panels), as a ratio to the one
// with sources.
void second_order_run(benchmark::State &state) {
    const int m = static_cast<int>(state.range(0));
    const int periods = static_cast<int>(state.range(1));
    const int threads = static_cast<int>(state.range(2));
    double seconds = 0;
    for (auto _ : state)
        seconds = run_seconds(m, periods, threads, 1, 1);
    const double without = run_seconds(m, periods, threads, 1);
    if (seconds < 0 || without < 0)
        return state.SkipWithError("the run left no result");
    state.counters["N"] = 4 * m * m;
    state.counters["seconds"] = seconds;
    state.counters["over_sources"] = seconds / without;
}
BENCHMARK(second_order_run)
    ->Args({16, 1, 1})
    ->Args({16, 1, 2})
    ->Args({16, 2, 2})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

} // namespace

BENCHMARK_MAIN();
