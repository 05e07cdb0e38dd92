// The shape of a mode: displacements of the places of a body for a unit of the mode.
#pragma once

#include "post/hydrostatics.hpp"

#include <functional>

// At a place: displacement along x, y, z, and its derivatives: slope[k][l] of component k along l.
struct Displacement {
    Vec3 u{};
    Matrix3 slope{};
};
// How the axis of a beam bends there, per unit of the mode: second derivatives of its vertical and its
// horizontal deflection, and the derivative of its turn about x.
struct Curvature {
    double vertical = 0, horizontal = 0, twist = 0;
};
struct ModeShape {
    std::function<Displacement(const Vec3 &)> at;
    std::function<Curvature(double)> bends; // along x; none for displacements that are given at points
    std::vector<double> breaks;             // x where it is not smooth
};
// A rigid mode, 1 to 6, about the origin of the body.
ModeShape rigid_shape(int mode);
