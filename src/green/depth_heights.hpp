// What one of the two points of a pair brings to the modes of finite depth. It belongs to the point: a period
// works it out once for each panel, not for each pair.
#pragma once

#include "base/array.hpp"
#include "green/gstate.hpp"

// A column for each factor: 1 + e and 1 - e, e = exp(-2 k (H - z)), then cosine and sine of mu(n) (H - z) for
// n = 1 to 5. Columns are whole blocks long, what is beyond the points is any number.
constexpr int HEIGHT_FACTORS = 12;
struct HeightFactors {
    Array<f32, 2> value; // (points and more, 12); empty: every pair works them out, with the same bits
    int points = 0;
    // Of n points at the depths Z, for the depth H > 0 of the water, lengths times nu; stays empty where the
    // processor has no AVX-512. False: no memory.
    [[nodiscard]] bool make(int n, const f32 *Z, f32 H, const GSTATE &state);
};
