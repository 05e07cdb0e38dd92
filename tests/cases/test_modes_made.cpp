// Truth: modes that vorda-modes makes against rigid modes of the same run, and of a run of two bodies.
#include "case_folder.hpp"

namespace {

// Single precision; panels go through the PRE file with six digits.
constexpr double TOLERANCE = 2e-5;

Pot two_waves() {
    Pot pot;
    pot.NPER = 2;
    pot.PER = "0.6 1.7";
    pot.BETA = "30";
    return pot;
}

// First pass, modes, second pass.
SolvedRun both_passes(const CaseFolder &folder, const std::string &modes, const std::string &more = "") {
    folder.solve();
    folder.write("modes.toml", modes);
    EXPECT_EQ(folder.shell("vorda-modes run.pre modes.toml " + more), 0) << folder.read("stderr.txt");
    return solved(folder);
}

std::string polynomial(const std::string &terms) {
    return "[[mode]]\ntype = 'polynomial'\n" + terms + "\n";
}

} // namespace

// Sway, heave, roll and pitch once more, on parts of a barge and on all of it in another place, turned.
TEST(ModesMade, AsRigidOnesAreThese) {
    const std::string modes = polynomial("dy = [[1, 0, 0, 0]]") + polynomial("dz = [[1, 0, 0, 0]]") +
                              polynomial("dy = [[-1, 0, 0, 1]]\ndz = [[1, 0, 1, 0]]") +
                              polynomial("dx = [[1, 0, 0, 1]]\ndz = [[-1, 1, 0, 0]]");
    const int rigid[] = {2, 3, 4, 5};
    for (const char *part : {"quarter", "half-x", "full"}) {
        SCOPED_TRACE(part);
        const bool moved = std::string(part) == "full";
        Pot pot = two_waves();
        pot.XBODY = moved ? "1.5 -0.7 0 25" : "0 0 0 0";
        const CaseFolder folder;
        prepare(folder, pot, "NEWMDS=4\n");
        make_mesh(folder,
                  "box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3 --part " + std::string(part));
        const auto [p2f, c] =
            both_passes(folder, (moved ? "place = [1.5, -0.7, 0]\nheading = 25\n" : "") + modes);
        ASSERT_EQ(p2f.NMODES, 10);
        for (int t = 1; t <= 2; ++t)
            for (int k = 0; k < 4; ++k) {
                const int i = rigid[k];
                EXPECT_LT(std::abs(c.X(7 + k, 1, t) - c.X(i, 1, t)),
                          TOLERANCE * static_cast<double>(std::abs(c.X(3, 1, t))));
                for (int l = 0; l < 4; ++l) {
                    const int j = rigid[l];
                    for (const auto &[a, b] :
                         {std::pair{7 + k, 7 + l}, std::pair{7 + k, j}, std::pair{i, 7 + l}}) {
                        EXPECT_NEAR(c.A(a, b, t), c.A(i, j, t),
                                    TOLERANCE * static_cast<double>(c.A(3, 3, t)));
                        EXPECT_NEAR(c.B(a, b, t), c.B(i, j, t),
                                    TOLERANCE * static_cast<double>(c.A(3, 3, t)));
                    }
                }
            }
        // The solver's own matrix, from the same panels. (A sway that rolls with the body has the buoyancy
        // along it.)
        for (int k = 1; k < 4; ++k)
            for (int l = 1; l < 4; ++l) {
                EXPECT_NEAR(p2f.CHYD(7 + k, 7 + l), p2f.CHYD(rigid[k], rigid[l]), 1e-4) << k << l;
                EXPECT_NEAR(p2f.CHYD(rigid[k], 7 + l), p2f.CHYD(rigid[k], rigid[l]), 1e-4) << k << l;
            }
    }
}

