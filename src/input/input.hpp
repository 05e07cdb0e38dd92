// The input stage of a run: reading, echo and cross-checks, in the order in which the driver calls them.
#pragma once

#include "state/state.hpp"

// Reads all that the user supplied: configuration, file names, control file, geometry. Fills Options, Files,
// Bodies, Mesh.XVER, Waterline, Dipoles and Periods (but WVNH). An old result file is removed here.
[[nodiscard]] Status GETIP1(RunState &run);

// The interior panels that IRR=3 asks for, written to a generated file for each body, named after its own.
// Failed: as FSGEN, or memory for dipole entries.
[[nodiscard]] Status generate_free_surface(RunState &run);

// Settles the solver for NEQN panels: a direct one that MAXSCR does not hold becomes
// block-iterative; NBLKSZ, NBLKLS.
void choose_solver(Options &opt, int NEQN);

// Block size NBLKSZ, size of the last block NBLKLS and number of blocks ISOLVE for NEQN panels, with ISOLVE
// the wished number. ISOLVE becomes 0 (iterative) for blocks of one panel, 1 (direct) for one block.
void BLKSIZ(int NEQN, int &NBLKSZ, int &NBLKLS, int &ISOLVE);

// Writes the names and titles of the input files to the list file and to HDRSCR, and finds out about extra
// modes in that order: IMDRUN, NMODES, and NBODY = 1 for a single body.
[[nodiscard]] Status INECHO(RunState &run);

// After the panels have their marks: a hull of no draught has no equation at infinite frequency. Failed:
// there are both; the message names the first such panel.
[[nodiscard]] Status check_limits(const RunState &run);

// Tests the input as a whole, NCORE included, and tells all its faults, not only the first.
[[nodiscard]] Status INCHK(const RunState &run);
