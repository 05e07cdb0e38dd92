// Hulls of several pieces that share sides: the ring with a moonpool, the semi-submersible.
#include "shapes.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double TOUCHES = 1e-9; // a gap that is none, over the length

using Outline = std::vector<std::pair<double, double>>; // radius, z

// Adds the points at the steps t > 0 of a piece of an outline, unless the piece has no length.
void add_piece(Outline &outline, double length, int n,
               const std::function<std::pair<double, double>(double)> &at) {
    if (outline.empty())
        outline.push_back(at(0));
    for (int i = 1; length > 0 && i <= n; ++i)
        outline.push_back(at(static_cast<double>(i) / n));
}

// The x of the panel sides along the half x >= 0 of a pontoon.
struct Stations {
    std::vector<double> x{0.0};
    std::vector<bool> in_cell; // of the panel that ends at x[i + 1]

    void go_to(double end, double size, bool cell) {
        const double from = x.back(), gap = end - from;
        if (gap <= TOUCHES * (1 + end))
            return;
        const int n = std::max(1, static_cast<int>(std::lround(gap / size)));
        for (int i = 1; i <= n; ++i) {
            x.push_back(i == n ? end : from + gap * i / n);
            in_cell.push_back(cell);
        }
    }
};

std::string wrong_columns(const Sizes &s) {
    if (s.radius * 2 >= s.beam)
        return refused("--radius", s.radius,
                       "the columns are wider than the pontoons, --beam " + in_words(s.beam));
    if (s.height >= s.draft)
        return refused("--height", s.height, "the pontoons reach the surface, --draft " + in_words(s.draft));
    if (s.distance <= s.beam)
        return refused("--distance", s.distance,
                       "the pontoons meet; it must be more than --beam " + in_words(s.beam));
    const double span = s.columns > 1 ? s.span : 0;
    if (s.columns > 1 && span / (s.columns - 1) < s.beam)
        return refused("--span", span,
                       "there is no room for --columns " + std::to_string(s.columns) +
                           ": each takes --beam " + in_words(s.beam));
    if (span + s.beam > s.length)
        return refused("--length", s.length,
                       "the pontoons are too short for their columns: --span and --beam are " +
                           in_words(span + s.beam));
    if (too_many((s.length / s.beam * 4 * s.nu * s.nu) + 8.0 * s.columns * s.nu * (s.nv + s.nb)) ||
        too_many(s.length / s.beam * 4 * s.nu * s.nw))
        return refused("--nu", s.nu, "more than a million panels");
    return "";
}

// The point k = 0 .. 8 n of a square of sides 2 about the origin, and of the circle of radius 1 inside it.
std::pair<Point, Point> square_and_circle(int k, int n) {
    const int side = k / (2 * n) % 4;
    const double t = static_cast<double>(k % (2 * n) - n) / n;
    const auto [c, s] = quarter_circle(std::fabs(t) / 2);
    Point square{1, t, 0}, circle{c, std::copysign(s, t), 0};
    for (int i = 0; i < side; ++i)
        for (Point *p : {&square, &circle})
            *p = {-(*p)[1], (*p)[0], 0};
    return {square, circle};
}

// A column about x, y, and the top of the pontoon around it at z = -top out to a square; the half x >= 0 of
// one in x = 0.
Panels column(const Sizes &s, double x, double y, double top) {
    const Spacing to{s.cosine};
    const auto index = [&](double u) { return static_cast<int>(std::lround(u * 8 * s.nu)); };
    Panels panels = patch(
        8 * s.nu, s.nv,
        [&](double u, double v) {
            const Point c = square_and_circle(index(u), s.nu).second;
            return Point{x + s.radius * c[0], y + s.radius * c[1], -top * to.ends(v)};
        },
        [&](const Point &c) {
            return Point{x - c[0], y - c[1], 0};
        });
    append(panels, patch(
                       8 * s.nu, s.nb,
                       [&](double u, double v) {
                           const auto [q, c] = square_and_circle(index(u), s.nu);
                           const double in = s.radius * (1 - v), out = s.beam / 2 * v;
                           return Point{x + in * c[0] + out * q[0], y + in * c[1] + out * q[1], -top};
                       },
                       [](const Point &) {
                           return Point{0, 0, -1};
                       }));
    if (x == 0)
        std::erase_if(panels, [](const MeshPanel &panel) {
            return panel.vertex[0][0] + panel.vertex[1][0] + panel.vertex[2][0] + panel.vertex[3][0] < 0;
        });
    return panels;
}

} // namespace

