// The boundary that an advancing front starts from.
#pragma once

#include "freesurface/front.hpp"

// One node of a boundary loop.
struct FrontNode {
    SurfacePoint at;
    std::vector<SurfacePoint> FSKS; // polygon points skipped between this node and the next, in order
    bool has_bulge = false;         // FBLG is set
    SurfacePoint FBLG;              // the one of them that stands farthest outside the edge to the next node
};

// The nodes of a closed polygon: sides of 0.5 to 1.5 H are kept, longer ones are divided, points nearer than
// 0.5 H are skipped, but for those that dent the area. Nodes where the boundary folds back on itself are left
// out with the points skipped beside them; the corners of the area that this cuts off are added to `tips`. In
// a polygon of fewer than three such nodes shorter sides are kept. Fewer than three are returned only for a
// polygon without area.
std::vector<FrontNode> boundary_nodes(const Polygon &polygon, double H, SurfacePanels &tips);
