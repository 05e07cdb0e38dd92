// The body pre-pass against closed forms of box and hemisphere.
#include "geometry/pregeo.hpp"
#include "hull_meshes.hpp"
#include "run_folder.hpp"

namespace {

constexpr double ROUNDING = 1e-6; // of single-precision coordinates in sums kept in double precision

// One body through the pre-pass.
Status body(const hulls::Quads &mesh, RunState &run, std::array<f32, 4> place = {0, 0, 0, 0}) {
    hulls::set_body(mesh, run, place);
    return hulls::pre_pass(run);
}

// Box l = 4, b = 2, draught 1, the middle of its waterplane at `at` of its own axes: volume and waterplane
// are 8.
hulls::Quads box(const hulls::Point &at) {
    hulls::Quads mesh = hulls::box(4, 2, -1, 0, 6, false);
    for (auto &quad : mesh)
        for (auto &vertex : quad)
            for (std::size_t c = 0; c < 3; ++c)
                vertex[c] += at[c];
    return mesh;
}
void expect_box(const Bodies &b, const hulls::Point &at) {
    const double x = at[0], y = at[1], z = at[2] - 0.5, S11 = 2 * 64 / 12.0 + 8 * x * x,
                 S22 = 4 * 8 / 12.0 + 8 * y * y;
    for (int i = 1; i <= 3; ++i)
        EXPECT_NEAR(b.VOL(i, 1), 8, 8 * ROUNDING);
    EXPECT_NEAR(b.XCB(1, 1), x, 2 * ROUNDING);
    EXPECT_NEAR(b.XCB(2, 1), y, 2 * ROUNDING);
    EXPECT_NEAR(b.XCB(3, 1), z, 2 * ROUNDING);
    const double C[7][7] = {{},
                            {},
                            {},
                            {0, 0, 0, 8, 8 * y, -8 * x, 0},
                            {0, 0, 0, 8 * y, S22 + 8 * z, -8 * x * y, -8 * x},
                            {0, 0, 0, -8 * x, -8 * x * y, S11 + 8 * z, -8 * y},
                            {}};
    for (int i = 1; i <= 6; ++i)
        for (int j = 1; j <= 6; ++j)
            EXPECT_NEAR(b.CHYD(i, j), C[i][j], 16 * ROUNDING) << i << j;
}

TEST(Pregeo, BoxWithGaussPointsIsExact) {
    const struct {
        const char *label;
        int IQUAD, IWADD;
        std::array<f32, 4> place;
        hulls::Point middle;
    } rows[] = {{"plain", 1, 0, {0, 0, 0, 0}, {0, 0, 0}},
                {"IWADD turns the Gauss points on", 0, 1, {0, 0, 0, 0}, {0, 0, 0}},
                {"away from its origin", 1, 0, {0, 0, 0, 0}, {1, 0.5, 0}},
                {"origin at the keel", 1, 0, {0, 0, -1, 0}, {0, 0, 1}},
                {"moved and turned", 1, 0, {10, -3, 0, 90}, {0, 0, 0}}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.label);
        RunState run;
        run.opt.IQUAD = row.IQUAD;
        run.opt.IWADD = row.IWADD;
        ASSERT_EQ(body(box(row.middle), run, row.place), Status::ok);
        expect_box(run.bodies, row.middle);
    }
}

TEST(Pregeo, BoxWithCentroidsLacksTheOwnMoments) {
    // With the area of a panel in its centroid 1/12 of its squared side is lost: an error of 1/n^2
    // of the moment.
    for (const int n : {4, 8}) {
        RunState run;
        ASSERT_EQ(body(hulls::box(4, 2, -1, 0, n, false), run), Status::ok);
        EXPECT_NEAR(run.bodies.CHYD(5, 5) - 8 * run.bodies.XCB(3, 1), 128 / 12.0 * (1 - 1.0 / (n * n)), 1e-4);
    }
}

TEST(Pregeo, SymmetricHalvesAndQuarters) {
    RunState run;
    run.opt.IQUAD = 1;
    run.opt.ISX = run.opt.ISY = 1;
    ASSERT_EQ(body(hulls::quarter_box(4, 2, -1, 0, 4, false), run), Status::ok);
    expect_box(run.bodies, {0, 0, 0});
}

