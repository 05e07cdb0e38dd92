#include "post/motions.hpp"

#include "base/lapack.hpp"
#include "post/incident.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double DEGREE = 3.14159265358979323846 / 180;
constexpr double SINGULAR = 1e-13; // reciprocal condition: no digit of the solution is sure

void add_body_terms(const P2fFile &p2f, const CaseFile &file, MotionSystem &system) {
    for (int b = 1; b <= p2f.NBODY; ++b) {
        const CaseBody &body = file.bodies[static_cast<std::size_t>(b - 1)];
        const int before = modes_before(p2f, b), n = 6 + p2f.NEWMDS(b);
        const auto add = [&](const CaseMatrix &from, Array<double, 2> &to, bool replace) {
            for (int i = 1; !from.empty() && i <= n; ++i)
                for (int j = 1; j <= n; ++j) {
                    double &value = to(before + i, before + j);
                    value = (replace ? 0 : value) +
                            from[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(j - 1)];
                }
        };
        add(body.mass_matrix, system.M, true);
        add(body.stiffness, system.C, false);
        add(body.damping, system.B, false);
    }
    for (const CaseCoupling &c : file.couplings) {
        system.C(c.i, c.j) += c.stiffness;
        system.B(c.i, c.j) += c.damping;
        if (c.i != c.j) {
            system.C(c.j, c.i) += c.stiffness;
            system.B(c.j, c.i) += c.damping;
        }
    }
}

// Six rows: motion and rotation, in global axes, of the place by unit motion in each rigid mode of its body.
using PlaceMotion = std::array<std::array<double, 6>, 6>;
PlaceMotion place_motion(const P2fFile &p2f, int body, const Vec3 &at) {
    const double L = static_cast<double>(p2f.ULEN(1));
    const double heading = DEGREE * static_cast<double>(p2f.XBODY(4, body)), s = std::sin(heading),
                 c = std::cos(heading);
    const Vec3 axis[3] = {{c, s, 0}, {-s, c, 0}, {0, 0, 1}}; // of the body
    Vec3 r;
    for (int k = 1; k <= 3; ++k)
        r[static_cast<std::size_t>(k - 1)] =
            at[static_cast<std::size_t>(k - 1)] - L * static_cast<double>(p2f.XBODY(k, body));
    PlaceMotion G{};
    for (std::size_t m = 0; m < 3; ++m)
        for (std::size_t k = 0; k < 3; ++k) {
            G[k][m] = axis[m][k];
            G[3 + k][3 + m] = axis[m][k];
            G[k][3 + m] = axis[m][(k + 1) % 3] * r[(k + 2) % 3] - axis[m][(k + 2) % 3] * r[(k + 1) % 3];
        }
    return G;
}

void add_spring(const P2fFile &p2f, const CaseSpring &spring, MotionSystem &system) {
    struct End {
        int before;
        PlaceMotion G;
        double sign;
    };
    std::vector<End> ends = {{modes_before(p2f, spring.body), place_motion(p2f, spring.body, spring.at), 1}};
    if (spring.to != 0)
        ends.push_back({modes_before(p2f, spring.to), place_motion(p2f, spring.to, spring.at), -1});
    for (const End &a : ends)
        for (const End &b : ends)
            for (int i = 0; i < 6; ++i)
                for (int j = 0; j < 6; ++j)
                    for (std::size_t k = 0; k < 6; ++k) {
                        const double g = a.sign * b.sign * a.G[k][static_cast<std::size_t>(i)] *
                                         b.G[k][static_cast<std::size_t>(j)];
                        system.C(a.before + 1 + i, b.before + 1 + j) += g * spring.stiffness[k];
                        system.B(a.before + 1 + i, b.before + 1 + j) += g * spring.damping[k];
                    }
}

