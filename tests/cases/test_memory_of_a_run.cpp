// Truth: a period does not know of the periods before it, nor of the threads; a run takes no more memory than
// its report says.
#include "case_folder.hpp"

#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// All numbers of period t of an array whose last index is the period.
template <int R> std::string of_period(const Array<c32, R> &values, int t, int periods) {
    const std::size_t bytes = static_cast<std::size_t>(values.size() / periods) * sizeof(c32);
    return {reinterpret_cast<const char *>(values.data()) + bytes * static_cast<std::size_t>(t - 1), bytes};
}

struct Kept {
    const char *name, *mesh, *config;
    int ISOR, IRR;
};
const Kept KEPT[] = {
    {"direct", "cylinder --radius 1 --draft 0.5 --nu 6 --nv 4 --nw 3", "ISOLVE=1\n", 0, 0},
    {"sources", "cylinder --radius 1 --draft 0.5 --nu 6 --nv 4 --nw 3 --lid", "ISOLVE=1\n", 1, 1},
    {"iterative", "box --nu 6 --nv 4 --nw 3", "ISOLVE=0\n", 1, 0},
    {"blocks", "box --nu 6 --nv 4 --nw 3", "ISOLVE=3\n", 1, 0},
};

class KeptStore : public testing::TestWithParam<Kept> {
  protected:
    void run(const std::string &PER, int NPER, int threads, P2fFile &p2f) const {
        const CaseFolder folder;
        Pot pot;
        pot.HBOT = "3";
        pot.ISOR = GetParam().ISOR;
        pot.IRR = GetParam().IRR;
        pot.ILOG = GetParam().IRR == 0 ? 0 : 1;
        pot.PER = PER;
        pot.NPER = NPER;
        prepare(folder, pot);
        folder.write("config.vrd", std::string("MAXSCR=5000\nIPERIO=3\n") + GetParam().config);
        make_mesh(folder, GetParam().mesh);
        folder.solve("OMP_NUM_THREADS=" + std::to_string(threads));
        Coefficients c;
        folder.results(p2f, c);
    }
};

// Long and short waves and both limit frequencies, where other parts of a row are filled.
TEST_P(KeptStore, LeavesNothingOfOnePeriodInAnother) {
    const std::string PER[] = {"0.7", "0", "2.9", "-1", "0.2"};
    P2fFile all, two;
    ASSERT_NO_FATAL_FAILURE(run("0.7 0 2.9 -1 0.2", 5, 1, all));
    ASSERT_NO_FATAL_FAILURE(run("0.7 0 2.9 -1 0.2", 5, 2, two));
    for (int t = 1; t <= 5; ++t) {
        SCOPED_TRACE(PER[t - 1]);
        P2fFile alone;
        ASSERT_NO_FATAL_FAILURE(run(PER[t - 1], 1, 1, alone));
        const auto compare = [&](const auto &first, const auto &second, const auto &own) {
            EXPECT_EQ(of_period(first, t, 5), of_period(own, 1, 1));
            EXPECT_EQ(of_period(second, t, 5), of_period(own, 1, 1));
        };
        compare(all.PHIR, two.PHIR, alone.PHIR);
        compare(all.PHID, two.PHID, alone.PHID);
        if (GetParam().ISOR == 1) {
            compare(all.SRCR, two.SRCR, alone.SRCR);
            compare(all.VELR, two.VELR, alone.VELR);
            compare(all.SRCD, two.SRCD, alone.SRCD);
            compare(all.VELD, two.VELD, alone.VELD);
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Runs, KeptStore, testing::ValuesIn(KEPT),
                         [](const auto &row) { return std::string(row.param.name); });

// Most megabytes that the solver has had in memory in this folder.
double peak(const CaseFolder &folder) {
    const pid_t child = fork();
    if (child == 0) {
        const int quiet = open("/dev/null", O_RDWR);
        if (quiet < 0 || dup2(quiet, STDERR_FILENO) < 0 || chdir(folder.path().c_str()) != 0)
            _exit(1);
        execl(VORDA_BINARY_DIR "/vorda", "vorda", nullptr);
        _exit(1);
    }
    int status = 0;
    rusage usage{};
    if (child < 0 || wait4(child, &status, 0, &usage) != child)
        return -1;
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

// Between a run of 24 panels and one of 1156 stands what the report tells, and what LAPACK has of its own.
TEST(MemoryOfARun, IsWhatTheReportTells) {
#ifdef VORDA_NO_SIMD_CLONES
    GTEST_SKIP() << "the sanitizers keep memory that is given back";
#endif
    constexpr double LAPACK = 8; // buffers of two threads, which a small matrix does not fill [MB]
    for (const char *config : {"ISOLVE=0\n", "ISOLVE=1\n"}) {
        for (const int ISOR : {0, 1}) {
            SCOPED_TRACE(std::string(config) + " ISOR " + std::to_string(ISOR));
            double found[2] = {};
            std::string report;
            for (const int m : {2, 17}) {
                const CaseFolder folder;
                Pot pot;
                pot.ISOR = ISOR;
                pot.PER = "0.5 1 1.5 2";
                pot.NPER = 4;
                prepare(folder, pot);
                folder.write("config.vrd", std::string("MAXSCR=5000\nIPERIO=3\n") + config);
                make_mesh(folder,
                          "hemisphere --part full --nu " + std::to_string(m) + " --nv " + std::to_string(m));
                found[m == 17] = peak(folder);
                ASSERT_TRUE(folder.exists("run.p2f"));
                report = folder.list();
            }
            const std::string text = "the run takes ";
            const std::size_t at = report.find(text);
            ASSERT_NE(at, std::string::npos) << report;
            const double told = std::stod(report.substr(at + text.size()));
            EXPECT_LT(found[1] - found[0], told + LAPACK);
            EXPECT_GT(found[1] - found[0], 0.7 * told); // nothing is told twice
        }
    }
}

} // namespace
