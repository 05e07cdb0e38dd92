// Truth: the plan's formula worked by hand for chosen memories, and the lines it must leave.
#include "state/memory_plan.hpp"

#include "run_folder.hpp"

#include <gtest/gtest.h>

namespace {

// 1e10 bytes, N = 1000: 9500 per element; shared 4, thread 9: (9500 - 4) / 9 = 1055. With all switches on and
// N = 10000 shared 2 x 4 x (1 + 1 + 4) x 2 = 96, thread 2 x 8 x 5 + 1 = 81: (95 - 96) / 81 rounds down.
TEST(MemoryPlan, DecidesAndTells) {
    constexpr std::int64_t LARGE = 10000000000;
    const struct {
        std::int64_t AVAILM;
        int NEQN, NSYMR, MAXSCR, switches, IUSESCR, ISOLVN;
        bool INCORE;
        int NTMAX;
        std::vector<const char *> lines; // none: no line of the plan at all
    } rows[] = {
        {LARGE,
         1000,
         1,
         2000,
         0,
         0,
         0,
         true,
         1055,
         {"  Influence coefficient matrices stored in physical memory",
          "  Matrices in    REAL:    0.04% of available memory (shared across all threads)"}},
        {LARGE,
         10000,
         2,
         20000,
         1,
         0,
         0,
         false,
         -1,
         {"  Scratch files are used for data storage.",
          "  Matrices in COMPLEX:   85.26% of available memory per thread (threadprivate)"}},
        {1500000000,
         100,
         1,
         200,
         0,
         0,
         0,
         false,
         15832,
         {"  Physical memory is not big enough to keep influence coeff. matrices."}},
        {LARGE, 1000, 1, 2, 0, 0, 0, false, 0, {}},
        {LARGE, 1000, 1, 2000, 0, 1, 0, false, 0, {}},
        {LARGE, 1000, 1, 2000, 0, 0, 1, false, 0, {}},
    };
    for (const auto &row : rows) {
        const RunFolder list;
        Options opt;
        opt.MAXSCR = row.MAXSCR;
        opt.ILOG = opt.ISCATT = opt.ISOR = row.switches;
        opt.IUSESCR = row.IUSESCR;
        opt.ISOLVN = row.ISOLVN;
        Memory memory;
        memory.AVAILM = row.AVAILM;
        MEMPLN(opt, row.NEQN, row.NSYMR, memory);
        EXPECT_EQ(memory.INCORE, row.INCORE);
        EXPECT_EQ(memory.NTMAX, row.NTMAX);
        for (const char *line : row.lines)
            EXPECT_EQ(list.count(line), 1) << list.list_text();
        EXPECT_EQ(list.list_has("Matrices in"), !row.lines.empty());
    }
}

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
    for (const int value : {0, 7, -1, 12345, 100000})
        MSGOUT("value=", value);
    for (const char *line : {" value=", " value=7", " value=    -1", " value=12345", " value=*****"})
        EXPECT_EQ(list.count(line), 1) << line;
    EXPECT_TRUE(list.list_has(" \n value=\n \n"));
}

} // namespace
