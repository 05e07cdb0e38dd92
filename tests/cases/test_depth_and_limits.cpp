// Truth: R. MacCamy and R. Fuchs (1954) for a cylinder on the bottom, the energy of the radiated waves at
// finite depth, deep water as the limit of great depth, and the limit frequencies of a hemisphere (A. Hulme
// 1982; the double body and its antisymmetric counterpart).
#include "case_folder.hpp"

#include <cmath>

namespace {

constexpr double MASS = 2.0943951023931953; // (2/3) pi

Pot at_depth(double depth, const std::string &PER, int NPER) {
    Pot pot;
    pot.HBOT = std::to_string(depth);
    pot.PER = PER;
    pot.NPER = NPER;
    return pot;
}

// Largest relative error of the surge force on a cylinder of radius 1 in depth 3.
double maccamy_fuchs_error(int around, int down) {

    const SolvedRun run = solve_mesh("cylinder --standing --draft 3 --nu " + std::to_string(around) +
                                         " --nv " + std::to_string(down),
                                     at_depth(3, "0.3 0.8 1.3 2.0", 4));
    double worst = 0;
    for (int t = 1; t <= 4; ++t) {
        const double k = static_cast<double>(run.p2f.WVNH(t));
        const double J1 = std::cyl_bessel_j(0, k) - std::cyl_bessel_j(1, k) / k;
        const double Y1 = std::cyl_neumann(0, k) - std::cyl_neumann(1, k) / k;
        const double exact = 4 * std::tanh(3 * k) / (k * k * std::hypot(J1, Y1));
        worst = std::max(worst, std::abs(static_cast<double>(std::abs(run.c.X(1, 1, t))) / exact - 1));
    }
    return worst;
}

TEST(Depth, SurgeOfAStandingCylinder) {
    const double coarse = maccamy_fuchs_error(6, 10), fine = maccamy_fuchs_error(12, 20);
    RecordProperty("largest_error_percent", std::to_string(100 * fine));
    EXPECT_LT(fine, 0.015);
    EXPECT_GT(coarse / fine, 2);
    EXPECT_LT(coarse / fine, 6);
}

TEST(Depth, DampingIsTheEnergyOfTheRadiatedWaves) {
    for (const double h : {1.5, 4.0}) {
        const SolvedRun run = solve_mesh("hemisphere --nu 12 --nv 12", at_depth(h, "0.1 0.4 1.0 1.6", 4));
        for (int t = 1; t <= 4; ++t)
            EXPECT_NEAR(energy_defect(run, 3, t), 0, 0.01) << "h " << h << " period " << t;
    }
}

TEST(Limits, OfAHemisphereInDeepWater) {

    const SolvedRun run = solve_mesh("hemisphere --nu 12 --nv 12", at_depth(0, "-1 0", 2));
    constexpr double TOLERANCE = 0.02;
    EXPECT_NEAR(static_cast<double>(run.c.A(3, 3, 1)) / MASS, 0.8310, TOLERANCE * 0.8310);
    EXPECT_NEAR(static_cast<double>(run.c.A(3, 3, 2)) / MASS, 0.5, TOLERANCE * 0.5);
    EXPECT_NEAR(static_cast<double>(run.c.A(1, 1, 1)) / MASS, 0.5, TOLERANCE * 0.5);
    EXPECT_NEAR(static_cast<double>(run.c.A(1, 1, 2)) / MASS, 0.2732, TOLERANCE * 0.2732);
    for (int t = 1; t <= 2; ++t) {
        EXPECT_EQ(run.c.B(3, 3, t), 0.0f);
        EXPECT_EQ(run.c.X(3, 1, t), c32(0));
    }
}

TEST(Limits, AreApproachedByTheWaves) {
    for (const double h : {0.0, 2.0}) {
        for (const char *quadrature : {"0 0", "1 1"}) {
            SCOPED_TRACE(h);
            SCOPED_TRACE(quadrature);
            Pot pot = at_depth(h, "-1 0.0005 0 60", 4);
            pot.IQUAD = quadrature[0] == '1' ? 1 : 0;
            pot.ILOG = quadrature[2] == '1' ? 1 : 0;
            // High waves need panels that are short against them only where there are waves:
            // at the waterline.
            const SolvedRun run = solve_mesh("box --length 2 --beam 2 --draft 1 --nu 6 --nv 6 --nw 6", pot);
            EXPECT_NEAR(run.c.A(1, 1, 1), run.c.A(1, 1, 2), 0.01 * static_cast<double>(run.c.A(1, 1, 1)));
            EXPECT_NEAR(run.c.A(6, 6, 1), run.c.A(6, 6, 2), 0.01 * static_cast<double>(run.c.A(6, 6, 1)));
        }
    }
}

} // namespace
