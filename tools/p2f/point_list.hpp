// Points in the fluid that a user asks for.
#pragma once

#include "post/vector3.hpp"

#include <string>
#include <vector>

// Reads a list: x, y and, unless it is 0, z of a point in a line, with blanks or commas; text from # on is a
// comment. False, with file and line in `error`.
[[nodiscard]] bool read_points(const std::string &name, std::vector<Vector3> &points, std::string &error);

// Points of a level grid: x from..to in n points, y likewise, at z. {x0, x1, nx, y0, y1, ny}. False, with
// what is wrong in `error`.
[[nodiscard]] bool grid_points(const std::vector<double> &grid, double z, std::vector<Vector3> &points,
                               std::string &error);
