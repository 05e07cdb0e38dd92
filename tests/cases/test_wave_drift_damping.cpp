// Whole runs for wave drift damping. Truth: the same body with and without its symmetry planes, in other
// stores, by other solvers and on other numbers of threads; the condition on the hull.
#include "drift_fields.hpp"

namespace {

using namespace drift;

TEST(DriftDamping, PartsOfAMeshGiveTheWhole) {
    for (const std::string &mesh : {CYLINDER, BOX}) {
        P2fFile quarter;
        CaseFolder first;
        Pot pot = drift_pot();
        pot.HBOT = mesh == BOX ? "1.5" : "0.0";
        prepare_drift(first, pot, mesh + "quarter");
        run_drift(first, quarter);
        EXPECT_NE(first.list().find("Creates the free surface data file FDF"), std::string::npos);
        const auto panels = read_fdf(first);
        for (const std::string part : {"half-x", "half-y", "full"}) {
            SCOPED_TRACE(mesh + part);
            CaseFolder folder;
            prepare_drift(folder, pot, mesh + part);
            write_fdf(folder, panels, part != "half-x", part != "half-y");
            P2fFile p2f;
            run_drift(folder, p2f);
            EXPECT_NE(folder.list().find(" Input from Free Surface Data File:      run.fdf"),
                      std::string::npos);
            expect_same(quarter, p2f, 1e-3);
        }
    }
}

// The matrices in memory and on scratch files, direct and by iteration: every setting that is admitted.
TEST(DriftDamping, StoresAndSolversGiveTheSame) {
    P2fFile direct;
    for (const char *config :
         {"MAXSCR=5000\nISOLVE=1\n", "MAXSCR=5000\nISOLVE=0\n", "MAXSCR=5000\nISOLVE=1\nIUSESCR=1\n",
          "MAXSCR=5000\nISOLVE=0\nIUSESCR=1\n", "MAXSCR=2\nISOLVE=0\n", "MAXSCR=9\nISOLVE=0\n",
          "MAXSCR=5000\nISOLVE=-1\n", "MAXSCR=9\nISOLVE=-1\n", "MAXSCR=9\nISOLVE=400\n"}) {
        SCOPED_TRACE(config);
        CaseFolder folder;
        Pot pot = drift_pot();
        pot.PER = "0.9 1.4";
        pot.NPER = 2;
        prepare_drift(folder, pot, BOX + "half-y", config);
        P2fFile p2f;
        run_drift(folder, direct.NEQN == 0 ? direct : p2f);
        if (p2f.NEQN > 0)
            expect_same(direct, p2f, 1e-4);
        const bool by_iteration = std::string(config).find("ISOLVE=1") == std::string::npos;
        EXPECT_EQ(folder.list().find("-1 (-1)  -1 (-1)") == std::string::npos, by_iteration) << folder.list();
        for (const std::string &name : folder.files())
            EXPECT_EQ(name.find("SCRATCH"), std::string::npos) << name;
    }
}

// The rows of one period, or of three side by side, on two cores each: the same bytes.
TEST(DriftDamping, DoesNotDependOnTheThreads) {
    for (const int NPER : {1, 3}) {
        P2fFile p2f[2];
        for (const int k : {0, 1}) {
            CaseFolder folder;
            Pot pot = drift_pot();
            pot.PER = "0.9 1.4 2.0";
            pot.NPER = NPER;
            pot.HBOT = "2.0";
            prepare_drift(folder, pot, BOX + "quarter");
            folder.solve("OMP_NUM_THREADS=" + std::to_string(k == 0 ? 1 : 2 * NPER));
            Coefficients c;
            folder.results(p2f[k], c);
        }
        for (int t = 1; t <= NPER; ++t) {
            const auto a = fields_of(p2f[0], t), b = fields_of(p2f[1], t);
            for (std::size_t f = 0; f < a.size(); ++f)
                EXPECT_TRUE(a[f].columns == b[f].columns) << a[f].name;
        }
    }
}

TEST(DriftDamping, OneProblemAloneIsSolvedAsInTheWholeRun) {
    const P2fFile both = drift_run(drift_pot(), BOX + "half-y");
    Pot radiation = drift_pot(), modes = drift_pot(), diffraction = drift_pot(), none = drift_pot();
    radiation.IDIFF = modes.IDIFF = -1;
    radiation.NBETA = 0;
    radiation.BETA = "";
    modes.IRAD = 0;
    diffraction.IRAD = -1;
    none.NPER = 0;
    none.PER = "";
    for (const Pot &pot : {radiation, modes, diffraction}) {
        CaseFolder folder;
        prepare_drift(folder, pot, BOX + "half-y");
        std::string text = pot.text();
        if (pot.IRAD == 0)
            text.replace(text.find("1 1 1 1 1 1"), 11, "0 1 0 0 1 0");
        folder.write("run.pot", text);
        P2fFile p2f;
        run_drift(folder, p2f);
        EXPECT_EQ(p2f.NSYMD, pot.IRAD == 0 ? 2 : 6);
        EXPECT_EQ(p2f.FSD5.empty(), pot.IDIFF < 0);
        EXPECT_EQ(p2f.FSR3.empty(), pot.IRAD < 0);
        expect_same(p2f, both, 1e-5);
    }
    const P2fFile p2f = drift_run(none, BOX + "half-y");
    EXPECT_EQ(p2f.NFSP, both.NFSP);
    EXPECT_EQ(p2f.STB2(1, 1), 0);
}

// No flow goes through the hull, with the incident wave and in the modes of motion.
TEST(DriftDamping, VelocitiesMeetTheHull) {
    Pot pot = drift_pot();
    pot.HBOT = "3.0";
    const P2fFile p = drift_run(pot, BOX + "half-x");
    for (int i = 1; i <= p.NEQN; ++i) {
        const auto through = [&](auto velocity) {
            c32 sum = 0;
            for (int c = 1; c <= 3; ++c)
                sum += p.VEL(c, i) * velocity(c);
            return sum;
        };
        constexpr f32 ROUNDING = 3e-6f;
        for (int mode = 1; mode <= 6; ++mode) {
            const int column = 3 * (p.MODPOS(mode) - 1);
            const c32 normal = through([&](int c) { return p.VELR(i, column + c, 1); });
            EXPECT_LT(std::abs(normal - p.VEL(mode, i)), ROUNDING);
        }
        for (int d = 1; d <= 3; ++d)
            EXPECT_LT(std::abs(through([&](int c) { return p.STB3(i, c, d); })), ROUNDING);
        for (int s = 1; s <= p.NSYMR; ++s) {
            EXPECT_LT(std::abs(through([&](int c) { return p.VELD(i, c, s, 1); })), ROUNDING);
            EXPECT_LT(std::abs(through([&](int c) { return p.VELD2(i, c, s, 1); })), ROUNDING);
        }
    }
}

} // namespace
