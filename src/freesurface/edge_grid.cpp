#include "freesurface/edge_grid.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double PARALLEL = 1.0e-6; // sine of the angle between lines that count as parallel

std::int64_t key(std::int32_t i, std::int32_t j) {
    return (static_cast<std::int64_t>(i) << 32) | static_cast<std::uint32_t>(j);
}

// True when the point, which lies on the line of the edge, is more than the tolerance away from
// both its ends.
bool is_within(SurfacePoint p, const FrontEdge &edge, double tolerance) {
    const auto between = [&](double v, double a, double b) {
        return v > std::min(a, b) + tolerance && v < std::max(a, b) - tolerance;
    };
    return between(p.x, edge.at[0].x, edge.at[1].x) || between(p.y, edge.at[0].y, edge.at[1].y);
}

// True when two edges on one line have more than a point in common.
bool overlap(const FrontEdge &s, const FrontEdge &t, double ux, double uy, double tolerance) {
    const auto along = [&](SurfacePoint p) { return p.x * ux + p.y * uy; };
    const auto [s1, s2] = std::minmax({along(s.at[0]), along(s.at[1])});
    const auto [t1, t2] = std::minmax({along(t.at[0]), along(t.at[1])});
    return std::min(s2, t2) - std::max(s1, t1) > tolerance;
}

} // namespace

bool edges_cross(const FrontEdge &s, const FrontEdge &t, double tolerance_old, double tolerance_new) {
    const auto ends_in = [&](int node) { return t.node[0] == node || t.node[1] == node; };
    if (ends_in(s.node[0]) && ends_in(s.node[1]))
        return false; // the edge is there already: the panel closes a gap
    const double sx = s.at[1].x - s.at[0].x, sy = s.at[1].y - s.at[0].y;
    const double tx = t.at[1].x - t.at[0].x, ty = t.at[1].y - t.at[0].y;
    const double dx = t.at[0].x - s.at[0].x, dy = t.at[0].y - s.at[0].y;
    const double ls = std::hypot(sx, sy), lt = std::hypot(tx, ty);
    const double D = sx * ty - sy * tx;
    if (std::fabs(D) < PARALLEL * ls * lt) {
        const bool same_line = std::fabs(dx * sy - dy * sx) < tolerance_new * ls;
        return same_line && overlap(s, t, sx / ls, sy / ls, tolerance_new);
    }
    for (int e = 0; e < 2; ++e) {
        // Lines through a common node meet in it, and it is an end of both.
        if (t.node[e] == s.node[0] || t.node[e] == s.node[1])
            return false;
    }
    const double u = (dx * ty - dy * tx) / D;
    const SurfacePoint meeting{s.at[0].x + u * sx, s.at[0].y + u * sy};
    return is_within(meeting, t, tolerance_old) && is_within(meeting, s, tolerance_new);
}

EdgeGrid::EdgeGrid(double cell, double tolerance_old, double tolerance_new)
    : cell_(cell), tolerance_old_(tolerance_old), tolerance_new_(tolerance_new) {}

std::array<std::int32_t, 4> EdgeGrid::cells_of(const FrontEdge &edge) const {
    const auto number = [&](double v) { return static_cast<std::int32_t>(std::floor(v / cell_)); };
    const auto [x1, x2] = std::minmax({edge.at[0].x, edge.at[1].x});
    const auto [y1, y2] = std::minmax({edge.at[0].y, edge.at[1].y});
    const double rim = tolerance_new_; // edges on one line may stand that far apart
    return {number(x1 - rim), number(x2 + rim), number(y1 - rim), number(y2 + rim)};
}

void EdgeGrid::add(const FrontEdge &edge) {
    const int index = static_cast<int>(FALL.size());
    FALL.push_back(edge);
    const auto [i1, i2, j1, j2] = cells_of(edge);
    for (std::int32_t i = i1; i <= i2; ++i)
        for (std::int32_t j = j1; j <= j2; ++j)
            cells_[key(i, j)].push_back(index);
}

bool EdgeGrid::crosses(const FrontEdge &edge) const {
    const auto [i1, i2, j1, j2] = cells_of(edge);
    for (std::int32_t i = i1; i <= i2; ++i) {
        for (std::int32_t j = j1; j <= j2; ++j) {
            const auto found = cells_.find(key(i, j));
            if (found == cells_.end())
                continue;
            for (const int old_edge : found->second) {
                if (edges_cross(edge, FALL[static_cast<std::size_t>(old_edge)], tolerance_old_,
                                tolerance_new_))
                    return true;
            }
        }
    }
    return false;
}
