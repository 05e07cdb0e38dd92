// The depth state of the Green function. Truth: roots by Newton's method in double and the usual hyperbolic
// form of the propagating mode. Its polynomials show in the function itself, test_finite_depth.cpp.
#include "green/gstate.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr double PI_D = 3.14159265358979323846;
constexpr double ROUNDING = 6.1e-8;       // of k
constexpr double DOUBLE_ROUNDING = 1e-13; // of the number of quarter turns, at H = 1e-5 the most
constexpr double ROOT_TOLERANCE = 3e-7;   // of the mu, a few roundings of single precision: measured 2.3e-7
constexpr double C_TOLERANCE = 4e-7;      // measured 2.6e-7

std::vector<f32> depths() {
    std::vector<f32> list;
    for (int i = 0; i <= 2000; ++i)
        list.push_back(std::clamp(static_cast<f32>(std::pow(10, -5 + 10.0 * i / 2000)), 1e-5f, 1e5f));
    for (const f32 H : {2.0f, 2.000001f, 4.8f, 4.800001f, 5.0f, 14.99f, 15.0f, 15.01f})
        list.push_back(H);
    return list;
}

// Root of m tanh(m) = H.
double exact_root(double H) {
    double m = H < 1 ? std::sqrt(H) : H;
    for (int i = 0; i < 60; ++i) {
        const double t = std::tanh(m);
        m -= (m * t - H) / (t + m * (1 - t * t));
    }
    return m;
}

} // namespace

TEST(Hgrn98, RangeOfDepths) {
    GSTATE state;
    state.RK = 7;
    f32 k = 5;
    for (const f32 H : {9e-6f, 1.001e5f, 0.0f, -1.0f, std::nanf("")}) {
        EXPECT_EQ(HGRN98(H, k, state), 1) << H;
        EXPECT_EQ(k, 5);
        EXPECT_EQ(state.RK, 7);
        EXPECT_EQ(state.HTWO, 0);
    }
    EXPECT_EQ(HGRN98(1e-5f, k, state), 0);
    EXPECT_EQ(HGRN98(1e5f, k, state), 0);
    EXPECT_EQ(k, 1);
    EXPECT_EQ(state.CFOUR, 4);
    INIT_HGRN98_ARRAYS(state);
    EXPECT_EQ(state.EVK[4], 0);
    EXPECT_EQ(state.PJ0[0], 0);
}

TEST(Hgrn98, RootsAndModeFactorAtAllDepths) {
    for (const f32 H : depths()) {
        GSTATE state;
        f32 k = 0;
        ASSERT_EQ(HGRN98(H, k, state), 0);
        const double h = H, m = exact_root(h), ke = m / h;
        EXPECT_NEAR(k / ke, 1, ROUNDING) << H;
        EXPECT_NEAR(state.quarter_turns / (ke * 2 / PI_D), 1, DOUBLE_ROUNDING) << H;
        // 2 pi C E equals 2 pi (k^2 - 1) cosh^2(k H) / (H (k^2 - 1) + 1) at z = zeta = 0, E = (1 +
        // exp(-2 k H))^2.
        if (h < 5) {
            const double e = std::exp(-2 * m),
                         usual = (ke * ke - 1) * std::pow(std::cosh(m), 2) / (h * (ke * ke - 1) + 1);
            EXPECT_NEAR(state.CFOUR / 4 * (1 + e) * (1 + e) / usual, 1, C_TOLERANCE) << H;
        }
        for (int n = 1; n <= 5; ++n) {
            double y = std::atan(h / (n * PI_D));
            for (int i = 0; i < 100; ++i) {
                const double mn = n * PI_D - y;
                y -= (std::atan(h / mn) - y) / (h / (mn * mn + h * h) - 1);
            }
            EXPECT_NEAR(state.EVK[n - 1] * h / (n * PI_D - y), 1, ROOT_TOLERANCE) << H << " mode " << n;
        }
    }
}
