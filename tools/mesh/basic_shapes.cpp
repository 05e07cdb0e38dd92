// Hulls of one formula: boxes, bodies of revolution, ellipsoids, parabolic ships; plates and tanks.
#include "shapes.hpp"

#include <cmath>

namespace {

Point up(const Point &) {
    return {0, 0, 1};
}
Point down(const Point &) {
    return {0, 0, -1};
}
std::function<Point(const Point &)> along(const Point &direction) {
    return [=](const Point &) { return direction; };
}

Panels disc(double radius, double z, const Sizes &s, const std::function<Point(const Point &)> &inward) {
    const Spacing to{s.cosine};
    return patch(
        s.nu, s.nw,
        [=](double u, double v) {
            const auto [x, y] = quarter_circle(u);
            return Point{radius * to.end(v) * x, radius * to.end(v) * y, z};
        },
        inward);
}

// From the angle `first` above the equator (in quarters of a circle, negative) to the lower pole. A ring of
// triangles closes a pole. Equal angles are a cosine spacing already.
Panels ellipsoid_about(const Point &semi_axes, double depth, double first, const Sizes &s) {
    return patch(
        s.nu, s.nv,
        [=](double u, double v) {
            const double t = first + (1 - first) * v;
            const auto [r, below] = quarter_circle(std::fabs(t));
            const auto [x, y] = quarter_circle(u);
            return Point{semi_axes[0] * r * x, semi_axes[1] * r * y,
                         -depth - semi_axes[2] * std::copysign(below, t)};
        },
        [=](const Point &c) {
            return Point{-c[0], -c[1], -depth - c[2]};
        });
}

// A body whose middle lies at `depth` and which reaches `half` above it must stay below the surface.
std::string reaches_surface(double depth, double half) {
    return depth > half
               ? ""
               : refused("--depth", depth,
                         "the body reaches the surface; its middle must lie deeper than " + in_words(half));
}

// The side and, if wanted, bottom and top of a vertical cylinder from z = 0 to -height.
Panels upright_cylinder(const Sizes &s, double height, bool bottom, bool top) {
    const Spacing to{s.cosine};
    Panels panels = patch(
        s.nu, s.nv,
        [=](double u, double v) {
            const auto [x, y] = quarter_circle(u);
            return Point{s.radius * x, s.radius * y, -height * to.ends(v)};
        },
        [](const Point &c) {
            return Point{-c[0], -c[1], 0};
        });
    if (bottom)
        append(panels, disc(s.radius, -height, s, up));
    if (top)
        append(panels, disc(s.radius, 0, s, down));
    return panels;
}

// A box from z = 0 to -height.
Panels upright_box(const Sizes &s, double height, bool top) {
    const double l = s.length / 2, b = s.beam / 2;
    const Spacing to{s.cosine};
    const auto level = [=](double z) {
        return [=](double u, double v) { return Point{l * to.end(u), b * to.end(v), z}; };
    };
    Panels panels = patch(
        s.nv, s.nw,
        [=](double u, double v) {
            return Point{l, b * to.end(u), -height * to.ends(v)};
        },
        along({-1, 0, 0}));
    append(panels, patch(
                       s.nu, s.nw,
                       [=](double u, double v) {
                           return Point{l * to.end(u), b, -height * to.ends(v)};
                       },
                       along({0, -1, 0})));
    append(panels, patch(s.nu, s.nv, level(-height), up));
    if (top)
        append(panels, patch(s.nu, s.nv, level(0), down));
    return panels;
}

// One side of a hull with parabolic lines about y = middle; side -1: the one nearer to y = 0.
// y = middle + side B/2 (1 - (2 x / L)^2) (1 - (z / T)^2).
Panels parabolic_side(const Sizes &s, double middle, int side) {
    const Spacing to{s.cosine};
    return patch(
        s.nu, s.nv,
        [=](double u, double v) {
            const double x = to.end(u), z = to.ends(v);
            return Point{s.length / 2 * x, middle + side * s.beam / 2 * (1 - x * x) * (1 - z * z),
                         -s.draft * z};
        },
        along({0, -1.0 * side, 0}));
}

} // namespace

