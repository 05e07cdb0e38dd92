// Panels of simple bodies for tests and benchmarks, and the run state around them.
#pragma once

#include "geometry/pregeo.hpp"
#include "state/state.hpp"

#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace hulls {

using Point = std::array<double, 3>;
using Quad = std::array<Point, 4>;
using Quads = std::vector<Quad>;

// Panels of the parallelogram corner + a u + b v, 0 <= a, b <= 1, with the normal along u x v.
inline void add_patch(Quads &mesh, Point corner, Point u, Point v, int nu, int nv) {
    const auto at = [&](int i, int j) {
        Point p;
        for (std::size_t c = 0; c < 3; ++c)
            p[c] = corner[c] + u[c] * i / nu + v[c] * j / nv;
        return p;
    };
    for (int j = 0; j < nv; ++j)
        for (int i = 0; i < nu; ++i)
            mesh.push_back({at(i + 1, j + 1), at(i + 1, j), at(i, j), at(i, j + 1)});
}

// Box |x| <= l/2, |y| <= b/2, zbot <= z <= ztop, normals into it; without its top unless `closed`. n panels
// an edge.
inline Quads box(double l, double b, double zbot, double ztop, int n, bool closed) {
    Quads mesh;
    const double x = l / 2, y = b / 2, h = ztop - zbot;
    add_patch(mesh, {-x, -y, zbot}, {l, 0, 0}, {0, b, 0}, n, n); // bottom, normal up
    add_patch(mesh, {-x, -y, zbot}, {0, b, 0}, {0, 0, h}, n, n); // x = -l/2, normal +x
    add_patch(mesh, {x, -y, zbot}, {0, 0, h}, {0, b, 0}, n, n);  // x = l/2
    add_patch(mesh, {-x, -y, zbot}, {0, 0, h}, {l, 0, 0}, n, n); // y = -b/2, normal +y
    add_patch(mesh, {-x, y, zbot}, {l, 0, 0}, {0, 0, h}, n, n);  // y = b/2
    if (closed)
        add_patch(mesh, {-x, -y, ztop}, {0, b, 0}, {l, 0, 0}, n, n);
    return mesh;
}

// The quarter x, y > 0 of that box: the images of a mesh with ISX = ISY = 1.
inline Quads quarter_box(double l, double b, double zbot, double ztop, int n, bool closed) {
    Quads mesh;
    const double x = l / 2, y = b / 2, h = ztop - zbot;
    add_patch(mesh, {0, 0, zbot}, {x, 0, 0}, {0, y, 0}, n, n);
    add_patch(mesh, {x, 0, zbot}, {0, 0, h}, {0, y, 0}, n, n);
    add_patch(mesh, {0, y, zbot}, {x, 0, 0}, {0, 0, h}, n, n);
    if (closed)
        add_patch(mesh, {0, 0, ztop}, {0, y, 0}, {x, 0, 0}, n, n);
    return mesh;
}

// All images of the panels in x = 0 and y = 0, their normals kept into the body; image after image, 1 to 4.
inline Quads mirrored(const Quads &quarter) {
    Quads mesh;
    const double sx[4] = {1, -1, -1, 1}, sy[4] = {1, 1, -1, -1};
    for (std::size_t g = 0; g < 4; ++g)
        for (const Quad &q : quarter) {
            Quad image;
            const bool reverse = sx[g] * sy[g] < 0;
            for (std::size_t v = 0; v < 4; ++v) {
                const Point &p = q[reverse ? 3 - v : v];
                image[v] = {sx[g] * p[0], sy[g] * p[1], p[2]};
            }
            mesh.push_back(image);
        }
    return mesh;
}

// Lower half of a sphere of that radius about the origin, normals into it, m panels from waterline to pole
// and 4 m around; the panels at the pole are triangles.
inline Quads hemisphere(double radius, int m) {
    Quads mesh;
    const double half_pi = 1.5707963267948966;
    const auto at = [&](int i, int j) -> Point {
        const double down = half_pi * i / m, round = half_pi * j / m;
        const double r = i == m ? 0 : radius * std::cos(down);
        return {r * std::cos(round), r * std::sin(round), -radius * std::sin(down)};
    };
    for (int i = 0; i < m; ++i)
        for (int j = 0; j < 4 * m; ++j)
            mesh.push_back({at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)});
    return mesh;
}

// Bodies of these panels, ready for PREGEO: all modes on, each at the origin, extra[b] as NEWMDS of body b
// + 1.
inline void set_bodies(const std::vector<Quads> &meshes, RunState &run, const std::vector<int> &extra = {}) {
    const int B = static_cast<int>(meshes.size());
    Bodies &bodies = run.bodies;
    bodies.NBODY = B;
    bodies.NMODES = 6 * B;
    for (const int n : extra)
        bodies.NMODES += std::abs(n);
    Quads all;
    for (const Quads &mesh : meshes)
        all.insert(all.end(), mesh.begin(), mesh.end());
    const int N = run.mesh.NEQN = static_cast<int>(all.size());
    const bool made = bodies.XBODY.alloc(4, B) && bodies.NEQNB.alloc(B) && bodies.NEWMDS.alloc(B) &&
                      bodies.NPANS.alloc(B) && bodies.MODE.alloc(bodies.NMODES) && bodies.VOL.alloc(3, B) &&
                      bodies.XCB.alloc(3, B) && run.mesh.XVER.alloc(4, 3, N) &&
                      allocate_mesh(bodies, run.mesh);
    if (!made)
        std::abort();
    for (int b = 1; b <= B; ++b) {
        const std::size_t at = static_cast<std::size_t>(b - 1);
        bodies.NEQNB(b) = bodies.NPANS(b) = static_cast<int>(meshes[at].size());
        bodies.NEWMDS(b) = extra.empty() ? 0 : extra[at];
    }
    bodies.MODE.fill(1);
    f32 *value = run.mesh.XVER.data();
    for (const Quad &quad : all)
        for (std::size_t c = 0; c < 3; ++c)
            for (const Point &vertex : quad)
                *value++ = static_cast<f32>(vertex[c]);
}
// One body at the given place.
inline void set_body(const Quads &mesh, RunState &run, std::array<f32, 4> place = {0, 0, 0, 0}) {
    set_bodies({mesh}, run);
    for (int c = 1; c <= 4; ++c)
        run.bodies.XBODY(c, 1) = place[static_cast<std::size_t>(c - 1)];
}
inline Status pre_pass(RunState &run) {
    return PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh);
}

} // namespace hulls
