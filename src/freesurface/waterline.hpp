// The panels of a body that have a side in the free surface.
#pragma once

#include "state/state.hpp"

// Goes through the panels XVER(4,3,NP) of one body, whose origin lies at height ZB, and lists those with a
// side in the free surface: IWLP the panel, counted within the body, IWLE the first vertex of the side, which
// runs from there to the next vertex in the order 1, 2, 3, 4, 1. NWLB is their number; IWLP and IWLE have
// room for NP. A vertex lies in the free surface when it is not farther from it than 1e-5. Failed: three
// vertices of a panel lie there and no two of them coincide.
[[nodiscard]] Status WLFIND(View<const f32, 3> XVER, f32 ZB, View<int, 1> IWLP, View<int, 1> IWLE, int &NWLB);
