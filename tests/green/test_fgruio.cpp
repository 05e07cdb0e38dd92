// Truth: VGRN98 for the record; the wave-mode expansion in double precision and differences of it for the
// other values; the deep-water function by its definition; sample values known for these functions.
#include "../../tools/tables/f2_definition.hpp"
#include "finite_reference.hpp"
#include "green/depth_coefficients.hpp"
#include "green/depth_polynomial.hpp"
#include "green/fgruio.hpp"
#include "green_points.hpp"
#include "run/messages.hpp"

#include <map>
#include <random>
#include <string>

namespace {

struct DepthResults {
    std::vector<f32> store;
    DepthArrays arrays;
    explicit DepthResults(int n) : store(2 * DEPTH_VALUES * static_cast<std::size_t>(n)) {
        for (int j = 0; j < DEPTH_VALUES; ++j) {
            arrays.re[j] = store.data() + 2 * j * n;
            arrays.im[j] = store.data() + (2 * j + 1) * n;
        }
    }
    Complex operator()(int j, int i) const { return {arrays.re[j][i], arrays.im[j][i]}; }
};

DepthResults depth_values(const Points &p, f32 H, DepthWork &work) {
    DepthResults results(p.size());
    EXPECT_TRUE(work.alloc(p.size()));
    EXPECT_EQ(FGRUIO({p.size(), p.R.data(), p.Z.data(), p.ZETA.data()}, H, work, results.arrays), Status::ok);
    return results;
}
DepthResults depth_values(const Points &p, f32 H) {
    DepthWork work;
    return depth_values(p, H, work);
}

Points random_points(f32 H, int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<f32> part(0, 1);
    Points p;
    for (int i = 0; i < n; ++i) {
        const f32 R = i % 4 == 3 ? H * (1 + 6 * part(random)) : H * part(random);
        p.add(R, H * part(random) * (i % 3 == 0 ? 0.1f : 0.98f), H * part(random) * 0.98f, 3, 1);
    }
    return p;
}

TEST(Fgruio, SampleValues) {
    constexpr double LAST_DIGIT = 6e-6;
    Points p;
    p.add(0.5f, 0.3f, 0.4f, 3, 1);
    const DepthResults r = depth_values(p, 2);
    EXPECT_NEAR(r(G_, 0).real(), -0.85943, LAST_DIGIT);
    EXPECT_NEAR(std::abs(r(G_H, 0) - Complex(0.43172, -0.09101)), 0, LAST_DIGIT);
    EXPECT_NEAR(std::abs(r(G_RZZ, 0) - Complex(-2.62409, 0.81626)), 0, LAST_DIGIT);

    HSTATE state;
    HGRUIO(2, state);
    EXPECT_NEAR(state.MU[0], 1.22936, LAST_DIGIT);
    EXPECT_NEAR(state.MU[1], 2.9797, 6e-5);
    EXPECT_NEAR(state.MU[2], 4.60548, LAST_DIGIT);
    EXPECT_NEAR(state.S3C[32], 0.318867, 1e-6);
    const f32 S3 = polynomial_sums<ShapeS3, false>(state.S3C, 0.25f, 0).f;
    EXPECT_NEAR(S3, 0.317032, 1e-6);
    HGRUIO(50, state);
    EXPECT_EQ(state.CN0, 1);
    EXPECT_EQ(state.DRK0, 0);
    EXPECT_EQ(state.DCN0, 0);
}

TEST(Fgruio, RecordIsThatOfTheFirstOrderEvaluation) {
    constexpr double ERRORS = 4e-6; // of either side, in units of min(H, 1)
    for (const f32 H : {0.02f, 0.4f, 1.5f, 2.0f, 5.0f, 20.0f, 300.0f}) {
        Points p = random_points(H, 200, 3);
        for (const f32 side : {0.4999f, 0.5f, 0.5001f}) // where the two regions meet
            p.add(side * H, 0.1f * H, 0.3f * H, 3, 1);
        GSTATE state;
        f32 ratio;
        ASSERT_EQ(HGRN98(H, ratio, state), 0);
        const DepthResults got = depth_values(p, H);
        const Results record = evaluate(p, GreenOrder::second, H, state);
        for (int i = 0; i < p.size(); ++i) {
            for (int j = 0; j < GREEN_VALUES; ++j)
                EXPECT_NEAR(std::abs(got(j, i) - Complex(record.arrays.re[j][i], record.arrays.im[j][i])), 0,
                            ERRORS / std::pow(std::min(H, 1.0f), ORDER[j] + 1))
                    << H << " R " << p.R[i] << " value " << j;
        }
    }
}

// The values behind the record by differences in double precision, R > 0.05 H.
class ByDifferences {
  public:
    ByDifferences(double H, double R, double z, double zeta) : H_(H), R_(R), z_(z), zeta_(zeta) {}
    Complex operator()(int j) {
        const double h = 0.004 * std::hypot(R_, z_ + zeta_);
        const auto by_H = [&](auto f) { return difference(f, H_, 0.004 * H_); };
        const auto twice = [&](auto f, double x) {
            return difference([&](double a) { return difference(f, a, h); }, x, h);
        };
        switch (j) {
        case G_H:
            return by_H([&](double H) { return at(H, z_, zeta_).G; });
        case G_RH:
            return by_H([&](double H) { return at(H, z_, zeta_).G_R; });
        case G_ZETAH:
            return by_H([&](double H) { return at(H, z_, zeta_).G_zeta; });
        case G_RZETAH:
            return by_H([&](double H) {
                return difference([&](double zeta) { return at(H, z_, zeta).G_R; }, zeta_, h);
            });
        case G_RZZ:
            return twice([&](double z) { return at(H_, z, zeta_).G_R; }, z_);
        case G_ZZZETA:
            return twice([&](double z) { return at(H_, z, zeta_).G_zeta; }, z_);
        default: // G_RZZETA
            return difference(
                [&](double zeta) { return difference([&](double z) { return at(H_, z, zeta).G_R; }, z_, h); },
                zeta_, h);
        }
    }

