// The depth tables, whole and by boxes. Truth: the definition as an integral on a ray of the complex plane in
// double precision (that it is the function, and that the kernels put the sums together rightly, is seen
// against modes in test_finite_depth.cpp).
#include "../../tools/tables/depth_definition.hpp"
#include "green/depth_boxes.hpp"
#include "green/depth_coefficients.hpp"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using Function = DepthDefinition::Function;

f32 root(f32 H) {
    return static_cast<f32>(propagating_root_definition(H));
}

// S or P and its derivatives, on the box of the point.
template <class Box> DepthValues in_box(const f32 (&value)[Box::TERMS][BOXES], f32 t, f32 vertical) {
    const int i = std::min(static_cast<int>(4 * t), 3), j = std::min(static_cast<int>(4 * vertical), 3);
    f32 c[Box::TERMS];
    for (int term = 0; term < Box::TERMS; ++term)
        c[term] = value[term][i + 4 * j];
    const PolynomialSums s = polynomial_sums<Box, true>(c, 8 * t - static_cast<f32>(2 * i + 1),
                                                        8 * vertical - static_cast<f32>(2 * j + 1));
    return {s.f, 8.0 * s.t, 8.0 * s.v, 64.0 * s.tv, 128.0 * s.half_vv};
}

// S or P and its derivatives from the tables, by the f32 evaluation, and the same by boxes.
std::array<DepthValues, 2> from_tables(Function which, f32 H, f32 t, f32 vertical) {
    f32 S[91], P[57];
    SCOEF(H, root(H), S);
    PCOEF(H, root(H), P);
    DepthBoxes boxes;
    depth_boxes(S, P, boxes);
    const bool is_S = which == Function::S;
    const PolynomialSums s =
        is_S ? polynomial_sums<ShapeS, true>(S, t, vertical) : polynomial_sums<ShapeP, true>(P, t, vertical);
    return {DepthValues{s.f, s.t, s.v, s.tv, 2.0 * s.half_vv},
            is_S ? in_box<BoxS>(boxes.S, t, vertical) : in_box<BoxP>(boxes.P, t, vertical)};
}

// Errors of an interval that the fit has at random points, in S or P times min(H, 1), above 16 times
// H: value, first derivatives, mixed and second. The largest measured ones (head of the tables) and
// a third more.
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
            // Both ends of the interval are among the depths, each from inside, and the lower one itself.
            const f32 lower = static_cast<f32>(bounds.lower), upper = static_cast<f32>(bounds.upper);
            const f32 H = n == 0   ? std::nextafter(lower, 1e6f)
                          : n == 1 ? std::nextafter(upper, 0.0f)
                          : n == 2 ? lower
                                   : static_cast<f32>(std::exp(logarithm(random)));
            const double scale = H > 16 || H < 1 ? H : 1;
            const std::vector<DepthValues> exact = definition.times_depth(H, true);
            for (int at = 0; at < SIDE * SIDE; ++at) {
                const auto ways = from_tables(which, H, t[at % SIDE], vertical[at / SIDE]);
                for (int d = 0; d < DepthValues::N; ++d) {
                    double &w = worst[d == 0 ? 0 : d <= 2 ? 1 : 2];
                    for (const DepthValues &got : ways)
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

} // namespace
