#include "post/result_tables.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

// Rotations in degrees.
double shown(const P2fFile &p2f, int mode) {
    return is_rotation(p2f, mode) ? DEGREES : 1;
}
std::string motion_unit(const P2fFile &p2f, const Scales &scales, int mode) {
    return is_rotation(p2f, mode) ? "deg" : scales.names.length;
}

View<const c64, 1> column(const P2fFile &p2f, const Array<c64, 3> &xi, int heading, int period) {
    return {&xi(1, heading, period), {Range(p2f.NMODES)}};
}

constexpr const char *DIRECTIONS[] = {"x", "y", "z", "relative elevation", "relative to the incident wave"};

// Displacement of point k of the case, from 0, in these directions.
std::array<c64, std::size(DIRECTIONS)> of_point(const P2fFile &p2f, const CaseFile &file, std::size_t k,
                                                const MovingPoints &moving, int heading, int period) {
    const std::array<c64, 3> x = point_motion(p2f, file.points[k], column(p2f, moving.xi, heading, period));
    constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
    const c64 wave = moving.waves.none.empty()
                         ? moving.waves.elevation(static_cast<int>(k) + 1, heading, period)
                         : c64(NONE, NONE);
    return {x[0], x[1], x[2], wave - x[2], incident_elevation(p2f, file.points[k], heading, period) - x[2]};
}

} // namespace

Table rao_table(const P2fFile &p2f, const Scales &scales, const Array<c64, 3> &xi,
                const Convention &convention) {
    Table table;
    table.name = "raos";
    table.title = "Motions in a wave of unit amplitude, of the origins of the bodies and in their axes";
    table.leave_out_zeros = true;
    add_period_columns(table.columns, scales);
    table.columns.push_back({"heading", "deg", Look::fixed, 2});
    table.columns.insert(table.columns.end(),
                         {{"body", ""}, {"mode", ""}, {"unit", ""}, {"modulus", "", Look::scientific}});
    table.columns.push_back({"phase", "deg", Look::fixed, 2});
    for (int t = 1; t <= p2f.NPER; ++t) {
        if (frequency_kind(p2f, t) != Frequency::wave)
            continue;
        double largest[2] = {};
        for (int b = 1; b <= p2f.NBETA; ++b)
            for (int m = 1; m <= p2f.NMODES; ++m)
                largest[rotations(p2f, m)] = std::max(largest[rotations(p2f, m)], std::abs(xi(m, b, t)));
        for (int b = 1; b <= p2f.NBETA; ++b)
            for (const int m : solved_modes(p2f)) {
                std::vector<Cell> cells;
                add_period_cells(cells, p2f, scales, t);
                cells.emplace_back(static_cast<double>(p2f.BETA(b)));
                add_mode_cells(cells, p2f, m);
                cells.emplace_back(motion_unit(p2f, scales, m) + "/" + scales.names.length);
                const double unit = shown(p2f, m);
                add_polar_cells(cells, unit * xi(m, b, t), unit * ROUND_OFF * largest[rotations(p2f, m)],
                                convention);
                table.rows.push_back(std::move(cells));
            }
    }
    table.notes.emplace_back(convention.note());
    add_wall_note(table, p2f, "the motion is");
    add_limit_note(table, p2f, "Limit frequencies have no motions and are left out.");
    return table;
}

Table point_table(const P2fFile &p2f, const Scales &scales, const CaseFile &file, const MovingPoints &moving,
                  const Convention &convention) {
    Table table;
    table.name = "points";
    table.title = "Motions of points in a wave of unit amplitude, along global axes";
    add_period_columns(table.columns, scales);
    table.columns.push_back({"heading", "deg", Look::fixed, 2});
    table.columns.insert(table.columns.end(), {{"point", ""}, {"direction", ""}});
    const std::string L = scales.names.length;
    table.columns.push_back({"displacement", L + "/" + L, Look::scientific});
    table.columns.push_back({"phase", "deg", Look::fixed, 2});
    table.columns.push_back({"velocity", L + "/s/" + L, Look::scientific});
    table.columns.push_back({"acceleration", L + "/s^2/" + L, Look::scientific});
    for (int t = 1; t <= p2f.NPER; ++t)
        for (int b = 1; frequency_kind(p2f, t) == Frequency::wave && b <= p2f.NBETA; ++b)
            for (std::size_t point = 0; point < file.points.size(); ++point) {
                const auto moves = of_point(p2f, file, point, moving, b, t);
                double largest = 0;
                for (const c64 x : moves)
                    largest = std::max(largest, std::abs(x));
                for (std::size_t k = 0; k < moves.size(); ++k) {
                    std::vector<Cell> cells;
                    add_period_cells(cells, p2f, scales, t);
                    cells.emplace_back(static_cast<double>(p2f.BETA(b)));
                    cells.emplace_back(file.points[point].name);
                    cells.emplace_back(DIRECTIONS[k]);
                    add_polar_cells(cells, moves[k], ROUND_OFF * largest, convention);
                    const double size = std::abs(moves[k]) <= ROUND_OFF * largest ? 0 : std::abs(moves[k]),
                                 w = omega_of(p2f, t);
                    cells.emplace_back(w * size);
                    cells.emplace_back(w * w * size);
                    table.rows.push_back(std::move(cells));
                }
            }
    table.notes.emplace_back(convention.note());
    table.notes.emplace_back("Velocity is ahead of displacement by 90, acceleration by 180 degrees.");
    table.notes.push_back(
        moving.waves.none.empty()
            ? "The relative elevation is that of the whole wave less z; there is none where the hull is or "
              "a panel is nearer than half its size: vorda-p2f panels has the waterline."
            : "No relative elevation but to the incident wave: " + moving.waves.none + ".");
    for (int b = 1; b <= p2f.NBODY; ++b)
        if (p2f.NEWMDS(b) > 0)
            table.notes.push_back("The file does not tell how extra modes move a point of body " +
                                  std::to_string(b) + ": they are not in it.");
    add_wall_note(table, p2f, "the motion is");
    return table;
}

