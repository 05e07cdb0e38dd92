// The Green function at the two limit frequencies. It is real.
#pragma once

#include "green/vgrn98.hpp"

// One pair, all eight values in the order of VGRN1P, with imaginary parts of 0; lengths in any one unit.
// IPLIM: 1 zero frequency (the surface z = 0 is a rigid lid), 2 infinite frequency (G = 0 there). H: depth,
// <= 0: deep water. ISNG, IBOT: as in GreenPoints; ISNG = 3 counts as 2, the image here has no logarithm with
// it. With IPLIM = 1 and H > 0 G is fixed up to a constant, which is chosen such that G + ln(R^2 / H^2) / H
// tends to 0 far away. Near by (R <= H) the images next to the pair and a polynomial for the rest of the
// image series, farther away the expansion in modes. (Newman 1992, The Green function for potential flow in a
// rectangular channel, Journal of Engineering Mathematics 26, for the method.)
void VGRN0(f32 R, f32 Z, f32 ZETA, f32 H, int ISNG, int IBOT, int IPLIM, f32 (&record)[16]);

// The value and the first derivatives alone, equal to those of VGRN0.
struct LimitValues {
    f32 V, VR, VZ, VZETA;
};
LimitValues VGRN0G(f32 R, f32 Z, f32 ZETA, f32 H, int ISNG, int IBOT, int IPLIM);

// Many pairs: VGRN0 of each, bit for bit, wherever it stands. The order tells which values are stored,
// imaginary parts of 0 among them; the others may be null.
void limit_points(const GreenPoints &points, f32 H, int IPLIM, GreenOrder order, const GreenArrays &result);
