// Truth: what a user must find after a run that fails, or that ends early by intent: the message, an orderly
// end, no result file and nothing else left behind.
#include "case_folder.hpp"

#include <unistd.h>

namespace {

constexpr const char *MESH = "hemisphere --nu 3 --nv 3";

std::string replaced(std::string text, const std::string &what, const std::string &by) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

// A fault made in a good run by changing a file.
struct Fault {
    const char *file;
    const char *what; // text that is replaced; null: the file is removed
    const char *by;
    const char *message; // must stand in the list file; parts separated by | must all stand
};
TEST(Faults, AreToldAndLeaveNoResult) {
    for (const Fault &fault :
         {Fault{"run.pot", nullptr, "", "Error opening POT file "},
          Fault{"run.pot", "1 1 1 1 1 1", "1 1 one 1 1 1",
                "Error reading POT file, MODE indices line|line 8|one"},
          Fault{"run.gdf", "\n 9\n", "\n 2147483647\n", "RAM is not sufficient to read .gdf inputs"},
          Fault{"run.pot", "0.0 0 0 0 0", "2e5 0 0 0 0", "Error return in HGRN98: depth HBOT is illegal "},
          Fault{"config.vrd", "MAXSCR", "IWADD=1\nMAXSCR",
                "Error reading the name of the FDF file from the console"}}) {
        SCOPED_TRACE(fault.message);
        const CaseFolder folder;
        prepare(folder, Pot());
        make_mesh(folder, MESH);
        folder.write("run.p2f", "of an earlier run");
        if (fault.what == nullptr)
            std::filesystem::remove(folder.path() / fault.file);
        else
            folder.write(fault.file, replaced(folder.read(fault.file), fault.what, fault.by));
        folder.solve();
        std::istringstream messages(fault.message);
        for (std::string part; std::getline(messages, part, '|');)
            EXPECT_TRUE(folder.lists(part));
        EXPECT_FALSE(folder.lists("run completed"));
        const std::string allowed = " vorda.lis config.vrd fnames.vrd run.gdf run.pot stdout.txt stderr.txt ";
        for (const std::string &name : folder.files())
            EXPECT_NE(allowed.find(" " + name + " "), std::string::npos) << name;
    }
}

TEST(Ends, SurfacePanelsNeedTheirLogarithm) {
    // A flat plate in the free surface, wetted from below: normal up, no draft.
    CaseFolder folder;
    prepare(folder, Pot());
    folder.write("run.gdf",
                 "plate\n 1 9.80665\n 0 0\n 2\n 1 1 0 1 0 0 0 0 0 0 1 0\n 2 1 0 2 0 0 1 0 0 1 1 0\n");
    folder.solve();
    EXPECT_TRUE(folder.lists(" ILOG=0 and panel NP in free surface, NP="));
    EXPECT_TRUE(folder.lists(" Error in evaluating Rankine matrix"));
    EXPECT_FALSE(folder.exists("run.p2f"));
}

TEST(Ends, WithoutPeriodsTheHeadRecordsAreWritten) {
    CaseFolder folder;
    Pot pot;
    pot.NPER = 0;
    pot.PER = "";
    pot.IDIFF = -1;
    pot.NBETA = 0;
    pot.BETA = "";
    prepare(folder, pot);
    make_mesh(folder, MESH);
    const SolvedRun run = solved(folder);
    EXPECT_EQ(run.p2f.NPER, 0);
    EXPECT_EQ(run.p2f.NBETA, 0);
    EXPECT_TRUE(folder.lists(" VORDA module run completed"));
}

TEST(Ends, OneProblemAloneIsSolvedAsInTheWholeRun) {
    for (const bool radiation : {true, false}) {
        Pot pot;
        const SolvedRun both = solve_mesh(MESH, pot);
        (radiation ? pot.IDIFF : pot.IRAD) = -1;
        CaseFolder part;
        prepare(part, pot);
        make_mesh(part, MESH);
        const SolvedRun one = solved(part);
        if (radiation)
            EXPECT_EQ(both.c.A(3, 3, 1), one.c.A(3, 3, 1));
        else
            EXPECT_EQ(both.c.X(3, 1, 1), one.c.X(3, 1, 1));
        EXPECT_EQ(one.p2f.PHID.empty(), radiation);
        EXPECT_EQ(one.p2f.PHIR.empty(), !radiation);
        EXPECT_NE(part.list().find(radiation ? "      -1\n" : "               -1\n"), std::string::npos)
            << part.list();
    }
}

TEST(Ends, LongNamesAndForeignLineEndsWork) {
    CaseFolder folder;
    prepare(folder, Pot());
    make_mesh(folder, MESH, "a_rather_long_name_of_a_hull.gdf");
    std::string pot = Pot().text();
    for (std::size_t at = 0; (at = pot.find('\n', at)) != std::string::npos; at += 2)
        pot.replace(at, 1, "\r\n");
    folder.write("the_control_file_of_this_run.pot", replaced(pot, "0.0 0 0 0 0", "0.0D+00,3*0.0 0.D0"));
    folder.write("fnames.vrd", "a_rather_long_name_of_a_hull.gdf\r\nthe_control_file_of_this_run.pot\r\n");
    folder.solve();
    EXPECT_TRUE(folder.exists("the_control_file_of_this_run.p2f")) << folder.list();
    EXPECT_TRUE(folder.lists("a_rather_long_name_of_a_hull.gdf"));
}

TEST(Ends, AnOldReportIsKeptAsBackup) {
    CaseFolder folder;
    prepare(folder, Pot());
    make_mesh(folder, MESH);
    folder.write("vorda.lis", "old");
    folder.write("vorda.lis.bak", "older");
    folder.solve();
    EXPECT_EQ(folder.read("vorda.lis.bak"), "old");
    EXPECT_TRUE(folder.exists("run.p2f"));
}

TEST(Ends, AFolderThatCannotBeWrittenIsToldOnTheConsole) {
    CaseFolder folder;
    EXPECT_EQ(folder.shell("dir=$PWD; cd /proc/self && vorda 2> $dir/told.txt"), 0);
    EXPECT_NE(folder.read("told.txt").find("Error opening vorda.lis"), std::string::npos);
}

TEST(Ends, AFullDiskIsToldAndLeavesNoPartOfAResult) {
    SmallDisk folder("64k");
    if (!folder.mounted)
        GTEST_SKIP() << "a small file system cannot be mounted here";
    Pot pot;
    pot.NPER = 40;
    pot.PER = "40*1.0";
    prepare(folder, pot);
    make_mesh(folder, "hemisphere --nu 4 --nv 4");
    folder.shell("mv run.* *.vrd small && cd small && vorda && ls > ../left.txt && cp vorda.lis ..");
    EXPECT_TRUE(folder.lists("No space left on device"));
    EXPECT_EQ(folder.read("left.txt"), "config.vrd\nfnames.vrd\nrun.gdf\nrun.pot\nvorda.lis\n");
}

TEST(Ends, AFullDiskWhileScratchFilesGrowIsToldAndLeavesNone) {
    // The Rankine records fit or do not; then the rows of a period.
    for (const char *size : {"64k", "300k"}) {
        SmallDisk folder(size);
        if (!folder.mounted)
            GTEST_SKIP() << "a small file system cannot be mounted here";
        prepare(folder, Pot());
        folder.write("config.vrd", "IPERIO=3\n");
        make_mesh(folder, "box --length 2 --beam 1 --draft 0.5 --nu 6 --nv 5 --nw 5");
        folder.shell("mv run.* *.vrd small && cd small && vorda; ls > ../left.txt && cp vorda.lis ..");
        EXPECT_TRUE(folder.lists("scratch"));
        EXPECT_TRUE(folder.lists("No space left on device"));
        EXPECT_EQ(folder.read("left.txt"), "config.vrd\nfnames.vrd\nrun.gdf\nrun.pot\nvorda.lis\n");
    }
}

TEST(Tools, RefuseWhatIsNoHandOverFile) {
    CaseFolder folder;
    prepare(folder, Pot());
    make_mesh(folder, MESH);
    folder.solve();
    EXPECT_EQ(folder.shell("vorda-p2f info run.p2f"), 0);
    EXPECT_NE(folder.read("stdout.txt").find("Bodies 1, panels 9"), std::string::npos);
    EXPECT_EQ(folder.shell("vorda-p2f coef --csv radiation --density 1025 run.p2f >table.csv"), 0);
    folder.write("look.py", "import csv, sys\n"
                            "rows = list(csv.reader(open(sys.argv[1])))\n"
                            "assert rows[0][9] == 'damping [kg m^k/s]' and len(rows) == 37\n"
                            "assert all(len(row) == len(rows[0]) for row in rows)\n"
                            "assert all(float(row[8]) >= 0 for row in rows[1:] if row[4] == row[6])\n");
    EXPECT_EQ(folder.shell("python3 look.py table.csv"), 0) << folder.read("stderr.txt");
    folder.write("short.p2f", folder.read("run.p2f").substr(0, 3000));
    EXPECT_EQ(folder.shell("vorda-p2f info short.p2f"), 1);
    EXPECT_NE(folder.read("stderr.txt").find("short.p2f: it is too short"), std::string::npos);
    EXPECT_EQ(folder.shell("vorda-p2f info run.gdf"), 1);
    EXPECT_NE(folder.read("stderr.txt").find("no hand-over file"), std::string::npos);
    EXPECT_EQ(folder.shell("vorda-p2f info none.p2f"), 1);
    EXPECT_NE(folder.shell("vorda-mesh box --nu 0 -o x.gdf"), 0);
    EXPECT_EQ(folder.shell("vorda-mesh box -o no/such/folder.gdf"), 1);
}

} // namespace
