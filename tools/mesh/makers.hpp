// The makers of vorda-mesh: one table of names, options and routines.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

// Adds a command for each maker. The result writes the file of the one that was parsed and returns the exit
// code: 1 when the sizes are refused or the file cannot be written, the message being out; there is no file
// then. It returns -1 when none was parsed.
std::function<int()> add_makers(CLI::App &app);
