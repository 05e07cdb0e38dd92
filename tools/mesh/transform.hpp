// vorda-mesh transform: geometry files out of geometry files.
#pragma once

#include "command.hpp"

void add_transform(CLI::App &app, MeshCommands &commands);
