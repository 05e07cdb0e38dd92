// The optional configuration file.
#pragma once

#include "input/typed.hpp"
#include "state/state.hpp"

// Reads the file `name`: a line for each setting, KEYWORD = value. Without the file the defaults of Options
// stand. Sets KFLAG of a keyword false when the file has it. Warns of lines that look like a setting and are
// none. XBODY has room for one body at least.
[[nodiscard]] Status RDCONF(const std::string &name, Options &opt, TypedInput &typed);