// The panels of a barge before and behind midships as two bodies: a hinge there is a pair of their pitches.
TEST(ModesMade, AHingeIsThePitchOfTwoBodies) {
    const CaseFolder one, two;
    prepare(one, two_waves(), "NEWMDS=2\n");
    make_mesh(one, "box --length 4 --beam 1 --draft 0.5 --nu 8 --nv 3 --nw 2 --part full");
    std::istringstream in(one.read("run.gdf"));
    std::string line, half[2];
    for (int k = 0; k < 4; ++k)
        std::getline(in, line);
    int count[2] = {};
    for (bool more = true; more;) {
        std::string panel;
        double sum = 0, x = 0;
        for (int k = 0; k < 4 && (more = static_cast<bool>(std::getline(in, line))); ++k) {
            panel += line + "\n";
            std::istringstream(line) >> x;
            sum += x;
        }
        if (!more)
            break;
        half[sum > 0 ? 0 : 1] += panel;
        ++count[sum > 0 ? 0 : 1];
    }
    ASSERT_EQ(count[0], count[1]);
    prepare(two, two_waves());
    two.write(
        "run.gdf",
        "halves\n-1 9.80665\n2\nfore.gdf\n0 0 0 0\n1 1\n1 1 1 1 1 1\naft.gdf\n0 0 0 0\n1 1\n1 1 1 1 1 1\n");
    for (const int k : {0, 1})
        two.write(k == 0 ? "fore.gdf" : "aft.gdf",
                  "half\n1 9.80665\n0 0\n" + std::to_string(count[k]) + "\n" + half[k]);
    const SolvedRun bodies = solved(two),
                    whole = both_passes(one, "[[mode]]\ntype = 'hinge'\nat = [0, 0, 0.3]\naft = -0.5\n"
                                             "[[mode]]\ntype = 'hinge'\nat = [0, 0, 0]\naxis = 'z'\n");
    // About z = 0.3 a pitch takes surge along, -0.3 of it; the second one is the yaw of the fore body.
    const double to_hinge[12] = {-0.3, 0, 0, 0, 1, 0, 0.15, 0, 0, 0, -0.5, 0};
    for (int t = 1; t <= 2; ++t) {
        double A = 0, B = 0;
        std::complex<double> X = 0;
        for (int i = 1; i <= 12; ++i) {
            X += to_hinge[i - 1] * std::complex<double>(bodies.c.X(i, 1, t));
            for (int j = 1; j <= 12; ++j) {
                A += to_hinge[i - 1] * to_hinge[j - 1] * static_cast<double>(bodies.c.A(i, j, t));
                B += to_hinge[i - 1] * to_hinge[j - 1] * static_cast<double>(bodies.c.B(i, j, t));
            }
        }
        EXPECT_NEAR(whole.c.A(7, 7, t), A, 10 * TOLERANCE * A);
        EXPECT_NEAR(whole.c.B(7, 7, t), B, 10 * TOLERANCE * A);
        EXPECT_LT(std::abs(std::complex<double>(whole.c.X(7, 1, t)) - X), 10 * TOLERANCE * std::abs(X));
        EXPECT_NEAR(whole.c.A(8, 8, t), bodies.c.A(6, 6, t),
                    10 * TOLERANCE * static_cast<double>(bodies.c.A(6, 6, t)));
    }
}

// What --case writes moves the body: with its own pitch held, a mode that is a pitch takes its place, with
// mass and weight over the water.
// The moment of the waterplane by centroids of panels, 1/24 of the length long, against the exact one.
constexpr double CENTROIDS = 0.01;
TEST(ModesMade, MoveWithMassAndStiffness) {
    const CaseFolder folder;
    prepare(folder, two_waves(), "NEWMDS=1\n");
    make_mesh(folder, "box --length 2 --beam 1.2 --draft 0.5 --nu 12 --nv 2 --nw 2");
    both_passes(folder,
                polynomial("dx = [[1, 0, 0, 1]]\ndz = [[-1, 1, 0, 0]]") +
                    "[[part]]\nmass = 1230\nfrom = -1\nto = 1\nz = 0.2\nradius_z = 0.3\n",
                "--case motions.toml");
    const std::string text = folder.read("motions.toml");
    const char *names[2][2] = {{"mode 7,", "pitch,"}, {"'pitch'", "'7'"}};
    double moved[2][2] = {}, surge[2][2] = {};
    for (const int k : {0, 1}) {
        folder.write("motions.toml", text + "fixed = [" + names[1][k] + "]\n");
        ASSERT_EQ(folder.shell("vorda-p2f motions --case motions.toml --csv raos run.p2f"), 0)
            << folder.read("stderr.txt");
        std::istringstream in(folder.read("stdout.txt"));
        int modes = 0, surges = 0;
        for (std::string line; std::getline(in, line);) {
            const std::size_t at = line.find(names[0][k]), along = line.find("surge,");
            if (at != std::string::npos)
                moved[k][modes++] = std::atof(line.c_str() + line.find(',', at + 8) + 1);
            if (along != std::string::npos)
                surge[k][surges++] = std::atof(line.c_str() + along + 10);
        }
        ASSERT_EQ(modes, 2);
    }
    for (const int t : {0, 1}) {
        EXPECT_GT(surge[0][t], 0.01);
        EXPECT_NEAR(surge[0][t], surge[1][t], CENTROIDS);
        EXPECT_NEAR(moved[0][t] * 180 / 3.14159265358979, moved[1][t],
                    CENTROIDS * moved[1][t]); // told in degrees
    }
}

