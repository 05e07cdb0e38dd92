// Coefficients of the near-field polynomials of finite depth, once per period.
//   S(t, w) stands for I(R, Z),  P(t, y) for I(R, 2 H - Y) - F2(R, Y) - 1/sqrt(R^2 + Y^2);
//   I(R, Z) = PV integral over s from 0 to infinity of
//             (s + 1) exp(-s H) cosh(s Z) J0(s R) / (s sinh(s H) - cosh(s H)) ds,
// t = R^2/H^2, w = Z^2/H^2, y = Y/H, all of them in 0..1, lengths times nu; F2 as in vgrn98.hpp. (Newman
// 1985, Journal of Engineering Mathematics 19, for the method.)
#pragma once

#include "base/types.hpp"
#include "green/tables/depth_tables.hpp"

// The coefficients of S for the depth H (times nu, 1e-5 to 1e5), M the root m of m tanh m = H. Their order is
// that of depth_polynomial.hpp.
void SCOEF(f32 H, f32 M, f32 (&C91)[91]);
// The coefficients of P for the depth H; M and order as for SCOEF.
void PCOEF(f32 H, f32 M, f32 (&C57)[57]);

// The coefficients of S3 for the depth H and their derivatives by H; DM = dM/dH. S3 takes out of I the images
// at 2 H - Z and 2 H + Z,
//   S3(t, w) = I(R, Z) - Phi(R, 2 H - Z) - Phi(R, 2 H + Z),  Phi(R, Y) = F2(R, Y) + 1/sqrt(R^2 + Y^2),
// with t = (2 R/H)^2 and w = (Z/(2 H))^2 in 0..1; order as for SCOEF.
void S3COEF(f32 H, f32 M, f32 DM, f32 (&C33)[33], f32 (&DC33)[33]);

// Interval of H, counted from 0, and its local variable v. H = 1 belongs to 1-2 (S, S3) or to the
// last one (P).
struct DepthVariable {
    int interval;
    double v;
    double slope; // dv/dH
};
DepthVariable depth_variable(f32 H, bool one_is_small);

// The coefficients of `table` at H: table.terms values; with `slopes` also their derivatives by H.
void depth_coefficients(const DepthTable &table, DepthVariable at, f32 H, f32 M, f32 *coefficients,
                        f32 DM = 0, f32 *slopes = nullptr);
