#include "post/result_tables.hpp"

#include <cmath>

namespace {

void add_pair(std::vector<Cell> &cells, const P2fFile &p2f, const RadiationResponse &pair) {
    add_mode_cells(cells, p2f, pair.i);
    add_mode_cells(cells, p2f, pair.j);
    cells.emplace_back(static_cast<double>(rotations(p2f, pair.i) + rotations(p2f, pair.j)));
}
void add_pair_columns(Table &table) {
    table.columns.insert(table.columns.end(),
                         {{"body i", ""}, {"mode i", ""}, {"body j", ""}, {"mode j", ""}, {"k", ""}});
}

} // namespace

Table impulse_check_table(const P2fFile &p2f, const Scales &scales, const ImpulseResponses &r) {
    Table table;
    table.name = "check";
    table.title = "Added mass at infinite frequency, and what comes back from K(t)";
    add_pair_columns(table);
    const std::string unit = scales.names.mass + " " + scales.names.length + "^k";
    table.columns.push_back({"of the run", unit, Look::scientific});
    table.columns.push_back({"from B", unit, Look::scientific});
    for (const char *what : {"difference", "error of A", "error of B"})
        table.columns.push_back({what, "%", Look::fixed, 3});
    for (const RadiationResponse &pair : r.radiation) {
        std::vector<Cell> cells;
        add_pair(cells, p2f, pair);
        cells.emplace_back(pair.added_mass_run);
        cells.emplace_back(pair.added_mass_B);
        cells.emplace_back(100 * (pair.added_mass_B - pair.added_mass_run) / std::abs(pair.added_mass_run));
        cells.emplace_back(100 * pair.error_A);
        cells.emplace_back(100 * pair.error_B);
        table.rows.push_back(std::move(cells));
    }
    table.notes.emplace_back("Errors are the largest over the frequencies, over the root of the largest "
                             "values of both modes alone.");
    for (const ExcitingResponse &x : r.exciting) {
        constexpr double LARGE = 0.01;
        char text[32];
        std::snprintf(text, sizeof text, "%.1f %%", 100 * x.error);
        if (x.error > LARGE)
            table.notes.push_back("WARNING: the exciting force of " + full_mode_name(p2f, x.mode) +
                                  ", heading " + std::to_string(static_cast<double>(p2f.BETA(x.heading))) +
                                  ", comes back with an error of " + text + ".");
    }
    table.notes.insert(table.notes.end(), r.notes.begin(), r.notes.end());
    char text[160];
    std::snprintf(
        text, sizeof text,
        "K(t) and the responses f(t) to waves, %zu times up to %.4g s: --csv radiation, --csv exciting.",
        r.times.size(), r.times.back());
    table.notes.emplace_back(text);
    return table;
}

Table radiation_response_table(const P2fFile &p2f, const Scales &scales, const ImpulseResponses &r) {
    Table table;
    table.name = "radiation";
    table.title = "Radiation impulse response";
    table.columns = {{"time", "s", Look::fixed, 4}};
    add_pair_columns(table);
    table.columns.push_back(
        {"K", scales.names.mass + " " + scales.names.length + "^k/s^2", Look::scientific});
    for (const RadiationResponse &pair : r.radiation)
        for (std::size_t n = 0; n < r.times.size(); ++n) {
            std::vector<Cell> cells = {r.times[n]};
            add_pair(cells, p2f, pair);
            cells.emplace_back(pair.K[n]);
            table.rows.push_back(std::move(cells));
        }
    return table;
}

Table exciting_response_table(const P2fFile &p2f, const Scales &scales, const ImpulseResponses &r) {
    Table table;
    table.name = "exciting";
    table.title = "Force impulse response to the elevation at the global origin";
    table.columns = {{"time", "s", Look::fixed, 4},
                     {"heading", "deg", Look::fixed, 2},
                     {"body", ""},
                     {"mode", ""},
                     {"k", ""}};
    table.columns.push_back({"f", scales.names.force + " " + scales.names.length + "^k/s", Look::scientific});
    for (const ExcitingResponse &x : r.exciting)
        for (std::size_t n = 0; n < r.both_times.size(); ++n) {
            std::vector<Cell> cells = {r.both_times[n], static_cast<double>(p2f.BETA(x.heading))};
            add_mode_cells(cells, p2f, x.mode);
            cells.emplace_back(static_cast<double>(rotations(p2f, x.mode) - 1));
            cells.emplace_back(x.f[n]);
            table.rows.push_back(std::move(cells));
        }
    return table;
}
