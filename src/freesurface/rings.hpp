// Rings of panels that shrink towards the centre of a waterline contour.
#pragma once

#include "freesurface/surface_panels.hpp"

// The point that the rings shrink to: the centre of the area; for an open contour moved onto the plane that
// it ends on, or to the corner of two planes.
SurfacePoint contour_centre(const std::vector<WaterSide> &sides, const Contour &contour);

// True when each side of the contour is seen from the centre, with the centre on its right. Only then do
// rings cover the inside once.
bool seen_from_centre(const std::vector<WaterSide> &sides, const Contour &contour, SurfacePoint centre);

// Adds for each side, in walking order, the panels from it to the centre: about as many rings as give panels
// of the size of the mean side, denser towards the waterline. The innermost are triangles.
void FSRAD(const std::vector<WaterSide> &sides, const Contour &contour, SurfacePoint centre, double WLMEAN,
           SurfacePanels &panels);
