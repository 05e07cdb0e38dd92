#include "freesurface/front_boundary.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double LONGEST = 1.5;    // edge kept whole, in H
constexpr double SHORTEST = 0.5;   // edge kept, in H
constexpr double BULGE = 0.001;    // distance from an edge that counts, in H
constexpr double DENT = 0.002;     // distance of a skipped point inside an edge that makes it a node, in H
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

void remove_spikes(std::vector<FrontNode> &nodes, SurfacePanels &tips) {
    for (std::size_t k = 0; nodes.size() >= 3 && k < nodes.size();) {
        const std::size_t n = nodes.size();
        const std::size_t tip = (k + 1) % n;
        const SurfacePoint A = nodes[k].at, B = nodes[tip].at, Z = nodes[(k + 2) % n].at;
        if (TRIQ(A, Z, B).G < FOLDED) {
            if (EDGDST(A, B, Z) < 0)
                tips.push_back({Z, B, A, A});
            nodes[k].FSKS.clear(); // they lay inside the spike
            nodes.erase(nodes.begin() + static_cast<std::ptrdiff_t>(tip));
            if (tip < k)
                --k;
        } else
            ++k;
    }
}

// Skipped points where the area is dented, as along a finely panelled moonpool, become nodes: an edge across
// the dent would lie over water.
std::vector<FrontNode> with_dents(std::vector<FrontNode> nodes, double H) {
    for (std::size_t k = 0; k < nodes.size();) {
        const SurfacePoint from = nodes[k].at, to = nodes[(k + 1) % nodes.size()].at;
        const std::vector<SurfacePoint> &skipped = nodes[k].FSKS;
        double deepest = -DENT * H;
        auto dent = skipped.end();
        for (auto p = skipped.begin(); p != skipped.end(); ++p) {
            if (const double d = EDGDST(from, to, *p); d < deepest) {
                deepest = d;
                dent = p;
            }
        }
        if (dent == skipped.end()) {
            ++k;
            continue;
        }
        FrontNode node;
        node.at = *dent;
        node.FSKS.assign(dent + 1, skipped.end());
        nodes[k].FSKS.erase(dent, skipped.end());
        nodes.insert(nodes.begin() + static_cast<std::ptrdiff_t>(k) + 1, node);
    }
    return nodes;
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

std::vector<FrontNode> boundary_nodes(const Polygon &polygon, double H, SurfacePanels &tips) {
    if (polygon.size() < 3)
        return {};
    std::vector<FrontNode> nodes;
    // A polygon much smaller than H keeps its own points.
    for (const double smallest = SMALLEST * H; nodes.size() < 3 && H > smallest; H /= 2) {
        nodes = resample(polygon, H);
        tips.clear();
        remove_spikes(nodes, tips);
    }
    if (nodes.size() >= 3)
        nodes = with_dents(std::move(nodes), H);
    for (std::size_t k = 0; k < nodes.size(); ++k)
        find_bulge(nodes[k], nodes[(k + 1) % nodes.size()].at, H);
    return nodes;
}
