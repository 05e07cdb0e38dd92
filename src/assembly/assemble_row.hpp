// One row of the system of a period, from its Rankine part to its finished entries.
#pragma once

#include "assembly/class_sums.hpp"

// Work of one assembling thread.
struct RowWork {
    WaveRow row;
    ClassWork sums;
    [[nodiscard]] bool alloc(const RunState &run);
};

// The row with its Rankine part in the tile and the pair codes `code` gets its finished entries there, and
// its share of the right-hand sides in `sums`. Failed: an image has no value; the message is out.
[[nodiscard]] Status assemble_row(const AssemblyFrame &frame, const TileRow &at, const std::uint16_t *code,
                                  RowWork &work, BlockSums &sums);
