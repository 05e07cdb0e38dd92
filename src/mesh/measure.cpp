#include "mesh/vectors.hpp"

#include <algorithm>
#include <cmath>

namespace {

// Sums over triangles of a surface: the integral over each of a polynomial of the second degree is a third of
// the area times the sum of its values at the middles of the sides.
struct Sums {
    BodyPoint volume{};   // n_c x_c
    BodyPoint moment{};   // n_c x_c^2 / 2
    double plane[3] = {}; // n_z, n_z x, n_z y: the waterplane, less what stands on the bottom

    void add(const BodyPoint &a, const BodyPoint &b, const BodyPoint &c) {
        BodyPoint n = cross(minus(b, a), minus(c, a)); // twice the area, out of the body
        for (double &v : n)
            v *= 0.5;
        for (int side = 0; side < 3; ++side) {
            const BodyPoint &p = side == 0 ? a : side == 1 ? b : c, &q = side == 0 ? b : side == 1 ? c : a;
            const BodyPoint m = {(p[0] + q[0]) / 2, (p[1] + q[1]) / 2, (p[2] + q[2]) / 2};
            for (std::size_t k = 0; k < 3; ++k) {
                volume[k] += n[k] * m[k] / 3;
                moment[k] += n[k] * m[k] * m[k] / 6;
            }
            plane[0] += n[2] / 3;
            plane[1] += n[2] * m[0] / 3;
            plane[2] += n[2] * m[1] / 3;
        }
    }
};

double median(double a, double b, double c) {
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

// Adds one panel and what it bounds to the measures, sides to `sides` and `total`.
void add_panel(const BodyPanel &panel, MeshMeasures &m, int &sides, double &total) {
    for (std::size_t v = 0; v < 4; ++v) {
        const double side = length(minus(panel.at[(v + 1) % 4], panel.at[v]));
        if (side > 0) {
            ++sides;
            total += side;
        }
        for (std::size_t c = 0; c < 3; ++c) {
            m.low[c] = std::min(m.low[c], panel.at[v][c]);
            m.high[c] = std::max(m.high[c], panel.at[v][c]);
        }
    }
}

// Panels of the hull with a side in z = 0.
int waterline_panels(const BodyMesh &mesh, const MeshMeasures &m) {
    const double size = std::max({m.high[0] - m.low[0], m.high[1] - m.low[1], m.high[2] - m.low[2]});
    int count = 0;
    for (const BodyPanel &panel : mesh.panels) {
        bool found = false;
        for (std::size_t v = 0; v < 4; ++v) {
            const BodyPoint &a = panel.at[v], &b = panel.at[(v + 1) % 4];
            found = found ||
                    (a != b && std::fabs(a[2]) <= IN_SURFACE * size && std::fabs(b[2]) <= IN_SURFACE * size);
        }
        count += found && panel.kind == PanelKind::hull ? 1 : 0;
    }
    return count;
}

} // namespace

PanelShape shape_of(const BodyPanel &panel) {
    const auto &p = panel.at;
    PanelShape s;
    for (std::size_t v = 0; v < 4; ++v) {
        s.longest = std::max(s.longest, length(minus(p[(v + 1) % 4], p[v])));
        for (std::size_t c = 0; c < 3; ++c)
            s.centre[c] += p[v][c] / 4;
    }
    // Diagonals span the mean plane; seen from the water anti-clockwise, their product points into the water.
    const BodyPoint out = cross(minus(p[2], p[0]), minus(p[3], p[1]));
    s.area = length(out) / 2;
    if (s.area <= 0 || s.longest <= 0)
        return s;
    for (std::size_t c = 0; c < 3; ++c)
        s.normal[c] = -out[c] / (2 * s.area);
    bool triangle = false;
    for (std::size_t v = 0; v < 4; ++v) {
        triangle = triangle || length(minus(p[(v + 1) % 4], p[v])) <= 1e-9 * s.longest;
        s.warp = std::max(s.warp, std::fabs(dot(s.normal, minus(p[v], s.centre))) / s.longest);
    }
    s.aspect = s.longest * s.longest / ((triangle ? 2 : 1) * s.area);
    return s;
}

MeshMeasures measure(const BodyMesh &mesh) {
    MeshMeasures m;
    Sums sums;
    int sides = 0;
    double total = 0;
    m.low = {1e300, 1e300, 1e300};
    m.high = {-1e300, -1e300, -1e300};
    const double images = (mesh.symmetric[0] ? 2 : 1) * (mesh.symmetric[1] ? 2 : 1);
    for (const BodyPanel &panel : mesh.panels) {
        m.interior += panel.kind == PanelKind::interior ? 1 : 0;
        m.made += panel.kind == PanelKind::made ? 1 : 0;
        m.plates += panel.kind == PanelKind::plate ? 1 : 0;
        if (panel.kind == PanelKind::made)
            continue;
        const PanelShape shape = shape_of(panel);
        m.longest = std::max(m.longest, shape.longest);
        m.aspect = std::max(m.aspect, shape.aspect);
        m.warp = std::max(m.warp, shape.warp);
        add_panel(panel, m, sides, total);
        if (panel.kind != PanelKind::hull)
            continue;
        m.surface += images * shape.area;
        const auto &p = panel.at;
        sums.add(p[0], p[1], p[2]);
        sums.add(p[0], p[2], p[3]);
    }
    m.given = static_cast<int>(mesh.panels.size()) - m.made;
    m.with_images = m.given * static_cast<int>(images);
    m.mean = sides > 0 ? total / sides : 0;
    for (std::size_t c = 0; c < 2; ++c) {
        if (!mesh.symmetric[c])
            continue;
        m.high[c] = std::max(std::fabs(m.high[c]), std::fabs(m.low[c]));
        m.low[c] = -m.high[c];
    }
    m.waterline = waterline_panels(mesh, m);
    for (std::size_t c = 0; c < 3; ++c)
        m.volume[c] = images * sums.volume[c];
    m.mean_volume = median(m.volume[0], m.volume[1], m.volume[2]);
    if (m.mean_volume != 0)
        for (std::size_t c = 0; c < 3; ++c)
            m.buoyancy[c] = c < 2 && mesh.symmetric[c] ? 0 : images * sums.moment[c] / m.mean_volume;
    // What the hull closes below, the waterplane closes above.
    m.waterplane = -images * sums.plane[0];
    if (m.waterplane != 0) {
        m.waterplane_x = mesh.symmetric[0] ? 0 : -images * sums.plane[1] / m.waterplane;
        m.waterplane_y = mesh.symmetric[1] ? 0 : -images * sums.plane[2] / m.waterplane;
    }
    return m;
}
