// Natural periods and modes of the bodies of a hand-over file.
#pragma once

#include "post/motions.hpp"

struct NaturalMode {
    double omega = 0;          // [rad/s]
    double damping = 0;        // fraction of critical: radiation and external, of this shape
    std::vector<double> shape; // of all modes, rotations times ULEN(1); the largest in size is 1
    bool outside = false;      // beyond the frequencies of the run: added mass of the nearest one
};

// Solves C v = omega^2 (M + A(omega)) v without damping, A at the natural frequency itself: linear between
// the frequencies of the run, constant outside. Rising frequencies; a mode that meets its own frequency more
// than once is there as often. Modes without stiffness have none. `notes` tells of shapes with negative
// stiffness. False, with the reason in `error`, when M + A has no solution or memory is refused.
[[nodiscard]] bool form_natural(const P2fFile &p2f, const MotionSystem &system, const RadiationForces &R,
                                std::vector<NaturalMode> &modes, std::vector<std::string> &notes,
                                std::string &error);
