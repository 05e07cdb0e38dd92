// Interior free-surface panels made from the hull.
#pragma once

#include "state/state.hpp"

// Adds to the NP panels of a body, of which the first is panel `first`, the projection of each on the free
// surface, which lies at z = -ZB in the axes of the body. The vertices run the other way round, so that a
// panel that looks up gives one that looks down; an overhang gives one that looks up. Panels whose projection
// has no area, panels that lie in the surface, and dipole panels are left out: a thin plate bounds no inside.
// IDIP holds the dipole marks of the panels of all bodies; it may be empty or end before this body. NP counts
// the new panels. Failed: no memory.
[[nodiscard]] Status FSPROJ(int first, int &NP, f32 ZB, View<const int, 1> IDIP, Array<f32, 3> &XVER);
