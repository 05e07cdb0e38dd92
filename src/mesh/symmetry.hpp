// Whether a mesh is its own image in a plane.
#pragma once

#include "mesh/merge.hpp"

struct MirrorMatch {
    bool surfaces = false; // the images of all corners and centroids lie on the surface
    bool panels = false;   // and each panel has one whose mirrored centroid and area are its own
    double worst = 0;      // largest distance met
};
// The image in x = 0 (axis 0) or y = 0 (axis 1) against the mesh, give or take `tolerance` (length). Panels that
// cross the plane need no partner. Give the whole mesh.
MirrorMatch match_mirrored(const MergedVertices &mesh, int axis, double tolerance);
