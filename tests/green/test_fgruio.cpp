// Truth: VGRN98 for the record; the wave-mode expansion in double precision and differences of it for the
// other values; the deep-water function by its definition.
#include "../../tools/tables/f2_definition.hpp"
#include "finite_reference.hpp"
#include "green/depth_coefficients.hpp"
#include "green/depth_polynomial.hpp"
#include "green/fgruio.hpp"
#include "green_points.hpp"
#include "state/messages.hpp"

#include <map>
#include <random>

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
        for (int i = 0; i < p.size(); ++i)
            for (int j = 0; j < GREEN_VALUES; ++j)
                EXPECT_NEAR(std::abs(got(j, i) - Complex(record.arrays.re[j][i], record.arrays.im[j][i])), 0,
                            ERRORS / std::pow(std::min(H, 1.0f), ORDER[j] + 1))
                    << H << " R " << p.R[i] << " value " << j;
    }
}

// Waves at a distance, of both evaluations: as k R grows the phase does not lose its digits.
TEST(Fgruio, PhaseIsRightAtAnyDistance) {
    constexpr double OF_AMPLITUDE = 6e-7; // of G and its slope in R; measured 3.6e-7, at any k R
    constexpr int N = 32;
    for (const f32 H : {0.05f, 0.5f, 1.0f, 2.0f, 4.7f, 4.9f, 6.0f}) {
        ModeExpansion modes(H);
        GSTATE state;
        f32 ratio;
        ASSERT_EQ(HGRN98(H, ratio, state), 0);
        for (const double kR : {20.0, 138.0, 1000.0, 1e5}) {
            Points p;
            for (int i = 0; i < N; ++i)
                p.add(static_cast<f32>((kR + 0.2 * i) / modes.k), 0.1f * H, 0.3f * H, 0);
            const DepthResults depth = depth_values(p, H);
            const Results record = evaluate(p, GreenOrder::first, H, state);
            double amplitude = 0;
            std::vector<FiniteValues> exact;
            for (int i = 0; i < N; ++i) {
                exact.push_back(modes.imaginary(p.R[i], p.Z[i], p.ZETA[i]));
                amplitude = std::max(amplitude, std::abs(exact[i].G));
            }
            for (int i = 0; i < N; ++i) {
                const double value = exact[i].G.imag(), slope = exact[i].G_R.imag(),
                             allowed = OF_AMPLITUDE * amplitude;
                SCOPED_TRACE(testing::Message() << "H " << H << " k R " << modes.k * p.R[i]);
                EXPECT_NEAR(record.arrays.im[G_][i], value, allowed);
                EXPECT_NEAR(depth(G_, i).imag(), value, allowed);
                EXPECT_NEAR(record.arrays.im[G_R][i], slope, allowed * modes.k);
                EXPECT_NEAR(depth(G_R, i).imag(), slope, allowed * modes.k);
            }
        }
    }
}

// The values behind the record by differences in double precision, R > 0.05 H: one of the first-order values,
// differenced so often by H, z and zeta.
std::array<Complex, DEPTH_VALUES> by_differences(double H, double R, double z, double zeta) {
    constexpr struct {
        DepthValue value;
        Complex FiniteValues::*of;
        std::array<int, 3> times;
    } ROWS[] = {{G_H, &FiniteValues::G, {1, 0, 0}},         {G_RH, &FiniteValues::G_R, {1, 0, 0}},
                {G_RZETAH, &FiniteValues::G_R, {1, 0, 1}},  {G_RZZ, &FiniteValues::G_R, {0, 2, 0}},
                {G_RZZETA, &FiniteValues::G_R, {0, 1, 1}},  {G_ZZZETA, &FiniteValues::G_zeta, {0, 2, 0}},
                {G_ZETAH, &FiniteValues::G_zeta, {1, 0, 0}}};
    std::map<double, ModeExpansion> expansion;
    std::array<Complex, DEPTH_VALUES> result;
    for (const auto &row : ROWS) {
        const auto f = [&](const std::array<double, 3> &x) {
            FiniteValues v = expansion.try_emplace(x[0], x[0]).first->second(R, x[1], x[2]);
            return (v += selected_values(R, x[1], x[2], x[0], 3, 1)).*row.of;
        };
        const double h = 0.004 * std::hypot(R, z + zeta);
        result[row.value] = derivative<3>(f, {H, z, zeta}, row.times, {0.004 * H, h, h});
    }
    return result;
}

