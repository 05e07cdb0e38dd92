#include "post/wave_tables.hpp"

namespace {

double d(f32 value) {
    return static_cast<double>(value);
}

constexpr const char *LOADS[] = {"axial force", "horizontal shear", "vertical shear",
                                 "torsion",     "vertical bending", "horizontal bending"};

std::string load_unit(const Scales &scales, std::size_t c) {
    return scales.names.force + (c < 3 ? "" : " " + scales.names.length);
}

} // namespace

Table panel_table(const Scales &scales, const Convention &convention, bool of_mode) {
    Table table;
    table.name = "panels";
    table.title = of_mode ? "Pressure and velocity on the panels, per metre or radian of the motion"
                          : "Pressure and velocity on the panels, over the amplitude of the incident wave";
    const std::string &l = scales.names.length, per = of_mode ? "" : "/" + l;
    add_period_columns(table.columns, scales);
    table.columns.insert(table.columns.end(), {{"load", ""}, {"panel", ""}, {"image", ""}});
    for (const char *name : {"x", "y", "z"})
        table.columns.push_back({name, l, Look::fixed, 4});
    for (const char *name : {"nx", "ny", "nz"})
        table.columns.push_back({name, "", Look::fixed, 4});
    table.columns.push_back({"area", l + "^2", Look::scientific});
    table.columns.push_back({"pressure", scales.names.force + "/" + l + "^2" + per, Look::scientific});
    table.columns.push_back({"phase", "deg", Look::fixed, 2});
    for (const char *name : {"vx", "vy", "vz"}) {
        table.columns.push_back({name, l + "/s" + per, Look::scientific});
        table.columns.push_back({std::string(name) + " phase", "deg", Look::fixed, 2});
    }
    table.notes = {
        "Centroids and normals, which point into the body, in global axes; velocities with ISOR=1 alone.",
        convention.note()};
    return table;
}

void add_panel_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave,
                    const std::string &load, const PanelValues &values, const Convention &convention) {
    const std::vector<Image> images = images_of(p2f);
    const PanelKinds kinds(p2f);
    for (std::size_t g = 0; g < images.size(); ++g)
        for (int J = 1; images[g].body && J <= p2f.NEQN; ++J) {
            if (!kinds.hull(J))
                continue;
            const int at = static_cast<int>(g) + 1;
            std::vector<Cell> cells;
            cells.reserve(table.columns.size());
            add_period_cells(cells, p2f, scales, wave.t);
            cells.emplace_back(load);
            cells.emplace_back(static_cast<double>(J));
            cells.emplace_back(static_cast<double>(at));
            const double sign[3] = {images[g].sx, images[g].sy, 1};
            for (int c = 1; c <= 3; ++c)
                cells.emplace_back(sign[c - 1] * d(p2f.XCT(c, J)) * scales.length);
            for (int c = 1; c <= 3; ++c)
                cells.emplace_back(sign[c - 1] * d(p2f.TRM(3, c, J)));
            cells.emplace_back(d(p2f.PMOM(1, J)) * scales.length * scales.length);
            add_polar_cells(cells, values.pressure(J, at), 0, convention);
            for (int c = 1; c <= 3; ++c) {
                if (values.velocity.empty())
                    add_no_polar_cells(cells);
                else
                    add_polar_cells(cells, values.velocity(c, J, at), 0, convention);
            }
            table.rows.push_back(std::move(cells));
        }
}

Table waterline_table(const Scales &scales, const Convention &convention) {
    Table table;
    table.name = "waterline";
    table.title = "Elevation along the waterlines, over the amplitude of the incident wave";
    const std::string &l = scales.names.length;
    add_wave_columns(table.columns, scales);
    table.columns.push_back({"body", ""});
    for (const char *name : {"x", "y"})
        table.columns.push_back({name, l, Look::fixed, 4});
    for (const char *name : {"elevation", "relative"}) {
        table.columns.push_back({name, l + "/" + l, Look::scientific});
        table.columns.push_back({std::string(name) + " phase", "deg", Look::fixed, 2});
    }
    table.notes = {"relative: to the moving hull.", convention.note()};
    return table;
}

void add_waterline_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave, Motions xi,
                        const HullState &state, const SurfaceGradient &gradient,
                        const Convention &convention) {
    const double nu = deep_wave_number(p2f, wave.t);
    for (const WaterlineSide &side : waterline_sides(p2f)) {
        const c64 elevation = side_elevation(p2f, gradient, state, side, nu);
        const Vector3 r = from_body(p2f, side.body, side.middle);
        const c64 hull = moves(xi) ? rise(p2f, side.body, xi, wave.b, times(scales.length, r)) : c64(0);
        std::vector<Cell> cells;
        add_wave_cells(cells, p2f, scales, wave);
        cells.emplace_back(static_cast<double>(side.body));
        cells.emplace_back(side.middle[0] * scales.length);
        cells.emplace_back(side.middle[1] * scales.length);
        add_polar_cells(cells, elevation, 0, convention);
        add_polar_cells(cells, elevation - hull, 0, convention);
        table.rows.push_back(std::move(cells));
    }
}

Table section_table(const Scales &scales, const Convention &convention) {
    Table table;
    table.name = "sections";
    table.title =
        "Loads in sections over the amplitude: what the part ahead does to the part behind, body axes";
    table.leave_out_zeros = true;
    add_wave_columns(table.columns, scales);
    table.columns.push_back({"body", ""});
    table.columns.push_back({"station", scales.names.length, Look::fixed, 4});
    table.columns.insert(table.columns.end(),
                         {{"load", ""}, {"unit", ""}, {"modulus", "", Look::scientific}});
    table.columns.push_back({"phase", "deg", Look::fixed, 2});
    table.notes = {"Ahead of the bow the loads are what the equation of motion leaves: errors, and moorings.",
                   convention.note()};
    return table;
}

void add_section_rows(Table &table, const P2fFile &p2f, const Scales &scales, WaveCase wave, int body,
                      const std::vector<SectionLoad> &loads, const Convention &convention) {
    for (const SectionLoad &load : loads)
        for (std::size_t c = 0; c < 6; ++c) {
            std::vector<Cell> cells;
            add_wave_cells(cells, p2f, scales, wave);
            cells.emplace_back(static_cast<double>(body));
            cells.emplace_back(load.station);
            cells.emplace_back(std::string(LOADS[c]));
            cells.emplace_back(load_unit(scales, c) + "/" + scales.names.length);
            add_polar_cells(cells, load.wave[c], 0, convention);
            table.rows.push_back(std::move(cells));
        }
}

Table calm_table(const Scales &scales) {
    Table table;
    table.name = "calm";
    table.title = "Loads in sections in still water";
    table.columns = {{"body", ""}, {"station", scales.names.length, Look::fixed, 4}};
    for (std::size_t c = 0; c < 6; ++c)
        table.columns.push_back({LOADS[c], load_unit(scales, c), Look::scientific});
    return table;
}

void add_calm_rows(Table &table, int body, const std::vector<SectionLoad> &loads) {
    for (const SectionLoad &load : loads) {
        std::vector<Cell> cells = {static_cast<double>(body), load.station};
        cells.insert(cells.end(), load.calm.begin(), load.calm.end());
        table.rows.push_back(std::move(cells));
    }
}
