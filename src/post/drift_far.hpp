// Mean drift force and yaw moment on all bodies together, from the waves far away.
//
// With H the Kochin function of the scattered and radiated waves of a heading beta, per wave amplitude
// squared and rho g, lengths in units of ULEN(1):
//   (Fx, Fy) = K M / (8 pi nu) integral of |H|^2 (cos beta - cos theta, sin beta - sin theta)
//              - K / (2 nu) (cos beta, sin beta) Q,   Q = M/(4 pi) integral of |H|^2 + Im H(beta),
//   Mz = M / (8 pi nu) integral of Im(conj(H) H') - Re H'(beta) / (2 nu).
// -Q is what the bodies take out of the waves. It is formed on the hull, Q = Im integral of conj(phi)
// dphi/dn, so that the forward wave, whose error counts in full, is read for a check alone. (H. Maruo, J.
// Ship Research 4(3), 1960; J. N. Newman, J. Ship Research 11(1), 1967.)
#pragma once

#include "post/hull_state.hpp"
#include "post/kochin.hpp"

// Of one heading, over rho g L amplitude^2 (moment: rho g L^2), L = ULEN(1); global axes and origin.
struct FarDrift {
    double surge = 0, sway = 0, yaw = 0;
    double taken = 0; // energy taken out of the waves, -Q
    // What the energy of the far field lacks, as a fraction of M/(4 pi) integral of |H|^2: (Q of the waves
    // less Q of the hull). 0 with a lid body, whose losses only the waves tell.
    double imbalance = 0;
};

// All headings of period t. False with the reason in `error`: as form_kochin and form_hull_state; beside
// walls, through which momentum goes.
[[nodiscard]] bool form_far_drift(const P2fFile &p2f, int t, Motions xi, FarFieldOf from,
                                  std::vector<FarDrift> &drift, std::string &error);
