// The Rankine store: solid angles of closed bodies, codes by distance, panels in the free surface,
// messages. Signs of images and gradients are seen in whole runs: sources against potentials, full
// against quarter meshes.
#include "hull_meshes.hpp"
#include "rankine/rankin.hpp"
#include "run_folder.hpp"
#include "state/memory_plan.hpp"
#include "state/symmetry.hpp"

namespace {

constexpr double PI = 3.14159265358979324;

// Makes geometry, classes and a cleared store for the panels and switches of `run`, and fills the store.
Status sweep(RunState &run) {
    EXPECT_EQ(SYMSET(6, run.opt.ISX, run.opt.ISY, run.bodies.MODE, 1, run.sym), Status::ok);
    EXPECT_EQ(allocate_store(run.opt, run.sym, run.mesh.NEQN, run.store), Status::ok);
    return RANKIN(run.opt, run.bodies, run.mesh, run.dipoles, run.sym, run.store);
}

void make(const hulls::Quads &mesh, RunState &run) {
    hulls::set_body(mesh, run);
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
}

// All kinds of matrices with logarithm and bottom.
void all_kinds(RunState &run) {
    run.opt.ISOR = run.opt.ISCATT = run.opt.ILOG = 1;
    run.opt.HBOT = 1.5f;
}

// Largest squared distance of a mesh in units of region2 must be below RKNEAR for all pairs to be
// near: few panels.
constexpr int FEW = 2;

TEST(Rankin, RowsOfAClosedBodySumToFourPi) {
    // The normal points into the body, so a panel sees the rest of it under -2 pi ... as the flux of 1/rho
    // through a closed surface does for a point on it: with the 2 pi of the panel itself 4 pi in all. The
    // images in surface and bottom are closed bodies seen from outside and add nothing.
    RunState run;
    run.opt.HBOT = 2;
    make(hulls::box(1, 1, -1.5, -.5, FEW, true), run);
    ASSERT_EQ(sweep(run), Status::ok);
    for (int A = 1; A <= run.mesh.NEQN; ++A) {
        double sum = 0;
        for (int B = 1; B <= run.mesh.NEQN; ++B) {
            EXPECT_EQ(run.store.ICODM(pair_place(std::max(A, B)) + std::min(A, B)), 6);
            sum += run.store.RKDM(A, B, 1, 0);
        }
        EXPECT_NEAR(sum, 4 * PI, 1e-5) << A;
    }
}

// Two rectangles of area 1 and the given length, facing up, at depths z1 and z2 and x apart; the code word of
// the pair.
int code_of(double x, double z1, double z2, int ILOG, f32 HBOT, double length) {
    const double a = length / 2, b = 0.5 / length;
    hulls::Quads mesh;
    hulls::add_patch(mesh, {-a, -b, z1}, {length, 0, 0}, {0, 2 * b, 0}, 1, 1);
    hulls::add_patch(mesh, {x - a, -b, z2}, {length, 0, 0}, {0, 2 * b, 0}, 1, 1);
    RunState run;
    run.opt.ILOG = ILOG;
    run.opt.HBOT = HBOT;
    hulls::set_body(mesh, run);
    const RunFolder list; // no volume
    EXPECT_EQ(hulls::pre_pass(run), Status::ok);
    EXPECT_EQ(sweep(run), Status::ok);
    const int word = run.store.ICODM(pair_place(2) + 1);
    if (word == 0) {
        EXPECT_EQ(run.store.RKDM(1, 2, 1, 0), 0);
        EXPECT_EQ(run.store.RKDM(2, 1, 1, 0), 0);
    }
    return word;
}

TEST(Rankin, CodesByDistance) {
    struct Case {
        double x, z1, z2;
        int ILOG;
        f32 HBOT;
        int word;
        const char *why;
        double length = 1;
    };
    const Case cases[] = {
        {9.99, -6, -6, 0, -1, 1, "direct term only"},
        {9.9, -6, -6, 1, -1, 1, "the logarithm does not change that"},
        {10.01, -6, -6, 1, -1, 0, "too far"},
        {6, -3.99, -3.99, 0, -1, 2, "direct and image"},
        {6, -3.9, -3.9, 1, -1, 3, "and logarithm"},
        {6, -4.01, -4.01, 1, -1, 1, "image too far"},
        {6, -3.9, -3.9, 1, 7.91f, 3, "bottom too far"},
        {6, -3.9, -3.9, 1, 7.893f, 7, "bottom image"},
        {6, -6, -6, 1, 9.9f, 5, "bottom image alone"},
        {10.1, -6, -6, 1, 6.5f, 0, "no bottom image without the direct term"},
        {6, -6, -6, 1, 0, 1, "no bottom"},
        // Of a strip 1:100 the scale is d^2/8 = 12.5, not its area.
        {35.3, -6, -6, 0, -1, 1, "a strip is near by its length", 10},
        {35.4, -6, -6, 0, -1, 0, "too far for a strip", 10},
        {12, -1e-4, -1e-4, 1, -1, 3, "but in the free surface by its area", 10},
    };
    for (const Case &c : cases)
        EXPECT_EQ(code_of(c.x, c.z1, c.z2, c.ILOG, c.HBOT, c.length), c.word) << c.why;
}

TEST(Rankin, OneOctalDigitAnImage) {
    // Panels at x = 2 and -1 (as images of a half): near at distance 3 and 1.
    hulls::Quads mesh;
    for (const double x : {2., 9.})
        hulls::add_patch(mesh, {x - .5, -.5, -1}, {1, 0, 0}, {0, 1, 0}, 1, 1);
    RunState run;
    run.opt.ISX = 1;
    hulls::set_body(mesh, run);
    const RunFolder list;
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
    ASSERT_EQ(sweep(run), Status::ok);
    EXPECT_EQ(run.store.ICODM(pair_place(1) + 1), 022) << "itself and its mirror image at distance 4";
    EXPECT_EQ(run.store.ICODM(pair_place(2) + 1), 002) << "the image at distance 11 is far";
    EXPECT_EQ(run.store.ICODM(pair_place(2) + 2), 002);
}

// A box with a lid, marks as the free-surface stage sets them.
void make_lidded(RunState &run) {
    make(hulls::box(1, 1, -1, 0, FEW, true), run);
    const int lid = run.mesh.NEQN - FEW * FEW + 1;
    for (int i = lid; i <= run.mesh.NEQN; ++i)
        run.mesh.IFSP(i) = 1;
}

TEST(Rankin, PanelsInTheFreeSurface) {
    RunState run;
    all_kinds(run);
    make_lidded(run);
    ASSERT_EQ(sweep(run), Status::ok);
    const int N = run.mesh.NEQN, lid = N - FEW * FEW + 1;
    const RankineStore &s = run.store;
    for (int A = 1; A <= N; ++A)
        for (int B = 1; B <= N; ++B) {
            const bool both = A >= lid && B >= lid;
            EXPECT_EQ(s.ICODM(pair_place(std::max(A, B)) + std::min(A, B)) >= CODE_SURFACE, both);
            if (!both)
                continue;
            // The dipole and normal-derivative rows hold the source influence, also on the diagonal: no 2 pi.
            for (int k = 0; k <= 1; ++k) {
                EXPECT_EQ(s.RKDM(A, B, 1, k), s.RKSM(A, B, 1, k));
                EXPECT_EQ(s.RKNM(A, B, 1, k), s.RKSM(A, B, 1, k));
                for (int axis = 1; axis <= 3; ++axis)
                    EXPECT_EQ(s.RKVM(A, B, axis, k), 0);
            }
            EXPECT_GT(s.RKSM(A, B, 1, 0), 0);
        }
    // The mark of the source decides the sign.
    RunState upward;
    all_kinds(upward);
    make_lidded(upward);
    upward.mesh.IFSP(N) = -1;
    ASSERT_EQ(sweep(upward), Status::ok);
    EXPECT_EQ(upward.store.RKDM(lid, N, 1, 0), -s.RKDM(lid, N, 1, 0));
    EXPECT_EQ(upward.store.RKDM(N, lid, 1, 0), s.RKDM(N, lid, 1, 0));
    EXPECT_EQ(upward.store.RKSM(lid, N, 1, 0), s.RKSM(lid, N, 1, 0));
}

TEST(Rankin, InfiniteLogarithmIsOneMessage) {
    // A tilted panel with a vertex straight above the reflected centroid of another: out of the water.
    hulls::Quads mesh;
    hulls::add_patch(mesh, {-.5, -.5, -1}, {1, 0, 0}, {0, 1, 0}, 1, 1);
    hulls::add_patch(mesh, {0, 0, 1.5}, {1, 0, 1}, {0, 1, 0}, 1, 1);
    RunState run;
    run.opt.ILOG = 1;
    hulls::set_body(mesh, run);
    const RunFolder list;
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
    EXPECT_EQ(sweep(run), Status::failed);
    EXPECT_EQ(list.count("  Error in evaluating Rankine matrix"), 1);
}

} // namespace
