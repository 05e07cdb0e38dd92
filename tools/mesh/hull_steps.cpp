#include "hull_steps.hpp"

#include "freesurface/fsgen.hpp"
#include "mesh/checks.hpp"
#include "mesh/cut.hpp"
#include "mesh/join.hpp"
#include "mesh/orient.hpp"
#include "mesh/symmetry.hpp"
#include "mesh/vectors.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace {

constexpr double MERGED = 1e-6;       // default of HullRequest::merge, over the size
constexpr double LEAST = 1e-12;       // and its least value
constexpr double ALIKE = 2e-4;        // distance from the image that is symmetric, over the size
constexpr double HARDLY_ALIKE = 5e-3; // when the half is asked for
constexpr double WARP = 0.01;         // of quadrilaterals made of two triangles
constexpr const char *PLANES[] = {"x = 0", "y = 0"};

[[gnu::format(printf, 1, 2)]] std::string text(const char *format, ...) {
    char line[300];
    va_list values;
    va_start(values, format);
    std::vsnprintf(line, sizeof line, format, values);
    va_end(values);
    return line;
}

// "3 panels", "1 panel".
std::string count(std::size_t n, const char *what) {
    return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}
std::string count(int n, const char *what) {
    return count(static_cast<std::size_t>(n), what);
}

bool in_surface(const MergedVertices &mesh, const PanelSide &side) {
    return mesh.points[static_cast<std::size_t>(side.a)][2] == 0 &&
           mesh.points[static_cast<std::size_t>(side.b)][2] == 0;
}

struct Steps {
    const HullRequest &request;
    Hull &hull;
    const TellStep &tell;
    std::string &error;
    double size = 0, tolerance = 0;

    void merge_points() {
        size = size_of(hull.mesh);
        tolerance = std::max(request.merge > 0 ? request.merge : MERGED * size, LEAST * size);
        const MergeCounts n = merge(hull.mesh, tolerance);
        tell("vertices",
             text("%d merged with another one nearer than %.3g; left out: ", n.points, tolerance) +
                 count(n.degenerate, "panel") + " without area, " + std::to_string(n.doubled) +
                 " given twice, " + std::to_string(n.folded) + " in pairs that are walls or folds");
        const std::vector<bool> all(hull.mesh.of_panel.size(), true);
        tell("parts", count(pieces_of(edges_of(hull.mesh, all), all).pieces, "connected surface"));
    }

    bool cut_at_surface() {
        const CutCounts n = cut(hull.mesh, {2, -1}, tolerance);
        tell("cut", "at z = 0: " + count(n.cut, "panel") + " cut, " + std::to_string(n.dropped) +
                        " above dropped, " + count(n.slivers, "sliver") + " merged away, " +
                        count(n.snapped, "point") + " near it moved there");
        if (hull.mesh.of_panel.empty())
            error = "nothing lies below z = 0: give --waterline or --draught";
        return error.empty();
    }

    bool is_manifold() {
        const std::vector<int> crowded = crowded_panels(hull.mesh);
        if (crowded.empty())
            return true;
        const BodyPoint p = shape_of(panel_of(hull.mesh, static_cast<std::size_t>(crowded.front()))).centre;
        error = text(
            "the surface branches: more than two panels share a side, %zu panels, one of them at %.4g, %.4g, "
            "%.4g; leave out inner walls and what is given twice, or lower --merge",
            crowded.size(), p[0], p[1], p[2]);
        return false;
    }

    // A file that holds a half is open in the plane and has nothing beyond it.
    void add_other_side(int axis) {
        const std::size_t a = static_cast<std::size_t>(axis);
        double low = 0, high = 0;
        for (const BodyPoint &p : hull.mesh.points) {
            low = std::min(low, p[a]);
            high = std::max(high, p[a]);
        }
        if (low < -tolerance && high > tolerance)
            return;
        const MeshEdges edges = edges_of(hull.mesh, std::vector<bool>(hull.mesh.of_panel.size(), true));
        const auto in_plane = [&](const PanelSide &s) {
            return !in_surface(hull.mesh, s) &&
                   std::fabs(hull.mesh.points[static_cast<std::size_t>(s.a)][a]) <= tolerance &&
                   std::fabs(hull.mesh.points[static_cast<std::size_t>(s.b)][a]) <= tolerance;
        };
        if (std::none_of(edges.open.begin(), edges.open.end(), in_plane))
            return;
        add_images(hull.mesh, axis, tolerance);
        tell("half",
             std::string("the file is open in ") + PLANES[a] + " and has one side only: the other one added");
    }

    bool turn_normals() {
        const OrientCounts n = orient(hull.mesh);
        if (n.one_sided) {
            error = "the surface has one side only: it cannot be oriented";
            return false;
        }
        std::string line = count(n.turned, "panel") + " turned against the neighbours, " +
                           std::to_string(n.parts_turned) + " of " + count(n.parts, "part") +
                           " turned as a whole";
        if (n.inner > 0)
            line += ", " + count(n.inner, "part") + " inside another one: normals into the hollow";
        tell("normals", line);
        return true;
    }

    BodyMesh body() const {
        BodyMesh mesh;
        for (const std::size_t axis : {0u, 1u})
            mesh.symmetric[axis] = hull.symmetric[axis];
        for (std::size_t p = 0; p < hull.mesh.of_panel.size(); ++p) {
            mesh.panels.push_back(panel_of(hull.mesh, p));
            for (BodyPoint &v : mesh.panels.back().at)
                for (double &x : v)
                    x /= request.ULEN;
        }
        return mesh;
    }

