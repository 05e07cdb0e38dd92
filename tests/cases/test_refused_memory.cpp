// Truth: whichever allocation the system refuses, a run ends in order: with its message and without results
// and scratch files, or, where it can do without, with the results that it has otherwise.
#include "drift_fields.hpp"

#ifdef VORDA_REFUSING

namespace {

struct Row {
    const char *name, *mesh;
    int ISOR, IRR;
    const char *config; // beside IPERIO
};
constexpr const char *ON_SCRATCH = "ISOLVE=0\nMAXSCR=64\nIUSESCR=1\n";
const Row ROWS[] = {
    {"sources", "cylinder --radius 1 --draft 0.5 --nu 6 --nv 4 --nw 3 --lid", 1, 1,
     "MAXSCR=5000\nISOLVE=1\n"},
    {"scratch", "box --nu 6 --nv 4 --nw 3", 1, 0, ON_SCRATCH},
    {"generated", "cylinder --radius 1 --draft 0.5 --nu 6 --nv 4 --nw 3", 0, 3, "MAXSCR=5000\nISOLVE=1\n"},
    {"drift", "cylinder --radius 1 --draft 0.5 --nu 4 --nv 3 --nw 2", 1, 0,
     "MAXSCR=5000\nISOLVE=1\nIWADD=1\n"},
};

class RefusedMemory : public testing::TestWithParam<Row> {};

TEST_P(RefusedMemory, EndsTheRunInOrder) {
    constexpr int PLACES = 13; // of each run, 52 in all
    const Row &row = GetParam();
    const CaseFolder folder;
    Pot pot = drift::drift_pot();
    pot.ISOR = row.ISOR;
    pot.IRR = row.IRR;
    pot.ILOG = row.IRR == 0 ? 0 : 1;
    prepare(folder, pot);
    make_mesh(folder, row.mesh);
    folder.write("config.vrd", std::string("IPERIO=3\n") + row.config);
    folder.write("fnames.vrd", "run.gdf\nrun.pot\n\n\nrun.fdf\n");

    const std::string hook = "ulimit -c 0; rm -f run.fdf vorda.lis*; LD_PRELOAD='" VORDA_REFUSING "' ";
    ASSERT_EQ(folder.shell(hook + "VORDA_REFUSE=0 VORDA_COUNT=count vorda"), 0) << folder.list();
    ASSERT_TRUE(folder.exists("run.p2f")) << folder.list();
    const long all = std::stol(folder.read("count"));
    ASSERT_GT(all, PLACES);
    int refused = 0;
    for (int k = 0; k < PLACES; ++k) {
        const std::string number = std::to_string(1 + all * k / PLACES);
        SCOPED_TRACE(std::string(row.name) + ", allocation " + number);
        EXPECT_EQ(folder.shell("rm -f run.p2f; " + hook + "VORDA_REFUSE=" + number + " timeout 60 vorda"), 0)
            << folder.list();
        const bool completed = folder.lists("VORDA module run completed");
        EXPECT_EQ(completed, folder.exists("run.p2f"));
        if (completed)
            continue;
        ++refused;
        // Standard error has the fault alone; the report speaks of memory in any case.
        const std::string told = folder.read("stderr.txt");
        EXPECT_TRUE(told.find("RAM too small") != std::string::npos ||
                    told.find("RAM insufficient") != std::string::npos ||
                    told.find("nsufficient memory") != std::string::npos ||
                    told.find("llocation error") != std::string::npos)
            << "told: " << told;
        for (const std::string &file : folder.files())
            EXPECT_TRUE(file.find("SCRATCH") == std::string::npos && file.find(".part") == std::string::npos)
                << file;
    }
    EXPECT_GT(refused, 0);
}
// A run of 1156 panels: the Rankine matrix, and one that both periods use.
TEST(RefusedPages, EndTheRunInOrder) {
    const CaseFolder folder;
    Pot pot;
    pot.PER = "1 2";
    pot.NPER = 2;
    prepare(folder, pot);
    make_mesh(folder, "hemisphere --part full --nu 17 --nv 17");
    for (int k = 1; k <= 3; ++k) {
        SCOPED_TRACE(k);
        EXPECT_EQ(folder.shell("rm -f run.p2f; LD_PRELOAD='" VORDA_REFUSING
                               "' OMP_NUM_THREADS=1 VORDA_REFUSE_MAPPED=" +
                               std::to_string(k) + " timeout 60 vorda"),
                  0);
        EXPECT_EQ(folder.exists("run.p2f"), k > 2) << folder.list();
        EXPECT_EQ(folder.read("stderr.txt").find("RAM too small") != std::string::npos, k <= 2);
    }
}

INSTANTIATE_TEST_SUITE_P(Runs, RefusedMemory, testing::ValuesIn(ROWS),
                         [](const auto &row) { return std::string(row.param.name); });

} // namespace

#endif
