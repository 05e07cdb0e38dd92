// The distance of a point from the panels of a mesh, as far as it is small.
#pragma once

#include "mesh/merge.hpp"

#include <cstdint>
#include <unordered_map>

// Method: the panels by the cells of a grid that their boxes touch.
class NearPanels {
  public:
    // `reach`: distances above it are not told apart.
    NearPanels(const MergedVertices &mesh, double reach);
    // The distance from the nearest panel; infinite beyond the reach.
    double distance_of(const BodyPoint &p) const;

  private:
    struct Box {
        std::array<std::int64_t, 3> low, high;
    };
    Box box_of(std::size_t panel) const;
    std::int64_t cell(double v) const;
    std::uint64_t key(std::int64_t i, std::int64_t j, std::int64_t k) const;

    const MergedVertices &mesh_;
    double reach_, cell_;
    std::unordered_map<std::uint64_t, std::vector<int>> in_cell_; // keys that coincide cost time only
};
