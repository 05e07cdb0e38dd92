// Panels of all shapes in all poses, and field points around them.
#pragma once

#include "geometry/panel.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

namespace panels {

constexpr double PI = 3.14159265358979324;

struct Shape {
    const char *name;
    double v[4][2];
};
constexpr Shape SHAPES[] = {
    {"square", {{.5, .5}, {.5, -.5}, {-.5, -.5}, {-.5, .5}}},
    {"skewed", {{.9, .5}, {.5, -.4}, {-.6, -.5}, {-.3, .6}}},
    {"triangle", {{.7, 0}, {0, -.6}, {-.6, .5}, {-.6, .5}}},
    {"slender", {{2, .25}, {2, -.25}, {-2, -.25}, {-2, .25}}},
};
struct Pose {
    const char *name;
    double tilt, turn; // [degrees], [rad] about its normal
};
constexpr Pose POSES[] = {
    {"normal up", 0, .3},
    {"normal down", 180, .3},
    {"tilted", 40, .5},
    {"overhanging", 100, 1.1},
    {"vertical", 90, 0},
    {"vertical, turned", 90, .7},
    {"1e-3 off vertical", 90.06, 0},
    {"1e-5 off vertical", 90.0006, 1e-4},
    {"almost level", .01, .2},
    // Both sides of the border at which a side counts as steep.
    {"3.0e-3 off vertical", 90.17, 0},
    {"3.3e-3 off vertical", 90.19, 0},
};

inline Panel make(const Shape &shape, const Pose &pose, double size, int IDIAG) {
    Array<f32, 2> V;
    EXPECT_TRUE(V.alloc(4, 3));
    const double t = pose.tilt * PI / 180;
    for (int i = 0; i < 4; ++i) {
        const double a = shape.v[i][0] * size, b = shape.v[i][1] * size;
        const double y = a * std::sin(pose.turn) + b * std::cos(pose.turn);
        V(i + 1, 1) = static_cast<f32>(a * std::cos(pose.turn) - b * std::sin(pose.turn));
        V(i + 1, 2) = static_cast<f32>(y * std::cos(t));
        V(i + 1, 3) = static_cast<f32>(y * std::sin(t));
    }
    Panel p{};
    EXPECT_EQ(PANGEO(V.view(), IDIAG, 1, p), Status::ok);
    return p;
}

using Point = std::array<f32, 3>;

// True when no part of the panel is above the field point: there L has its meaning.
inline bool above_panel(const Panel &p, const Point &x) {
    const double up[3] = {p.TRM[1][3], p.TRM[2][3], p.TRM[3][3]};
    bool above = true;
    for (int v = 1; v <= 4; ++v)
        above = above && up[0] * (x[0] - p.XIV[v]) + up[1] * (x[1] - p.ETV[v]) + up[2] * x[2] >= 0;
    return above;
}

// In the frame of the panel.
inline std::vector<Point> near_points(const Panel &p) {
    const double h = std::sqrt(static_cast<double>(p.PMOM[1]));
    std::vector<Point> points;
    const auto add = [&](double x, double y, double z) {
        points.push_back({static_cast<f32>(x), static_cast<f32>(y), static_cast<f32>(z)});
    };
    constexpr double AT[8][2] = {{0, 0},     {.1, .2}, {.499, .2}, {.501, -.1},
                                 {.6, .501}, {2, .5},  {-1, 2},    {4, 0}};
    for (const double z : {0., 1e-3, -1e-3, .1, -.5, 3.})
        for (const auto &at : AT)
            add(at[0] * h, at[1] * h, z * h);
    for (int v = 1; v <= 3; ++v)
        for (const double z : {1e-3, .5, -2.}) { // above a vertex, and close to that
            add(p.XIV[v], p.ETV[v], z * h);
            add(p.XIV[v] + .01 * h, p.ETV[v], z * h);
        }
    // On the extension of the first side, in the plane and a little off it.
    for (const double z : {0., .01})
        add(2 * p.XIV[1] - p.XIV[2], 2 * p.ETV[1] - p.ETV[2], z * h);
    // Just inside the exact region.
    const double R = std::sqrt(39.9 * p.region2);
    add(R * .6, R * .48, R * .64);
    add(R * .6, R * .8, 0);
    add(0, 0, R);
    return points;
}

} // namespace panels
