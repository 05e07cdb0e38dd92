// Truth: with U = d(nu G(nu R, nu z, nu zeta, nu H))/d(nu) at nu = 1, G the complete function in double
// precision, the results are W2 = U, P = 2 i (U_x, -U_xx, -U_xy, -U_x_zeta), Q likewise for y, W1 = -2 i
// U_zeta, by differences; deep water against great depth; a point in the place of a small panel.
#include "../../tools/tables/f2_definition.hpp"
#include "finite_reference.hpp"
#include "green/regpar.hpp"
#include "green_points.hpp"
#include "state/messages.hpp"

#include <random>

namespace {

constexpr int TERMS = 9;
std::array<Complex, TERMS> list(const RegularTerms &t) {
    return {t.P[1], t.P[2], t.P[3], t.P[4], t.Q[1], t.Q[3], t.Q[4], t.W1, t.W2};
}

struct Pair {
    double H, X, Y, z, zeta; // H <= 0: deep water; X, Y: field point less source point
};

RegularTerms regular(const Pair &p, int IFLAG, RegularWork &work) {
    const f32 X = 0.25f, Y = -0.5f; // the place of the source point
    const f32 X2 = X, Y2 = Y, Z2 = static_cast<f32>(p.zeta);
    RegularTerms result;
    EXPECT_TRUE(work.alloc(1));
    EXPECT_EQ(REGPAR({1, X + static_cast<f32>(p.X), Y + static_cast<f32>(p.Y), static_cast<f32>(p.z), &X2,
                      &Y2, &Z2, &IFLAG},
                     static_cast<f32>(p.H), {}, work, &result),
              Status::ok);
    return result;
}
RegularTerms regular(const Pair &p, int IFLAG) {
    RegularWork work;
    return regular(p, IFLAG, work);
}

// U in double precision.
class WaveNumberDerivative {
  public:
    explicit WaveNumberDerivative(double H) {
        for (int i = 0; i < 4; ++i)
            expansion_.emplace_back(H > 0 ? H * nu(i) : 1.0);
        finite_ = H > 0;
    }
    Complex operator()(double R, double z, double zeta) {
        Complex sum = 0;
        for (int i = 0; i < 4; ++i)
            sum += WEIGHT[i] * nu(i) * G(i, nu(i) * R, nu(i) * z, nu(i) * zeta);
        return sum / (12 * STEP);
    }

