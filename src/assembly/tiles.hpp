// Moves between rows that are worked on one at a time and column-major matrices: TILE neighbouring rows
// together, so that every touch of the matrix is a run of TILE elements.
#pragma once

#include "base/split.hpp"
#include "state/state.hpp"

#include <cstdint>

constexpr int TILE = NEAR_ROWS;

// rows[a] (re only), element j from 0, gets plane0(I0 + a, j) + factor plane1(I0 + a, j) for the `count`
// columns j of the list. The planes point at the first row of the tile and have leading dimension lead;
// plane1 may be null.
void load_tile(int height, int count, const int *columns, const f32 *plane0, const f32 *plane1, f32 factor,
               std::int64_t lead, f32 *const *rows);
// matrix(I0 + a, j) = rows[a][j] for j < columns.
void store_tile(int height, int columns, const Split *rows, c32 *matrix, std::int64_t lead);
// column[j] = value[j].
void store_column(int n, ConstSplit value, c32 *column);
