// The extra modes of a body in the second pass of their analysis.
#pragma once

#include "geometry/pregeo.hpp"

// Reads the MOD file FILNAM(body+4) of a body with NEWMDS(body) > 0 extra modes: their symmetry into MODE,
// their normal velocities on the panels of the body into VEL, both from row range.mode + 6 on, and the
// rows and columns of the hydrostatic matrix that belong to them into the block of CHYD that starts at the
// first mode of the body. The rigid block of CHYD stays as computed. Failed: the file is short, or differs
// from the run.
[[nodiscard]] Status RDMOD(const Options &opt, const Files &files, const BodyRange &range, Bodies &bodies,
                           Mesh &mesh);
