#include "post/drift_far.hpp"

#include <cmath>
#include <numbers>

namespace {

constexpr double PI = std::numbers::pi;

// Im integral of conj(phi) dphi/dn over hull and plates, less what porous plates take.
double hull_energy(const P2fFile &p2f, const PanelKinds &kinds, int t, const HullState &state) {
    const double K = static_cast<double>(p2f.WVNH(t));
    double sum = 0;
    for (int g = 1; g <= static_cast<int>(state.phi.dim(2)); ++g)
        for (int J = 1; J <= p2f.NEQN; ++J) {
            if (!kinds.hull(J))
                continue;
            const double area = static_cast<double>(p2f.PMOM(1, J));
            sum += area * (std::conj(state.phi(J, g)) * state.vn(J, g)).imag();
            if (kinds.plate(J))
                sum -= area * K * static_cast<double>(p2f.DPORB(J)) * std::norm(state.phi(J, g));
        }
    return sum;
}

// The function of the whole wave of heading b at angle k, and its derivative.
struct Whole {
    c64 H, dH;
};
Whole whole_wave(const P2fFile &p2f, int t, int b, Motions xi, const Kochin &kochin, int k) {
    Whole w{kochin.scatter(k, b), kochin.dscatter(k, b)};
    const double nu = deep_wave_number(p2f, t);
    for (int j = 1; moves(xi) && j <= p2f.NMODES; ++j) {
        const c64 factor = nu * unit_motion(p2f, j) * xi(j, b);
        w.H += factor * kochin.motion(k, j);
        w.dH += factor * kochin.dmotion(k, j);
    }
    return w;
}

FarDrift drift_of(const P2fFile &p2f, int t, int b, Motions xi, const Kochin &kochin, const double *on_hull) {
    const double K = static_cast<double>(p2f.WVNH(t)), nu = deep_wave_number(p2f, t),
                 M = far_field_factor(p2f, t);
    const double c = static_cast<double>(p2f.COSBET(b)), s = static_cast<double>(p2f.SINBET(b));
    const int round = static_cast<int>(kochin.theta.size()) - p2f.NBETA;
    double energy = 0, x = 0, y = 0, turn = 0;
    for (int k = 1; k <= round; ++k) {
        const double theta = kochin.theta[static_cast<std::size_t>(k - 1)];
        const Whole w = whole_wave(p2f, t, b, xi, kochin, k);
        const double size = std::norm(w.H) * 2 * PI / round;
        energy += size;
        x += size * (c - std::cos(theta));
        y += size * (s - std::sin(theta));
        turn += (std::conj(w.H) * w.dH).imag() * 2 * PI / round;
    }
    const Whole forward = whole_wave(p2f, t, b, xi, kochin, round + b);
    const double flux = M / (4 * PI) * energy, of_waves = flux + forward.H.imag();
    const double Q = on_hull != nullptr ? *on_hull : of_waves;
    FarDrift drift;
    drift.surge = K * M / (8 * PI * nu) * x - K / (2 * nu) * c * Q;
    drift.sway = K * M / (8 * PI * nu) * y - K / (2 * nu) * s * Q;
    drift.yaw = M / (8 * PI * nu) * turn - forward.dH.real() / (2 * nu);
    drift.taken = -Q;
    drift.imbalance = flux > 0 ? (of_waves - Q) / flux : 0;
    return drift;
}

} // namespace

bool form_far_drift(const P2fFile &p2f, int t, Motions xi, FarFieldOf from, std::vector<FarDrift> &drift,
                    std::string &error) {
    if (p2f.ISX == -1 || p2f.ISY == -1) {
        error = "a wall takes momentum out of the waves: drift is for open water";
        return false;
    }
    const PanelKinds kinds(p2f);
    std::vector<double> on_hull;
    for (int b = 1; b <= p2f.NBETA; ++b) {
        HullState state;
        if (!form_hull_state(p2f, t, b, xi, Part::total, {}, state, error))
            return false;
        on_hull.push_back(hull_energy(p2f, kinds, t, state));
    }
    std::vector<double> theta = kochin_angles(p2f, t);
    for (int b = 1; b <= p2f.NBETA; ++b)
        theta.push_back(std::atan2(static_cast<double>(p2f.SINBET(b)), static_cast<double>(p2f.COSBET(b))));
    Kochin kochin;
    if (!form_kochin(p2f, t, theta, from, kochin, error))
        return false;
    drift.clear();
    for (int b = 1; b <= p2f.NBETA; ++b)
        drift.push_back(drift_of(p2f, t, b, xi, kochin,
                                 kinds.lid_body ? nullptr : &on_hull[static_cast<std::size_t>(b - 1)]));
    return true;
}
