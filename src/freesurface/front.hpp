// Triangles that fill polygons of the free surface by an advancing front.
#pragma once

#include "freesurface/surface_panels.hpp"

// The measure of a triangle a, b, c.
struct TriangleShape {
    double Q; // largest absolute cosine of the three angles
    double G; // minus the cosine of the angle at c
    double A; // length of a to c
    double B; // length of b to c
};
TriangleShape TRIQ(SurfacePoint a, SurfacePoint b, SurfacePoint c);

// Signed distance of `point` from the line from a to b, positive to the left of it.
double EDGDST(SurfacePoint a, SurfacePoint b, SurfacePoint point);

enum class FrontEnd {
    filled,       // the polygons are full
    stuck,        // an edge of the front found no partner; the panels made so far stand
    out_of_steps, // more panels than `limit`
};
// Fills the area on the right of the edges of all polygons: an outer one, clockwise, and those of the holes
// in it, the other way round. H is the wanted length of an edge. Boundary points much nearer to each other
// than H are skipped, but for one of a run of them, which becomes the fourth vertex of the panel there. Adds
// to `panels`, `limit` of them at most. Method: the advancing front for triangles of S. H. Lo, A new mesh
// generation scheme for arbitrary planar domains, Int. J. Numer. Meth. Engng 21 (1985) 1403-1426.
FrontEnd FSFRNT(const std::vector<Polygon> &polygons, double H, std::int64_t limit, SurfacePanels &panels);
