#include "mesh/near_panels.hpp"

#include "mesh/vectors.hpp"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int64_t MOST_ENTRIES = 16; // of the grid, for each panel

// Method: C. Ericson, Real-Time Collision Detection (2005), 5.1.5: the region of the triangle's plane that p
// lies in.
double from_triangle(const BodyPoint &p, const BodyPoint &a, const BodyPoint &b, const BodyPoint &c) {
    const BodyPoint ab = minus(b, a), ac = minus(c, a), ap = minus(p, a), bp = minus(p, b), cp = minus(p, c);
    const double d1 = dot(ab, ap), d2 = dot(ac, ap), d3 = dot(ab, bp), d4 = dot(ac, bp), d5 = dot(ab, cp),
                 d6 = dot(ac, cp);
    if (d1 <= 0 && d2 <= 0)
        return length(ap);
    if (d3 >= 0 && d4 <= d3)
        return length(bp);
    if (d6 >= 0 && d5 <= d6)
        return length(cp);
    const double vc = d1 * d4 - d3 * d2, vb = d5 * d2 - d1 * d6, va = d3 * d6 - d5 * d4;
    if (vc <= 0 && d1 >= 0 && d3 <= 0)
        return distance(p, between(a, b, d1 / (d1 - d3)));
    if (vb <= 0 && d2 >= 0 && d6 <= 0)
        return distance(p, between(a, c, d2 / (d2 - d6)));
    if (va <= 0 && d4 >= d3 && d5 >= d6)
        return distance(p, between(b, c, (d4 - d3) / ((d4 - d3) + (d5 - d6))));
    const BodyPoint n = cross(ab, ac);
    return std::fabs(dot(n, ap)) / length(n);
}

} // namespace

NearPanels::NearPanels(const MergedVertices &mesh, double reach) : mesh_(mesh), reach_(reach), cell_(0) {
    double total = 0;
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        total += shape_of(panel_of(mesh, p)).longest;
    const std::int64_t n = static_cast<std::int64_t>(mesh.of_panel.size());
    cell_ = std::max(total / static_cast<double>(std::max<std::int64_t>(1, n)), 2 * reach);
    double entries = 0;
    do {
        entries = 0;
        for (std::size_t p = 0; p < mesh.of_panel.size(); ++p) {
            const Box box = box_of(p);
            double cells = 1;
            for (std::size_t c = 0; c < 3; ++c)
                cells *= static_cast<double>(box.high[c] - box.low[c] + 1);
            entries += cells;
        }
        if (entries > static_cast<double>(MOST_ENTRIES * n))
            cell_ *= 2;
    } while (entries > static_cast<double>(MOST_ENTRIES * n));
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p) {
        const Box box = box_of(p);
        for (std::int64_t i = box.low[0]; i <= box.high[0]; ++i)
            for (std::int64_t j = box.low[1]; j <= box.high[1]; ++j)
                for (std::int64_t k = box.low[2]; k <= box.high[2]; ++k)
                    in_cell_[key(i, j, k)].push_back(static_cast<int>(p));
    }
}

NearPanels::Box NearPanels::box_of(std::size_t panel) const {
    Box box{};
    const BodyPanel corners = panel_of(mesh_, panel);
    for (std::size_t c = 0; c < 3; ++c) {
        double low = corners.at[0][c], high = low;
        for (const BodyPoint &p : corners.at) {
            low = std::min(low, p[c]);
            high = std::max(high, p[c]);
        }
        box.low[c] = cell(low - reach_);
        box.high[c] = cell(high + reach_);
    }
    return box;
}

std::int64_t NearPanels::cell(double v) const {
    return static_cast<std::int64_t>(std::floor(v / cell_));
}

std::uint64_t NearPanels::key(std::int64_t i, std::int64_t j, std::int64_t k) const {
    return (static_cast<std::uint64_t>(i) * 73856093ull) ^ (static_cast<std::uint64_t>(j) * 19349663ull) ^
           (static_cast<std::uint64_t>(k) * 83492791ull);
}

double NearPanels::distance_of(const BodyPoint &p) const {
    double nearest = std::numeric_limits<double>::infinity();
    const auto found = in_cell_.find(key(cell(p[0]), cell(p[1]), cell(p[2])));
    if (found == in_cell_.end())
        return nearest;
    for (const int i : found->second) {
        const BodyPanel panel = panel_of(mesh_, static_cast<std::size_t>(i));
        nearest = std::min(nearest, from_triangle(p, panel.at[0], panel.at[1], panel.at[2]));
        if (!is_triangle(mesh_.of_panel[static_cast<std::size_t>(i)]))
            nearest = std::min(nearest, from_triangle(p, panel.at[0], panel.at[2], panel.at[3]));
    }
    return nearest <= reach_ ? nearest : std::numeric_limits<double>::infinity();
}
