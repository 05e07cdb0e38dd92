// The geometry file of a body whose free surface was generated.
#pragma once

#include "state/state.hpp"

// Writes the panels of a body, of which the first is `first`, as a geometry file. Read again, the file gives
// the same panels, in the same units and with the same symmetry. A dipole block follows for a body with
// dipole panels. The file is complete or is not there. Failed: it cannot be written, or it would replace the
// geometry file.
[[nodiscard]] Status write_generated_geometry(const RunState &run, int body, int first,
                                              const std::string &name);
