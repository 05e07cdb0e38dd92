// Triangles joined to quadrilaterals.
#pragma once

#include "mesh/merge.hpp"

// Joins pairs of triangles that share a side where the quadrilateral is convex and warped (PanelShape) by no
// more than `warp`; the squarest first. Returns the number of pairs.
int join_triangles(MergedVertices &mesh, double warp);