Table natural_table(const P2fFile &p2f, const std::vector<NaturalMode> &modes) {
    Table table;
    table.name = "natural";
    table.title = "Natural periods and modes, without damping";
    table.columns = {{"period", "s", Look::fixed, 4},
                     {"omega", "rad/s", Look::fixed, 5},
                     {"damping", "% of critical", Look::fixed, 3},
                     {"shape", ""}};
    bool outside = false;
    for (const NaturalMode &mode : modes) {
        std::string shape;
        for (int m = 1; m <= p2f.NMODES; ++m) {
            constexpr double PART = 0.01; // less is not worth a word
            const double size = mode.shape[static_cast<std::size_t>(m - 1)];
            char text[32];
            std::snprintf(text, sizeof text, " %.3g", size);
            if (std::abs(size) >= PART)
                shape += (shape.empty() ? "" : "; ") + full_mode_name(p2f, m) + text;
        }
        outside = outside || mode.outside;
        table.rows.push_back({2 * 3.14159265358979323846 / mode.omega, mode.omega, 100 * mode.damping,
                              shape + (mode.outside ? " (outside)" : "")});
    }
    table.notes.emplace_back(
        "Rotations of a shape are times ULEN. Added mass and damping are those at the natural frequency.");
    if (outside)
        table.notes.emplace_back(
            "Outside: beyond the frequencies of the run, with the added mass of the nearest one.");
    return table;
}

namespace {

// Responses of a sea in the order of the table; `angle`: those of rotations.
struct SeaRow {
    std::string name, unit;
    SeaStatistics of;
    bool angle;
};

std::vector<SeaRow> sea_rows(const P2fFile &p2f, const Scales &scales, const CaseFile &file,
                             const CaseSpectrum &sea, const MovingPoints &moving) {
    const WaveSpectrum spectrum(sea);
    const std::vector<double> shares = heading_shares(p2f, sea);
    std::vector<SeaRow> rows;
    const auto add = [&](const std::string &name, const std::string &unit, double m0, double m2, bool angle) {
        rows.push_back({name, unit, sea_statistics(m0, m2, sea.hours), angle});
    };
    const std::string L = scales.names.length;
    const auto all = response_moments(p2f, spectrum, shares, [](int, int) { return 1.0; });
    add("wave elevation", L, all[0], all[1], false);
    for (const int m : solved_modes(p2f)) {
        const auto moments = response_moments(p2f, spectrum, shares, [&](int b, int t) {
            return std::norm(shown(p2f, m) * moving.xi(m, b, t));
        });
        add(full_mode_name(p2f, m), motion_unit(p2f, scales, m), moments[0], moments[1], is_rotation(p2f, m));
    }
    for (std::size_t point = 0; point < file.points.size(); ++point)
        for (std::size_t direction = 0; direction < std::size(DIRECTIONS); ++direction) {
            const auto moments = response_moments(p2f, spectrum, shares, [&](int b, int t) {
                return std::norm(of_point(p2f, file, point, moving, b, t)[direction]);
            });
            const std::string name = "point " + file.points[point].name + "; " + DIRECTIONS[direction];
            add(name, L, moments[0], moments[1], false);
            add(name + "; velocity", L + "/s", moments[1], moments[2], false);
            add(name + "; acceleration", L + "/s^2", moments[2], moments[3], false);
        }
    // What is round-off of the largest of its kind is nothing.
    double largest[2] = {};
    for (const SeaRow &row : rows)
        largest[row.angle ? 1 : 0] = std::max(largest[row.angle ? 1 : 0], row.of.significant);
    for (SeaRow &row : rows)
        if (row.of.significant < ROUND_OFF * largest[row.angle ? 1 : 0])
            row.of = {};
    return rows;
}

// Tells when the run holds too little of a sea.
void warn_of_share(double share, const char *what, std::size_t sea, Table &table) {
    constexpr double COVERED = 0.99;
    char text[160];
    std::snprintf(
        text, sizeof text,
        "WARNING: the %s of the run hold %.1f %% of the energy of sea %zu; the rest does not count.", what,
        100 * share, sea);
    if (share < COVERED)
        table.notes.emplace_back(text);
}

} // namespace

Table sea_table(const P2fFile &p2f, const Scales &scales, const CaseFile &file, const MovingPoints &moving) {
    Table table;
    table.name = "seas";
    table.title = "Responses in irregular seas: single amplitudes";
    table.leave_out_zeros = true;
    table.columns = {{"sea", ""},
                     {"response", ""},
                     {"unit", ""},
                     {"significant", "", Look::scientific},
                     {"zero crossing", "s", Look::fixed, 3},
                     {"most probable largest", "", Look::scientific}};
    for (std::size_t k = 0; k < file.spectra.size(); ++k) {
        const CaseSpectrum &sea = file.spectra[k];
        for (const SeaRow &row : sea_rows(p2f, scales, file, sea, moving))
            table.rows.push_back({static_cast<double>(k + 1), row.name, row.unit, row.of.significant,
                                  row.of.zero_crossing, row.of.largest});
        double headings = 0;
        for (const double share : heading_shares(p2f, sea))
            headings += share;
        warn_of_share(frequencies_covered(p2f, WaveSpectrum(sea)), "frequencies", k + 1, table);
        warn_of_share(headings, "headings", k + 1, table);
    }
    add_wall_note(table, p2f, "the response is");
    return table;
}
