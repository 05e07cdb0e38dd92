// vorda-mesh transform: geometry files out of geometry files.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

// Adds the command. The result does it and returns the exit code, -1 when the command was not given.
std::function<int()> add_transform(CLI::App &app);
