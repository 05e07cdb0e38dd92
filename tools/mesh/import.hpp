// vorda-mesh import: a geometry file of a mesh or CAD model of another program.
#pragma once

#include "command.hpp"

void add_import(CLI::App &app, MeshCommands &commands);
