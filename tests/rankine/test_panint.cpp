// Panel integrals against adaptive quadrature of their definitions in double precision, closed
// forms and differences.
#include "panel_quadrature.hpp"
#include "panel_shapes.hpp"
#include "rankine/panint.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>
#include <vector>

namespace {

using namespace panels;

// The exact forms are worked in double precision: what is left is the rounding of the result, and that of the
// plane tolerance 1e-6 close to an edge.
constexpr double NEAR_ERROR = 1.0e-6;

// Distance of the field point from the sides.
double edge_distance(const Panel &p, const Point &x) {
    double nearest = std::numeric_limits<double>::max();
    for (int k = 1; k <= 4; ++k) {
        const double ax = p.XIV[k], ay = p.ETV[k], bx = p.XIV[JP[k]] - ax, by = p.ETV[JP[k]] - ay;
        const double l2 = bx * bx + by * by;
        const double t = l2 > 0 ? std::clamp(((x[0] - ax) * bx + (x[1] - ay) * by) / l2, 0., 1.) : 0;
        nearest = std::min(nearest, std::hypot(x[0] - ax - t * bx, x[1] - ay - t * by, x[2]));
    }
    return nearest;
}

struct Deviation {
    double source = 0, gradient = 0, logarithm = 0, log_gradient = 0; // S, D; SX to DZ; L, LZ; LX to LZY
    void include(const Deviation &o) {
        source = std::max(source, o.source);
        gradient = std::max(gradient, o.gradient);
        logarithm = std::max(logarithm, o.logarithm);
        log_gradient = std::max(log_gradient, o.log_gradient);
    }
    void expect_below(const Deviation &limit, const std::string &where) const {
        EXPECT_LT(source, limit.source) << where;
        EXPECT_LT(gradient, limit.gradient) << where;
        EXPECT_LT(logarithm, limit.logarithm) << where;
        EXPECT_LT(log_gradient, limit.log_gradient) << where;
    }
};

// Deviation of all integrals from the quadrature, each family against its own size; in the plane of the panel
// (not `regular`) D is 0, and the quadrature cannot give the derivatives (principal values).
Deviation deviation(const Panel &p, const Point &x, bool regular) {
    const bool logarithm = above_panel(p, x);
    PanelIntegrals I{};
    const int status = PANINT(x[0], x[1], x[2], p, 1, logarithm ? 1 : 0, I);
    const quadrature::Integrals q = quadrature::panel(p, x[0], x[1], x[2], logarithm);
    const double A = p.PMOM[1], R = std::hypot(x[0], x[1], x[2]) + std::sqrt(A);
    Deviation out;
    out.source = std::max(std::abs(I.S - q.S) / q.S, regular ? 0 : static_cast<double>(std::abs(I.D)));
    if (regular) {
        out.source = std::max(out.source, std::abs(I.D - q.D) / std::max(std::abs(q.D), 1e-20));
        const double first = std::max(std::hypot(q.SX, q.SY), A / (R * R));
        const double second = std::max(std::hypot(q.DX, q.DY, q.DZ), A / (R * R * R));
        out.gradient = std::max({std::abs(I.SX - q.SX) / first, std::abs(I.SY - q.SY) / first,
                                 std::abs(I.DX - q.DX) / second, std::abs(I.DY - q.DY) / second,
                                 std::abs(I.DZ - q.DZ) / second});
    }
    if (logarithm && status == 0) {
        const double first = std::max(std::hypot(q.LX, q.LY, q.LZ), A / R);
        out.logarithm =
            std::max(std::abs(I.L - q.L) / (A * (1 + std::abs(std::log(R)))), std::abs(I.LZ - q.LZ) / first);
        out.log_gradient = std::max(std::abs(I.LX - q.LX), std::abs(I.LY - q.LY)) / first;
        if (regular) {
            const double second = std::max(std::hypot(q.LZX, q.LZY), A / (R * R));
            out.log_gradient = std::max(
                {out.log_gradient, std::abs(I.LZX - q.LZX) / second, std::abs(I.LZY - q.LZY) / second});
        }
    }
    return out;
}

TEST(Panint, NearFieldIsExact) {
    for (const Shape &shape : SHAPES)
        for (const Pose &pose : POSES)
            for (const auto &[IDIAG, size] : {std::pair{0, 1.}, {0, 3e-4}, {1, .05}}) {
                if (size < 1 && &pose != &POSES[2] && &pose != &POSES[4])
                    continue; // the size alone: of a tilted and of a vertical panel
                const Panel p = make(shape, pose, size, IDIAG);
                const double t = 1e-6 * p.width;
                for (const Point &x : near_points(p)) {
                    const bool in_plane = std::abs(x[2]) <= t;
                    const bool on_edge = edge_distance(p, x) < 10 * t;
                    if (in_plane && on_edge)
                        continue;
                    deviation(p, x, !in_plane)
                        .expect_below({NEAR_ERROR, NEAR_ERROR, NEAR_ERROR, NEAR_ERROR},
                                      std::string(shape.name) + ", " + pose.name + " at " +
                                          testing::PrintToString(x));
                }
            }
}

// Truncation of the multipoles on both sides of the borders, for panels of moderate shape (not the slender
// one), whose scale is the area: largest relative errors of S and D, of their gradients, of L and LZ, of
// their gradients. Measured at R2 = 40.1 region2: 6e-5, 5e-5, 1.4e-4, 7e-4; at 149.9: 3e-6, 2e-6,
// 2e-5, 1.1e-4; at 150.1, where S and D lose the third order (on the triangle): 2e-4, 2e-4, and the family L
// as before; at 1500: 7e-6, 7e-6, 7e-7, 4e-6.
struct Region {
    double R2;
    Deviation limit;
};
class Border : public testing::TestWithParam<Region> {};

TEST_P(Border, MultipoleTruncation) {
    const Region region = GetParam();
    Deviation worst;
    for (const Shape &shape : SHAPES) {
        if (std::string(shape.name) == "slender")
            continue;
        for (const Pose &pose : POSES) {
            const Panel p = make(shape, pose, 1, 0);
            const double R = std::sqrt(region.R2 * p.region2);
            for (const double down : {0., .5, 1., 1.5, 2.5})
                for (const double round : {0., .7, 2., 4.}) {
                    const Point x = {static_cast<f32>(R * std::sin(down) * std::cos(round)),
                                     static_cast<f32>(R * std::sin(down) * std::sin(round)),
                                     static_cast<f32>(R * std::cos(down))};
                    worst.include(deviation(p, x, true));
                }
        }
    }
    worst.expect_below(region.limit, std::to_string(region.R2));
    // The bound tells the region: a wrong term would not be seen if it were far too wide.
    EXPECT_GT(worst.source, region.limit.source / 5);
    EXPECT_GT(worst.logarithm, region.limit.logarithm / 5);
}
INSTANTIATE_TEST_SUITE_P(Panint, Border,
                         testing::Values(Region{39.9, {2e-7, 2e-7, 2e-7, 2e-7}},
                                         Region{40.1, {8e-5, 8e-5, 2e-4, 1e-3}},
                                         Region{149.9, {4e-6, 4e-6, 3e-5, 1.6e-4}},
                                         Region{150.1, {2.6e-4, 2.6e-4, 3e-5, 1.6e-4}},
                                         Region{1500, {1e-5, 1e-5, 1e-6, 6e-6}}));

// Rectangles of any aspect ratio, at all distances at which the area alone would let the multipoles
// begin, and at the borders of the regions. Measured at worst: 1.0e-4, 3.9e-4, 3.6e-4, 1.2e-3, for 1:8
// and 1:300 alike.
TEST(Panint, MultipolesBeginOutsideASlenderPanel) {
    for (const double aspect : {8., 300.}) {
        const double a = aspect / 2;
        const Shape strip = {"strip", {{a, .5}, {a, -.5}, {-a, -.5}, {-a, .5}}};
        Deviation worst;
        for (const Pose &pose : {POSES[0], POSES[2], POSES[4]}) {
            const Panel p = make(strip, pose, .1, 0);
            for (const f32 scale2 : {p.PMOM[1], p.region2})
                for (const double R2 : {40.1, 149.9, 150.1})
                    for (const double down : {0., .5, 1., 1.5707963})
                        for (const double round : {0., .1, .7, 1.6}) {
                            const double R = std::sqrt(scale2 * R2);
                            const Point x = {static_cast<f32>(R * std::sin(down) * std::cos(round)),
                                             static_cast<f32>(R * std::sin(down) * std::sin(round)),
                                             down < 1.5 ? static_cast<f32>(R * std::cos(down)) : 0};
                            worst.include(deviation(p, x, x[2] != 0));
                        }
        }
        worst.expect_below({1.2e-4, 4.5e-4, 4e-4, 1.3e-3}, std::to_string(aspect));
    }
}

TEST(Panint, GradientInThePlaneIsThePrincipalValue) {
    // Inside the panel the tangential derivatives of S and of LZ pass through the plane without a jump.
    for (const Pose &pose : {POSES[0], POSES[1]}) {
        const Panel p = make(SHAPES[1], pose, 1, 0);
        PanelIntegrals in{}, off{};
        const f32 up = pose.tilt > 90 ? -1e-4f : 1e-4f;
        ASSERT_EQ(PANINT(.1f, .2f, 0, p, 1, 1, in), 0);
        ASSERT_EQ(PANINT(.1f, .2f, up, p, 1, 1, off), 0);
        const double rise = 30 * 1e-4; // second derivatives of some 10 times the step
        EXPECT_NEAR(in.SX, off.SX, rise);
        EXPECT_NEAR(in.SY, off.SY, rise);
        EXPECT_NEAR(in.LZX, off.LZX, rise);
        EXPECT_NEAR(in.LZY, off.LZY, rise);
        EXPECT_GT(std::abs(in.SX), .01);
        // Of a horizontal panel the logarithm integrates to S along the vertical.
        EXPECT_NEAR(in.LZ, -p.TRM[3][3] * in.S, 1e-5);
    }
}

TEST(Panint, LevelSideMovesThePointForTheLogarithm) {
    // A vertical panel with its upper side at the height of the field point and gradients wanted.
    const Panel p = make(SHAPES[0], POSES[4], 1, 0);
    const double step = 1e-4 * p.width;
    const auto height = [&p](int k) {
        return (p.XIV[k] + p.XIV[JP[k]]) * p.TRM[1][3] + (p.ETV[k] + p.ETV[JP[k]]) * p.TRM[2][3];
    };
    int top = 1; // the level side with the panel below it
    for (int k = 2; k <= 4; ++k)
        top = height(k) > height(top) ? k : top;
    const f32 X = (p.XIV[top] + p.XIV[JP[top]]) / 2, Y = (p.ETV[top] + p.ETV[JP[top]]) / 2, Z = .3f;
    PanelIntegrals I{}, plain{};
    EXPECT_EQ(PANINT(X, Y, Z, p, 1, 1, I), 2);
    EXPECT_EQ(PANINT(X, Y, Z, p, 0, 1, plain), 0) << "no gradients, no move";
    EXPECT_EQ(I.S, plain.S) << "S and D stay at the point";
    EXPECT_EQ(I.D, plain.D);
    const quadrature::Integrals q = quadrature::panel(p, X, Y, Z),
                                moved = quadrature::panel(p, X + step * p.TRM[1][3], Y + step * p.TRM[2][3],
                                                          Z + step * p.TRM[3][3]);
    EXPECT_NEAR(plain.L, q.L, 1e-6);
    EXPECT_NEAR(I.L, moved.L, 1e-6);
    EXPECT_NEAR(I.LX, moved.LX, 2e-6);
    EXPECT_NEAR(I.LZY, moved.LZY, 2e-6);
    EXPECT_NEAR(I.LZ, q.LZ, 1e-3);
}

// The gradients along the global axes are seen in rows of dipoles (tests/assembly) and in runs with sources.
TEST(PanelWrappers, StatusOfAnyCallComesBack) {
    const Panel p = make(SHAPES[0], POSES[2], 1, 0);
    constexpr f32 EPS = 0.02f; // step of the Z derivative of LZ
    // Half EPS below the point where the lower difference point stands under vertex 1.
    f32 P[4];
    for (int c = 1; c <= 3; ++c)
        P[c] = p.XCT[c] + p.TRM[1][c] * p.XIV[1] + p.TRM[2][c] * p.ETV[1] + (c == 3 ? -.5f : 0) +
               EPS * p.TRM[3][c];
    FieldIntegrals F{};
    EXPECT_EQ(PANFLD(P, p, 1, 1, F), 0);
    EXPECT_EQ(PANDPS(P, EPS, p, 1, 1, F), 1);
    EXPECT_EQ(PANDPS(P, EPS, p, 1, 0, F), 0);
}

} // namespace
