// vorda-mesh export: the panels of a geometry file for other programs.
#pragma once

#include "command.hpp"

void add_export(CLI::App &app, MeshCommands &commands);
