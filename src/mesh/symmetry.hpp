// Whether a mesh is its own image in a plane.
#pragma once

#include "mesh/merge.hpp"

struct MirrorMatch {
    bool surfaces = false; // the images of all corners and centroids lie on the surface
    bool panels = false;   // and each panel has one whose mirrored centroid and area are its own
    double worst = 0;      // largest distance met
};
// The image in x = 0 (axis 0) or y = 0 (axis 1) against the mesh, give or take `tolerance` (length) or, where
// neighbours bend, what chords of an arc differ by. Panels that cross the plane need no partner. Give the
// whole mesh, neighbours turned alike.
MirrorMatch match_mirrored(const MergedVertices &mesh, int axis, double tolerance);
