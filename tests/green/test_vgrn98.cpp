// The deep-water Green function. Truth: its definition in double precision (tested against the principal
// value integral in test_ftab.cpp), and differences of it.
#include "../../tools/tables/f2_definition.hpp"
#include "finite_reference.hpp"
#include "green_points.hpp"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

// Value and first derivatives of a pair, less the terms that ISNG leaves out.
FiniteValues exact_values(const F2Definition &F2, double R, double z, double zeta, int ISNG) {
    const double Y = z + zeta, r1 = std::hypot(R, Y), depth = 2 * PI_D * std::exp(-Y) * ::j0(R);
    const ValueSlope F = F2(std::abs(R), Y);
    const Complex slope(-F.value - 2 / r1, depth);
    FiniteValues sum{{F.value, -depth}, {F.slope, 2 * PI_D * std::exp(-Y) * ::j1(R)}, slope, slope};
    if (ISNG == 0)
        sum += image_term(1, R, z - zeta, 1, -1);
    if (ISNG < 2)
        sum += image_term(1, R, Y, 1, 1);
    if (ISNG == 3)
        sum += {2 * std::log(r1 + Y), 2 * R / (r1 * (r1 + Y)), 2 / r1, 2 / r1};
    return sum;
}
Complex exact_G(const F2Definition &F2, double R, double z, double zeta, int ISNG) {
    return exact_values(F2, R, z, zeta, ISNG).G;
}

// All eight values, the derivatives as differences of the value.
std::array<Complex, 8> exact_record(const F2Definition &F2, double R, double z, double zeta, int ISNG) {
    double nearest = std::hypot(R, z + zeta);
    if (ISNG == 0)
        nearest = std::min(nearest, std::hypot(R, z - zeta));
    const double h = 2e-3 * std::min(1.0, nearest);
    return record_by_differences([&](double a, double b, double c) { return exact_G(F2, a, b, c, ISNG); }, R,
                                 z, zeta, h);
}

// Size of the terms that make up a value: what its single-precision error is measured by.
double scale_of(int value, double R, double z, double zeta, int ISNG) {
    const double r = std::hypot(R, z - zeta), r1 = std::hypot(R, z + zeta);
    const int m = ORDER[value];
    const int power = ISNG == 3 && R <= 3 && z + zeta < 4 ? m - 1 : m; // no 1/r1 where the logarithm is out
    double scale = 1 + (power <= 0 ? std::abs(std::log(r1)) : std::pow(r1, -power));
    if (ISNG < 2)
        scale += std::pow(r1, -m - 1);
    if (ISNG == 0)
        scale += std::pow(r, -m - 1);
    return scale;
}

// Points of all boxes and selectors, R and Y logarithmic.
Points random_points(int n, double smallest, double largest) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> log_R(std::log10(smallest), std::log10(largest)), part(0, 1);
    Points points;
    for (int i = 0; i < n; ++i) {
        const double R = std::pow(10, log_R(random)), Y = std::pow(10, log_R(random)), p = part(random);
        points.add(static_cast<f32>(R), static_cast<f32>(p * Y), static_cast<f32>((1 - p) * Y), i % 4);
    }
    return points;
}

// Every test runs on both ways of evaluation (one where the processor has no AVX-512).
class Vgrn98 : public testing::TestWithParam<GreenPath> {
  protected:
    Results evaluated(const Points &points, GreenOrder order) const {
        return evaluate(points, order, -1, {}, GetParam());
    }
    void record_of(f32 R, f32 z, f32 zeta, int ISNG, f32 (&record)[16]) const {
        Points point;
        point.add(R, z, zeta, ISNG);
        const Results results = evaluated(point, GreenOrder::second);
        std::copy(results.store.begin(), results.store.end(), record);
    }
};
INSTANTIATE_TEST_SUITE_P(Paths, Vgrn98, testing::Values(GreenPath::best, GreenPath::sorted),
                         [](const auto &path) { return path.param == GreenPath::best ? "best" : "sorted"; });

} // namespace

// A point in every box, with every selector.
TEST_P(Vgrn98, DerivativesAreDifferencesOfTheDefinition) {
    constexpr double TOLERANCE = 1e-6; // measured 8e-7
    const F2Definition F2;
    Points points;
    for (const f32 R : {0.08f, 0.6f, 1.9f, 2.97f, 3.03f, 3.4f, 4.3f, 6.1f, 11.0f, 40.0f}) {
        for (const f32 Y : {0.05f, 0.5f, 1.3f, 2.6f, 3.7f, 4.5f, 6.7f, 11.0f, 30.0f}) {
            for (int ISNG = 0; ISNG <= 3; ++ISNG)
                points.add(R, 0.3f * Y, 0.7f * Y, ISNG);
        }
    }
    const Results results = evaluated(points, GreenOrder::second);
    for (int i = 0; i < points.size(); ++i) {
        const f32 R = points.R[i], z = points.Z[i], zeta = points.ZETA[i];
        const auto exact = exact_record(F2, R, z, zeta, points.ISNG[i]);
        for (int j = 0; j < GREEN_VALUES; ++j) {
            const double allowed = TOLERANCE * scale_of(j, R, z, zeta, points.ISNG[i]);
            EXPECT_NEAR(results.arrays.re[j][i], exact[j].real(), allowed)
                << "value " << j << " R " << R << " z " << z << " zeta " << zeta << " ISNG "
                << points.ISNG[i];
            EXPECT_NEAR(results.arrays.im[j][i], exact[j].imag(), allowed)
                << "value " << j << " R " << R << " z " << z << " zeta " << zeta << " ISNG "
                << points.ISNG[i];
        }
    }
}

