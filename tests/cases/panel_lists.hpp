// Panels of a quarter, made here or by vorda-mesh, and the geometry files of their halves and wholes.
#pragma once

#include "case_folder.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace panel_lists {

using Point = std::array<double, 3>;
struct GdfPanel {
    std::array<Point, 4> vertex;
    std::string mark = "0 0 0 0"; // dipole record
};
using List = std::vector<GdfPanel>;

// Quarter of a surface of revolution, `down` panels along the line from (r0, z0) to (r1, z1); `turned` turns
// the normals.
struct Ring {
    double r0, z0, r1, z1;
    int around, down;
    bool turned;
};
inline List rings(const std::vector<Ring> &all) {
    List list;
    for (const Ring &ring : all) {
        for (int i = 0; i < ring.around; ++i) {
            for (int j = 0; j < ring.down; ++j) {
                const auto at = [&](int a, int d) -> Point {
                    const double angle = std::acos(0.0) * a / ring.around,
                                 part = static_cast<double>(d) / ring.down;
                    const double r = ring.r0 + (ring.r1 - ring.r0) * part;
                    return {r * std::cos(angle), r * std::sin(angle), ring.z0 + (ring.z1 - ring.z0) * part};
                };
                GdfPanel panel{{at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1)}};
                if (ring.turned)
                    std::reverse(panel.vertex.begin(), panel.vertex.end());
                list.push_back(panel);
            }
        }
    }
    return list;
}

// The panels that vorda-mesh makes, a quarter unless the arguments say otherwise; `mark` goes to all.
inline List made(const std::string &arguments, const std::string &mark = "0 0 0 0") {
    const CaseFolder folder;
    make_mesh(folder, arguments, "made.gdf");
    std::istringstream in(folder.read("made.gdf"));
    std::string line;
    for (int i = 0; i < 3; ++i)
        std::getline(in, line);
    int n = 0;
    in >> n;
    std::getline(in, line);
    List list(static_cast<std::size_t>(n));
    for (GdfPanel &panel : list) {
        panel.mark = mark;
        for (Point &p : panel.vertex)
            in >> p[0] >> p[1] >> p[2];
    }
    return list;
}

inline List operator+(List a, const List &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// With the mirror images in the plane where coordinate `axis` is 0.
inline List mirrored(const List &list, std::size_t axis) {
    List both = list;
    for (GdfPanel panel : list) {
        for (Point &p : panel.vertex)
            p[axis] = -p[axis];
        std::reverse(panel.vertex.begin(), panel.vertex.end());
        both.push_back(panel);
    }
    return both;
}

inline std::string gdf(const List &list, const std::string &indices = "1 1") {
    const auto is_dipole = [](const GdfPanel &panel) { return panel.mark[0] != '0'; };
    const bool dipoles = std::any_of(list.begin(), list.end(), is_dipole);
    std::ostringstream out;
    out.precision(9);
    out << "panels\n 1 9.80665\n " << indices << "\n " << list.size() << (dipoles ? " 1" : "") << "\n";
    for (const GdfPanel &panel : list)
        for (const Point &p : panel.vertex)
            out << " " << p[0] << " " << p[1] << " " << p[2] << "\n";
    for (const GdfPanel &panel : list)
        if (dipoles)
            out << panel.mark << "\n";
    return out.str();
}

inline SolvedRun solve_gdf(const std::string &text, const Pot &pot, const std::string &config = "") {
    const CaseFolder folder;
    prepare(folder, pot, config);
    folder.write("run.gdf", text);
    return solved(folder);
}

} // namespace panel_lists