TEST(Fgruio, DepthAndThirdDerivativesAreThoseOfTheDefinition) {
    // In units of min(H, 1), where the values are of the order 1 to 40; measured 1.2e-6, 1.6e-6 (3.1e-6
    // without fused multiply-add) and 8e-5. The third derivatives hold those of S3, of few terms, and where
    // 12 modes are all, what the others leave.
    constexpr int POWER[] = {2, 3, 4, 4, 4, 4, 3};
    constexpr double ERRORS[] = {0, 0, 2e-6, 4.5e-6, 1e-4};
    for (const f32 H : {0.05f, 0.7f, 1.5f, 3.0f, 7.0f, 14.0f, 40.0f}) {
        Points p;
        std::mt19937 random(7);
        std::uniform_real_distribution<f32> part(0, 1);
        for (const f32 X : {0.12f, 0.3f, 0.49f, 0.5f, 0.51f, 0.8f, 1.6f, 4.0f})
            p.add(X * H, 0.95f * H * part(random), 0.95f * H * part(random), 3, 1);
        p.add(0.15f * H, 0.02f * H, 0.03f * H, 3, 1);
        const DepthResults got = depth_values(p, H);
        for (int i = 0; i < p.size(); ++i) {
            const auto exact = by_differences(H, p.R[i], p.Z[i], p.ZETA[i]);
            for (int j = G_H; j < DEPTH_VALUES; ++j) {
                const int power = POWER[j - G_H];
                EXPECT_NEAR(std::abs(got(j, i) - exact[j]), 0,
                            ERRORS[power] / std::pow(std::min(H, 1.0f), power))
                    << H << " R/H " << p.R[i] / H << " value " << j;
            }
        }
    }
}

TEST(Fgruio, StateOfTheLastDepthIsKept) {
    Points p;
    p.add(0.5f, 0.3f, 0.4f, 3, 1);
    DepthWork work;
    const f32 once = depth_values(p, 2, work).arrays.im[G_][0];
    work.state.CN0 *= 2;
    EXPECT_EQ(depth_values(p, 2, work).arrays.im[G_][0], 2 * once);
    depth_values(p, 3, work);
    EXPECT_EQ(depth_values(p, 2, work).arrays.im[G_][0], once);
}

TEST(Fgruio, Messages) {
    const struct {
        f32 X, Z, ZETA, H;
        const char *message;
    } ROWS[] = {
        {2e8f, 0, 0, 1, "X to big in FGRUIO"},
        {-1, 0, 0, 1, "X negative in FGRUIO"},
        {1, -0.1f, 0, 1, "X3 negative in FGRUIO"},
        {1, 0, -0.1f, 1, "X6 negative in FGRUIO"},
        {1, 0, 0, 2e8f, "H too big in FGRUIO"},
        {1, 0, 0, 1e-9f, "H too small in FGRUIO"},
        {1, 1.1f, 0, 1, "X3 > H in FGRUIO"},
        {1, 0, 1.1f, 1, "X6 > H in FGRUIO"},
        {4e-9f, 3e-9f, 0, 1, "X+X3X6 too small in FGRUIO"},
    };
    DepthResults results(1);
    DepthWork work;
    ASSERT_TRUE(work.alloc(1));
    for (const auto &row : ROWS) {
        close_list();
        EXPECT_EQ(FGRUIO({1, &row.X, &row.Z, &row.ZETA}, row.H, work, results.arrays), Status::failed);
        EXPECT_EQ(first_fault(), row.message);
    }
    close_list();
}

