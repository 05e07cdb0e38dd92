// Truth: runs that must agree. The same body as full, half and quarter mesh, moved, turned, beside another
// body or a wall, on one thread and on two, by one quadrature or another, in one unit of length or another.
#include "source_fields.hpp"

namespace {

constexpr const char *BARGE = "box --length 2 --beam 1.2 --draft 0.5 --nu 4 --nv 3 --nw 3";
// Single precision of potentials summed over the hull, relative to the largest coefficient.
constexpr double TOLERANCE = 1e-3;

double largest(const Coefficients &c) {
    double value = 0;
    for (std::int64_t i = 0; i < c.A.size(); ++i)
        value = std::max(value, std::abs(static_cast<double>(c.A.data()[i])));
    return value;
}

Pot two_waves() {
    Pot pot;
    pot.NPER = 2;
    pot.PER = "0.6 1.7";
    pot.NBETA = 2;
    pot.BETA = "30 90";
    return pot;
}

// A, B and the moduli of X of all modes of both runs.
void expect_same(const SolvedRun &a, const SolvedRun &b, int heading_a, int heading_b) {
    const double size = largest(a.c);
    for (int t = 1; t <= a.p2f.NPER; ++t) {
        for (int i = 1; i <= 6; ++i) {
            for (int j = 1; j <= 6; ++j) {
                EXPECT_NEAR(a.c.A(i, j, t), b.c.A(i, j, t), TOLERANCE * size) << i << j;
                EXPECT_NEAR(a.c.B(i, j, t), b.c.B(i, j, t), TOLERANCE * size) << i << j;
            }
            EXPECT_NEAR(std::abs(a.c.X(i, heading_a, t)), std::abs(b.c.X(i, heading_b, t)), TOLERANCE * size)
                << i;
        }
    }
}

TEST(Barge, IsTheSameMovedAndTurned) {
    Pot there = two_waves();
    there.IQUAD = 1; // Gauss points, too
    const SolvedRun here = solve_mesh(BARGE, there);
    there.XBODY = "3.5 -2.0 0.0 25.0";
    there.BETA = "55 115"; // the headings turn with the body
    const SolvedRun moved = solve_mesh(BARGE, there);
    EXPECT_EQ(moved.p2f.NSYMR, 1);
    EXPECT_EQ(moved.p2f.NEQN, 4 * here.p2f.NEQN);
    expect_same(here, moved, 1, 1);
    expect_same(here, moved, 2, 2);
    // The wave reaches the moved body later by its phase.
    const double K = static_cast<double>(here.p2f.WVNH(1)), beta = 55 * 0.017453292;
    const auto shift = std::polar(1.0, -K * (3.5 * std::cos(beta) - 2.0 * std::sin(beta)));
    EXPECT_LT(
        std::abs(std::complex<double>(here.c.X(3, 1, 1)) * shift - std::complex<double>(moved.c.X(3, 1, 1))),
        TOLERANCE * largest(here.c));
}

// Two barges along x at +-distance/2, the second turned about.
SolvedRun solve_pair(double distance, const Pot &pot) {
    CaseFolder folder;
    prepare(folder, pot);
    make_mesh(folder, BARGE, "barge.gdf");
    std::ostringstream global;
    global << "pair\n0 9.80665\n2\n";
    for (int side : {1, -1})
        global << "barge.gdf\n"
               << side * distance / 2 << " 0 0 " << (side > 0 ? 0 : 180) << "\n1 1\n1 1 1 1 1 1\n";
    folder.write("run.gdf", global.str());
    return solved(folder);
}

TEST(TwoBodies, FarApartAreAloneAndCloseAreReciprocal) {
    const SolvedRun alone = solve_mesh(BARGE, two_waves()), far = solve_pair(400, two_waves()),
                    close = solve_pair(3, two_waves());
    ASSERT_EQ(far.p2f.NMODES, 12);
    const double size = largest(alone.c);
    for (int t = 1; t <= 2; ++t) {
        for (int i = 1; i <= 6; ++i) {
            for (int b = 0; b <= 1; ++b) {
                // What the other body scatters falls with the square root of the distance.
                EXPECT_NEAR(alone.c.A(i, i, t), far.c.A(i + 6 * b, i + 6 * b, t), TOLERANCE * size) << i;
                EXPECT_NEAR(alone.c.B(i, i, t), far.c.B(i + 6 * b, i + 6 * b, t), TOLERANCE * size) << i;
            }
        }
    }
    double coupling = 0;
    for (int t = 1; t <= 2; ++t) {
        for (int i = 1; i <= 12; ++i) {
            for (int j = 1; j < i; ++j) {
                EXPECT_NEAR(close.c.A(i, j, t), close.c.A(j, i, t), 0.01 * largest(close.c)) << i << " " << j;
                EXPECT_NEAR(close.c.B(i, j, t), close.c.B(j, i, t), 0.01 * largest(close.c)) << i << " " << j;
            }
        }
        coupling = std::max(coupling, std::abs(static_cast<double>(close.c.A(3, 9, t))));
    }
    EXPECT_GT(coupling, 0.02 * largest(close.c)); // they do feel each other
}

// The mesh with its symmetry indices exchanged for such of a wall.
SolvedRun solve_beside_wall(const std::string &mesh, const std::string &indices, const std::string &walls,
                            const Pot &pot) {
    const CaseFolder folder;
    prepare(folder, pot);
    make_mesh(folder, mesh);
    std::string gdf = folder.read("run.gdf");
    gdf.replace(gdf.find(indices), indices.size(), walls);
    folder.write("run.gdf", gdf);
    return solved(folder);
}

TEST(Wall, EqualsTheBodyAndItsMirrorImage) {
    Pot pot = two_waves();
    pot.BETA = "35 145";
    const SolvedRun pair = solve_pair(4, pot);
    const std::string barge = BARGE;
    const SolvedRun wall =
        solve_beside_wall(barge + " --part full --offset 2 0 0", "\n 0 0\n", "\n -1 0\n", pot);
    // Half of it beside the same wall, and turned by 90 degrees beside a wall in y.
    const SolvedRun half =
        solve_beside_wall(barge + " --part half-y --offset 2 0 0", "\n 0 1\n", "\n -1 1\n", pot);
    pot.BETA = "125 235";
    const SolvedRun turned = solve_beside_wall(
        "box --length 1.2 --beam 2 --draft 0.5 --nu 3 --nv 4 --nw 3 --part half-x --offset 0 2 0", "\n 1 0\n",
        "\n 1 -1\n", pot);
    const double size = largest(wall.c);
    for (int t = 1; t <= 2; ++t) {
        for (const SolvedRun *same : {&half, &turned}) {
            EXPECT_NEAR(wall.c.A(3, 3, t), same->c.A(3, 3, t), TOLERANCE * size);
            EXPECT_NEAR(wall.c.B(3, 3, t), same->c.B(3, 3, t), TOLERANCE * size);
            for (const int heading : {1, 2})
                EXPECT_LT(std::abs(wall.c.X(3, heading, t) - same->c.X(3, heading, t)), TOLERANCE * size);
        }
        // Modes even in x: body 1 moves as its image does. Sway and roll of the turned body have the other
        // sign, and only heave has no lever about the origin that the wall's modes are taken about.
        EXPECT_NEAR(wall.c.A(3, 3, t), pair.c.A(3, 3, t) + pair.c.A(3, 9, t), TOLERANCE * size);
        EXPECT_NEAR(wall.c.B(3, 3, t), pair.c.B(3, 3, t) + pair.c.B(3, 9, t), TOLERANCE * size);
        EXPECT_NEAR(wall.c.A(2, 2, t), pair.c.A(2, 2, t) - pair.c.A(2, 8, t), TOLERANCE * size);
        for (int i : {1, 2, 3}) {
            const auto mean =
                (std::complex<double>(pair.c.X(i, 1, t)) + std::complex<double>(pair.c.X(i, 2, t))) / 2.0;
            EXPECT_LT(std::abs(std::complex<double>(wall.c.X(i, 1, t)) - mean), TOLERANCE * size) << i;
        }
    }
}

// Exciting forces of surge and heave of a hemisphere of n x n panels a quarter.
struct Forces {
    std::complex<double> X[2];
};
struct Option {
    const char *name;
    int IQUAD, ILOG, IDIAG, ISCATT;
};
Forces forces(int n, const Option &option) {
    Pot pot;
    pot.PER = "1.2";
    pot.IQUAD = option.IQUAD;
    pot.ILOG = option.ILOG;
    pot.IDIAG = option.IDIAG;
    const std::string count = std::to_string(n);
    const SolvedRun run = solve_mesh("hemisphere --nu " + count + " --nv " + count, pot,
                                     "ISCATT=" + std::to_string(option.ISCATT) + "\n");
    return {{run.c.X(1, 1, 1), run.c.X(3, 1, 1)}};
}
double distance(const Forces &a, const Forces &b) {
    return std::max(std::abs(a.X[0] - b.X[0]) / std::abs(b.X[0]),
                    std::abs(a.X[1] - b.X[1]) / std::abs(b.X[1]));
}

TEST(Options, AgreeWithinTheDiscretisationErrorWhichFallsWithTheMesh) {
    const Option plain{"plain", 0, 0, 0, 0};
    // The limit of the mesh, from two fine ones: the error goes with the square of the panel size.
    const Forces fine = forces(20, plain), finest = forces(40, plain);
    const Forces limit{
        {finest.X[0] + (finest.X[0] - fine.X[0]) / 3.0, finest.X[1] + (finest.X[1] - fine.X[1]) / 3.0}};
    const double error = distance(forces(6, plain), limit);
    EXPECT_LT(error, 0.02);
    for (const Option &option :
         {Option{"ISCATT", 0, 0, 0, 1}, Option{"IQUAD", 1, 0, 0, 0}, Option{"ILOG", 0, 1, 0, 0},
          Option{"IDIAG", 0, 0, 1, 0}, Option{"all", 1, 1, 1, 1}}) {
        SCOPED_TRACE(option.name);
        const double coarse = distance(forces(6, option), limit), finer = distance(forces(12, option), limit);
        EXPECT_LT(coarse, 3 * error);
        EXPECT_GT(coarse / finer, 3);
        EXPECT_LT(coarse / finer, 6);
    }
}

// What a user sees of a run in a unit of length: the coefficients that vorda-p2f prints with a density, and
// the velocities of diffraction over the largest of them.
struct Seen {
    std::vector<double> coefficients;
    std::vector<std::complex<double>> velocities;
};
Seen seen(const std::string &mesh, const Pot &pot, double ULEN) {
    const CaseFolder folder;
    prepare(folder, pot, "IPERIO=1\n");
    make_mesh(folder, mesh + " --ulen " + std::to_string(ULEN));
    const SolvedRun run = solved(folder);
    Seen result;
    const Scales scales = scales_of(run.p2f, 1000);
    const auto add = [&](const Table &table, std::initializer_list<const char *> names) {
        for (const auto &row : table.rows)
            for (std::size_t k = 0; k < row.size(); ++k)
                for (const char *name : names)
                    if (table.columns[k].name == name)
                        result.coefficients.push_back(std::get<double>(row[k]));
    };
    add(radiation_table(run.p2f, scales, run.c), {"added mass", "damping"});
    add(exciting_table(run.p2f, scales, run.c), {"modulus"});
    double size = 0;
    for (std::int64_t i = 0; i < run.p2f.VELD.size(); ++i)
        size = std::max(size, static_cast<double>(std::abs(run.p2f.VELD.data()[i])));
    for (std::int64_t i = 0; i < run.p2f.VELD.size(); ++i)
        result.velocities.push_back(std::complex<double>(run.p2f.VELD.data()[i]) / size);
    return result;
}

// One that is large against the body makes small panels: nothing may be measured in it.
TEST(UnitOfLength, MakesNoDifference) {
    // Of rounding, which grows a little where powers of small coordinates vanish: measured 1.3e-6, at 5000
    // 4e-6; of coefficients that are differences more.
    constexpr double DRIFT = 1e-5, OF_THE_LARGEST = 3e-5;
    const struct {
        std::string mesh;
        int IRR;
        std::vector<double> ULEN;
    } rows[] = {
        {"hemisphere --nu 8 --nv 8", 0, {300, 5000}},
        {std::string(BARGE) + " --lid", 1, {300}}, // waterline sides at the height of the lid's centroids
        {std::string(BARGE) + " --part full --offset 0.2 0.1 0", 0, {2.5}}}; // rotations are coupled
    for (const auto &row : rows)
        for (const int IDIAG : {0, 1}) {
            Pot pot;
            pot.PER = "2.0";
            pot.BETA = "30";
            pot.ISOR = 1;
            pot.IRR = pot.ILOG = row.IRR;
            pot.IDIAG = IDIAG;
            const Seen one = seen(row.mesh, pot, 1);
            const double size = *std::max_element(one.coefficients.begin(), one.coefficients.end());
            for (const double ULEN : row.ULEN) {
                SCOPED_TRACE(testing::Message() << row.mesh << " " << IDIAG << " " << ULEN);
                const Seen other = seen(row.mesh, pot, ULEN);
                ASSERT_EQ(other.coefficients.size(), one.coefficients.size());
                for (std::size_t i = 0; i < one.coefficients.size(); ++i)
                    EXPECT_NEAR(other.coefficients[i], one.coefficients[i], OF_THE_LARGEST * size) << i;
                double drift = 0;
                for (std::size_t i = 0; i < one.velocities.size(); ++i)
                    drift = std::max(drift, std::abs(other.velocities[i] - one.velocities[i]));
                EXPECT_LT(drift, DRIFT);
            }
        }
}

TEST(Threads, OneAndMoreGiveTheSameBytes) {
    for (const char *PER : {"0.5 1.0 1.5", "0.8"}) {
        std::string bytes[3];
        for (int k = 0; k < 3; ++k) {
            CaseFolder folder;
            Pot pot = two_waves();
            pot.PER = PER;
            pot.NPER = std::string(PER).size() > 3 ? 3 : 1;
            pot.ISOR = pot.ILOG = 1;
            prepare(folder, pot, "ISCATT=1\n"); // every matrix there is
            // 208 panels: more than one strip of the factorisation and many blocks of rows.
            make_mesh(folder, "box --length 2 --beam 1 --draft 0.5 --nu 4 --nv 4 --nw 4 --part full");
            // With six each of three periods has two.
            folder.solve("OMP_NUM_THREADS=" + std::to_string(k == 2 ? 6 : k + 1));
            bytes[k] = folder.read("run.p2f");
            // The text block holds dates, times and thread numbers.
            const std::size_t start = bytes[k].find(" VORDA run date"),
                              end = bytes[k].find("*" + std::string(71, ' '));
            ASSERT_NE(start, std::string::npos);
            ASSERT_NE(end, std::string::npos);
            bytes[k].erase(start, end - start);
        }
        EXPECT_TRUE(bytes[0] == bytes[1]);
        EXPECT_TRUE(bytes[0] == bytes[2]);
        EXPECT_GT(bytes[0].size(), 50000u);
    }
}

} // namespace
