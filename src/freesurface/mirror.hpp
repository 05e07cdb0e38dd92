// Growth of the vertex array and mirroring of a body's panels in its symmetry planes.
#pragma once

#include "state/state.hpp"

// Gives XVER room for at least `capacity` panels and keeps those it has; new ones are 0. Failed: no memory.
[[nodiscard]] Status XVGROW(std::int64_t capacity, Array<f32, 3> &XVER);

// Adds to the NP panels of a body, of which the first is panel `first`, their images in x = 0 when ISX is 1
// or -2, then the images of all in y = 0 when ISY is. NP counts them. An index that was used becomes 0 (from
// 1: no symmetry is left) or -1 (from -2: the plane is a wall). The vertices of an image run in reversed
// order, which keeps the sense of the normal: into the body. Failed: no memory.
[[nodiscard]] Status REFLEC(int first, int &NP, int &ISX, int &ISY, Array<f32, 3> &XVER);
