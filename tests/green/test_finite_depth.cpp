// The Green function of finite depth. Truth: the expansion in wave modes with as many modes as it takes, and
// near the axis, where it converges slowly, the defining integral by a ray off the real axis, both in double
// precision; differences of them.
#include "finite_reference.hpp"
#include "green/depth_heights.hpp"
#include "green_points.hpp"

#include <algorithm>
#include <numeric>
#include <random>

namespace {

GSTATE state_of(f32 H) {
    GSTATE state;
    f32 ratio = 0;
    EXPECT_EQ(HGRN98(H, ratio, state), 0);
    return state;
}

// The real part and its first derivatives for R <= H by the ray, for a set of (t, w, y).
class RayDefinition {
  public:
    RayDefinition(const std::vector<double> &t, const std::vector<double> &w, const std::vector<double> &y)
        : points(static_cast<int>(t.size())), S(DepthDefinition::Function::S, t, w),
          P(DepthDefinition::Function::P, t, y) {}
    void set_depth(double depth) {
        H = depth;
        s = S.times_depth(H, true);
        p = P.times_depth(H, true);
    }
    // Everything of the real part but 1/r, 1/rb; indices into t, w, y.
    FiniteValues near(int it, int iw, int iy, double R, double D, double Y) const {
        const DepthValues &a = s[it + iw * points], &b = p[it + iy * points];
        const ValueSlope F = F2(R, Y);
        const double r1 = std::hypot(R, Y), H2 = H * H;
        FiniteValues sum = image_term(1, R, Y, 1, 1);
        const double slope_Y = -F.value - 2 / r1 + b.v / H2, slope_D = 2 * D / H2 * a.v / H;
        sum += {a.f / H + b.f / H + F.value, (R > 0 ? F.slope : 0) + 2 * R / H2 * (a.t + b.t) / H,
                slope_Y + slope_D, slope_Y - slope_D};
        return sum;
    }
    FiniteValues deep(int it, int iw, int ia, double R, double D, double A) const {
        const DepthValues &a = s[it + iw * points], &b = s[it + ia * points];
        const double H3 = H * H * H, by_D = 2 * D * a.v / H3, by_A = 2 * A * b.v / H3;
        return {(a.f + b.f) / H, 2 * R * (a.t + b.t) / H3, by_D - by_A, -by_D - by_A};
    }

  private:
    int points;
    double H = 1;
    DepthDefinition S, P;
    F2Definition F2;
    std::vector<DepthValues> s, p;
};

enum Region { NEAR, DEEP, FAR };
const char *const REGION[4] = {"near", "deep", "far", "just above R = H"};

Region region_of(double R, double Y, double H) {
    return R > H ? FAR : Y >= H ? DEEP : NEAR;
}

double gradient(const FiniteValues &v) {
    return std::sqrt(std::norm(v.G_R) + std::norm(v.G_z) + std::norm(v.G_zeta));
}

// Of the parts of a value and its derivatives of order m, each of which is rounded.
double size_of_parts(const ModeExpansion &modes, double R, double z, double zeta, int m) {
    const double H = modes.H;
    const double wave = 2 * PI_D * modes.C * std::exp(-modes.k * (z + zeta)) *
                        (1 + std::exp(-2 * modes.k * (H - z))) * (1 + std::exp(-2 * modes.k * (H - zeta)));
    return std::pow(std::hypot(R, z - zeta), -m - 1) + std::pow(std::hypot(R, z + zeta), -m - 1) +
           std::pow(std::hypot(R, 2 * H - z - zeta), -m - 1) + wave * std::pow(modes.k, m) + 1;
}

// Every test runs on both ways of evaluation (one where the processor has no AVX-512).
class FiniteDepth : public testing::TestWithParam<GreenPath> {
  protected:
    static void record_of(f32 R, f32 z, f32 zeta, f32 H, const GSTATE &state, int ISNG, int IBOT,
                          f32 (&record)[16]) {
        Points point;
        point.add(R, z, zeta, ISNG, IBOT);
        const Results results = evaluate(point, GreenOrder::second, H, state, GetParam());
        std::copy(results.store.begin(), results.store.end(), record);
    }
    // Value and first derivatives.
    static FiniteValues evaluated(f32 R, f32 z, f32 zeta, f32 H, const GSTATE &state, int ISNG, int IBOT) {
        f32 record[16];
        record_of(R, z, zeta, H, state, ISNG, IBOT, record);
        const auto at = [&](int j) { return Complex(record[2 * j], record[2 * j + 1]); };
        return {at(G_), at(G_R), at(G_Z), at(G_ZETA)};
    }
};
INSTANTIATE_TEST_SUITE_P(Paths, FiniteDepth, testing::Values(GreenPath::best, GreenPath::sorted),
                         [](const auto &path) { return path.param == GreenPath::best ? "best" : "sorted"; });

double slope_error(const FiniteValues &got, const FiniteValues &exact) {
    return std::max(
        {std::abs(got.G_R - exact.G_R), std::abs(got.G_z - exact.G_z), std::abs(got.G_zeta - exact.G_zeta)});
}

} // namespace

