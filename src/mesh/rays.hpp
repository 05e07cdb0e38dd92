// Where a ray meets the panels of a mesh.
#pragma once

#include "mesh/edges.hpp"

// A ray of fixed direction from a panel's centroid: which other panels it meets. Made once for a direction,
// it answers for any panel of the mesh by a grid across the direction.
class Rays {
  public:
    Rays(const MergedVertices &mesh, const BodyPoint &direction);
    std::vector<std::size_t> crossed(std::size_t panel) const;

  private:
    struct Triangle {
        std::array<std::array<double, 3>, 3> at; // across, across, along
        std::size_t panel;
    };
    std::array<double, 3> turned(const BodyPoint &p) const;
    std::size_t cell(double value, std::size_t c) const;
    // The cells that a triangle's box covers, first and last of each.
    std::array<std::array<std::size_t, 2>, 2> covered(const Triangle &t) const;

    const MergedVertices &mesh_;
    BodyPoint axes_[3];
    std::vector<Triangle> triangles_;
    double low_[2], step_[2];
    std::size_t cells_;
    std::vector<std::vector<int>> in_cell_;
};
