// The near-field polynomials S and P of a period, expanded anew on boxes: shorter ones that a processor picks
// by points from registers.
#pragma once

#include "base/types.hpp"
#include "green/depth_polynomial.hpp"

// Boxes in t and in the vertical variable v, each a quarter long: box i + 4 j from 0 holds t from i/4 to
// (i+1)/4 and v from j/4. Local variables: x = 8 t - (2 i + 1), u = 8 v - (2 j + 1), from -1 to 1.
constexpr int BOX_SIDE = 4, BOXES = BOX_SIDE * BOX_SIDE;

// As ShapeS and ShapeP: row by row, the highest power of u first. What is left out of S is at most a
// fifth, of P half of their errors that docs/numerics.md lists, at any depth.
struct BoxS {
    static constexpr int ROWS = 7, TERMS = 44;
    static constexpr int DEGREE[ROWS] = {2, 4, 5, 6, 6, 7, 7};
};
struct BoxP {
    static constexpr int ROWS = 8, TERMS = 31;
    static constexpr int DEGREE[ROWS] = {0, 1, 2, 3, 4, 4, 4, 5};
};
static_assert(row_start<BoxS>(BoxS::ROWS) == BoxS::TERMS);
static_assert(row_start<BoxP>(BoxP::ROWS) == BoxP::TERMS);

// (16,44) and (16,31): coefficients by terms.
struct DepthBoxes {
    alignas(64) f32 S[BoxS::TERMS][BOXES] = {};
    alignas(64) f32 P[BoxP::TERMS][BOXES] = {};
};

// From the coefficients of a depth, once per period.
void depth_boxes(const f32 (&C91)[91], const f32 (&C57)[57], DepthBoxes &boxes);
