// Runs over several processes. Truth: the run of one process by the solver itself, byte for byte.
#include "drift_fields.hpp"
#include "equal_results.hpp"

#include <random>

namespace {

// How mpirun starts processes on a machine that is too small for them. A leak checker, where one is built in,
// would report blocks of modules that the library has loaded and dropped again.
std::string mpirun(int processes) {
    return "ASAN_OPTIONS=detect_leaks=0 OMPI_ALLOW_RUN_AS_ROOT=1 OMPI_ALLOW_RUN_AS_ROOT_CONFIRM=1 timeout 60 "
           "mpirun "
           "--oversubscribe --bind-to none -n " +
           std::to_string(processes);
}
// The same for a run with these variables; each process leaves its number in pid.RANK.
std::string mpi(int processes, const std::string &variables = "") {
    return mpirun(processes) + " sh -c 'echo $$ >pid.$OMPI_COMM_WORLD_RANK; " + variables +
           " exec vorda-mpi'";
}

class Processes : public testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(VORDA_BINARY_DIR "/vorda-mpi"))
            GTEST_SKIP() << "vorda-mpi is not built: no MPI was found";
        if (folder_.shell(mpirun(2) + " true") != 0)
            GTEST_SKIP() << "mpirun cannot start processes here";
    }
    CaseFolder folder_;
};

Pot few_waves() {
    Pot pot;
    pot.NPER = 5;
    pot.PER = "0.4 0.7 1.0 1.3 1.9";
    pot.NBETA = 2;
    pot.BETA = "0 30";
    return pot;
}

void prepare_box(const CaseFolder &folder, const Pot &pot, const std::string &config, bool lid = false) {
    prepare(folder, pot);
    folder.write("config.vrd", "IPERIO=3\n" + config);
    make_mesh(folder,
              std::string("box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3 --part quarter") +
                  (lid ? " --lid" : ""));
}

// A run of each kind: its folder is prepared by `make`.
struct Kind {
    const char *name;
    std::array<int, 2> processes;
    void (*make)(const CaseFolder &);
};
const Kind KINDS[] = {
    {"ordinary", {1, 2}, [](const CaseFolder &f) { prepare_box(f, few_waves(), "MAXSCR=5000\nISOLVE=1\n"); }},
    {"sources_of_finite_depth_by_iteration",
     {2, 5},
     [](const CaseFolder &f) {
         Pot pot = few_waves();
         pot.ISOR = 1;
         pot.HBOT = "1.5";
         prepare_box(f, pot, "MAXSCR=5000\nISCATT=1\n");
     }},
    {"interior_panels",
     {2, 3},
     [](const CaseFolder &f) {
         Pot pot = few_waves();
         pot.ISOR = pot.IRR = pot.ILOG = pot.IQUAD = 1;
         prepare_box(f, pot, "MAXSCR=5000\nISOLVE=1\n", true);
     }},
    {"lid_body",
     {2, 5},
     [](const CaseFolder &f) {
         Pot pot = few_waves();
         pot.ILOG = 1;
         prepare_box(f, pot, "MAXSCR=5000\nISOLVE=1\nIFSLID=1\n");
         make_mesh(f, "box --length 2 --beam 1.2 --draft 0.5 --nu 3 --nv 2 --nw 2", "hull.gdf");
         f.write("lid.gdf", "lid\n1 9.80665\n0 0\n 1\n 1.6 0 0 1.2 0 0 1.2 1 0 1.6 1 0\n");
         f.write("run.gdf",
                 "hull and lid\n0 9.80665\n2\nhull.gdf\n0 0 0 0\n1 1\n1 1 1 1 1 1\n1 0\nlid.gdf\n0 0 0 0\n"
                 "0 1\n0 0 0 0 0 0\n3 0.1\n");
     }},
    {"drift",
     {2, 3},
     [](const CaseFolder &f) {
         Pot pot = drift::drift_pot();
         pot.NPER = 4;
         pot.PER = "0.5 0.9 1.2 1.4";
         drift::prepare_drift(f, pot, drift::BOX + "quarter");
         f.solve(); // makes the file of the free surface
     }},
    {"tank",
     {2, 5},
     [](const CaseFolder &f) {
         Pot pot = few_waves();
         pot.IRR = 11;
         pot.IDIFF = -1;
         pot.NBETA = 0;
         pot.BETA = "";
         prepare(f, pot);
         make_mesh(f, "tank --length 1.6 --beam 1 --height 0.8 --nu 4 --nv 3 --nw 3 --part quarter");
     }},
    {"scratch",
     {2, 3},
     [](const CaseFolder &f) { prepare_box(f, few_waves(), "MAXSCR=5000\nISOLVE=1\nIUSESCR=1\n"); }},
    {"blocks_on_scratch",
     {2, 5},
     [](const CaseFolder &f) { prepare_box(f, few_waves(), "MAXSCR=20\nISOLVE=3\n"); }},
};

