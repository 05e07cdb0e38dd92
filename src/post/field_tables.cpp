#include "post/wave_tables.hpp"

#include <limits>

namespace {

void add_place_columns(std::vector<Column> &columns, const Scales &scales) {
    for (const char *name : {"x", "y", "z"})
        columns.push_back({name, scales.names.length, Look::fixed, 4});
    columns.push_back({"mark", ""});
}
void add_place_cells(std::vector<Cell> &cells, const Scales &scales, const FieldRequest &request,
                     std::size_t i) {
    for (const double c : request.points[i])
        cells.emplace_back(c * scales.length);
    cells.emplace_back(std::string(name_of(request.mark[i])));
}
void add_polar_columns(std::vector<Column> &columns, const std::string &name, const std::string &unit) {
    columns.push_back({name, unit, Look::scientific});
    columns.push_back({name + " phase", "deg", Look::fixed, 2});
}
// No number where there is no wave.
void add_polar(std::vector<Cell> &cells, bool is, c64 value, const Convention &convention) {
    if (is)
        add_polar_cells(cells, value, 0, convention);
    else
        add_no_polar_cells(cells);
}

const char *const MARKS =
    "mark: fluid; near: less than half a panel from the hull; inside a body; outside the water.";

} // namespace

Table field_table(const Scales &scales, const Convention &convention) {
    Table table;
    table.name = "wave";
    table.title = "The wave at points, over the amplitude of the incident wave";
    const std::string &l = scales.names.length;
    add_wave_columns(table.columns, scales);
    add_place_columns(table.columns, scales);
    add_polar_columns(table.columns, "head", l + "/" + l);
    for (const char *part : {"incident", "scattered", "radiated"})
        add_polar_columns(table.columns, part, l + "/" + l);
    table.columns.push_back({"pressure", scales.names.force + "/" + l + "^2/" + l, Look::scientific});
    add_polar_columns(table.columns, "potential", l + "^2/s/" + l);
    table.notes = {
        "head: pressure over density and gravity, in z = 0 the elevation, of the whole wave; then its parts.",
        MARKS, convention.note()};
    return table;
}

void add_field_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave,
                    const FieldRequest &request, const Field &field, const Convention &convention) {
    const c64 potential(0, scales.gravity / omega_of(p2f, wave.t));
    for (std::size_t i = 0; i < request.points.size(); ++i) {
        const int at = static_cast<int>(i) + 1;
        const bool is = request.mark[i] == PointMark::fluid;
        const c64 head = field.total(at, wave.b);
        std::vector<Cell> cells;
        cells.reserve(table.columns.size());
        add_wave_cells(cells, p2f, scales, wave);
        add_place_cells(cells, scales, request, i);
        add_polar(cells, is, head, convention);
        for (int part = 1; part <= FIELD_PARTS; ++part)
            add_polar(cells, is, field.phi(at, part, wave.b), convention);
        cells.emplace_back(is ? scales.density * scales.gravity * std::abs(head)
                              : std::numeric_limits<double>::quiet_NaN());
        add_polar(cells, is, potential * head, convention);
        table.rows.push_back(std::move(cells));
    }
}

Table field_velocity_table(const Scales &scales, const Convention &convention) {
    Table table;
    table.name = "velocity";
    table.title = "Velocity of the fluid at points, over the amplitude of the incident wave";
    add_wave_columns(table.columns, scales);
    add_place_columns(table.columns, scales);
    for (const char *part : {"vx", "vy", "vz"})
        add_polar_columns(table.columns, part, scales.names.length + "/s/" + scales.names.length);
    table.notes = {MARKS, convention.note()};
    return table;
}

void add_field_velocity_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave,
                             const FieldRequest &request, const Field &field, const Convention &convention) {
    const c64 speed = c64(0, scales.gravity / omega_of(p2f, wave.t)) / scales.length;
    for (std::size_t i = 0; i < request.points.size(); ++i) {
        std::vector<Cell> cells;
        cells.reserve(table.columns.size());
        add_wave_cells(cells, p2f, scales, wave);
        add_place_cells(cells, scales, request, i);
        for (int c = 1; c <= 3; ++c)
            add_polar(cells, request.mark[i] == PointMark::fluid,
                      speed * field.total_gradient(c, static_cast<int>(i) + 1, wave.b), convention);
        table.rows.push_back(std::move(cells));
    }
}
