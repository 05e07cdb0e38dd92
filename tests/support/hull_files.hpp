// Hulls as lists of panels, and the texts of mesh files that hold them.
#pragma once

#include "mesh/body_mesh.hpp"

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

using Quads = std::vector<std::array<BodyPoint, 4>>; // anti-clockwise seen from outside

// The faces of all cells that `full` marks, on a grid with these coordinates along each axis.
inline Quads faces_of_cells(const std::array<std::vector<double>, 3> &grid,
                            const std::function<bool(const BodyPoint &)> &full) {
    const auto cell_full = [&](std::array<int, 3> cell) {
        BodyPoint centre;
        for (std::size_t c = 0; c < 3; ++c) {
            const int n = static_cast<int>(grid[c].size()) - 1;
            if (cell[c] < 0 || cell[c] >= n)
                return false;
            const std::size_t i = static_cast<std::size_t>(cell[c]);
            centre[c] = (grid[c][i] + grid[c][i + 1]) / 2;
        }
        return full(centre);
    };
    Quads faces;
    std::array<int, 3> cell;
    for (cell[0] = 0; cell[0] + 1 < static_cast<int>(grid[0].size()); ++cell[0])
        for (cell[1] = 0; cell[1] + 1 < static_cast<int>(grid[1].size()); ++cell[1])
            for (cell[2] = 0; cell[2] + 1 < static_cast<int>(grid[2].size()); ++cell[2])
                for (std::size_t axis = 0; axis < 3 && cell_full(cell); ++axis)
                    for (const int side : {0, 1}) {
                        std::array<int, 3> next = cell;
                        next[axis] += side == 1 ? 1 : -1;
                        if (cell_full(next))
                            continue;
                        const std::size_t u = (axis + 1) % 3, v = (axis + 2) % 3;
                        const int ring[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
                        std::array<BodyPoint, 4> face;
                        for (std::size_t k = 0; k < 4; ++k) {
                            std::array<int, 3> corner = cell;
                            corner[axis] += side;
                            corner[u] += ring[side == 1 ? k : 3 - k][0];
                            corner[v] += ring[side == 1 ? k : 3 - k][1];
                            for (std::size_t c = 0; c < 3; ++c)
                                face[k][c] = grid[c][static_cast<std::size_t>(corner[c])];
                        }
                        faces.push_back(face);
                    }
    return faces;
}
// n equal steps from each value to the next one.
inline std::vector<double> steps(const std::vector<std::pair<double, int>> &ends) {
    std::vector<double> values{ends.front().first};
    for (std::size_t i = 1; i < ends.size(); ++i)
        for (int k = 1; k <= ends[i].second; ++k)
            values.push_back(ends[i - 1].first + (ends[i].first - ends[i - 1].first) * k / ends[i].second);
    return values;
}

inline std::string point_text(const char *format, const BodyPoint &p) {
    char text[120];
    std::snprintf(text, sizeof text, format, p[0], p[1], p[2]);
    return text;
}
using Corners = std::vector<BodyPoint>;
// Each quadrilateral as two triangles; `turned` says of which ones the order is reversed.
inline std::string stl_text(const Quads &quads, const std::function<bool(std::size_t)> &turned = nullptr) {
    std::string text = "solid hull\n";
    std::size_t number = 0;
    for (const auto &q : quads)
        for (Corners t : {Corners{q[0], q[1], q[2]}, Corners{q[0], q[2], q[3]}}) {
            if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0])
                continue;
            if (turned && turned(number++))
                std::swap(t[0], t[1]);
            text += "facet normal 0 0 0\n outer loop\n";
            for (const BodyPoint &p : t)
                text += point_text("  vertex %.9g %.9g %.9g\n", p);
            text += " endloop\nendfacet\n";
        }
    return text + "endsolid hull\n";
}
inline std::string obj_text(const Quads &quads) {
    std::string text = "# hull\n";
    int number = 0;
    for (const auto &q : quads) {
        for (const BodyPoint &p : q)
            text += point_text("v %.9g %.9g %.9g\n", p);
        text += "f";
        for (int v = 1; v <= 4; ++v)
            text += " " + std::to_string(number + v);
        text += "\n";
        number += 4;
    }
    return text;
}
// The quarter x, y > 0 below the surface as a geometry file.
inline std::string quarter_gdf(const Quads &quads) {
    std::string panels;
    int count = 0;
    for (const auto &q : quads) {
        BodyPoint centre{};
        for (const BodyPoint &p : q)
            for (std::size_t c = 0; c < 3; ++c)
                centre[c] += p[c] / 4;
        if (centre[0] <= 0 || centre[1] <= 0 || centre[2] >= 0)
            continue;
        ++count;
        for (const BodyPoint &p : q)
            panels += point_text(" %.9g %.9g %.9g\n", p);
    }
    return "native\n 1 9.80665\n 1 1\n " + std::to_string(count) + "\n" + panels;
}
