// Truth: the direct solution in memory. Every other solver and store must give its potentials, and leave
// nothing behind.
#include "case_folder.hpp"

namespace {

constexpr const char *BARGE =
    "box --length 2 --beam 1.2 --draft 0.5 --nu 5 --nv 4 --nw 4"; // 56 panels a quarter

// A quarter mesh has four classes and the logarithm's plane besides, so that all kinds of records are met.
Pot three_waves(const std::string &part) {
    Pot pot;
    pot.ILOG = part == "quarter" ? 1 : 0;
    pot.HBOT = "2.0";
    pot.NPER = 3;
    pot.PER = "0.4 1.1 2.3";
    pot.BETA = "40";
    return pot;
}

P2fFile solve_with(const std::string &config, const std::string &part, std::string *list = nullptr) {
    CaseFolder folder;
    prepare(folder, three_waves(part));
    folder.write("config.vrd", "IPERIO=3\n" + config);
    // What the configuration sets must not stand in the control file.
    if (config.find("ISOR") != std::string::npos) {
        std::string pot = folder.read("run.pot");
        const std::string line = "0 ISOR\n";
        folder.write("run.pot", pot.erase(pot.find(line), line.size()));
    }
    make_mesh(folder, std::string(BARGE) + " --part " + part);
    P2fFile p2f = solved(folder).p2f;
    if (list != nullptr)
        *list = folder.list();
    EXPECT_EQ(folder.files(), (std::vector<std::string>{"config.vrd", "fnames.vrd", "run.gdf", "run.p2f",
                                                        "run.pot", "stderr.txt", "stdout.txt", "vorda.lis"}));
    return p2f;
}

template <class A> double largest_difference(const A &a, const A &b) {
    double difference = 0, largest = 0;
    for (std::int64_t i = 0; i < a.size(); ++i) {
        difference = std::max(difference, static_cast<double>(std::abs(a.data()[i] - b.data()[i])));
        largest = std::max(largest, static_cast<double>(std::abs(a.data()[i])));
    }
    return difference / largest;
}

TEST(Settings, GiveThePotentialsOfTheDirectSolution) {
    constexpr double TOLERANCE = 1e-4; // of the largest potential: the iteration ends at a residual of 1e-6
    const struct {
        const char *config;
        const char *in_list; // what the report must hold
    } rows[] = {{"ISOLVE=1\nMAXSCR=1000\nIUSESCR=1\n", "-1      -1"},
                {"ISOLVE=0\nMAXSCR=1000\n", "stored in physical memory"},
                {"ISOLVE=0\nMAXSCR=28\n",
                 "scratch files, one period at a time: NEQN is above MAXSCR"}, // half of the rows
                {"", "run completed"},
                {"ISOLVE=3\nMAXSCR=100\nIUSESCR=1\n", "at a time: IUSESCR=1"},
                {"ISOLVE=1\nMAXSCR=40\n", "Switched from direct solver to block-iterative solver"}};
    for (const char *part : {"quarter", "full"}) {
        const P2fFile direct = solve_with("ISOLVE=1\nMAXSCR=1000\n", part);
        for (const auto &[config, in_list] : rows) {
            SCOPED_TRACE(std::string(part) + " " + config);
            std::string list;
            const P2fFile other = solve_with(config, part, &list);
            EXPECT_LT(largest_difference(direct.PHIR, other.PHIR), TOLERANCE);
            EXPECT_LT(largest_difference(direct.PHID, other.PHID), TOLERANCE);
            EXPECT_NE(list.find(in_list), std::string::npos) << list;
        }
    }
}

// Largest iteration count in the report of a run at five periods.
int largest_count(const std::string &mesh) {
    CaseFolder folder;
    Pot pot;
    pot.NPER = 5;
    pot.PER = "0.2 0.6 1.0 1.6 2.2";
    prepare(folder, pot);
    folder.write("config.vrd", "IPERIO=3\nMAXSCR=2000\n");
    make_mesh(folder, mesh);
    folder.solve();
    std::istringstream list(folder.list());
    std::string line;
    int largest = 0;
    int rows = 0;
    for (bool table = false; std::getline(list, line);) {
        std::istringstream row(line);
        int index, thread, radiation, diffraction;
        double period;
        std::string time;
        if (table && row >> index >> thread >> period >> time >> radiation >> diffraction) {
            largest = std::max({largest, radiation, diffraction});
            ++rows;
        }
        table = table || line.find("(max iterations)") != std::string::npos;
    }
    EXPECT_EQ(rows, 5) << folder.list();
    return largest;
}

TEST(Iterations, DoNotGrowWithTheMesh) {
    for (const char *hull :
         {"hemisphere --nu %d --nv %d", "box --length 2 --beam 2 --draft 1 --nu %d --nv %d"}) {
        int counts[3];
        for (int level = 0; level < 3;
             ++level) { // 256, 1024, 4096 panels of the whole hemisphere; a box with as many
            const bool box = std::string(hull).find("box") == 0;
            const int n = (box ? 5 : 8) << level;
            char mesh[100];
            std::snprintf(mesh, sizeof mesh, hull, n, n);
            counts[level] = largest_count(std::string(mesh) + (box ? " --nw " + std::to_string(n) : ""));
            RecordProperty((box ? "box" : "hemisphere") + std::to_string(level), counts[level]);
            EXPECT_LT(counts[level], 20) << mesh;
        }
        EXPECT_LE(std::abs(counts[2] - counts[0]), 3);
    }
}

// Right-hand sides of sources are of the order of the wave number times the unit of length, those of
// rotations of the square of the barge's length in it: neither may decide how well the default solver solves.
TEST(Iterations, AreAsGoodInAnyUnitOfLength) {
    constexpr double TOLERANCE =
        2e-4; // of the largest velocity: with interior panels the residual ends at 1e-4
    for (const char *ULEN : {"1", "1000"}) {
        SCOPED_TRACE(ULEN);
        CaseFolder folder;
        Pot pot;
        pot.ISOR = pot.IRR = pot.ILOG = 1;
        pot.NPER = 2;
        pot.PER = "6 30";
        pot.BETA = "30";
        prepare(folder, pot);
        make_mesh(folder,
                  std::string("box --length 100 --beam 20 --draft 5 --nu 10 --nv 3 --nw 2 --lid --ulen ") +
                      ULEN);
        folder.write("config.vrd", "ISOLVE=1\nMAXSCR=1000\n");
        const SolvedRun direct = solved(folder);
        folder.write("config.vrd", "MAXSCR=1000\n");
        const SolvedRun iterative = solved(folder);
        for (int t = 1; t <= pot.NPER; ++t) {
            EXPECT_LT(largest_difference(direct.p2f.VELD.slice(t), iterative.p2f.VELD.slice(t)), TOLERANCE)
                << t;
            EXPECT_LT(largest_difference(direct.p2f.VELR.slice(t), iterative.p2f.VELR.slice(t)), TOLERANCE)
                << t;
        }
        EXPECT_NEAR(iterative.c.B(4, 4, 1) / direct.c.B(4, 4, 1), 1, 1e-3);
    }
}

TEST(Scratch, SourcesAndVelocitiesAreThoseOfTheRunInMemory) {
    const P2fFile direct = solve_with("ISOR=1\nISCATT=1\nISOLVE=1\nMAXSCR=1000\n", "quarter");
    for (const char *config : {"ISOLVE=1\nMAXSCR=1000\nIUSESCR=1\n", "", "ISOLVE=3\nMAXSCR=100\n"}) {
        SCOPED_TRACE(config);
        const P2fFile other = solve_with(std::string("ISOR=1\nISCATT=1\n") + config, "quarter");
        EXPECT_LT(largest_difference(direct.PHID, other.PHID), 1e-4);
        EXPECT_LT(largest_difference(direct.SRCR, other.SRCR), 1e-4);
        EXPECT_LT(largest_difference(direct.VELR, other.VELR), 1e-4);
        EXPECT_LT(largest_difference(direct.SRCD, other.SRCD), 1e-4);
        EXPECT_LT(largest_difference(direct.VELD, other.VELD), 1e-4);
    }
}

TEST(Scratch, AnInterruptedRunLeavesNothing) {
    for (const char *signal : {"INT", "TERM", "HUP"}) {
        CaseFolder folder;
        Pot pot = three_waves("full");
        pot.NPER = 200;
        pot.PER = "200*0.7";
        prepare(folder, pot);
        folder.write("config.vrd", "IPERIO=3\n");
        make_mesh(folder, "box --length 2 --beam 1.2 --draft 0.5 --nu 10 --nv 8 --nw 8");
        // A shell starts its background jobs with SIGINT ignored, and whoever started this may ignore others.
        folder.shell(
            "env --default-signal=INT,TERM,HUP vorda & p=$!; for i in $(seq 100); do ls SCRATCH* >/dev/null "
            "2>&1 && break; sleep 0.02; done; "
            "ls SCRATCH* > seen.txt; kill -" +
            std::string(signal) + " $p; wait $p");
        EXPECT_NE(folder.read("seen.txt").find("SCRATCH"), std::string::npos);
        for (const std::string &name : folder.files())
            EXPECT_EQ(name.find("SCRATCH"), std::string::npos) << name;
        EXPECT_FALSE(folder.exists("run.p2f"));
    }
}

} // namespace
