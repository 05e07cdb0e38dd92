// One Gauss-Seidel pass over each form of the matrix, for all columns at work: y = T^-1 x and r = -U y, A = T
// + U with T the lower triangle or, with blocks, the block lower triangle. Each element is read once for all
// columns. The work is cut in fixed pieces, so that results do not depend on the thread count.
#pragma once

#include "base/array.hpp"
#include "base/record_file.hpp"
#include "solve/itrcc.hpp"

// The full matrix in memory.
struct FullMatrix {
    const c32 *A; // column order (N,N)
    int N;
};
void sweep_full(const FullMatrix &matrix, const std::vector<SweepColumn> &columns);

// The full matrix with the factors of its diagonal blocks beside it.
struct FullBlocks {
    const c32 *A; // column order (N,N)
    int N;
    int NBLKSZ;      // order of all blocks but the last
    const c32 *LU;   // factors of the block that starts behind L rows from L NBLKSZ on, in column order
    const int *IPIV; // their pivots, counted within the block (N)
};
void sweep_full_blocks(const FullBlocks &matrix, const std::vector<SweepColumn> &columns);

// Buffers of the sweeps over files: RUN_ROWS records are worked together.
constexpr int RUN_ROWS = 4;

// Packed rows, the diagonal in reciprocal form: the first NCORE in memory, the others on a unit that stands
// at its start and is left so.
struct PackedRows {
    const c32 *AMAT; // row I from (I-1)^2 on: elements 1..I, then the column elements 1..I-1
    int N;
    int NCORE;
    RecordFile *unit;
    View<c32, 2> buffer; // (2 N,RUN_ROWS)
};
// Failed: " Error reading LHS scratch file in ITRCC ".
[[nodiscard]] Status sweep_packed(const PackedRows &matrix, const std::vector<SweepColumn> &columns);

// Off-diagonal rows, off-diagonal columns and factored diagonal blocks, each on a unit that stands at its
// start and is left so.
struct BlockFiles {
    int N;
    int NBLKSZ;
    RecordFile *rows;
    RecordFile *columns;
    RecordFile *blocks;
    c32 *AMAT;           // the block at work (NBLKSZ,NBLKSZ)
    const int *IPIV;     // pivots, counted within each block (N)
    View<c32, 2> buffer; // (2 N,RUN_ROWS)
};
[[nodiscard]] Status sweep_block_files(const BlockFiles &matrix, const std::vector<SweepColumn> &columns);
