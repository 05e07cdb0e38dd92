// Truth: closed forms of box and hemisphere; the same body given as a part, moved, turned or beside a wall.
#include "../cases/case_folder.hpp"
#include "post/hydrostatics.hpp"

namespace {

constexpr const char *BOX = "box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3";
constexpr double ROUNDING = 2e-6; // vertices in single precision, relative to values of order 1
constexpr double RHO = 1025, G = 9.80665;

std::vector<BodyHydrostatics> of_mesh(const std::string &mesh, const std::string &XBODY = "0 0 0 0",
                                      const std::string &indices = "", const std::string &walls = "") {
    const CaseFolder folder;
    Pot pot;
    pot.NPER = 0;
    pot.PER = "";
    pot.XBODY = XBODY;
    pot.IRR = pot.ILOG = mesh.find("--lid") != std::string::npos ? 1 : 0;
    prepare(folder, pot);
    make_mesh(folder, mesh);
    if (!indices.empty()) {
        std::string gdf = folder.read("run.gdf");
        gdf.replace(gdf.find(indices), indices.size(), walls);
        folder.write("run.gdf", gdf);
    }
    const SolvedRun run = solved(folder);
    std::vector<BodyHydrostatics> bodies;
    std::string error;
    EXPECT_TRUE(form_hydrostatics(run.p2f, bodies, error)) << error;
    return bodies;
}

void expect_box(const BodyHydrostatics &b) {
    for (const double volume : b.volumes)
        EXPECT_NEAR(volume, 1.2, ROUNDING);
    EXPECT_NEAR(b.buoyancy[2], -0.25, ROUNDING);
    EXPECT_NEAR(b.waterplane_area, 2.4, ROUNDING);
    EXPECT_NEAR(b.second_xx, 1.2 * 8 / 12, ROUNDING);
    EXPECT_NEAR(b.second_yy, 2 * 1.728 / 12, ROUNDING);
    EXPECT_NEAR(b.second_xy, 0, ROUNDING);
    EXPECT_NEAR(b.wetted_surface, 2.4 + 6.4 * 0.5, ROUNDING);
    const double GM = metacentric_heights(b, {1, {0, 0, 0.1}, {}}).transverse;
    EXPECT_NEAR(GM, 1.44 / (12 * 0.5) - 0.25 - 0.1, ROUNDING); // B^2 / (12 T) + zb - zg
}

TEST(Hydrostatics, OfABoxAreExactHoweverItIsGiven) {
    for (const char *part : {"quarter", "half-x", "half-y", "full", "full --lid"}) {
        SCOPED_TRACE(part);
        const BodyHydrostatics b = of_mesh(std::string(BOX) + " --part " + part).at(0);
        expect_box(b);
        EXPECT_NEAR(b.buoyancy[0], 0, ROUNDING);
    }
}

TEST(Hydrostatics, OfAMovedAndTurnedHalfBodyAreThoseOfTheWholeOne) {
    const std::string off = " --offset 0.3 0 0"; // the body's own origin is not amidships
    const BodyHydrostatics half = of_mesh(BOX + off + " --part half-y", "3.5 -2 0 25").at(0),
                           full = of_mesh(BOX + off + " --part full").at(0);
    expect_box(half);
    EXPECT_NEAR(half.buoyancy[0], 0.3, 3 * ROUNDING); // single-precision places
    EXPECT_NEAR(half.floatation[0], 0.3, 3 * ROUNDING);
    EXPECT_NEAR(half.buoyancy_global[0], 3.5 + 0.3 * std::cos(25 * 0.0174532925), 3 * ROUNDING);
    const auto C = [](const BodyHydrostatics &b) {
        return stiffness_of(b, assumed_mass(b, RHO), RHO, G).total();
    };
    const Matrix6 a = C(half), b = C(full), turned = in_global_axes(a, half.heading);
    for (std::size_t i = 0; i < 6; ++i)
        for (std::size_t j = 0; j < 6; ++j)
            EXPECT_NEAR(a[i][j], b[i][j], 5 * ROUNDING * RHO * G) << i << j;
    EXPECT_NEAR(turned[2][3] / a[2][4], -std::sin(half.heading), 1e-9); // -dF/dtheta, lever along global y
    EXPECT_NEAR(turned[3][3] + turned[4][4], a[3][3] + a[4][4], 1e-6);
}

TEST(Hydrostatics, OfHalfABoxBesideAWallAreThatHalf) {
    const BodyHydrostatics b =
        of_mesh(std::string(BOX) + " --part half-x", "0 0 0 0", "\n 1 0\n", "\n -1 0\n").at(0);
    for (const double volume : b.volumes)
        EXPECT_NEAR(volume, 0.6, ROUNDING);
    EXPECT_NEAR(b.buoyancy[0], 0.5, ROUNDING);
    EXPECT_NEAR(b.second_xx, 1.2 / 12, ROUNDING);
}

TEST(Hydrostatics, OfAHemisphereConvergeWithTheSquareOfThePanelSize) {
    const double PI = 3.14159265358979;
    const double INSCRIBED = 0.5 * std::pow(PI / 32, 2); // of panels of that angle on a sphere
    double error[2][5];
    for (const int mesh : {0, 1}) {
        const std::string n = std::to_string(mesh == 0 ? 8 : 16);
        const BodyHydrostatics b = of_mesh("hemisphere --nu " + n + " --nv " + n).at(0);
        const double exact[5] = {2 * PI / 3, -3.0 / 8, PI, PI / 4, 2 * PI};
        const double value[5] = {b.volume, b.buoyancy[2], b.waterplane_area, b.second_xx, b.wetted_surface};
        for (int k = 0; k < 5; ++k)
            error[mesh][k] = std::abs(value[k] / exact[k] - 1);
        EXPECT_NEAR(metacentric_heights(b, {1, {0, 0, -0.1}, {}}).transverse, 0.1,
                    (mesh == 0 ? 4 : 1) * INSCRIBED); // it turns about its centre
    }
    for (int k = 0; k < 5; ++k) {
        EXPECT_LT(error[1][k], INSCRIBED) << k;
        EXPECT_NEAR(error[0][k] / error[1][k], 4, 0.3) << k;
    }
}

TEST(Hydrostatics, OfATankAreRefused) {
    SolvedRun run;
    const CaseFolder folder;
    Pot pot;
    pot.IRR = 11;
    pot.IDIFF = -1;
    pot.NBETA = 0;
    pot.BETA = "";
    prepare(folder, pot);
    make_mesh(folder, "tank");
    run = solved(folder);
    std::vector<BodyHydrostatics> bodies;
    std::string error;
    EXPECT_FALSE(form_hydrostatics(run.p2f, bodies, error));
    EXPECT_NE(error.find("tank"), std::string::npos);
}

} // namespace
