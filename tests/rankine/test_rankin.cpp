// The Rankine store: solid angles of closed bodies, images against whole meshes, terms against single
// evaluations, codes by distance, messages.
#include "hull_meshes.hpp"
#include "list_capture.hpp"
#include "rankine/panint.hpp"
#include "rankine/rankin.hpp"
#include "run/memory_plan.hpp"
#include "run/symmetry.hpp"

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

// Largest squared distance of a mesh in units of PSIZ(2) must be below RKNEAR for all pairs to be near: few
// panels.
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
            EXPECT_EQ(run.store.ICODM(std::min(A, B), std::max(A, B)), 6);
            sum += run.store.RKDM(A, B, 1, 0);
        }
        EXPECT_NEAR(sum, 4 * PI, 1e-5) << A;
    }
}

// What the store must hold for one pair without symmetry, by single evaluations.
TEST(Rankin, TermsOfAPair) {
    RunState run;
    all_kinds(run);
    make(hulls::box(1, 1, -1, 0, FEW, false), run);
    ASSERT_EQ(sweep(run), Status::ok);
    const Mesh &m = run.mesh;
    for (int A = 1; A <= m.NEQN; A += 3)
        for (int B = 1; B <= m.NEQN; ++B) {
            const Panel field = panel_of(m, A), source = panel_of(m, B);
            const f32 *x = field.XCT, *n = field.TRM[3];
            const f32 P[4] = {0, x[1], x[2], x[3]}, P1[4] = {0, x[1], x[2], -x[3]},
                      P2[4] = {0, x[1], x[2], -(3 + x[3])};
            FieldIntegrals direct{}, image{}, bottom{};
            ASSERT_NE(PANFLD(P, source, 0, 1, direct), 1);
            ASSERT_NE(PANFLD(P1, source, 1, 1, image), 1);
            ASSERT_NE(PANFLD(P2, source, 0, 1, bottom), 1);
            const double own = A == B ? 2 * PI : 0;
            const RankineStore &s = run.store;
            const int word = s.ICODM(std::min(A, B), std::max(A, B));
            ASSERT_EQ(word & 3, 3);
            const double with_bottom = (word & 4) != 0 ? 1 : 0;
            EXPECT_NEAR(s.RKDM(A, B, 1, 0), own + direct.D + image.D + with_bottom * bottom.D, 2e-6);
            EXPECT_NEAR(s.RKSM(A, B, 1, 0), direct.S + image.S + with_bottom * bottom.S, 2e-6);
            EXPECT_NEAR(s.RKDM(A, B, 1, 1), -2 * image.LZ, 1e-6);
            EXPECT_NEAR(s.RKSM(A, B, 1, 1), -2 * image.L, 1e-6);
            double normal = own, normal1 = 0;
            for (int c = 1; c <= 3; ++c) {
                const double up = c == 3 ? -1 : 1; // d/dz of a function of the reflected point
                const double v = direct.GS[c] + up * (image.GS[c] + with_bottom * bottom.GS[c]);
                EXPECT_NEAR(s.RKVM(A, B, c, 0), own * n[c] + v, 1e-5);
                EXPECT_NEAR(s.RKVM(A, B, c, 1), -2 * up * image.GL[c], 1e-5);
                normal += n[c] * v;
                normal1 += -2 * up * n[c] * image.GL[c];
            }
            EXPECT_NEAR(s.RKNM(A, B, 1, 0), normal, 1e-5);
            EXPECT_NEAR(s.RKNM(A, B, 1, 1), normal1, 1e-5);
        }
}

TEST(Rankin, RightHandSidesAreSourceTimesVelocity) {
    RunState run;
    all_kinds(run);
    make(hulls::box(1, 1, -1, 0, FEW, false), run);
    ASSERT_EQ(sweep(run), Status::ok);
    for (int k = 0; k <= 1; ++k)
        for (int q = 1; q <= 6; ++q)
            for (int A = 1; A <= run.mesh.NEQN; ++A) {
                double sum = 0;
                for (int B = 1; B <= run.mesh.NEQN; ++B)
                    sum += static_cast<double>(run.mesh.VEL(q, B)) * run.store.RKSM(A, B, 1, k);
                EXPECT_NEAR(run.store.RHSRAN(A, run.sym.MODPOS(q), k), sum, 1e-5);
            }
    run.opt.IRAD = -1;
    ASSERT_EQ(sweep(run), Status::ok);
    for (std::int64_t i = 0; i < run.store.RHSRAN.size(); ++i)
        EXPECT_EQ(run.store.RHSRAN.data()[i], 0) << "no radiation";
}

struct SymmetryCase {
    int ISX, ISY;
    std::vector<int> images;
};