class Kinds : public Processes, public testing::WithParamInterface<Kind> {};

TEST_P(Kinds, AnyNumberGivesTheSameBytes) {
    GetParam().make(folder_);
    folder_.solve();
    const std::string alone = folder_.read("run.p2f");
    std::filesystem::remove(folder_.path() / "vorda.lis.bak");
    const std::vector<std::string> files = folder_.files();
    ASSERT_FALSE(alone.empty()) << folder_.list();
    // By one store for all, and by a store for each process as on a cluster of small computers.
    for (const int n : GetParam().processes) {
        const bool cluster = n >= 3;
        SCOPED_TRACE(n);
        EXPECT_EQ(
            folder_.shell(mpi(n, cluster ? "VORDA_MPI_NODE_SIZE=1" : "") + " && rm pid.* vorda.lis.bak"), 0)
            << folder_.read("stderr.txt");
        EXPECT_TRUE(equal_results(alone, folder_.read("run.p2f")));
        EXPECT_TRUE(folder_.lists(std::to_string(n) + " processes on " + std::to_string(cluster ? n : 1)));
        EXPECT_EQ(folder_.files(), files);
    }
}
INSTANTIATE_TEST_SUITE_P(All, Kinds, testing::ValuesIn(KINDS),
                         [](const auto &kind) { return std::string(kind.param.name); });

// What a failed run leaves: the message in the report, an exit code, no result.
void expect_a_fault(const CaseFolder &folder, int code, const std::string &message) {
    EXPECT_NE(code, 0);
    EXPECT_NE(code, 124) << "it did not end by itself";
    EXPECT_TRUE(folder.lists(message)) << folder.read("stderr.txt");
    EXPECT_FALSE(folder.lists("run completed"));
    EXPECT_FALSE(folder.exists("run.p2f"));
}

TEST_F(Processes, AFaultOfAnyOfThemEndsTheRunWithItsMessage) {
    prepare_box(folder_, few_waves(), "MAXSCR=5000\nISOLVE=2\nIUSESCR=1\n");
    // The others make their scratch files elsewhere.
    int code = folder_.shell(mpi(3, "TMPDIR=/proc"));
    expect_a_fault(folder_, code, "Error opening scratch file");
    EXPECT_TRUE(folder_.lists("(process 1 of 3, on ") || folder_.lists("(process 2 of 3, on "));
    folder_.write("run.gdf", "no geometry\n");
    code = folder_.shell(mpi(2));
    expect_a_fault(folder_, code, "Error reading GDF file");
    EXPECT_FALSE(folder_.lists("processes on"));
}

