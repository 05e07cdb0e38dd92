// The rows of a tile of the wave assembly, with the columns that go with them, between the Rankine store and
// the matrices of the period.
#pragma once

#include "assembly/thread_state.hpp"
#include "assembly/tiles.hpp"

// The matrices that are assembled: dipole influence, with ISOR=1 normal velocity and the
// three velocity components.
enum MatrixPlane { PLANE_D = 0, PLANE_E = 1, PLANE_V = 2 };

// Complex rows and columns in split form. Row a = 0..TILE-1 of a tile has its elements J = 1..I, its column J
// = 1..I-1.
struct TileRows {
    int planes = 1;           // 1, or 5 with ISOR=1
    bool own_columns = false; // each row keeps its column; else all use one, stored before the next row
    bool keep_source = false; // the Rankine source influence is needed, too
    [[nodiscard]] bool alloc(int NEQN, int NSYMR, const Options &opt, bool columns_of_their_own);

    Array<int, 1> columns; // columns, from 0, in which the rows have a Rankine part (NEQN)

    Split row(int a, int s, int plane = PLANE_D) { return at(a, s, plane); }
    Split column(int a, int s, int plane = PLANE_D) { return at(TILE + (own_columns ? a : 0), s, plane); }
    // Rankine part of SROW and SCOL, real.
    f32 *source_row(int a, int s) { return &source_(1, a + 1, s); }
    f32 *source_column(int a, int s) { return &source_(1, TILE + (own_columns ? a : 0) + 1, s); }

  private:
    Split at(int line, int s, int plane) {
        const int last = plane + planes * (s - 1) + 1;
        return {&values_(1, 1, line + 1, last), &values_(1, 2, line + 1, last)};
    }
    Array<f32, 4> values_; // (NEQN, real or imaginary, rows then columns, plane and class)
    Array<f32, 3> source_; // (NEQN, rows then columns, NSYMR)
};

// Row I at work, row a of its tile.
struct TileRow {
    int I, a;
    TileRows &tile;
    Split row(int s, int plane = PLANE_D) const { return tile.row(a, s, plane); }
    Split column(int s, int plane = PLANE_D) const { return tile.column(a, s, plane); }
};

// Starts the rows first..last from the store in memory: the plane of the logarithm counts NUL times.
void start_rows(const RunState &run, f32 NUL, int first, int last, TileRows &tile);
// Starts the column that belongs to row I, row a of its tile.
void start_column(const RunState &run, f32 NUL, int I, int a, TileRows &tile);
// Puts the finished column of row I and, tile by tile, the finished rows into the matrices in memory.
void store_column_of(int NSYMR, int I, int a, TileRows &tile, ThreadState &thread);
void store_rows(int NSYMR, int first, int last, TileRows &tile, ThreadState &thread);
