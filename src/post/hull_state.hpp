// What one heading makes on the hull: the total wave of a period, with the motions of the bodies.
//
// Potentials are in the unit of the incident wave, modulus 1 in z = 0: pressure rho g times amplitude times
// phi, elevation amplitude times phi in z = 0. A motion xi (over the wave amplitude) adds nu xi PHIR.
#pragma once

#include "post/images.hpp"

#include <string>

// Motions of a period, complex and per metre of wave amplitude, [m/m] or for a rotation [rad/m]
// (NMODES,NBETA), in the axes of each body about its origin. Without elements: all bodies are held fixed.
using Motions = View<const c64, 2>;
inline bool moves(Motions xi) {
    return xi.data() != nullptr;
}

// The parts of the wave on the panels and their images, images in the order of images_of.
struct HullState {
    Array<c64, 2> phi; // (NEQN,images)
    Array<c64, 2> vn;  // normal velocity that the motions ask for, 0 without them (NEQN,images)
    // Only when asked for:
    Array<c64, 3> velocity; // at the centroids, global axes, with the incident wave (3,NEQN,images)
    Array<c64, 2> source;   // strengths, without the incident wave (NEQN,images)
};
struct HullWants {
    bool velocity = false, source = false; // both need ISOR=1
};

enum class Part { diffraction, radiation, total };

// Fills `state` for period t and heading b. False with the reason in `error`: what the file lacks and what to
// switch on in the run, a limit frequency, a motion of a mode that was not solved, a symmetry class of the
// diffraction that was not solved, no memory.
[[nodiscard]] bool form_hull_state(const P2fFile &p2f, int t, int b, Motions xi, Part part, HullWants wants,
                                   HullState &state, std::string &error);
