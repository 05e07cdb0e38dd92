// Masses spread along a body.
#pragma once

#include <array>
#include <vector>

// A mass spread evenly along x from one place to another (a point mass if both are one), in the axes of the
// body, with its centre at (y, z) and the radii of the mass about it across.
struct MassPart {
    double mass = 0, from = 0, to = 0;
    double y = 0, z = 0, radius_y = 0, radius_z = 0;
};

// Mass, centre and inertia of the parts together: the matrix of the six rigid modes about the body's origin.
using RigidMatrix = std::array<std::array<double, 6>, 6>;
RigidMatrix mass_matrix(const std::vector<MassPart> &parts);

// The parts as one rigid body: inertia about axes through the centre.
struct PartsTogether {
    double mass = 0;
    std::array<double, 3> centre{};
    std::array<std::array<double, 3>, 3> inertia{};
};
PartsTogether together(const std::vector<MassPart> &parts);