TEST(Rankin, SymmetricMeshEqualsTheWhole) {
    const hulls::Quads quarter = hulls::quarter_box(1, .8, -.5, 0, FEW, false);
    const int NQ = static_cast<int>(quarter.size());
    // Half meshes are the quarter and its image 4 (or 2), so that the order of the whole mesh serves all.
    const SymmetryCase cases[] = {{1, 1, {1, 2, 3, 4}}, {-1, -1, {1, 2, 3, 4}}, {1, -1, {1, 2, 3, 4}},
                                  {1, 0, {1, 2}},       {0, 1, {1, 4}},         {0, -1, {1, 4}}};
    for (const SymmetryCase &c : cases) {
        RunState part, whole;
        all_kinds(part);
        all_kinds(whole);
        part.opt.ISX = c.ISX;
        part.opt.ISY = c.ISY;
        make(quarter, part);
        hulls::Quads all;
        const hulls::Quads mirrored = hulls::mirrored(quarter);
        for (const int g : c.images)
            all.insert(all.end(), mirrored.begin() + (g - 1) * NQ, mirrored.begin() + g * NQ);
        make(all, whole);
        ASSERT_EQ(sweep(part), Status::ok);
        ASSERT_EQ(sweep(whole), Status::ok);
        const RankineStore &p = part.store, &w = whole.store;
        for (int s = 1; s <= part.sym.NSYMR; ++s) {
            const int t = part.sym.ICLS[s];
            for (int k = 0; k <= 1; ++k)
                for (int A = 1; A <= NQ; ++A)
                    for (int B = 1; B <= NQ; ++B) {
                        // Sum over the images of B with the signs of parity type t.
                        const auto sum = [&](const Array<f32, 4> &matrix, int third) {
                            double value = 0;
                            for (std::size_t g = 0; g < c.images.size(); ++g)
                                value += static_cast<double>(SGN[t][c.images[g]]) *
                                         matrix(A, static_cast<int>(g) * NQ + B, third, k);
                            return value;
                        };
                        EXPECT_NEAR(p.RKDM(A, B, s, k), sum(w.RKDM, 1), 5e-6);
                        EXPECT_NEAR(p.RKSM(A, B, s, k), sum(w.RKSM, 1), 5e-6);
                        EXPECT_NEAR(p.RKNM(A, B, s, k), sum(w.RKNM, 1), 1e-5);
                        for (int axis = 1; axis <= 3; ++axis)
                            EXPECT_NEAR(p.RKVM(A, B, 3 * (s - 1) + axis, k), sum(w.RKVM, axis), 1e-5)
                                << c.ISX << c.ISY << " class " << s << " axis " << axis;
                    }
            // The right-hand sides of the whole body, wherever the part has an odd or even share of the mode.
            if (c.ISX >= 0 && c.ISY >= 0)
                for (int n = 1; n <= part.sym.NMCLS[s]; ++n) {
                    const int q = part.sym.MODCLS(n, s);
                    for (int A = 1; A <= NQ; ++A)
                        EXPECT_NEAR(p.RHSRAN(A, part.sym.MODPOS(q), 0), w.RHSRAN(A, whole.sym.MODPOS(q), 0),
                                    2e-5);
                }
        }
        EXPECT_EQ(part.sym.NSYMG, static_cast<int>(c.images.size()));
    }
}

// Two unit squares, facing up, at depths z1 and z2 and x apart; the code word of the pair.
int code_of(double x, double z1, double z2, int ILOG, f32 HBOT, int ISX = 0) {
    hulls::Quads mesh;
    hulls::add_patch(mesh, {-.5, -.5, z1}, {1, 0, 0}, {0, 1, 0}, 1, 1);
    hulls::add_patch(mesh, {x - .5, -.5, z2}, {1, 0, 0}, {0, 1, 0}, 1, 1);
    RunState run;
    run.opt.ILOG = ILOG;
    run.opt.HBOT = HBOT;
    run.opt.ISX = ISX;
    hulls::set_body(mesh, run);
    const ListCapture list; // no volume
    EXPECT_EQ(hulls::pre_pass(run), Status::ok);
    EXPECT_EQ(sweep(run), Status::ok);
    const int word = run.store.ICODM(1, 2);
    if (word == 0) {
        EXPECT_EQ(run.store.RKDM(1, 2, 1, 0), 0);
        EXPECT_EQ(run.store.RKDM(2, 1, 1, 0), 0);
    }
    EXPECT_EQ(run.store.ICODM(2, 1), 0) << "the lower triangle stays empty";
    return word;
}

TEST(Rankin, CodesByDistance) {
    struct Case {
        double x, z1, z2;
        int ILOG;
        f32 HBOT;
        int word;
        const char *why;
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
    };
    for (const Case &c : cases)
        EXPECT_EQ(code_of(c.x, c.z1, c.z2, c.ILOG, c.HBOT), c.word) << c.why;
}

TEST(Rankin, OneOctalDigitAnImage) {
    // Panels at x = 2 and -1 (as images of a half): near at distance 3 and 1.
    hulls::Quads mesh;
    for (const double x : {2., 9.})
        hulls::add_patch(mesh, {x - .5, -.5, -1}, {1, 0, 0}, {0, 1, 0}, 1, 1);
    RunState run;
    run.opt.ISX = 1;
    hulls::set_body(mesh, run);
    const ListCapture list;
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
    ASSERT_EQ(sweep(run), Status::ok);
    EXPECT_EQ(run.store.ICODM(1, 1), 022) << "itself and its mirror image at distance 4";
    EXPECT_EQ(run.store.ICODM(1, 2), 002) << "the image at distance 11 is far";
    EXPECT_EQ(run.store.ICODM(2, 2), 002);
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
            EXPECT_EQ(s.ICODM(std::min(A, B), std::max(A, B)) >= CODE_SURFACE, both);
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
    const ListCapture list;
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
    EXPECT_EQ(sweep(run), Status::failed);
    EXPECT_EQ(list.count("  Error in evaluating Rankine matrix"), 1);
}

} // namespace
