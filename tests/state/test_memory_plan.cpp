// Truth: the plan's formula worked by hand for chosen memories, and the lines it must leave.
#include "state/memory_plan.hpp"

#include "run_folder.hpp"

#include <gtest/gtest.h>

namespace {

struct PlanCase {
    std::int64_t AVAILM;
    int NEQN, NSYMR, MAXSCR, ILOG, ISCATT, ISOR, IUSESCR, ISOLVN;
    bool INCORE;
    int NTMAX;
    const char *line; // a line that must stand in the list file; null: no line of the plan at all
};
class Plans : public testing::TestWithParam<PlanCase> {};

TEST_P(Plans, DecideAndTell) {
    const PlanCase &p = GetParam();
    RunFolder list;
    Options opt;
    opt.MAXSCR = p.MAXSCR;
    opt.ILOG = p.ILOG;
    opt.ISCATT = p.ISCATT;
    opt.ISOR = p.ISOR;
    opt.IUSESCR = p.IUSESCR;
    opt.ISOLVN = p.ISOLVN;
    Memory memory;
    memory.AVAILM = p.AVAILM;
    MEMPLN(opt, p.NEQN, p.NSYMR, memory);
    EXPECT_EQ(memory.INCORE, p.INCORE);
    EXPECT_EQ(memory.NTMAX, p.NTMAX);
    if (p.line != nullptr)
        EXPECT_EQ(list.count(p.line), 1) << list.list_text();
    else
        EXPECT_EQ(list.list_text().find("Matrices in"), std::string::npos);
}

// 1e10 bytes, N = 1000: 9500 per element; shared 4, thread 9: (9500 - 4) / 9 = 1055.
// clang-format off
INSTANTIATE_TEST_SUITE_P(MemoryPlan, Plans, testing::ValuesIn(std::vector<PlanCase>{
    {10000000000, 1000, 1, 2000, 0, 0, 0, 0, 0, true, 1055, "  Influence coefficient matrices stored in physical memory"},
    {10000000000, 1000, 1, 2000, 0, 0, 0, 0, 0, true, 1055, "  Matrices in    REAL:    0.04% of available memory (shared across all threads)"},
    // shared 2 x 4 x (1 + 1 + 4) x 2 = 96, thread 2 x 8 x 5 + 1 = 81: (95 - 96) / 81 rounds down.
    {10000000000, 10000, 2, 20000, 1, 1, 1, 0, 0, false, -1, "  Scratch files are used for data storage."},
    {10000000000, 10000, 2, 20000, 1, 1, 1, 0, 0, false, -1, "  Matrices in COMPLEX:   85.26% of available memory per thread (threadprivate)"},
    {1500000000, 100, 1, 200, 0, 0, 0, 0, 0, false, 15832, "  Physical memory is not big enough to keep influence coeff. matrices."},
    {10000000000, 1000, 1, 2, 0, 0, 0, 0, 0, false, 0, nullptr},
    {10000000000, 1000, 1, 2000, 0, 0, 0, 1, 0, false, 0, nullptr},
    {10000000000, 1000, 1, 2000, 0, 0, 0, 0, 1, false, 0, nullptr},
}));
// clang-format on

TEST(MemoryPlan, OrderOfTheMatrixInMemory) {
    Options opt;
    EXPECT_EQ(core_order(opt, 100), 2);
    opt.MAXSCR = 500;
    EXPECT_EQ(core_order(opt, 100), 100);
    opt.ISOLVE = 3;
    opt.NBLKSZ = 34;
    EXPECT_EQ(core_order(opt, 100), 34);
}

TEST(Messages, ValuesTakeTheirWidth) {
    RunFolder list;
    MSGOUT("none=", 0);
    MSGOUT("one=", 7);
    MSGOUT("two=", -1);
    MSGOUT("five=", 12345);
    MSGOUT("over=", 100000);
    EXPECT_EQ(list.count(" none="), 1);
    EXPECT_EQ(list.count(" one=7"), 1);
    EXPECT_EQ(list.count(" two=    -1"), 1);
    EXPECT_EQ(list.count(" five=12345"), 1);
    EXPECT_EQ(list.count(" over=*****"), 1);
    EXPECT_NE(list.list_text().find(" \n none=\n \n"), std::string::npos);
}

} // namespace
