// The panels of the free surface around a body, from its waterline.
#pragma once

#include "freesurface/fdf_contour.hpp"
#include "freesurface/surface_panels.hpp"

// Panels of a ring between the waterline and an outer curve; their vertices run clockwise seen from above, so
// that the normal points up.
struct SurfaceRing {
    double ROUT = 0; // radius of the outer curve
    SurfacePanels panels;
};

// A ring about the contour `line`, which runs counter-clockwise and, with symmetry planes (ISX, ISY 0 or 1),
// may end on them. Its sides stand at equal angles on the outer curve; where that would make a panel that is
// turned over, on rays from the centre through the points of the contour. Failed: too few sides, or no ring
// without overlap; the message is out.
[[nodiscard]] Status surface_ring(const LineCentre &line, int ISX, int ISY, SurfaceRing &ring);

// Makes the ring of the waterline of the run and writes the file FILNAM(5), which must not exist, in
// dimensional lengths. Failed: the waterline is not one line, a ring cannot be made, the file cannot be
// written; the message is out.
[[nodiscard]] Status FDFGEN(const RunState &run);
