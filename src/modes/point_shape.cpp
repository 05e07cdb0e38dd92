#include "modes/point_shape.hpp"

#include "base/lapack.hpp"
#include "post/number_line.hpp"
#include "post/vector3.hpp"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>

namespace {

constexpr std::size_t COLUMNS = 4; // of a linear fit: 1, x, y, z

struct GivenPoint {
    Vec3 at{}, u{};
};
struct Near {
    double distance;
    const GivenPoint *point;
};

std::vector<Near> nearest(const std::vector<GivenPoint> &points, const Vec3 &r, std::size_t count) {
    std::vector<Near> near;
    near.reserve(points.size());
    for (const GivenPoint &point : points) {
        const Vec3 apart = plus(point.at, times(-1.0, r));
        near.push_back({dot(apart, apart), &point});
    }
    count = std::min(count, near.size());
    std::partial_sort(near.begin(), near.begin() + static_cast<std::ptrdiff_t>(count), near.end(),
                      [](const Near &a, const Near &b) { return a.distance < b.distance; });
    near.resize(count);
    for (Near &n : near)
        n.distance = std::sqrt(n.distance);
    return near;
}

// Mean with the weights 1 / d^2 and its slopes; at a point its own displacement, level there.
Displacement inverse_distance(const std::vector<Near> &near, const Vec3 &r) {
    Displacement d;
    double weights = 0;
    for (const Near &n : near) {
        if (n.distance == 0) {
            d.u = n.point->u;
            return d;
        }
        const double weight = 1 / (n.distance * n.distance);
        d.u = plus(d.u, times(weight, n.point->u));
        weights += weight;
    }
    d.u = times(1 / weights, d.u);
    for (const Near &n : near) {
        const double steep = -2 / std::pow(n.distance, 4) / weights;
        for (std::size_t k = 0; k < 3; ++k)
            for (std::size_t l = 0; l < 3; ++l)
                d.slope[k][l] += steep * (r[l] - n.point->at[l]) * (n.point->u[k] - d.u[k]);
    }
    return d;
}

// The fit's value and slopes at r. Points in one line or plane leave slopes open: those of least norm count.
Displacement least_squares(const std::vector<Near> &near, const Vec3 &r) {
    const double reach = 1.001 * std::max(near.back().distance, 1e-30);
    const std::size_t rows = near.size();
    std::vector<double> a(rows * COLUMNS), b(std::max(rows, COLUMNS) * 3);
    const std::size_t ldb = std::max(rows, COLUMNS);
    for (std::size_t i = 0; i < rows; ++i) {
        const double t = near[i].distance / reach;
        const double weight = std::sqrt(std::pow(1 - t, 4) * (4 * t + 1));
        a[i] = weight;
        for (std::size_t c = 0; c < 3; ++c) {
            a[i + (c + 1) * rows] = weight * (near[i].point->at[c] - r[c]) / reach;
            b[i + c * ldb] = weight * near[i].point->u[c];
        }
    }
    const int m = static_cast<int>(rows), n = COLUMNS, three = 3, ld = static_cast<int>(ldb), room = 256;
    int pivots[COLUMNS] = {}, rank = 0, info = 0;
    double work[256];
    const double rcond = 1e-8;
    dgelsy_(&m, &n, &three, a.data(), &m, b.data(), &ld, pivots, &rcond, &rank, work, &room, &info);
    Displacement d;
    for (std::size_t c = 0; c < 3; ++c) {
        d.u[c] = b[c * ldb];
        for (std::size_t l = 0; l < 3; ++l)
            d.slope[c][l] = b[l + 1 + c * ldb] / reach;
    }
    return d;
}

bool read_points(const std::string &name, std::size_t which, std::vector<GivenPoint> &points,
                 std::string &error) {
    std::ifstream in(name);
    if (!in) {
        error = name + " cannot be opened: names count from the folder of the modes file";
        return false;
    }
    std::string line;
    for (int n = 1; std::getline(in, line); ++n) {
        std::vector<double> values;
        const bool numbers = numbers_of(line, values);
        if (n == 1 && !numbers) // a line of names
            continue;
        if (numbers && values.empty())
            continue;
        const std::size_t first = 3 * which;
        if (!numbers || values.size() < first + 3) {
            error = name + ", line " + std::to_string(n) + ": needs x, y, z and " + std::to_string(which) +
                    " times three displacements, not: " + line.substr(0, 60);
            return false;
        }
        points.push_back(
            {{values[0], values[1], values[2]}, {values[first], values[first + 1], values[first + 2]}});
    }
    if (points.size() < COLUMNS)
        error = name + " has " + std::to_string(points.size()) + " points, four are needed";
    return points.size() >= COLUMNS;
}

} // namespace

bool make_point_shape(const ModeFile &file, const ModeEntry &entry, ModeShape &shape, std::string &error) {
    if (entry.number < 1 || entry.neighbours < static_cast<int>(COLUMNS)) {
        error = entry.number < 1 ? "number counts from 1" : "neighbours has to be 4 at least";
        return false;
    }
    const auto points = std::make_shared<std::vector<GivenPoint>>();
    const std::string name = entry.file[0] == '/' ? entry.file : file.folder + "/" + entry.file;
    if (!read_points(name, static_cast<std::size_t>(entry.number), *points, error))
        return false;
    const std::size_t count = static_cast<std::size_t>(entry.neighbours);
    if (entry.method == "inverse-distance")
        shape.at = [=](const Vec3 &r) { return inverse_distance(nearest(*points, r, count), r); };
    else
        shape.at = [=](const Vec3 &r) { return least_squares(nearest(*points, r, count), r); };
    return true;
}
