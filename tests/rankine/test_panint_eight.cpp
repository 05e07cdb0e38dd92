// Eight panels at a time against the same panels one by one, which are held to quadrature (test_panint.cpp).
#include "panel_shapes.hpp"
#include "rankine/panint_eight.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using namespace panels;

// Exact forms differ by the rounding of double precision, so that a single-precision result is the same or
// the next number; a gradient is turned into global axes, in single precision.
constexpr double NEAR_ROUNDING = 1.3e-7, NEAR_TURNED = 2.5e-7;
// Multipoles are sums of some ten terms in single precision.
constexpr double FAR_ROUNDING = 6e-7;

struct Case {
    Panel panel;
    f32 P[4];
};

// Unless L has no meaning, and that is not told.
void add_case(const Panel &p, const Point &x, std::vector<Case> &cases) {
    Case c{p, {}};
    PanelIntegrals I;
    if (!above_panel(p, x) && PANINT(x[0], x[1], x[2], p, 0, 1, I) != 1)
        return;
    for (int a = 1; a <= 3; ++a)
        c.P[a] = p.XCT[a] + p.TRM[1][a] * x[0] + p.TRM[2][a] * x[1] + p.TRM[3][a] * x[2];
    cases.push_back(c);
}

// All shapes and a needle in all poses, at near points or around the borders of the multipoles.
std::vector<Case> cases_of(bool far) {
    std::vector<Case> cases;
    std::vector<Shape> shapes(std::begin(SHAPES), std::end(SHAPES));
    shapes.push_back({"needle", {{3, .01}, {3, -.01}, {-3, 0}, {-3, 0}}});
    for (const Shape &shape : shapes)
        for (const Pose &pose : POSES) {
            const Panel p = make(shape, pose, 1, 0);
            if (!far)
                for (const Point &x : near_points(p))
                    add_case(p, x, cases);
            for (const double R2 : {40.1, 99., 149.9, 150.1, 1500.})
                for (const double round : {.3, 2., 4.}) {
                    const double R = std::sqrt(R2 * p.region2);
                    if (far)
                        add_case(p,
                                 {static_cast<f32>(.6 * R * std::cos(round)),
                                  static_cast<f32>(.6 * R * std::sin(round)), static_cast<f32>(.8 * R)},
                                 cases);
                }
        }
    return cases;
}

struct Values {
    int status;
    f32 D, S, LZ, L, GS[3], GL[3];
    bool operator==(const Values &) const = default;
};

// The cases in the given order, in batches, the last one padded; results by case.
std::vector<Values> in_batches(const std::vector<Case> &cases, const std::vector<int> &order, bool far,
                               int ILOGF, int IGRAD) {
    std::vector<Values> values(cases.size());
    const int n = static_cast<int>(order.size());
    for (int first = 0; first < n; first += ABREAST) {
        PanelBatch batch;
        for (int l = 0; l < ABREAST; ++l) {
            const Case &c =
                cases[static_cast<std::size_t>(order[static_cast<std::size_t>(std::min(first + l, n - 1))])];
            batch.panel[l] = &c.panel;
            for (int a = 1; a <= 3; ++a)
                batch.P[a][l] = c.P[a];
        }
        FieldBatch f{};
        (far ? far_fields : near_fields)(batch, ILOGF, IGRAD, f);
        for (int l = 0; l < std::min(ABREAST, n - first); ++l) {
            if (f.status[l] == 1) // no L
                f.L[l] = f.LZ[l] = f.GL[1][l] = f.GL[2][l] = f.GL[3][l] = 0;
            values[static_cast<std::size_t>(order[static_cast<std::size_t>(first + l)])] = {
                f.status[l],
                f.D[l],
                f.S[l],
                f.LZ[l],
                f.L[l],
                {f.GS[1][l], f.GS[2][l], f.GS[3][l]},
                {f.GL[1][l], f.GL[2][l], f.GL[3][l]}};
        }
    }
    return values;
}

double norm(const f32 *g) {
    return std::hypot(g[0], g[1], g[2]);
}

double distance(const f32 *a, const f32 *b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

// Far or not, ILOGF, IGRAD.
class EightPanels : public testing::TestWithParam<std::tuple<bool, int, int>> {};

TEST_P(EightPanels, HaveTheValuesOfOne) {
    const auto [far, ILOGF, IGRAD] = GetParam();
    const std::vector<Case> cases = cases_of(far);
    std::vector<int> order(cases.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<int>(i);
    std::mt19937 random(1);
    std::shuffle(order.begin(), order.end(), random);
    const std::vector<Values> values = in_batches(cases, order, far, ILOGF, IGRAD);
    int statuses[3] = {0, 0, 0};
    double worst = 0, worst_turned = 0;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Panel &p = cases[i].panel;
        const f32 *P = cases[i].P;
        const Values &v = values[i];
        ASSERT_EQ(is_far({P[1], P[2], P[3]}, {p.XCT[1], p.XCT[2], p.XCT[3]}, p.region2), far) << i;
        FieldIntegrals one{};
        ASSERT_EQ(PANFLD(P, p, ILOGF, IGRAD, one), v.status) << i;
        ++statuses[v.status];
        const double A = p.PMOM[1], R = std::hypot(P[1], P[2], P[3]) + std::sqrt(A), D = one.D, S = one.S;
        worst = std::max({worst, std::abs(v.D - D) / std::max(std::abs(D), 1e-20), std::abs(v.S - S) / S});
        if (IGRAD != 0)
            worst_turned =
                std::max(worst_turned, distance(v.GS, &one.GS[1]) / std::max(A / (R * R), norm(&one.GS[1])));
        if (ILOGF == 0 || v.status == 1)
            continue;
        const double L = one.L, LZ = one.LZ;
        worst = std::max({worst, std::abs(v.L - L) / (A * (1 + std::abs(std::log(R)))),
                          std::abs(v.LZ - LZ) / std::max(A / R, std::abs(LZ))});
        if (IGRAD != 0)
            worst_turned =
                std::max(worst_turned, distance(v.GL, &one.GL[1]) / std::max(A / R, norm(&one.GL[1])));
    }
    EXPECT_LT(worst, far ? FAR_ROUNDING : NEAR_ROUNDING);
    EXPECT_LT(worst_turned, far ? FAR_ROUNDING : NEAR_TURNED);
    // All kinds were there.
    EXPECT_GT(statuses[0], 100);
    EXPECT_EQ(statuses[1] > 0, !far && ILOGF != 0);
    EXPECT_EQ(statuses[2] > 0, !far && ILOGF != 0 && IGRAD != 0);
    // In other company, and at other places.
    std::shuffle(order.begin(), order.end(), random);
    EXPECT_TRUE(values == in_batches(cases, order, far, ILOGF, IGRAD));
}
INSTANTIATE_TEST_SUITE_P(Panint, EightPanels,
                         testing::Combine(testing::Bool(), testing::Values(0, 1), testing::Values(0, 1)));

} // namespace
