#include "green/field_kernels.hpp"
#include "green/field_points.hpp"

#include <algorithm>
#include <cmath>

namespace {

// Columns of the integrals of G and its horizontal derivatives in the panel point.
constexpr int G0 = 1, GX = 2, GY = 3;

Status near_terms(FieldPoint P, const FieldWave &wave, int J, const FieldPanels &panels, FieldWork &work,
                  KernelValues &g) {
    const Panel &panel = panels.panel[static_cast<std::size_t>(J) - 1];
    FieldIntegrals logarithm, image, bottom;
    if (failed(near_integrals(P.x, P.y, -P.z, panel, 1, 0, logarithm)) ||
        failed(near_integrals(P.x, P.y, -P.z, panel, 0, 1, image)))
        return Status::failed;
    work.ISNG(J, 1) = 3;
    work.mean(J) = image.S / panel.PMOM[1];
    g.re(J, G0) = 2 * image.S - 2 * wave.NU * (logarithm.L + panel.PMOM[1] * std::log(wave.NU));
    g.re(J, GX) = -2 * image.GS[1];
    g.re(J, GY) = -2 * image.GS[2];
    const FieldPoint below{P.x, P.y, -2 * wave.HBOT - P.z};
    if (wave.HBOT <= 0 || panels.FN(J) <= distance2(below, panels, J))
        return Status::ok;
    if (failed(near_integrals(below.x, below.y, below.z, panel, 0, 1, bottom)))
        return Status::failed;
    work.IBOT(J, 1) = 1;
    g.re(J, G0) += bottom.S;
    g.re(J, GX) -= bottom.GS[1];
    g.re(J, GY) -= bottom.GS[2];
    return Status::ok;
}

} // namespace

Status FSKERN(const f32 (&P)[4], const FieldPanels &panels, const FieldWave &wave, const SteadyFlow &flow,
              FieldWork &work, KernelValues &result) {
    const FieldPoint point{P[1], P[2], P[3]};
    const f32 nu = wave.NU;
    for (int column = G0; column <= GY; ++column)
        result.clear(column);
    find_near(point, panels, work);
    for (int J = 1; J <= panels.n; ++J)
        if (work.near(J) != 0 && failed(near_terms(point, wave, J, panels, work, result)))
            return Status::failed;
    place_points(point, nu, panels, work);
    std::fill_n(work.ZETA.data(), work.ZETA.size(), 0.0f);
    evaluate_wave(panels, wave, GreenOrder::first, work);
    sum_value(panels, nu, G_, work, result, G0);
    sum_component(panels, -nu * nu, work.C, work, result, GX);
    sum_component(panels, -nu * nu, work.S, work, result, GY);
    sum_logarithm(panels, point.z, nu, work, result, GX);
    for (int J = 1; J <= panels.n; ++J) {
        const c32 g0 = result(J, G0), gx = result(J, GX), gy = result(J, GY);
        for (int d = 1; d <= 3; ++d) {
            const c32 Q = 2.0f * (gx * flow.STF2(J, 1, d) + gy * flow.STF2(J, 2, d)) - g0 * flow.STF3(J, d);
            result.re(J, d) = Q.real();
            result.im(J, d) = Q.imag();
        }
    }
    return Status::ok;
}
