#include "mesh/rays.hpp"

#include "mesh/merge.hpp"
#include "mesh/vectors.hpp"

#include <algorithm>

namespace {
constexpr std::size_t MOST_ENTRIES = 32; // of the grid, for each triangle
}

Rays::Rays(const MergedVertices &mesh, const BodyPoint &direction) : mesh_(mesh) {
    const double n = length(direction);
    axes_[2] = {direction[0] / n, direction[1] / n, direction[2] / n};
    axes_[0] = cross(axes_[2], std::fabs(axes_[2][0]) < 0.7 ? BodyPoint{1, 0, 0} : BodyPoint{0, 1, 0});
    const double m = length(axes_[0]);
    for (double &v : axes_[0])
        v /= m;
    axes_[1] = cross(axes_[2], axes_[0]);
    double high[2] = {-1e300, -1e300};
    low_[0] = low_[1] = 1e300;
    for (std::size_t p = 0; p < mesh.of_panel.size(); ++p) {
        const BodyPanel panel = panel_of(mesh, p);
        for (const std::size_t third : {2u, 3u}) {
            if (third == 3 && is_triangle(mesh.of_panel[p]))
                continue;
            Triangle t{{turned(panel.at[0]), turned(panel.at[third - 1]), turned(panel.at[third])}, p};
            for (const auto &v : t.at)
                for (std::size_t c = 0; c < 2; ++c) {
                    low_[c] = std::min(low_[c], v[c]);
                    high[c] = std::max(high[c], v[c]);
                }
            triangles_.push_back(t);
        }
    }
    // Long triangles cover many cells: fewer and larger ones then.
    std::size_t entries = 0;
    cells_ = static_cast<std::size_t>(std::sqrt(static_cast<double>(triangles_.size()))) / 2 + 1;
    do {
        for (std::size_t c = 0; c < 2; ++c)
            step_[c] = std::max(high[c] - low_[c], 1e-300) / static_cast<double>(cells_);
        entries = 0;
        for (const Triangle &t : triangles_) {
            const auto box = covered(t);
            entries += (box[0][1] - box[0][0] + 1) * (box[1][1] - box[1][0] + 1);
        }
    } while (entries > MOST_ENTRIES * triangles_.size() && (cells_ /= 2) >= 1);
    in_cell_.resize(cells_ * cells_);
    for (std::size_t i = 0; i < triangles_.size(); ++i) {
        const auto box = covered(triangles_[i]);
        for (std::size_t u = box[0][0]; u <= box[0][1]; ++u)
            for (std::size_t v = box[1][0]; v <= box[1][1]; ++v)
                in_cell_[u * cells_ + v].push_back(static_cast<int>(i));
    }
}

std::array<std::array<std::size_t, 2>, 2> Rays::covered(const Triangle &t) const {
    std::array<std::array<std::size_t, 2>, 2> box;
    for (std::size_t c = 0; c < 2; ++c)
        box[c] = {cell(std::min({t.at[0][c], t.at[1][c], t.at[2][c]}), c),
                  cell(std::max({t.at[0][c], t.at[1][c], t.at[2][c]}), c)};
    return box;
}

std::array<double, 3> Rays::turned(const BodyPoint &p) const {
    return {dot(axes_[0], p), dot(axes_[1], p), dot(axes_[2], p)};
}

std::size_t Rays::cell(double value, std::size_t c) const {
    const double place = (value - low_[c]) / step_[c];
    return static_cast<std::size_t>(std::clamp(place, 0.0, static_cast<double>(cells_ - 1)));
}

std::vector<std::size_t> Rays::crossed(std::size_t panel) const {
    const BodyPanel from = panel_of(mesh_, panel);
    BodyPoint centre{};
    const std::size_t corners = is_triangle(mesh_.of_panel[panel]) ? 3 : 4;
    for (std::size_t v = 0; v < corners; ++v)
        for (std::size_t c = 0; c < 3; ++c)
            centre[c] += from.at[v][c] / static_cast<double>(corners);
    const std::array<double, 3> o = turned(centre);
    std::vector<std::size_t> found;
    for (const int i : in_cell_[cell(o[0], 0) * cells_ + cell(o[1], 1)]) {
        const Triangle &t = triangles_[static_cast<std::size_t>(i)];
        if (t.panel == panel)
            continue;
        double part[3], sum = 0;
        for (std::size_t v = 0; v < 3; ++v) {
            const auto &a = t.at[(v + 1) % 3], &b = t.at[(v + 2) % 3];
            part[v] = (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0]);
            sum += part[v];
        }
        const bool inside =
            (part[0] > 0 && part[1] > 0 && part[2] > 0) || (part[0] < 0 && part[1] < 0 && part[2] < 0);
        if (!inside)
            continue;
        const double along = (part[0] * t.at[0][2] + part[1] * t.at[1][2] + part[2] * t.at[2][2]) / sum;
        if (along > o[2])
            found.push_back(t.panel);
    }
    return found;
}
