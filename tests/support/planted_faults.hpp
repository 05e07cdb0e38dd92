// Sound meshes of simple bodies, and faults to plant in a known panel of them.
#pragma once

#include "mesh/body_mesh.hpp"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

using Patch = std::function<BodyPoint(double, double)>;

// nu by nv panels of a surface over the unit square, anti-clockwise from the side that u x v points to.
inline void add_patch(BodyMesh &mesh, int nu, int nv, const Patch &at) {
    for (int i = 0; i < nu; ++i)
        for (int j = 0; j < nv; ++j) {
            const double u = double(i) / nu, v = double(j) / nv, du = 1.0 / nu, dv = 1.0 / nv;
            mesh.panels.push_back({{at(u, v), at(u + du, v), at(u + du, v + dv), at(u, v + dv)}});
        }
}
// A box of 4 x 2 x 1, 112 panels; the first 16 are the end x = 2, of which panel 4 touches the surface.
inline BodyMesh box() {
    BodyMesh m;
    add_patch(m, 4, 4, [](double u, double v) { return BodyPoint{2, 2 * u - 1, v - 1}; });
    add_patch(m, 4, 4, [](double u, double v) { return BodyPoint{-2, 1 - 2 * u, v - 1}; });
    add_patch(m, 8, 4, [](double u, double v) { return BodyPoint{2 - 4 * u, 1, v - 1}; });
    add_patch(m, 8, 4, [](double u, double v) { return BodyPoint{4 * u - 2, -1, v - 1}; });
    add_patch(m, 4, 8, [](double u, double v) { return BodyPoint{4 * v - 2, 2 * u - 1, -1}; });
    return m;
}
// Half a ship with parabolic lines, y > 0, symmetric about y = 0.
inline BodyMesh ship() {
    BodyMesh m;
    m.symmetric[1] = true;
    add_patch(m, 16, 4, [](double u, double v) {
        const double x = 1 - 2 * u, z = v - 1;
        return BodyPoint{2 * x, 0.4 * (1 - x * x) * (1 - z * z), 0.3 * z};
    });
    return m;
}

inline BodyPoint middle(const BodyPoint &a, const BodyPoint &b) {
    return {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2};
}

inline void turn(BodyMesh &m, std::size_t p) {
    std::reverse(m.panels[p].at.begin(), m.panels[p].at.end());
}

struct Fault {
    const char *name;
    void (*plant)(BodyMesh &);
    std::vector<std::pair<const char *, std::vector<int>>>
        told; // words and, unless empty, panels that are named
};
// Panel 6 lies in the middle of the end of the box and of the ship's side; panel 8 touches the surface.
inline const Fault FAULTS[] = {
    {"one turned", [](BodyMesh &m) { turn(m, 5); }, {{"turned against", {6}}}},
    {"three turned",
     [](BodyMesh &m) {
         for (const std::size_t p : {5u, 6u, 30u})
             turn(m, p);
     },
     {{"turned against", {6, 7, 31}}}},
    {"all turned",
     [](BodyMesh &m) {
         for (std::size_t p = 0; p < m.panels.size(); ++p)
             turn(m, p);
     },
     {{"all normals point into the water", {}}}},
    {"missing",
     [](BodyMesh &m) { m.panels.erase(m.panels.begin() + 5); },
     {{"a panel is missing", {2, 5, 6, 9}}, {"volumes differ", {}}}},
    {"doubled",
     [](BodyMesh &m) { m.panels.push_back(m.panels[5]); },
     {{"on the same place", {6}}, {"more than two", {}}}},
    {"shifted by a hundredth",
     [](BodyMesh &m) {
         for (BodyPoint &p : m.panels[5].at)
             p[2] += 0.0025;
     },
     {{"do not meet", {2, 5, 6, 7, 10}}}},
    {"T-junction",
     [](BodyMesh &m) {
         const auto [a, b, c, d] = m.panels[5].at;
         m.panels[5].at = {a, b, middle(b, c), middle(a, d)};
         m.panels.push_back({{middle(a, d), middle(b, c), c, d}});
     },
     {{"in the middle of a neighbour's side", {2, 6, 10}}}},
    {"crack along a seam",
     [](BodyMesh &m) {
         for (std::size_t p = 4; p < 8; ++p)
             for (BodyPoint &v : m.panels[p].at)
                 v[0] -= 0.002;
     },
     {{"do not meet", {5, 6, 7, 8}}}},
    {"waterline gap", [](BodyMesh &m) { m.panels[7].at[2][2] = m.panels[7].at[3][2] = -0.004; }, {{"", {8}}}},
    {"doubled with another order",
     [](BodyMesh &m) {
         m.panels.push_back(m.panels[5]);
         std::rotate(m.panels.back().at.begin(), m.panels.back().at.begin() + 1, m.panels.back().at.end());
     },
     {{"on the same place", {6}}}},
    {"just below the surface",
     [](BodyMesh &m) {
         for (BodyPanel &p : m.panels)
             for (BodyPoint &v : p.at)
                 v[2] -= 0.002;
     },
     {{"no waterline", {}}}},
};
