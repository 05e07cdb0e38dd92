// The unit of work of the Green function: a few points of one method side by side, and the kernels
// that fill it.
#pragma once

#include "base/simd.hpp"
#include "green/gstate.hpp"
#include "green/tables/ftab.hpp"
#include "green/vgrn98.hpp"

// Lanes of a block: one AVX-512 register. A block is always evaluated whole, with the last point repeated
// where points are missing, so no lane runs through a scalar remainder loop and a value does not depend on
// its lane. Shorter than BATCH because a row of the assembly scatters its points over some fifty boxes, most
// of them with few points.
constexpr int GREEN_LANES = 16;
static_assert(BATCH % GREEN_LANES == 0);

// n points in whole blocks.
constexpr int padded(int n) {
    return (n + GREEN_LANES - 1) / GREEN_LANES * GREEN_LANES;
}

struct GreenBlock {
    alignas(64) f32 X[GREEN_LANES]; // R
    alignas(64) f32 Y[GREEN_LANES]; // z + zeta
    alignas(64) f32 D[GREEN_LANES]; // z - zeta
    // Finite depth only: H - z and H - zeta, the heights above the bottom. The depth A = 2 H - Y of the
    // bottom image is their sum, which keeps its digits near the bottom.
    alignas(64) f32 ZB[GREEN_LANES];
    alignas(64) f32 ZETAB[GREEN_LANES];
    alignas(64) int ISNG[GREEN_LANES];
    alignas(64) int IBOT[GREEN_LANES]; // finite depth only
    alignas(64) f32 re[GREEN_VALUES][GREEN_LANES];
    alignas(64) f32 im[GREEN_VALUES][GREEN_LANES];
};

// The Y band of a table row, 0 to 3: Y = band + t, 4 to 7: 16/Y = 7 - band + t.
constexpr int table_band(int row) {
    return row > 40 ? row - 41 : (row - 1) / 5;
}
// For rows of X > 3: 15/X = step + u.
constexpr int table_step(int row) {
    return 5 * (table_band(row) + 1) - row;
}

// Deep water; each stores the record of a block whose points lie in one row of FTAB (1 to 48). GINFS: X <= 3,
// GINFL: X > 3.
void GINFS(int row, GreenOrder order, GreenBlock &block);
void GINFL(int row, GreenOrder order, GreenBlock &block);
// X <= 3, Y < 4 and ISNG >= 3: with the logarithm taken out.
void GINFG(int row, GreenOrder order, GreenBlock &block);

// The same real parts for the near field of finite depth; the imaginary parts are left alone.
void FINFS(int row, GreenOrder order, GreenBlock &block);
void FINFL(int row, GreenOrder order, GreenBlock &block);
void FINFG(int row, GreenOrder order, GreenBlock &block);

// Finite depth, the propagating mode: stores the imaginary parts and, with `far` (all lanes R > H), the real
// parts. GPROPS: k R <= 3, GPROPL: k R > 3.
void GPROPS(const GSTATE &state, bool far, GreenOrder order, GreenBlock &block);
void GPROPL(const GSTATE &state, bool far, GreenOrder order, GreenBlock &block);
// R > H: adds the first evanescent modes, `modes` of them (0 to 5), to the real parts, which then hold the
// complete function.
void GEVAN(const GSTATE &state, int modes, GreenOrder order, GreenBlock &block);

// Add to the real parts, with rb the distance of the image below the bottom:
void ADDDIR(GreenOrder order, GreenBlock &block); // +1/r to the lanes of ISNG = 0
void ADDBOT(GreenOrder order, GreenBlock &block); // +1/rb to the lanes of IBOT = 0
void ADDLOG(GreenOrder order, GreenBlock &block); // +2 ln(r1 + Y) to all lanes
void SUBDIR(GreenOrder order, GreenBlock &block); // -1/r to the lanes of ISNG >= 1
void SUBIMG(GreenOrder order, GreenBlock &block); // -1/r1 to the lanes of ISNG >= 2
void SUBBOT(GreenOrder order, GreenBlock &block); // -1/rb to the lanes of IBOT = 1
