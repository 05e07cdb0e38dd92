// The unit of work of the Green function: a few points of one method side by side, and the kernels that fill
// it.
#pragma once

#include "base/simd.hpp"
#include "green/tables/ftab.hpp"
#include "green/vgrn98.hpp"

// Lanes of a block: one AVX-512 register. A block is always evaluated whole, with the last point repeated
// where points are missing, so no lane runs through a scalar remainder loop and a value does not depend on
// its lane. Shorter than BATCH because a row of the assembly scatters its points over some fifty boxes, most
// of them with few points.
constexpr int GREEN_LANES = 16;
static_assert(BATCH % GREEN_LANES == 0);

struct GreenBlock {
    alignas(64) f32 X[GREEN_LANES]; // R
    alignas(64) f32 Y[GREEN_LANES]; // z + zeta
    alignas(64) f32 D[GREEN_LANES]; // z - zeta
    alignas(64) int ISNG[GREEN_LANES];
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

// Add to the real parts: +1/r to the lanes of ISNG = 0; +2 ln(r1 + Y) to all lanes.
void ADDDIR(GreenOrder order, GreenBlock &block);
void ADDLOG(GreenOrder order, GreenBlock &block);
