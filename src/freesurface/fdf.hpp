// The free-surface panels of a run for wave drift damping.
#pragma once

#include "state/state.hpp"

// Reads the panels of the file FILNAM(5), made by FDFSTG or by hand, into `surface`. Failed: the file is not
// there, short, not numbers or goes on with what is no integer, a panel has no area, or memory is short; the
// message is out.
[[nodiscard]] Status RDFDF(const RunState &run, SurfaceMesh &surface);

// Makes the file from the waterline when it is not there, and reads it. Failed: the body is moved or turned
// by XBODY, or the file cannot be made or read; the message is out.
[[nodiscard]] Status FDFSTG(const RunState &run, SurfaceMesh &surface);
