#include "point_list.hpp"

#include "post/number_line.hpp"

#include <cmath>
#include <fstream>

namespace {

constexpr double MOST = 1e7; // points of a request

} // namespace

bool read_points(const std::string &name, std::vector<Vector3> &points, std::string &error) {
    std::ifstream in(name);
    if (!in) {
        error = name + " cannot be opened";
        return false;
    }
    std::string line;
    for (int n = 1; std::getline(in, line); ++n) {
        std::vector<double> values;
        const bool good = numbers_of(line, values);
        if (!good || values.size() == 1 || values.size() > 3) {
            error =
                name + ", line " + std::to_string(n) + ": a point is x, y and z, not: " + line.substr(0, 60);
            return false;
        }
        if (!values.empty())
            points.push_back({values[0], values[1], values.size() == 3 ? values[2] : 0});
    }
    if (points.empty())
        error = name + " has no points";
    return !points.empty();
}

bool grid_points(const std::vector<double> &grid, double z, std::vector<Vector3> &points,
                 std::string &error) {
    const double nx = grid[2], ny = grid[5];
    if (nx < 1 || ny < 1 || nx != std::floor(nx) || ny != std::floor(ny) || nx * ny > MOST) {
        error = "--grid needs whole numbers of points, 1e7 together at most: X0 X1 NX Y0 Y1 NY";
        return false;
    }
    for (int j = 0; j < static_cast<int>(ny); ++j)
        for (int i = 0; i < static_cast<int>(nx); ++i)
            points.push_back({nx > 1 ? grid[0] + i * (grid[1] - grid[0]) / (nx - 1) : grid[0],
                              ny > 1 ? grid[3] + j * (grid[4] - grid[3]) / (ny - 1) : grid[3], z});
    return true;
}
