#include "freesurface/fdf_contour.hpp"

#include <algorithm>
#include <cstdio>

namespace {

// Goes on from `point`: at each step to the first side but side 0 one end of which, `near`, lies there, and
// to its other end, until there is none or each side had its turn.
std::vector<SurfacePoint> walk(const std::vector<WaterSide> &sides, double TOL, SurfacePoint point,
                               SurfacePoint WaterSide::*near, SurfacePoint WaterSide::*far) {
    std::vector<SurfacePoint> points;
    for (std::size_t step = 1; step < sides.size(); ++step) {
        const auto next = std::find_if(sides.begin() + 1, sides.end(), [&](const WaterSide &side) {
            return distance(point, side.*near) < TOL && distance(side.from, side.to) > TOL;
        });
        if (next == sides.end())
            break;
        points.push_back(point = *next.*far);
    }
    return points;
}

} // namespace

void WLCHN(const std::vector<WaterSide> &sides, double TOL, std::vector<SurfacePoint> &XYCH, int &NSHORT) {
    XYCH = {sides.front().from, sides.front().to};
    for (const SurfacePoint p : walk(sides, TOL, XYCH.back(), &WaterSide::from, &WaterSide::to))
        XYCH.push_back(p);
    if (sides.size() > 1 && !(distance(XYCH.front(), XYCH.back()) < TOL)) {
        const auto before = walk(sides, TOL, XYCH.front(), &WaterSide::to, &WaterSide::from);
        if (!before.empty())
            std::puts("iwtm>1");
        XYCH.insert(XYCH.begin(), before.rbegin(), before.rend());
    }
    NSHORT = static_cast<int>(std::count_if(sides.begin(), sides.end(), [TOL](const WaterSide &side) {
        return distance(side.from, side.to) < TOL;
    }));
}

LineCentre WLCENT(const std::vector<SurfacePoint> &XYCH, double TOL) {
    LineCentre line;
    line.points = {XYCH.front()};
    for (std::size_t k = 1; k < XYCH.size(); ++k) {
        if (distance(XYCH[k], XYCH[k - 1]) > TOL)
            line.points.push_back(XYCH[k]);
    }
    const double twice = 2.0 * static_cast<double>(line.points.size() - 1);
    for (std::size_t k = 1; k < line.points.size(); ++k) {
        line.centre.x += (line.points[k].x + line.points[k - 1].x) / twice;
        line.centre.y += (line.points[k].y + line.points[k - 1].y) / twice;
    }
    line.rmin = line.rmax = distance(line.points.front(), line.centre);
    for (const SurfacePoint p : line.points) {
        line.rmin = std::min(line.rmin, distance(p, line.centre));
        line.rmax = std::max(line.rmax, distance(p, line.centre));
    }
    return line;
}
