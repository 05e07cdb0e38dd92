// Truth: an extra mode that repeats a rigid one, and what the files of the two passes must hold.
#include "case_folder.hpp"

namespace {

constexpr const char *BARGE = "box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3";
// Single precision; the normals go through the PRE file with six digits.
constexpr double TOLERANCE = 1e-5;

// MOD file with the heave of the PRE file as only mode, of the symmetry class of rigid mode ISYM.
std::string heave_again(const CaseFolder &folder, const std::string &pre, int ISYM = 3) {
    const std::string command = "awk 'NR==2 {print \"repeated\\nheave\"; print $1,$2,$3; print 1; print " +
                                std::to_string(ISYM) +
                                "} NR>2 {print $7} END {for(i=0;i<7;i++) print \"0 0 0 0 0 0 0\"}' " + pre;
    EXPECT_EQ(folder.shell(command), 0);
    return folder.read("stdout.txt");
}

Pot two_waves() {
    Pot pot;
    pot.NPER = 2;
    pot.PER = "0.6 1.7";
    pot.BETA = "30";
    return pot;
}

SolvedRun both_passes(const std::string &mesh, const Pot &pot) {
    CaseFolder folder;
    prepare(folder, pot, "NEWMDS=1\n");
    make_mesh(folder, mesh);
    folder.solve();
    EXPECT_TRUE(folder.lists(" VORDA run 1 completed -- now run SHAPEX"));
    EXPECT_FALSE(folder.exists("run.p2f"));
    folder.write("run.mod", heave_again(folder, "run.pre"));
    return solved(folder);
}

TEST(ExtraModes, RepeatedHeaveIsHeave) {
    for (const char *part : {"quarter", "half-x", "full"}) {
        for (const int IQUAD : {0, 1}) {
            SCOPED_TRACE(std::string(part) + (IQUAD == 1 ? ", Gauss" : ""));
            Pot pot = two_waves();
            pot.ISOR = 1;
            pot.IQUAD = IQUAD;
            pot.HBOT = IQUAD == 1 ? "1.5" : "0";
            const auto [p2f, c] = both_passes(std::string(BARGE) + " --part " + part, pot);
            ASSERT_EQ(p2f.NMODES, 7);
            const auto column = [&p2f = p2f](const Array<c32, 3> &a, int mode, int t, int axis = 0) {
                return &a(1, axis == 0 ? p2f.MODPOS(mode) : 3 * (p2f.MODPOS(mode) - 1) + axis, t);
            };
            for (int t = 1; t <= 2; ++t) {
                for (int i = 0; i < p2f.NEQN; ++i) {
                    EXPECT_LT(std::abs(column(p2f.SRCR, 7, t)[i] - column(p2f.SRCR, 3, t)[i]), 1e-5f);
                    for (const int axis : {1, 2, 3})
                        EXPECT_LT(std::abs(column(p2f.VELR, 7, t, axis)[i] - column(p2f.VELR, 3, t, axis)[i]),
                                  1e-5f);
                }
                const double size = static_cast<double>(c.A(3, 3, t));
                for (const int i : {3, 7}) {
                    for (const int j : {3, 7}) {
                        EXPECT_NEAR(c.A(i, j, t), c.A(3, 3, t), TOLERANCE * size) << i << j;
                        EXPECT_NEAR(c.B(i, j, t), c.B(3, 3, t), TOLERANCE * size) << i << j;
                    }
                }
                EXPECT_LT(std::abs(c.X(7, 1, t) - c.X(3, 1, t)),
                          TOLERANCE * static_cast<double>(std::abs(c.X(3, 1, t))));
                EXPECT_GT(std::abs(c.X(3, 1, t)), 0.01f);
            }
        }
    }
}

// Two barges side by side, each with an extra mode.
class ExtraModesOfTwo : public testing::Test {
  protected:
    void SetUp() override {
        prepare(folder, two_waves(), "NEWMDS(1)=1\nNEWMDS(2)=1\n");
        folder.write("run.gdf", "two barges\n0 9.80665\n2\none.gdf\n0 -1.5 0 0\n1 1\n1 1 1 1 1 1\n"
                                "two.gdf\n0 1.5 0 0\n1 1\n1 1 1 1 1 1\n");
        make_mesh(folder, BARGE, "one.gdf");
        make_mesh(folder, BARGE, "two.gdf");
        folder.solve();
    }
    CaseFolder folder;
};

TEST_F(ExtraModesOfTwo, StayInTheFirstPassUntilBothModFilesAreThere) {
    for (const std::string there : {"one", "two"}) {
        SCOPED_TRACE(there);
        const std::string missing = there == "one" ? "two" : "one";
        const std::string mod = heave_again(folder, there + ".pre");
        folder.write(there + ".mod", mod);
        folder.shell("rm -f one.pre two.pre");
        folder.solve();
        EXPECT_FALSE(folder.exists("run.p2f"));
        EXPECT_FALSE(folder.exists(there + ".pre"));
        EXPECT_TRUE(folder.exists(missing + ".pre"));
        EXPECT_EQ(folder.read(there + ".mod"), mod);
        EXPECT_TRUE(folder.lists(" VORDA run 1 completed -- now run SHAPEX"));
        const std::string waits = there == "one" ? "NBDY=2" : "NBDY=1";
        EXPECT_TRUE(folder.lists(" PRE file completed for body " + waits));
        folder.shell("rm " + there + ".mod; vorda"); // both PRE files again
    }
}

TEST_F(ExtraModesOfTwo, HaveTheirModesBehindTheirRigidOnes) {
    for (const std::string name : {"one", "two"})
        folder.write(name + ".mod", heave_again(folder, name + ".pre"));
    const auto [p2f, c] = solved(folder);
    ASSERT_EQ(p2f.NMODES, 14);
    for (int t = 1; t <= 2; ++t) {
        const double size = TOLERANCE * static_cast<double>(c.A(3, 3, t));
        EXPECT_NEAR(c.A(7, 7, t), c.A(3, 3, t), size);
        EXPECT_NEAR(c.A(14, 14, t), c.A(10, 10, t), size);
        EXPECT_NEAR(c.A(7, 14, t), c.A(3, 10, t), size);
        EXPECT_NEAR(c.B(14, 7, t), c.B(10, 3, t), size);
        EXPECT_GT(std::abs(c.A(3, 10, t)), 100 * size);
    }
}

} // namespace
