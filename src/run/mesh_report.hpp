// What the run was given, and what is wrong with it: the block of the report behind the input echo.
#pragma once

#include "state/state.hpp"

// Writes to the list file: for each body what its mesh measures and, as warnings, what is wrong with it; then
// the settings in force, the water and the waves. After the marks of the panels (IFSP), the symmetry lists
// and the plan of the memory. Changes nothing.
void report_mesh(const RunState &run);
