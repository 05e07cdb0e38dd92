// VTK's XML files of unstructured grids: points, polygons on them, values at either; and of series of them.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

struct VtuArray {
    std::string name, unit; // no unit: a number or a mark
    int components = 1;     // 1, or 3 of a vector
    std::variant<std::vector<float>, std::vector<double>, std::vector<std::int32_t>> values;
};

struct VtuFile {
    std::vector<std::pair<std::string, std::string>> attributes; // of the whole file: lower-case name, text
    std::vector<double> points;                                  // x, y, z of each
    std::string point_unit = "m";
    std::vector<std::int32_t> corners; // of all cells one after the other: points, counted from 0
    std::vector<std::int32_t> ends;    // of each cell: how many of `corners` there are up to it
    std::vector<VtuArray> on_points, on_cells;
};

// Writes NAME with its arrays as appended binary data, units as VTK's key UNITS_LABEL. Cells of three corners
// are triangles, of four quadrilaterals, of more polygons. False, with the reason in `error`, when it cannot
// be written; then there is no file.
[[nodiscard]] bool write_vtu(const std::string &name, const VtuFile &file, std::string &error);

// A file of a series: at that time [s], or whatever the series runs over; files of one time are its parts.
struct PvdStep {
    double time = 0;
    int part = 0;
    std::string file; // name as seen from the folder of the series
};
// Writes a series (.pvd), likewise.
[[nodiscard]] bool write_pvd(const std::string &name,
                             const std::vector<std::pair<std::string, std::string>> &attributes,
                             const std::vector<PvdStep> &steps, std::string &error);
