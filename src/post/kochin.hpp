// The Kochin function: the waves that a body sends out, far away.
//
// With W = F(z) exp(i K (x cos theta + y sin theta)), F as in docs/theory.md,
//   H(theta) = sum over the wetted surface of (dphi/dn - phi d/dn) W,
//   phi -> -(i/2) M F(z) H(theta) sqrt(2 / (pi K R)) exp(-i (K R - pi/4)),   M = K^2 / (nu + (K^2 - nu^2) h),
// M = K in deep water; lengths in units of ULEN(1). (N. E. Kochin 1940; J. V. Wehausen and E. V. Laitone,
// Surface waves, Handbuch der Physik 9, 1960, for the far field of the Green function.)
#pragma once

#include "post/images.hpp"

#include <string>

// From Green's identity with the potentials of the hull, or from the sources (ISOR=1).
enum class FarFieldOf { potentials, sources };

// The functions of one period at some angles, each with its derivative by the angle.
struct Kochin {
    std::vector<double> theta;       // [rad]
    Array<c64, 2> motion, dmotion;   // of unit motion in each mode (angles,NMODES), 0 for modes not solved
    Array<c64, 2> scatter, dscatter; // of the scattered wave of each heading (angles,NBETA)
};

// Angles at which the trapezoidal rule integrates products of two such functions of the period.
std::vector<double> kochin_angles(const P2fFile &p2f, int t);

// Fills `kochin` for period t at the angles theta; what the file has no solution of stays 0. False, with what
// is missing and what to switch on in the run in `error`: a limit frequency; sources wanted that the file
// does not have; potentials where a lid that takes energy is part of the free surface.
[[nodiscard]] bool form_kochin(const P2fFile &p2f, int t, const std::vector<double> &theta, FarFieldOf from,
                               Kochin &kochin, std::string &error);

// The factor M of the far field.
double far_field_factor(const P2fFile &p2f, int t);

// Damping from the energy of the radiated waves, B(i,j) = M/(4 pi) Re integral of H_i conj(H_j), in the units
// of Coefficients::B; `kochin` at the angles of kochin_angles. False when memory is refused.
[[nodiscard]] bool far_field_damping(const P2fFile &p2f, int t, const Kochin &kochin, Array<double, 2> &B);
