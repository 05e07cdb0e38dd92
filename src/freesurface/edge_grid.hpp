// All edges that an advancing front has made, found by their place.
#pragma once

#include "freesurface/contours.hpp"

#include <array>
#include <cstdint>
#include <unordered_map>

// A straight edge between two nodes, by their numbers and places.
struct FrontEdge {
    int node[2];
    SurfacePoint at[2];
};

// The edges in square cells. A crossing test looks at the edges of the cells that the new edge touches and no
// others: an edge that crosses it shares a cell with it.
class EdgeGrid {
  public:
    // `tolerance_old` and `tolerance_new` are the distances from the ends of an old and a new edge within
    // which a common point is no crossing; tolerance_new bounds parallel lines as well.
    EdgeGrid(double cell, double tolerance_old, double tolerance_new);
    void add(const FrontEdge &edge);
    // True when the new edge crosses or overlaps one that was added. A common end node is no crossing.
    bool crosses(const FrontEdge &edge) const;

  private:
    std::array<std::int32_t, 4> cells_of(const FrontEdge &edge) const;

    double cell_;
    double tolerance_old_;
    double tolerance_new_;
    std::vector<FrontEdge> FALL;
    std::unordered_map<std::int64_t, std::vector<int>> cells_;
};

// The crossing test of one pair.
bool edges_cross(const FrontEdge &new_edge, const FrontEdge &old_edge, double tolerance_old,
                 double tolerance_new);
