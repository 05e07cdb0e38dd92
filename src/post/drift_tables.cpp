#include "post/wave_tables.hpp"

#include <cmath>
#include <limits>

namespace {

constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
constexpr const char *NAMES[] = {"surge", "sway", "heave", "roll", "pitch", "yaw"};

// Of a force over rho g L amplitude^2, of a moment over rho g L^2.
double unit_of(const Scales &scales, std::size_t component) {
    return scales.density * scales.gravity * std::pow(scales.length, component < 3 ? 1 : 2);
}
std::string unit_name(const Scales &scales, std::size_t component) {
    const std::string &l = scales.names.length;
    return scales.names.force + (component < 3 ? "" : " " + l) + "/" + l + "^2";
}

// Force and yaw moment about the global origin of the pressures on all bodies.
void sum_of_bodies(const P2fFile &p2f, const std::vector<NearDrift> &bodies, double (&sum)[3]) {
    for (std::size_t k = 0; k < bodies.size(); ++k) {
        const int body = static_cast<int>(k) + 1;
        const double fx = bodies[k].total(0), fy = bodies[k].total(1);
        sum[0] += fx;
        sum[1] += fy;
        sum[2] += bodies[k].total(5) + static_cast<double>(p2f.XBODY(1, body)) * fy -
                  static_cast<double>(p2f.XBODY(2, body)) * fx;
    }
}

} // namespace

void add_wave_columns(std::vector<Column> &columns, const Scales &scales) {
    add_period_columns(columns, scales);
    columns.push_back({"heading", "deg", Look::fixed, 2});
}

void add_wave_cells(std::vector<Cell> &cells, const P2fFile &p2f, const Scales &scales, WaveCase wave) {
    add_period_cells(cells, p2f, scales, wave.t);
    cells.emplace_back(static_cast<double>(p2f.BETA(wave.b)));
}

Table drift_table(const Scales &scales) {
    Table table;
    table.name = "drift";
    table.title = "Mean drift on all bodies over the amplitude squared, about the global origin";
    add_wave_columns(table.columns, scales);
    table.columns.insert(table.columns.end(), {{"component", ""},
                                               {"unit", ""},
                                               {"far", "", Look::scientific},
                                               {"near", "", Look::scientific},
                                               {"difference", "", Look::fixed, 4}});
    table.notes = {"far: momentum of the waves far away; near: pressures on the hull (ISOR=1).",
                   "difference: near less far, over the largest far force (or moment) of the period."};
    return table;
}

void add_drift_rows(Table &table, const P2fFile &p2f, const Scales &scales, int t,
                    const std::vector<FarDrift> &far, const std::vector<std::vector<NearDrift>> &near) {
    double largest[2] = {};
    for (const FarDrift &drift : far) {
        largest[0] = std::max(largest[0], std::hypot(drift.surge, drift.sway));
        largest[1] = std::max(largest[1], std::abs(drift.yaw));
    }
    for (int b = 1; b <= p2f.NBETA; ++b) {
        const std::size_t at = static_cast<std::size_t>(b) - 1;
        const double waves[3] = {far[at].surge, far[at].sway, far[at].yaw};
        double pressures[3] = {};
        if (!near.empty())
            sum_of_bodies(p2f, near[at], pressures);
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t component = k < 2 ? k : 5;
            const double unit = unit_of(scales, component), size = largest[k < 2 ? 0 : 1];
            std::vector<Cell> cells;
            add_wave_cells(cells, p2f, scales, {t, b});
            cells.emplace_back(std::string(NAMES[component]));
            cells.emplace_back(unit_name(scales, component));
            cells.emplace_back(unit * waves[k]);
            cells.emplace_back(near.empty() ? NONE : unit * pressures[k]);
            // A moment that symmetry leaves out is round-off, and so is its difference.
            const bool counts = !near.empty() && size > 1e-5 * largest[0];
            cells.emplace_back(counts ? (pressures[k] - waves[k]) / size : NONE);
            table.rows.push_back(std::move(cells));
        }
    }
}

Table body_drift_table(const Scales &scales) {
    Table table;
    table.name = "bodies";
    table.title = "Mean drift on each body by the pressures, over the amplitude squared, global axes";
    add_wave_columns(table.columns, scales);
    table.columns.insert(table.columns.end(),
                         {{"body", ""}, {"component", ""}, {"unit", ""}, {"drift", "", Look::scientific}});
    for (const char *name : NEAR_DRIFT_NAMES)
        table.columns.push_back({name, "", Look::scientific});
    table.notes = {"Moments about the mean place of the body's origin. waterline, velocity, motion, "
                   "rotation: the terms."};
    return table;
}

void add_body_drift_rows(Table &table, const P2fFile &p2f, const Scales &scales, int t,
                         const std::vector<std::vector<NearDrift>> &near) {
    for (int b = 1; b <= p2f.NBETA; ++b)
        for (int body = 1; body <= p2f.NBODY; ++body) {
            const NearDrift &drift =
                near[static_cast<std::size_t>(b) - 1][static_cast<std::size_t>(body) - 1];
            for (std::size_t c = 0; c < 6; ++c) {
                std::vector<Cell> cells;
                add_wave_cells(cells, p2f, scales, {t, b});
                cells.emplace_back(static_cast<double>(body));
                cells.emplace_back(std::string(NAMES[c]));
                cells.emplace_back(unit_name(scales, c));
                cells.emplace_back(unit_of(scales, c) * drift.total(c));
                for (const auto &term : drift.term)
                    cells.emplace_back(unit_of(scales, c) * term[c]);
                table.rows.push_back(std::move(cells));
            }
        }
}

Table energy_table(const Scales &scales) {
    Table table;
    table.name = "energy";
    table.title = "Energy of the waves far away";
    const std::string &l = scales.names.length;
    add_wave_columns(table.columns, scales);
    table.columns.push_back(
        {"power taken", scales.names.force + " " + l + "/s/" + l + "^2", Look::scientific});
    table.columns.push_back({"imbalance", "", Look::fixed, 5});
    table.notes = {"power taken: by dampers and porous plates, from the pressures on the hull.",
                   "imbalance: what the waves far away carry beside that, over what the body sends out: the "
                   "error of the mesh."};
    return table;
}

void add_energy_rows(Table &table, const P2fFile &p2f, const Scales &scales, int t,
                     const std::vector<FarDrift> &far) {
    const double unit =
        scales.density * scales.gravity * scales.gravity * scales.length / (2 * omega_of(p2f, t));
    for (int b = 1; b <= p2f.NBETA; ++b) {
        std::vector<Cell> cells;
        add_wave_cells(cells, p2f, scales, {t, b});
        cells.emplace_back(unit * far[static_cast<std::size_t>(b) - 1].taken);
        cells.emplace_back(far[static_cast<std::size_t>(b) - 1].imbalance);
        table.rows.push_back(std::move(cells));
    }
}
