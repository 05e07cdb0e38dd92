// vorda-mesh show: a picture of the panels of a file.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>

// Adds the command. The result writes the picture and returns the exit code: 1 when the file cannot be read
// or the picture not be written, the message being out; -1: the command was not given.
std::function<int()> add_show(CLI::App &app);
