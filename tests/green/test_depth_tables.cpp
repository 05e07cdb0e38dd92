// Truth: the definition as an integral in double precision, on a ray of the complex plane and on the real
// axis; differences of it; the conditions at bottom and free surface; sample values known for this function.
#include "../../tools/tables/depth_definition.hpp"
#include "green/depth_coefficients.hpp"
#include "green/depth_polynomial.hpp"
#include "green/near_kernels.hpp"

#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using Function = DepthDefinition::Function;

f32 root(f32 H) {
    return static_cast<f32>(propagating_root_definition(H));
}

// S or P and its derivatives from the tables, by the f32 evaluation.
DepthValues from_tables(Function which, f32 H, f32 t, f32 vertical) {
    PolynomialSums s;
    if (which == Function::S) {
        f32 c[91];
        SCOEF(H, root(H), c);
        s = polynomial_sums<ShapeS, true>(c, t, vertical);
    } else {
        f32 c[57];
        PCOEF(H, root(H), c);
        s = polynomial_sums<ShapeP, true>(c, t, vertical);
    }
    return {s.f, s.t, s.v, s.tv, 2.0 * s.half_vv};
}

// I(R, Z), or I(R, 2 H - Y) - F2 - 1/r1, by the definition.
double definition_I(double H, double R, double Z) {
    return DepthDefinition(Function::S, {R * R / (H * H)}, {Z * Z / (H * H)}).times_depth(H, false)[0].f / H;
}
double definition_P(double H, double R, double Y) {
    return DepthDefinition(Function::P, {R * R / (H * H)}, {Y / H}).times_depth(H, false)[0].f / H;
}

// I(R, Z) by a principal value on the real axis, x = s H: the two sides of the pole m are added point by
// point.
double real_axis_I(double H, double R, double Z) {
    const GaussRule rule;
    const double m = propagating_root_definition(H);
    const auto f = [&](double x) {
        return (x + H) * std::exp(-x) * std::cosh(x * Z / H) * ::j0(x * R / H) /
               (x * std::sinh(x) - H * std::cosh(x));
    };
    double sum = 0;
    const int panels = 20;
    for (int p = 0; p < panels; ++p)
        sum += rule(m * p / panels, m * (p + 1) / panels, [&](double u) { return f(m + u) + f(m - u); });
    for (int p = 0; p < 220; ++p) // the integrand falls like exp(-(2 - Z/H) x)
        sum += rule(2 * m + 0.5 * p, 2 * m + 0.5 * (p + 1), f);
    return sum / H;
}

TEST(DepthDefinition, RayAgreesWithPrincipalValueOnTheRealAxis) {
    constexpr double QUADRATURE = 1e-10; // the pole is cancelled in double precision
    for (const double H : {0.2, 0.7, 1.5, 3.5, 9.0, 20.0}) {
        for (const auto &[R, Z] : {std::pair(0.0, 0.0), std::pair(0.4, 0.9), std::pair(1.0, 0.2)}) {
            const double expected = real_axis_I(H, R * H, Z * H);
            EXPECT_NEAR(definition_I(H, R * H, Z * H), expected, QUADRATURE * (1 + 1 / H)) << H;
        }
    }
}

TEST(DepthDefinition, PIsTheRestOfIWithoutTheDeepWaterFunction) {
    constexpr double F2_ACCURACY = 1e-10;
    const F2Definition F2;
    for (const double H : {0.05, 0.7, 1.5, 3.5, 9.0}) {
        for (const auto &[R, Y] : {std::pair(0.5, 0.5), std::pair(0.1, 0.9), std::pair(1.0, 0.3)}) {
            const double A = 2 * H - Y * H, r1 = H * std::hypot(R, Y);
            const double expected = real_axis_I(H, R * H, A) - F2(R * H, Y * H).value - 1 / r1;
            EXPECT_NEAR(definition_P(H, R * H, Y * H), expected, F2_ACCURACY * (1 + 1 / H)) << H << " " << Y;
        }
    }
}

