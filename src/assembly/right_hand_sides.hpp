// The right-hand sides that are summed while the rows of the source influence are at hand, so that the source
// matrix itself is never kept.
#pragma once

#include "assembly/row_part.hpp"
#include "assembly/thread_state.hpp"
#include "base/split.hpp"

// What multiplies the source influence: the normal velocities of the modes by solution column and, with
// ISCATT=1, minus the incident normal velocity by heading and class, on lids what they take away of the
// incident wave, zero on panels that take no part.
struct SourceWeights {
    Array<f32, 2> velocity;    // (NEQN,NSYMD)
    Array<f32, 3> incident_re; // (NEQN,NBETAM,NSYMR)
    Array<f32, 3> incident_im;
    bool radiation = false;
    bool diffraction = false;
    [[nodiscard]] bool make(const RunState &run, f32 NUL, const ThreadState &thread);
};

// Sums of one block of rows over all panels: to its own rows from panels J <= I, to earlier rows J
// from its panels.
struct BlockSums {
    // (last row of the block, columns): the radiation columns, then heading and class of diffraction.
    Array<f32, 2> re, im;
    [[nodiscard]] bool alloc(int last, const RunState &run);
    void clear();
};

// The source influence of a part of row I in class s: SROW for its panels J, SCOL for those with J < I.
struct SourceRow {
    const RowPart &part;
    int s;
    ConstSplit SROW, SCOL;
};
// Radiation takes the wave part of the source influence, diffraction the whole of it.
void add_radiation(const RunState &run, const SourceWeights &weights, const SourceRow &row, BlockSums &sums);
void add_diffraction(const RunState &run, const SourceWeights &weights, const SourceRow &row,
                     BlockSums &sums);
// Starts PHIR from the Rankine share, in memory or on unit 61; with ISCATT=1 clears PHID. Failed: the unit
// cannot be read; the message is out.
[[nodiscard]] Status start_right_hand_sides(const RunState &run, f32 NUL, ThreadState &thread);

// Adds to the right-hand sides of dipole panels -4 pi times the normal velocity there: in thread.PHIR that of
// the modes, but not for IDIP=3, with ISCATT=1 in thread.PHID that of the scattered wave, thread.SRCD.
void add_dipole_rows(const RunState &run, ThreadState &thread);
// Clears the right-hand sides of porous plates, for infinite frequency, where their jump is 0.
void clear_open_plates(const RunState &run, ThreadState &thread);
// Adds the sums of a block, whose last row is `last`, to PHIR and PHID.
void add_block(const RunState &run, const SourceWeights &weights, const BlockSums &sums, int last,
               ThreadState &thread);
