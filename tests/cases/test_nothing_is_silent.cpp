// Truth: what a user must see and find after runs that go wrong in ways that are easily missed.
#include "case_folder.hpp"

namespace {

constexpr const char *MESH = "cylinder --radius 1 --draft 0.5 --nu 3 --nv 2 --nw 2 --lid";

// A lid a rounding above z = 0 lies in the free surface.
TEST(Rounding, AboveTheSurfaceMakesNoDifference) {
    Pot pot;
    pot.IRR = pot.ILOG = pot.ISOR = 1;
    const SolvedRun there = solve_mesh(MESH, pot);
    pot.XBODY = "0 0 1E-8 0";
    const SolvedRun above = solve_mesh(MESH, pot);
    ASSERT_FALSE(above.c.A.empty());
    for (int i = 1; i <= 6; ++i)
        EXPECT_NEAR(there.c.A(i, i, 1), above.c.A(i, i, 1), 1e-6) << i;
}

// Every fault stands on standard error, with its place, and no result of an earlier run stays.
TEST(Stderr, HasTheFaultAndItsPlace) {
    const struct {
        const char *file, *text, *wanted;
    } rows[] = {{"config.vrd", "MAXSCR=x\n", "Error in reading input file CONFIG.VRD"},
                {"config.vrd", "IWADD=2\n", "Illegal value of IWADD=2"},
                {"run.pot", "title\n0\n7\n", "Value of ISOR is illegal in POT file: ISOR=7"},
                {"run.gdf", "title\n1 -9.8\n", "run.gdf, line 2: gravity must be above 0"}};
    for (const auto &row : rows) {
        const CaseFolder folder;
        prepare(folder, Pot());
        make_mesh(folder, MESH);
        folder.write("run.p2f", "of an earlier run");
        folder.write(row.file, row.text);
        folder.solve();
        EXPECT_NE(folder.read("stderr.txt").find(row.wanted), std::string::npos) << folder.read("stderr.txt");
        EXPECT_FALSE(folder.exists("run.p2f")) << row.wanted;
    }
}

// Links count, and so do the files of a global geometry file.
TEST(Names, OfInputFilesAreNeverWritten) {
    const struct {
        const char *prepare, *names, *told;
    } rows[] = {
        {"ln run.gdf run.p2f", "run.gdf\nrun.pot\n", "The P2F file would replace an input file"},
        {"mv run.gdf run.p2f; printf 'two\\n0 9.80665\\n1\\nrun.p2f\\n0 0 0 0\\n1 1\\n1 1 1 1 1 1\\n' > "
         "all.gdf",
         "all.gdf\nrun.pot\n", "The P2F file would replace an input file"},
    };
    for (const auto &row : rows) {
        const CaseFolder folder;
        prepare(folder, Pot());
        make_mesh(folder, MESH);
        const std::string mesh = folder.read("run.gdf");
        ASSERT_EQ(folder.shell(row.prepare), 0);
        folder.write("fnames.vrd", row.names);
        folder.solve();
        EXPECT_TRUE(folder.lists(row.told));
        EXPECT_EQ(folder.read("run.p2f"), mesh);
    }
}

// A first pass whose input is refused later leaves no PRE file.
TEST(FirstPass, LeavesNoPreFileOfARefusedRun) {
    const CaseFolder folder;
    Pot pot;
    pot.IQUAD = 7;
    prepare(folder, pot, "NEWMDS=2\n");
    make_mesh(folder, MESH);
    folder.solve();
    EXPECT_TRUE(folder.lists(" Value of IQUAD index is illegal "));
    EXPECT_FALSE(folder.exists("run.pre"));
    EXPECT_FALSE(folder.exists("run.pre.part"));
}

// The BLAS library would wait for ever.
TEST(AddressSpace, TooSmallEndsTheRun) {
#ifndef VORDA_REFUSING
    GTEST_SKIP() << "the sanitizers need an address space without a limit";
#endif
    for (const char *limit : {"60000", "150000", "350000", "450000"}) {
        const CaseFolder folder;
        prepare(folder, Pot());
        make_mesh(folder, MESH);
        const int code = folder.shell("ulimit -v " + std::string(limit) + "; timeout 20 vorda");
        EXPECT_EQ(code, 0) << limit;
        EXPECT_NE(folder.read("stderr.txt").find("RAM too small"), std::string::npos) << limit;
        EXPECT_FALSE(folder.exists("run.p2f"));
    }
}

// What the solution did not reach stands at the end.
TEST(Convergence, ThatFailsIsToldAtTheEnd) {
    const CaseFolder folder;
    Pot pot;
    pot.PER = "30"; // a wave much shorter than the panels
    pot.BETA = "30";
    pot.ISOR = pot.ILOG = 1;
    prepare(folder, pot, "ISOLVE=0\n");
    make_mesh(folder, "cylinder --radius 1 --draft 0.05 --nu 10 --nv 2 --nw 10");
    folder.solve();
    ASSERT_TRUE(folder.lists(" No convergence after MAXITT iterations "));
    EXPECT_TRUE(folder.lists("WARNING: some solutions did not converge"));
    EXPECT_NE(folder.read("stderr.txt").find("did not converge"), std::string::npos);
    ASSERT_EQ(folder.shell("vorda-p2f info run.p2f"), 0);
    EXPECT_NE(folder.read("stdout.txt").find("No convergence: a solution stopped"), std::string::npos);
}

// vorda-mesh check and the report say the same.
TEST(MeshCheck, IsThatOfTheReport) {
    const CaseFolder folder;
    prepare(folder, Pot());
    make_mesh(folder, "box --nu 3 --nv 3 --nw 3");
    EXPECT_EQ(folder.shell("vorda-mesh check run.gdf"), 0);
    EXPECT_NE(folder.read("stdout.txt").find("nothing found"), std::string::npos);
    std::string gdf = folder.read("run.gdf");
    // The first panel is turned: its vertices stand in lines 5 to 8.
    std::istringstream in(gdf);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    std::swap(lines[4], lines[7]);
    std::swap(lines[5], lines[6]);
    gdf.clear();
    for (const std::string &line : lines)
        gdf += line + "\n";
    folder.write("run.gdf", gdf);
    const std::string words =
        "panels are turned against their neighbours: panel 1; reverse the order of their vertices";
    EXPECT_EQ(folder.shell("vorda-mesh check run.gdf"), 2);
    EXPECT_NE(folder.read("stdout.txt").find(words), std::string::npos);
    folder.solve();
    EXPECT_TRUE(folder.lists(words));
    EXPECT_TRUE(folder.exists("run.p2f")); // a warning stops nothing
}

} // namespace
