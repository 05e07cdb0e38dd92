// Truth for the fluid in a closed tank: it moves with surge, sway and heave as a rigid body; in roll its
// inertia about the axis through its centre is a Fourier series. Runs that must agree.
#include "panel_lists.hpp"
#include "source_fields.hpp"
#include "whole_fields.hpp"

#include <sstream>

namespace {

constexpr double LENGTH = 1.6, BEAM = 1.0, HEIGHT = 0.8, DEPTH = 0.5, VOLUME = LENGTH * BEAM * HEIGHT;

Pot tank_pot(int IRRX) {
    Pot pot;
    pot.IRR = 10 + IRRX;
    pot.IDIFF = -1;
    pot.NBETA = 0;
    pot.BETA = "";
    return pot;
}

std::string tank_mesh(int n, const std::string &part = "quarter") {
    std::ostringstream out;
    out << "tank --length " << LENGTH << " --beam " << BEAM << " --height " << HEIGHT << " --depth " << DEPTH
        << " --nu " << 6 * n << " --nv " << 4 * n << " --nw " << 6 * n << " --part " << part;
    return out.str();
}

// Inertia per density of the fluid in a rectangle, per length, about its centre. With phi = y z + psi, psi
// the series of sin(k z) sinh(k y) that has no flow through the horizontal walls and -2 z through the
// vertical ones.
double roll_inertia(double b, double h) {
    double sum = (h * b * b * b - b * h * h * h) / 12;
    for (int m = 0; m < 20; ++m) {
        const double k = (2 * m + 1) * 3.14159265358979 / h, sign = m % 2 == 0 ? 1 : -1;
        const double tanh = std::tanh(k * b / 2), d = -8 * sign / (h * k * k);
        sum += 4 * sign * d / k * ((b / 2) / k - 2 * tanh / (k * k));
    }
    return sum;
}

void expect_the_fluid_of_the_box(const SolvedRun &run, double translation, double rotation) {
    const auto A = [&](int i, int j) { return static_cast<double>(run.c.A(i, j, 1)); };
    for (int i = 1; i <= 3; ++i)
        EXPECT_NEAR(A(i, i) / VOLUME, 1, translation) << i;
    const double z = -DEPTH - HEIGHT / 2;
    EXPECT_NEAR(A(2, 4), -z * A(2, 2), 1e-4);
    EXPECT_NEAR((A(4, 4) - z * z * A(2, 2)) / (LENGTH * roll_inertia(BEAM, HEIGHT)), 1, rotation);
    EXPECT_NEAR((A(5, 5) - z * z * A(1, 1)) / (BEAM * roll_inertia(LENGTH, HEIGHT)), 1, rotation);
    EXPECT_NEAR(A(6, 6) / (HEIGHT * roll_inertia(LENGTH, BEAM)), 1, rotation);
}

TEST(Tank, MovesAsARigidBodyAndRollsByTheSeries) {
    const SolvedRun coarse = solve_mesh(tank_mesh(1), tank_pot(1));
    expect_the_fluid_of_the_box(coarse, 0.02, 0.03);
    const SolvedRun fine = solve_mesh(tank_mesh(2), tank_pot(1));
    expect_the_fluid_of_the_box(fine, 0.007, 0.01);
}

// Potentials up to their constant, sources and velocities. A depth that the tank reaches below, or that has
// no waves, means nothing to it.
TEST(Tank, DependsNeitherOnReferencePanelNorPartDepthPeriodOrStore) {
    Pot pot = tank_pot(1);
    pot.ISOR = 1;
    const SolvedRun first = solve_mesh(tank_mesh(1), pot);
    EXPECT_LT(fields::normal_velocity_error(first.p2f), 2e-5); // single precision of the source equations
    const int last = first.p2f.NEQN;
    struct Other {
        int IRRX;
        const char *part, *depth, *PER, *config;
    };
    for (const Other &o :
         {Other{17, "quarter", "0", "1", ""}, Other{last, "quarter", "0.7", "0", "IUSESCR=1\n"},
          Other{5, "half-x", "0", "-1", ""}, Other{300, "full", "200000", "2.5", ""}}) {
        SCOPED_TRACE(o.part);
        pot.IRR = 10 + o.IRRX;
        pot.HBOT = o.depth;
        pot.PER = o.PER;
        const SolvedRun run = solve_mesh(tank_mesh(1, o.part), pot, o.config);
        ASSERT_FALSE(run.c.A.empty());
        for (int i = 1; i <= 6; ++i)
            EXPECT_NEAR(run.c.A(i, i, 1), first.c.A(i, i, 1), 2e-5) << i;
        const auto difference = whole_fields::difference(first, run);
        EXPECT_LT(difference.largest[whole_fields::SOURCE], 2e-5);
        EXPECT_LT(difference.largest[whole_fields::VELOCITY], 2e-5);
        // The class that is even in both planes vanishes at the reference panel.
        EXPECT_EQ(run.p2f.PHIR(o.IRRX, run.p2f.MODPOS(3), 1), c32(0));
        for (int ip = 1; ip <= run.p2f.NEQN; ++ip)
            EXPECT_EQ(run.p2f.PHIR(ip, 1, 1).imag(), 0);
    }
}

// The walls lean: the panels do not balance, and what they leave must not fall to the reference panel alone.
// With a baffle.
TEST(Tank, LeaningWallsMakeNoDifferenceToThat) {
    panel_lists::List list = panel_lists::made(tank_mesh(1)) +
                             panel_lists::made("disc --radius 0.3 --depth 1 --nu 3 --nw 3", "1 0 0 0");
    for (panel_lists::GdfPanel &panel : list)
        for (panel_lists::Point &p : panel.vertex)
            p[0] *= 1.6 + 1.2 * p[2];
    const SolvedRun first = panel_lists::solve_gdf(panel_lists::gdf(list), tank_pot(1));
    for (const int IRRX : {30, 60, 84}) {
        const SolvedRun run = panel_lists::solve_gdf(panel_lists::gdf(list), tank_pot(IRRX));
        for (const int mode : {1, 3, 5})
            EXPECT_NEAR(run.c.A(mode, mode, 1) / first.c.A(mode, mode, 1), 1, 3e-5) << IRRX << " " << mode;
    }
}

// A spherical tank from the hemisphere of a hull: normals turned out, and its mirror image on top.
panel_lists::List spherical_tank(int n) {
    panel_lists::List tank;
    for (const panel_lists::GdfPanel &panel :
         panel_lists::made("hemisphere --nu " + std::to_string(n) + " --nv " + std::to_string(n))) {
        for (const double side : {1, -1}) {
            panel_lists::GdfPanel half = panel;
            for (panel_lists::Point &p : half.vertex)
                p[2] = side * p[2] - 2;
            if (side > 0)
                std::reverse(half.vertex.begin(), half.vertex.end());
            tank.push_back(half);
        }
    }
    return tank;
}

TEST(Tank, ItsSourcesMoveTheFluidAsARigidBody) {
    double before = 0;
    for (const int n : {5, 10}) {
        Pot pot = tank_pot(3);
        pot.ISOR = 1;
        const SolvedRun run = panel_lists::solve_gdf(panel_lists::gdf(spherical_tank(n)), pot);
        double error = 0;
        for (int mode = 1; mode <= 3; ++mode) {
            for (int ip = 1; ip <= run.p2f.NEQN; ++ip) {
                const fields::Field field{true, run.p2f.MODPOS(mode), 0, mode, 1};
                const fields::Vector v = fields::velocity_of_sources(run.p2f, ip, field);
                for (std::size_t axis = 0; axis < 3; ++axis)
                    error += std::norm(v[axis] - (static_cast<int>(axis) + 1 == mode ? 1.0 : 0.0));
            }
        }
        error = std::sqrt(error / (3 * run.p2f.NEQN));
        EXPECT_LT(error, n == 5 ? 0.2 : 0.11);
        if (before > 0) {
            EXPECT_NEAR(before / error, 2, 0.3); // first order
        }
        before = error;
    }
}

} // namespace
