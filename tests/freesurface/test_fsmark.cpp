// Marks of free-surface panels on a box with a lid.
#include "freesurface/fsmark.hpp"
#include "hull_meshes.hpp"
#include "list_capture.hpp"

namespace {

// Closed box, 2 x 2 panels a face; the last four are the lid. Its top lies at z = top.
void make(RunState &run, double top, int IRR) {
    hulls::set_body(hulls::box(2, 2, top - 0.5, top, 2, true), run);
    run.opt.IRR = IRR;
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
}

TEST(Fsmark, LidIsInteriorFreeSurface) {
    RunState run;
    make(run, 0, 1);
    ASSERT_EQ(FSMARK(run.opt, run.bodies, run.mesh), Status::ok);
    for (int i = 1; i <= 24; ++i)
        EXPECT_EQ(run.mesh.IFSP(i), i > 20 ? 1 : 0) << i;
    EXPECT_EQ(run.bodies.NPANS(1), 20);
}

TEST(Fsmark, LidNeedsIrr) {
    RunState run;
    make(run, 0, 0);
    const ListCapture list;
    EXPECT_EQ(FSMARK(run.opt, run.bodies, run.mesh), Status::failed);
    EXPECT_EQ(list.count(" Interior free-surface panels are specified with IRR=0"), 1);
}

TEST(Fsmark, SubmergedTopIsOrdinary) {
    RunState run;
    make(run, -0.5, 0);
    ASSERT_EQ(FSMARK(run.opt, run.bodies, run.mesh), Status::ok);
    for (int i = 1; i <= 24; ++i)
        EXPECT_EQ(run.mesh.IFSP(i), 0);
    EXPECT_EQ(run.bodies.NPANS(1), 24);
}

TEST(Fsmark, LidAboveTheSurfaceIsAFault) {
    RunState run;
    make(run, 0.001, 1);
    const ListCapture list;
    EXPECT_EQ(FSMARK(run.opt, run.bodies, run.mesh), Status::failed);
    EXPECT_EQ(list.count("  Interior free surface panel is above free surface: Index =21"), 1);
}

TEST(Fsmark, OverhangInTheSurfaceLooksUp) {
    RunState run;
    hulls::Quads plate;
    hulls::add_patch(plate, {-1, -1, 0}, {2, 0, 0}, {0, 2, 0}, 1, 1); // normal up
    hulls::set_body(plate, run);
    run.bodies.XBODY(3, 1) = -1.0e-5f;
    const ListCapture list;
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
    ASSERT_EQ(FSMARK(run.opt, run.bodies, run.mesh), Status::ok);
    EXPECT_EQ(run.mesh.IFSP(1), -1);
    EXPECT_EQ(run.bodies.NPANS(1), 1);
}

} // namespace
