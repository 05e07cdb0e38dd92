// What depends only on the period and the depth of the wave Green function: worked out once per period by
// HGRN98, held by the thread of the period and handed to every evaluation. Lengths are times nu, the
// infinite-depth wave number.
#pragma once

#include "base/types.hpp"
#include "green/depth_boxes.hpp"

struct GSTATE {
    f32 HINV = 0;             // 1 / H, H the depth times nu
    f32 HTWO = 0;             // 2 H
    f32 HINV2 = 0;            // 1 / H^2
    f32 HINV2X2 = 0;          // 2 / H^2
    f32 HINV2X8 = 0;          // 8 / H^2
    f32 RK = 0;               // k, the positive root of k tanh(k H) = 1: finite-depth wave number / nu
    f32 RKSQ = 0;             // k^2
    f32 RKTWO = 0;            // 2 k
    double quarter_turns = 0; // 2 k / pi: phases k R at a distance are formed in double precision
    f32 CFOUR = 0;            // 4 C, C the normalisation of the propagating mode

    // Bessel functions of k R, times C. For k R <= 3 polynomials in R^2, constant first.
    f32 PJ0[6] = {}; // 2 pi C J0(k R)
    f32 PY0[7] = {}; // 2 pi C Y0(k R) less (2/pi) ln(k R) 2 pi C J0(k R)
    f32 PJ1[6] = {}; // R times it: 2 pi C k J1(k R)
    f32 PY1[6] = {}; // R times it: 2 pi C k Y1(k R) less (2/pi) ln(k R) 2 pi C k J1(k R), plus 4 C / R
    // For k R > 3 polynomials in 1/R^2; a further 1/sqrt(R) is left to the evaluation.
    f32 QP0[6] = {}; // cosine factor of J0
    f32 QQ0[6] = {}; // times 1/R: sine factor of J0
    f32 QP1[6] = {}; // sine factor of J1
    f32 QQ1[6] = {}; // times 1/R: cosine factor of J1

    f32 EVK[5] = {};    // evanescent wave numbers mu(n) / nu
    f32 EVA[5][7] = {}; // (7,5), per mode a polynomial in 1/R for 2 C(n) K0(mu R), without exp(-mu R)/sqrt(R)
    f32 EVB[5][7] = {}; // (7,5), the same for 2 C(n) mu K1(mu R)

    f32 reach[5] = {}; // R beyond which mode n and those above it are lost in the rounding of the function

    f32 COEF91[91] = {}; // polynomial S of the near field for this H
    f32 COEF57[57] = {}; // polynomial P of the near field for this H
    DepthBoxes boxes;    // both, by boxes
};

// Zeroes the 13 arrays (and the scalars); directly before HGRN98, once per period.
void INIT_HGRN98_ARRAYS(GSTATE &state);

// Fills `state` for the depth H (times nu) and sets RATIO = k. Returns IERR: 0, or 1 when H is outside
// 1e-5..1e5, and then neither RATIO nor `state` is touched; the caller has the message.
[[nodiscard]] int HGRN98(f32 H, f32 &RATIO, GSTATE &state);
