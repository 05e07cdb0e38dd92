// Arithmetic of points and vectors in space.
#pragma once

#include "mesh/body_mesh.hpp"

#include <cmath>

inline BodyPoint minus(const BodyPoint &a, const BodyPoint &b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
inline double dot(const BodyPoint &a, const BodyPoint &b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline BodyPoint cross(const BodyPoint &a, const BodyPoint &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
inline double length(const BodyPoint &a) {
    return std::sqrt(dot(a, a));
}
inline double distance(const BodyPoint &a, const BodyPoint &b) {
    return length(minus(a, b));
}
// The point at fraction t of the way from a to b.
inline BodyPoint between(const BodyPoint &a, const BodyPoint &b, double t) {
    return {a[0] + t * (b[0] - a[0]), a[1] + t * (b[1] - a[1]), a[2] + t * (b[2] - a[2])};
}
