// Loads in the sections of a body: shear, bending and torsion from pressures and distributed masses.
//
// A section is the plane x = station of the body. Its load is what the part ahead of it (larger x) does to
// the part behind, in the axes of the body, moments about a point of the section: force along x, y
// (horizontal shear), z (vertical shear), moment about x (torsion), y (vertical bending), z (horizontal
// bending). Of the part behind,
//   load = sum of mass times (acceleration + gravity turned with the body) - integral of pressure times N,
// with the pressure of the waves, of the motions and of the change of depth. What moorings and the like do to
// the part is not in it: ahead of the bow the load is what the rest of the equation of motion leaves.
#pragma once

#include "post/hull_state.hpp"
#include "post/mass_parts.hpp"
#include "post/names.hpp"

struct SectionLoad {
    double station = 0;
    std::array<c64, 6> wave{};    // per unit amplitude
    std::array<double, 6> calm{}; // in still water, not per amplitude
};

struct SectionRequest {
    int body = 1;
    std::vector<MassPart> parts;
    std::vector<double> stations;
    double y = 0, z = 0; // where the moments are taken about
};

// Of heading b in period t; dimensional by the scales. False with the reason in `error`: as form_hull_state;
// no density; moving extra modes.
[[nodiscard]] bool form_section_loads(const P2fFile &p2f, int t, int b, Motions xi, const Scales &scales,
                                      const SectionRequest &request, std::vector<SectionLoad> &loads,
                                      std::string &error);
