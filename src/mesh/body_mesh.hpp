// The panels of a body as such: nothing about waves. Lengths in units of ULEN, axes of the run, z = 0 in the
// free surface.
#pragma once

#include <array>
#include <vector>

using BodyPoint = std::array<double, 3>;

enum class PanelKind {
    hull,     // wetted surface, normal into the body
    interior, // free surface inside the body, normal down
    made,     // added by the program: projections and generated panels
    plate,    // a dipole panel
    lid       // of a damping lid
};
struct BodyPanel {
    std::array<BodyPoint, 4> at; // anti-clockwise seen from the water; a triangle has two equal neighbours
    PanelKind kind = PanelKind::hull;
};

struct BodyMesh {
    std::vector<BodyPanel> panels; // panel NP of the body at NP - 1
    // Planes x = 0 and y = 0: of symmetry (the panels are a half or a quarter), or walls.
    bool symmetric[2] = {false, false};
    bool wall[2] = {false, false};
    double depth = 0;  // of the water; 0 or less: infinite
    bool tank = false; // a filled tank: normals out of the fluid, z = 0 means nothing
};

// Length of the longest side, and of the rectangle of that side and the panel's area.
struct PanelShape {
    double area = 0;
    double longest = 0; // side
    double aspect = 0;  // longest side over the height on it
    double warp = 0;    // largest distance of a vertex from the plane, over the longest side
    BodyPoint centre{};
    BodyPoint normal{}; // of length 1, as the program defines it; 0 for a panel without area
};
PanelShape shape_of(const BodyPanel &panel);

// Height that counts as z = 0, over the size of the body.
constexpr double IN_SURFACE = 1.0e-5;

// What the mesh of a body measures, images included.
struct MeshMeasures {
    int given = 0, with_images = 0, interior = 0, made = 0, plates = 0, waterline = 0; // panels
    BodyPoint low{}, high{};                                                           // bounding box
    double volume[3] = {};                     // from the x, y and z integrals over the hull
    double mean_volume = 0;                    // their median
    BodyPoint buoyancy{};                      // centre of buoyancy
    double waterplane = 0;                     // area inside the waterline
    double waterplane_x = 0, waterplane_y = 0; // its centre
    double surface = 0;                        // area of the hull
    double longest = 0, mean = 0;              // side
    double aspect = 0, warp = 0;               // worst
};
MeshMeasures measure(const BodyMesh &mesh);