  private:
    static constexpr double STEP = 0.005, WEIGHT[4] = {1, -8, 8, -1};
    static double nu(int i) { return 1 + STEP * (i < 2 ? i - 2 : i - 1); }
    Complex G(int i, double R, double z, double zeta) {
        if (finite_)
            return expansion_[i](R, z, zeta).G;
        const double Y = z + zeta;
        return {1 / std::hypot(R, z - zeta) + 1 / std::hypot(R, Y) + F2_(R, Y).value,
                -2 * PI_D * std::exp(-Y) * ::j0(R)};
    }
    std::vector<ModeExpansion> expansion_;
    F2Definition F2_;
    bool finite_;
};

std::array<Complex, TERMS> by_differences(const Pair &p) {
    WaveNumberDerivative U(p.H);
    const double R = std::hypot(p.X, p.Y), c = p.X / R, s = p.Y / R, h = 0.01 * std::hypot(R, p.z - p.zeta);
    const auto f = [&](const std::array<double, 2> &x) { return U(x[0], p.z, x[1]); };
    const auto by = [&](std::array<int, 2> times) { return derivative<2>(f, {R, p.zeta}, times, {h, h}); };
    const Complex u = by({0, 0}), r = by({1, 0}), zeta = by({0, 1}), rr = by({2, 0}), rz = by({1, 1}),
                  i(0, 2);
    const Complex bend = rr - r / R;
    return {i * c * r, -i * (c * c * bend + r / R), -i * c * s * bend, -i * c * rz,
            i * s * r, -i * (s * s * bend + r / R), -i * s * rz,       -i * zeta,
            u};
}

class WaveNumberKernel : public testing::TestWithParam<Pair> {};

void expect_derivative_of_complete_function(const Pair &p) {
    // Single precision of the largest term, and what the table of S3 leaves when all are small.
    constexpr double SINGLE = 3e-6, SMALLEST = 2e-6;
    const std::array<Complex, TERMS> got = list(regular(p, 0)), exact = by_differences(p);
    const double scale = std::abs(exact[8]) + std::abs(exact[7]) + std::abs(exact[1]) + std::abs(exact[5]);
    for (int j = 0; j < TERMS; ++j)
        EXPECT_NEAR(std::abs(got[j] - exact[j]), 0, SINGLE * scale + SMALLEST) << j << got[j] << exact[j];
}

TEST_P(WaveNumberKernel, IsTheDerivativeOfTheCompleteFunction) {
    expect_derivative_of_complete_function(GetParam());
}

// Images in the last boxes of the table of F2, whose errors are multiplied with the depth.
TEST(WaveNumberKernelLimits, ImagesFarAway) {
    for (const Pair &p :
         {Pair{8.5, 3, 1, 3, 4}, Pair{14, 5, 2, 5, 6}, Pair{19, 6, 3, 9, 7}, Pair{20, 2, 3, 6, 8}})
        expect_derivative_of_complete_function(p);
}

TEST_P(WaveNumberKernel, NearTermsOfAPointAreWhatTheFlagLeavesOut) {
    constexpr double SINGLE = 3e-6;
    const Pair p = GetParam();
    const double Y = p.z + p.zeta, r1 = std::sqrt(p.X * p.X + p.Y * p.Y + Y * Y);
    const auto single = [](double x) { return static_cast<f32>(x); };
    for (const double nu : {1.0, 0.4}) {
        // A panel of unit area so far as its source point: its integrals are the values at the point.
        const double r = r1 / nu, i3 = 1 / (r * r * r);
        const auto slope = [&](double x) { return single(-x / nu * i3); };
        const NearPair pair{single(p.X),
                            single(p.Y),
                            single(p.z),
                            0,
                            0,
                            single(p.zeta),
                            single(nu),
                            single(1 / r),
                            single(std::log((Y + r1) / nu)),
                            {slope(p.X), slope(p.Y), slope(Y)},
                            1};
        RegularTerms near;
        LOGPAR(pair, near);
        const auto all = list(regular(p, 0)), without = list(regular(p, 1)), apart = list(near);
        for (int j = 0; j < TERMS; ++j)
            EXPECT_NEAR(std::abs(without[j] + apart[j] - all[j]), 0, SINGLE * (1 + 1 / (r1 * r1 * r1))) << j;
    }
}

INSTANTIATE_TEST_SUITE_P(Deep, WaveNumberKernel,
                         testing::Values(Pair{-1, 0.3, 0.2, 0.2, 0.3}, Pair{-1, -1.5, 0.8, 0.5, 0.1},
                                         Pair{-1, 3, -4, 0.7, 1.2}, Pair{-1, 1, 1, 2, 3.5},
                                         Pair{-1, 9, 2, 3, 2}, Pair{-1, 0.01, -0.02, 0.05, 0.2}));

INSTANTIATE_TEST_SUITE_P(Finite, WaveNumberKernel,
                         testing::Values(Pair{0.3, 0.02, 0.1, 0.02, 0.1}, Pair{0.3, 0.3, -0.1, 0.2, 0.1},
                                         Pair{1.5, 0.3, 0.4, 0.5, 1.1}, Pair{1.5, -2, 1, 0.3, 0.1},
                                         Pair{6, 1, 2, 2, 4}, Pair{6, 3, 1, 1, 0.5}, Pair{30, 3, 3, 0.5, 1}));

// Straight above each other the horizontal directions are alike, and a pair next to it differs by the order
// of R.
TEST(WaveNumberKernelLimits, StraightAbove) {
    for (const double H : {-1.0, 1.5}) {
        for (const int near : {0, 1}) {
            const auto above = list(regular({H, 0, 0, 0.2, 0.4}, near)),
                       beside = list(regular({H, 3e-5, 4e-5, 0.2, 0.4}, near));
            for (int j = 0; j < TERMS; ++j)
                EXPECT_NEAR(std::abs(above[j] - beside[j]), 0, 2e-4 * std::abs(above[1])) << H << near << j;
            EXPECT_EQ(above[1], above[5]);
            EXPECT_GT(std::abs(above[1].imag()), 1);
        }
    }
}

TEST(WaveNumberKernelLimits, ResultsDependOnThePairAlone) {
    std::mt19937 random(5);
    std::uniform_real_distribution<f32> part(0, 1);
    constexpr int N = 77;
    f32 X[N], Y[N], Z[N];
    int IFLAG[N];
    for (int i = 0; i < N; ++i) {
        X[i] = 6 * part(random);
        Y[i] = 4 * part(random);
        Z[i] = 2 * part(random);
        IFLAG[i] = i % 3 == 0;
    }
    for (const f32 H : {-1.0f, 2.0f, 25.0f}) {
        RegularWork work;
        RegularTerms all[N], one;
        ASSERT_TRUE(work.alloc(N));
        ASSERT_EQ(REGPAR({N, 1, 1, 0.2f, X, Y, Z, IFLAG}, H, {}, work, all), Status::ok);
        for (int i = 0; i < N; ++i) {
            ASSERT_EQ(REGPAR({1, 1, 1, 0.2f, X + i, Y + i, Z + i, IFLAG + i}, H, {}, work, &one), Status::ok);
            ASSERT_EQ(list(one), list(all[i])) << H << " " << i;
        }
    }
}

TEST(WaveNumberKernelLimits, Messages) {
    RegularWork work;
    RegularTerms result;
    ASSERT_TRUE(work.alloc(1));
    const f32 X2 = 0, Z2 = 0.0003f;
    const int IFLAG = 1;
    const auto fault = [&](f32 Z1, f32 H) {
        close_list();
        const Status status = REGPAR({1, 0, 0, Z1, &X2, &X2, &Z2, &IFLAG}, H, {}, work, &result);
        EXPECT_EQ(failed(status), !first_fault().empty());
        return first_fault();
    };
    EXPECT_EQ(fault(0.00045f, -1), "");
    EXPECT_EQ(fault(0.0003f, -1), "REGPAR: XX+Y*Y TOO SMALL");
    EXPECT_EQ(fault(1.1f, 1), "X3 > H in FGRUIO");
    close_list();
}

} // namespace
