// The PRE file of a body: its panels, as the first pass of a run leaves them.
#pragma once

#include "modes/mode_file.hpp"

struct PrePanel {
    Vec3 at{};    // centroid in the axes of the body, user's length
    double z = 0; // its height over the free surface
    double area = 0;
    Vec3 normal{};                 // into the body, in its axes; 0 for a panel in the free surface
    std::array<double, 6> rigid{}; // normal velocities of the rigid modes, as in the file
    bool plate = false;            // without thickness: the water is on both sides
};
struct PreFile {
    int ISX = 0, ISY = 0; // symmetry of the run: 1 half of the body about x = 0, y = 0; -1 a wall there
    std::vector<PrePanel> panels;
};
// Reads the file and moves the panels to the axes of the body. False with the reason in `error`: it is no
// such file or not whole, or the place and heading of `file` are not those of the run.
[[nodiscard]] bool read_pre(const std::string &name, const ModeFile &file, PreFile &pre, std::string &error);
