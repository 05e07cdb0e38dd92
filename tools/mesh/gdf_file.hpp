// Geometry files as the commands of this program take and give them.
#pragma once

#include "mesh/merge.hpp"

#include <string>
#include <vector>

struct GdfPanel {
    std::array<BodyPoint, 4> at; // length, body axes, in the order of the file
    int IDIP = 0;                // dipole record, as in the file
    double DPORA = 0, DPORB = 0, DTHK = 0;
};
struct GdfBody {
    std::string name; // of the file
    std::string title;
    double ULEN = 1, GRAV = 9.80665;
    int index[2] = {0, 0}; // ISX, ISY
    std::vector<GdfPanel> panels;
    BodyPoint place{};  // XBODY(1..3) of a global file
    double heading = 0; // XBODY(4), degrees
};
// Reads a geometry file, or the bodies of a global one, behind those that are there already; `lids`: it holds
// BDTYP and FSDMP. False: the message is out.
[[nodiscard]] bool read_gdf(const std::string &file, bool lids, std::vector<GdfBody> &bodies);

// The geometry file as text, to an open file.
void put_gdf(std::FILE *file, const GdfBody &body);
// Writes the file of the body, to `name`. False with the reason in `error`; then there is no file.
[[nodiscard]] bool write_gdf(const std::string &name, const GdfBody &body, std::string &error);

// Whether only one side of the plane x = 0 (axis 0) or y = 0 (axis 1) is given.
bool is_mirrored(const GdfBody &body, int axis);
// Adds the images in that plane, behind the panels; the index becomes 0.
void add_images(GdfBody &body, int axis);
// Turns about z by `degrees`, then shifts. Planes of symmetry that the body leaves are given up: its images
// are added first.
void move_body(GdfBody &body, double degrees, const BodyPoint &shift);
// Moves the body to its place in the global file.
void put_in_place(GdfBody &body);
// The other order of vertices; a triangle keeps its form.
void reverse(GdfPanel &panel);
// Divides each panel in four by the middles of its sides; a triangle in four triangles. The panels stay in
// their faces: a curved surface is not followed any closer.
void divide(GdfBody &body);
// The panels as points and numbers, and back.
MergedVertices mesh_of(const GdfBody &body);
// The same with all panels by their numbers, also those that tidying leaves out; vertices nearer than `same`
// over the size are one.
MergedVertices joined(const GdfBody &body, double same);
std::vector<GdfPanel> panels_of(const MergedVertices &mesh);