// Points of all regions, both Bessel ranges, near and in the surface, near and on the bottom,
// with all selectors.
TEST_P(FiniteDepth, DerivativesAreDifferencesOfTheDefinition) {
    constexpr double TOLERANCE = 2e-6;
    for (const f32 H : {0.02f, 0.2f, 1.5f, 5.0f, 30.0f}) {
        const GSTATE state = state_of(H);
        ModeExpansion modes(H);
        for (const double ratio : {0.15, 0.7, 0.99, 1.02, 2.0, 6.0}) {
            for (const auto &[a, b] : {std::pair{0.05, 0.1},
                                       {0.3, 0.4},
                                       {0.02, 0.9},
                                       {0.7, 0.6},
                                       {0.95, 0.9},
                                       {0.0, 0.1},
                                       {1.0, 0.8}}) {
                const f32 R = static_cast<f32>(H * ratio), z = static_cast<f32>(H * a),
                          zeta = static_cast<f32>(H * b);
                const double Y = static_cast<double>(z) + zeta, D = static_cast<double>(z) - zeta,
                             A = 2.0 * H - Y;
                const double r = std::hypot(R, D), r1 = std::hypot(R, Y), rb = std::hypot(R, A);
                const double h = 2e-3 * std::min({r, r1, rb, static_cast<double>(H), 1 / modes.k});
                // The part that all selectors share has to be differenced but once.
                const auto common = record_by_differences(
                    [&](double s, double u, double v) {
                        return modes(s, u, v).G + selected_terms(s, u, v, H, 2, 1);
                    },
                    R, z, zeta, h);
                for (int ISNG = 0; ISNG <= 3; ++ISNG) {
                    for (int IBOT = 0; IBOT <= 1; ++IBOT) {
                        const auto rest = record_by_differences(
                            [&](double s, double u, double v) {
                                return selected_terms(s, u, v, H, ISNG, IBOT) -
                                       selected_terms(s, u, v, H, 2, 1);
                            },
                            R, z, zeta, h);
                        f32 record[16];
                        record_of(R, z, zeta, H, state, ISNG, IBOT, record);
                        for (int j = 0; j < GREEN_VALUES; ++j) {
                            const double scale = size_of_parts(modes, R, z, zeta, ORDER[j]);
                            const Complex exact = common[j] + rest[j];
                            const double error = std::max(std::abs(record[2 * j] - exact.real()),
                                                          std::abs(record[2 * j + 1] - exact.imag()));
                            EXPECT_LT(error, TOLERANCE * scale)
                                << "value " << j << " H " << H << " R/H " << ratio << " z/H " << a
                                << " zeta/H " << b << " ISNG " << ISNG << " IBOT " << IBOT;
                        }
                    }
                }
            }
        }
    }
}

namespace {

struct ErrorLists {
    std::vector<double> value, slope;
};

// Of NEAR, DEEP, FAR and just above R = H: limits of the worst error (measured with ten times as many points)
// and of the error that 99.9 per cent stay below. The values near by show the fitted J0 (1e-6 of 2 pi C E),
// the derivatives those of the depth tables, where both points are deep on the scale of a wave.
struct Limits {
    double worst, typical;
};
constexpr Limits VALUE_LIMIT[4] = {{3e-6, 1.5e-6}, {1.5e-6, 6e-7}, {2.5e-6, 1e-6}, {2.5e-6, 1e-6}};
constexpr Limits SLOPE_LIMIT[4] = {{1e-5, 7e-6}, {6e-6, 1.5e-6}, {2e-6, 1e-6}, {2.5e-6, 1.5e-6}};
// Errors are relative to the larger of |G| and 1/r1, of the gradient and 1/r1^2, but here not below this: the
// vertical factor of a wave stops falling at exp(-30), which shows at r1 = 1000.
constexpr double FLOOR = 1e-5;

void report(const char *name, std::vector<double> &list, Limits limits) {
    ASSERT_GT(list.size(), 500u) << name;
    std::sort(list.begin(), list.end());
    const double typical = list[list.size() * 999 / 1000];
    std::printf("%s: worst %.2e, 99.9 per cent below %.2e\n", name, list.back(), typical);
    EXPECT_LT(list.back(), limits.worst) << name;
    EXPECT_LT(typical, limits.typical) << name;
}

} // namespace

