// Truth: two ways to the same diffraction potential of a disc of no draught, a hull with overhang without
// treatment, and the energy that a lid on the water takes out.
#include "source_fields.hpp"

namespace {

using Point = std::array<double, 3>;

// Quarter of a surface of revolution, `down` panels along the line from (r0, z0) to (r1, z1); `turned` turns
// the normals.
struct Ring {
    double r0, z0, r1, z1;
    int around, down;
    bool turned;
};
std::string quarter_gdf(const std::vector<Ring> &rings) {
    std::ostringstream panels;
    int count = 0;
    for (const Ring &ring : rings) {
        for (int i = 0; i < ring.around; ++i) {
            for (int j = 0; j < ring.down; ++j) {
                const auto at = [&](int a, int d) -> Point {
                    const double angle = std::acos(0.0) * a / ring.around,
                                 part = static_cast<double>(d) / ring.down;
                    const double r = ring.r0 + (ring.r1 - ring.r0) * part;
                    return {r * std::cos(angle), r * std::sin(angle), ring.z0 + (ring.z1 - ring.z0) * part};
                };
                std::array<Point, 4> p{at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)};
                if (ring.turned)
                    std::reverse(p.begin(), p.end());
                for (const Point &v : p)
                    panels << " " << v[0] << " " << v[1] << " " << v[2] << "\n";
                ++count;
            }
        }
    }
    std::ostringstream out;
    out << "quarter\n 1 9.80665\n 1 1\n " << count << "\n" << panels.str();
    return out.str();
}

SolvedRun solve_gdf(const std::string &gdf, const Pot &pot, const std::string &config = "") {
    const CaseFolder folder;
    prepare(folder, pot, config);
    folder.write("run.gdf", gdf);
    return solved(folder);
}

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
    return quarter_gdf({{1, 0, 0, 0, n, n, true}});
}

// On a panel in z = 0 the sources themselves and K times their potential make the vertical velocity: n . V =
// 4 pi sigma + K phi, of the scattered wave in diffraction. Largest error of all fields.
double surface_condition_error(const P2fFile &p2f) {
    constexpr double FOUR_PI = 12.566370614359172;
    double worst = 0;
    for (const fields::Field &f : fields::all_fields(p2f)) {
        const double K = static_cast<double>(p2f.WVNH(f.t)); // deep water
        for (int ip = 1; ip <= p2f.NEQN; ++ip) {
            const fields::c64 wanted = fields::boundary_value(p2f, ip, f);
            const fields::c64 source(f.radiation ? p2f.SRCR(ip, f.column, f.t)
                                                 : p2f.SRCD(ip, f.column, f.s, f.t));
            // At z = 0 in deep water the normal velocity of the incident wave is K times its potential.
            const fields::c64 incident = f.radiation ? 0.0 : -wanted / K;
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
            const double flux = static_cast<double>(total.p2f.WVNH(t)) *
                                std::norm(std::complex<double>(total.c.X(3, 1, t))) / 2;
            EXPECT_NEAR(total.c.B(3, 3, t) / flux, 1, 0.002);
        }
        EXPECT_LT(worst, 1e-5);
        EXPECT_LT(surface_condition_error(total.p2f), 1e-4);
        EXPECT_LT(surface_condition_error(scattered.p2f), 1e-4);
    }
}

// Largest difference that the treatment makes, as a fraction of |A - i B| or of the force. The panels of the
// overhang lie over panels of the bottom: only where both meshes agree can the images cancel.
double overhang_difference(int m) {
    const std::string hull =
        quarter_gdf({{0.8, 0, 1, -0.4, 6 * m, 2 * m, true}, {1, -0.4, 0, -0.4, 6 * m, 10 * m, true}});
    Pot pot = waves("0.4 1.0 1.6", 3, 1); // far below the first eigenvalues inside
    const SolvedRun plain = solve_gdf(hull, pot);
    pot.IRR = 2;
    const SolvedRun treated = solve_gdf(hull, pot);
    int reversed = 0, inner = 0;
    for (int ip = 1; ip <= treated.p2f.NEQN; ++ip) {
        reversed += treated.p2f.IFSP(ip) == -1 ? 1 : 0;
        inner += treated.p2f.IFSP(ip) == 1 ? 1 : 0;
    }
    EXPECT_EQ(reversed, 12 * m * m);
    EXPECT_EQ(inner, 60 * m * m);
    EXPECT_LT(fields::normal_velocity_error(treated.p2f), 2e-5);
    double worst = 0;
    for (int t = 1; t <= 3; ++t) {
        for (const int mode : {1, 3}) {
            const auto coefficient = [&](const SolvedRun &s) {
                return fields::c64(static_cast<double>(s.c.A(mode, mode, t)),
                                   -static_cast<double>(s.c.B(mode, mode, t)));
            };
            worst = std::max(worst, std::abs(coefficient(treated) - coefficient(plain)) /
                                        std::abs(coefficient(plain)));
        }
    }
    return worst;
}

