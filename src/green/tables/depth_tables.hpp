// Tables of the near-field polynomials of finite depth: every coefficient is a polynomial in a local variable
// v of the depth H (times nu), by intervals of H.
#pragma once

#include "base/types.hpp"

constexpr int DEPTH_INTERVALS =
    9; // from deep to shallow: above 16, 12-16, 8-12, 6-8, 4-6, 3-4, 2-3, 1-2, below 1

// The polynomials of one interval: coefficient n (from 1) is the polynomial with the values first[n-1] to
// first[n] - 1 of `value` (both counted from 1), highest power first.
struct DepthInterval {
    const int *first;
    const f32 *value;
};

struct DepthTable {
    int terms; // coefficients: 91, 57 or 33
    DepthInterval interval[DEPTH_INTERVALS];
    // Below 1 the polynomials give H times the coefficient, and of `log_terms` coefficients, whose numbers
    // from 1 are `log_position`, a further polynomial in H times ln m is taken off.
    int log_terms;
    const int *log_position;
    DepthInterval logarithm;
};

extern const DepthTable SCOEF_TABLE;  // polynomial S, scoef_table.cpp
extern const DepthTable PCOEF_TABLE;  // polynomial P, pcoef_table.cpp
extern const DepthTable S3COEF_TABLE; // polynomial S3, s3coef_table.cpp
