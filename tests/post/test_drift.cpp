// Truth: the diffraction series of a circular cylinder that stands on the bottom (R. C. MacCamy and R. A.
// Fuchs, 1954) with the pressures on its wall integrated; conservation of energy; drift by momentum far away
// against drift by pressures on the hull.
#include "../cases/panel_lists.hpp"
#include "cylinder_series.hpp"
#include "free_body.hpp"
#include "post/drift_far.hpp"
#include "post/drift_near.hpp"

namespace {

using series::PI;

// Surge drift of the cylinder of radius 1 in depth h over rho g: -1/(8 nu M) integral of cos theta (K^2 |S|^2
// - |S'|^2), S the wave on the wall over F. From the waterline and the velocities, not from the waves far
// away.
double series_drift(double K, double h) {
    const double nu = K * std::tanh(K * h), M = K * K / (nu + (K * K - nu * nu) * h);
    const int angles = 200;
    double sum = 0;
    for (int k = 0; k < angles; ++k) {
        const double theta = 2 * PI * k / angles;
        c64 S = 0, dS = 0;
        for (int m = 0; m <= series::TERMS; ++m) {
            const c64 f =
                (m == 0 ? 1.0 : 2.0) * std::pow(c64(0, -1), m) * c64(0, -2 / (PI * K)) / series::slope(m, K);
            S += f * std::cos(m * theta);
            dS -= f * (m * std::sin(m * theta));
        }
        sum += std::cos(theta) * (K * K * std::norm(S) - std::norm(dS)) * 2 * PI / angles;
    }
    return -sum / (8 * nu * M);
}

constexpr double WAVES[] = {0.4, 0.8, 1.4, 2.0};
constexpr double DEPTH = 1.5;

struct CylinderErrors {
    double far = 0, near = 0, energy = 0;
};
CylinderErrors cylinder(int around, int down) {
    Pot pot;
    pot.ISOR = pot.ILOG = 1;
    pot.HBOT = std::to_string(DEPTH);
    pot.NPER = 4;
    pot.PER = "";
    for (const double K : WAVES)
        pot.PER += std::to_string(K * std::tanh(K * DEPTH)) + " ";
    const SolvedRun run = solve_mesh("cylinder --radius 1 --draft 1.5 --standing --nu " +
                                         std::to_string(around) + " --nv " + std::to_string(down),
                                     pot);
    CylinderErrors e;
    std::string error;
    for (int t = 1; t <= 4; ++t) {
        std::vector<FarDrift> far;
        std::vector<std::vector<NearDrift>> near;
        EXPECT_TRUE(form_far_drift(run.p2f, t, {}, FarFieldOf::potentials, far, error)) << error;
        EXPECT_TRUE(form_near_drift(run.p2f, t, {}, near, error)) << error;
        const double truth = series_drift(WAVES[t - 1], DEPTH);
        e.far = std::max(e.far, std::abs(far[0].surge / truth - 1));
        e.near = std::max(e.near, std::abs(near[0][0].total(0) / truth - 1));
        e.energy = std::max(e.energy, std::abs(far[0].imbalance));
    }
    return e;
}

TEST(Drift, OfACylinderOnTheBottomIsThatOfTheSeries) {
    const CylinderErrors coarse = cylinder(6, 10), fine = cylinder(12, 20);
    EXPECT_LT(fine.far, 0.02);
    EXPECT_LT(fine.near, 0.02);
    EXPECT_LT(fine.energy, 1e-3);
    EXPECT_LT(fine.far, 0.6 * coarse.far);
    EXPECT_LT(fine.near, 0.6 * coarse.near);
}

// Hemisphere or barge of a unit's size, its panels moved.
struct Setting {
    const char *name;
    std::string coarse, fine; // arguments of the mesh maker
    const char *place;        // where a vertex goes, as three expressions of awk in $1, $2, $3
    const char *depth, *waves;
    int IRR;
};
void PrintTo(const Setting &s, std::ostream *out) {
    *out << s.name;
}
std::string sphere(int n) {
    return "hemisphere --nu " + std::to_string(n) + " --nv " + std::to_string(n);
}
std::string barge(int n, const char *more = "") {
    return "box --length 2 --beam 1.2 --draft 0.5 --nu " + std::to_string(5 * n) + " --nv " +
           std::to_string(3 * n) + " --nw " + std::to_string(2 * n) + more;
}
// Panels small at the edges, where the velocity is infinite.
constexpr const char *TO_EDGES = "sin(q * $1), 0.6 * sin(q * $2 / 0.6), 0.5 * sin(q * $3 / 0.5)";

SolvedRun solve_placed(const std::string &mesh, const Setting &is) {
    Pot pot;
    pot.ISOR = pot.ILOG = 1;
    pot.IQUAD = 1;
    pot.IRR = is.IRR;
    pot.HBOT = is.depth;
    pot.NPER = 2;
    pot.PER = is.waves;
    pot.NBETA = 2;
    pot.BETA = "30 250";
    const CaseFolder folder;
    prepare(folder, pot);
    make_mesh(folder, mesh, "unit.gdf");
    folder.shell(std::string("awk 'NF == 3 { q = atan2(1, 0); print ") + is.place +
                 "; next } { print }' unit.gdf > run.gdf");
    return solved(folder);
}

struct Differences {
    double drift = 0;  // far from near, largest of surge, sway and yaw over the largest value
    double energy = 0; // imbalance of the body held fixed, over its scattered waves
};
Differences differences(const std::string &mesh, const Setting &is) {
    const SolvedRun run = solve_placed(mesh, is);
    std::string error;
    double difference = 0, size = 0;
    Differences result;
    for (int t = 1; t <= run.p2f.NPER; ++t) {
        Array<c64, 2> xi;
        free_motions(run, t, xi);
        std::vector<FarDrift> far, fixed;
        std::vector<std::vector<NearDrift>> near;
        EXPECT_TRUE(form_far_drift(run.p2f, t, {}, FarFieldOf::potentials, fixed, error)) << error;
        EXPECT_TRUE(form_far_drift(run.p2f, t, xi.view(), FarFieldOf::potentials, far, error)) << error;
        EXPECT_TRUE(form_near_drift(run.p2f, t, xi.view(), near, error)) << error;
        for (std::size_t b = 0; b < far.size(); ++b) {
            result.energy = std::max(result.energy, std::abs(fixed[b].imbalance));
            const double waves[3] = {far[b].surge, far[b].sway, far[b].yaw};
            for (std::size_t c = 0; c < 3; ++c) {
                difference = std::max(difference, std::abs(waves[c] - near[b][0].total(c == 2 ? 5 : c)));
                size = std::max(size, std::abs(waves[c]));
            }
        }
    }
    result.drift = difference / size;
    return result;
}

class FreeBody : public testing::TestWithParam<Setting> {};

TEST_P(FreeBody, DriftsByTheSameForceFarAwayAndOnTheHull) {
    const Differences coarse = differences(GetParam().coarse, GetParam()),
                      fine = differences(GetParam().fine, GetParam());
    EXPECT_LT(fine.drift, 0.05);
    EXPECT_LT(fine.drift, 0.7 * coarse.drift);
    // The potential of a lid inside the body, which is small and of the order of the error, is no wave.
    EXPECT_LT(fine.energy, GetParam().IRR == 0 ? 1e-3 : 1e-2);
    EXPECT_LT(fine.energy, std::max(0.4 * coarse.energy, 1e-5)); // or rounding
}

INSTANTIATE_TEST_SUITE_P(
    All, FreeBody,
    testing::Values(Setting{"hemisphere", sphere(5), sphere(10), "$1, $2, $3", "0", "1.2 1.9", 0},
                    Setting{"shallow_hemisphere", sphere(5), sphere(10), "$1, $2, $3", "1.5", "1.2 1.9", 0},
                    Setting{"ellipsoid", sphere(8), sphere(16), "2 * $1, 1.2 * $2, 0.7 * $3", "0", "0.7 1.2",
                            0},
                    Setting{"barge", barge(1), barge(2), TO_EDGES, "0", "0.7 1.9", 0},
                    Setting{"shallow_barge_with_lid", barge(1, " --lid"), barge(2, " --lid"), TO_EDGES, "1",
                            "0.7 1.9", 1}),
    testing::PrintToStringParamName());

// A lid around a hemisphere takes 2 e nu times the integral of |phi|^2 over it out of the waves. Far away
// that is missing.
TEST(Drift, KnowsWhatALidTakes) {
    using namespace panel_lists;
    const double damping = 0.3;
    double last = 1;
    for (const int m : {3, 6}) {
        const CaseFolder folder;
        Pot pot;
        pot.PER = "0.8";
        pot.ISOR = pot.ILOG = 1;
        prepare(folder, pot, "IFSLID=1\nISCATT=1\n");
        make_mesh(folder, "hemisphere --nu " + std::to_string(2 * m) + " --nv " + std::to_string(2 * m),
                  "hull.gdf");
        folder.write("lid.gdf", gdf(rings({{1.6, 0, 1.2, 0, 2 * m, m, true}})));
        folder.write("run.gdf",
                     "hull and lid\n0 9.80665\n2\nhull.gdf\n0 0 0 0\n1 1\n1 1 1 1 1 1\n1 0\nlid.gdf\n0 0 0 "
                     "0\n0 1\n0 0 0 0 0 0\n3 " +
                         std::to_string(damping) + "\n");
        const SolvedRun run = solved(folder);
        const P2fFile &p = run.p2f;
        std::string error;
        std::vector<FarDrift> far;
        EXPECT_FALSE(form_far_drift(p, 1, {}, FarFieldOf::potentials, far, error));
        EXPECT_NE(error.find("lid"), std::string::npos);
        ASSERT_TRUE(form_far_drift(p, 1, {}, FarFieldOf::sources, far, error)) << error;
        HullState state;
        ASSERT_TRUE(form_hull_state(p, 1, 1, {}, Part::total, {}, state, error)) << error;
        double taken = 0;
        for (int g = 1; g <= 4; ++g)
            for (int J = p.NEQNB(1) + 1; J <= p.NEQN; ++J)
                taken += 2 * damping * deep_wave_number(p, 1) * static_cast<double>(p.PMOM(1, J)) *
                         std::norm(state.phi(J, g));
        const double error_of = std::abs(far[0].taken / taken - 1);
        EXPECT_LT(error_of, 0.7 * last); // constant sources are of first order
        last = error_of;
    }
    EXPECT_LT(last, 0.05);
}

} // namespace
