#include "mesh/symmetry.hpp"

#include "mesh/near_panels.hpp"
#include "mesh/vectors.hpp"

#include <algorithm>

namespace {

constexpr double SAME_AREA = 1e-3; // difference of areas of a panel and its image, over the larger
constexpr double EDGE = 0.6;       // angle between neighbours from which on they meet at an edge of the hull

BodyPoint centroid_of(const MergedVertices &mesh, std::size_t panel) {
    const BodyPanel p = panel_of(mesh, panel);
    const std::size_t corners = is_triangle(mesh.of_panel[panel]) ? 3 : 4;
    BodyPoint centre{};
    for (std::size_t v = 0; v < corners; ++v)
        for (std::size_t c = 0; c < 3; ++c)
            centre[c] += p.at[v][c] / static_cast<double>(corners);
    return centre;
}

bool crosses(const BodyPanel &panel, std::size_t axis, double tolerance) {
    bool below = false, above = false;
    for (const BodyPoint &v : panel.at) {
        below = below || v[axis] < -tolerance;
        above = above || v[axis] > tolerance;
    }
    return below && above;
}

// For each panel how far a smooth surface that it stands for may lie beside it: flat panels stand for
// themselves, of panels that bend by an angle a chord of length h lies h times the angle over 8 below the
// arc, a diagonal of a bent quadrilateral twice that beside the other one.
std::vector<double> slack_of(const MergedVertices &mesh) {
    std::vector<PanelShape> shapes;
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        shapes.push_back(shape_of(panel_of(mesh, p)));
    std::vector<double> slack(shapes.size(), 0);
    const MeshEdges edges = edges_of(mesh, std::vector<bool>(shapes.size(), true));
    for (const auto &[s, t] : edges.shared) {
        const std::size_t p = static_cast<std::size_t>(s.panel), q = static_cast<std::size_t>(t.panel);
        const double angle = std::acos(std::clamp(dot(shapes[p].normal, shapes[q].normal), -1.0, 1.0));
        if (angle > EDGE)
            continue;
        slack[p] = std::max(slack[p], angle * shapes[p].longest / 4);
        slack[q] = std::max(slack[q], angle * shapes[q].longest / 4);
    }
    return slack;
}

} // namespace

MirrorMatch match_mirrored(const MergedVertices &mesh, int axis, double tolerance) {
    const std::size_t a = static_cast<std::size_t>(axis), n = mesh.of_panel.size();
    const auto image = [&](BodyPoint p) {
        p[a] = -p[a];
        return p;
    };
    // Centroids and behind them their images: an image that is merged with a centroid has its partner.
    std::vector<BodyPoint> centres;
    for (std::size_t p = 0; p < n; ++p)
        centres.push_back(centroid_of(mesh, p));
    for (std::size_t p = 0; p < n; ++p)
        centres.push_back(image(centres[p]));
    // A vertex that is off by the tolerance takes a centroid a quarter of that along.
    const std::vector<int> partner = merge_points(centres, tolerance / 4);
    MirrorMatch match{true, true, 0};
    std::vector<std::size_t> open; // panels whose images have to be looked for on the surface
    for (std::size_t p = 0; p < n; ++p) {
        const std::size_t q = static_cast<std::size_t>(partner[n + p]);
        const BodyPanel panel = panel_of(mesh, p);
        const double own = shape_of(panel).area, other = q < n ? shape_of(panel_of(mesh, q)).area : 0;
        if (q < n && std::fabs(own - other) <= SAME_AREA * own) {
            match.worst = std::max(match.worst, distance(centres[q], centres[n + p]));
            continue;
        }
        open.push_back(p);
        match.panels = match.panels && crosses(panel, a, tolerance);
    }
    if (open.empty())
        return match;
    const std::vector<double> slack = slack_of(mesh);
    double reach = tolerance;
    for (const std::size_t p : open)
        reach = std::max(reach, slack[p]);
    const NearPanels near(mesh, reach);
    for (const std::size_t p : open) {
        double off = near.distance_of(centres[n + p]);
        for (const BodyPoint &v : panel_of(mesh, p).at)
            off = std::max(off, near.distance_of(image(v)));
        if (off > std::max(tolerance, slack[p]))
            return {false, false, 0};
        match.worst = std::max(match.worst, off);
    }
    return match;
}