// Half a box, x 0..2, that stands against the wall x = 0, in the axes of a body with the given place, maybe
// turned so that the wall is y = 0: closed by the wall itself, so that sums are right only when they count
// from the wall.
hulls::Quads against_wall(const std::array<f32, 4> &place, bool wall_y) {
    hulls::Quads half;
    hulls::add_patch(half, {0, -1, -1}, {2, 0, 0}, {0, 2, 0}, 4, 4);
    hulls::add_patch(half, {2, -1, -1}, {0, 0, 1}, {0, 2, 0}, 4, 4);
    hulls::add_patch(half, {0, -1, -1}, {0, 0, 1}, {2, 0, 0}, 4, 4);
    hulls::add_patch(half, {0, 1, -1}, {2, 0, 0}, {0, 0, 1}, 4, 4);
    const double c = std::cos(static_cast<double>(DEGREE * place[3])),
                 s = std::sin(static_cast<double>(DEGREE * place[3]));
    for (auto &quad : half)
        for (auto &v : quad) {
            const double gx = wall_y ? -v[1] : v[0], gy = wall_y ? v[0] : v[1];
            const double x = gx - place[0], y = gy - place[1];
            v[0] = c * x + s * y;
            v[1] = c * y - s * x;
        }
    return half;
}
TEST(Pregeo, WallClosesTheBody) {
    for (const std::array<f32, 4> &place :
         {std::array<f32, 4>{0, 0, 0, 0}, {1.5f, 0, 0, 0}, {0.5f, 0.75f, 0, 25}, {10, -4, 0, 25}})
        for (const bool wall_y : {false, true})
            for (const int IQUAD : {0, 1}) {
                SCOPED_TRACE(testing::PrintToString(place) + (wall_y ? " y " : " x ") +
                             std::to_string(IQUAD));
                RunState run;
                run.opt.IQUAD = IQUAD;
                (wall_y ? run.opt.ISY : run.opt.ISX) = -1;
                ASSERT_EQ(body(against_wall(place, wall_y), run, place), Status::ok);
                // Second moments about the origin of the body are rounded as the square of its distance.
                const double far = std::pow(1 + std::abs(place[0]) + std::abs(place[1]), 2), volume = 4;
                for (int i = 1; i <= 2; ++i) // not doubled
                    EXPECT_NEAR(run.bodies.VOL(i, 1), volume, volume * far * ROUNDING);
                // The centre of the box is 1 from the wall.
                const double gx = (wall_y ? 0 : 1) - place[0], gy = (wall_y ? 1 : 0) - place[1];
                const double c = std::cos(static_cast<double>(DEGREE * place[3])),
                             s = std::sin(static_cast<double>(DEGREE * place[3]));
                const double x = c * gx + s * gy, y = c * gy - s * gx;
                EXPECT_NEAR(run.bodies.XCB(1, 1), x, far * ROUNDING);
                EXPECT_NEAR(run.bodies.XCB(2, 1), y, far * ROUNDING);
                EXPECT_NEAR(run.bodies.CHYD(4, 6), -volume * x, volume * far * ROUNDING);
                EXPECT_NEAR(run.bodies.CHYD(5, 6), -volume * y, volume * far * ROUNDING);
            }
    RunState open;
    ASSERT_EQ(body(against_wall({1.5f, 0, 0, 0}, false), open, {1.5f, 0, 0, 0}), Status::ok);
    EXPECT_NEAR(open.bodies.VOL(1, 1), 1, 1e-5); // the open end spoils this one
    EXPECT_NEAR(open.bodies.XCB(3, 1), -0.5, 0.02) << "the median still gives the sound volume";
}

// A closed body far from the wall keeps its own digits, and so does a plate.
TEST(Pregeo, WallFarAway) {
    for (const bool plate : {false, true}) {
        RunState run;
        run.opt.ISX = run.opt.ISY = -1;
        run.opt.IQUAD = 1;
        hulls::Quads mesh = box({1, 0.5, 0});
        if (plate) {
            mesh.clear();
            hulls::add_patch(mesh, {-1, -1.5, -1}, {4, 0, 0}, {0, 4, 0}, 1, 1);
        }
        hulls::set_body(mesh, run, {300, 200, 0, 30});
        if (plate) {
            run.dipoles.IDIPOL = true;
            ASSERT_TRUE(run.dipoles.IDIP.alloc(1) && run.dipoles.DTHK.alloc(1));
            run.dipoles.IDIP(1) = 1;
            run.dipoles.DTHK(1) = 0.25f;
        }
        ASSERT_EQ(hulls::pre_pass(run), Status::ok);
        // What is 300 away moves the volume of f32 normals by 300 times their rounding, and the
        // centre with it.
        EXPECT_NEAR(run.bodies.XCB(1, 1), 1, 1e-4) << plate;
        EXPECT_NEAR(run.bodies.XCB(2, 1), 0.5, 1e-4) << plate;
    }
}

