// Truth: the store in memory. The records must hold the same bits in the order that their reader expects.
#include "rankine/rankin_scratch.hpp"

#include "hull_meshes.hpp"
#include "rankine/rankin.hpp"
#include "run/memory_plan.hpp"
#include "run/symmetry.hpp"

#include <gtest/gtest.h>

namespace {

struct Setting {
    int ISX, ISY, ILOG, ISCATT, ISOR;
    f32 HBOT;
};
class Records : public testing::TestWithParam<Setting> {};

TEST_P(Records, HoldTheStoreInMemory) {
    const Setting setting = GetParam();
    RunState run;
    run.opt.ISX = setting.ISX;
    run.opt.ISY = setting.ISY;
    run.opt.ILOG = setting.ILOG;
    run.opt.ISCATT = setting.ISCATT;
    run.opt.ISOR = setting.ISOR;
    run.opt.HBOT = setting.HBOT;
    run.memory.INCORE = true;
    hulls::set_body(hulls::quarter_box(2.0, 1.4, -1.0, 0.0, 3, setting.ILOG == 1), run);
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    const int n = run.mesh.NEQN;
    for (int ip = 1; ip <= n; ++ip)
        run.mesh.IFSP(ip) = run.mesh.XCT(3, ip) > -0.0001f ? 1 : 0;
    ASSERT_EQ(SYMSET(6, setting.ISX, setting.ISY, run.bodies.MODE, 1, run.sym), Status::ok);
    ASSERT_EQ(allocate_store(run.opt, run.sym, n, run.store), Status::ok);
    ASSERT_EQ(RANKIN(run.opt, run.bodies, run.mesh, run.dipoles, run.sym, run.store), Status::ok);
    RecordFile rows(60), right_hand_sides(61);
    ASSERT_EQ(rankin_on_scratch(run.opt, run.mesh, run.dipoles, run.sym, rows, right_hand_sides), Status::ok);

    ASSERT_TRUE(rows.rewind() && right_hand_sides.rewind());
    Array<f32, 2> record;
    ASSERT_TRUE(record.alloc(n, 3));
    const auto expect_pair = [&](int I, const Array<f32, 4> &matrix, int third, int count, int level) {
        for (const bool column : {true, false}) {
            const int length = column ? I - 1 : I;
            ASSERT_TRUE(rows.read({{record.data(), sizeof(f32) * static_cast<std::size_t>(length * count)}}));
            for (int c = 0; c < count; ++c) {
                for (int J = 1; J <= length; ++J) {
                    const f32 value = record.data()[c * length + J - 1];
                    EXPECT_EQ(value, column ? matrix(J, I, third + c, level) : matrix(I, J, third + c, level));
                }
            }
        }
    };
    std::vector<int> code(static_cast<std::size_t>(n));
    for (int I = 1; I <= n; ++I) {
        for (int s = 1; s <= run.sym.NSYMR; ++s) {
            for (int level = 0; level <= setting.ILOG; ++level) {
                expect_pair(I, run.store.RKDM, s, 1, level);
                if (setting.ISCATT == 1)
                    expect_pair(I, run.store.RKSM, s, 1, level);
                if (setting.ISOR == 1) {
                    expect_pair(I, run.store.RKNM, s, 1, level);
                    expect_pair(I, run.store.RKVM, 3 * (s - 1) + 1, 3, level);
                }
            }
        }
        ASSERT_TRUE(rows.read({{code.data(), sizeof(int) * static_cast<std::size_t>(I)}}));
        for (int J = 1; J <= I; ++J)
            EXPECT_EQ(code[static_cast<std::size_t>(J - 1)], run.store.ICODM(J, I));
    }
    EXPECT_EQ(rows.next_length(), -1);
    Array<f32, 2> rhs;
    ASSERT_TRUE(rhs.alloc(n, run.sym.NSYMD));
    for (int level = 0; level <= setting.ILOG; ++level) {
        ASSERT_TRUE(right_hand_sides.read({{rhs.data(), sizeof(f32) * static_cast<std::size_t>(rhs.size())}}));
        for (int c = 1; c <= run.sym.NSYMD; ++c) {
            for (int ip = 1; ip <= n; ++ip)
                EXPECT_EQ(rhs(ip, c), run.store.RHSRAN(ip, c, level));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(RankineRecords, Records,
                         testing::Values(Setting{0, 0, 0, 0, 0, -1}, Setting{1, 1, 1, 1, 1, -1},
                                         Setting{-1, 1, 0, 1, 0, 1.5f}, Setting{1, 0, 1, 0, 1, 1.2f}));

} // namespace
