#include "mesh/merge.hpp"

#include "mesh/vectors.hpp"

#include <algorithm>

namespace {

constexpr double NO_AREA = 1e-12; // area of a panel that is a line, over its longest side squared

// The corners without repetition, in order; empty: no panel.
std::vector<int> distinct(const std::array<int, 4> &corners) {
    std::vector<int> list;
    for (std::size_t v = 0; v < 4; ++v)
        if (corners[v] != corners[(v + 3) % 4])
            list.push_back(corners[v]);
    // Two opposite corners in one point: the panel is folded upon itself.
    const bool folded = list.size() == 4 && (list[0] == list[2] || list[1] == list[3]);
    if (list.size() < 3 || folded)
        list.clear();
    return list;
}

} // namespace

int erase_panels(MergedVertices &mesh, const std::vector<bool> &out) {
    std::size_t kept = 0;
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        if (!out[p])
            mesh.of_panel[kept++] = mesh.of_panel[p];
    const int erased = static_cast<int>(mesh.of_panel.size() - kept);
    mesh.of_panel.resize(kept);
    return erased;
}

int tidy(MergedVertices &mesh) {
    std::vector<bool> out(mesh.of_panel.size(), false);
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p) {
        const std::vector<int> list = distinct(mesh.of_panel[p]);
        out[p] = list.empty();
        for (std::size_t v = 0; v < 4 && !list.empty(); ++v)
            mesh.of_panel[p][v] = list[std::min(v, list.size() - 1)];
    }
    const int erased = erase_panels(mesh, out);
    std::vector<int> number(mesh.points.size(), -1);
    std::vector<BodyPoint> points;
    for (std::array<int, 4> &corners : mesh.of_panel)
        for (int &c : corners) {
            int &to = number[static_cast<std::size_t>(c)];
            if (to < 0) {
                to = static_cast<int>(points.size());
                points.push_back(mesh.points[static_cast<std::size_t>(c)]);
            }
            c = to;
        }
    mesh.points = std::move(points);
    return erased;
}

MergeCounts merge(MergedVertices &mesh, double tolerance) {
    MergeCounts counts;
    const std::vector<int> to = merge_points(mesh.points, tolerance);
    for (std::size_t i = 0; i < to.size(); ++i)
        counts.points += to[i] == static_cast<int>(i) ? 0 : 1;
    for (std::array<int, 4> &corners : mesh.of_panel)
        for (int &c : corners)
            c = to[static_cast<std::size_t>(c)];
    counts.degenerate = tidy(mesh);
    std::vector<bool> out(mesh.of_panel.size(), false);
    for (std::size_t p = 0; p < out.size(); ++p) {
        const PanelShape shape = shape_of(panel_of(mesh, p));
        out[p] = shape.area <= NO_AREA * shape.longest * shape.longest;
    }
    counts.degenerate += erase_panels(mesh, out);
    erase_doubled(mesh, counts);
    (void)tidy(mesh);
    return counts;
}

double size_of(const MergedVertices &mesh) {
    double size = 0;
    for (std::size_t c = 0; c < 3 && !mesh.points.empty(); ++c) {
        const auto [low, high] =
            std::minmax_element(mesh.points.begin(), mesh.points.end(),
                                [&](const BodyPoint &a, const BodyPoint &b) { return a[c] < b[c]; });
        size = std::max(size, (*high)[c] - (*low)[c]);
    }
    return size;
}

BodyPanel panel_of(const MergedVertices &mesh, std::size_t panel) {
    BodyPanel result;
    for (std::size_t v = 0; v < 4; ++v)
        result.at[v] = mesh.points[static_cast<std::size_t>(mesh.of_panel[panel][v])];
    return result;
}

void reverse(std::array<int, 4> &corners) {
    corners = is_triangle(corners) ? std::array<int, 4>{corners[1], corners[0], corners[2], corners[2]}
                                   : std::array<int, 4>{corners[3], corners[2], corners[1], corners[0]};
}

void add_images(MergedVertices &mesh, int axis, double tolerance) {
    const std::size_t a = static_cast<std::size_t>(axis), n = mesh.points.size(),
                      panels = mesh.of_panel.size();
    std::vector<int> image(n);
    for (std::size_t i = 0; i < n; ++i) {
        BodyPoint p = mesh.points[i];
        if (std::fabs(p[a]) <= tolerance) {
            mesh.points[i][a] = 0;
            image[i] = static_cast<int>(i);
            continue;
        }
        p[a] = -p[a];
        image[i] = static_cast<int>(mesh.points.size());
        mesh.points.push_back(p);
    }
    for (std::size_t p = 0; p < panels; ++p) {
        std::array<int, 4> corners = mesh.of_panel[p];
        for (int &c : corners)
            c = image[static_cast<std::size_t>(c)];
        reverse(corners);
        mesh.of_panel.push_back(corners);
    }
}

std::vector<MergedVertices> divide(const MergedVertices &mesh) {
    const std::vector<bool> all(mesh.of_panel.size(), true);
    const MeshPieces pieces = pieces_of(edges_of(mesh, all), all);
    std::vector<std::vector<std::size_t>> members(static_cast<std::size_t>(pieces.pieces));
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p)
        members[static_cast<std::size_t>(pieces.piece[p])].push_back(p);
    std::vector<MergedVertices> parts;
    std::vector<int> number(mesh.points.size()),
        owner(mesh.points.size(), -1); // a point may be of two pieces
    for (std::size_t k = 0; k < members.size(); ++k) {
        MergedVertices part;
        for (const std::size_t p : members[k]) {
            std::array<int, 4> corners = mesh.of_panel[p];
            for (int &c : corners) {
                const std::size_t i = static_cast<std::size_t>(c);
                if (owner[i] != static_cast<int>(k)) {
                    owner[i] = static_cast<int>(k);
                    number[i] = static_cast<int>(part.points.size());
                    part.points.push_back(mesh.points[i]);
                }
                c = number[i];
            }
            part.of_panel.push_back(corners);
        }
        parts.push_back(std::move(part));
    }
    return parts;
}
