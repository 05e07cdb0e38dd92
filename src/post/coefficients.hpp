// Added mass, damping and exciting forces from the potentials of a hand-over file.
#pragma once

#include "post/names.hpp"
#include "post/p2f_reader.hpp"
#include "post/table.hpp"

// Non-dimensional: A over rho L^k, B over rho omega L^k, X over rho g L^(k-1) per unit wave amplitude, with L
// = ULEN(1) and k = 3 plus the number of rotations among the modes concerned (X: k = 3 or 4).
struct Coefficients {
    Array<f32, 3> A; // added mass (NMODES,NMODES,NPER)
    Array<f32, 3> B; // damping (NMODES,NMODES,NPER)
    Array<c32, 3> X; // exciting force (NMODES,NBETA,NPER)
};

// A - i B/omega = rho sum of area VEL(i) phi_j, X = rho g sum of area VEL(i) phi_D, over the panels of all
// body images, but for plates that are held in place (IDIP=3). Coefficients of modes of different classes, or
// of modes that were not solved, are 0. False when memory is refused.
[[nodiscard]] bool form_coefficients(const P2fFile &p2f, Coefficients &coefficients);

// Table "radiation": A and B of all pairs of solved modes, all periods. What is below 1e-6 of the largest
// value of its unit at its period is round-off and stands as 0. Dimensional where the scales are.
Table radiation_table(const P2fFile &p2f, const Scales &scales, const Coefficients &coefficients);
// Table "exciting": X of all solved modes, headings and periods, likewise.
Table exciting_table(const P2fFile &p2f, const Scales &scales, const Coefficients &coefficients);
