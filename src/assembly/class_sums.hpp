// From the images of a row to its entries in the symmetry classes and its share of the right-hand sides.
#pragma once

#include "assembly/tile_rows.hpp"
#include "assembly/wave_row.hpp"

// Sums over the images of the part at work, one class at a time.
struct ClassWork {
    Array<f32, 2> values;   // (PART, real and imaginary of each)
    Split SROW, SCOL;       // source influence
    Split DROW, DCOL;       // wave part of the dipole influence
    Split VROW[3], VCOL[3]; // wave part of the velocities, ISOR=1
    [[nodiscard]] bool alloc(int NEQN, bool velocities);
};

// Takes the free-surface marks of the pair codes of a part of the row to EB, EFR and EFC. For pairs in the
// free surface the store holds the source integral; the free-surface condition turns it into the coefficient
// of the potential (and, with ISOR=1, of the source).
void free_surface_pairs(const AssemblyFrame &frame, const TileRow &at, const RowPart &part,
                        const std::uint16_t *code, WaveRow &row);

// Adds the image sums of the part to its entries of class s and to the right-hand sides.
void class_sums(const AssemblyFrame &frame, const TileRow &at, const RowPart &part, int s, const WaveRow &row,
                ClassWork &work, BlockSums &sums);
