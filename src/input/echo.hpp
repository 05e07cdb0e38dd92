// Pieces of the input echo.
#pragma once

#include "base/platform.hpp"
#include "state/state.hpp"

// Looks for the MOD file of a body, named after FILNAM(source); with it IMDRUN becomes 1 unless it is -1 and
// the file's name and titles are echoed. Without it this is a first pass: IMDRUN = -1, NEWMDS(body) changes
// its sign, and the PRE file is begun with its two heading lines. FILNAM(body+4) becomes the name of the one
// or the other.
[[nodiscard]] Status MODCHK(int body, int source, const DateTime &now, RunState &run);