TEST_P(FiniteDepth, RandomPointsMeetTheDefinition) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> part(0, 1);
    // Radii and heights of the ray, over H.
    constexpr int N = 10;
    std::vector<double> ratio, vertical, t, w;
    for (int i = 0; i < N; ++i) {
        ratio.push_back(std::pow(10, -4 + 2.7 * part(random)) * (i == 0 ? 0 : 1)); // one vertical, too
        vertical.push_back(i < 4 ? std::pow(10, -3 + 2 * part(random)) : part(random));
        t.push_back(ratio[i] * ratio[i]);
        w.push_back(vertical[i] * vertical[i]);
    }
    RayDefinition ray(t, w, vertical);
    ErrorLists errors[4];
    for (int depth = 0; depth < 250; ++depth) {
        const f32 H = static_cast<f32>(std::pow(10, -5 + 10 * part(random)));
        const GSTATE state = state_of(H);
        ModeExpansion modes(H);
        ray.set_depth(H);
        const auto compare = [&](f32 R, f32 z, f32 zeta, FiniteValues exact, int ISNG, int IBOT) {
            exact += selected_values(R, z, zeta, H, ISNG, IBOT);
            const FiniteValues got = evaluated(R, z, zeta, H, state, ISNG, IBOT);
            const double r1 = std::hypot(R, static_cast<double>(z) + zeta);
            const double scale = std::max(std::abs(exact.G), 1 / r1);
            const double scale1 = std::max({gradient(exact), 1 / (r1 * r1), FLOOR});
            const Region region = region_of(R, z + zeta, H);
            ErrorLists &e = errors[region == FAR && R < 1.2f * H ? 3 : region];
            e.value.push_back(std::abs(got.G - exact.G) / scale);
            e.slope.push_back(slope_error(got, exact) / scale1);
        };
        for (int i = 0; i < 40; ++i) {
            const int ISNG = i % 4, IBOT = i / 4 % 2;
            if (i < 28) {
                const double over = i < 10   ? 1 + 0.2 * part(random)
                                    : i < 18 ? std::pow(10, part(random))
                                             : std::pow(10, -1.3 * part(random));
                const double reach = i % 3 == 0 ? 0.2 : 1;
                const f32 R = static_cast<f32>(H * over), z = static_cast<f32>(H * reach * part(random)),
                          zeta = static_cast<f32>(H * reach * part(random));
                compare(R, z, zeta, modes(R, z, zeta), ISNG, IBOT);
                continue;
            }
            const int it = static_cast<int>(N * part(random));
            int iw = static_cast<int>(N * part(random)), iy = static_cast<int>(N * part(random));
            if (vertical[iw] > vertical[iy])
                std::swap(iw, iy);
            const double Y = H * (i % 3 == 0 ? 2 - vertical[iy] : vertical[iy]), D = H * vertical[iw];
            const f32 R = static_cast<f32>(H * ratio[it]), z = static_cast<f32>((Y + D) / 2),
                      zeta = static_cast<f32>((Y - D) / 2);
            // Singular terms of the rounded point, the smooth ones where the tables of the ray have them.
            const double rD = static_cast<double>(z) - zeta, rY = static_cast<double>(z) + zeta,
                         rA = (static_cast<double>(H) - z) + (static_cast<double>(H) - zeta);
            FiniteValues exact =
                i % 3 == 0 ? ray.deep(it, iw, iy, R, rD, rA) : ray.near(it, iw, iy, R, rD, rY);
            exact += image_term(1, R, rD, 1, -1);
            exact += image_term(1, R, rA, -1, -1);
            exact += modes.imaginary(R, z, zeta);
            compare(R, z, zeta, exact, ISNG, IBOT);
        }
    }
    for (int i = 0; i < 4; ++i) {
        report((std::string(REGION[i]) + ", G").c_str(), errors[i].value, VALUE_LIMIT[i]);
        report((std::string(REGION[i]) + ", first derivatives").c_str(), errors[i].slope, SLOPE_LIMIT[i]);
    }
}

