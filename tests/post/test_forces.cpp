// Truth: Haskind's relation, which holds for the exact potentials; the waterplane at long waves.
#include "../cases/case_folder.hpp"
#include "post/forces.hpp"
#include "post/hydrostatics.hpp"

namespace {

constexpr double RHO = 1025;

struct Case {
    const char *label;
    const char *mesh;
    int nu, nv, nw; // counts of the coarse mesh; 0: not given
    const char *HBOT;
    int IRR, IQUAD;
    bool pair; // two of them
};
void PrintTo(const Case &row, std::ostream *out) {
    *out << row.label;
}

SolvedRun solve_case(const Case &row, int refine, const Pot &given) {
    const CaseFolder folder;
    Pot pot = given;
    pot.HBOT = row.HBOT;
    pot.IRR = pot.ILOG = row.IRR;
    pot.IQUAD = row.IQUAD;
    prepare(folder, pot);
    std::string mesh = row.mesh;
    for (const auto &[name, count] :
         {std::pair("nu", row.nu), std::pair("nv", row.nv), std::pair("nw", row.nw)})
        if (count > 0)
            mesh += " --" + std::string(name) + " " + std::to_string(refine * count);
    make_mesh(folder, mesh, row.pair ? "one.gdf" : "run.gdf");
    if (row.pair)
        folder.write("run.gdf", "pair\n0 9.80665\n2\none.gdf\n1.5 0.3 0 20\n1 1\n1 1 1 1 1 1\n"
                                "one.gdf\n-1.5 0 0 0\n1 1\n1 1 1 1 1 1\n");
    return solved(folder);
}

class Haskind : public testing::TestWithParam<Case> {};

TEST_P(Haskind, ForceAndPressureForceComeTogetherAtFirstOrder) {
    Pot pot;
    pot.NPER = 2;
    pot.PER = "0.5 1.6";
    pot.NBETA = 2;
    pot.BETA = "0 55";
    double difference[2] = {};
    for (const int refine : {1, 2}) {
        const SolvedRun run = solve_case(GetParam(), refine, pot);
        const Scales scales = scales_of(run.p2f, RHO);
        ExcitingForces X;
        std::string error;
        ASSERT_TRUE(form_exciting(run.p2f, scales, X, error)) << error;
        ASSERT_EQ(X.no_haskind, "");
        for (int t = 1; t <= 2; ++t)
            for (int m = 1; m <= run.p2f.NMODES; ++m) {
                difference[refine - 1] = std::max(difference[refine - 1],
                                                  relative_difference(run.p2f, X.pressure, X.haskind, m, t));
            }
    }
    // First order halves it, smooth bodies come with the square; edges of plates are slow to get there.
    EXPECT_LT(difference[1], 0.03);
    EXPECT_GT(difference[0] / difference[1], 1.7);
    EXPECT_LT(difference[0] / difference[1], 4.5);
}
INSTANTIATE_TEST_SUITE_P(
    Bodies, Haskind,
    testing::Values(
        Case{"hemisphere", "hemisphere", 6, 6, 0, "-1", 0, 0, false},
        Case{"barge", "box --length 2 --beam 1.2 --draft 0.5", 4, 3, 2, "-1", 0, 0, false},
        Case{"porous disc", "disc --depth 0.4 --dporb 0.3", 6, 0, 12, "-1", 0, 0, false},
        Case{"barge, four points", "box --length 2 --beam 1.2 --draft 0.5", 4, 3, 2, "-1", 0, 1, false},
        Case{"barge at finite depth", "box --length 2 --beam 1.2 --draft 0.5", 4, 3, 2, "0.9", 0, 1, false},
        Case{"barge with lid", "box --length 2 --beam 1.2 --draft 0.5 --lid", 4, 3, 2, "-1", 1, 0, false},
        Case{"two bodies at finite depth", "hemisphere", 4, 4, 0, "1.8", 0, 1, true}));

// The integral of exp(-i k x) from -a to a.
double integral(double k, double a) {
    return k == 0 ? 2 * a : 2 * std::sin(k * a) / k;
}

TEST(FroudeKrylov, ABoxHasItsClosedForm) {
    Pot pot;
    pot.IQUAD = 1;
    pot.PER = "1.3";
    pot.BETA = "40";
    const SolvedRun run = solve_mesh("box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 2", pot);
    const Scales scales = scales_of(run.p2f, RHO);
    ExcitingForces X;
    std::string error;
    ASSERT_TRUE(form_exciting(run.p2f, scales, X, error)) << error;
    const double K = 1.3, kx = K * std::cos(40 * 0.0174532925), ky = K * std::sin(40 * 0.0174532925);
    const double unit = RHO * scales.gravity, side = (1 - std::exp(-K * 0.5)) / K;
    // Normals point into the body: the end x = 1 has n = -1, so the ends give 2 i sin(kx).
    const c64 surge = unit * c64(0, 2 * std::sin(kx)) * integral(ky, 0.6) * side;
    const double heave = unit * std::exp(-K * 0.5) * integral(kx, 1) * integral(ky, 0.6);
    constexpr double QUADRATURE = 1e-4; // of four points on panels of a sixth of a wave
    EXPECT_LT(std::abs(X.froude_krylov(1, 1, 1) - surge), QUADRATURE * heave);
    EXPECT_LT(std::abs(X.froude_krylov(3, 1, 1) - heave), QUADRATURE * heave);
}

TEST(LongWaves, ForceIsThatOfTheWaterplane) {
    Pot pot;
    pot.NPER = 3;
    pot.PER = "-1 0 1e-4"; // zero and infinite frequency, a long wave
    pot.XBODY = "0.4 -0.2 0 30";
    const SolvedRun run =
        solve_mesh("box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 2 --part half-y "
                   "--offset 0.3 0 0",
                   pot);
    const Scales scales = scales_of(run.p2f, RHO);
    ExcitingForces X;
    RadiationForces R;
    std::vector<BodyHydrostatics> bodies;
    std::string error;
    ASSERT_TRUE(form_exciting(run.p2f, scales, X, error) && form_radiation(run.p2f, scales, R, error) &&
                form_hydrostatics(run.p2f, bodies, error))
        << error;
    const Matrix6 C = stiffness_of(bodies[0], {}, RHO, scales.gravity).waterplane;
    constexpr double CENTROIDS = 1e-5; // rounding
    constexpr double LONG = 1e-3;      // relative to the force, K times the size of the body
    for (int m = 1; m <= 6; ++m) {
        const double force = C[static_cast<std::size_t>(m - 1)][2];
        EXPECT_NEAR(X.pressure(m, 1, 1).real(), force, CENTROIDS * C[2][2]) << m;
        EXPECT_EQ(X.pressure(m, 1, 2), 0.0);
        EXPECT_NEAR(std::abs(X.pressure(m, 1, 3) - force), 0, LONG * C[2][2]) << m;
        EXPECT_EQ(R.B(m, m, 1), 0);
        EXPECT_EQ(R.B(m, m, 2), 0);
        EXPECT_GT(R.A(m, m, 2), 0);
    }
    // The two parts give the coefficients that come from the potentials one by one.
    const double unit = RHO;
    EXPECT_NEAR(R.A(1, 5, 3) + R.A_odd(1, 5, 3), unit * static_cast<double>(run.c.A(1, 5, 3)),
                1e-4 * R.A(1, 1, 3));
    EXPECT_NEAR(R.A(5, 1, 3) + R.A_odd(5, 1, 3), unit * static_cast<double>(run.c.A(5, 1, 3)),
                1e-4 * R.A(1, 1, 3));
    EXPECT_NEAR(R.B(3, 3, 3), unit * omega_of(run.p2f, 3) * static_cast<double>(run.c.B(3, 3, 3)),
                1e-6 * R.A(3, 3, 3));
}

} // namespace
