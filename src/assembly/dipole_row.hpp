// Wave coefficients of pairs with dipole panels. The row of a dipole panel is a normal derivative at the
// panel, its column the influence of a dipole layer. The second derivatives that this takes come from full
// records of the Green function.
#pragma once

#include "assembly/wave_row.hpp"

// All pairs of a part of row I with one image, in one direction.
struct DirectedPairs {
    RowPart part;
    int image;          // 1 to 4
    bool row;           // field panel I, source panels J; else field panels J, source panel I
    int MODE;           // of GRADSG and GHESS: 0, or 1 when z of the records is the depth of the field point
    std::int64_t entry; // of the first J among the coefficients of all images, from 0
};

[[nodiscard]] bool has_dipole_pair(const Dipoles &dipoles, const RowPart &part);

// Clears S and D of pairs with a dipole panel as field panel, and, with velocities, V of those with
// one as source.
void start_dipole_pairs(const Dipoles &dipoles, const DirectedPairs &pairs, WaveRow &row);

// Adds the points of which that of the first J stands at `point`, from 0, one for each J, to the pairs that
// were cleared. weight(J - from) (column: weight(1) for all) is the area of the source panel that the point
// stands for.
void add_dipole_points(const AssemblyFrame &frame, const DirectedPairs &pairs, std::int64_t point,
                       const f32 *weight, WaveRow &row);

// What a dipole panel adds to its own diagonal: normal velocity through a porous plate per unit jump of
// potential, times 4 pi.
c32 porosity_term(const Dipoles &dipoles, const PeriodWave &wave, int I);
