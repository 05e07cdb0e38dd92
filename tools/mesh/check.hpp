// vorda-mesh check: what the solver's report says about the mesh of a geometry file, without a run.
#pragma once

#include "body_files.hpp"

#include <CLI/CLI.hpp>

#include <functional>

// Adds the command. The result prints the report of each body and returns 0: nothing wrong, 2: there are
// findings that make numbers wrong, 1: the file cannot be read and the message is out, -1: the command was
// not given.
std::function<int()> add_check(CLI::App &app);

// The report of bodies that were read. `treated`: interior panels may be wanted, so that a body just below z
// = 0 is one that was to reach it. 0 or 2, as above.
int check_bodies(const std::vector<BodyFile> &bodies, bool treated);
