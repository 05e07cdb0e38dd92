#include "post/table_cells.hpp"

#include <limits>

void add_period_columns(std::vector<Column> &columns, const Scales &scales) {
    columns.push_back({"period", "s", Look::fixed, 4});
    columns.push_back({"omega", "rad/s", Look::fixed, 5});
    columns.push_back(
        {"wave number", scales.dimensional() ? "1/" + scales.names.length : "1/ULEN", Look::fixed, 6});
}

void add_period_cells(std::vector<Cell> &cells, const P2fFile &p2f, const Scales &scales, int t) {
    cells.emplace_back(period_of(p2f, t));
    cells.emplace_back(omega_of(p2f, t));
    cells.emplace_back(wave_number_of(p2f, t) / (scales.dimensional() ? scales.length : 1));
}

double without_round_off(double value, double largest) {
    return std::abs(value) < ROUND_OFF * largest ? 0 : value;
}

void add_mode_cells(std::vector<Cell> &cells, const P2fFile &p2f, int mode) {
    const BodyMode m = body_mode(p2f, mode);
    cells.emplace_back(static_cast<double>(m.body));
    cells.emplace_back(mode_name(m));
}

int rotations(const P2fFile &p2f, int mode) {
    return is_rotation(p2f, mode) ? 1 : 0;
}

double Convention::phase(std::complex<double> value) const {
    return std::arg(minus ? std::conj(value) : value) * DEGREES;
}

const char *Convention::note() const {
    return minus ? "Phases are those of Re(X exp(-i omega t)) against the wave at the origin."
                 : "Phases are those of Re(X exp(+i omega t)) against the wave at the origin.";
}

void add_polar_cells(std::vector<Cell> &cells, std::complex<double> value, double least,
                     const Convention &convention) {
    const bool nothing = std::abs(value) <= least;
    cells.emplace_back(nothing ? 0 : std::abs(value));
    cells.emplace_back(nothing ? 0 : convention.phase(value));
}

void add_no_polar_cells(std::vector<Cell> &cells) {
    constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
    cells.insert(cells.end(), {NONE, NONE});
}

void add_limit_note(Table &table, const P2fFile &p2f, const char *text) {
    for (int t = 1; t <= p2f.NPER; ++t) {
        if (frequency_kind(p2f, t) != Frequency::wave) {
            table.notes.emplace_back(text);
            return;
        }
    }
}

void add_wall_note(Table &table, const P2fFile &p2f, const char *what) {
    if (p2f.ISX < 0 || p2f.ISY < 0)
        table.notes.push_back(std::string("Beside a wall ") + what +
                              " half, in a corner a quarter, of that of a unit wave with its reflections.");
}
