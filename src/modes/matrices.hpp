// Symmetry and matrices of the modes of a body: its six rigid ones, then the extra ones.
#pragma once

#include "modes/pre_file.hpp"
#include "modes/shape.hpp"

using Rows = std::vector<std::vector<double>>;

// The modes of a body, from 0.
struct BodyModes {
    std::vector<ModeShape> shapes;
    std::vector<int> ISYM; // for each mode the rigid mode, 1 to 6, that has its symmetry
};
// The number of the rigid mode that has the symmetry of a shape about the planes of symmetry of the run, 0
// when it is neither even nor odd about one of them; `plane` names that.
int symmetry_of(const ModeShape &shape, const PreFile &pre, char &plane);

// Stiffness of the water's pressure at rest, per density and gravity: the integral of N.u_i (w_j + z div u_j)
// over the wetted hull, N into the body (Newman, Wave effects on deformable bodies, Appl. Ocean Res. 16,
// 1994).
Rows pressure_stiffness(const BodyModes &modes, const PreFile &pre);
// Mass matrix, the integral of u_i.u_j dm. Radii of a part count as four masses at (y +- radius_y, z +-
// radius_z).
Rows mass_of_modes(const BodyModes &modes, const std::vector<MassPart> &parts);
// What weights add to the stiffness: gravity times the integral of (u_i . grad) w_j dm; rigid modes among
// each other are left to the centre of gravity.
Rows weight_stiffness(const BodyModes &modes, const std::vector<MassPart> &parts, double gravity);
// Stiffness of the beam: the integral of EI times curvatures and GJ times twists of i and j.
Rows beam_stiffness(const BodyModes &modes, const std::vector<BeamStretch> &beams);