// Adds the fraction of 2 sqrt(C (M + A)) of a mode alone, A at its natural frequency.
bool add_critical(const P2fFile &p2f, const RadiationForces &R, int mode, double fraction,
                  MotionSystem &system) {
    const double C = system.C(mode, mode);
    double mass = 0;
    double omega = 0;
    for (int step = 0; step < 50; ++step) {
        mass = system.M(mode, mode) + bracket_of(p2f, omega).of(R.A, mode, mode);
        if (!(C > 0 && mass > 0))
            return false;
        omega = (omega + std::sqrt(C / mass)) / 2;
    }
    system.B(mode, mode) += 2 * fraction * std::sqrt(C * mass);
    return true;
}

// The modes that move, with the reasons of the others as notes.
void choose_free(const P2fFile &p2f, const CaseFile &file, MotionSystem &system) {
    std::string unsolved;
    for (int m = 1; m <= p2f.NMODES; ++m) {
        if (std::find(file.fixed.begin(), file.fixed.end(), m) != file.fixed.end())
            continue;
        if (class_of(p2f, m) != 0)
            system.free.push_back(m);
        else
            unsolved += (unsolved.empty() ? "" : "; ") + full_mode_name(p2f, m);
    }
    if (!unsolved.empty())
        system.notes.push_back("Held, since the run has no solution of them: " + unsolved + ".");
}

} // namespace

std::string full_mode_name(const P2fFile &p2f, int mode) {
    const BodyMode m = body_mode(p2f, mode);
    return (p2f.NBODY > 1 ? "body " + std::to_string(m.body) + ", " : "") + mode_name(m);
}

std::vector<int> by_frequency(const P2fFile &p2f) {
    std::vector<int> order;
    for (int t = 1; t <= p2f.NPER; ++t)
        order.push_back(t);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return omega_of(p2f, a) < omega_of(p2f, b); });
    return order;
}

Bracket bracket_of(const P2fFile &p2f, double omega) {
    Bracket at;
    for (const int t : by_frequency(p2f)) {
        const double here = omega_of(p2f, t);
        if (std::isinf(here))
            break;
        if (here >= omega && at.below != 0) {
            const double under = omega_of(p2f, at.below);
            return {at.below, t, here > under ? (omega - under) / (here - under) : 0};
        }
        at = {t, t, 0};
        if (here >= omega)
            break;
    }
    return at;
}

bool form_system(const P2fFile &p2f, const CaseFile &file, const std::vector<BodyHydrostatics> &bodies,
                 const RadiationForces &R, const Scales &scales, MotionSystem &system, std::string &error) {
    std::vector<BodyMass> masses;
    for (std::size_t b = 0; b < bodies.size(); ++b)
        masses.push_back(mass_of(file.bodies[b], bodies[b], scales.density));
    if (!form_mass(p2f, masses, system.M) || !form_stiffness(p2f, bodies, masses, scales, system.C) ||
        !system.B.alloc(p2f.NMODES, p2f.NMODES)) {
        error = "there is not enough memory";
        return false;
    }
    add_body_terms(p2f, file, system);
    for (const CaseSpring &spring : file.springs)
        add_spring(p2f, spring, system);
    for (const CaseBody &body : file.bodies)
        for (const auto &[mode, fraction] : body.critical)
            if (!add_critical(p2f, R, mode, fraction, system)) {
                error = full_mode_name(p2f, mode) +
                        (system.C(mode, mode) < 0
                             ? " is unstable, its stiffness is negative: is the centre of gravity too high?"
                             : " has no stiffness of its own, so it has no critical damping");
                return false;
            }
    choose_free(p2f, file, system);
    if (system.free.empty()) {
        error = "no mode is left that could move";
        return false;
    }
    return true;
}

