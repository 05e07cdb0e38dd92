// The optional configuration file.
#pragma once

#include "input/typed.hpp"
#include "state/state.hpp"

// Reads the file `name`: a line for each setting, KEYWORD = value. Without the file the defaults of Options
// stand. Sets KFLAG of a keyword false when the file has it, and grows NEWMDS to the bodies that are named.
// NEWMDS and XBODY have room for one body at least.
[[nodiscard]] Status RDCONF(const std::string &name, Options &opt, Array<int, 1> &NEWMDS, TypedInput &typed);
