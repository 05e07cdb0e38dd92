// Columns, cells and notes that the tables of several commands share.
#pragma once

#include "post/names.hpp"
#include "post/table.hpp"

#include <complex>

constexpr double DEGREES = 57.29577951308232; // of a radian

// Period, omega, wave number.
void add_period_columns(std::vector<Column> &columns, const Scales &scales);
void add_period_cells(std::vector<Cell> &cells, const P2fFile &p2f, const Scales &scales, int t);

constexpr double ROUND_OFF = 1e-6; // of the largest value of its kind at the period
// 0 for what is round-off beside `largest`.
double without_round_off(double value, double largest);

// Number of the body and name of the mode.
void add_mode_cells(std::vector<Cell> &cells, const P2fFile &p2f, int mode);
// 1 for a rotation, else 0.
int rotations(const P2fFile &p2f, int mode);

// The sign of the time in the phases that a user asks for: those of exp(+i omega t), as the file has them, or
// of exp(-i omega t).
struct Convention {
    bool minus = false;
    double phase(std::complex<double> value) const; // [deg]
    const char *note() const;
};
// Modulus and phase; both 0 when the modulus is not above `least`, which is round-off.
void add_polar_cells(std::vector<Cell> &cells, std::complex<double> value, double least,
                     const Convention &convention);
// No numbers for modulus and phase of what the file does not tell.
void add_no_polar_cells(std::vector<Cell> &cells);

// The note, when the file has a limit frequency among its periods; that on walls, when it has a wall.
void add_limit_note(Table &table, const P2fFile &p2f, const char *text);
void add_wall_note(Table &table, const P2fFile &p2f, const char *what);
