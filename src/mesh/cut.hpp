// Panels cut by a plane through the origin, one side of it kept.
#pragma once

#include "mesh/merge.hpp"

struct CutPlane {
    int axis; // 0, 1, 2: the plane x = 0, y = 0 or z = 0
    int side; // 1 keeps the side of positive coordinates, -1 the other
};
struct CutCounts {
    int cut = 0;     // panels that crossed the plane
    int dropped = 0; // panels on the other side, or in the plane
    int slivers = 0; // pieces with an area below 1e-3 of the mean, merged into their neighbours
    int snapped = 0; // points near the plane that were put on it
};
// Keeps what lies on one side. Panels that cross the plane become triangles and quadrilaterals; the new
// points lie exactly on it, as do points within `tolerance`, or within 1e-3 of their shortest side, of it.
// Neighbours keep sharing whole sides, and the order of vertices stays.
CutCounts cut(MergedVertices &mesh, const CutPlane &plane, double tolerance);
