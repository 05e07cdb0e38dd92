#include "mesh/join.hpp"

#include "mesh/vectors.hpp"

#include <algorithm>

namespace {

constexpr double LARGEST_COSINE =
    0.94; // of a corner, about 20 and 160 degrees: beyond it two triangles do better

struct Pair {
    double cosine; // the largest of the corners of the quadrilateral: 0 for a rectangle
    int p, q;
    std::array<int, 4> corners;
};

// The corner that is neither of the two.
int third(const std::array<int, 4> &triangle, int a, int b) {
    for (const int c : triangle)
        if (c != a && c != b)
            return c;
    return a;
}

// Largest cosine of the corners; 2 when one of them points inwards.
double squareness(const BodyPanel &panel, const BodyPoint &normal) {
    double worst = 0;
    for (std::size_t v = 0; v < 4; ++v) {
        const BodyPoint u = minus(panel.at[(v + 1) % 4], panel.at[v]),
                        w = minus(panel.at[(v + 3) % 4], panel.at[v]);
        if (dot(cross(u, w), normal) >=
            0) // the normal points into the body, corners that are right turn against it
            return 2;
        worst = std::max(worst, std::fabs(dot(u, w)) / (length(u) * length(w)));
    }
    return worst;
}

} // namespace

int join_triangles(MergedVertices &mesh, double warp) {
    const MeshEdges edges = edges_of(mesh, std::vector<bool>(mesh.of_panel.size(), true));
    std::vector<Pair> pairs;
    for (const auto &[s, t] : edges.shared) {
        const auto &one = mesh.of_panel[static_cast<std::size_t>(s.panel)],
                   &two = mesh.of_panel[static_cast<std::size_t>(t.panel)];
        if (!is_triangle(one) || !is_triangle(two))
            continue;
        // The side runs from a to b in the first one: the corner of the other one goes between them.
        const std::array<int, 4> corners = {third(one, s.a, s.b), s.a, third(two, s.a, s.b), s.b};
        BodyPanel panel;
        for (std::size_t v = 0; v < 4; ++v)
            panel.at[v] = mesh.points[static_cast<std::size_t>(corners[v])];
        const PanelShape shape = shape_of(panel);
        const double cosine = squareness(panel, shape.normal);
        if (shape.warp <= warp && cosine <= LARGEST_COSINE)
            pairs.push_back({cosine, s.panel, t.panel, corners});
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const Pair &a, const Pair &b) { return a.cosine < b.cosine; });
    std::vector<bool> taken(mesh.of_panel.size(), false);
    int joined = 0;
    for (const Pair &pair : pairs) {
        const std::size_t p = static_cast<std::size_t>(pair.p), q = static_cast<std::size_t>(pair.q);
        if (taken[p] || taken[q])
            continue;
        taken[p] = taken[q] = true;
        mesh.of_panel[p] = pair.corners;
        mesh.of_panel[q].fill(pair.corners[0]); // no panel any more
        ++joined;
    }
    (void)tidy(mesh);
    return joined;
}