// Value and first derivatives anywhere, from r1 far below one panel to X = 1e3; the worst error and the one
// that 99.9 per cent stay below, as docs/numerics.md tells them.
TEST_P(Vgrn98, RandomPointsMeetTheDefinition) {
    constexpr double WORST = 1.3e-6, TYPICAL = 9e-7;
    const F2Definition F2;
    const Points points = random_points(6000, 1e-7, 1e3);
    const Results results = evaluated(points, GreenOrder::first);
    std::vector<double> errors[3];
    for (int i = 0; i < points.size(); ++i) {
        const double R = points.R[i], z = points.Z[i], zeta = points.ZETA[i];
        const int ISNG = points.ISNG[i];
        const FiniteValues exact = exact_values(F2, R, z, zeta, ISNG);
        const double s0 = scale_of(G_, R, z, zeta, ISNG), s1 = scale_of(G_R, R, z, zeta, ISNG);
        errors[0].push_back(std::abs(results.arrays.re[G_][i] - exact.G.real()) / s0);
        errors[0].push_back(std::abs(results.arrays.im[G_][i] - exact.G.imag()) / s0);
        errors[1].push_back(std::abs(results.arrays.re[G_R][i] - exact.G_R.real()) / s1);
        errors[2].push_back(std::abs(results.arrays.re[G_Z][i] - exact.G_z.real()) / s1);
    }
    const char *names[3] = {"G", "G_R", "G_z"};
    for (int j = 0; j < 3; ++j) {
        std::sort(errors[j].begin(), errors[j].end());
        const double typical = errors[j][errors[j].size() * 999 / 1000], worst = errors[j].back();
        std::printf("%s: worst error %.2e, 99.9 per cent below %.2e\n", names[j], worst, typical);
        EXPECT_LT(worst, WORST) << names[j];
        EXPECT_LT(typical, TYPICAL) << names[j];
    }
}

// From Y = 4 on the errors fall with the distance as G and its derivatives do, but for those of the waves.
TEST_P(Vgrn98, FarAway) {
    // In units of r1^-(m+1) by the order m; measured 2.5e-6, 1.4e-5, 4.5e-4. Of a wave its rounding.
    constexpr double TOLERANCE[3] = {3e-6, 1.8e-5, 6e-4}, WAVE = 6e-7;
    const F2Definition F2;
    for (const double r : {4.5, 6.0, 7.0, 10.0, 15.5, 18.0, 25.0, 60.0, 300.0, 1e3}) {
        for (double angle = 0.003; angle < 1.57; angle += 0.03) {
            const f32 R = static_cast<f32>(r * std::sin(angle)), Y = static_cast<f32>(r * std::cos(angle));
            if (Y < 4)
                continue;
            const double X = R, y = Y, r1 = std::hypot(X, y), i3 = std::pow(r1, -3);
            const ValueSlope F = F2(X, y);
            const double FY = -F.value - 2 / r1;
            const double exact[5] = {F.value, F.slope, FY, 2 * X * i3 - F.slope, 2 * y * i3 - FY};
            f32 record[16];
            record_of(R, Y, 0, 2, record);
            for (int j = 0; j < 5; ++j)
                EXPECT_NEAR(record[2 * j], exact[j],
                            TOLERANCE[ORDER[j]] * std::pow(r1, -ORDER[j] - 1) +
                                WAVE * 2 * PI_D * std::exp(-Y))
                    << "value " << j << " R " << R << " Y " << Y;
        }
    }
}