TEST(DepthTables, SampleValues) {
    constexpr f32 COEFFICIENT = 3e-7f, EPS = 3e-7f; // a few units in the last place of a sum of order 1
    f32 c91[91], c57[57];
    SCOEF(1.5f, root(1.5f), c91);
    PCOEF(1.5f, root(1.5f), c57);
    EXPECT_NEAR(c91[90], -0.81565911, COEFFICIENT);
    EXPECT_NEAR(c57[56], -0.088309646, COEFFICIENT);
    EXPECT_NEAR(from_tables(Function::S, 1.5f, 1 / 9.0f, 0).f, -0.81252680, EPS);
    EXPECT_NEAR(from_tables(Function::P, 1.5f, 1 / 9.0f, 1 / 3.0f).f, 0.093724637, EPS);
    EXPECT_NEAR(from_tables(Function::S, 0.05f, 0.25f, 0.25f).f, 15.904706, 16 * EPS);
    EXPECT_NEAR(from_tables(Function::S, 50, 0.25f, 0.25f).f, -0.014603, 5e-7); // as many digits as are known
}

// Errors of an interval that the fit has at random points, in S or P times min(H, 1), above 16 times H:
// value, first derivatives, mixed and second. The largest measured ones (head of the tables) and a third
// more.
struct Bounds {
    const char *name;
    double lower, upper;
    double S[3], P[3];
};
constexpr Bounds BOUNDS[DEPTH_INTERVALS] = {
    {"above16", 16, 1e5, {1.5e-6, 1.2e-5, 1.4e-4}, {4.9e-7, 1.1e-5, 1.1e-4}},
    {"12to16", 12, 16, {4.1e-8, 7.1e-7, 1.3e-5}, {2.6e-8, 6.7e-7, 1.1e-5}},
    {"8to12", 8, 12, {5.4e-8, 6.4e-7, 1.2e-5}, {4e-8, 9.2e-7, 1.7e-5}},
    {"6to8", 6, 8, {4.6e-8, 5.9e-7, 1.1e-5}, {7.9e-8, 1.2e-6, 3.8e-5}},
    {"4to6", 4, 6, {6.4e-8, 5.3e-7, 8.3e-6}, {1.5e-7, 8.4e-7, 3.3e-5}},
    {"3to4", 3, 4, {1.1e-7, 6e-7, 1.2e-5}, {1.7e-7, 6.4e-7, 1.9e-5}},
    {"2to3", 2, 3, {2.1e-7, 1.2e-6, 1.9e-5}, {3e-7, 6e-7, 1.5e-5}},
    {"1to2", 1, 2, {3.2e-7, 1.5e-6, 2.6e-5}, {3.2e-7, 6.3e-7, 1.5e-5}},
    {"below1", 1e-5, 1, {9.2e-7, 9.2e-7, 2.1e-5}, {9.2e-7, 4e-7, 1.1e-5}},
};

class DepthTable_ : public testing::TestWithParam<Bounds> {};

