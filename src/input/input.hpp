// The input stage of a run: reading, echo and cross-checks, in the order in which the driver calls them.
#pragma once

#include "state/state.hpp"

// Reads all that the user supplied: configuration, file names, control file, geometry. Fills Options, Files,
// Bodies, Mesh.XVER, Waterline, Dipoles and Periods (but WVNH). An old result file is removed here.
[[nodiscard]] Status GETIP1(RunState &run);

// Settles the solver and its blocks, writes the names and titles of the input files to the list file and to
// HDRSCR, and finds out about extra modes: IMDRUN, NMODES, NBLKSZ, NBLKLS, and NBODY = 1 for a single body.
[[nodiscard]] Status INECHO(RunState &run);

// After the panels have their marks: a hull of no draught has no equation at infinite frequency. Failed: there are both; the
// message names the first such panel.
[[nodiscard]] Status check_limits(const RunState &run);

// Tests the input as a whole, NCORE included, and tells all its faults, not only the first.
[[nodiscard]] Status INCHK(const RunState &run);
