#include "post/coefficients.hpp"
#include "post/table_cells.hpp"

#include <algorithm>
#include <cmath>
#include <complex>

namespace {

using c64 = std::complex<double>;

constexpr double ROUND_OFF = 1e-6; // of the largest value of the same unit
// Density times powers of the length and a factor, 1 where the values stay non-dimensional.
double factor(const Scales &scales, int power, double more) {
    return scales.dimensional() ? scales.density * std::pow(scales.length, power) * more : 1;
}

bool was_solved(const P2fFile &p2f, int mode) {
    return p2f.MODPOS(mode) > 0;
}

} // namespace

Table radiation_table(const P2fFile &p2f, const Scales &scales, const Coefficients &c) {
    Table table;
    table.name = "radiation";
    table.leave_out_zeros = true;
    const bool dimensional = scales.dimensional();
    table.title = "Added mass and damping";
    add_period_columns(table.columns, scales);
    table.columns.insert(table.columns.end(),
                         {{"body i", ""}, {"mode i", ""}, {"body j", ""}, {"mode j", ""}});
    const std::string unit = scales.names.mass + " " + scales.names.length + "^k";
    table.columns.push_back({"k", ""});
    table.columns.push_back({"added mass", dimensional ? unit : "rho ULEN^k", Look::scientific});
    table.columns.push_back({"damping", dimensional ? unit + "/s" : "rho omega ULEN^k", Look::scientific});
    for (int t = 1; t <= p2f.NPER; ++t) {
        const Frequency kind = frequency_kind(p2f, t);
        double omega = dimensional ? omega_of(p2f, t) : 1;
        if (kind != Frequency::wave)
            omega = 0; // no waves, no damping
        double largest[2][3] = {};
        for (int i = 1; i <= p2f.NMODES; ++i) {
            for (int j = 1; j <= p2f.NMODES; ++j) {
                const int k = rotations(p2f, i) + rotations(p2f, j);
                largest[0][k] = std::max(largest[0][k], std::abs(static_cast<double>(c.A(i, j, t))));
                largest[1][k] = std::max(largest[1][k], std::abs(static_cast<double>(c.B(i, j, t))));
            }
        }
        for (int i = 1; i <= p2f.NMODES; ++i) {
            for (int j = 1; j <= p2f.NMODES; ++j) {
                if (!was_solved(p2f, i) || !was_solved(p2f, j))
                    continue;
                const int k = rotations(p2f, i) + rotations(p2f, j);
                const auto clean = [&](double value, double most) {
                    return std::abs(value) < ROUND_OFF * most ? 0 : value;
                };
                const double scale = factor(scales, 3 + k, 1);
                std::vector<Cell> cells;
                add_period_cells(cells, p2f, scales, t);
                add_mode_cells(cells, p2f, i);
                add_mode_cells(cells, p2f, j);
                cells.emplace_back(static_cast<double>(dimensional ? k : 3 + k));
                cells.emplace_back(scale * clean(static_cast<double>(c.A(i, j, t)), largest[0][k]));
                // Next to an added mass of its size a damping of 1e-6 is round-off as well.
                cells.emplace_back(scale * omega *
                                   clean(static_cast<double>(c.B(i, j, t)),
                                         std::max(largest[1][k], ROUND_OFF * largest[0][k])));
                table.rows.push_back(std::move(cells));
            }
        }
    }
    add_limit_note(table, p2f, "At zero and infinite frequency there are no waves: the damping is 0.");
    return table;
}

Table exciting_table(const P2fFile &p2f, const Scales &scales, const Coefficients &c) {
    Table table;
    table.name = "exciting";
    table.leave_out_zeros = true;
    const bool dimensional = scales.dimensional();
    table.title = "Exciting force of a wave of unit amplitude";
    add_period_columns(table.columns, scales);
    table.columns.push_back({"heading", "deg", Look::fixed, 2});
    table.columns.insert(table.columns.end(), {{"body", ""}, {"mode", ""}, {"k", ""}});
    const std::string unit =
        dimensional ? scales.names.force + " " + scales.names.length + "^k" : "rho g ULEN^k";
    table.columns.push_back({"modulus", unit, Look::scientific});
    table.columns.push_back({"phase", "deg", Look::fixed, 2});
    table.columns.push_back({"real part", unit, Look::scientific});
    table.columns.push_back({"imaginary part", unit, Look::scientific});
    for (int t = 1; t <= p2f.NPER; ++t) {
        double largest[2] = {};
        for (int b = 1; b <= p2f.NBETA; ++b)
            for (int i = 1; i <= p2f.NMODES; ++i)
                largest[rotations(p2f, i)] =
                    std::max(largest[rotations(p2f, i)], std::abs(c64(c.X(i, b, t))));
        for (int b = 1; b <= p2f.NBETA; ++b) {
            for (int i = 1; i <= p2f.NMODES; ++i) {
                if (!was_solved(p2f, i))
                    continue;
                const int r = rotations(p2f, i);
                const double scale = factor(scales, 2 + r, scales.gravity), least = ROUND_OFF * largest[r];
                c64 x(c.X(i, b, t));
                x = {std::abs(x.real()) < least ? 0 : x.real(), std::abs(x.imag()) < least ? 0 : x.imag()};
                std::vector<Cell> cells;
                add_period_cells(cells, p2f, scales, t);
                cells.emplace_back(static_cast<double>(p2f.BETA(b)));
                add_mode_cells(cells, p2f, i);
                cells.emplace_back(static_cast<double>(dimensional ? r - 1 : 2 + r));
                cells.emplace_back(scale * std::abs(x));
                cells.emplace_back(std::arg(x) * DEGREES);
                cells.emplace_back(scale * x.real());
                cells.emplace_back(scale * x.imag());
                table.rows.push_back(std::move(cells));
            }
        }
    }
    table.notes.emplace_back("Phase of Re(X exp(+i omega t)) against the wave at the origin.");
    add_wall_note(table, p2f, "X is");
    add_limit_note(table, p2f,
                   "A run has no incident wave at zero and infinite frequency: X stands as 0 there.");
    return table;
}
