// Truth: the diffraction series of a circular cylinder that stands on the bottom (R. C. MacCamy and R. A.
// Fuchs, 1954) with the pressures on its wall integrated; conservation of energy; drift by momentum far away
// against drift by pressures on the hull.
#include "free_body.hpp"
#include "post/drift_far.hpp"
#include "post/drift_near.hpp"

#include <numbers>

namespace {

constexpr double PI = std::numbers::pi;

// Surge drift of the cylinder of radius 1 in depth h over rho g: -1/(8 nu M) integral of cos theta (K^2 |S|^2
// - |S'|^2), S the wave on the wall over F. From the waterline and the velocities, not from the waves far
// away.
double series_drift(double K, double h) {
    const double nu = K * std::tanh(K * h), M = K * K / (nu + (K * K - nu * nu) * h);
    const int angles = 200, terms = 30;
    double sum = 0;
    for (int k = 0; k < angles; ++k) {
        const double theta = 2 * PI * k / angles;
        c64 S = 0, dS = 0;
        for (int m = 0; m <= terms; ++m) {
            const auto H = [&](int order) {
                return c64(std::cyl_bessel_j(order, K), -std::cyl_neumann(order, K));
            };
            const c64 slope = m == 0 ? -H(1) : (H(m - 1) - H(m + 1)) / 2.0;
            const c64 f = (m == 0 ? 1.0 : 2.0) * std::pow(c64(0, -1), m) * c64(0, -2 / (PI * K)) / slope;
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
    EXPECT_LT(fine.near, 0.04);
    EXPECT_LT(fine.energy, 1e-3);
    EXPECT_LT(fine.far, 0.6 * coarse.far);
}

} // namespace
