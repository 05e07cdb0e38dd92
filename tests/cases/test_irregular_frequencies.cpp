// Truth: the first eigenvalue of the water that a cylinder would hold, K = j coth(j T) with j = 2.4048 the
// first zero of J0, where the plain equations fail; a curve that has no spike there; the runs without
// treatment away from it.
#include "source_fields.hpp"

namespace {

constexpr double EIGENVALUE = 2.884; // radius 1, T = 0.5

SolvedRun solve_cylinder(int IRR, int ISOR, const std::string &PER, int NPER, int panels = 12) {
    Pot pot;
    pot.IRR = IRR;
    pot.ILOG = 1;
    pot.ISOR = ISOR;
    pot.PER = PER;
    pot.NPER = NPER;
    const std::string half = std::to_string(panels / 2);
    return solve_mesh("cylinder --radius 1 --draft 0.5 --nu " + std::to_string(panels) + " --nv " + half +
                          " --nw " + half + (IRR == 1 || IRR == 4 ? " --lid" : ""),
                      pot);
}

double added_mass(const SolvedRun &run, int mode, int t) {
    return static_cast<double>(run.c.A(mode, mode, t));
}

// Largest distance of the curve from the straight line through its ends, which a smooth curve keeps to here.
double roughness(const SolvedRun &run, int mode) {
    const int last = run.p2f.NPER;
    const double k1 = static_cast<double>(run.p2f.WVNH(1)), k2 = static_cast<double>(run.p2f.WVNH(last));
    double worst = 0;
    for (int t = 1; t <= last; ++t) {
        const double part = (static_cast<double>(run.p2f.WVNH(t)) - k1) / (k2 - k1);
        const double line = added_mass(run, mode, 1) * (1 - part) + added_mass(run, mode, last) * part;
        worst = std::max(worst, std::abs(added_mass(run, mode, t) / line - 1));
    }
    return worst;
}

const std::string THROUGH = "2.6 2.7 2.8 2.85 2.87 2.884 2.9 2.92 2.95 3.0 3.1 3.2"; // about the eigenvalue
// Far from the eigenvalues of heave (2.88) and of surge (4.00), of surge alone for the last one.
const std::string AWAY = "0.4 1.0 1.8 2.884";
constexpr int AWAY_OF_BOTH = 3;

TEST(IrregularFrequencies, PlainEquationsFailAtTheFirstEigenvalue) {
    const SolvedRun run = solve_cylinder(0, 0, THROUGH, 12);
    EXPECT_GT(roughness(run, 3), 0.2);
    int worst = 1;
    for (int t = 1; t <= 12; ++t) {
        const double mean = (added_mass(run, 3, 1) + added_mass(run, 3, 12)) / 2;
        if (std::abs(added_mass(run, 3, t) - mean) > std::abs(added_mass(run, 3, worst) - mean))
            worst = t;
    }
    EXPECT_NEAR(static_cast<double>(run.p2f.WVNH(worst)), EIGENVALUE, 0.02);
}

constexpr float SMALL_FORCE = 0.1f; // below it, 1 percent of this one

class Treatment : public testing::TestWithParam<std::pair<int, int>> {}; // IRR, ISOR

TEST_P(Treatment, IsSmoothThroughTheEigenvalueAndChangesNothingElsewhere) {
    const auto [IRR, ISOR] = GetParam();
    const SolvedRun through = solve_cylinder(IRR, ISOR, THROUGH, 12),
                    away = solve_cylinder(IRR, ISOR, AWAY, 4), plain = solve_cylinder(0, ISOR, AWAY, 4);
    EXPECT_LT(roughness(through, 3), 0.01);
    // What a lid of these panels changes. Generated ones are larger: 1.25 per cent measured for the last
    // wave.
    const float LID_ERROR = IRR == 3 ? 0.015f : 0.01f;
    for (int t = 1; t <= 4; ++t) {
        for (const int mode : {1, 3}) {
            if (t > AWAY_OF_BOTH && mode == 3)
                continue;
            const float size = std::hypot(plain.c.A(mode, mode, t), plain.c.B(mode, mode, t));
            EXPECT_NEAR(away.c.A(mode, mode, t), plain.c.A(mode, mode, t), LID_ERROR * size)
                << mode << " period " << t;
            EXPECT_NEAR(away.c.B(mode, mode, t), plain.c.B(mode, mode, t), LID_ERROR * size)
                << mode << " period " << t;
            EXPECT_LT(std::abs(away.c.X(mode, 1, t) - plain.c.X(mode, 1, t)),
                      LID_ERROR * std::max(std::abs(plain.c.X(mode, 1, t)), SMALL_FORCE))
                << mode << " period " << t;
        }
    }
}

// Middle of the bottom, away from its edge.
bool inner_bottom(const P2fFile &p2f, int panel) {
    return p2f.XCT(3, panel) < -0.49f && std::hypot(p2f.XCT(1, panel), p2f.XCT(2, panel)) < 0.7f;
}

TEST(IrregularFrequencies, SourcesBesideALidMakeTheFlow) {
    for (const int IRR : {1, 2, 4}) {
        SCOPED_TRACE(IRR);
        const SolvedRun coarse = solve_cylinder(IRR, 1, "2.884", 1, 8),
                        fine = solve_cylinder(IRR, 1, "2.884", 1, 16);
        // Rows in single precision, of a matrix whose condition grows as the panels get small beside the lid.
        EXPECT_LT(fields::normal_velocity_error(coarse.p2f), 1e-4);
        EXPECT_LT(fields::normal_velocity_error(fine.p2f), 1e-4);
        for (int ip = 1; ip <= fine.p2f.NEQN; ++ip) { // inside the body there is no fluid
            if (fine.p2f.IFSP(ip) == 1) {
                EXPECT_EQ(fine.p2f.PHIR(ip, 1, 1), c32(0));
                EXPECT_EQ(fine.p2f.PHID(ip, 1, 1, 1), c32(0));
            }
        }
        const double error = fields::tangential_velocity_error(coarse.p2f, 0.3, inner_bottom, 3);
        const double finer = fields::tangential_velocity_error(fine.p2f, 0.15, inner_bottom, 3);
        EXPECT_LT(finer, 0.03);
        EXPECT_GT(error / finer, 1.5);
        EXPECT_LT(error / finer, 3);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Treatment,
                         testing::Values(std::pair{1, 0}, std::pair{2, 0}, std::pair{4, 0}, std::pair{1, 1},
                                         std::pair{2, 1}, std::pair{4, 1}));

} // namespace
