// A body of vertical walls under given waterlines, and a count of how often the generated panels
// cover its inside.
#pragma once

#include "freesurface/contours.hpp"
#include "freesurface/fsgen.hpp"
#include "freesurface/waterline.hpp"
#include "geometry/dipoles.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace lines {

constexpr double PI = 3.14159265358979;

// An open or closed run of points.
struct Line {
    Polygon points;
    bool closed = true;
    bool in_order = false; // sides follow each other in the file, too
};

// Points of the closed polygon with its sides divided into pieces of about `side`.
inline Polygon divided(const Polygon &corners, double side) {
    Polygon points;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const SurfacePoint a = corners[i];
        const SurfacePoint b = corners[(i + 1) % corners.size()];
        const int n = std::max(1, static_cast<int>(std::lround(distance(a, b) / side)));
        for (int k = 0; k < n; ++k)
            points.push_back({a.x + (b.x - a.x) * k / n, a.y + (b.y - a.y) * k / n});
    }
    return points;
}
// Clockwise.
inline Polygon circle(double radius, int n, double x = 0, double y = 0) {
    Polygon points;
    for (int i = 0; i < n; ++i)
        points.push_back({x + radius * std::cos(2 * PI * i / n), y - radius * std::sin(2 * PI * i / n)});
    return points;
}
inline Polygon reversed(Polygon points) {
    return {points.rbegin(), points.rend()};
}
// A hull with parallel sides, pointed ends and a round bulb before the bow.
inline Polygon ship() {
    Polygon points;
    const auto side = [&](double sign) {
        for (int i = 0; i < 40; ++i) {
            const double t = sign > 0 ? i : 40 - i;
            const double x = -2 + 4 * t / 40;
            points.push_back({x, sign * 0.35 * std::pow(1 - std::pow(std::fabs(x) / 2, 4), 0.8)});
        }
    };
    side(1);
    for (int i = 0; i < 10; ++i) { // the bulb: its neck is at the bow
        const double a = PI * (0.95 - 1.9 * i / 9);
        points.push_back({2.25 + 0.2 * std::cos(a), 0.2 * std::sin(a)});
    }
    side(-1);
    points.erase(points.begin() + 50); // the bow itself lies inside the neck
    return points;
}

// The body: below each side a column of `rows` panels down to z = zb - 1 in body axes (surface at z = -ZB).
class Body {
  public:
    Body(const std::vector<Line> &waterlines, int rows = 4, f32 ZB = 0) {
        add_body({waterlines}, rows, {ZB});
    }
    explicit Body(const std::vector<std::vector<Line>> &bodies, int rows, const std::vector<f32> &ZB) {
        add_body(bodies, rows, ZB);
    }

    Status generate(int ISOR = 0, const std::string &name = "run.idf") {
        run.opt.IRR = 3;
        run.opt.ISOR = ISOR;
        std::vector<std::string> names;
        for (int b = 1; b <= std::max(run.bodies.NBODY, 1); ++b)
            names.push_back(b == 1 ? name : "second.idf");
        return FSGEN(1.4, names, run);
    }
    // Room for dipole entries, all of ordinary panels.
    Dipoles &dipoles() {
        EXPECT_EQ(DIPGRW(run.mesh.NEQN, run.dipoles), Status::ok);
        run.dipoles.IDIPOL = true;
        return run.dipoles;
    }
    // Panel i as a polygon of three or four points.
    Polygon panel(int i) const {
        Polygon points;
        for (int v = 1; v <= 4; ++v) {
            const SurfacePoint p{run.mesh.XVER(v, 1, i), run.mesh.XVER(v, 2, i)};
            if (points.empty() || distance(points.back(), p) > 0)
                points.push_back(p);
        }
        return points;
    }
    int first_new(int b = 1) const {
        int first = 1;
        for (int k = 1; k < b; ++k)
            first += run.bodies.NEQNB(k);
        return first + hull[static_cast<std::size_t>(b) - 1];
    }
    int last_new(int b = 1) const {
        return first_new(b) + run.bodies.NEQNB(b) - hull[static_cast<std::size_t>(b) - 1] - 1;
    }

    RunState run;
    std::vector<int> hull; // panels of each body before

