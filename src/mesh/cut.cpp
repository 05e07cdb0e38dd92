#include "mesh/cut.hpp"

#include "mesh/slivers.hpp"
#include "mesh/vectors.hpp"

#include <algorithm>
#include <map>

namespace {

constexpr double SNAP = 1e-3; // distance from the plane that counts as none, in sides

using Polygon = std::vector<int>;

// The mesh at work: the height of each point above the plane on the side that is kept.
struct Cutter {
    MergedVertices &mesh;
    std::size_t axis;
    double side;
    std::map<std::pair<int, int>, int> crossing; // the new point on a side, by its two ends

    double height(int i) const { return side * mesh.points[static_cast<std::size_t>(i)][axis]; }
    const BodyPoint &at(int i) const { return mesh.points[static_cast<std::size_t>(i)]; }

    int point_between(int a, int b) {
        const std::pair<int, int> ends = std::minmax(a, b);
        const auto [found, is_new] = crossing.insert({ends, static_cast<int>(mesh.points.size())});
        if (is_new) {
            // From the same end for both panels that share the side.
            const double ha = height(ends.first), hb = height(ends.second);
            BodyPoint p = between(at(ends.first), at(ends.second), ha / (ha - hb));
            p[axis] = 0;
            mesh.points.push_back(p);
        }
        return found->second;
    }

    // What is kept of a polygon. Method: clipping of I. E. Sutherland and G. W. Hodgman, Comm. ACM 17 (1974)
    // 32-42.
    Polygon kept(const Polygon &polygon) {
        Polygon result;
        for (std::size_t v = 0; v < polygon.size(); ++v) {
            const int a = polygon[v], b = polygon[(v + 1) % polygon.size()];
            const double ha = height(a), hb = height(b);
            if (ha >= 0)
                result.push_back(a);
            if ((ha > 0 && hb < 0) || (ha < 0 && hb > 0))
                result.push_back(point_between(a, b));
        }
        return result;
    }
};

// The smallest ratio of a corner's triangle to the square of its longer side: how far a polygon is from being
// degenerate.
double worst_corner(const Cutter &c, const Polygon &p) {
    double worst = 1e300;
    for (std::size_t v = 0; v < p.size(); ++v) {
        const BodyPoint u = minus(c.at(p[(v + 1) % p.size()]), c.at(p[v])),
                        w = minus(c.at(p[(v + p.size() - 1) % p.size()]), c.at(p[v]));
        const double longer = std::max(dot(u, u), dot(w, w));
        worst = std::min(worst, longer > 0 ? length(cross(u, w)) / longer : 0);
    }
    return worst;
}

bool is_concave(const Cutter &c, const std::array<int, 4> &p) {
    const BodyPoint normal = cross(minus(c.at(p[2]), c.at(p[0])), minus(c.at(p[3]), c.at(p[1])));
    for (std::size_t v = 0; v < 4; ++v) {
        const BodyPoint corner =
            cross(minus(c.at(p[(v + 1) % 4]), c.at(p[v])), minus(c.at(p[(v + 3) % 4]), c.at(p[v])));
        if (dot(corner, normal) < 0)
            return true;
    }
    return false;
}

// A polygon of three to five corners as panels: of five, the corner cut off is the one that leaves the best
// shapes.
void add_pieces(const Cutter &c, const Polygon &p, std::vector<std::array<int, 4>> &panels) {
    if (p.size() < 3)
        return;
    if (p.size() < 5) {
        panels.push_back({p[0], p[1], p[2], p.back()});
        return;
    }
    std::size_t best = 0;
    double quality = -1;
    for (std::size_t v = 0; v < 5; ++v) {
        const double q = std::min(worst_corner(c, {p[v], p[(v + 1) % 5], p[(v + 2) % 5]}),
                                  worst_corner(c, {p[v], p[(v + 2) % 5], p[(v + 3) % 5], p[(v + 4) % 5]}));
        if (q > quality) {
            quality = q;
            best = v;
        }
    }
    const auto corner = [&](std::size_t k) { return p[(best + k) % 5]; };
    panels.push_back({corner(0), corner(1), corner(2), corner(2)});
    panels.push_back({corner(0), corner(2), corner(3), corner(4)});
}

// Points that hardly leave the plane are put on it.
int snap(MergedVertices &mesh, std::size_t axis, double tolerance) {
    std::vector<double> shortest(mesh.points.size(), 1e300);
    for (const std::array<int, 4> &corners : mesh.of_panel)
        for (std::size_t v = 0; v < 4; ++v) {
            const std::size_t a = static_cast<std::size_t>(corners[v]),
                              b = static_cast<std::size_t>(corners[(v + 1) % 4]);
            if (a == b)
                continue;
            const double side = distance(mesh.points[a], mesh.points[b]);
            shortest[a] = std::min(shortest[a], side);
            shortest[b] = std::min(shortest[b], side);
        }
    int snapped = 0;
    for (std::size_t i = 0; i < mesh.points.size(); ++i) {
        double &h = mesh.points[i][axis];
        if (std::fabs(h) > std::max(tolerance, SNAP * shortest[i]))
            continue;
        snapped += h != 0 ? 1 : 0;
        h = 0; // and no -0
    }
    return snapped;
}

} // namespace

CutCounts cut(MergedVertices &mesh, const CutPlane &plane, double tolerance) {
    CutCounts counts;
    Cutter cutter{mesh, static_cast<std::size_t>(plane.axis), static_cast<double>(plane.side), {}};
    counts.snapped = snap(mesh, cutter.axis, tolerance);
    std::vector<std::array<int, 4>> panels;
    std::vector<bool> pieces; // of panels that were cut
    for (const std::array<int, 4> corners : mesh.of_panel) {
        int above = 0, below = 0;
        for (const int i : corners) {
            above += cutter.height(i) > 0 ? 1 : 0;
            below += cutter.height(i) < 0 ? 1 : 0;
        }
        if (above == 0) {
            ++counts.dropped;
            continue;
        }
        if (below == 0) {
            panels.push_back(corners);
            pieces.push_back(false);
            continue;
        }
        ++counts.cut;
        if (is_triangle(corners) || is_concave(cutter, corners)) {
            add_pieces(cutter, cutter.kept({corners[0], corners[1], corners[2]}), panels);
            if (!is_triangle(corners))
                add_pieces(cutter, cutter.kept({corners[0], corners[2], corners[3]}), panels);
        } else {
            add_pieces(cutter, cutter.kept({corners.begin(), corners.end()}), panels);
        }
        pieces.resize(panels.size(), true);
    }
    mesh.of_panel = std::move(panels);
    counts.slivers = merge_slivers(mesh, pieces);
    (void)tidy(mesh);
    return counts;
}