TEST_P(DepthTable_, TablesReproduceTheDefinition) {
    const Bounds &bounds = GetParam();
    constexpr int SIDE = 12, DEPTHS = 25;
    for (const Function which : {Function::S, Function::P}) {
        std::mt19937 random(17);
        std::uniform_real_distribution<f32> unit(0, 1);
        std::vector<f32> t = {0, 1}, vertical = {0, 1};
        for (int i = 2; i < SIDE; ++i) {
            t.push_back(unit(random));
            vertical.push_back(unit(random));
        }
        const DepthDefinition definition(which, {t.begin(), t.end()}, {vertical.begin(), vertical.end()});
        std::uniform_real_distribution<double> logarithm(std::log(bounds.lower), std::log(bounds.upper));
        double worst[3] = {};
        for (int n = 0; n < DEPTHS; ++n) {
            // Both ends of the interval are among the depths, each from inside.
            const f32 lower = static_cast<f32>(bounds.lower), upper = static_cast<f32>(bounds.upper);
            const f32 H = n == 0   ? std::nextafter(lower, 1e6f)
                          : n == 1 ? std::nextafter(upper, 0.0f)
                                   : static_cast<f32>(std::exp(logarithm(random)));
            const double scale = H > 16 || H < 1 ? H : 1;
            const std::vector<DepthValues> exact = definition.times_depth(H, true);
            for (int at = 0; at < SIDE * SIDE; ++at) {
                const DepthValues got = from_tables(which, H, t[at % SIDE], vertical[at / SIDE]);
                for (int d = 0; d < DepthValues::N; ++d) {
                    double &w = worst[d == 0 ? 0 : d <= 2 ? 1 : 2];
                    w = std::max(w, scale * std::abs(got[d] - exact[at][d] / H));
                }
            }
        }
        for (int d = 0; d < 3; ++d)
            EXPECT_LT(worst[d], which == Function::S ? bounds.S[d] : bounds.P[d])
                << (which == Function::S ? "S" : "P") << d;
    }
}