// H S3 (below 1 and above 16) or S3, and H times the slope in H, on both sides of every border of the table.
TEST(S3Table, ValueAndDepthSlopeAreThoseOfTheDefinition) {
    constexpr double VALUE = 1e-6, SLOPE = 1e-5;
    const DepthDefinition definition(DepthDefinition::Function::S3, {0, 0.3, 0.71, 1}, {0, 0.2, 0.63, 1});
    constexpr f32 T[] = {0, 0.3f, 0.71f, 1}, W[] = {0, 0.2f, 0.63f, 1};
    std::vector<f32> depths = {0.001f, 0.02f, 0.3f,  0.7f,  1.6f,  2.4f,   3.5f,
                               5.1f,   7.3f,  11.1f, 14.7f, 25.0f, 300.0f, 1e5f};
    for (const f32 border : {1.0f, 2.0f, 3.0f, 4.0f, 6.0f, 8.0f, 12.0f, 16.0f})
        depths.insert(depths.end(), {std::nextafter(border, 0.0f), border, std::nextafter(border, 99.0f)});
    for (const f32 H : depths) {
        HSTATE state;
        HGRUIO(H, state);
        const double scale = H < 1 || H > 16 ? H : 1;
        const std::vector<DepthValues> exact = definition.times_depth(H, false);
        const std::vector<double> slope = definition.slope_of_times_depth(H);
        for (int at = 0; at < 16; ++at) {
            const auto by_table = [&](const f32 *c) {
                return scale * polynomial_sums<ShapeS3, false>(c, T[at % 4], W[at / 4]).f;
            };
            const double S3 = exact[at].f / H;
            EXPECT_NEAR(by_table(state.S3C), scale * S3, VALUE) << H << " " << at;
            EXPECT_NEAR(H * by_table(state.DS3C), scale * (slope[at] - S3), SLOPE) << H << " " << at;
        }
    }
}

TEST(Igruio, IsTheFunctionOfTheDefinition) {
    constexpr double VALUE = 1.2e-6; // of the table, and of the largest part of a derivative
    constexpr int POWER[INFINITE_VALUES] = {1, 2, 2, 3, 3, 4, 4};
    const double PLACES[][2] = {{0.5, 0.7}, {3.5, 0.6}, {8, 6},    {20, 0.7},  {1, 6.5},
                                {3.69, 1},  {3.71, 1},  {2, 3.99}, {2, 4.01},  {10, 19.9},
                                {10, 20.1}, {3, 25},    {30, 21},  {0.1, 0.02}};
    constexpr std::array<int, 2> TIMES[INFINITE_VALUES] = {{0, 0}, {1, 0}, {0, 1}, {1, 1},
                                                           {0, 2}, {1, 2}, {0, 3}};
    const F2Definition F2;
    std::vector<f32> X, Y;
    std::vector<int> ISNG;
    for (int i = 0; i < 48; ++i) { // 14 places by three selectors, and as many as fill the lanes
        X.push_back(static_cast<f32>(PLACES[i / 3 % 14][0]));
        Y.push_back(static_cast<f32>(PLACES[i / 3 % 14][1]));
        ISNG.push_back(1 + i % 3);
    }
    const int n = static_cast<int>(X.size());
    std::vector<f32> store(2 * INFINITE_VALUES * X.size());
    InfiniteArrays table;
    for (int j = 0; j < INFINITE_VALUES; ++j)
        table.value[j] = store.data() + 2 * j * n;
    const InfiniteArrays distant = table.from(n);
    InfiniteWork work;
    ASSERT_TRUE(work.alloc(n));
    IGRUIO({n, X.data(), Y.data(), ISNG.data()}, work, table);
    IGRUIO_distant(n, X.data(), Y.data(), distant);
    for (int i = 0; i < n; ++i) {
        const double r1 = std::hypot(X[i], Y[i]), h = 0.005 * std::min(r1, 6.0);
        const auto f = [&](const std::array<double, 2> &x) {
            const double r = std::hypot(x[0], x[1]);
            return Complex(F2(x[0], x[1]).value + (ISNG[i] == 1   ? 1 / r
                                                   : ISNG[i] == 3 ? 2 * std::log(r + x[1])
                                                                  : 0));
        };
        for (int j = 0; j < INFINITE_VALUES; ++j) {
            const double exact = derivative<2>(f, {X[i], Y[i]}, TIMES[j], {h, h}).real();
            const double unit = std::pow(r1, -POWER[j]);
            EXPECT_NEAR(table.value[j][i], exact, VALUE * (1 + unit))
                << X[i] << " " << Y[i] << " " << ISNG[i] << " " << j;
            if (Y[i] > DISTANT && ISNG[i] == 1) { // what is left out is about exp(-20)
                EXPECT_NEAR(distant.value[j][i], exact, 4e-9 + 1e-6 * unit)
                    << X[i] << " " << Y[i] << " " << j;
            }
        }
    }
}

} // namespace
