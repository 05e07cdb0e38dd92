// Marks of free-surface panels on a box with a lid.
#include "freesurface/fsmark.hpp"
#include "hull_meshes.hpp"
#include "run_folder.hpp"

namespace {

// Closed box, 2 x 2 panels a face; the last four are the lid. Its top lies at z = top.
TEST(Fsmark, LidInTheSurfaceIsInteriorAndNeedsIrr) {
    const struct {
        double top;
        int IRR;
        int marked;
        const char *fault;
    } rows[] = {{0, 1, 4, nullptr},
                {-0.5, 0, 0, nullptr},
                {0, 0, 0, " Interior free-surface panels are specified with IRR=0"},
                {0.001, 1, 0, "  Interior free surface panel is above free surface: Index =21"}};
    for (const auto &row : rows) {
        RunState run;
        run.opt.IRR = row.IRR;
        hulls::set_body(hulls::box(2, 2, row.top - 0.5, row.top, 2, true), run);
        const RunFolder list;
        ASSERT_EQ(hulls::pre_pass(run), Status::ok);
        EXPECT_EQ(FSMARK(run.opt, run.bodies, run.mesh), row.fault == nullptr ? Status::ok : Status::failed);
        if (row.fault != nullptr) {
            EXPECT_EQ(list.count(row.fault), 1);
            continue;
        }
        for (int i = 1; i <= 24; ++i)
            EXPECT_EQ(run.mesh.IFSP(i), i > 24 - row.marked ? 1 : 0) << i;
        EXPECT_EQ(run.bodies.NPANS(1), 24 - row.marked);
    }
}

} // namespace
