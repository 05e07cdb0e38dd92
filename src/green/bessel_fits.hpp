// Fitted Bessel functions, x = argument (the form of Abramowitz & Stegun 9.4, economised
// for single precision).
#pragma once

#include "base/types.hpp"

// x <= 3, polynomials in (x/3)^2, constant first.
constexpr f32 J0C[6] = {6.2831845f, -14.137119f, 7.9515953f, -1.9856241f, 0.27484059f, -0.02083271f};
constexpr f32 Y0C[7] = {-0.46372604f, 10.043382f,   -8.1806326f,   2.4669123f,
                        -0.39105886f, 0.037891936f, -0.0021657159f}; // 2 pi Y0 - 4 ln(x) J0
constexpr f32 J1C[6] = {9.424777f, -10.602849f, 3.9758677f, -0.7447874f, 0.082641393f, -0.0052796095f};
constexpr f32 Y1C[6] = {-3.6955874f, 9.2199945f,   -4.5118508f,
                        0.98325205f, -0.12071377f, 0.0082515841f}; // times x/3: 2 pi Y1 - 4 ln(x) J1 + 4/x
// x > 3, polynomials in (3/x)^2, chi = x - pi/4, each over sqrt(x), the Q sets times a further 3/x:
// 2 pi J0 = P0 cos - Q0 sin, 2 pi Y0 = P0 sin + Q0 cos, 2 pi J1 = P1 sin + Q1 cos, 2 pi Y1 = Q1 sin - P1 cos.
constexpr f32 P0C[6] = {5.0132565f,     -0.039153676f, 0.0067696786f,
                        -0.0029558353f, 0.00135059f,   -0.00032640286f};
constexpr f32 Q0C[6] = {-0.20888472f,  0.013567826f,   -0.0043744161f,
                        0.0024296276f, -0.0011654174f, 0.00027635309f};
constexpr f32 P1C[6] = {5.0132565f,    0.065262713f,   -0.008730216f,
                        0.0035469043f, -0.0015812477f, 0.00037850809f};
constexpr f32 Q1C[6] = {0.62665594f,    -0.01900355f,  0.0053770631f,
                        -0.0028578106f, 0.0013487425f, -0.00031763801f};
