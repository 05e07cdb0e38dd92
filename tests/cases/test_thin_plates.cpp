// Truth for plates of dipole panels: the same panels as vortex rings in double precision, with their images
// at the limit frequencies; the added mass 8/3 rho a^3 of a disc in unbounded fluid (H. Lamb, Hydrodynamics,
// art. 108); the energy of the radiated waves, and what a porous plate takes out of it; equivalent runs.
#include "panel_lists.hpp"
#include "source_fields.hpp"
#include "whole_fields.hpp"

#include <algorithm>
#include <sstream>

namespace {

using panel_lists::made, panel_lists::gdf, panel_lists::solve_gdf;

Pot waves(const std::string &PER, const std::string &depth = "0") {
    Pot pot;
    pot.HBOT = depth;
    pot.PER = PER;
    pot.NPER = static_cast<int>(std::count(PER.begin(), PER.end(), ' ')) + 1;
    return pot;
}

double A33(const SolvedRun &run, int t) {
    return static_cast<double>(run.c.A(3, 3, t));
}

// Vertical velocity at height h above point (x, y) of a horizontal ring of unit circulation through the
// vertices of panel j and its images in x = 0 and y = 0: the law of Biot and Savart.
double ring_velocity(const P2fFile &p2f, int j, double x, double y, double h) {
    double w = 0;
    for (const int image : {0, 1, 2, 3}) {
        const double sx = image == 1 || image == 2 ? -1 : 1, sy = image >= 2 ? -1 : 1;
        for (int v = 1; v <= 4; ++v) {
            const int next = v % 4 + 1;
            const double ax = x - sx * static_cast<double>(p2f.XVER(v, 1, j)),
                         ay = y - sy * static_cast<double>(p2f.XVER(v, 2, j)),
                         bx = x - sx * static_cast<double>(p2f.XVER(next, 1, j)),
                         by = y - sy * static_cast<double>(p2f.XVER(next, 2, j));
            const double cross = ax * by - ay * bx, ra = std::hypot(ax, ay, h), rb = std::hypot(bx, by, h);
            const double dx = ax - bx, dy = ay - by, length = std::hypot(dx, dy);
            if (length < 1e-9)
                continue;
            // Distance from the line squared, times length squared.
            const double area2 = cross * cross + h * h * length * length;
            w += sx * sy * cross * ((ax * dx + ay * dy) / ra - (bx * dx + by * dy) / rb) / area2;
        }
    }
    return w;
}

// Heave added mass of the disc of the run by rings; `sign` is that of the image in the free surface, 0: none.
double added_mass_of_rings(const P2fFile &p2f, int sign) {
    const int n = p2f.NEQN;
    std::vector<std::vector<double>> rows;
    for (int i = 1; i <= n; ++i) {
        const double x = static_cast<double>(p2f.XCT(1, i)), y = static_cast<double>(p2f.XCT(2, i)),
                     depth = -static_cast<double>(p2f.XCT(3, i));
        std::vector<double> row;
        for (int j = 1; j <= n; ++j)
            row.push_back(ring_velocity(p2f, j, x, y, 0) +
                          (sign != 0 ? sign * ring_velocity(p2f, j, x, y, 2 * depth) : 0.0));
        row.push_back(1);
        rows.push_back(row);
    }
    for (std::size_t k = 0; k < rows.size(); ++k) { // the diagonal leads
        for (std::size_t i = k + 1; i < rows.size(); ++i) {
            const double f = rows[i][k] / rows[k][k];
            for (std::size_t j = k; j <= rows.size(); ++j)
                rows[i][j] -= f * rows[k][j];
        }
    }
    double mass = 0;
    std::vector<double> jump(rows.size());
    for (std::size_t k = rows.size(); k-- > 0;) {
        jump[k] = rows[k].back();
        for (std::size_t j = k + 1; j < rows.size(); ++j)
            jump[k] -= rows[k][j] * jump[j];
        jump[k] /= rows[k][k];
        mass += 4 * jump[k] * static_cast<double>(p2f.PMOM(1, static_cast<int>(k) + 1));
    }
    return std::abs(mass) * 4 * 3.14159265358979;
}

TEST(Disc, IsASheetOfVortexRings) {
    constexpr double TOLERANCE = 2e-4; // near the panels' far field
    const SolvedRun deep = solve_mesh("disc --depth 20 --nu 4 --nw 6", waves("0.5"));
    EXPECT_NEAR(A33(deep, 1) / added_mass_of_rings(deep.p2f, 0), 1, TOLERANCE);
    const SolvedRun near = solve_mesh("disc --depth 0.4 --nu 4 --nw 6", waves("0 -1"));
    // No potential on the surface, then a rigid lid.
    EXPECT_NEAR(A33(near, 1) / added_mass_of_rings(near.p2f, 1), 1, TOLERANCE);
    EXPECT_NEAR(A33(near, 2) / added_mass_of_rings(near.p2f, -1), 1, TOLERANCE);
}

TEST(Disc, TendsToTheKnownAddedMass) {
    double before = 0, defect = 0;
    for (const int rings : {6, 12, 24}) {
        const SolvedRun run =
            solve_mesh("disc --depth 20 --nu 4 --nw " + std::to_string(rings), waves("0.5"));
        defect = A33(run, 1) / (8.0 / 3) - 1;
        if (before != 0) {
            EXPECT_GT(before / defect, 1.6); // first order in the mesh
            EXPECT_LT(before / defect, 2.2);
        }
        before = defect;
    }
    EXPECT_GT(defect, 0);
    EXPECT_LT(defect, 0.03);
}

// What porous plates take out of the motion in a mode.
double taken(const SolvedRun &run, int mode, int t, double DPORB) {
    double sum = 0;
    for (int ip = 1; ip <= run.p2f.NEQN; ++ip)
        sum += run.p2f.NSYMG * static_cast<double>(run.p2f.WVNH(t)) * DPORB *
               static_cast<double>(run.p2f.PMOM(1, ip)) *
               std::norm(c64(run.p2f.PHIR(ip, run.p2f.MODPOS(mode), t)));
    return sum;
}

TEST(Disc, DampingIsTheEnergyOfTheRadiatedWaves) {
    constexpr double TOLERANCE = 0.006; // four source points against one field point a panel
    for (const char *depth : {"0", "2"}) {
        for (const int setting : {0, 1, 2, 3, 4, 5}) { // IQUAD, ILOG; ISCATT; the iterative solver on scratch
            Pot pot = waves("0.5 1.5", depth);
            pot.IQUAD = setting < 4 ? setting & 1 : 0;
            pot.ILOG = setting < 4 ? setting >> 1 : 0;
            const SolvedRun run = solve_mesh("disc --depth 0.5 --nu 4 --nw 6", pot,
                                             setting == 4   ? "ISCATT=1\n"
                                             : setting == 5 ? "ISOLVE=0\nIUSESCR=1\n"
                                                            : "");
            for (int t = 1; t <= 2; ++t)
                EXPECT_LT(std::abs(energy_defect(run, 3, t)), TOLERANCE)
                    << depth << " " << setting << " " << t;
        }
    }
}

TEST(Disc, PorosityTakesOutItsShareOfTheEnergy) {
    for (const char *depth : {"0", "2"}) {
        Pot pot = waves("0.5 1.5", depth);
        pot.ISOR = 1;
        const SolvedRun closed = solve_mesh("disc --depth 0.5 --nu 4 --nw 6", pot);
        const SolvedRun reactive = solve_mesh("disc --depth 0.5 --nu 4 --nw 6 --dpora 0.4", pot);
        const SolvedRun porous = solve_mesh("disc --depth 0.5 --nu 4 --nw 6 --dporb 0.4", pot);
        for (int t = 1; t <= 2; ++t) {
            EXPECT_LT(std::abs(energy_defect(reactive, 3, t)), 0.001);
            EXPECT_LT(std::abs(energy_defect(porous, 3, t, taken(porous, 3, t, 0.4))), 0.003);
            EXPECT_GT(energy_defect(porous, 3, t), 0.2);
            EXPECT_GT(std::abs(A33(reactive, t) / A33(closed, t) - 1), 0.1);
            // The flow through the plate is its own velocity and what the pores let through.
            const fields::Field heave{true, porous.p2f.MODPOS(3), 0, 3, t};
            for (int ip = 1; ip <= porous.p2f.NEQN; ++ip) {
                const c64 jump = fields::potential(porous.p2f, ip, heave);
                const c64 expected = 1.0 - c64(0, 0.4) * static_cast<double>(porous.p2f.WVNH(t)) * jump;
                const c64 got =
                    fields::along_normal(porous.p2f, ip, fields::velocity_of_sources(porous.p2f, ip, heave));
                EXPECT_LT(std::abs(got - expected), 1e-4) << ip;
            }
        }
    }
}

TEST(HullOverADisc, KeepsTheEnergyAndTheVelocities) {
    for (const int IQUAD : {0, 1}) {
        Pot pot = waves("0.5 1.0", IQUAD == 0 ? "0" : "3");
        pot.IQUAD = IQUAD;
        pot.ILOG = 1;
        pot.ISOR = 1;
        const SolvedRun run = solve_gdf(
            gdf(made("hemisphere --nu 8 --nv 8") + made("disc --depth 1.5 --nu 6 --nw 6", "1 0 0 0")), pot);
        for (int t = 1; t <= 2; ++t)
            EXPECT_LT(std::abs(energy_defect(run, 3, t)), 0.02) << IQUAD;
        EXPECT_LT(fields::normal_velocity_error(run.p2f), 1e-3);
        // On the hull as well as on one alone; the potentials of the disc are jumps.
        const auto hull = [](const P2fFile &p2f, int ip) { return p2f.IDIP(ip) == 0; };
        EXPECT_LT(fields::tangential_velocity_error(run.p2f, 0.3, hull), 0.1);
        // The source problem has the same dipoles as the potential problem.
        const fields::Field heave{true, run.p2f.MODPOS(3), 0, 3, 1};
        for (int ip = 1; ip <= run.p2f.NEQN; ++ip) {
            if (run.p2f.IDIP(ip) == 0)
                continue;
            const c64 jump = fields::potential(run.p2f, ip, heave),
                      strength(run.p2f.SRCR(ip, heave.column, 1));
            EXPECT_LT(std::abs(strength * -12.566371 - jump), 0.05 * std::abs(jump)) << ip;
        }
    }
}

TEST(HullOverADisc, AFixedDiscStandsInTheFlow) {
    Pot pot = waves("0.5");
    pot.ISOR = 1;
    const SolvedRun run = solve_gdf(
        gdf(made("hemisphere --nu 6 --nv 6") + made("disc --depth 1.5 --nu 4 --nw 6", "3 0 0 0")), pot);
    const fields::Field heave{true, run.p2f.MODPOS(3), 0, 3, 1};
    double jump = 0;
    for (int ip = 1; ip <= run.p2f.NEQN; ++ip) {
        const c64 through =
            fields::along_normal(run.p2f, ip, fields::velocity_of_sources(run.p2f, ip, heave));
        const double own = run.p2f.IDIP(ip) == 3 ? 0 : static_cast<double>(run.p2f.VEL(3, ip));
        EXPECT_LT(std::abs(through - own), 1e-4) << ip;
        if (run.p2f.IDIP(ip) == 3)
            jump = std::max(jump, std::abs(fields::potential(run.p2f, ip, heave)));
    }
    EXPECT_GT(jump, 0.05); // it stops the flow that the hull makes there
    // Forces are those on the hull, of a body near a wall.
    for (const int i : {1, 3, 5}) {
        EXPECT_GT(run.c.B(i, i, 1), 0.0f) << i;
        for (const int j : {1, 3, 5})
            EXPECT_NEAR(run.c.A(i, j, 1), run.c.A(j, i, 1), 0.01 * A33(run, 1)) << i << j;
    }
}

// The resistance of a porous plate is none at infinite frequency: the hull is alone.
TEST(HullOverADisc, APorousOneIsOpenAtInfiniteFrequency) {
    const panel_lists::List hull = made("hemisphere --nu 5 --nv 5");
    Pot pot = waves("0 1");
    pot.ISOR = 1;
    const SolvedRun alone = solve_gdf(gdf(hull), pot);
    for (const char *config : {"", "IUSESCR=1\n", "ISOLVE=0\n"}) {
        const SolvedRun with =
            solve_gdf(gdf(made("disc --depth 1.3 --nu 3 --nw 4", "1 0.1 0.2 0") + hull), pot, config);
        const auto on_hull = [](const whole_fields::Place &place) { return place.at[4] == 0; };
        for (const double error : whole_fields::difference(alone, with, on_hull, 1).largest)
            EXPECT_LT(error, 1e-5) << config;
        for (int ip = 1; ip <= with.p2f.NEQN; ++ip)
            if (with.p2f.IDIP(ip) != 0) {
                EXPECT_EQ(with.p2f.PHIR(ip, 1, 1), c32(0));
            }
        EXPECT_GT(whole_fields::difference(alone, with, on_hull).largest[whole_fields::POTENTIAL],
                  0.01); // in the wave
    }
}

} // namespace
