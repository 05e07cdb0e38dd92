// Panels of simple hulls, as quarter patches x >= 0, y >= 0 with the free surface at z = 0.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

using Point = std::array<double, 3>;
struct MeshPanel {
    std::array<Point, 4> vertex;
    bool plate = false; // a dipole panel
};
using Panels = std::vector<MeshPanel>;

// Turns the order of vertices so that the normal (of the panel's own frame) has a positive
// component along `inward`.
MeshPanel oriented(const MeshPanel &panel, const Point &inward);

// nu by nv panels of a surface over the unit square; inward(centroid) points into the body.
Panels patch(int nu, int nv, const std::function<Point(double u, double v)> &surface,
             const std::function<Point(const Point &)> &inward);

// Quarter hulls. Counts are those of the quarter; `lid` adds panels in z = 0 with normal down; without
// `bottom` the hull stands on the sea bed.
Panels hemisphere(double radius, int around, int down);
Panels cylinder(double radius, double draft, int around, int down, int radial, bool bottom, bool lid);
Panels box(double length, double beam, double draft, int nx, int ny, int nz, bool lid);
// y = B/2 (1 - (2 x / L)^2) (1 - (z / T)^2).
Panels wigley(double length, double beam, double draft, int nx, int nz);

// Thin plates. A horizontal disc, normal up. Two vertical plates in x = distance/2 and its image, from the
// free surface down, normal towards x = 0.
Panels heave_plate(double radius, double z, int around, int radial);
Panels twin_plates(double distance, double beam, double draft, int ny, int nz);
// The closed walls of a tank from z = top down, normal out of the fluid.
Panels tank(double length, double beam, double height, double top, int nx, int ny, int nz);

// The panels and their images in x = 0 (axis 0) or y = 0 (axis 1).
Panels mirrored(const Panels &panels, int axis);
