#include "post/result_tables.hpp"

#include <algorithm>
#include <cmath>

Table particulars_table(const std::vector<BodyHydrostatics> &bodies, const std::vector<BodyMass> &masses,
                        const Scales &scales) {
    Table table;
    table.name = "particulars";
    table.title = "Hydrostatics";
    table.columns = {{"body", ""}, {"quantity", ""}, {"unit", ""}, {"value", "", Look::scientific}};
    const std::string L = scales.names.length;
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        const BodyHydrostatics &body = bodies[b];
        const BodyMass &mass = masses[b];
        const double size = std::max({body.highest[0] - body.lowest[0], body.highest[1] - body.lowest[1],
                                      body.highest[2] - body.lowest[2]});
        // Lengths that are round-off of the size of the body are 0.
        const auto add = [&](const std::string &what, const std::string &unit, double value, int power) {
            if (power > 0 && std::abs(value) < ROUND_OFF * std::pow(size, power))
                value = 0;
            table.rows.push_back({static_cast<double>(b + 1), what, unit, value});
        };
        const auto place = [&](const std::string &what, const Vec3 &x, std::size_t n) {
            for (std::size_t c = 0; c < n; ++c)
                add(what + " " + "xyz"[c], L, x[c], 1);
        };
        const std::string L3 = L + "^3";
        add("volume by x", L3, body.volumes[0], 3);
        add("volume by y", L3, body.volumes[1], 3);
        add("volume by z", L3, body.volumes[2], 3);
        add("volume", L3, body.volume, 3);
        add("displacement", scales.names.mass, scales.density * body.volume, 0);
        place("centre of buoyancy", body.buoyancy, 3);
        place("centre of buoyancy; global", body.buoyancy_global, 3);
        add("wetted surface", L + "^2", body.wetted_surface, 2);
        add("waterplane area", L + "^2", body.waterplane_area, 2);
        place("centre of floatation", body.floatation, 2);
        place("centre of floatation; global", body.floatation_global, 2);
        add("second moment xx of the waterplane", L + "^4", body.second_xx, 4);
        add("second moment xy of the waterplane", L + "^4", body.second_xy, 4);
        add("second moment yy of the waterplane", L + "^4", body.second_yy, 4);
        add("mass", scales.names.mass, mass.mass, 0);
        place("centre of gravity", mass.centre, 3);
        const MetacentricHeights GM = metacentric_heights(body, mass);
        add("transverse metacentric height GM", L, GM.transverse, 1);
        add("longitudinal metacentric height GM", L, GM.longitudinal, 1);
    }
    table.notes.emplace_back(
        "Places are in the axes of the body, from its origin, but where global is said.");
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        constexpr double MESH = 1e-3, FLOATS = 0.01; // of the volume
        const BodyHydrostatics &body = bodies[b];
        const auto [least, most] = std::minmax_element(body.volumes.begin(), body.volumes.end());
        const std::string name = "WARNING: body " + std::to_string(b + 1);
        if (*most - *least > MESH * std::abs(body.volume))
            table.notes.push_back(name +
                                  ": the volumes differ, its panels do not close up to the waterplane.");
        if (std::abs(masses[b].mass - scales.density * body.volume) > FLOATS * scales.density * body.volume)
            table.notes.push_back(name + ": its mass is not that of the displaced water.");
    }
    return table;
}

Table stiffness_table(const P2fFile &p2f, const std::vector<BodyHydrostatics> &bodies,
                      const std::vector<BodyMass> &masses, const Scales &scales, bool global) {
    Table table;
    table.name = "stiffness";
    table.title = global ? "Stiffness about the origins of the bodies, in axes parallel to the global ones"
                         : "Stiffness about the origins of the bodies, in their axes";
    table.leave_out_zeros = true;
    const std::string unit = scales.names.force + " " + scales.names.length + "^k";
    table.columns = {{"body", ""}, {"mode i", ""}, {"mode j", ""}, {"k", ""}};
    for (const char *part : {"waterplane", "buoyancy", "weight", "extra modes", "all"})
        table.columns.push_back({part, unit, Look::scientific});
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        const Stiffness6 C = stiffness_of(bodies[b], masses[b], scales.density, scales.gravity);
        Matrix6 parts[3] = {C.waterplane, C.buoyancy, C.weight};
        if (global)
            for (Matrix6 &part : parts)
                part = in_global_axes(part, bodies[b].heading);
        double largest[3] = {}; // by number of rotations
        for (const Matrix6 &part : parts)
            for (std::size_t i = 0; i < 6; ++i)
                for (std::size_t j = 0; j < 6; ++j)
                    largest[i / 3 + j / 3] = std::max(largest[i / 3 + j / 3], std::abs(part[i][j]));
        const double L = std::max(1e-30, bodies[b].highest[0] - bodies[b].lowest[0]);
        largest[1] = std::max(largest[1], std::sqrt(largest[0] * largest[2]) + largest[0] * L);
        const int body = static_cast<int>(b) + 1, before = modes_before(p2f, body), n = 6 + p2f.NEWMDS(body);
        for (int i = 1; i <= n; ++i)
            for (int j = 1; j <= n; ++j) {
                const int levers = rotations(p2f, before + i) + rotations(p2f, before + j);
                std::vector<Cell> cells = {static_cast<double>(body), mode_name({body, i}),
                                           mode_name({body, j}), static_cast<double>(levers - 1)};
                double sum = 0;
                for (const Matrix6 &part : parts) {
                    double value =
                        i <= 6 && j <= 6
                            ? part[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(j - 1)]
                            : 0;
                    if (std::abs(value) < ROUND_OFF * largest[levers])
                        value = 0;
                    cells.emplace_back(value);
                    sum += value;
                }
                const double extra =
                    i <= 6 && j <= 6 ? 0
                                     : scales.density * scales.gravity * std::pow(scales.length, 2 + levers) *
                                           static_cast<double>(p2f.CHYD(before + i, before + j));
                cells.emplace_back(extra);
                cells.emplace_back(sum + extra);
                table.rows.push_back(std::move(cells));
            }
    }
    return table;
}
