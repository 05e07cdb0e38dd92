// Projection of hull panels on the free surface. Truth: areas of waterplanes in closed form, signed
// by the normal.
#include "freesurface/fsmark.hpp"
#include "freesurface/fsproj.hpp"
#include "hull_meshes.hpp"
#include "run_folder.hpp"

#include <cmath>

namespace {

constexpr double ROUNDING = 1e-6; // of single-precision coordinates

// The panels of `hull` with their projections, as one body; the marks of the input stage are set.
void project(const hulls::Quads &hull, f32 ZB, RunState &run) {
    hulls::set_body(hull, run, {0, 0, ZB, 0});
    int &n = run.bodies.NEQNB(1);
    const int before = n;
    ASSERT_EQ(FSPROJ(1, n, ZB, {}, run.mesh.XVER), Status::ok);
    run.mesh.NEQN = n;
    ASSERT_TRUE(run.mesh.projected.resize_last(n) && allocate_mesh(run.bodies, run.mesh));
    for (int i = before + 1; i <= n; ++i)
        run.mesh.projected(i) = 1;
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
}

// Area of the projections that look down less that of those that look up.
double waterplane(const RunState &run, int hull) {
    double area = 0;
    for (int i = hull + 1; i <= run.mesh.NEQN; ++i) {
        EXPECT_NEAR(std::fabs(run.mesh.TRM(3, 3, i)), 1, ROUNDING);
        EXPECT_NEAR(run.mesh.XCT(3, i), 0, ROUNDING);
        area -= run.mesh.TRM(3, 3, i) * run.mesh.PMOM(1, i);
    }
    return area;
}

TEST(Fsproj, FlatBottomAloneIsProjected) {
    for (const f32 ZB : {0.0f, -0.25f}) {
        RunState run;
        project(hulls::box(4, 2, -1 - ZB, -ZB, 3, false), ZB, run);
        EXPECT_EQ(run.mesh.NEQN, 45 + 9);
        EXPECT_NEAR(waterplane(run, 45), 8, 8 * ROUNDING);
        ASSERT_EQ(run.opt.IRR = 2, 2);
        ASSERT_EQ(FSMARK(run.opt, run.bodies, run.mesh), Status::ok);
        EXPECT_EQ(run.bodies.NPANS(1), 45);
        for (int i = 46; i <= 54; ++i)
            EXPECT_EQ(run.mesh.IFSP(i), 1);
    }
}

TEST(Fsproj, HemisphereCoversItsWaterplane) {
    const int m = 6;
    RunState run;
    project(hulls::hemisphere(1, m), 0, run);
    const int n = 4 * m * m;
    EXPECT_EQ(run.mesh.NEQN, 2 * n) << "triangles at the pole have projections as well";
    EXPECT_NEAR(waterplane(run, n), 2 * m * std::sin(6.283185307179586 / (4 * m)), 3 * ROUNDING);
}

TEST(Fsproj, HullWithoutDraughtMoves) {
    // A raft in the surface: nothing to project, the mark of a panel that looks up, and its normal velocity.
    hulls::Quads raft;
    hulls::add_patch(raft, {-1, -1, 0}, {2, 0, 0}, {0, 2, 0}, 2, 2);
    RunState run;
    const RunFolder list;
    project(raft, 0, run);
    ASSERT_EQ(run.mesh.NEQN, 4);
    run.opt.IRR = 2;
    ASSERT_EQ(FSMARK(run.opt, run.bodies, run.mesh), Status::ok);
    for (int i = 1; i <= 4; ++i) {
        EXPECT_EQ(run.mesh.IFSP(i), -1);
        EXPECT_EQ(run.mesh.projected(i), 0);
        EXPECT_EQ(run.mesh.VEL(3, i), 1);
    }
}

TEST(Fsproj, PanelsAreProjectedIfTheProjectionHasArea) {
    // clang-format off
    const struct {
        const char *label;
        hulls::Quad panel;
        bool projected;
    } cases[] = {
        {"wall", {{{0, 0, 0}, {0, 0, -1}, {1, 1, -1}, {1, 1, 0}}}, false},
        {"trapezoid_wall", {{{0, 0, 0}, {.2, .1, -1}, {.8, .4, -1}, {1, .5, 0}}}, false},
        // Two sides run one way and two the other: no three have one direction.
        {"sheared_wall", {{{0, 0, 0}, {.2, .1, -1}, {1.2, .6, -1}, {1, .5, 0}}}, false},
        {"triangular_wall", {{{0, 0, 0}, {.5, 1, -1}, {1, 2, 0}, {1, 2, 0}}}, false},
        {"lid", {{{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}}}, false},
        {"three_in_the_surface", {{{0, 0, 0}, {0, 1, 0}, {1, 1, -1}, {1, 0, 0}}}, true},
        {"diamond", {{{1, 0, -1}, {0, -1, -1}, {-1, 0, -1}, {0, 1, -1}}}, true},
        // Three sides at 45 degrees to the axes, two of them on one line.
        {"middle_vertex_on_a_side", {{{0, 0, -1}, {1, 1, -1}, {2, 2, -1}, {3, 1, -1}}}, true},
        {"triangle", {{{0, 0, -1}, {0, 1, -1}, {1, 0, -1}, {1, 0, -1}}}, true},
        {"needle", {{{0, 0, -1}, {0, 1, -1}, {5e-5, 1, -1}, {5e-5, 0, -1}}}, false},
    };
    // clang-format on
    for (const auto &row : cases) {
        SCOPED_TRACE(row.label);
        RunState run;
        hulls::set_body({row.panel}, run);
        int n = 1;
        ASSERT_EQ(FSPROJ(1, n, 0, {}, run.mesh.XVER), Status::ok);
        EXPECT_EQ(n, row.projected ? 2 : 1);
        for (int v = 1; n == 2 && v <= 4; ++v) {
            EXPECT_EQ(run.mesh.XVER(v, 1, 2), run.mesh.XVER(5 - v, 1, 1));
            EXPECT_EQ(run.mesh.XVER(v, 2, 2), run.mesh.XVER(5 - v, 2, 1));
            EXPECT_EQ(run.mesh.XVER(v, 3, 2), 0);
        }
    }
}

TEST(Fsproj, SecondBodyAndDipolePanels) {
    // Two bodies of two panels each: only the second is projected, and of it not the plate.
    hulls::Quads mesh;
    hulls::add_patch(mesh, {0, 0, -1}, {2, 0, 0}, {0, 1, 0}, 2, 1);
    hulls::add_patch(mesh, {5, 0, -2}, {2, 0, 0}, {0, 1, 0}, 2, 1);
    RunState run;
    hulls::set_body(mesh, run);
    Array<int, 1> IDIP;
    ASSERT_TRUE(IDIP.alloc(3)); // ends before the last panel
    IDIP(3) = 1;
    int n = 2;
    ASSERT_EQ(FSPROJ(3, n, -0.5f, IDIP, run.mesh.XVER), Status::ok);
    ASSERT_EQ(n, 3);
    EXPECT_GE(run.mesh.XVER.dim(3), 5);
    EXPECT_EQ(run.mesh.XVER(1, 1, 5), run.mesh.XVER(4, 1, 4));
    EXPECT_EQ(run.mesh.XVER(1, 3, 5), 0.5f);
    EXPECT_EQ(run.mesh.XVER(1, 3, 4), -2);
}

} // namespace