    // What the check finds in the whole hull but not in the part that is kept: a sound half may hide a broken
    // one.
    void tell_hidden(const BodyMesh &whole) {
        const std::vector<MeshFinding> kept = check_mesh(body(), {0, true});
        for (const MeshFinding &finding : check_mesh(whole, {0, true})) {
            const auto same = [&](const MeshFinding &f) { return f.what == finding.what; };
            if (std::any_of(kept.begin(), kept.end(), same))
                continue;
            std::string line = "in the part that is left out: " + finding.what;
            if (!finding.panels.empty()) {
                const BodyPoint p =
                    shape_of(whole.panels[static_cast<std::size_t>(finding.panels.front() - 1)]).centre;
                line += text(" (%zu panels, near %.4g, %.4g, %.4g ULEN)", finding.panels.size(), p[0], p[1],
                             p[2]);
            }
            tell(finding.wrong ? "WARNING:" : "note:", line);
        }
    }

    bool wanted(int axis) const {
        return request.part == "auto" || request.part == "quarter" ||
               request.part == (axis == 0 ? "half-x" : "half-y");
    }

    bool keep_half(int axis) {
        const std::size_t a = static_cast<std::size_t>(axis);
        const bool forced = request.part != "auto";
        const double limit = (forced ? HARDLY_ALIKE : ALIKE) * size;
        // Panels smaller than the tolerance find their partners by a finer one.
        MirrorMatch match = match_mirrored(hull.mesh, axis, tolerance);
        if (!match.surfaces)
            match = match_mirrored(hull.mesh, axis, limit);
        if (!match.surfaces && forced) {
            error =
                text("it is not symmetric about %s: its image is more than %.3g beside it", PLANES[a], limit);
            return false;
        }
        if (!match.surfaces) {
            tell("symmetry", text("none about %s (tolerance %.3g)", PLANES[a], limit));
            return true;
        }
        const CutCounts n = cut(hull.mesh, {axis, 1}, tolerance);
        hull.symmetric[a] = true;
        tell("symmetry", text("about %s, images of the %s within %.2g (tolerance %.3g%s): %s >= 0 kept, ",
                              PLANES[a], match.panels ? "panels" : "surface", match.worst, limit,
                              match.panels ? "" : ", more on bent surfaces", axis == 0 ? "x" : "y") +
                             count(n.cut, "panel") + " cut there");
        return true;
    }

    void join() {
        const int n = join_triangles(hull.mesh, WARP);
        tell("joined", std::to_string(2 * n) + " triangles to " + count(n, "quadrilateral") +
                           text(", warp up to %g per cent", 100 * WARP));
    }

    // Panels in z = 0 inside the waterline, normals down.
    bool add_lid() {
        MergedVertices &mesh = hull.mesh;
        std::vector<WaterSide> sides;
        for (const PanelSide &s : edges_of(mesh, std::vector<bool>(mesh.of_panel.size(), true)).open)
            if (in_surface(mesh, s)) {
                const BodyPoint &a = mesh.points[static_cast<std::size_t>(s.a)],
                                &b = mesh.points[static_cast<std::size_t>(s.b)];
                sides.push_back({{a[0], a[1]}, {b[0], b[1]}});
            }
        if (sides.empty()) {
            tell("lid", "none: the hull does not reach z = 0");
            return true;
        }
        SurfacePanels panels;
        const std::int64_t limit = 4 * static_cast<std::int64_t>(mesh.of_panel.size()) + 1000;
        if (failed(fill_waterline(sides, {hull.symmetric[0], hull.symmetric[1]}, 1.0, limit, panels))) {
            error = "the lid cannot be made: " + first_fault();
            return false;
        }
        MergedVertices lid;
        for (const SurfacePanel &panel : panels) {
            std::array<int, 4> corners;
            for (std::size_t v = 0; v < 4; ++v) {
                corners[v] = static_cast<int>(lid.points.size());
                lid.points.push_back({panel[v].x, panel[v].y, 0});
            }
            lid.of_panel.push_back(corners);
        }
        (void)merge(lid, LEAST * size);
        if (request.recombine)
            (void)join_triangles(lid, WARP);
        const int first = static_cast<int>(mesh.points.size());
        mesh.points.insert(mesh.points.end(), lid.points.begin(), lid.points.end());
        for (std::array<int, 4> corners : lid.of_panel) {
            for (int &c : corners)
                c += first;
            mesh.of_panel.push_back(corners);
        }
        tell("lid", count(lid.of_panel.size(), "panel") + " in z = 0 inside the waterline, normals down");
        return true;
    }
};

} // namespace

bool make_hull(const HullRequest &request, Hull &hull, const TellStep &tell, std::string &error) {
    Steps steps{request, hull, tell, error};
    steps.merge_points();
    if (!steps.cut_at_surface() || !steps.is_manifold())
        return false;
    for (const int axis : {0, 1})
        steps.add_other_side(axis);
    if (!steps.turn_normals())
        return false;
    const BodyMesh whole = steps.body();
    for (const int axis : {0, 1})
        if (steps.wanted(axis) && !steps.keep_half(axis))
            return false;
    if (hull.symmetric[0] || hull.symmetric[1])
        steps.tell_hidden(whole);
    if (request.recombine)
        steps.join();
    return !request.lid || steps.add_lid();
}