// A ring about the z axis; its section is a rectangle with rounded lower corners, half a circle at the
// utmost.
std::string moonpool(const Sizes &s, Panels &quarter) {
    if (s.inner >= s.radius)
        return refused("--inner", s.inner,
                       "the moonpool must be smaller than the hull, --radius " + in_words(s.radius));
    const double half = (s.radius - s.inner) / 2, b = s.bilge;
    // Round-off of a difference must not refuse the full half circle.
    if (b > std::min(half, s.draft) * (1 + TOUCHES))
        return refused("--bilge", b, "the section has room for " + in_words(std::min(half, s.draft)));
    if (too_many(s.nu * (2.0 * s.nv + 2.0 * s.nb + s.nw)))
        return refused("--nu", s.nu, "more than a million panels");
    const auto present = [&](double length) { return length > TOUCHES * s.radius ? length : 0; };
    const double wall = present(s.draft - b), flat = present(2 * (half - b));
    const Spacing to{s.cosine};
    Outline section;
    add_piece(section, wall, s.nv, [&](double t) { return std::pair(s.radius, -wall * to.ends(t)); });
    add_piece(section, b, s.nb, [&](double t) {
        const auto [c, d] = quarter_circle(t);
        return std::pair(s.radius - b + b * c, -wall - b * d);
    });
    add_piece(section, flat, s.nw,
              [&](double t) { return std::pair(s.radius - b - flat * to.ends(t), -s.draft); });
    add_piece(section, b, s.nb, [&](double t) {
        const auto [c, d] = quarter_circle(1 - t);
        return std::pair(s.inner + b - b * c, -wall - b * d);
    });
    add_piece(section, wall, s.nv, [&](double t) { return std::pair(s.inner, -wall * (1 - to.ends(t))); });
    const int n = static_cast<int>(section.size()) - 1;
    quarter = patch(
        s.nu, n,
        [&](double u, double v) {
            const auto [r, z] = section[static_cast<std::size_t>(std::lround(v * n))];
            const auto [x, y] = quarter_circle(u);
            return Point{r * x, r * y, z};
        },
        [&](const Point &c) {
            const double r = std::hypot(c[0], c[1]), out = s.inner + half - r;
            return Point{out * c[0] / r, out * c[1] / r, -s.draft / 2 - c[2]};
        });
    return "";
}

// Two pontoons along x with round columns. The top of a pontoon is divided around each column out to a square
// of its beam.
std::string semisubmersible(const Sizes &s, Panels &quarter) {
    if (std::string wrong = wrong_columns(s); !wrong.empty())
        return wrong;
    const double half = s.beam / 2, y = s.distance / 2, top = s.draft - s.height, size = half / s.nu;
    const Spacing to{s.cosine};
    Stations along;
    quarter.clear();
    for (int k = s.columns / 2; k < s.columns; ++k) {
        // Counted from the middle, so that the one there stands at x = 0 exactly.
        const double x = s.columns > 1 ? s.span * (k - (s.columns - 1) / 2.0) / (s.columns - 1) : 0;
        if (x > 0)
            along.go_to(x - half, size, false);
        along.go_to(x + half, size, true);
        append(quarter, column(s, x, y, top));
    }
    along.go_to(s.length / 2, size, false);
    const std::vector<double> across = steps(2 * s.nu), deep = steps(s.nw);
    const auto level = [&](double z) {
        return [=](double x, double v) { return Point{x, y + half * (2 * v - 1), z}; };
    };
    const auto towards = [](const Point &direction) { return [=](const Point &) { return direction; }; };
    for (const int side : {1, -1})
        append(quarter, grid(
                            along.x, deep,
                            [&](double x, double v) {
                                return Point{x, y + side * half, -top - s.height * to.ends(v)};
                            },
                            towards({0, -1.0 * side, 0})));
    append(quarter, grid(
                        across, deep,
                        [&](double u, double v) {
                            return Point{s.length / 2, y + half * (2 * u - 1), -top - s.height * to.ends(v)};
                        },
                        towards({-1, 0, 0})));
    append(quarter, grid(along.x, across, level(-s.draft), towards({0, 0, 1})));
    for (std::size_t i = 0; i < along.in_cell.size(); ++i)
        if (!along.in_cell[i])
            append(quarter, grid({along.x[i], along.x[i + 1]}, across, level(-top), towards({0, 0, -1})));
    return "";
}
