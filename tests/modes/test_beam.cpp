// Truth: the equation of the beam and its end conditions, by differences; tabulated parameters; quadrature.
#include "modes/beam.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {

constexpr double STEP = 1e-4;
constexpr double ROUNDING = 1e-6; // of second differences at this step

struct Kind {
    BeamEnds ends;
    bool torsion;
    BeamValue at(int n, double s) const {
        return torsion ? torsion_mode(ends, torsion_parameter(ends, n), s)
                       : bending_mode(ends, bending_parameter(ends, n), s);
    }
};
class BeamModes : public testing::TestWithParam<Kind> {};
INSTANTIATE_TEST_SUITE_P(All, BeamModes,
                         testing::Values(Kind{BeamEnds::free_free, false},
                                         Kind{BeamEnds::clamped_free, false}, Kind{BeamEnds::free_free, true},
                                         Kind{BeamEnds::clamped_free, true}));

TEST(BendingParameter, IsThatOfTheTables) {
    const double free[] = {4.73004074, 7.85320462, 10.9956079}, held[] = {1.87510407, 4.69409113, 7.85475744};
    for (int n = 1; n <= 3; ++n) {
        EXPECT_NEAR(bending_parameter(BeamEnds::free_free, n), free[n - 1], 1e-7);
        EXPECT_NEAR(bending_parameter(BeamEnds::clamped_free, n), held[n - 1], 1e-7);
    }
}

// w'''' = beta^4 w, or t'' = -beta^2 t, up to a mode whose hyperbolic functions are 1e26 large.
TEST_P(BeamModes, SatisfyTheEquationOfTheBeam) {
    const Kind kind = GetParam();
    for (const int n : {1, 2, 3, 6, 20}) {
        const double beta = kind.torsion ? torsion_parameter(kind.ends, n) : bending_parameter(kind.ends, n);
        for (const double s : {0.1, 0.37, 0.8}) {
            const double h = STEP / beta;
            const BeamValue low = kind.at(n, s - h), v = kind.at(n, s), high = kind.at(n, s + h);
            EXPECT_NEAR((high.w - low.w) / (2 * h), v.slope, ROUNDING * beta);
            EXPECT_NEAR((high.slope - low.slope) / (2 * h), v.curvature, ROUNDING * beta * beta);
            if (kind.torsion)
                EXPECT_NEAR(v.curvature, -beta * beta * v.w, 1e-9 * beta * beta);
            else
                EXPECT_NEAR((high.curvature - 2 * v.curvature + low.curvature) / (h * h),
                            std::pow(beta, 4) * v.w, ROUNDING * std::pow(beta, 4))
                    << n << " at " << s;
        }
    }
}

TEST_P(BeamModes, HaveTheirEnds) {
    const Kind kind = GetParam();
    for (const int n : {1, 2, 5, 20}) {
        const double beta = kind.torsion ? torsion_parameter(kind.ends, n) : bending_parameter(kind.ends, n);
        const bool held = kind.ends == BeamEnds::clamped_free;
        EXPECT_NEAR(kind.at(n, 1).w, 1, 1e-12);
        for (const double s : {0.0, 1.0}) {
            const BeamValue end = kind.at(n, s);
            const double inwards = (s == 0 ? 1 : -1) * STEP / beta;
            if (held && s == 0) {
                EXPECT_NEAR(end.w, 0, 1e-12);
                EXPECT_NEAR(kind.torsion ? 0 : end.slope / beta, 0, 1e-9);
            } else if (kind.torsion) {
                EXPECT_NEAR(end.slope / beta, 0, 1e-9);
            } else { // neither moment nor shear: the curvature rises with the square of the way inwards
                EXPECT_NEAR(end.curvature / (beta * beta), 0, 1e-9);
                EXPECT_NEAR(kind.at(n, s + inwards).curvature / (beta * beta), 0, STEP * STEP);
            }
        }
    }
}

// The integral of the squares is 1/4 with a tip of 1 (Blevins), 1/2 for torsion; of two modes it is 0.
TEST_P(BeamModes, AreOrthogonal) {
    const Kind kind = GetParam();
    constexpr int N = 4000; // Simpson's rule
    for (int a = 1; a <= 4; ++a)
        for (int b = 1; b <= a; ++b) {
            double sum = 0;
            for (int k = 0; k <= N; ++k)
                sum += (k == 0 || k == N ? 1
                        : k % 2 == 1     ? 4
                                         : 2) *
                       kind.at(a, static_cast<double>(k) / N).w * kind.at(b, static_cast<double>(k) / N).w;
            EXPECT_NEAR(sum / (3 * N), a != b ? 0 : kind.torsion ? 0.5 : 0.25, 1e-9) << a << b;
        }
}

} // namespace