INSTANTIATE_TEST_SUITE_P(All, DepthTable_, testing::ValuesIn(BOUNDS),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(DepthTables, ContinuousAcrossTheBordersOfDepth) {
    // What the two sides may err by, and the change of the function over one step of f32.
    constexpr double JUMP[3] = {5e-7, 2e-6, 6e-5};
    for (const f32 border : {16.0f, 12.0f, 8.0f, 6.0f, 4.0f, 3.0f, 2.0f, 1.0f}) {
        for (const Function which : {Function::S, Function::P}) {
            for (int at = 0; at < 36; ++at) {
                const f32 t = static_cast<f32>(at % 6) / 5, vertical = static_cast<f32>(at / 6) / 5;
                const DepthValues on = from_tables(which, border, t, vertical),
                                  below = from_tables(which, std::nextafter(border, 0.0f), t, vertical),
                                  above = from_tables(which, std::nextafter(border, 99.0f), t, vertical);
                for (int d = 0; d < DepthValues::N; ++d) {
                    const double jump = JUMP[d == 0 ? 0 : d <= 2 ? 1 : 2];
                    EXPECT_NEAR(on[d], below[d], jump) << border << " " << t << " " << vertical << " " << d;
                    EXPECT_NEAR(on[d], above[d], jump) << border << " " << t << " " << vertical << " " << d;
                }
            }
        }
    }
    // S counts H = 1 to the interval above, P to the one below.
    EXPECT_EQ(depth_variable(1, false).interval, 7);
    EXPECT_EQ(depth_variable(1, true).interval, 8);
}

TEST(DepthTables, IndexListsAreInOrder) {
    for (const DepthTable *table : {&SCOEF_TABLE, &PCOEF_TABLE}) {
        const auto check = [](const DepthInterval &interval, int terms) {
            EXPECT_EQ(interval.first[0], 1);
            for (int n = 1; n <= terms; ++n) {
                const int values = interval.first[n] - interval.first[n - 1];
                EXPECT_GE(values, 1);
                EXPECT_LE(values, 12); // degree 11
            }
        };
        for (const DepthInterval &interval : table->interval)
            check(interval, table->terms);
        check(table->logarithm, table->log_terms);
        for (int n = 1; n < table->log_terms; ++n)
            EXPECT_LT(table->log_position[n - 1], table->log_position[n]);
        EXPECT_LE(table->log_position[table->log_terms - 1], table->terms);
    }
}

// A block of random points with R <= H and Y/H in the given range; lane 0 has R = 0 and z = zeta.
struct NearBlock {
    GreenBlock block{};
    double R[GREEN_LANES], Z[GREEN_LANES], ZETA[GREEN_LANES];
};

NearBlock random_points(f32 H, double Y0, double Y1, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(0, 1);
    NearBlock b;
    for (int k = 0; k < GREEN_LANES; ++k) {
        const double Y = H * (Y0 + (Y1 - Y0) * unit(random)), half = std::min(Y, 2 * H - Y);
        const f32 D = k == 0 ? 0 : static_cast<f32>((2 * unit(random) - 1) * half);
        b.block.X[k] = k == 0 ? 0 : static_cast<f32>(0.98 * H * unit(random));
        b.block.Y[k] = static_cast<f32>(Y);
        b.block.D[k] = D;
        b.R[k] = b.block.X[k];
        b.Z[k] = (static_cast<double>(b.block.Y[k]) + D) / 2;
        b.ZETA[k] = (static_cast<double>(b.block.Y[k]) - D) / 2;
    }
    return b;
}

GSTATE near_state(f32 H) {
    GSTATE state;
    f32 ratio = 0;
    EXPECT_EQ(HGRN98(H, ratio, state), 0);
    SCOEF(H, root(H), state.COEF91);
    PCOEF(H, root(H), state.COEF57);
    return state;
}

// The eight values of a function of (R, z, zeta), even in R, by central differences in double precision.
void by_differences(const std::function<double(double, double, double)> &f, double R, double z, double zeta,
                    double h, double (&value)[GREEN_VALUES]) {
    const auto at = [&](int r, int a, int b) { return f(std::abs(R + r * h), z + a * h, zeta + b * h); };
    value[G_] = at(0, 0, 0);
    value[G_R] = (at(1, 0, 0) - at(-1, 0, 0)) / (2 * h);
    value[G_Z] = (at(0, 1, 0) - at(0, -1, 0)) / (2 * h);
    value[G_ZETA] = (at(0, 0, 1) - at(0, 0, -1)) / (2 * h);
    value[G_ZZ] = (at(0, 1, 0) - 2 * value[G_] + at(0, -1, 0)) / (h * h);
    value[G_RZ] = (at(1, 1, 0) - at(1, -1, 0) - at(-1, 1, 0) + at(-1, -1, 0)) / (4 * h * h);
    value[G_RZETA] = (at(1, 0, 1) - at(1, 0, -1) - at(-1, 0, 1) + at(-1, 0, -1)) / (4 * h * h);
    value[G_ZZETA] = (at(0, 1, 1) - at(0, 1, -1) - at(0, -1, 1) + at(0, -1, -1)) / (4 * h * h);
}

// Kernel against differences of the definition, times the power of H of a derivative; `before` is what the
// real parts hold already.
void compare_kernel(bool deep, f32 H, unsigned seed) {
    // The errors of the tables with the factors 2 and 4 of the chain rule, times 1/min(H, 1).
    const double scale = 1 / std::min(H, 1.0f), FIRST = 6e-6 * scale, SECOND = 1.5e-4 * scale,
                 VALUE = 2e-6 * scale;
    const GSTATE state = near_state(H);
    NearBlock b = deep ? random_points(H, 1, 1.98, seed) : random_points(H, 0.02, 0.99, seed);
    for (auto &value : b.block.re)
        std::fill(value, value + GREEN_LANES, deep ? 77.0f : 0.25f);
    GreenBlock first = b.block;
    (deep ? GDEEP : GNEAR)(state, GreenOrder::second, b.block);
    (deep ? GDEEP : GNEAR)(state, GreenOrder::first, first);
    const f32 before = deep ? 0 : 0.25f;
    const auto exact = [&](double R, double z, double zeta) {
        const double I = definition_I(H, R, z - zeta);
        return I + (deep ? definition_I(H, R, 2 * H - z - zeta) : definition_P(H, R, z + zeta));
    };
    for (int k = 0; k < GREEN_LANES; k += 3) { // the definition is slow
        double expected[GREEN_VALUES];
        by_differences(exact, b.R[k], b.Z[k], b.ZETA[k], 2e-3 * H, expected);
        for (int j = 0; j < GREEN_VALUES; ++j) {
            const bool value = j == G_, slope = j == G_R || j == G_Z || j == G_ZETA;
            const double unit = value ? 1 : slope ? H : H * H, bound = value ? VALUE : slope ? FIRST : SECOND;
            EXPECT_NEAR((b.block.re[j][k] - before) * unit, expected[j] * unit,
                        bound + unit * 3e-8 * (1 + std::abs(b.block.re[j][k])))
                << (deep ? "GDEEP" : "GNEAR") << " H " << H << " lane " << k << " value " << j;
            // The order asked for leaves the value as it is, and what it does not ask for alone.
            if (value || slope)
                EXPECT_NEAR(first.re[j][k], b.block.re[j][k],
                            3e-7 * std::abs(b.block.re[j][k]) + VALUE / unit);
            else
                EXPECT_EQ(first.re[j][k], deep ? 77.0f : 0.25f);
        }
    }
}

TEST(NearKernels, ValuesAndDerivativesAreThoseOfTheDefinition) {
    for (const f32 H : {0.03f, 1.5f, 25.0f}) {
        compare_kernel(true, H, 1);
        compare_kernel(false, H, 2);
    }
}

TEST(NearKernels, NoFlowThroughTheBottom) {
    // z = H makes A = D, and both Rankine terms left out are a pair of images in the bottom.
    constexpr f32 ROUNDING = 3e-8f;
    const f32 H = 2;
    const GSTATE state = near_state(H);
    GreenBlock block{};
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 zeta = H * static_cast<f32>(k) / GREEN_LANES;
        block.X[k] = 0.1f * static_cast<f32>(k);
        block.Y[k] = H + zeta;
        block.D[k] = H - zeta;
    }
    GDEEP(state, GreenOrder::second, block);
    for (int k = 0; k < GREEN_LANES; ++k) {
        EXPECT_NEAR(block.re[G_Z][k], 0, ROUNDING);
        EXPECT_NEAR(block.re[G_RZ][k], 0, ROUNDING);
    }
}

