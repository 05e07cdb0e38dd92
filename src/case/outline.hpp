// The panels of a body as far as a plan needs them: counts, extent, and where bodies lie in each other.
#pragma once

#include "case/run_case.hpp"
#include "mesh/body_mesh.hpp"

struct Outline {
    double ULEN = 1, GRAV = 0;
    int index[2] = {0, 0}; // ISX, ISY
    int given = 0;         // panels in the file
    int with_images = 0;
    bool has_interior = false; // panels in z = 0
    bool reaches_surface = false;
    BodyPoint low{}, high{};       // with images, global axes [m]
    double mean_area = 0;          // of the hull's panels [m^2]
    int wet_sides = 0;             // sides in the waterline, with images
    double mean_side = 0;          // their mean length [m]
    std::vector<BodyPanel> panels; // of the hull with images, global axes [m]
    std::string title;
};

// Reads a geometry file of one body and puts it in its place. False with the reason in `error`.
[[nodiscard]] bool read_outline(const std::string &file, const RunBody &body, Outline &outline,
                                std::string &error);

// Area that the hull covers, seen from above: the inside of the waterline of a body that reaches the surface.
double waterplane(const Outline &outline);

// About how many panels the solver makes inside the waterline, images counted: rings where sources are
// solved, else an advancing front.
double panels_made(const Outline &outline, int ISOR);

// Whether a panel of one body lies inside the other, or both have panels in the same place.
bool overlap(const Outline &a, const Outline &b);
