// Points in the fluid, and those where there is none.
#pragma once

#include "post/images.hpp"
#include "post/vector3.hpp"

enum class PointMark {
    fluid,
    near,   // to a panel by less than half its size, where constant panels mean nothing
    inside, // a body
    outside // above the free surface, below the bottom, behind a wall
};
const char *name_of(PointMark mark);

// The marks of points, global axes, lengths in units of ULEN(1).
std::vector<PointMark> mark_points(const P2fFile &p2f, const std::vector<Vector3> &points);