TEST(Pregeo, LidHasNoVelocityButCounts) {
    RunState run;
    run.opt.IQUAD = 1;
    ASSERT_EQ(body(hulls::box(4, 2, -1, 0, 3, true), run), Status::ok);
    const int lid = run.mesh.NEQN;
    EXPECT_EQ(run.mesh.TRM(3, 3, lid), -1);
    for (int m = 1; m <= 6; ++m)
        EXPECT_EQ(run.mesh.VEL(m, lid), 0);
    EXPECT_EQ(run.mesh.VEL(3, 1), 1);
    EXPECT_NEAR(run.bodies.CHYD(3, 3), 0, 1e-5); // bottom and lid cancel
    EXPECT_NEAR(run.bodies.VOL(3, 1), 8, 1e-5);
    // Below the surface the same panel is hull.
    RunState sunk;
    ASSERT_EQ(body(hulls::box(4, 2, -1, 0, 3, true), sunk, {0, 0, -1, 0}), Status::ok);
    EXPECT_EQ(sunk.mesh.VEL(3, lid), -1);
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
        ASSERT_EQ(hulls::pre_pass(run), Status::ok);
        for (int i = 1; i <= 3; ++i)
            EXPECT_FLOAT_EQ(run.bodies.VOL(i, 1), 1);
        EXPECT_FLOAT_EQ(run.bodies.XCB(3, 1), -2);
        EXPECT_EQ(run.bodies.CHYD(3, 3), 0);
    }
}

TEST(Pregeo, ModesBecomeNumbersAndTwoBodiesTheirOwnRows) {
    RunState run;
    const hulls::Quads one = hulls::box(4, 2, -1, 0, 2, false);
    const int first = static_cast<int>(one.size());
    hulls::set_bodies({one, hulls::box(2, 2, -2, 0, 2, false)}, run);
    run.bodies.XBODY(1, 2) = 20;
    for (int m = 2; m <= 12; m += 2)
        run.bodies.MODE(m) = 0;
    run.opt.IQUAD = 1;
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
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
    const RunFolder list;
    EXPECT_EQ(hulls::pre_pass(run), Status::failed);
    EXPECT_EQ(list.count("  Error: panel area is less than 1.E-10 for panel I=5"), 1);
    EXPECT_EQ(list.count(" Error computing geometric quantities for body N=1"), 1);
}

TEST(Pregeo, FlatBodyHasNoVolume) {
    RunState run;
    hulls::Quads plate;
    hulls::add_patch(plate, {-1, -1, 0}, {2, 0, 0}, {0, 2, 0}, 2, 2);
    hulls::set_body(plate, run, {0, 0, -0.5f, 0});
    run.bodies.XBODY(3, 1) = 0;
    const RunFolder list;
    EXPECT_EQ(hulls::pre_pass(run), Status::ok);
    EXPECT_EQ(list.count("  Warning: body volume less than tolerance "), 1);
    EXPECT_EQ(run.bodies.XCB(3, 1), 0);
}

TEST(Pregeo, FirstPassWritesThePreFileAndEnds) {
    const RunFolder folder;
    RunState run;
    hulls::Quads one;
    hulls::add_patch(one, {1, 0, -1}, {0, 0, 1}, {0, 2, 0}, 1, 1);
    hulls::set_body(one, run, {10, 0, 0, 0});
    run.bodies.NEWMDS(1) = -2;
    run.opt.IMDRUN = -1;
    run.files.FILNAM.resize(5);
    run.files.FILNAM(5) = "a.pre";
    const std::string head = "heading one\n       0       0       1       8\n";
    folder.write("a.pre.part", head + "an old line to be dropped\n");
    EXPECT_EQ(hulls::pre_pass(run), Status::failed);
    EXPECT_TRUE(folder.told(" VORDA run 1 completed -- now run SHAPEX"));
    EXPECT_EQ(folder.read("a.pre"),
              head + "  1.10000E+01  1.00000E+00 -5.00000E-01  2.00000E+00 -1.00000E+00"
                     "  0.00000E+00  0.00000E+00  0.00000E+00  5.00000E-01  1.00000E+00   0\n");
}

} // namespace
