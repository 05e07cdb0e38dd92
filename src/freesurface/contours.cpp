#include "freesurface/contours.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double ZERO_SIDE = 1.0000001e-6; // a shorter side does not count in the mean length
constexpr double SAME_POINT = 0.001;       // WLTOL in mean lengths

bool on_plane(SurfacePoint p, SurfacePlanes planes, double tolerance) {
    return (planes.x0 && std::fabs(p.x) < tolerance) || (planes.y0 && std::fabs(p.y) < tolerance);
}

// The walk along the sides.
struct Walk {
    const std::vector<WaterSide> &sides;
    double tolerance;
    std::vector<char> takes_part;
    std::vector<char> done;

    // The side whose near end, as `gap` measures, lies nearest; -1 when there is none within the tolerance.
    template <class Gap> int nearest(int side, const Gap &gap) const {
        int found = -1;
        double least = tolerance;
        for (int j = 0; j < static_cast<int>(sides.size()); ++j) {
            if (j == side || !takes_part[j])
                continue;
            const double d = gap(sides[j]);
            if (d < least) {
                least = d;
                found = j;
            }
        }
        return found;
    }
    int next(int k) const {
        return nearest(k, [&](const WaterSide &s) { return distance(sides[k].to, s.from); });
    }
    int previous(int k) const {
        return nearest(k, [&](const WaterSide &s) { return distance(s.to, sides[k].from); });
    }
};

bool walk_contour(Walk &walk, SurfacePlanes planes, int first, Contour &contour) {
    int k = first;
    for (;;) {
        walk.done[k] = 1;
        contour.sides.push_back(k);
        const int j = walk.next(k);
        if (j == first)
            return true;
        if (j >= 0 && walk.done[j])
            return false; // runs into another contour, or into its own middle
        if (j < 0)
            break;
        k = j;
    }
    if (!on_plane(walk.sides[k].to, planes, walk.tolerance))
        return false;
    contour.open = true;
    std::vector<int> before;
    for (k = first;;) {
        const int j = walk.previous(k);
        if (j < 0)
            break;
        if (walk.done[j])
            return false;
        walk.done[j] = 1;
        before.push_back(j);
        k = j;
    }
    contour.sides.insert(contour.sides.begin(), before.rbegin(), before.rend());
    return on_plane(walk.sides[k].from, planes, walk.tolerance);
}

// Where a contour meets the symmetry planes.
struct Meeting {
    double along; // place along the planes
    int contour;
    bool is_start;
};

// Place of a point along the planes: with both of them y along x = 0, and minus x along y = 0, so that the
// corner is 0 and lies between.
double place_along(SurfacePoint p, SurfacePlanes planes) {
    if (planes.x0 && planes.y0)
        return std::fabs(p.x) < std::fabs(p.y) ? std::fabs(p.y) : -std::fabs(p.x);
    return planes.x0 ? p.y : p.x;
}
// The same point, exactly on its plane.
SurfacePoint onto_plane(SurfacePoint p, SurfacePlanes planes) {
    if (planes.x0 && (!planes.y0 || std::fabs(p.x) < std::fabs(p.y)))
        return {0, p.y};
    return {p.x, 0};
}

} // namespace

double distance(SurfacePoint a, SurfacePoint b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

double clockwise_area(const Polygon &polygon) {
    double sum = 0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const SurfacePoint a = polygon[i];
        const SurfacePoint b = polygon[(i + 1) % polygon.size()];
        sum += (b.x - a.x) * (a.y + b.y);
    }
    return sum / 2;
}

bool lies_inside(const Polygon &polygon, SurfacePoint point) {
    bool inside = false;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const SurfacePoint a = polygon[i];
        const SurfacePoint b = polygon[(i + 1) % polygon.size()];
        if ((a.y > point.y) != (b.y > point.y) && point.x < a.x + (b.x - a.x) * (point.y - a.y) / (b.y - a.y))
            inside = !inside;
    }
    return inside;
}

