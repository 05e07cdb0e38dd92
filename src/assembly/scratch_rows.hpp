// Finished rows of a period on their way to AMAT and the scratch files.
#pragma once

#include "assembly/scratch_store.hpp"
#include "assembly/thread_state.hpp"

// Stores the rows of one matrix, which come strictly in order. The dipole matrix has class 1 in AMAT or on
// the block units; the source matrix (on IUE) has all classes in row records.
struct RowStore {
    const RunState &run;
    UnitList &units;
    c32 *AMAT;            // of the dipole matrix; null for the source matrix
    int IC = 1;           // base of the unit list: class s has its rows on entry IC + s - 1
    Array<c32, 1> packed; // the row at work: ROW(1..I), COL(1..I-1)
};

// Opens the units that rows 1 to NCORE go to. Failed: " RAM too small to allocate WAVEGR arrays ".
[[nodiscard]] Status open_rows(RowStore &store);
// Row I: ROW[s] holds elements 1..I, COL[s] elements 1..I-1 of class s = 1..NSYMR (entry 0 is unused).
[[nodiscard]] Status store_row(RowStore &store, int I, const Split (&ROW)[5], const Split (&COL)[5]);
// Closes the units and keeps their files.
[[nodiscard]] Status close_rows(RowStore &store);
