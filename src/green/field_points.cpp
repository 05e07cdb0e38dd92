#include "green/field_points.hpp"

#include "green/vgrn0.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <utility>

namespace {

// Column of work.green that holds a part of a value.
const f32 *part(const FieldWork &work, int point, int value, int imaginary) {
    return &work.green(1, point, 2 * value + 1 + imaginary);
}

f32 *part(KernelValues &result, int column, int imaginary) {
    return imaginary == 0 ? &result.re(1, column) : &result.im(1, column);
}

} // namespace

Status near_integrals(f32 x, f32 y, f32 z, const Panel &panel, int ILOGF, int IGRAD, FieldIntegrals &out) {
    const f32 P[4] = {0, x, y, z};
    if (PANFLD(P, panel, ILOGF, IGRAD, out) == 1)
        return MSGOUT(" Error in evaluation of Rankine integrals ");
    return Status::ok;
}

f32 distance2(FieldPoint P, const FieldPanels &panels, int NP) {
    const f32 dx = P.x - panels.X(NP, 1), dy = P.y - panels.X(NP, 2), dz = P.z - panels.X(NP, 3);
    return (dx * dx + dy * dy) + dz * dz;
}

void find_near(FieldPoint P, const FieldPanels &panels, FieldWork &work) {
    near_test(panels.padded, P, columns(panels.X), panels.FN.data(), work.near.data());
    work.mean.fill(0);
    std::fill_n(work.ISNG.data(), panels.padded, 0);
    std::fill_n(work.IBOT.data(), panels.padded, 0);
}

void place_points(FieldPoint P, f32 K, const FieldPanels &panels, FieldWork &work) {
    const int n = panels.padded;
    // The copies of the last panel: as that one, so that they are no special case of the evaluation.
    std::fill_n(&work.ISNG(1, 1) + panels.n, n - panels.n, work.ISNG(panels.n, 1));
    std::fill_n(&work.IBOT(1, 1) + panels.n, n - panels.n, work.IBOT(panels.n, 1));
    work.Z.fill(-K * P.z);
    for (int k = 1; k <= panels.NG; ++k) {
        point_geometry(n, P, {&panels.XG(1, 1, k), &panels.XG(1, 2, k), &panels.XG(1, 3, k)}, K,
                       {&work.R(1, k), &work.C(1, k), &work.S(1, k), &work.ZETA(1, k)});
        if (k > 1) {
            std::copy_n(work.ISNG.data(), n, &work.ISNG(1, k));
            std::copy_n(work.IBOT.data(), n, &work.IBOT(1, k));
        }
    }
}

namespace {

GreenPoints points_of(const FieldPanels &panels, const FieldWork &work) {
    return {panels.padded * panels.NG, work.R.data(),    work.Z.data(),
            work.ZETA.data(),          work.ISNG.data(), work.IBOT.data()};
}

GreenArrays values_of(FieldWork &work) {
    GreenArrays values;
    for (int v = 0; v < GREEN_VALUES; ++v) {
        values.re[v] = &work.green(1, 1, 2 * v + 1);
        values.im[v] = &work.green(1, 1, 2 * v + 2);
    }
    return values;
}

} // namespace

void evaluate_wave(const FieldPanels &panels, const FieldWave &wave, GreenOrder order, FieldWork &work) {
    VGRN98(points_of(panels, work), wave.NU * wave.HBOT, *wave.gstate, order, work.vgrn, values_of(work));
}

void evaluate_lid(const FieldPanels &panels, f32 HBOT, FieldWork &work) {
    constexpr int ZERO_FREQUENCY = 1;
    limit_points(points_of(panels, work), HBOT, ZERO_FREQUENCY, GreenOrder::first, values_of(work));
}

void sum_value(const FieldPanels &panels, f32 factor, int value, const FieldWork &work, KernelValues &result,
               int column) {
    for (int k = 1; k <= panels.NG; ++k)
        for (int i = 0; i < 2; ++i)
            add_value(panels.padded, factor, &panels.W(1, k), part(work, k, value, i),
                      part(result, column, i));
}

void sum_component(const FieldPanels &panels, f32 factor, const Array<f32, 2> &cosine, const FieldWork &work,
                   KernelValues &result, int column) {
    for (int k = 1; k <= panels.NG; ++k)
        for (int i = 0; i < 2; ++i)
            add_component(panels.padded, factor, &panels.W(1, k), &cosine(1, k), part(work, k, G_R, i),
                          part(result, column, i));
}

void sum_normal(const FieldPanels &panels, f32 factor, const FieldWork &work, KernelValues &result,
                int column) {
    for (int k = 1; k <= panels.NG; ++k)
        for (int i = 0; i < 2; ++i)
            add_normal(panels.padded, factor, &panels.W(1, k),
                       {columns(panels.N), &work.C(1, k), &work.S(1, k), part(work, k, G_R, i),
                        part(work, k, G_ZETA, i)},
                       part(result, column, i));
}

void sum_logarithm(const FieldPanels &panels, f32 z, f32 K, const FieldWork &work, KernelValues &result,
                   int column) {
    for (int k = 1; k <= panels.NG; ++k)
        add_logarithm(
            panels.padded, z, K,
            {&panels.W(1, k), &work.R(1, k), &work.C(1, k), &work.S(1, k), work.mean.data(), &panels.X(1, 3)},
            &result.re(1, column), &result.re(1, column + 1));
}