// Across the borders of the regions, of the Bessel ranges and of the table of F2: both sides meet the
// definition, so the step is no larger than their errors.
TEST_P(FiniteDepth, NoStepAtTheBordersOfTheRegions) {
    struct Border {
        const char *name;
        f32 H, R, z, zeta, R2, z2;
    };
    const auto up = [](f32 x) { return std::nextafter(x, 1e9f); };
    const auto down = [](f32 x) { return std::nextafter(x, 0.0f); };
    std::vector<Border> borders;
    for (const f32 H : {0.01f, 0.3f, 1.5f, 4.8f, 6.0f, 25.0f}) {
        const f32 k = state_of(H).RK, R3 = 3 / k;
        for (const f32 part : {0.1f, 0.6f, 0.95f}) {
            borders.push_back({"R = H", H, H, part * H, 0.3f * H, up(H), part * H});
            // z + zeta = H exactly and just below
            const f32 zeta = 0.25f * H, z = 0.75f * H;
            borders.push_back({"Y = H", H, part * H, z, zeta, part * H, down(z)});
            if (R3 > 0.1f * H)
                borders.push_back({"kR = 3", H, R3, part * H, 0.2f * H, up(R3), part * H});
            if (H > 3.1f)
                borders.push_back({"R = 3", H, 3, part, 0.2f, up(3), part});
            if (H > 4.5f)
                borders.push_back({"Y = 4", H, part * 4, 3, 1, part * 4, down(3)});
        }
    }
    for (const Border &b : borders) {
        const GSTATE state = state_of(b.H);
        ModeExpansion modes(b.H);
        for (int ISNG = 0; ISNG <= 3; ++ISNG) {
            const auto check = [&](f32 R, f32 z) {
                const FiniteValues got = evaluated(R, z, b.zeta, b.H, state, ISNG, ISNG / 2);
                const FiniteValues whole = modes(R, z, b.zeta);
                FiniteValues exact = whole;
                exact += selected_values(R, z, b.zeta, b.H, ISNG, ISNG / 2);
                const double r1 = std::hypot(R, z + b.zeta);
                // Rounding of the parts, and near by the error of the table of F2 (docs/numerics.md).
                const double allowed = 2e-6 * std::max({std::abs(whole.G), std::abs(exact.G), 1 / r1}) + 3e-7;
                const double allowed1 =
                    2e-6 * std::max({gradient(whole), gradient(exact), 1 / (r1 * r1)}) + 3e-7;
                SCOPED_TRACE(testing::Message()
                             << b.name << " H " << b.H << " R " << R << " z " << z << " " << ISNG);
                EXPECT_LT(std::abs(got.G - exact.G), allowed);
                EXPECT_LT(slope_error(got, exact), allowed1);
            };
            check(b.R, b.z);
            check(b.R2, b.z2);
        }
    }
}

// Where evanescent modes begin to be left out none of the eight values changes by more than its rounding.
TEST_P(FiniteDepth, DroppedModesAreLostInTheRounding) {
    constexpr f32 TOLERANCE = 1e-7f; // of the largest value of the same order; measured 5e-8
    f32 worst = 0;
    for (const f32 H : {1e-4f, 0.02f, 0.3f, 1.5f, 5.0f, 30.0f, 1e3f}) {
        const GSTATE state = state_of(H);
        GSTATE all = state;
        std::fill(std::begin(all.reach), std::end(all.reach), 1e9f * H);
        for (int n = 0; n < 5; ++n) {
            const f32 reach = state.reach[n];
            ASSERT_GT(reach, H);
            for (const auto &[z, zeta] : {std::pair{0.02f, 0.01f}, {0.5f, 0.45f}, {0.97f, 0.99f}}) {
                f32 kept[16], dropped[16], size[3] = {};
                record_of(reach, z * H, zeta * H, H, all, 0, 0, kept);
                record_of(reach, z * H, zeta * H, H, state, 0, 0, dropped);
                const f32 r1 = std::hypot(reach, (z + zeta) * H);
                for (int m = 0; m < 3; ++m)
                    size[m] = std::pow(r1, static_cast<f32>(-m - 1));
                for (int j = 0; j < 16; ++j)
                    size[ORDER[j / 2]] = std::max(size[ORDER[j / 2]], std::abs(kept[j]));
                for (int j = 0; j < 16; ++j) {
                    const f32 step = std::abs(kept[j] - dropped[j]) / size[ORDER[j / 2]];
                    worst = std::max(worst, step);
                    EXPECT_LT(step, TOLERANCE)
                        << "value " << j << " H " << H << " mode " << n + 1 << " z/H " << z;
                }
            }
        }
    }
    std::printf("largest step %.1e\n", worst);
}

