#include "freesurface/front_boundary.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double LONGEST = 1.5;    // edge kept whole, in H
constexpr double SHORTEST = 0.5;   // edge kept, in H
constexpr double BULGE = 0.001;    // distance from an edge that counts, in H
constexpr double SMALLEST = 0.001; // sides of a polygon that is still filled, in H
constexpr double FOLDED = -0.99;   // G of a node where the boundary folds back

std::vector<FrontNode> resample(const Polygon &P, double H) {
    std::vector<FrontNode> nodes;
    const auto add_node = [&](SurfacePoint p) {
        nodes.emplace_back();
        nodes.back().at = p;
    };
    add_node(P[0]);
    for (std::size_t i = 0; i < P.size(); ++i) {
        const SurfacePoint next = P[(i + 1) % P.size()];
        const double d = distance(nodes.back().at, next);
        if (d < SHORTEST * H) {
            nodes.back().FSKS.push_back(next);
            continue;
        }
        if (d > LONGEST * H) {
            // The nodes stand on the side itself, also when points before it were skipped.
            const int m = static_cast<int>(d / (LONGEST * H)) + 1;
            const SurfacePoint from = P[i];
            for (int j = 1; j < m; ++j) {
                const double t = static_cast<double>(j) / m;
                add_node({from.x + t * (next.x - from.x), from.y + t * (next.y - from.y)});
            }
        }
        add_node(next);
    }
    // The last node comes back to the first one, or, when the last points were skipped, is too near to it.
    FrontNode last = std::move(nodes.back());
    const bool closes = last.FSKS.empty();
    nodes.pop_back();
    if (!closes && !nodes.empty()) {
        std::vector<SurfacePoint> &skipped = nodes.back().FSKS;
        skipped.push_back(last.at);
        skipped.insert(skipped.end(), last.FSKS.begin(), last.FSKS.end() - 1);
    }
    return nodes;
}

void remove_spikes(std::vector<FrontNode> &nodes) {
    for (std::size_t k = 0; nodes.size() >= 3 && k < nodes.size();) {
        const std::size_t n = nodes.size();
        const std::size_t tip = (k + 1) % n;
        if (TRIQ(nodes[k].at, nodes[(k + 2) % n].at, nodes[tip].at).G < FOLDED) {
            nodes[k].FSKS.clear(); // they lay inside the spike
            nodes.erase(nodes.begin() + static_cast<std::ptrdiff_t>(tip));
            if (tip < k)
                --k;
        } else
            ++k;
    }
}

void find_bulge(FrontNode &node, SurfacePoint next, double H) {
    double farthest = BULGE * H;
    for (const SurfacePoint p : node.FSKS) {
        const double d = EDGDST(node.at, next, p);
        if (d >= farthest) {
            farthest = d;
            node.FBLG = p;
            node.has_bulge = true;
        }
    }
}

} // namespace

double EDGDST(SurfacePoint a, SurfacePoint b, SurfacePoint point) {
    return ((b.x - a.x) * (point.y - a.y) - (b.y - a.y) * (point.x - a.x)) / distance(a, b);
}

std::vector<FrontNode> boundary_nodes(const Polygon &polygon, double H) {
    if (polygon.size() < 3)
        return {};
    std::vector<FrontNode> nodes;
    // A polygon much smaller than H keeps its own points.
    for (const double smallest = SMALLEST * H; nodes.size() < 3 && H > smallest; H /= 2) {
        nodes = resample(polygon, H);
        remove_spikes(nodes);
    }
    for (std::size_t k = 0; k < nodes.size(); ++k)
        find_bulge(nodes[k], nodes[(k + 1) % nodes.size()].at, H);
    return nodes;
}
