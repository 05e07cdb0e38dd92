// Truth: the diffraction series of a cylinder; Laplace's equation and the free-surface condition by
// differences; the cylindrical wave of the Kochin function; the potential of the hull itself.
#include "cylinder_series.hpp"
#include "free_body.hpp"
#include "post/field.hpp"
#include "post/kochin.hpp"

#include <random>

namespace {

using series::PI;

Field field_at(const P2fFile &p, int t, Motions xi, const std::vector<Vector3> &points,
               bool velocity = false) {
    Field field;
    std::string error;
    EXPECT_TRUE(form_field(p, t, xi, {points, mark_points(p, points), velocity}, field, error)) << error;
    return field;
}

double deep(double K, double h) {
    return K * std::tanh(K * h);
}

TEST(Field, AroundACylinderOnTheBottomIsThatOfTheSeries) {
    const double waves[] = {0.6, 1.5}, depth = 1.5;
    Pot pot;
    pot.ILOG = 1;
    pot.HBOT = "1.5";
    pot.NPER = 2;
    pot.PER = std::to_string(deep(waves[0], depth)) + " " + std::to_string(deep(waves[1], depth));
    const SolvedRun run = solve_mesh("cylinder --radius 1 --draft 1.5 --standing --nu 12 --nv 20", pot);
    // The first ring is half a panel from the wall.
    const double radius[] = {1.054, 1.5, 4.0};
    std::vector<Vector3> points;
    for (const double r : radius)
        for (int k = 0; k < 24; ++k)
            points.push_back({r * std::cos(PI * k / 12), r * std::sin(PI * k / 12), 0});
    for (int t = 1; t <= 2; ++t) {
        const Field field = field_at(run.p2f, t, {}, points);
        double error = 0, size = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const c64 truth = series::wave(waves[t - 1], std::hypot(points[i][0], points[i][1]),
                                           std::atan2(points[i][1], points[i][0]));
            error = std::max(error, std::abs(field.total(static_cast<int>(i) + 1, 1) - truth));
            size = std::max(size, std::abs(truth));
        }
        EXPECT_LT(error / size, 0.02);
    }
}

struct Setting {
    const char *name, *depth;
    int IRR;
};
void PrintTo(const Setting &s, std::ostream *out) {
    *out << s.name;
}
SolvedRun barge(const Setting &is, int n) {
    Pot pot;
    pot.HBOT = is.depth;
    pot.ISOR = pot.ILOG = 1;
    pot.IRR = is.IRR;
    pot.PER = "1.4";
    pot.NBETA = 2;
    pot.BETA = "30 200";
    const std::string count = " --nv " + std::to_string(3 * n) + " --nw " + std::to_string(2 * n);
    return solve_mesh("box --length 2 --beam 1.2 --draft 0.5 --nu " + std::to_string(5 * n) + count +
                          (is.IRR == 1 ? " --lid" : ""),
                      pot);
}

class BargeField : public testing::TestWithParam<Setting> {};

// Differences of fourth order over the points p + k step, k = -2..2, along an axis.
constexpr double STEP = 0.18;
constexpr double TOLERANCE = 1e-3; // error of the differences and single precision, over K^2 or K times phi
TEST_P(BargeField, SatisfiesLaplacesEquationAndTheFreeSurfaceCondition) {
    const SolvedRun run = barge(GetParam(), 1);
    Array<c64, 2> xi;
    free_motions(run, 1, xi);
    std::mt19937 random(5);
    std::uniform_real_distribution<double> angle(0, 2 * PI), distance(2.0, 4.0), height(-0.7, -0.4);
    std::vector<Vector3> points;
    for (int i = 0; i < 10; ++i) {
        const double a = angle(random), r = distance(random);
        const Vector3 p = {r * std::cos(a), r * std::sin(a), height(random)};
        for (std::size_t axis = 0; axis < 3; ++axis)
            for (const int k : {-2, -1, 0, 1, 2}) {
                points.push_back(p);
                points.back()[axis] += k * STEP;
            }
        for (int k = 0; k < 5; ++k) // down from the surface
            points.push_back({p[0], p[1], -k * STEP / 2});
    }
    const Field field = field_at(run.p2f, 1, xi.view(), points);
    const double K = static_cast<double>(run.p2f.WVNH(1)), nu = deep_wave_number(run.p2f, 1);
    for (const FieldPart part : {SCATTERED, RADIATED}) {
        double laplace = 0, surface = 0, size = 0;
        for (int i = 0; i < 10; ++i) {
            const auto at = [&](int k) { return field.phi(20 * i + k + 1, part + 1, 1); };
            c64 sum = 0;
            for (int axis = 0; axis < 3; ++axis) {
                const int o = 5 * axis;
                sum += (-at(o) + 16.0 * at(o + 1) - 30.0 * at(o + 2) + 16.0 * at(o + 3) - at(o + 4)) /
                       (12 * STEP * STEP);
            }
            const c64 up = -(-25.0 * at(15) + 48.0 * at(16) - 36.0 * at(17) + 16.0 * at(18) - 3.0 * at(19)) /
                           (12 * STEP / 2);
            laplace = std::max(laplace, std::abs(sum) / (K * K));
            surface = std::max(surface, std::abs(up - nu * at(15)) / K);
            size = std::max(size, std::abs(at(15)));
        }
        EXPECT_LT(laplace / size, TOLERANCE);
        EXPECT_LT(surface / size, TOLERANCE);
    }
}