namespace {

// Points of all regions at depth H, among them some on one vertical, with all selectors.
Points random_points(f32 H, int n, std::mt19937 &random) {
    std::uniform_real_distribution<f32> part(0, 1);
    Points points;
    for (int i = 0; i < n; ++i) {
        const f32 R = H * (i % 3 ? 1.3f * part(random) : 5 * part(random)), reach = i % 2 ? H : 0.1f * H;
        points.add(i % 97 == 0 ? 0 : R, reach * part(random), reach * part(random), i % 4, i / 4 % 2);
    }
    return points;
}

} // namespace

TEST_P(FiniteDepth, ResultDependsOnThePointAlone) {
    for (const f32 H : {0.02f, 1.5f, 40.0f}) {
        std::mt19937 random(7);
        Points points = random_points(H, 1501, random);
        // Here the source stays where it is, as in a row: what belongs to it is worked out once.
        std::fill(points.ZETA.begin() + 200, points.ZETA.begin() + 500, 0.3f * H);
        std::fill(points.Z.begin() + 600, points.Z.begin() + 900, 0.3f * H);
        std::vector<int> place(points.size());
        std::iota(place.begin(), place.end(), 0);
        std::shuffle(place.begin(), place.end(), random);
        expect_result_depends_on_point_alone(points, place, H, state_of(H), GetParam());
    }
}

// Factors of heights that are given are those that a pair works out itself, in calls of one region and of
// all.
TEST(FiniteDepthPaths, GivenHeightsChangeNothing) {
    for (const f32 H : {0.02f, 1.5f, 40.0f}) {
        const GSTATE state = state_of(H);
        std::mt19937 random(9);
        Points points = random_points(H, 1000, random);
        for (int i = 0; i < 600; ++i) // far, then near
            points.R[i] = i < 300 ? H * (1.01f + 0.02f * static_cast<f32>(i)) : 0.9f * points.R[i] / 5;
        HeightFactors heights;
        ASSERT_TRUE(heights.make(points.size(), points.Z.data(), H, state));
        if (heights.points == 0)
            GTEST_SKIP() << "a processor without AVX-512";
        GreenPoints given = points.view();
        given.heights = heights.value.data();
        given.stride = heights.value.dim(1);
        GreenWork work;
        ASSERT_TRUE(work.alloc(points.size()));
        for (const GreenOrder order : {GreenOrder::first, GreenOrder::second}) {
            const Results alone = evaluate(points, order, H, state);
            Results result(points.size());
            VGRN98(given, H, state, order, work, result.arrays);
            EXPECT_EQ(result.store, alone.store) << "H " << H;
        }
    }
}

// The two ways are as far apart as their errors, not more.
TEST(FiniteDepthPaths, AreWithinTheBoundOfEachOther) {
    // By the order, of the largest of the parts and of what the value is made of.
    constexpr double BOUND[3] = {6e-7, 1.2e-6, 2e-6}; // measured 3.6e-7, 9e-7, 1.3e-6
    double worst[3] = {};
    for (const f32 H : {1e-3f, 0.02f, 0.3f, 1.5f, 4.0f, 9.0f, 40.0f, 1e3f}) {
        std::mt19937 random(11);
        const GSTATE state = state_of(H);
        const ModeExpansion modes(H);
        const Points points = random_points(H, 4000, random);
        const Results best = evaluate(points, GreenOrder::second, H, state),
                      sorted = evaluate(points, GreenOrder::second, H, state, GreenPath::sorted);
        for (int i = 0; i < points.size(); ++i) {
            const double R = points.R[i], z = points.Z[i], zeta = points.ZETA[i];
            for (int j = 0; j < GREEN_VALUES; ++j) {
                const int m = ORDER[j];
                // Far away the logarithm, if it is asked for, is larger than all of them.
                const double scale = size_of_parts(modes, R, z, zeta, m) + std::abs(sorted.arrays.re[j][i]);
                const double apart = std::max(std::abs(best.arrays.re[j][i] - sorted.arrays.re[j][i]),
                                              std::abs(best.arrays.im[j][i] - sorted.arrays.im[j][i]));
                worst[m] = std::max(worst[m], apart / scale);
                EXPECT_LT(apart, BOUND[m] * scale)
                    << "value " << j << " H " << H << " R/H " << R / H << " z/H " << z / H << " zeta/H "
                    << zeta / H << " ISNG " << points.ISNG[i] << " IBOT " << points.IBOT[i];
            }
        }
    }
    std::printf("apart: G %.1e, first derivatives %.1e, second %.1e\n", worst[0], worst[1], worst[2]);
}
