// Truth: the heave coefficients of a floating hemisphere in deep water (A. Hulme, J. Fluid Mech. 121, 1982),
// and the energy that the radiated waves carry away.
#include "case_folder.hpp"

namespace {

constexpr double MASS = 2.0943951023931953; // (2/3) pi
struct Published {
    double Ka, A33, B33;
};
constexpr Published HULME[] = {{0.1, 0.8627, 0.1816}, {0.2, 0.7938, 0.2793}, {0.5, 0.5861, 0.3391},
                               {1.0, 0.4284, 0.2484}, {1.5, 0.3890, 0.1606}, {2.0, 0.3884, 0.1031},
                               {3.0, 0.4111, 0.0452}, {4.0, 0.4322, 0.0219}};

SolvedRun solve_hemisphere(int panels, const char *PER = "0.1 0.2 0.5 1.0 1.5 2.0 3.0 4.0", int NPER = 8) {
    Pot pot;
    pot.NPER = NPER;
    pot.PER = PER;
    return solve_mesh("hemisphere --nu " + std::to_string(panels) + " --nv " + std::to_string(panels), pot);
}

TEST(Hemisphere, AgreesWithPublishedValuesAndConverges) {
    const Coefficients coarse = solve_hemisphere(8).c, fine = solve_hemisphere(16).c;
    for (int t = 1; t <= 8; ++t) {
        const Published &known = HULME[t - 1];
        const double a = static_cast<double>(fine.A(3, 3, t)) / MASS,
                     b = static_cast<double>(fine.B(3, 3, t)) / MASS;
        EXPECT_NEAR(a, known.A33, 0.01) << "Ka " << known.Ka;
        EXPECT_NEAR(b, known.B33, 0.01) << "Ka " << known.Ka;
        // The published values have four digits: the ratio of errors means something where they are
        // far above that.
        const double error = std::abs(a - known.A33);
        const double before = std::abs(static_cast<double>(coarse.A(3, 3, t)) / MASS - known.A33);
        if (error > 0.001) {
            EXPECT_GT(before / error, 3) << "Ka " << known.Ka;
            EXPECT_LT(before / error, 5) << "Ka " << known.Ka;
        }
    }
}

TEST(Hemisphere, DampingIsTheEnergyOfTheRadiatedWaves) {
    // Surge at Ka = 4 stands beside the first irregular frequency of its class (about 3.9), where only the
    // mesh helps.
    const SolvedRun run = solve_hemisphere(16), finer = solve_hemisphere(32, "4.0", 1);
    for (int t = 1; t <= 8; ++t) {
        EXPECT_LT(std::abs(energy_defect(run, 3, t)), 0.01) << "heave, Ka " << HULME[t - 1].Ka;
        if (t < 8) {
            EXPECT_LT(std::abs(energy_defect(run, 1, t)), 0.01) << "surge, Ka " << HULME[t - 1].Ka;
        }
    }
    EXPECT_GT(std::abs(energy_defect(run, 1, 8) / energy_defect(finer, 1, 1)), 3);
    EXPECT_LT(std::abs(energy_defect(finer, 1, 1)), 0.01);
}

} // namespace
