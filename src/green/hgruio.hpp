// Depth state of FGRUIO: what depends on the depth H (times nu) alone, with the derivatives by H.
#pragma once

#include "base/types.hpp"

constexpr int DEPTH_MODES = 12; // evanescent modes that are kept

struct HSTATE {
    f32 RK0 = 0;                // k, the positive root of k tanh(k H) = 1
    double quarter_turns = 0;   // 2 k / pi, as in GSTATE
    f32 RK0SQ = 0;              // k^2
    f32 RK0X2 = 0;              // 2 k
    f32 DRK0 = 0;               // dk/dH
    f32 CN0 = 0;                // C, the normalisation of the propagating mode
    f32 DCN0 = 0;               // dC/dH
    f32 MU[DEPTH_MODES] = {};   // (12) evanescent wave numbers mu(n)
    f32 MUSQ[DEPTH_MODES] = {}; // (12) mu^2
    f32 DMU[DEPTH_MODES] = {};  // (12) dmu/dH
    f32 CMU[DEPTH_MODES] = {};  // (12) mode factor sqrt(2 pi / mu) (mu^2 + 1) / (H (mu^2 + 1) - 1)
    f32 DCMU[DEPTH_MODES] = {}; // (12) its derivative by H
    f32 S3C[33] = {};           // (33) polynomial S3 of the near field, depth_coefficients.hpp
    f32 DS3C[33] = {};          // (33) its derivative by H at fixed t and w
};

// Fills all of `state` for H > 0.
void HGRUIO(f32 H, HSTATE &state);
