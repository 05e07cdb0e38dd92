// The store of a run whose influence matrices are not held in memory: sequential files of records, one
// position each, used by one thread. Complex numbers are pairs of f32.
#pragma once

#include "base/array.hpp"
#include "base/record_file.hpp"
#include "base/split.hpp"
#include "state/state.hpp"

// Eight named units, counted from 1. The file of a unit is "SCRATCH" and the one character with
// the unit's code.
struct UnitList {
    explicit UnitList(int first)
        : file{RecordFile(first),     RecordFile(first + 1), RecordFile(first + 2), RecordFile(first + 3),
               RecordFile(first + 4), RecordFile(first + 5), RecordFile(first + 6), RecordFile(first + 7)} {}
    RecordFile &operator()(int k) { return file[k - 1]; }
    RecordFile file[8];
};

// All files of the store; the driver owns one. Units of the matrix of class s, S classes in all:
//   direct, iterative_full   s: rows, later the saved matrix or its factors
//   iterative_packed         s: rows to NCORE; S+s: the rows behind them
//   blocks                   s: rows, later the saved blocks; S+1, S+2: off-diagonal rows and columns,
//                            S+3: diagonal
//                            blocks, S+4: their factors
// Class 1 of the dipole matrix goes to AMAT or the block units straight from the assembly.
struct ScratchStore {
    RecordFile RANKINE{60};  // coefficient rows of RANKIN, open from there to the end of the run
    RecordFile RANKRHS{61};  // Rankine share of the radiation right-hand sides
    RecordFile VELOCITY{62}; // velocity rows of a period, ISOR=1
    UnitList IUL{64};        // rows, blocks and factors of the dipole matrix
    UnitList IUE{72};        // the same of the source matrix, ISOR=1
};

// Place of packed row I (2 I - 1 values: the row to its diagonal, then the column) in a vector of
// rows, from 0.
inline std::int64_t packed_place(std::int64_t I) {
    return (I - 1) * (I - 1);
}
// Order of block q = 0 .. ISOLVE-1 of the block-iterative solver.
inline int block_order(const Options &opt, int q) {
    return q == opt.ISOLVE - 1 ? opt.NBLKLS : opt.NBLKSZ;
}

// Opens a named unit at its first record. A refusal is reported; the first use of the unit then fails.
void OPEN1(RecordFile &unit);
// Closes it and, unless KEEP, removes the file. Failed: what was buffered does not fit on the disk.
[[nodiscard]] Status CLOSE1(RecordFile &unit, bool KEEP);
// The same for `count` units of a list from entry `first` on.
void OPENSC(UnitList &units, int first, int count);
[[nodiscard]] Status CLOSSC(UnitList &units, int first, int count, bool KEEP);

// Reads the column (1..I-1) and the row (1..I) of a coefficient from unit 60. Plane 0 sets the real parts and
// clears the imaginary ones; plane 1 adds NUL times the record to the real parts. `buffer` holds I values.
[[nodiscard]] Status RANLH(RecordFile &unit, Split COL, Split ROW, int I, int plane, f32 NUL, f32 *buffer);
// The same for the three components of the velocity; `buffer` holds 3 I values.
[[nodiscard]] Status RANVEL(RecordFile &unit, const Split (&COL)[3], const Split (&ROW)[3], int I, int plane,
                            f32 NUL, f32 *buffer);

// A row record: ROW(1..I) with the diagonal last, COL(1..I-1).
[[nodiscard]] Status WRROW(RecordFile &unit, const c32 *ROW, const c32 *COL, int I);
// The off-diagonal parts ROW(1..L) and COL(1..L), one record on each of two units.
[[nodiscard]] Status WROFFD(RecordFile &rows, RecordFile &columns, const c32 *ROW, const c32 *COL, int L);
// A diagonal block of order B in column order, one record.
[[nodiscard]] Status WRBLK(RecordFile &unit, const c32 *A, int B);
// Sets A(n,1..n) = ROW and A(1..n-1,n) = COL in a matrix with leading dimension LD.
void PUTBRD(c32 *A, const c32 *ROW, const c32 *COL, int n, int LD);
// Reads N row records into a full matrix.
[[nodiscard]] Status RDROWS(RecordFile &unit, View<c32, 2> A, int N);
// A matrix row by row and its pivots (null: none), from the first record on.
[[nodiscard]] Status WRLU(RecordFile &unit, View<const c32, 2> A, const int *IPIV, int N);
[[nodiscard]] Status RDLU(RecordFile &unit, View<c32, 2> A, int *IPIV, int N);
// The velocity records of row I, per class s = 1..NSYMR: VROW(1..I,1..3,s), VCOL(1..I-1,1..3,s).
[[nodiscard]] Status VWRITE(RecordFile &unit, View<const c32, 3> VROW, View<const c32, 3> VCOL, int I,
                            int NSYMR);

// Rewinds a unit; a refusal is a write fault, since what is buffered goes out here.
[[nodiscard]] Status rewind_unit(RecordFile &unit);
