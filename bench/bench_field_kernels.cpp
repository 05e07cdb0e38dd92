// Pairs of field point and panel per second of the kernels of second-order runs, on a hemisphere of 1024
// panels, where one field point after the other meets all of them; and the share of near pairs.
#include "green/field_kernels.hpp"
#include "green/wdkern.hpp"
#include "hull_meshes.hpp"

#include <benchmark/benchmark.h>

namespace {

constexpr f32 NU = 1.0f;

struct Setting {
    RunState run;
    SteadyFlow flow;
    FieldPanels body, surface;
    FieldWork on_body, on_surface;
    WdkernWork wdkern;
    KernelValues on_body_values, on_surface_values;
    GSTATE gstate;
    FieldWave wave;
    bool good = false;
    Setting(int IQUAD, f32 HBOT) {
        RunState flat;
        hulls::Quads quads;
        hulls::add_patch(quads, {1, -2, 0}, {4, 0, 0}, {0, 4, 0}, 32, 32);
        hulls::set_body(quads, flat);
        hulls::set_body(hulls::hemisphere(1, 16), run);
        f32 ratio = 1;
        good = !failed(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh)) &&
               !failed(PREGEO(flat.opt, flat.files, flat.dipoles, flat.bodies, flat.mesh)) &&
               body.make(run.mesh, IQUAD) && surface.make(flat.mesh, IQUAD) && on_body.alloc(body) &&
               on_surface.alloc(surface) && wdkern.alloc(body) && on_body_values.alloc(body, 8) &&
               on_surface_values.alloc(surface, 3) && flow.STF2.alloc(surface.n, 2, 3) &&
               flow.STF3.alloc(surface.n, 3) && (HBOT <= 0 || HGRN98(NU * HBOT, ratio, gstate) == 0);
        wave = {HBOT, NU, &gstate};
    }
};

template <class Call>
void measure(benchmark::State &bench, bool surface_points, bool surface_panels, Call call) {
    Setting s(static_cast<int>(bench.range(0)), static_cast<f32>(bench.range(1)));
    const FieldPanels &points = surface_points ? s.surface : s.body,
                      &panels = surface_panels ? s.surface : s.body;
    double near = 0;
    int i = 0;
    for (auto _ : bench) {
        i = i % points.n + 1;
        const f32 P[4] = {0, points.X(i, 1), points.X(i, 2), points.X(i, 3)};
        if (!s.good || failed(call(s, P)))
            bench.SkipWithError("no value");
        const Array<int, 1> &marks = surface_panels ? s.on_surface.near : s.on_body.near;
        for (int k = 1; k <= panels.n; k += 16)
            near += marks(k);
    }
    bench.SetItemsProcessed(bench.iterations() * panels.n);
    bench.counters["near"] = near * 16 / (static_cast<double>(bench.iterations()) * panels.n);
}

void surface_field(benchmark::State &bench) {
    measure(bench, true, false, [](Setting &s, const f32(&P)[4]) {
        return FSFLD(P, s.body, s.wave, 0.01f, s.on_body, s.on_body_values);
    });
}
void panel_gradient(benchmark::State &bench) {
    measure(bench, false, false, [](Setting &s, const f32(&P)[4]) {
        return PANGRD(P, s.body, s.wave, 1, WANT_HORIZONTAL | WANT_GP3, s.on_body, s.on_body_values);
    });
}
void rigid_lid(benchmark::State &bench) {
    measure(bench, true, false, [](Setting &s, const f32(&P)[4]) {
        return PANGRD(P, s.body, {s.wave.HBOT, RIGID_LID, nullptr}, 0, WANT_V | WANT_HORIZONTAL, s.on_body,
                      s.on_body_values);
    });
}
void steady_flow_kernel(benchmark::State &bench) {
    measure(bench, false, true, [](Setting &s, const f32(&P)[4]) {
        return FSKERN(P, s.surface, s.wave, s.flow, s.on_surface, s.on_surface_values);
    });
}
void wave_number_kernel(benchmark::State &bench) {
    measure(bench, false, false, [](Setting &s, const f32(&P)[4]) {
        return WDKERN(P, s.body, s.wave, s.wdkern, s.on_body_values);
    });
}

} // namespace

// Arguments: IQUAD, depth (-1: deep water).
#define VORDA_KERNEL(name) BENCHMARK(name)->Args({0, -1})->Args({1, -1})->Args({0, 4})->Args({1, 4})
VORDA_KERNEL(surface_field);
VORDA_KERNEL(panel_gradient);
VORDA_KERNEL(rigid_lid);
VORDA_KERNEL(steady_flow_kernel);
VORDA_KERNEL(wave_number_kernel);
BENCHMARK_MAIN();
