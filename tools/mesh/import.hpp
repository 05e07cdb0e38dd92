// vorda-mesh import: a geometry file of a mesh or CAD model of another program.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

// Adds the command. The result does it and returns the exit code, -1 when the command was not given.
std::function<int()> add_import(CLI::App &app);
