// Panel integrals and the Rankine sweep, with the rate of a batch of expf as yardstick of the machine.
#include "base/simd.hpp"
#include "rankine/panint_eight.hpp"
#include "rankine/rankin.hpp"
#include "state/memory_plan.hpp"
#include "state/symmetry.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <vector>

namespace {

VORDA_SIMD
void exp_batch(const float *x, float *y) {
#pragma omp simd
    for (int i = 0; i < BATCH; ++i)
        y[i] = expf(x[i]);
}

// Seconds of one expf in a batch, the best of several runs.
double yardstick() {
    alignas(64) float x[BATCH], y[BATCH];
    for (int i = 0; i < BATCH; ++i)
        x[i] = -0.05f * static_cast<float>(i);
    double best = 1;
    for (int run = 0; run < 20; ++run) {
        const auto start = std::chrono::steady_clock::now();
        for (int n = 0; n < 2000; ++n) {
            exp_batch(x, y);
            benchmark::DoNotOptimize(y);
        }
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count() / (2000 * BATCH));
    }
    return best;
}

// Time of one iteration in units of one expf.
class Clock {
  public:
    double ratio(const benchmark::State &state) const {
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start_;
        return took.count() / static_cast<double>(state.iterations()) / yardstick();
    }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

Panel skewed_panel() {
    Array<f32, 2> V;
    const f32 corner[4][2] = {{.9f, .5f}, {.5f, -.4f}, {-.6f, -.5f}, {-.3f, .6f}};
    if (!V.alloc(4, 3))
        std::abort();
    for (int v = 1; v <= 4; ++v)
        for (int c = 1; c <= 2; ++c)
            V(v, c) = corner[v - 1][c - 1];
    Panel p{};
    if (failed(PANGEO(V.view(), 0, 1, p)))
        std::abort();
    return p;
}

// A pair of panels without gradients and logarithm: direct term and free-surface image, both directions; four
// evaluations at distances around R panel sizes. `ratio` is in units of one expf.
void pair_of_panels(benchmark::State &state, f32 R) {
    const Panel p = skewed_panel();
    constexpr int POINTS = 256;
    std::vector<std::array<f32, 4>> P;
    for (int i = 0; i < POINTS; ++i) {
        const f32 t = 0.1f * static_cast<f32>(i), r = R * (1 + 0.2f * std::sin(7 * t));
        P.push_back({0, r * std::cos(t), 0.8f * r * std::sin(t), 0.6f * r * std::sin(t) + 0.1f});
    }
    std::size_t i = 0;
    const Clock clock;
    for (auto _ : state)
        for (int n = 0; n < 4; ++n) {
            FieldIntegrals F;
            benchmark::DoNotOptimize(PANFLD(P[i++ % POINTS].data(), p, 0, 0, F));
            benchmark::DoNotOptimize(F);
        }
    state.counters["ratio"] = clock.ratio(state);
}
BENCHMARK_CAPTURE(pair_of_panels, exact, 2.0f);
BENCHMARK_CAPTURE(pair_of_panels, fourth_order, 9.0f);
BENCHMARK_CAPTURE(pair_of_panels, second_order, 20.0f);

// One evaluation with all that can be asked for.
void all_integrals(benchmark::State &state, f32 R, int IGRAD, int ILOGF) {
    const Panel p = skewed_panel();
    f32 t = 0;
    for (auto _ : state) {
        t += 0.1f;
        PanelIntegrals I;
        benchmark::DoNotOptimize(PANINT(R * std::cos(t), R * std::sin(t), 0.3f * R, p, IGRAD, ILOGF, I));
        benchmark::DoNotOptimize(I);
    }
}
BENCHMARK_CAPTURE(all_integrals, exact_gradient, 2.0f, 1, 0);
BENCHMARK_CAPTURE(all_integrals, exact_logarithm, 2.0f, 0, 1);
BENCHMARK_CAPTURE(all_integrals, exact_both, 2.0f, 1, 1);
BENCHMARK_CAPTURE(all_integrals, far_both, 20.0f, 1, 1);

// Eight panels, as RANKIN works them: items are panels.
void eight_panels(benchmark::State &state, f32 R, int IGRAD, int ILOGF) {
    const std::vector<Panel> panels(64, skewed_panel());
    PanelBatch batch;
    for (int l = 0; l < ABREAST; ++l) {
        const f32 t = 0.1f * static_cast<f32>(l);
        batch.P[1][l] = R * std::cos(t);
        batch.P[2][l] = R * std::sin(t);
        batch.P[3][l] = 0.3f * R;
    }
    const bool far = is_far({batch.P[1][0], batch.P[2][0], batch.P[3][0]}, {}, panels[0].region2);
    std::size_t next = 0;
    for (auto _ : state) {
        for (const Panel *&panel : batch.panel)
            panel = &panels[(next += 3) % panels.size()];
        FieldBatch out;
        (far ? far_fields : near_fields)(batch, ILOGF, IGRAD, out);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(ABREAST * state.iterations());
}
BENCHMARK_CAPTURE(eight_panels, exact, 2.0f, 0, 0);
BENCHMARK_CAPTURE(eight_panels, exact_gradient, 2.0f, 1, 0);
BENCHMARK_CAPTURE(eight_panels, exact_logarithm, 2.0f, 0, 1);
BENCHMARK_CAPTURE(eight_panels, exact_both, 2.0f, 1, 1);
BENCHMARK_CAPTURE(eight_panels, far, 9.0f, 0, 0);
BENCHMARK_CAPTURE(eight_panels, far_gradient, 9.0f, 1, 0);
BENCHMARK_CAPTURE(eight_panels, far_both, 9.0f, 1, 1);

// Hemisphere of N = 4 m^2 panels, no symmetry.
void hemisphere(int m, Mesh &mesh) {
    mesh.NEQN = 4 * m * m;
    const int N = mesh.NEQN;
    if (!mesh.XCT.alloc(3, N) || !mesh.TRM.alloc(3, 3, N) || !mesh.XIV.alloc(4, N) || !mesh.ETV.alloc(4, N) ||
        !mesh.PMOM.alloc(13, N) || !mesh.SIDE.alloc(4, N) || !mesh.XGP.alloc(4, 3, N) ||
        !mesh.GJAC.alloc(4, N) || !mesh.PSIZ.alloc(2, N) || !mesh.VEL.alloc(6, N) || !mesh.IFSP.alloc(N))
        std::abort();
    Array<f32, 2> V;
    if (!V.alloc(4, 3))
        std::abort();
    int ip = 0;
    for (int i = 0; i < m; ++i)
        for (int j = 0; j < 4 * m; ++j) {
            const int di[4] = {0, 1, 1, 0}, dj[4] = {0, 0, 1, 1};
            for (int v = 0; v < 4; ++v) {
                const double down = 1.5707963267948966 * (i + di[v]) / m;
                const double round = 1.5707963267948966 * (j + dj[v]) / m;
                const double r = i + di[v] == m ? 0 : std::cos(down);
                V(v + 1, 1) = static_cast<f32>(r * std::cos(round));
                V(v + 1, 2) = static_cast<f32>(r * std::sin(round));
                V(v + 1, 3) = static_cast<f32>(-std::sin(down));
            }
            Panel p{};
            if (failed(PANGEO(V.view(), 0, ++ip, p)))
                std::abort();
            put_panel(p, ip, mesh);
            for (int c = 1; c <= 3; ++c)
                mesh.VEL(c, ip) = p.TRM[3][c];
        }
}

void whole_RANKIN(benchmark::State &state) {
    const int ISOR = static_cast<int>(state.range(1)), ILOG = static_cast<int>(state.range(2));
    Mesh mesh;
    hemisphere(static_cast<int>(state.range(0)), mesh);
    const int N = mesh.NEQN;
    Options opt;
    opt.ISOR = ISOR;
    opt.ILOG = ILOG;
    opt.HBOT = -1;
    Bodies bodies;
    bodies.NMODES = 6;
    Dipoles dipoles;
    Symmetry sym;
    Array<int, 1> MODE;
    if (!MODE.alloc(6))
        std::abort();
    std::iota(MODE.data(), MODE.data() + 6, 1);
    if (failed(SYMSET(6, 0, 0, MODE.view(), 1, sym)))
        std::abort();
    RankineStore store;
    if (failed(allocate_store(opt, sym, N, store)))
        std::abort();
    // The pages of the store are touched for the first time, which takes the system longer than all else.
    if (failed(RANKIN(opt, bodies, mesh, dipoles, sym, store)))
        std::abort();
    const Clock clock;
    for (auto _ : state)
        if (failed(RANKIN(opt, bodies, mesh, dipoles, sym, store)))
            std::abort();
    state.counters["panels"] = N;
    state.counters["ratio"] = clock.ratio(state);
}
BENCHMARK(whole_RANKIN)
    ->ArgNames({"m", "ISOR", "ILOG"})
    ->Args({16, 0, 0})
    ->Args({32, 0, 0})
    ->Args({32, 0, 1})
    ->Args({32, 1, 1})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

BENCHMARK_MAIN();
