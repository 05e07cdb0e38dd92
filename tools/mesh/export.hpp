// vorda-mesh export: the panels of a geometry file for other programs.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

// Adds the command. The result does it and returns the exit code, -1 when the command was not given.
std::function<int()> add_export(CLI::App &app);
