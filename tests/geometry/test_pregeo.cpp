// The body pre-pass against closed forms of box and hemisphere.
#include "geometry/pregeo.hpp"
#include "hull_meshes.hpp"
#include "list_capture.hpp"

#include <fstream>

namespace {

constexpr double PI = 3.14159265358979;
constexpr double ROUNDING = 1e-6; // of single-precision coordinates in sums kept in double precision

// Box l = 4, b = 2, draught 1 with its origin in the waterplane, or at another place.
void make_box(RunState &run, std::array<f32, 4> place = {0, 0, 0, 0}, int n = 6) {
    hulls::set_body(hulls::box(4, 2, -1, 0, n, false), run, place);
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
}

void expect_box(const RunState &run, double second_moment_error) {
    const Bodies &b = run.bodies;
    for (int i = 1; i <= 3; ++i)
        EXPECT_NEAR(b.VOL(i, 1), 8, 8 * ROUNDING);
    EXPECT_NEAR(b.XCB(1, 1), 0, ROUNDING);
    EXPECT_NEAR(b.XCB(2, 1), 0, ROUNDING);
    const double zb = b.XCB(3, 1);
    EXPECT_NEAR(zb, -0.5, second_moment_error);
    EXPECT_NEAR(b.CHYD(3, 3), 8, 8 * ROUNDING);
    EXPECT_NEAR(b.CHYD(4, 4), 4 * 8 / 12.0 - 4, 8 * second_moment_error);
    EXPECT_NEAR(b.CHYD(5, 5), 2 * 64 / 12.0 - 4, 64 * second_moment_error);
    for (const auto &[i, j] : {std::pair{3, 4}, {3, 5}, {4, 5}, {4, 6}, {5, 6}, {4, 3}, {5, 3}, {5, 4}})
        EXPECT_NEAR(b.CHYD(i, j), 0, 1e-5) << i << j;
    for (const auto &[i, j] : {std::pair{1, 1}, {2, 2}, {6, 6}, {6, 4}, {6, 5}, {1, 5}})
        EXPECT_EQ(b.CHYD(i, j), 0) << i << j;
}

TEST(Pregeo, BoxWithGaussPointsIsExact) {
    RunState run;
    run.opt.IQUAD = 1;
    make_box(run);
    expect_box(run, 2e-6);
}

TEST(Pregeo, BoxWithCentroidsLacksTheOwnMoments) {
    // With the area of a panel in its centroid 1/12 of its squared side is lost: an error of 1/n^2 of the
    // moment.
    for (const int n : {4, 8}) {
        RunState run;
        make_box(run, {0, 0, 0, 0}, n);
        EXPECT_NEAR(run.bodies.CHYD(5, 5) - 8 * run.bodies.XCB(3, 1), 128 / 12.0 * (1 - 1.0 / (n * n)), 1e-4);
    }
}

TEST(Pregeo, IwaddTurnsTheGaussPointsOn) {
    RunState run;
    run.opt.IWADD = 1;
    make_box(run);
    expect_box(run, 2e-6);
}

TEST(Pregeo, BoxAwayFromItsOrigin) {
    // The origin at (-1, -0.5, 0) from the middle of the waterplane: area 8, volume 8.
    hulls::Quads mesh = hulls::box(4, 2, -1, 0, 4, false);
    for (auto &quad : mesh)
        for (auto &v : quad) {
            v[0] += 1;
            v[1] += .5;
        }
    RunState run;
    run.opt.IQUAD = 1;
    hulls::set_body(mesh, run);
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    const Bodies &b = run.bodies;
    EXPECT_NEAR(b.XCB(1, 1), 1, 1e-5);
    EXPECT_NEAR(b.XCB(2, 1), .5, 1e-5);
    EXPECT_NEAR(b.CHYD(3, 4), 8 * .5, 1e-5);
    EXPECT_NEAR(b.CHYD(3, 5), -8 * 1, 1e-5);
    EXPECT_NEAR(b.CHYD(4, 5), -8 * .5, 1e-5);
    EXPECT_NEAR(b.CHYD(4, 4), 4 * 8 / 12. + 8 * .25 - 4, 1e-4);
    EXPECT_NEAR(b.CHYD(5, 5), 2 * 64 / 12. + 8 - 4, 1e-4);
    EXPECT_NEAR(b.CHYD(4, 6), -8 * 1, 1e-4);
    EXPECT_NEAR(b.CHYD(5, 6), -8 * .5, 1e-4);
}

TEST(Pregeo, HemisphereConverges) {
    RunState run;
    run.opt.IQUAD = 1;
    hulls::set_body(hulls::hemisphere(1, 16), run);
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    const double h2 = std::pow(PI / 32, 2); // squared panel size: flat panels cut off that much
    for (int i = 1; i <= 3; ++i) {
        EXPECT_NEAR(run.bodies.VOL(i, 1), 2 * PI / 3, 2 * PI / 3 * h2);
        EXPECT_LT(run.bodies.VOL(i, 1), 2 * PI / 3); // inscribed
    }
    EXPECT_NEAR(run.bodies.XCB(3, 1), -0.375, 0.375 * h2);
    EXPECT_NEAR(run.bodies.CHYD(3, 3), PI, PI * h2);
    // The metacentre of a floating sphere is its centre.
    EXPECT_NEAR(run.bodies.CHYD(4, 4), 0, PI / 4 * h2);
    EXPECT_NEAR(run.bodies.CHYD(5, 5), 0, PI / 4 * h2);
}

TEST(Pregeo, HeightOfTheOrigin) {
    // The same box described from an origin at its keel: volume and waterplane stay, XCB counts from the
    // origin.
    RunState run;
    run.opt.IQUAD = 1;
    hulls::set_body(hulls::box(4, 2, 0, 1, 6, false), run, {0, 0, -1, 0});
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    for (int i = 1; i <= 3; ++i)
        EXPECT_NEAR(run.bodies.VOL(i, 1), 8, 8 * ROUNDING);
    EXPECT_NEAR(run.bodies.XCB(3, 1), 0.5, 2e-6);
    EXPECT_NEAR(run.bodies.CHYD(4, 4), 4 * 8 / 12.0 + 4, 1e-4);
    EXPECT_NEAR(run.mesh.XCT(3, 1), -1, 1e-7);
}

TEST(Pregeo, HeadingAndShift) {
    RunState at_home, away;
    at_home.opt.IQUAD = away.opt.IQUAD = 1;
    make_box(at_home);
    make_box(away, {10, -3, 0, 90});
    expect_box(away, 2e-6);
    for (int ip = 1; ip <= away.mesh.NEQN; ++ip) {
        EXPECT_NEAR(away.mesh.XCT(1, ip), 10 - at_home.mesh.XCT(2, ip), 3e-6);
        EXPECT_NEAR(away.mesh.XCT(2, ip), -3 + at_home.mesh.XCT(1, ip), 3e-6);
        EXPECT_NEAR(away.mesh.TRM(3, 1, ip), -at_home.mesh.TRM(3, 2, ip), 1e-6);
        EXPECT_NEAR(away.mesh.TRM(3, 2, ip), at_home.mesh.TRM(3, 1, ip), 1e-6);
        EXPECT_NEAR(away.mesh.XGP(3, 2, ip), -3 + at_home.mesh.XGP(3, 1, ip), 3e-6);
        for (int m = 1; m <= 6; ++m)
            EXPECT_EQ(away.mesh.VEL(m, ip), at_home.mesh.VEL(m, ip));
        for (int c = 1; c <= 3; ++c)
            EXPECT_EQ(away.mesh.RXNG(2, c, ip), at_home.mesh.RXNG(2, c, ip));
    }
}

TEST(Pregeo, SymmetricHalvesAndQuarters) {
    RunState run;
    run.opt.IQUAD = 1;
    run.opt.ISX = run.opt.ISY = 1;
    hulls::set_body(hulls::quarter_box(4, 2, -1, 0, 4, false), run);
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    expect_box(run, 2e-6);
    EXPECT_EQ(run.bodies.XCB(1, 1), 0);
    EXPECT_EQ(run.bodies.XCB(2, 1), 0);
    EXPECT_EQ(run.bodies.CHYD(3, 5), 0);
    EXPECT_EQ(run.bodies.CHYD(4, 5), 0);
}

TEST(Pregeo, WallMeasuresFromTheGlobalPlane) {
    // Half a box that stands against the wall x = 0: closed by the wall itself, so that its x estimate is
    // right only when x counts from the wall. Its origin lies away from it.
    hulls::Quads half;
    hulls::add_patch(half, {0, -1, -1}, {2, 0, 0}, {0, 2, 0}, 4, 4);
    hulls::add_patch(half, {2, -1, -1}, {0, 0, 1}, {0, 2, 0}, 4, 4);
    hulls::add_patch(half, {0, -1, -1}, {0, 0, 1}, {2, 0, 0}, 4, 4);
    hulls::add_patch(half, {0, 1, -1}, {2, 0, 0}, {0, 0, 1}, 4, 4);
    for (auto &quad : half)
        for (auto &v : quad)
            v[0] -= 1.5;
    RunState run;
    run.opt.ISX = -1;
    hulls::set_body(half, run, {1.5f, 0, 0, 0});
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    EXPECT_NEAR(run.bodies.VOL(1, 1), 4, 4 * ROUNDING); // not doubled
    EXPECT_NEAR(run.bodies.VOL(2, 1), 4, 4 * ROUNDING);
    RunState open;
    hulls::set_body(half, open, {1.5f, 0, 0, 0});
    ASSERT_EQ(PREGEO(open.opt, open.files, open.dipoles, open.bodies, open.mesh), Status::ok);
    EXPECT_NEAR(open.bodies.VOL(1, 1), 1, 1e-5); // the open end spoils this one
    EXPECT_NEAR(open.bodies.XCB(3, 1), -0.5, 0.02) << "the median still gives the sound volume";
}

TEST(Pregeo, LidHasNoVelocityButCounts) {
    RunState run;
    run.opt.IQUAD = 1;
    hulls::set_body(hulls::box(4, 2, -1, 0, 3, true), run);
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    const int lid = run.mesh.NEQN;
    EXPECT_EQ(run.mesh.TRM(3, 3, lid), -1);
    for (int m = 1; m <= 6; ++m)
        EXPECT_EQ(run.mesh.VEL(m, lid), 0);
    EXPECT_EQ(run.mesh.VEL(3, 1), 1);
    EXPECT_NEAR(run.bodies.CHYD(3, 3), 0, 1e-5); // bottom and lid cancel
    EXPECT_NEAR(run.bodies.VOL(3, 1), 8, 1e-5);
    // Below the surface the same panel is hull.
    RunState sunk;
    hulls::set_body(hulls::box(4, 2, -1, 0, 3, true), sunk, {0, 0, -1, 0});
    ASSERT_EQ(PREGEO(sunk.opt, sunk.files, sunk.dipoles, sunk.bodies, sunk.mesh), Status::ok);
    EXPECT_EQ(sunk.mesh.VEL(3, lid), -1);
}

TEST(Pregeo, VelocitiesAreNormalAndMoment) {
    RunState run;
    make_box(run);
    for (int ip = 1; ip <= run.mesh.NEQN; ++ip) {
        const f32 *r = &run.mesh.XCT(1, ip);
        const f32 n[3] = {run.mesh.TRM(3, 1, ip), run.mesh.TRM(3, 2, ip), run.mesh.TRM(3, 3, ip)};
        for (int c = 0; c < 3; ++c) {
            EXPECT_EQ(run.mesh.VEL(c + 1, ip), n[c]);
            const int d = (c + 1) % 3, e = (c + 2) % 3;
            EXPECT_NEAR(run.mesh.VEL(c + 4, ip), r[d] * n[e] - r[e] * n[d], 1e-6);
        }
    }
}

TEST(Pregeo, DipolePanelAddsItsThickness) {
    // The same plate from an origin in the surface and from one below it: XCB counts from the origin.
    for (const f32 ZB : {0.0f, -0.5f}) {
        RunState run;
        hulls::Quads plate;
        hulls::add_patch(plate, {-1, -1, -2}, {2, 0, 0}, {0, 2, 0}, 1, 1);
        hulls::set_body(plate, run, {0, 0, ZB, 0});
        run.dipoles.IDIPOL = true;
        ASSERT_TRUE(run.dipoles.IDIP.alloc(1) && run.dipoles.DTHK.alloc(1));
        run.dipoles.IDIP(1) = 1;
        run.dipoles.DTHK(1) = 0.25f;
        ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
        for (int i = 1; i <= 3; ++i)
            EXPECT_FLOAT_EQ(run.bodies.VOL(i, 1), 1);
        EXPECT_FLOAT_EQ(run.bodies.XCB(3, 1), -2);
        EXPECT_EQ(run.bodies.CHYD(3, 3), 0);
    }
}

TEST(Pregeo, ModesBecomeNumbersAndTwoBodiesTheirOwnRows) {
    RunState run;
    hulls::Quads two = hulls::box(4, 2, -1, 0, 2, false);
    const int first = static_cast<int>(two.size());
    for (const auto &quad : hulls::box(2, 2, -2, 0, 2, false))
        two.push_back(quad);
    hulls::set_body(two, run);
    run.bodies.NBODY = 2;
    run.bodies.NMODES = 12;
    ASSERT_TRUE(run.bodies.XBODY.alloc(4, 2) && run.bodies.NEQNB.alloc(2) && run.bodies.NEWMDS.alloc(2) &&
                run.bodies.MODE.alloc(12) && run.bodies.VOL.alloc(3, 2) && run.bodies.XCB.alloc(3, 2) &&
                allocate_mesh(run.bodies, run.mesh));
    run.bodies.NEQNB(1) = run.bodies.NEQNB(2) = first;
    run.bodies.XBODY(1, 2) = 20;
    for (int m = 1; m <= 12; m += 2)
        run.bodies.MODE(m) = 1;
    run.opt.IQUAD = 1;
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    for (int m = 1; m <= 12; ++m)
        EXPECT_EQ(run.bodies.MODE(m), m % 2 == 0 ? 0 : (m - 1) % 6 + 1);
    EXPECT_FLOAT_EQ(run.bodies.CHYD(3, 3), 8);
    EXPECT_FLOAT_EQ(run.bodies.CHYD(9, 9), 4);
    EXPECT_NEAR(run.bodies.XCB(3, 2), -1, 1e-5);
    EXPECT_EQ(run.mesh.VEL(3, first + 1), 0);
    EXPECT_EQ(run.mesh.VEL(9, first + 1), 1);
    EXPECT_EQ(run.mesh.VEL(9, 1), 0);
}

TEST(Pregeo, RefusesABadPanelWithItsNumberInTheBody) {
    RunState run;
    hulls::Quads mesh = hulls::box(4, 2, -1, 0, 2, false);
    mesh[4] = {{{0, 0, -1}, {0, 0, -1}, {0, 0, -1}, {0, 0, -1}}};
    hulls::set_body(mesh, run);
    const ListCapture list;
    EXPECT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::failed);
    EXPECT_EQ(list.count("  Error: panel area is less than 1.E-10 for panel I=5"), 1);
    EXPECT_EQ(list.count(" Error computing geometric quantities for body N=1"), 1);
}

