// Panels made in the free surface, before they join the mesh.
#pragma once

#include "freesurface/contours.hpp"

#include <array>
#include <vector>

// Vertices 1 to 4, counter-clockwise seen from above, so that the normal points down. A triangle has two
// equal neighbours.
using SurfacePanel = std::array<SurfacePoint, 4>;
using SurfacePanels = std::vector<SurfacePanel>;