std::string hemisphere(const Sizes &s, Panels &quarter) {
    quarter = ellipsoid_about({s.radius, s.radius, s.radius}, 0, 0, s);
    return "";
}

std::string ellipsoid(const Sizes &s, Panels &quarter) {
    quarter = ellipsoid_about({s.length / 2, s.beam / 2, s.draft}, 0, 0, s);
    return "";
}

std::string sphere(const Sizes &s, Panels &quarter) {
    quarter = ellipsoid_about({s.radius, s.radius, s.radius}, s.depth, -1, s);
    return reaches_surface(s.depth, s.radius);
}

std::string closed_ellipsoid(const Sizes &s, Panels &quarter) {
    quarter = ellipsoid_about({s.length / 2, s.beam / 2, s.height / 2}, s.depth, -1, s);
    return reaches_surface(s.depth, s.height / 2);
}

std::string cylinder(const Sizes &s, Panels &quarter) {
    quarter = upright_cylinder(s, s.draft, !s.standing, s.lid);
    return "";
}

std::string closed_cylinder(const Sizes &s, Panels &quarter) {
    if (!s.horizontal) {
        quarter = raised(upright_cylinder(s, s.length, true, true), s.length / 2 - s.depth);
        return reaches_surface(s.depth, s.length / 2);
    }
    const Spacing to{s.cosine};
    // Around from the top to the bottom.
    const auto at = [=](double x, double r, double v) {
        const auto [c, b] = quarter_circle(std::fabs(1 - 2 * v));
        return Point{x, r * c, -s.depth + r * std::copysign(b, 1 - 2 * v)};
    };
    quarter = patch(
        s.nv, 2 * s.nu, [=](double u, double v) { return at(s.length / 2 * to.end(u), s.radius, v); },
        [=](const Point &c) {
            return Point{0, -c[1], -s.depth - c[2]};
        });
    append(quarter,
           patch(
               s.nw, 2 * s.nu, [=](double u, double v) { return at(s.length / 2, s.radius * to.end(u), v); },
               along({-1, 0, 0})));
    return reaches_surface(s.depth, s.radius);
}

std::string box(const Sizes &s, Panels &quarter) {
    quarter = upright_box(s, s.draft, s.lid);
    return "";
}

std::string closed_box(const Sizes &s, Panels &quarter) {
    quarter = raised(upright_box(s, s.height, true), s.height / 2 - s.depth);
    return reaches_surface(s.depth, s.height / 2);
}

std::string wigley(const Sizes &s, Panels &quarter) {
    quarter = parabolic_side(s, 0, 1);
    return "";
}

std::string catamaran(const Sizes &s, Panels &quarter) {
    if (s.distance <= s.beam)
        return refused("--distance", s.distance,
                       "the hulls meet; it must be more than --beam " + in_words(s.beam));
    quarter = parabolic_side(s, s.distance / 2, 1);
    append(quarter, parabolic_side(s, s.distance / 2, -1));
    return "";
}

std::string disc_plate(const Sizes &s, Panels &quarter) {
    quarter = disc(s.radius, -s.depth, s, up);
    for (MeshPanel &panel : quarter)
        panel.plate = true;
    return "";
}

std::string twin_plates(const Sizes &s, Panels &quarter) {
    const Spacing to{s.cosine};
    quarter = patch(
        s.nu, s.nv,
        [=](double u, double v) {
            return Point{s.distance / 2, s.beam / 2 * to.end(u), -s.draft * to.ends(v)};
        },
        along({-1, 0, 0}));
    for (MeshPanel &panel : quarter)
        panel.plate = true;
    return "";
}

std::string tank(const Sizes &s, Panels &quarter) {
    quarter = raised(upright_box(s, s.height, true), -s.depth);
    for (MeshPanel &panel : quarter) {
        std::swap(panel.vertex[0], panel.vertex[3]);
        std::swap(panel.vertex[1], panel.vertex[2]);
    }
    return "";
}