TEST(Pregeo, FlatBodyHasNoVolume) {
    RunState run;
    hulls::Quads plate;
    hulls::add_patch(plate, {-1, -1, 0}, {2, 0, 0}, {0, 2, 0}, 2, 2);
    hulls::set_body(plate, run, {0, 0, -0.5f, 0});
    run.bodies.XBODY(3, 1) = 0;
    const ListCapture list;
    EXPECT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    EXPECT_EQ(list.count("  Warning: body volume less than tolerance "), 1);
    EXPECT_EQ(run.bodies.XCB(3, 1), 0);
}

TEST(Pregeo, FirstPassWritesThePreFileAndEnds) {
    RunState run;
    hulls::Quads one;
    hulls::add_patch(one, {1, 0, -1}, {0, 0, 1}, {0, 2, 0}, 1, 1);
    hulls::set_body(one, run, {10, 0, 0, 0});
    run.bodies.NEWMDS(1) = -2;
    run.opt.IMDRUN = -1;
    run.files.FILNAM.resize(5);
    const std::string name = testing::TempDir() + "vorda_first_pass.pre";
    run.files.FILNAM(5) = name;
    std::ofstream(name) << "heading one\n       0       0       1       8\nan old line to be dropped\n";
    const ListCapture list;
    EXPECT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::failed);
    EXPECT_EQ(list.count("  VORDA run 1 completed -- now run SHAPEX"), 1);
    std::ifstream in(name);
    std::string line;
    std::getline(in, line);
    EXPECT_EQ(line, "heading one");
    std::getline(in, line);
    EXPECT_EQ(line, "       0       0       1       8");
    std::getline(in, line);
    EXPECT_EQ(line,
              "  1.10000E+01  1.00000E+00 -5.00000E-01  2.00000E+00 -1.00000E+00  0.00000E+00  0.00000E+00"
              "  0.00000E+00  5.00000E-01  1.00000E+00   0");
    EXPECT_FALSE(std::getline(in, line));
    std::remove(name.c_str());
}

} // namespace