  private:
    void add_body(const std::vector<std::vector<Line>> &bodies, int rows, const std::vector<f32> &ZB) {
        const int B = static_cast<int>(bodies.size());
        run.bodies.NBODY = B > 1 ? B : 0;
        run.files.FILNAM.resize(B + 5);
        for (int i = 1; i <= B + 5; ++i)
            run.files.FILNAM(i) = "body" + std::to_string(i) + ".gdf";
        int N = 0;
        for (const auto &waterlines : bodies) {
            hull.push_back(0);
            for (const Line &line : waterlines)
                hull.back() += rows * static_cast<int>(line.points.size() - (line.closed ? 0 : 1));
            N += hull.back();
        }
        ASSERT_TRUE(run.mesh.XVER.alloc(4, 3, N) && run.waterline.IWLP.alloc(N) &&
                    run.waterline.IWLE.alloc(N) && run.bodies.XBODY.alloc(4, B) &&
                    run.bodies.NEQNB.alloc(B) && run.bodies.NWLB.alloc(B) && run.bodies.NDIPB.alloc(B) &&
                    run.bodies.ULEN.alloc(B));
        run.bodies.ULEN.fill(1);
        run.opt.RULEN = 1;
        run.opt.GRAV = 9.80665f;
        run.mesh.NEQN = N;
        int first = 1;
        for (int b = 1; b <= B; ++b) {
            int p = first;
            for (const Line &line : bodies[static_cast<std::size_t>(b) - 1])
                p = add_walls(line, rows, ZB[static_cast<std::size_t>(b) - 1], p);
            run.bodies.NEQNB(b) = hull[static_cast<std::size_t>(b) - 1];
            run.bodies.XBODY(3, b) = ZB[static_cast<std::size_t>(b) - 1];
            const View<const f32, 3> panels(run.mesh.XVER.slice(first).data(),
                                            {Range(4), Range(3), Range(run.bodies.NEQNB(b))});
            const View<int, 1> IWLP(run.waterline.IWLP.data() + run.waterline.NWL, {Range(N)});
            const View<int, 1> IWLE(run.waterline.IWLE.data() + run.waterline.NWL, {Range(N)});
            ASSERT_EQ(WLFIND(panels, run.bodies.XBODY(3, b), IWLP, IWLE, run.bodies.NWLB(b)), Status::ok);
            run.waterline.NWL += run.bodies.NWLB(b);
            first = p;
        }
    }
    int add_walls(const Line &line, int rows, f32 ZB, int p) {
        const std::size_t n = line.points.size();
        // Sides out of order, as a geometry file may have them.
        const std::size_t count = n - (line.closed ? 0 : 1);
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t i = count % 7 == 0 || line.in_order ? k : (k * 7 + 3) % count;
            const SurfacePoint a = line.points[i], b = line.points[(i + 1) % n];
            for (int r = 0; r < rows; ++r, ++p) {
                const int shift = static_cast<int>(k % 4); // the wet side has any place in the panel
                const SurfacePoint at[4] = {a, b, b, a};
                const double z[4] = {1.0 * r, 1.0 * r, r + 1.0, r + 1.0};
                for (int v = 0; v < 4; ++v) {
                    const int slot = (v + shift) % 4 + 1;
                    run.mesh.XVER(slot, 1, p) = static_cast<f32>(at[v].x);
                    run.mesh.XVER(slot, 2, p) = static_cast<f32>(at[v].y);
                    run.mesh.XVER(slot, 3, p) = static_cast<f32>(-static_cast<double>(ZB) - z[v] / rows);
                }
            }
        }
        return p;
    }
};

// The rectangle about a polygon.
struct Bounds {
    double x1 = 1e9, x2 = -1e9, y1 = 1e9, y2 = -1e9;
    void include(const Polygon &polygon) {
        for (const SurfacePoint p : polygon) {
            x1 = std::min(x1, p.x);
            x2 = std::max(x2, p.x);
            y1 = std::min(y1, p.y);
            y2 = std::max(y2, p.y);
        }
    }
};

struct Cover {
    double area = 0;   // of the panels, the sum of signed areas
    double wanted = 0; // of the inside
    int wrong_normals = 0;
    int points = 0;  // of the grid, inside
    int missed = 0;  // inside, in no panel
    int doubled = 0; // in more than one
    int outside = 0; // outside, in a panel
    void expect_once(double error) const {
        EXPECT_NEAR(area, wanted, error * wanted);
        EXPECT_EQ(wrong_normals, 0);
        EXPECT_EQ(missed, 0);
        EXPECT_EQ(doubled, 0);
        EXPECT_EQ(outside, 0);
    }
};

// Counts on a grid of n by n points; the inside is what an odd number of the polygons holds.
inline Cover cover_of(const Body &body, const std::vector<Polygon> &inside, int n = 150, int b = 1) {
    Cover cover;
    for (const Polygon &polygon : inside)
        cover.wanted += clockwise_area(polygon);
    Bounds all;
    for (const Polygon &polygon : inside)
        all.include(polygon);
    std::vector<int> count(static_cast<std::size_t>(n * n));
    // Odd offsets: no point lies on a side by intent.
    const double hx = (all.x2 - all.x1) / (n - 0.731), hy = (all.y2 - all.y1) / (n - 0.613);
    const auto at = [&](int i, int j) -> SurfacePoint {
        return {all.x1 + (i + 0.137) * hx, all.y1 + (j + 0.211) * hy};
    };
    for (int i = body.first_new(b); i <= body.last_new(b); ++i) {
        const Polygon panel = body.panel(i);
        const double area = -clockwise_area(panel);
        cover.area += area;
        cover.wrong_normals += area > 0 ? 0 : 1;
        Bounds own;
        own.include(panel);
        const int i1 = std::max(0, static_cast<int>((own.x1 - all.x1) / hx) - 1);
        const int i2 = std::min(n - 1, static_cast<int>((own.x2 - all.x1) / hx) + 1);
        const int j1 = std::max(0, static_cast<int>((own.y1 - all.y1) / hy) - 1);
        const int j2 = std::min(n - 1, static_cast<int>((own.y2 - all.y1) / hy) + 1);
        for (int k = i1; k <= i2; ++k)
            for (int l = j1; l <= j2; ++l)
                count[static_cast<std::size_t>(k * n + l)] += lies_inside(panel, at(k, l)) ? 1 : 0;
    }
    for (int k = 0; k < n; ++k) {
        for (int l = 0; l < n; ++l) {
            bool in = false;
            for (const Polygon &polygon : inside)
                in = in != lies_inside(polygon, at(k, l));
            const int c = count[static_cast<std::size_t>(k * n + l)];
            cover.points += in ? 1 : 0;
            cover.missed += in && c == 0 ? 1 : 0;
            cover.doubled += c > 1 ? 1 : 0;
            cover.outside += !in && c > 0 ? 1 : 0;
        }
    }
    return cover;
}

} // namespace lines