TEST_P(BargeField, FarAwayIsTheWaveOfTheKochinFunction) {
    const SolvedRun run = barge(GetParam(), 1);
    const P2fFile &p = run.p2f;
    Array<c64, 2> xi;
    free_motions(run, 1, xi);
    const double R = 300, K = static_cast<double>(p.WVNH(1)), nu = deep_wave_number(p, 1);
    std::vector<Vector3> points;
    std::vector<double> theta;
    for (int k = 0; k < 8; ++k) {
        theta.push_back(0.3 + PI * k / 4);
        points.push_back({R * std::cos(theta.back()), R * std::sin(theta.back()), 0});
    }
    const Field field = field_at(p, 1, xi.view(), points);
    Kochin kochin;
    std::string error;
    ASSERT_TRUE(form_kochin(p, 1, theta, FarFieldOf::potentials, kochin, error)) << error;
    const c64 spread = c64(0, -0.5) * far_field_factor(p, 1) * std::sqrt(2 / (PI * K * R)) *
                       std::polar(1.0, -(K * R - PI / 4));
    for (int b = 1; b <= 2; ++b) {
        double worst = 0, size = 0;
        for (int k = 1; k <= 8; ++k) {
            c64 radiated = 0;
            for (int j = 1; j <= 6; ++j)
                radiated += nu * xi(j, b) * kochin.motion(k, j);
            worst = std::max({worst, std::abs(field.phi(k, SCATTERED + 1, b) - spread * kochin.scatter(k, b)),
                              std::abs(field.phi(k, RADIATED + 1, b) - spread * radiated)});
            size = std::max({size, std::abs(spread * radiated), std::abs(spread * kochin.scatter(k, b))});
        }
        EXPECT_LT(worst / size, 0.01); // the wave is one of large K R: relative terms 1 / (K R)
    }
}

// Beside the middle of the panels, at one panel's size, the potential less its slope over the distance, and
// the velocity of the sources against differences.
double beside_the_hull(const SolvedRun &run) {
    const P2fFile &p = run.p2f;
    Array<c64, 2> xi;
    free_motions(run, 1, xi);
    HullState state;
    std::string error;
    EXPECT_TRUE(form_hull_state(p, 1, 1, xi.view(), Part::total, {}, state, error)) << error;
    std::vector<Vector3> points;
    for (int J = 1; J <= p.NEQN; ++J) {
        const double off = 0.6 * std::sqrt(static_cast<double>(p.PMOM(1, J)));
        Vector3 q{};
        for (int c = 1; c <= 3; ++c)
            q[static_cast<std::size_t>(c) - 1] =
                static_cast<double>(p.XCT(c, J)) - off * static_cast<double>(p.TRM(3, c, J));
        points.push_back(q);
    }
    const Field field = field_at(p, 1, xi.view(), points, true);
    double worst = 0, size = 0;
    for (int J = 1; J <= p.NEQN; ++J) {
        if (p.IFSP.size() > 0 && p.IFSP(J) == 1)
            continue;
        const double off = 0.6 * std::sqrt(static_cast<double>(p.PMOM(1, J)));
        const c64 expected = state.phi(J, 1) - off * state.vn(J, 1);
        worst = std::max(worst, std::abs(field.total(J, 1) - expected));
        size = std::max(size, std::abs(expected));
    }
    return worst / size;
}
TEST_P(BargeField, ApproachesThePotentialOfThePanels) {
    const double coarse = beside_the_hull(barge(GetParam(), 1)), fine = beside_the_hull(barge(GetParam(), 2));
    EXPECT_LT(fine, 0.06);
    EXPECT_LT(fine, 0.7 * coarse);
}

TEST(PointMarks, TellPointsWithoutAWave) {
    const SolvedRun floating = barge({"shallow", "1.1", 1}, 1);
    Pot pot;
    pot.HBOT = "1.5";
    const SolvedRun standing = solve_mesh("cylinder --radius 1 --draft 1.5 --standing --nu 4 --nv 4", pot);
    const struct {
        const P2fFile &file;
        Vector3 at;
        PointMark mark;
    } table[] = {
        {floating.p2f, {0.1, 0.1, -0.1}, PointMark::inside},
        {floating.p2f, {-0.5, 0.2, 0}, PointMark::inside},
        {floating.p2f, {0, 0, 0.1}, PointMark::outside},
        {floating.p2f, {0, 0, -1.2}, PointMark::outside},
        {floating.p2f, {-1.05, 0.1, -0.1}, PointMark::near},
        {floating.p2f, {0, -0.69, 0}, PointMark::near},
        {floating.p2f, {0.1, 0.1, -0.9}, PointMark::fluid},
        {floating.p2f, {1.2, -0.3, 0}, PointMark::fluid},
        {floating.p2f, {1.05, 0.65, 0}, PointMark::near},
        {floating.p2f, {5, 0, -1.1}, PointMark::fluid},
        {standing.p2f, {0.1, 0.2, -1.4}, PointMark::inside},
        {standing.p2f, {-0.2, 0, 0}, PointMark::inside},
        {standing.p2f, {1.05, 0.1, -1}, PointMark::near},
        {standing.p2f, {-1.3, 0, -1.45}, PointMark::fluid},
    };
    for (const auto &row : table)
        EXPECT_STREQ(name_of(mark_points(row.file, {row.at})[0]), name_of(row.mark))
            << row.at[0] << " " << row.at[1] << " " << row.at[2];
}

INSTANTIATE_TEST_SUITE_P(All, BargeField,
                         testing::Values(Setting{"deep", "0", 0}, Setting{"shallow_with_lid", "1.1", 1}),
                         testing::PrintToStringParamName());

} // namespace