TEST(Overhang, WithItsImagesIsTheHullWithout) {
    const double coarse = overhang_difference(1), fine = overhang_difference(2);
    EXPECT_LT(fine, 0.011);
    EXPECT_GT(coarse / fine, 1.8);
    EXPECT_LT(coarse / fine, 5);
}

// A hemisphere within a ring of lid on the water.
SolvedRun solve_with_lid(double damping) {
    CaseFolder folder;
    prepare(folder, waves("0.5 1.0 1.8", 3, 1), "ISCATT=1\nIFSLID=1\n");
    make_mesh(folder, "hemisphere --nu 8 --nv 8", "hull.gdf");
    folder.write("lid.gdf", quarter_gdf({{1.6, 0, 1.2, 0, 8, 2, true}}));
    folder.write(
        "run.gdf",
        "hull and lid\n0 9.80665\n2\nhull.gdf\n0 0 0 0\n1 1\n1 1 1 1 1 1\n1 0\nlid.gdf\n0 0 0 0\n0 1\n"
        "0 0 0 0 0 0\n3 " +
            std::to_string(damping) + "\n");
    return solved(folder);
}

// Share of heave damping that the waves carry away: K |H|^2 / 2, with the amplitude H of the far waves from
// the potentials on the hull and on the lid, where the vertical velocity is K (1 - i e)^2 times the
// potential. And the power that the lid takes, 2 e K times the integral of |potential|^2.
struct Budget {
    double waves = 0, lid = 0;
};
Budget heave_budget(const P2fFile &p2f, double e, int t) {
    const double K = static_cast<double>(p2f.WVNH(t));
    fields::c64 H = 0;
    double lid = 0;
    for (int ip = 1; ip <= p2f.NEQN; ++ip) {
        const double area = 4 * static_cast<double>(p2f.PMOM(1, ip));
        const double x = K * static_cast<double>(p2f.XCT(1, ip)), z = K * static_cast<double>(p2f.XCT(3, ip));
        const fields::c64 phi(p2f.PHIR(ip, p2f.MODPOS(3), t));
        if (ip > p2f.NEQNB(1)) {
            H += area * K * fields::c64(-e * e, -2 * e) * phi * std::cos(x);
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

TEST(DampingLid, TakesEnergyOut) {
    constexpr double DAMPING = 0.2;
    constexpr double BUDGET =
        0.015; // what the same hull misses without a lid in the shortest wave, by its panels
    const SolvedRun alone = solve_mesh("hemisphere --nu 8 --nv 8", waves("0.5 1.0 1.8", 3, 1), "ISCATT=1\n"),
                    idle = solve_with_lid(0), lid = solve_with_lid(DAMPING);
    for (int t = 1; t <= 3; ++t) {
        for (int mode = 1; mode <= 3; ++mode) {
            EXPECT_NEAR(idle.c.A(mode, mode, t), alone.c.A(mode, mode, t), 1e-5);
            EXPECT_NEAR(idle.c.B(mode, mode, t), alone.c.B(mode, mode, t), 1e-5);
            EXPECT_LT(std::abs(idle.c.X(mode, 1, t) - alone.c.X(mode, 1, t)), 1e-5f);
        }
        const Budget budget = heave_budget(lid.p2f, DAMPING, t);
        const double B = static_cast<double>(lid.c.B(3, 3, t));
        EXPECT_GT(B, budget.waves);
        EXPECT_GT(budget.lid, 0.02 * B);
        EXPECT_NEAR((budget.waves + budget.lid) / B, 1, BUDGET);
    }
    EXPECT_LT(fields::normal_velocity_error(alone.p2f), 1e-5);
}

} // namespace
