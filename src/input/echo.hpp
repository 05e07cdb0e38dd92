// Pieces of the input echo.
#pragma once

#include "base/platform.hpp"
#include "state/state.hpp"

// Block size NBLKSZ, size of the last block NBLKLS and number of blocks ISOLVE for NEQN panels, with ISOLVE
// the wished number. ISOLVE becomes 0 (iterative) for blocks of one panel, 1 (direct) for one block.
void BLKSIZ(int NEQN, int &NBLKSZ, int &NBLKLS, int &ISOLVE);

// Looks for the MOD file of a body, named after FILNAM(source); with it IMDRUN becomes 1 unless it is -1 and
// the file's name and titles are echoed. Without it this is a first pass: IMDRUN = -1, NEWMDS(body) changes
// its sign, and the PRE file is begun with its two heading lines. FILNAM(body+4) becomes the name of the one
// or the other.
[[nodiscard]] Status MODCHK(int body, int source, const DateTime &now, RunState &run);
