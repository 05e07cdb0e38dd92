// Truth: the heave coefficients of a floating hemisphere in deep water (A. Hulme, J. Fluid Mech. 121, 1982), and the
// energy that the radiated waves carry away.
#include "case_folder.hpp"

namespace {

constexpr double MASS = 2.0943951023931953; // (2/3) pi
struct Published {
    double Ka, A33, B33;
};
constexpr Published HULME[] = {{0.1, 0.8627, 0.1816}, {0.2, 0.7938, 0.2793}, {0.5, 0.5861, 0.3391}, {1.0, 0.4284, 0.2484},
                               {1.5, 0.3890, 0.1606}, {2.0, 0.3884, 0.1031}, {3.0, 0.4111, 0.0452}, {4.0, 0.4322, 0.0219}};

void run_hemisphere(int panels, P2fFile &p2f, Coefficients &c) {
    CaseFolder folder;
    Pot pot;
    pot.NPER = 8;
    pot.PER = "0.1 0.2 0.5 1.0 1.5 2.0 3.0 4.0";
    prepare(folder, pot);
    make_mesh(folder, "hemisphere --nu " + std::to_string(panels) + " --nv " + std::to_string(panels));
    folder.solve();
    folder.results(p2f, c);
}

TEST(Hemisphere, AgreesWithPublishedValuesAndConverges) {
    P2fFile p2f;
    Coefficients coarse, fine;
    run_hemisphere(8, p2f, coarse);
    run_hemisphere(16, p2f, fine);
    for (int t = 1; t <= 8; ++t) {
        const Published &known = HULME[t - 1];
        const double a = static_cast<double>(fine.A(3, 3, t)) / MASS, b = static_cast<double>(fine.B(3, 3, t)) / MASS;
        EXPECT_NEAR(a, known.A33, 0.01) << "Ka " << known.Ka;
        EXPECT_NEAR(b, known.B33, 0.01) << "Ka " << known.Ka;
        // The published values have four digits: the ratio of errors means something where they are far above that.
        const double error = std::abs(a - known.A33);
        const double before = std::abs(static_cast<double>(coarse.A(3, 3, t)) / MASS - known.A33);
        if (error > 0.001) {
            EXPECT_GT(before / error, 3) << "Ka " << known.Ka;
            EXPECT_LT(before / error, 5) << "Ka " << known.Ka;
        }
    }
}

// Damping over the energy flux of the radiated waves, less 1. Axisymmetric: heave K |X|^2 / 2, surge K |X|^2 / 4.
double energy_defect(const P2fFile &p2f, const Coefficients &c, int mode, int t) {
    const double flux =
        static_cast<double>(p2f.WVNH(t)) * std::norm(std::complex<double>(c.X(mode, 1, t))) / (mode == 3 ? 2 : 4);
    return static_cast<double>(c.B(mode, mode, t)) / flux - 1;
}

TEST(Hemisphere, DampingIsTheEnergyOfTheRadiatedWaves) {
    P2fFile p2f;
    Coefficients c, finer;
    run_hemisphere(16, p2f, c);
    for (int t = 1; t <= 8; ++t) {
        EXPECT_LT(std::abs(energy_defect(p2f, c, 3, t)), 0.01) << "heave, Ka " << HULME[t - 1].Ka;
        if (t < 8) {
            EXPECT_LT(std::abs(energy_defect(p2f, c, 1, t)), 0.01) << "surge, Ka " << HULME[t - 1].Ka;
        }
    }
    // Surge at Ka = 4 stands beside the first irregular frequency of its class (about 3.9), where only the mesh helps.
    run_hemisphere(32, p2f, finer);
    EXPECT_GT(std::abs(energy_defect(p2f, c, 1, 8) / energy_defect(p2f, finer, 1, 8)), 3);
    EXPECT_LT(std::abs(energy_defect(p2f, finer, 1, 8)), 0.01);
}

} // namespace
