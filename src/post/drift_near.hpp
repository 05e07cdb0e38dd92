// Mean drift force and moment on each body, from the pressures on it.
//
// Per wave amplitude squared and rho g, lengths in units of ULEN(1), N into the body, xi and alpha the motion
// of the origin and the rotation, X = xi + alpha x r:
//   F = 1/4 integral along the waterline of |phi - X_z|^2 N / sqrt(1 - N_z^2)              waterline
//     - 1/(4 nu) integral of |grad phi|^2 N                                               velocity
//     + 1/2 Re integral of (X . grad conj(phi)) N                                         motion
//     + 1/2 Re(conj(alpha) x integral of (phi - X_z) N) + <H> F0 - integral of (<H> r)_z N   rotation
// and M alike with r x N, with xi x F in the last line. F0 is the buoyancy, H the second-order part of the
// rotation, <H>_ij = 1/4 Re(alpha_i conj(alpha_j)) - 1/4 |alpha|^2 delta_ij: that of the rotation vector
// alpha, which prefers no order of roll, pitch and yaw. (J. A. Pinkster, Low frequency second order wave
// exciting forces on floating structures, 1980.)
#pragma once

#include "post/hull_state.hpp"
#include "post/surface_gradient.hpp"

#include <array>

constexpr int NEAR_DRIFT_TERMS = 4;
extern const char *const NEAR_DRIFT_NAMES[NEAR_DRIFT_TERMS]; // "waterline", "velocity", "motion", "rotation"

// Of one body in waves of one heading: force over rho g L amplitude^2, moment about the mean place of the
// origin of the body over rho g L^2 amplitude^2, in global axes.
struct NearDrift {
    std::array<std::array<double, 6>, NEAR_DRIFT_TERMS> term{};
    double total(std::size_t component) const;
};

// drift[b-1][body-1] for all headings b of period t. False with the reason in `error`: as form_hull_state
// with velocities; plates, whose two sides the file does not tell apart; moving extra modes, of which it
// holds the normal displacement only.
[[nodiscard]] bool form_near_drift(const P2fFile &p2f, int t, Motions xi,
                                   std::vector<std::vector<NearDrift>> &drift, std::string &error);
// The same with the gradient of these panels, for many periods.
[[nodiscard]] bool form_near_drift(const P2fFile &p2f, int t, Motions xi, const SurfaceGradient &gradient,
                                   std::vector<std::vector<NearDrift>> &drift, std::string &error);