// A process that is stopped or killed when the report has some rows.
class Death : public Processes {
  protected:
    void SetUp() override {
        Processes::SetUp();
        if (IsSkipped())
            return;
        Pot pot = few_waves();
        pot.NPER = 30;
        pot.PER = "10*0.5 10*0.8 10*1.1";
        prepare(folder_, pot);
        make_mesh(folder_, "hemisphere --nu 14 --nv 14");
        folder_.solve();
        whole_ = folder_.read("run.p2f");
        folder_.write("config.vrd", folder_.read("config.vrd") + "CHECKP=1\n");
    }
    // Sends a signal to process `rank` of three when `rows` periods are in the report. Returns the exit code.
    int strike(const std::string &signal, int rank, int rows) {
        const std::string look = "n=0; until [ $(grep -c ':[0-9][0-9]  *-1' vorda.lis) -ge " +
                                 std::to_string(rows) +
                                 " ] || [ $n -ge 5000 ]; do n=$((n+1)); sleep 0.002; done; ";
        return folder_.shell("rm -f run.p2f vorda.lis; " + mpi(3, "VORDA_MPI_PATIENCE=3 OMP_NUM_THREADS=1") +
                             " & job=$!; " + look + "kill -" + signal + " $(cat pid." + std::to_string(rank) +
                             "); wait $job");
    }
    void expect_that_it_goes_on() {
        EXPECT_FALSE(folder_.exists("run.p2f")) << "the run was over before the signal";
        EXPECT_TRUE(folder_.exists("run.vck"));
        EXPECT_EQ(folder_.shell(mpi(2)), 0) << folder_.read("stderr.txt");
        EXPECT_TRUE(folder_.lists("taken over from the checkpoint: "));
        EXPECT_TRUE(equal_results(whole_, folder_.read("run.p2f")));
        EXPECT_FALSE(folder_.exists("run.vck"));
    }
    std::string whole_;
};

TEST_F(Death, OfAProcessEndsTheRunAndItGoesOnWhereItStood) {
    const unsigned seed = std::random_device{}();
    std::mt19937 random(seed);
    for (const int rank : {2, 0}) {
        const int rows = 1 + static_cast<int>(random() % 12);
        SCOPED_TRACE("rank " + std::to_string(rank) + " behind " + std::to_string(rows) + " rows, seed " +
                     std::to_string(seed));
        const int code = strike("KILL", rank, rows);
        EXPECT_NE(code, 0);
        EXPECT_NE(code, 124) << "it hangs";
        if (rank != 0) {
            EXPECT_TRUE(folder_.lists("A process of the run has died"));
            EXPECT_TRUE(folder_.lists("(process 2 of 3, on "));
        }
        expect_that_it_goes_on();
    }
}

TEST_F(Death, OfOneThatOnlyStaysSilentIsNoticed) {
    const int code = strike("STOP", 1, 3);
    expect_a_fault(folder_, code, "A process of the run does not answer any more");
    EXPECT_TRUE(folder_.lists("(process 1 of 3, on "));
    expect_that_it_goes_on();
}

// Cases of a study, of which one cannot be solved; then nothing, one case, or all cases are changed.
TEST_F(Processes, SolveTheCasesOfAStudyThatAreNotDone) {
    CaseFolder &study = folder_;
    prepare(study, few_waves());
    make_mesh(study, "hemisphere --nu 4 --nv 4");
    study.shell(
        "mkdir all && mv run.gdf all && for c in a b c d; do mkdir all/$c; cp *.vrd run.pot all/$c; "
        "echo ../run.gdf >all/$c/fnames.vrd; echo run.pot >>all/$c/fnames.vrd; done; rm all/c/run.pot");
    study.write("study.csv", "folder, draught\nall/b, 1\n# all/a\nall/d, 2\n");
    const struct {
        const char *before, *arguments;
        int processes, code;
        const char *summary;
    } rows[] = {
        {"true", "study.csv", 1, 0, "2 solved, 0 done before, 0 failed"},
        {"true", "all", 3, 1, "1 solved, 2 done before, 1 failed"},
        {"cp run.pot all/c", "all", 2, 0, "1 solved, 3 done before, 0 failed"},
        {"echo NTRD=1 >>all/b/config.vrd; rm all/c/run.p2f", "all", 2, 0,
         "2 solved, 2 done before, 0 failed"},
        {"echo >>all/run.gdf", "all", 2, 0, "4 solved, 0 done before, 0 failed"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.summary);
        EXPECT_EQ(study.shell(std::string(row.before) + " && " + mpirun(row.processes) + " vorda-study " +
                              row.arguments + " >table.txt"),
                  row.code)
            << study.read("stderr.txt");
        EXPECT_NE(study.read("table.txt").find(row.summary), std::string::npos) << study.read("table.txt");
    }
    EXPECT_TRUE(study.exists("all/c/run.p2f"));
}

} // namespace