bool form_motions(const P2fFile &p2f, const MotionSystem &system, const RadiationForces &R,
                  const Array<c64, 3> &X, Array<c64, 3> &xi, std::string &error) {
    const int n = static_cast<int>(system.free.size()), heads = p2f.NBETA;
    const double L = static_cast<double>(p2f.ULEN(1));
    Array<c64, 2> S, force;
    Array<int, 1> pivots;
    if (!xi.alloc(p2f.NMODES, heads, p2f.NPER) || !S.alloc(n, n) || !force.alloc(n, std::max(heads, 1)) ||
        !pivots.alloc(n)) {
        error = "there is not enough memory";
        return false;
    }
    const auto mode = [&](int k) { return system.free[static_cast<std::size_t>(k - 1)]; };
    // Rotations times the length, so that all unknowns and equations are of one size.
    const auto lever = [&](int k) { return is_rotation(p2f, mode(k)) ? L : 1; };
    const SerialBlas serial;
    for (int t = 1; t <= p2f.NPER; ++t) {
        if (frequency_kind(p2f, t) != Frequency::wave) {
            for (int b = 1; b <= heads; ++b)
                for (int m = 1; m <= p2f.NMODES; ++m)
                    xi(m, b, t) = std::numeric_limits<double>::quiet_NaN();
            continue;
        }
        const double w = omega_of(p2f, t);
        double norm = 0;
        for (int j = 1; j <= n; ++j) {
            double column = 0;
            for (int i = 1; i <= n; ++i) {
                const int p = mode(i), q = mode(j);
                S(i, j) = c64(-w * w * (system.M(p, q) + R.A(p, q, t)) + system.C(p, q),
                              w * (R.B(p, q, t) + system.B(p, q))) /
                          (lever(i) * lever(j));
                column += std::abs(S(i, j));
            }
            norm = std::max(norm, column);
        }
        for (int b = 1; b <= heads; ++b)
            for (int i = 1; i <= n; ++i)
                force(i, b) = X(mode(i), b, t) / lever(i);
        int info = 0, failed_at = 0;
        zgetrf_(&n, &n, S.data(), &n, pivots.data(), &info);
        if (info > 0) {
            failed_at = info;
        } else {
            double rcond = 0;
            std::vector<c64> work(static_cast<std::size_t>(2 * n));
            std::vector<double> more(static_cast<std::size_t>(2 * n));
            int status = 0;
            zgecon_("1", &n, S.data(), &n, &norm, &rcond, work.data(), more.data(), &status, 1);
            for (int k = 1; !(rcond > SINGULAR) && k <= n; ++k)
                if (failed_at == 0 || std::abs(S(k, k)) < std::abs(S(failed_at, failed_at)))
                    failed_at = k;
        }
        if (failed_at > 0) {
            error = "the equations of motion are singular at the period " +
                    std::to_string(period_of(p2f, t)) + " s: nothing determines " +
                    full_mode_name(p2f, mode(failed_at)) + "; give it mass or stiffness, or hold it (fixed)";
            return false;
        }
        zgetrs_("N", &n, &heads, S.data(), &n, pivots.data(), force.data(), &n, &info, 1);
        for (int b = 1; b <= heads; ++b)
            for (int i = 1; i <= n; ++i)
                xi(mode(i), b, t) = force(i, b) / lever(i);
    }
    return true;
}

std::array<c64, 3> point_motion(const P2fFile &p2f, const CasePoint &point, const View<const c64, 1> &xi) {
    const PlaceMotion G = place_motion(p2f, point.body, global_place(p2f, point.body, point.at));
    const int before = modes_before(p2f, point.body);
    std::array<c64, 3> motion{};
    for (std::size_t k = 0; k < 3; ++k)
        for (int m = 1; m <= 6; ++m)
            motion[k] += G[k][static_cast<std::size_t>(m - 1)] * xi(before + m);
    return motion;
}

c64 incident_elevation(const P2fFile &p2f, const CasePoint &point, int heading, int period) {
    const double L = static_cast<double>(p2f.ULEN(1));
    const Vec3 at = global_place(p2f, point.body, point.at);
    return incident_wave(p2f, period, heading, {at[0] / L, at[1] / L, 0}).phi;
}