bool WLSORT(const std::vector<WaterSide> &sides, SurfacePlanes planes, WaterlineContours &line) {
    const int n = static_cast<int>(sides.size());
    double sum = 0;
    int zero_sides = 0;
    for (const WaterSide &side : sides) {
        const double length = distance(side.from, side.to);
        sum += length;
        zero_sides += length < ZERO_SIDE ? 1 : 0;
    }
    line.WLMEAN = sum / std::max(n - zero_sides, 1);
    line.WLTOL = SAME_POINT * line.WLMEAN;
    line.contours.clear();
    Walk walk{sides, line.WLTOL, std::vector<char>(sides.size()), std::vector<char>(sides.size())};
    for (int k = 0; k < n; ++k) {
        walk.takes_part[k] = distance(sides[k].from, sides[k].to) > line.WLTOL ? 1 : 0;
        walk.done[k] = !walk.takes_part[k];
    }
    for (int k = 0; k < n; ++k) {
        if (walk.done[k])
            continue;
        line.contours.emplace_back();
        if (!walk_contour(walk, planes, k, line.contours.back()))
            return false;
    }
    return true;
}

void WLLINE(SurfacePoint from, SurfacePoint to, double step, Polygon &polygon) {
    const int q = std::max(static_cast<int>(distance(from, to) / step), 1);
    for (int i = 1; i < q; ++i) {
        const double t = static_cast<double>(i) / q;
        polygon.push_back({from.x + t * (to.x - from.x), from.y + t * (to.y - from.y)});
    }
    polygon.push_back(to);
}

bool WLPTS(const std::vector<WaterSide> &sides, SurfacePlanes planes, const WaterlineContours &line,
           double PSCALE, std::vector<Outline> &outlines) {
    outlines.clear();
    const int count = static_cast<int>(line.contours.size());
    const auto add_contour = [&](int c, Outline &outline) {
        outline.contours.push_back(c);
        for (const int k : line.contours[c].sides) {
            outline.points.push_back(sides[k].to);
            outline.length += distance(sides[k].from, sides[k].to);
            ++outline.sides;
        }
    };
    std::vector<Meeting> meetings;
    for (int c = 0; c < count; ++c) {
        const Contour &contour = line.contours[c];
        if (!contour.open) {
            outlines.emplace_back();
            add_contour(c, outlines.back());
            continue;
        }
        meetings.push_back({place_along(sides[contour.sides.front()].from, planes), c, true});
        meetings.push_back({place_along(sides[contour.sides.back()].to, planes), c, false});
    }
    std::stable_sort(meetings.begin(), meetings.end(),
                     [](const Meeting &a, const Meeting &b) { return a.along < b.along; });
    std::vector<int> behind(line.contours.size(), -1); // the contour that a contour's closing line leads to
    for (std::size_t i = 0; i + 1 < meetings.size(); i += 2) {
        const Meeting &a = meetings[i];
        const Meeting &b = meetings[i + 1];
        if (a.is_start == b.is_start)
            return false;
        behind[a.is_start ? b.contour : a.contour] = a.is_start ? a.contour : b.contour;
    }
    const double step = line.WLMEAN * PSCALE;
    for (int first = 0; first < count; ++first) {
        if (behind[first] < 0)
            continue;
        outlines.emplace_back();
        Polygon &polygon = outlines.back().points;
        for (int c = first; behind[c] >= 0;) {
            add_contour(c, outlines.back());
            const SurfacePoint end = polygon.back();
            const SurfacePoint start = onto_plane(sides[line.contours[behind[c]].sides.front()].from, planes);
            const bool around_corner =
                planes.x0 && planes.y0 && place_along(end, planes) * place_along(start, planes) < 0;
            const SurfacePoint corner{0, 0};
            if (around_corner && distance(end, corner) > line.WLTOL)
                WLLINE(onto_plane(end, planes), corner, step, polygon);
            if (distance(polygon.back(), start) > line.WLTOL)
                WLLINE(around_corner ? corner : onto_plane(end, planes), start, step, polygon);
            const int next = behind[c];
            behind[c] = -1;
            c = next;
        }
    }
    return true;
}
