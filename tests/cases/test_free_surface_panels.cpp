// Truth: two ways to the same diffraction potential of a disc of no draught, hulls without treatment, and the
// energy that a lid on the water takes out.
#include "panel_lists.hpp"
#include "source_fields.hpp"
#include "whole_fields.hpp"

namespace {

using panel_lists::gdf, panel_lists::rings, panel_lists::solve_gdf;

Pot waves(const std::string &PER, int NPER, int ISOR) {
    Pot pot;
    pot.PER = PER;
    pot.NPER = NPER;
    pot.ISOR = ISOR;
    pot.ILOG = 1;
    pot.BETA = "30";
    return pot;
}

std::string disc(int n) {
    return gdf(rings({{1, 0, 0, 0, n, n, true}}));
}

// On a panel in z = 0 the sources themselves and K times their potential make the vertical velocity: n . V =
// 4 pi sigma + K phi, of the scattered wave in diffraction. Largest error of all fields.
double surface_condition_error(const P2fFile &p2f) {
    constexpr double FOUR_PI = 12.566370614359172;
    double worst = 0;
    for (const fields::Field &f : fields::all_fields(p2f)) {
        const double K = static_cast<double>(p2f.WVNH(f.t)); // deep water
        for (int ip = 1; ip <= p2f.NEQN; ++ip) {
            const c64 wanted = fields::boundary_value(p2f, ip, f);
            const c64 source(f.radiation ? p2f.SRCR(ip, f.column, f.t) : p2f.SRCD(ip, f.column, f.s, f.t));
            // At z = 0 in deep water the normal velocity of the incident wave is K times its potential.
            const c64 incident = f.radiation ? 0.0 : -wanted / K;
            worst = std::max(
                worst, std::abs(FOUR_PI * source + K * (fields::potential(p2f, ip, f) - incident) - wanted));
        }
    }
    return worst;
}

TEST(DiscOfNoDraught, ScattersTheSameByBothEquations) {
    for (const int n : {6, 12}) {
        const SolvedRun total = solve_gdf(disc(n), waves("0.5 1.2", 2, 1), "ISCATT=0\n"),
                        scattered = solve_gdf(disc(n), waves("0.5 1.2", 2, 1), "ISCATT=1\n");
        double worst = 0;
        for (int t = 1; t <= 2; ++t) {
            for (const int mode : {3, 4, 5}) {
                EXPECT_GT(total.c.B(mode, mode, t), 0.0f);
                EXPECT_EQ(total.c.A(mode, mode, t), scattered.c.A(mode, mode, t));
                worst = std::max(
                    worst, static_cast<double>(std::abs(scattered.c.X(mode, 1, t) - total.c.X(mode, 1, t)) /
                                               std::abs(total.c.X(3, 1, t))));
            }
            EXPECT_NEAR(energy_defect(total, 3, t), 0, 0.002);
        }
        EXPECT_LT(worst, 1e-5);
        EXPECT_LT(surface_condition_error(total.p2f), 1e-4);
        EXPECT_LT(surface_condition_error(scattered.p2f), 1e-4);
    }
}

// Velocities in the free surface leave out the panel's own.
bool wet(const whole_fields::Place &place) {
    return place.at[2] < -1e-4;
}
bool of_the_disc(const whole_fields::Place &place) {
    return place.at[3] == -1;
}

panel_lists::List hemisphere(int m) {
    const std::string n = std::to_string(4 * m);
    return panel_lists::made("hemisphere --nu " + n + " --nv " + n);
}
panel_lists::List lid(int m) {
    return rings({{1, 0, 0, 0, 4 * m, 4 * m, false}});
}
// Leans outward downwards: the bottom has panels where those of the side are seen from above.
panel_lists::List cone(int m) {
    return rings({{1, 0, 1.4, -0.5, 6 * m, 2 * m, true}, {1.4, -0.5, 0, -0.5, 6 * m, 7 * m, true}});
}
SolvedRun solve_beside_disc(const panel_lists::List &hull, const Pot &pot) {
    const CaseFolder folder;
    prepare(folder, pot);
    folder.write("hull.gdf", gdf(hull));
    folder.write("disc.gdf", disc(4));
    folder.write("run.gdf", "pair\n0 9.80665\n2\nhull.gdf\n0 0 0 0\n1 1\n1 1 1 1 1 1\n"
                            "disc.gdf\n2.3 0 0 0\n1 1\n1 1 1 1 1 1\n");
    return solved(folder);
}

// Below the first eigenvalue of the water inside the treatment changes the flow by an error of the mesh.
struct Treated {
    const char *name;
    int IRR;
    panel_lists::List (*hull)(int);
    double fine, ratio; // the difference of velocities of the finer mesh, and at least what it gains
};
void PrintTo(const Treated &is, std::ostream *out) {
    *out << is.name << " " << is.IRR;
}
class Interior : public testing::TestWithParam<Treated> {};

TEST_P(Interior, PanelsChangeTheVelocitiesByTheMeshOnly) {
    const Treated &is = GetParam();
    const auto with_panels = [&](int m) {
        return is.IRR == 1 || is.IRR == 4 ? is.hull(m) + lid(m) : is.hull(m);
    };
    double error[3] = {};
    Pot plain = waves("0 0.4 1.0 2.0", 4, 1), pot = plain;
    pot.IRR = is.IRR;
    for (const int m : {1, 2}) {
        const SolvedRun run = solve_gdf(gdf(with_panels(m)), pot);
        error[m] =
            whole_fields::difference(solve_gdf(gdf(is.hull(m)), plain), run, wet).rms[whole_fields::VELOCITY];
        // At infinite frequency the surface is one of no potential: nothing flows along it.
        for (int ip = 1; ip <= run.p2f.NEQN; ++ip) {
            for (int column = 1; column <= run.p2f.NSYMD && run.p2f.IFSP(ip) == 1; ++column)
                for (const int axis : {1, 2})
                    EXPECT_LT(std::abs(run.p2f.VELR(ip, 3 * (column - 1) + axis, 1)), 1e-5f)
                        << ip << " " << column;
        }
    }
    EXPECT_LT(error[2], is.fine);
    EXPECT_GT(error[1] / error[2], is.ratio);
    // A hull of no draught beside it, in waves, has sources in the free surface, as the interior panels have,
    // with the other mark.
    plain.PER = pot.PER = "0.4 1.0 2.0";
    plain.NPER = pot.NPER = 3;
    const SolvedRun with = solve_beside_disc(with_panels(1), pot),
                    without = solve_beside_disc(is.hull(1), plain);
    EXPECT_LT(whole_fields::difference(without, with, wet).rms[whole_fields::VELOCITY], 1.05 * error[1]);
    if (is.hull == hemisphere) { // the images of an overhang have the mark of the disc
        EXPECT_LT(whole_fields::difference(with, without, of_the_disc).largest[whole_fields::SOURCE], 0.05);
    }
}
INSTANTIATE_TEST_SUITE_P(All, Interior,
                         testing::Values(Treated{"hemisphere", 1, hemisphere, 0.06, 1.9},
                                         Treated{"hemisphere", 2, hemisphere, 0.06, 1.9},
                                         Treated{"hemisphere", 3, hemisphere, 0.06, 1.9},
                                         Treated{"hemisphere", 4, hemisphere, 0.06, 1.9},
                                         Treated{"cone", 2, cone, 0.18, 1.3})); // its rim is sharp

// A hemisphere within a ring of lid on the water.
SolvedRun solve_with_lid(double damping, int ISCATT, int IRR = 0, int m = 2,
                         const std::string &PER = "0.5 0.7 1.0 1.8") {
    CaseFolder folder;
    Pot pot = waves(PER, static_cast<int>(std::count(PER.begin(), PER.end(), ' ')) + 1, 1);
    pot.IRR = IRR;
    prepare(folder, pot, "IFSLID=1\nISCATT=" + std::to_string(ISCATT) + "\n");
    folder.write("hull.gdf", gdf(IRR != 0 ? hemisphere(m) + lid(m) : hemisphere(m)));
    folder.write("lid.gdf", gdf(rings({{1.6, 0, 1.2, 0, 4 * m, m, true}})));
    folder.write(
        "run.gdf",
        "hull and lid\n0 9.80665\n2\nhull.gdf\n0 0 0 0\n1 1\n1 1 1 1 1 1\n1 0\nlid.gdf\n0 0 0 0\n0 1\n"
        "0 0 0 0 0 0\n3 " +
            std::to_string(damping) + "\n");
    return solved(folder);
}

// Under a rigid surface a disc is a piston: 8/3. It is refused at infinite frequency. The lid of another body
// takes nothing at the limits, whatever its damping.
TEST(Limits, HaveNoWavePartInTheFreeSurface) {
    double before = 0;
    for (const int n : {6, 12}) {
        const SolvedRun run = solve_gdf(disc(n), waves("-1 1e-5", 2, 0));
        const double limit = run.c.A(3, 3, 1), defect = 1 - limit / (8.0 / 3);
        EXPECT_NEAR(limit / static_cast<double>(run.c.A(3, 3, 2)), 1, 2e-4);
        EXPECT_LT(defect, 0.015);
        if (before > 0) {
            EXPECT_NEAR(before / defect, 4, 0.5); // second order in the mesh
        }
        before = defect;
    }
    const CaseFolder folder;
    prepare(folder, waves("0 1", 2, 0));
    folder.write("run.gdf", disc(4));
    folder.solve();
    EXPECT_TRUE(folder.lists("Infinite frequency is not possible with a hull of no draught, panel I=1"));
    EXPECT_FALSE(folder.exists("run.p2f"));
    const SolvedRun alone = solve_gdf(gdf(hemisphere(2)), waves("-1 0", 2, 0));
    const SolvedRun damped = solve_with_lid(1, 0, 0, 2, "-1 0");
    EXPECT_LT(whole_fields::difference(alone, damped, wet).largest[whole_fields::POTENTIAL], 1e-5);
}

// Share of heave damping that the waves carry away: K |H|^2 / 2, with the amplitude H of the far waves from
// the potentials on the hull and on the lid, where the vertical velocity is K (1 - i e)^2 times the
// potential. And the power that the lid takes, 2 e K times the integral of |potential|^2.
struct Budget {
    double waves = 0, lid = 0;
};
Budget heave_budget(const P2fFile &p2f, double e, int t) {
    const double K = static_cast<double>(p2f.WVNH(t));
    c64 H = 0;
    double lid = 0;
    for (int ip = 1; ip <= p2f.NEQN; ++ip) {
        const double area = 4 * static_cast<double>(p2f.PMOM(1, ip));
        const double x = K * static_cast<double>(p2f.XCT(1, ip)), z = K * static_cast<double>(p2f.XCT(3, ip));
        const c64 phi(p2f.PHIR(ip, p2f.MODPOS(3), t));
        if (ip > p2f.NEQNB(1)) {
            H += area * K * c64(-e * e, -2 * e) * phi * std::cos(x);
            lid += area * 2 * e * K * std::norm(phi);
            continue;
        }
        const double slope =
            K * std::exp(z) *
            (fields::normal(p2f, ip, 2) * std::cos(x) - fields::normal(p2f, ip, 0) * std::sin(x));
        H += area * (fields::normal(p2f, ip, 2) * std::exp(z) * std::cos(x) - phi * slope);
    }
    return {K * std::norm(H) / 2, lid};
}

// A lid without damping is free surface. Its sources make up what the potentials of the two equations differ
// by, an error of the mesh.
TEST(DampingLid, WithoutDampingIsFreeSurface) {
    for (const int ISCATT : {0, 1}) {
        whole_fields::Difference error[3];
        for (const int m : {1, 2})
            error[m] = whole_fields::difference(solve_gdf(gdf(hemisphere(m)), waves("0.5 0.7 1.0 1.8", 4, 1),
                                                          ISCATT == 1 ? "ISCATT=1\n" : ""),
                                                solve_with_lid(0, ISCATT, 0, m), wet);
        EXPECT_LT(error[2].largest[whole_fields::POTENTIAL], 1e-5);
        EXPECT_LT(error[2].rms[whole_fields::VELOCITY], 0.03);
        EXPECT_GT(error[1].rms[whole_fields::VELOCITY] / error[2].rms[whole_fields::VELOCITY], 1.7);
    }
}

TEST(DampingLid, TakesEnergyOutOfTheTotalWave) {
    constexpr double DAMPING = 0.2;
    constexpr double BUDGET =
        0.015; // what the same hull misses without a lid in the shortest wave, by its panels
    constexpr double MESH = 0.025; // between the two ways to diffraction, by the panels of the hull
    for (const int IRR : {0, 1, 4}) {
        const SolvedRun total = solve_with_lid(DAMPING, 0, IRR), scattered = solve_with_lid(DAMPING, 1, IRR);
        for (const double error : whole_fields::difference(total, scattered, wet).rms)
            EXPECT_LT(error, MESH);
        for (int t = 1; t <= 4; ++t) {
            const Budget budget = heave_budget(total.p2f, DAMPING, t);
            const double B = static_cast<double>(total.c.B(3, 3, t));
            EXPECT_GT(budget.lid, 0.02 * B);
            EXPECT_NEAR((budget.waves + budget.lid) / B, 1, BUDGET);
            // The waves that heave sends out are those that lift it.
            EXPECT_NEAR(energy_defect(total, 3, t, budget.lid), 0, 0.005);
            EXPECT_NEAR(energy_defect(scattered, 3, t, budget.lid), 0, 2 * MESH);
        }
    }
}

} // namespace
