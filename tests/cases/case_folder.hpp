// A temporary folder in which the built program runs, and what it leaves there.
#pragma once

#include "post/coefficients.hpp"
#include "temporary_folder.hpp"

#include <cmath>
#include <complex>
#include <sstream>

class CaseFolder : public TemporaryFolder {
  public:
    // Runs a command in the folder; programs of the build are found by their names. Returns the exit code.
    int shell(const std::string &command) const {
        const std::string line = "cd '" + path().string() + "' && PATH='" VORDA_BINARY_DIR "':$PATH && ( " +
                                 command + " ) </dev/null >stdout.txt 2>stderr.txt";
        const int status = std::system(line.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // Runs the solver, which exits with 0 whatever happens.
    void solve(const std::string &environment = "") const {
        EXPECT_EQ(shell(environment + " vorda"), 0) << list();
    }
    std::string list() const { return read("vorda.lis"); }
    // Whether the report has the text; else the failure shows it.
    testing::AssertionResult lists(const std::string &text) const {
        return list().find(text) != std::string::npos ? testing::AssertionSuccess()
                                                      : testing::AssertionFailure() << text << " is not in\n"
                                                                                    << list();
    }

    // The results of run.p2f.
    void results(P2fFile &p2f, Coefficients &coefficients, const std::string &name = "run.p2f") const {
        std::string error;
        ASSERT_TRUE(read_p2f((path() / name).string(), p2f, error)) << error << list();
        ASSERT_TRUE(form_coefficients(p2f, coefficients));
    }
};

// With a file system of a few pages in small/, where files cannot grow. Mounting takes root.
class SmallDisk : public CaseFolder {
  public:
    explicit SmallDisk(const std::string &size) {
        mounted = shell("mkdir small && mount -t tmpfs -o size=" + size + " none small") == 0;
    }
    ~SmallDisk() {
        if (mounted)
            shell("umount small");
    }
    bool mounted = false;
};

// The text of a control file; what a case does not set stands at a plain value.
struct Pot {
    std::string HBOT = "0.0";
    std::string XBODY = "0 0 0 0";
    int ISOR = 0, IRR = 0;
    int IQUAD = 0, ILOG = 0, IDIAG = 0;
    int IRAD = 1, IDIFF = 1;
    std::string PER = "1.0";
    int NPER = 1;
    std::string BETA = "0.0";
    int NBETA = 1;
    std::string text() const {
        std::ostringstream out;
        out << "test run\n0 I2ND\n"
            << ISOR << " ISOR\n"
            << IRR << " IRR\n"
            << HBOT << " " << XBODY << "\n"
            << IQUAD << " " << ILOG << " " << IDIAG << "\n"
            << IRAD << " " << IDIFF << "\n1 1 1 1 1 1\n"
            << NPER << "\n"
            << PER << "\n"
            << NBETA << "\n"
            << BETA << "\n";
        return out.str();
    }
};

// Prepares a direct in-core run of run.gdf and run.pot; PER are wave numbers.
inline void prepare(const CaseFolder &folder, const Pot &pot, const std::string &more_config = "") {
    folder.write("config.vrd", "MAXSCR=5000\nISOLVE=1\nIPERIO=3\n" + more_config);
    folder.write("fnames.vrd", "run.gdf\nrun.pot\n");
    folder.write("run.pot", pot.text());
}
inline void make_mesh(const CaseFolder &folder, const std::string &arguments,
                      const std::string &name = "run.gdf") {
    ASSERT_EQ(folder.shell("vorda-mesh " + arguments + " -o " + name), 0) << folder.read("stderr.txt");
}

// What a run leaves.
struct SolvedRun {
    P2fFile p2f;
    Coefficients c;
};
// Damping of an axisymmetric body over the energy that its waves carry away (K |X|^2 / 2 in heave, half of it
// in surge, over the factor of the group velocity), less 1; `taken`: what plates or lids take.
inline double energy_defect(const SolvedRun &run, int mode, int t, double taken = 0) {
    const double k = static_cast<double>(run.p2f.WVNH(t)), H = static_cast<double>(run.p2f.HBOT);
    const double D = H > 0 ? std::tanh(k * H) + k * H / std::pow(std::cosh(k * H), 2) : 1;
    const double flux = k * std::norm(std::complex<double>(run.c.X(mode, 1, t))) / ((mode == 3 ? 2 : 4) * D);
    return (static_cast<double>(run.c.B(mode, mode, t)) - taken) / flux - 1;
}
// Runs what is prepared in the folder.
inline SolvedRun solved(const CaseFolder &folder) {
    SolvedRun run;
    folder.solve();
    folder.results(run.p2f, run.c);
    return run;
}
inline SolvedRun solve_mesh(const std::string &mesh, const Pot &pot, const std::string &more_config = "") {
    const CaseFolder folder;
    prepare(folder, pot, more_config);
    make_mesh(folder, mesh);
    return solved(folder);
}