// The same barge with lengths in units of one and of ten metres: all results are those of the one body.
TEST(ModesMade, AreThoseOfTheBodyInAnyUnitOfLength) {
    const std::string modes = "[[mode]]\ntype = 'free-free'\nfrom = -20\nto = 20\nz = -3\n"
                              "[[mode]]\ntype = 'hinge'\nat = [0, 0, -1]\naft = -1\n";
    SolvedRun run[2];
    for (const int k : {0, 1}) {
        const CaseFolder folder;
        Pot pot;
        pot.NPER = 2;
        pot.PER = "6 9";
        prepare(folder, pot, "NEWMDS=2\n");
        folder.write("config.vrd", "MAXSCR=1000\nISOLVE=1\nNEWMDS=2\n");
        make_mesh(
            folder,
            std::string("box --length 40 --beam 12 --draft 5 --nu 5 --nv 3 --nw 3 --part half-y --ulen ") +
                (k == 0 ? "1" : "10"));
        run[k] = both_passes(folder, (k == 0 ? "" : "unit_length = 10\n") + modes);
        ASSERT_EQ(run[k].p2f.NMODES, 8);
    }
    const auto arm = [](int mode) { return mode >= 4 && mode <= 6 ? 1 : 0; };
    const auto A = [&](int i, int j) { return static_cast<double>(run[0].c.A(i, j, 1)); };
    for (int i = 1; i <= 8; ++i)
        for (int j = 1; j <= 8; ++j) {
            const double units = std::pow(10, arm(i) + arm(j)),
                         size = std::sqrt(std::fabs(A(i, i) * A(j, j)));
            for (const int t : {1, 2})
                EXPECT_NEAR(run[0].c.A(i, j, t), 1000 * units * static_cast<double>(run[1].c.A(i, j, t)),
                            1e-4 * size)
                    << i << j;
            EXPECT_NEAR(run[0].p2f.CHYD(i, j), 100 * units * static_cast<double>(run[1].p2f.CHYD(i, j)),
                        1e-4 * units * 500)
                << i << j;
        }
    EXPECT_GT(A(8, 8), 0.01 * A(5, 5));
}

// On a half along x a hinge with the symmetry of heave turns both ends: on the whole body these are two
// modes.
TEST(ModesMade, AreMirroredAsTheyAreLike) {
    SolvedRun run[2];
    for (const int k : {0, 1}) {
        const CaseFolder folder;
        prepare(folder, two_waves(), k == 0 ? "NEWMDS=1\n" : "NEWMDS=2\n");
        make_mesh(folder, std::string("box --length 4 --beam 1 --draft 0.5 --nu 6 --nv 3 --nw 2 --part ") +
                              (k == 0 ? "quarter" : "full"));
        const std::string hinge = "[[mode]]\ntype = 'hinge'\nat = [0.7, 0, 0]\n";
        run[k] = both_passes(
            folder, hinge + (k == 0 ? "like = 'heave'\n"
                                    : "[[mode]]\ntype = 'hinge'\nat = [-0.7, 0, 0]\nfore = 0\naft = -1\n"));
    }
    for (const int t : {1, 2}) {
        const auto &c = run[1].c;
        const double A = static_cast<double>(c.A(7, 7, t) + c.A(7, 8, t) + c.A(8, 7, t) + c.A(8, 8, t)),
                     B = static_cast<double>(c.B(7, 7, t) + c.B(7, 8, t) + c.B(8, 7, t) + c.B(8, 8, t));
        EXPECT_NEAR(run[0].c.A(7, 7, t), A, 10 * TOLERANCE * A);
        EXPECT_NEAR(run[0].c.B(7, 7, t), B, 10 * TOLERANCE * A);
        EXPECT_GT(std::fabs(c.A(7, 8, t)), 100 * TOLERANCE * A);
    }
}
