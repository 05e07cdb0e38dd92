// The modes file of vorda-modes: shapes of the extra modes of a body, its masses along the length and its
// stiffness as a beam. Places in the axes of the body, lengths in the user's unit.
#pragma once

#include "post/case_file.hpp"

// A factor and the powers of x, y, z.
struct PolynomialTerm {
    double factor = 0;
    std::array<int, 3> powers{};
};
using Polynomial = std::vector<PolynomialTerm>;

// One mode as the file has it; which values count depends on the type.
struct ModeEntry {
    int line = 0;
    std::string type;
    int number = 1;                     // of the beam's modes from the lowest; which displacement of the file
    std::string direction = "vertical"; // of a beam: vertical, horizontal, torsion
    double from = 0, to = 0;            // its ends along x
    double y = 0, z = 0;                // its axis
    std::array<Polynomial, 3> terms;    // displacement along x, y, z
    Vec3 at{};                          // of a hinge
    int axis = 1;                       // it turns about: 0, 1, 2
    double fore = 1, aft = 0;           // turns of the parts before and behind it [rad]
    double spring = 0;                  // moment per turn of one part against the other
    std::string file, method;           // displacements at points
    int neighbours = 12;                // points that count at a place
    int like = 0;                       // rigid mode that it has the symmetry of; 0: found from its shape
    std::optional<double> mass, stiffness; // generalised, in the place of what parts and beams give
};
// A stretch of the beam: bending stiffness in both planes, torsional stiffness.
struct BeamStretch {
    double from = 0, to = 0, ei_vertical = 0, ei_horizontal = 0, gj = 0;
};
struct ModeFile {
    std::string name, folder; // the file and the folder that it stands in
    std::string title;
    double unit_length = 1, gravity = 9.80665;
    Vec3 place{};       // XBODY of the run
    double heading = 0; // [deg]
    int number = 1;     // of the body in the run
    std::vector<ModeEntry> modes;
    std::vector<MassPart> parts;
    std::vector<BeamStretch> beams;
    // "file, line n: why".
    std::string at(int line, const std::string &why) const;
};

// All keys of the file, from which it is checked and documented.
const std::vector<CaseKey> &mode_keys();

// Reads the file. False, with file, line, what was found and what to do in `error`.
[[nodiscard]] bool read_mode_file(const std::string &name, ModeFile &file, std::string &error);
