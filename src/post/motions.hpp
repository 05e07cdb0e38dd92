// Motions of the bodies of a hand-over file in waves of unit amplitude.
#pragma once

#include "post/case_file.hpp"
#include "post/forces.hpp"

// What the equations of motion need beside the solution of the run, (NMODES,NMODES), dimensional.
struct MotionSystem {
    Array<double, 2> M;             // mass
    Array<double, 2> B;             // external damping
    Array<double, 2> C;             // stiffness: water, weight and external
    std::vector<int> free;          // modes that move, from 1: solved and not held
    std::vector<std::string> notes; // what a reader of the results has to know
};

// Puts it together. False, with the reason in `error`: a damping as a fraction of the critical one in a mode
// without stiffness, memory refused, nothing that moves.
[[nodiscard]] bool form_system(const P2fFile &p2f, const CaseFile &file,
                               const std::vector<BodyHydrostatics> &bodies, const RadiationForces &R,
                               const Scales &scales, MotionSystem &system, std::string &error);

// Periods of the run by rising frequency, the one at infinite frequency last.
std::vector<int> by_frequency(const P2fFile &p2f);
// Where a frequency stands among those of the run: values are linear in omega between two of them, constant
// outside. The zero-frequency limit takes part, that at infinite frequency does not. Periods 0: the run has
// none.
struct Bracket {
    int below = 0, above = 0; // periods
    double share = 0;         // of the one above
    double of(const Array<double, 3> &values, int i, int j) const {
        return below == 0 ? 0 : (1 - share) * values(i, j, below) + share * values(i, j, above);
    }
};
Bracket bracket_of(const P2fFile &p2f, double omega);

// Solves (-omega^2 (M + A) + i omega (B_radiation + B) + C) xi = X for all periods with waves and all
// headings: xi in length or rad per length (NMODES,NBETA,NPER), about the origins and in the axes of the
// bodies, 0 for modes that do not move, NaN at limit frequencies. False, with the mode and the period in
// `error`, for a singular system.
[[nodiscard]] bool form_motions(const P2fFile &p2f, const MotionSystem &system, const RadiationForces &R,
                                const Array<c64, 3> &X, Array<c64, 3> &xi, std::string &error);

// Displacement, in global axes, of a point that moves with the rigid modes of a body, by the motions of all
// modes.
std::array<c64, 3> point_motion(const P2fFile &p2f, const CasePoint &point, const View<const c64, 1> &xi);
// Elevation of the incident wave over the point at rest.
c64 incident_elevation(const P2fFile &p2f, const CasePoint &point, int heading, int period);

// "body 2, roll" and the like, without the body when there is one.
std::string full_mode_name(const P2fFile &p2f, int mode);
