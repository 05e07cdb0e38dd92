// The kernel of the wave-number derivative of second-order runs. By the scaling law
//   dG/d(ln nu) = R G_R + z G_z + zeta G_zeta + H G_H  for  G(nu R, nu z, nu zeta, nu H),
// and with U = d(nu G)/d(nu), at nu = 1, of the complete function, the results are
//   P = 2 i (U_x, -U_xx, -U_xy, -U_x_zeta), Q = 2 i (U_y, -U_xy, -U_yy, -U_y_zeta), W1 = -2 i U_zeta, W2 = U.
// REGPAR forms the part that is integrated by points, LOGPAR what is integrated over a near panel at once.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"
#include "green/fgruio.hpp"
#include "green/gstate.hpp"
#include "green/vgrn98.hpp"

// Results of one pair of points, the two rows counted from 1.
struct RegularTerms {
    c32 P[5], Q[5]; // x-type and y-type row
    c32 W1, W2;
};

// One field point against many source points; lengths times nu, depths positive downward.
struct KernelPoints {
    int n = 0;
    f32 X1 = 0, Y1 = 0, Z1 = 0; // field point: horizontal coordinates, depth
    const f32 *X2 = nullptr;    // (n) source points, likewise
    const f32 *Y2 = nullptr;    // (n)
    const f32 *Z2 = nullptr;    // (n)
    const int *IFLAG = nullptr; // (n) 1: the terms of a near panel are left to LOGPAR; else 0
};

// Work space of a thread, for calls of up to the number of points it was made for.
struct RegularWork {
    Array<f32, 2> geometry; // (points, 5) R, its direction c and s, depths z and zeta
    Array<f32, 3> values;   // (points, real and imaginary part, value) of the Green function
    Array<int, 2> flags;    // (points, 3) IFLAG, ISNG, IBOT
    GreenWork green;
    DepthWork depth;
    // False: no memory for n points.
    [[nodiscard]] bool alloc(int n);
};

// Stores one record a point in `result`. H is the depth times nu, <= 0: deep water; `gstate` as for VGRN98.
// Straight above each other (R <= 1e-5) the terms of one direction are 0 and the others have their limit R ->
// 0. The result of a point depends neither on its place nor on the other points. Fails when both points of a
// pair are at one point of the free surface, R^2 + Y^2 < 5e-7, or FGRUIO does.
[[nodiscard]] Status REGPAR(const KernelPoints &points, f32 H, const GSTATE &gstate, RegularWork &work,
                            RegularTerms *result);

// A pair of points whose panel is near, and the integrals over this panel as the mirrored field
// point sees it.
struct NearPair {
    f32 X1, Y1, Z1; // field point as in KernelPoints
    f32 X2, Y2, Z2; // source point
    f32 NU;         // wave number [1/L]
    f32 PA;         // integral of 1/r [L]
    f32 PB;         // integral of the logarithm [L^2]
    f32 PN[3];      // gradient of PA in x, y, z
    f32 PD;         // area [L^2]
};

// The terms that IFLAG = 1 leaves out, for the whole panel (not divided by its area).
void LOGPAR(const NearPair &pair, RegularTerms &result);
