// The optional configuration file.
#pragma once

#include "state/state.hpp"

// Reads files.config: a line for each setting, KEYWORD = value. Without the file the defaults of Options
// stand. Sets KFLAG of a keyword false when the file has it, and grows NEWMDS to the bodies that are named.
// NEWMDS and XBODY have room for one body at least.
[[nodiscard]] Status RDCONF(RunState &run);