// The borders of the boxes from both sides: the values differ by what the function changes by, no more.
TEST_P(Vgrn98, NoStepAtTheBordersOfTheBoxes) {
    // Table and rounding on one side of a border: docs/numerics.md, worst row 41; values go up to 6.
    const auto allowed = [](f32 value) { return 9e-7 + 4e-7 * std::abs(value); };
    const F2Definition F2;
    const auto compare = [&](f32 R, f32 Y, f32 R2, f32 Y2, int ISNG) {
        f32 a[16], b[16];
        record_of(R, Y, 0, ISNG, a);
        record_of(R2, Y2, 0, ISNG, b);
        for (int j = 0; j < 16; ++j)
            EXPECT_NEAR(a[j], b[j], 2 * allowed(a[j])) << j << " at " << R << " " << Y << " ISNG " << ISNG;
        EXPECT_NEAR(a[0], exact_G(F2, R, Y, 0, ISNG).real(), allowed(a[0])) << R << " " << Y << " " << ISNG;
        EXPECT_NEAR(b[0], exact_G(F2, R2, Y2, 0, ISNG).real(), allowed(b[0]))
            << R2 << " " << Y2 << " " << ISNG;
    };
    for (const f32 border : {3.0f, 3.75f, 5.0f, 7.5f, 15.0f}) {
        for (const f32 Y : {0.4f, 1.4f, 2.4f, 3.4f, 4.4f, 7.4f, 13.0f, 40.0f}) {
            for (int ISNG = 0; ISNG <= 3; ++ISNG)
                compare(border, Y, std::nextafter(border, 99.0f), Y, ISNG);
        }
    }
    for (const f32 border : {1.0f, 2.0f, 3.0f, 4.0f, 16 / 3.0f, 8.0f, 16.0f}) {
        for (const f32 R : {0.3f, 2.2f, 3.3f, 4.4f, 6.6f, 12.0f, 50.0f}) {
            for (int ISNG = 0; ISNG <= 3; ++ISNG)
                compare(R, border, R, std::nextafter(border, 0.0f), ISNG);
        }
    }
}

TEST_P(Vgrn98, CoincidentPoints) {
    f32 record[16];
    constexpr f32 Q0 = -0.2318625f; // 2 (gamma - ln 2)
    for (const f32 R : {0.0f, 5e-9f}) {
        record_of(R, 0, 0, 3, record);
        EXPECT_EQ(record[0], -Q0);
        EXPECT_EQ(record[4], Q0);
        EXPECT_EQ(record[12], Q0);
        EXPECT_EQ(record[8], -Q0);
        EXPECT_EQ(record[10], -Q0);
        for (const int j : {2, 6, 14})
            EXPECT_EQ(record[j], 0) << j;
        EXPECT_NEAR(record[1], -2 * PI_D, 1e-6);
    }
    // It tends there: the value at small r1 differs by terms in r1 ln r1 only.
    record_of(1e-6f, 0, 0, 3, record);
    EXPECT_NEAR(record[0], -Q0, 1e-5);
    // The logarithm is asked for far away too.
    record_of(0, 50, 50, 1, record);
    EXPECT_NEAR(record[0], -2 * std::exp(-100.0) * std::expint(100.0) + 0.01, 1e-7);
}

TEST_P(Vgrn98, ResultDependsOnThePointAlone) {
    const Points points = random_points(3001, 1e-3, 60);
    std::vector<int> place(points.size());
    std::iota(place.begin(), place.end(), 0);
    std::shuffle(place.begin(), place.end(), std::mt19937(3));
    expect_result_depends_on_point_alone(points, place, -1, GSTATE{}, GetParam());
    GreenWork work;
    ASSERT_TRUE(work.alloc(1));
    VGRN98(GreenPoints{}, -1, GSTATE{}, GreenOrder::second, work,
           GreenArrays{}); // no points: nothing happens
}

// The two ways are as far apart as their errors, not more.
TEST(Vgrn98Paths, AreWithinTheBoundOfEachOther) {
    // By the order, of the size of the parts: either is within 1e-6 of the definition; measured 9e-7,
    // 9e-7, 1.7e-6.
    constexpr double BOUND[3] = {1.2e-6, 1.2e-6, 2e-6};
    const Points points = random_points(20000, 1e-6, 1e3);
    const Results best = evaluate(points, GreenOrder::second);
    const Results sorted = evaluate(points, GreenOrder::second, -1, {}, GreenPath::sorted);
    double worst[3] = {};
    for (int i = 0; i < points.size(); ++i) {
        for (int j = 0; j < GREEN_VALUES; ++j) {
            const double scale = scale_of(j, points.R[i], points.Z[i], points.ZETA[i], points.ISNG[i]);
            const double apart = std::max(std::abs(best.arrays.re[j][i] - sorted.arrays.re[j][i]),
                                          std::abs(best.arrays.im[j][i] - sorted.arrays.im[j][i]));
            worst[ORDER[j]] = std::max(worst[ORDER[j]], apart / scale);
            EXPECT_LT(apart, BOUND[ORDER[j]] * scale)
                << "value " << j << " R " << points.R[i] << " Y " << points.Z[i] + points.ZETA[i] << " ISNG "
                << points.ISNG[i];
        }
    }
    std::printf("apart: G %.1e, first derivatives %.1e, second %.1e\n", worst[0], worst[1], worst[2]);
}
