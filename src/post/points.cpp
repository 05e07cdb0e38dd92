#include "post/points.hpp"

#include <algorithm>
#include <cmath>

namespace {

double d(f32 value) {
    return static_cast<double>(value);
}

// A panel of an image: corners in order, in global axes, its frame and size.
struct PlacedPanel {
    Vector3 corner[4], centre, normal;
    double size;      // root of its area
    double reach;     // of a corner from the centre
    bool bounds_body; // hull that has an inside
};

std::vector<PlacedPanel> place_panels(const P2fFile &p2f) {
    const PanelKinds kinds(p2f);
    std::vector<PlacedPanel> placed;
    for (const Image &image : images_of(p2f))
        for (int J = 1; J <= p2f.NEQN; ++J) {
            if (!kinds.hull(J))
                continue;
            PlacedPanel panel{};
            const auto vector = [&](double x, double y, double z) {
                return Vector3{image.sx * x, image.sy * y, z};
            };
            panel.centre = vector(d(p2f.XCT(1, J)), d(p2f.XCT(2, J)), d(p2f.XCT(3, J)));
            panel.normal = vector(d(p2f.TRM(3, 1, J)), d(p2f.TRM(3, 2, J)), d(p2f.TRM(3, 3, J)));
            for (int v = 0; v < 4; ++v) {
                const double x = d(p2f.XIV(v + 1, J)), y = d(p2f.ETV(v + 1, J));
                const Vector3 away = vector(d(p2f.TRM(1, 1, J)) * x + d(p2f.TRM(2, 1, J)) * y,
                                            d(p2f.TRM(1, 2, J)) * x + d(p2f.TRM(2, 2, J)) * y,
                                            d(p2f.TRM(1, 3, J)) * x + d(p2f.TRM(2, 3, J)) * y);
                panel.corner[v] = plus(panel.centre, away);
                panel.reach = std::max(panel.reach, std::sqrt(dot(away, away)));
            }
            panel.size = std::sqrt(d(p2f.PMOM(1, J)));
            panel.bounds_body = image.body && !kinds.plate(J);
            placed.push_back(panel);
        }
    return placed;
}

double distance_to_side(const Vector3 &p, const Vector3 &a, const Vector3 &b) {
    const Vector3 side = plus(b, times(-1.0, a)), way = plus(p, times(-1.0, a));
    const double length2 = dot(side, side);
    const double at = length2 > 0 ? std::clamp(dot(way, side) / length2, 0.0, 1.0) : 0;
    const Vector3 gap = plus(way, times(-at, side));
    return std::sqrt(dot(gap, gap));
}

// Of a point from a plane convex panel.
double distance(const Vector3 &p, const PlacedPanel &panel) {
    bool left = false, right = false;
    double to_rim = 1e30;
    for (int v = 0; v < 4; ++v) {
        const Vector3 &a = panel.corner[v], &b = panel.corner[(v + 1) % 4];
        to_rim = std::min(to_rim, distance_to_side(p, a, b));
        const double side = dot(cross(plus(b, times(-1.0, a)), plus(p, times(-1.0, a))), panel.normal);
        left = left || side > 0;
        right = right || side < 0;
    }
    const double height = std::abs(dot(plus(p, times(-1.0, panel.centre)), panel.normal));
    return left && right ? to_rim : height;
}

// Whether the level ray from p along a fixed direction crosses the triangle. The direction is no multiple of
// anything in a mesh, so that it meets no vertex.
bool crosses(const Vector3 &p, const Vector3 &a, const Vector3 &b, const Vector3 &c) {
    const double cosine = std::cos(0.7391), sine = std::sin(0.7391);
    const Vector3 way = {cosine, sine, 0}, u = plus(b, times(-1.0, a)), v = plus(c, times(-1.0, a)),
                  w = plus(p, times(-1.0, a));
    const Vector3 q = cross(way, v);
    const double volume = dot(u, q);
    if (volume == 0)
        return false;
    const Vector3 r = cross(w, u);
    const double s = dot(w, q) / volume, t = dot(way, r) / volume;
    return s >= 0 && t >= 0 && s + t <= 1 && dot(v, r) / volume > 0;
}

class Judge {
  public:
    explicit Judge(const P2fFile &p2f) : p_(p2f), panels_(place_panels(p2f)) {
        for (const PlacedPanel &panel : panels_) {
            smallest_ = std::min(smallest_, panel.size);
            for (std::size_t c = 0; panel.bounds_body && c < 3; ++c) {
                low_[c] = std::min(low_[c], panel.centre[c] - panel.reach);
                high_[c] = std::max(high_[c], panel.centre[c] + panel.reach);
            }
        }
    }
    PointMark operator()(const Vector3 &p) const {
        const double depth = d(p_.HBOT);
        const double wall_x = p_.ISX == -1 ? 1 : 0, wall_y = p_.ISY == -1 ? 1 : 0;
        if (!std::isfinite(p[0] + p[1] + p[2]) || p[2] > 0 || (depth > 0 && p[2] < -depth) ||
            wall_x * p[0] * side(1) < 0 || wall_y * p[1] * side(2) < 0)
            return PointMark::outside;
        if (is_inside(p))
            return PointMark::inside;
        for (const PlacedPanel &panel : panels_) {
            const Vector3 way = plus(p, times(-1.0, panel.centre));
            const double reach = panel.reach + panel.size / 2;
            if (dot(way, way) < reach * reach && distance(p, panel) < panel.size / 2)
                return PointMark::near;
        }
        return PointMark::fluid;
    }

  private:
    // The side of a wall on which the panels are.
    double side(int axis) const { return d(p_.XCT(axis, 1)) < 0 ? -1 : 1; }

    // Level sections of a hull are closed, whether it floats, is submerged or stands on the bottom. A point
    // of the free surface is judged a little below it.
    bool is_inside(Vector3 p) const {
        for (std::size_t c = 0; c < 3; ++c)
            if (p[c] < low_[c] || p[c] > high_[c])
                return false;
        p[2] -= 1.234567e-4 * smallest_;
        int crossings = 0;
        for (const PlacedPanel &panel : panels_) {
            const auto &k = panel.corner;
            if (panel.bounds_body)
                crossings += (crosses(p, k[0], k[1], k[2]) ? 1 : 0) + (crosses(p, k[0], k[2], k[3]) ? 1 : 0);
        }
        return crossings % 2 == 1;
    }

    const P2fFile &p_;
    std::vector<PlacedPanel> panels_;
    double smallest_ = 1e30; // size of a panel
    Vector3 low_{1e30, 1e30, 1e30}, high_{-1e30, -1e30, -1e30};
};

} // namespace

const char *name_of(PointMark mark) {
    switch (mark) {
    case PointMark::fluid:
        return "fluid";
    case PointMark::near:
        return "near";
    case PointMark::inside:
        return "inside";
    case PointMark::outside:
        break;
    }
    return "outside";
}

std::vector<PointMark> mark_points(const P2fFile &p2f, const std::vector<Vector3> &points) {
    const Judge judge(p2f);
    std::vector<PointMark> marks(points.size());
    const int n = static_cast<int>(points.size());
#pragma omp parallel for schedule(dynamic, 64)
    for (int i = 0; i < n; ++i)
        marks[static_cast<std::size_t>(i)] = judge(points[static_cast<std::size_t>(i)]);
    return marks;
}