  private:
    FiniteValues at(double H, double z, double zeta) {
        FiniteValues v = expansion_.try_emplace(H, H).first->second(R_, z, zeta);
        return v += selected_values(R_, z, zeta, H, 3, 1);
    }
    double H_, R_, z_, zeta_;
    std::map<double, ModeExpansion> expansion_;
};

TEST(Fgruio, DepthAndThirdDerivativesAreThoseOfTheDefinition) {
    // Single precision in units of min(H, 1) and, as the third derivatives rise like 1/r1^2 without 1/r1, of
    // r1; what the polynomial errs by in its derivatives is below it.
    constexpr int POWER[] = {1, 2, 3, 3, 4, 4, 2};
    for (const f32 H : {0.05f, 0.7f, 1.5f, 3.0f, 7.0f, 14.0f, 40.0f}) {
        Points p;
        std::mt19937 random(7);
        std::uniform_real_distribution<f32> part(0, 1);
        for (const f32 X : {0.12f, 0.3f, 0.49f, 0.5f, 0.51f, 0.8f, 1.6f, 4.0f})
            p.add(X * H, 0.95f * H * part(random), 0.95f * H * part(random), 3, 1);
        p.add(0.15f * H, 0.02f * H, 0.03f * H, 3, 1);
        const DepthResults got = depth_values(p, H);
        for (int j = G_H; j < DEPTH_VALUES; ++j) {
            double worst = 0;
            for (int i = 0; i < p.size(); ++i) {
                ByDifferences exact(H, p.R[i], p.Z[i], p.ZETA[i]);
                const double unit = std::min<double>(1, H);
                worst = std::max(worst, std::abs(got(j, i) - exact(j)) * std::pow(unit, POWER[j - G_H]));
            }
            std::printf("%g %d %.2e\n", H, j, worst);
        }
    }
}

} // namespace
