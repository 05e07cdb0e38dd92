// How a command of this program hands its options over and is run.
#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <vector>

struct MeshCommand {
    CLI::App *app;
    std::function<int()> run; // the exit code; messages are out
};
using MeshCommands = std::vector<MeshCommand>;