TEST(NearKernels, FreeSurfaceCondition) {
    // 1/r + 1/r1 + F2 meets it, so the rest of the function, what GNEAR adds and 1/rb, has to: f_z = -f at
    // z = 0.
    constexpr double ERRORS = 2e-6;
    for (const f32 H : {0.4f, 1.5f, 5.0f, 10.0f}) {
        const GSTATE state = near_state(H);
        NearBlock b = random_points(H, 0.02, 0.98, 5);
        for (int k = 0; k < GREEN_LANES; ++k)
            b.block.D[k] = -b.block.Y[k];
        GNEAR(state, GreenOrder::first, b.block);
        for (int k = 0; k < GREEN_LANES; ++k) {
            const double A = 2.0 * H - b.block.Y[k], rb = std::hypot(b.R[k], A);
            const double f = b.block.re[G_][k] + 1 / rb, slope = b.block.re[G_Z][k] + A / (rb * rb * rb);
            EXPECT_NEAR(slope, -f, ERRORS * (1 + 1 / (H * H))) << H << " " << k;
        }
    }
}

TEST(NearKernels, KnownValueOfTheWholeFunction) {
    // H = 2, R = 0.5, z = 0.3, zeta = 0.4: the real part is 1.67415.
    constexpr double LAST_DIGIT = 6e-6;
    const GSTATE state = near_state(2);
    f32 deep_water[16];
    VGRN1P(0.5f, 0.3f, 0.4f, -1, state, 0, 0, deep_water);
    GreenBlock block{};
    for (int k = 0; k < GREEN_LANES; ++k) {
        block.X[k] = 0.5f;
        block.Y[k] = 0.7f;
        block.D[k] = -0.1f;
        block.re[G_][k] = deep_water[0];
    }
    GNEAR(state, GreenOrder::first, block);
    for (int k = 0; k < GREEN_LANES; ++k)
        EXPECT_NEAR(block.re[G_][k] + 1 / std::hypot(0.5, 3.3), 1.67415, LAST_DIGIT);
}

} // namespace
