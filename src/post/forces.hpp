// Exciting force, added mass and damping of a hand-over file, dimensional, each in the ways that the theory
// has.
#pragma once

#include "post/images.hpp"
#include "post/names.hpp"

#include <string>

// Forces per unit wave amplitude (NMODES,NBETA,NPER), about the origins of the bodies and in their axes, the
// phase against the wave at the global origin. 0 for modes that were not solved.
struct ExcitingForces {
    Array<c64, 3> froude_krylov; // of the incident wave alone
    Array<c64, 3> scattering;    // what the body adds to it
    Array<c64, 3> pressure;      // their sum
    Array<c64, 3> haskind;       // from the radiation potentials; empty where `no_haskind` tells why
    std::string no_haskind;
};

// The Froude-Krylov part is the integral of the incident wave over the panels, by four points with IQUAD=1;
// the scattering part that of the diffraction potential less the incident wave at the centroids. Haskind's
// relation (M. D. Haskind 1957; J. N. Newman, J. Ship Res. 6, 1962) has
//   X(i) = rho g integral of (phi_I VEL(i) - phi_i dphi_I/dn)
// over the wetted surface of all bodies. At zero frequency the force is that of a level raised by 1: the
// waterplane's; at infinite frequency it is 0. False, with what to switch on in the run in `error`, without
// diffraction, or when memory is refused.
[[nodiscard]] bool form_exciting(const P2fFile &p2f, const Scales &scales, ExcitingForces &X,
                                 std::string &error);

// Added mass and damping (NMODES,NMODES,NPER): the symmetric part and what is antimetric, which the mesh
// alone leaves: A(i,j) = A(i,j) of the symmetric plus that of the antimetric part. Damping is 0 at both
// limits.
struct RadiationForces {
    Array<double, 3> A, A_odd, B, B_odd;
};
[[nodiscard]] bool form_radiation(const P2fFile &p2f, const Scales &scales, RadiationForces &R,
                                  std::string &error);

// Largest difference of two forces at a period over the modes of the same kind as `mode` (translations of its
// body, rotations of it, the one extra mode) and all headings, over the largest of the first; 0 without
// force.
double relative_difference(const P2fFile &p2f, const Array<c64, 3> &a, const Array<c64, 3> &b, int mode,
                           int period);

// Force on each mode, from 0, of a level raised by 1: that of the waterplane.
std::vector<double> level_forces(const P2fFile &p2f, const Scales &scales);
