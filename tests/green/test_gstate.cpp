// The depth state of the Green function. Truth: roots by Newton's method in double, the Bessel functions of
// the C library, the usual hyperbolic form of the propagating mode.
#include "green/gstate.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace {

constexpr double PI_D = 3.14159265358979323846;
constexpr double ROOT_TOLERANCE =
    3e-7; // a few roundings of single precision: measured 1.9e-7, 2.3e-7 for the mu
constexpr double C_TOLERANCE = 4e-7; // measured 2.6e-7

// Of values up to 2 pi. The published fits themselves are good to 1.03e-6 (J0, x <= 3) and 1.5e-7 (x > 3);
// rounding of the folded coefficients adds as much: measured 1.70e-6 and 3.9e-7.
constexpr double FIT_NEAR = 2e-6, FIT_FAR = 5e-7;

std::vector<f32> depths() {
    std::vector<f32> list;
    for (int i = 0; i <= 2000; ++i)
        list.push_back(std::clamp(static_cast<f32>(std::pow(10, -5 + 10.0 * i / 2000)), 1e-5f, 1e5f));
    for (const f32 H : {2.0f, 2.000001f, 4.8f, 4.800001f, 14.99f, 15.0f, 15.01f})
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

template <int N> double polynomial(const f32 (&c)[N], double v) {
    double sum = 0;
    for (int i = N - 1; i >= 0; --i)
        sum = sum * v + c[i];
    return sum;
}

} // namespace

TEST(Hgrn98, SampleDepth) {
    GSTATE state;
    f32 k = 0;
    ASSERT_EQ(HGRN98(1.5f, k, state), 0);
    EXPECT_NEAR(k, 1.0812125f, 2e-7);
    EXPECT_EQ(k, state.RK);
    EXPECT_NEAR(state.CFOUR, 3.4553966f, 5e-7);
    const double mu[5] = {1.7479630, 4.0265045, 6.1761723, 8.2976227, 10.408119};
    for (int n = 0; n < 5; ++n)
        EXPECT_NEAR(state.EVK[n] / mu[n], 1, ROOT_TOLERANCE);
    EXPECT_FLOAT_EQ(state.HINV, 1 / 1.5f);
    EXPECT_FLOAT_EQ(state.HTWO, 3.0f);
    EXPECT_FLOAT_EQ(state.HINV2, 1 / 2.25f);
    EXPECT_FLOAT_EQ(state.HINV2X2, 2 / 2.25f);
    EXPECT_FLOAT_EQ(state.HINV2X8, 8 / 2.25f);
    EXPECT_FLOAT_EQ(state.RKSQ, k * k);
    EXPECT_FLOAT_EQ(state.RKTWO, 2 * k);
    EXPECT_NEAR(state.COEF91[90], -0.81565911f, 3e-7); // S and P at R = Z = Y = 0; the tables err by 2.3e-7
    EXPECT_NEAR(state.COEF57[56], -0.088309646f, 3e-7);
}

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
        EXPECT_NEAR(k / ke, 1, ROOT_TOLERANCE) << H;
        // 2 pi C E equals 2 pi (k^2 - 1) cosh^2(k H) / (H (k^2 - 1) + 1) at z = zeta = 0, E = (1 + exp(-2 k
        // H))^2.
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

// The polynomials with k and C folded in stand for the Bessel functions that their definition names.
TEST(Hgrn98, ScaledBesselPolynomials) {
    for (const f32 H : {1e-3f, 0.1f, 1.5f, 30.0f}) {
        GSTATE state;
        f32 ratio = 0;
        ASSERT_EQ(HGRN98(H, ratio, state), 0);
        const double k = ratio, C = state.CFOUR / 4.0;
        double tolerance = FIT_NEAR * C * std::max(1.0, k);
        for (int i = 1; i <= 40; ++i) {
            const double x = 3.0 * i / 40, R = x / k, R2 = R * R, lg = 2 / PI_D * std::log(x);
            const double j0 = 2 * PI_D * C * ::j0(x), j1 = 2 * PI_D * C * k * ::j1(x);
            EXPECT_NEAR(polynomial(state.PJ0, R2), j0, tolerance) << H << " " << x;
            EXPECT_NEAR(polynomial(state.PY0, R2), 2 * PI_D * C * ::y0(x) - lg * j0, tolerance)
                << H << " " << x;
            EXPECT_NEAR(R * polynomial(state.PJ1, R2), j1, tolerance) << H << " " << x;
            EXPECT_NEAR(R * polynomial(state.PY1, R2), 2 * PI_D * C * k * ::y1(x) - lg * j1 + 4 * C / R,
                        tolerance)
                << H << " " << x;
        }
        tolerance = FIT_FAR * C * std::max(1.0, k);
        for (int i = 1; i <= 40; ++i) {
            const double x = 3 / (i / 40.0), R = x / k, v = 1 / (R * R), chi = x - PI_D / 4;
            const double P0 = polynomial(state.QP0, v), Q0 = polynomial(state.QQ0, v) / R;
            const double P1 = polynomial(state.QP1, v), Q1 = polynomial(state.QQ1, v) / R;
            const double s = 1 / std::sqrt(R), c = std::cos(chi), d = std::sin(chi);
            EXPECT_NEAR((P0 * c - Q0 * d) * s, 2 * PI_D * C * ::j0(x), tolerance) << H << " " << x;
            EXPECT_NEAR((P0 * d + Q0 * c) * s, 2 * PI_D * C * ::y0(x), tolerance) << H << " " << x;
            EXPECT_NEAR((P1 * d + Q1 * c) * s, 2 * PI_D * C * k * ::j1(x), tolerance) << H << " " << x;
            EXPECT_NEAR((Q1 * d - P1 * c) * s, 2 * PI_D * C * k * ::y1(x), tolerance) << H << " " << x;
        }
    }
}

// EVA and EVB give 2 C(n) K0(mu R) and 2 C(n) mu K1(mu R), without exp(-mu R) / sqrt(R), for R >= H.
TEST(Hgrn98, EvanescentModes) {
    for (const f32 H : {0.01f, 0.5f, 1.5f, 6.0f, 40.0f}) {
        GSTATE state;
        f32 ratio = 0;
        ASSERT_EQ(HGRN98(H, ratio, state), 0);
        for (int n = 0; n < 5; ++n) {
            const double mu = state.EVK[n], C = (mu * mu + 1) / (H * (mu * mu + 1) - 1);
            for (const double over : {1.0, 1.3, 2.0, 4.0}) {
                const double R = over * H, scale = std::exp(mu * R) * std::sqrt(R);
                const double k0 = 2 * C * std::cyl_bessel_k(0, mu * R) * scale;
                const double k1 = 2 * C * mu * std::cyl_bessel_k(1, mu * R) * scale;
                EXPECT_NEAR(polynomial(state.EVA[n], 1 / R) / k0, 1, 1e-6)
                    << H << " mode " << n + 1 << " R " << R;
                EXPECT_NEAR(polynomial(state.EVB[n], 1 / R) / k1, 1, 1e-6)
                    << H << " mode " << n + 1 << " R " << R;
            }
        }
    }
}
