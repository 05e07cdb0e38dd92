#include "green/field_kernels.hpp"
#include "green/field_points.hpp"

#include <cmath>

namespace {

// Vertical difference of the gradient of 1/r over a panel, in z: GS(3) at z + STEP less that at z - STEP.
Status vertical_difference(FieldPoint P, f32 STEP, const Panel &panel, f32 &difference) {
    FieldIntegrals above, below;
    if (failed(near_integrals(P.x, P.y, P.z + STEP, panel, 0, 1, above)) ||
        failed(near_integrals(P.x, P.y, P.z - STEP, panel, 0, 1, below)))
        return Status::failed;
    difference = above.GS[3] - below.GS[3];
    return Status::ok;
}

// Both inverse distances, which are one for a point of the free surface, and the logarithm.
Status surface_terms(FieldPoint P, f32 nu, f32 STEP, const Panel &panel, f32 (&term)[4]) {
    FieldIntegrals logarithm, direct;
    f32 difference;
    if (failed(near_integrals(P.x, P.y, 0, panel, 1, 0, logarithm)) ||
        failed(near_integrals(P.x, P.y, 0, panel, 0, 1, direct)) ||
        failed(vertical_difference(P, STEP, panel, difference)))
        return Status::failed;
    term[FS_A] = 2 * direct.S - 2 * nu * (logarithm.L + panel.PMOM[1] * std::log(nu));
    term[FS_B] = 2 * direct.D - 2 * nu * logarithm.LZ;
    // Twice the second derivative by the central difference, hence one STEP.
    term[FS_C] = difference / STEP - 2 * nu * direct.GS[3] + 2 * nu * nu * direct.S;
    return Status::ok;
}

Status bottom_terms(FieldPoint below, f32 STEP, const Panel &panel, f32 (&term)[4]) {
    FieldIntegrals image;
    f32 difference;
    if (failed(near_integrals(below.x, below.y, below.z, panel, 0, 0, image)) ||
        failed(vertical_difference(below, STEP, panel, difference)))
        return Status::failed;
    term[FS_A] += image.S;
    term[FS_B] += image.D;
    term[FS_C] += difference / (2 * STEP);
    return Status::ok;
}

} // namespace

Status FSFLD(const f32 (&P)[4], const FieldPanels &panels, const FieldWave &wave, f32 STEP, FieldWork &work,
             KernelValues &result) {
    const FieldPoint point{P[1], P[2], 0}, below{P[1], P[2], -2 * wave.HBOT};
    const f32 nu = wave.NU;
    for (int column = FS_A; column <= FS_C; ++column)
        result.clear(column);
    find_near(point, panels, work);
    for (int NP = 1; NP <= panels.n; ++NP) {
        if (work.near(NP) == 0)
            continue;
        const Panel &panel = panels.panel[static_cast<std::size_t>(NP) - 1];
        f32 term[4];
        if (failed(surface_terms(point, nu, STEP, panel, term)))
            return Status::failed;
        work.ISNG(NP, 1) = 3;
        if (wave.HBOT > 0 && panels.FN(NP) > distance2(below, panels, NP)) {
            work.IBOT(NP, 1) = 1;
            if (failed(bottom_terms(below, STEP, panel, term)))
                return Status::failed;
        }
        for (int column = FS_A; column <= FS_C; ++column)
            result.re(NP, column) = term[column];
    }
    place_points(point, nu, panels, work);
    evaluate_wave(panels, wave, GreenOrder::second, work);
    sum_value(panels, nu, G_, work, result, FS_A);
    sum_normal(panels, -nu * nu, work, result, FS_B);
    sum_value(panels, nu * nu * nu, G_ZZ, work, result, FS_C);
    for (int k = 1; k <= panels.NG; ++k)
        add_inverse_distance(panels.padded, -2 * nu * nu * nu, &panels.W(1, k), &work.R(1, k),
                             &work.ZETA(1, k), work.near.data(), &result.re(1, FS_C));
    return Status::ok;
}
