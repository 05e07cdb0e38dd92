// The parts of the assembly that its two stores share.
#pragma once

#include "assembly/class_sums.hpp"
#include "assembly/wavegr.hpp"

// Work of one assembling thread.
struct RowWork {
    WaveRow row;
    ClassWork sums;
    Array<int, 1> code;
    [[nodiscard]] bool alloc(const RunState &run);
};

// Row I, row a of its tile, from its Rankine part in the tile and the pair codes `stored` to its finished entries in the
// tile and its share of the right-hand sides. Failed: an image has no value; the message is out.
[[nodiscard]] Status assemble_row(const AssemblyFrame &frame, const GSTATE &gstate, int I, int a, const int *stored,
                                  RowWork &work, TileRows &tile, BlockSums &sums);

// All rows of a period whose matrices are not in memory, from the Rankine records to AMAT and the scratch files.
// Failed: memory, a scratch file, or a row without a value; the message is out.
[[nodiscard]] Status assemble_on_scratch(const AssemblyFrame &frame, ThreadState &thread);
