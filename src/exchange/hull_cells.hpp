// The panels of a run with their images as polygons in space.
#pragma once

#include "exchange/vtu_file.hpp"
#include "post/images.hpp"
#include "post/vector3.hpp"

// What a cell is.
enum class CellKind {
    hull,
    plate,
    inside,
    surface
}; // inside: interior free surface and lids; surface: outside

struct HullCell {
    CellKind kind = CellKind::hull;
    int body = 0;  // from 1; 0 for free surface outside
    int panel = 0; // number in the file, from 1; of the free surface outside in its own list
    int image = 1; // counted from 1 as in images_of
    int IFSP = 0;
    double area = 0;
    Vector3 normal{}; // out of the fluid
    std::vector<Vector3> corners;
};
// All of them in global axes, dimensional by `length`: the panels and then their images, without those behind
// walls; free-surface panels where the file has them. Corners go around so that their normal is that of the
// panel, or all the other way, as the file has them.
std::vector<HullCell> hull_cells(const P2fFile &p2f, double length);

// Points, corners and ends of a file. Panels keep corners of their own, so that bodies can move.
void add_geometry(const std::vector<HullCell> &cells, VtuFile &file);
// body, panel, image, kind, IFSP, area and normal of each.
void add_marks(const std::vector<HullCell> &cells, const std::string &length_unit, VtuFile &file);
