// Marks of the panels in the free surface.
#pragma once

#include "state/state.hpp"

// Fills IFSP for all panels (1: in z = 0 with its normal down, -1: normal up, 0 elsewhere) and NPANS for all
// bodies. Failed: a panel that looks down lies above z = 0, or there are interior panels with IRR=0.
[[nodiscard]] Status FSMARK(const Options &opt, Bodies &bodies, Mesh &mesh);
