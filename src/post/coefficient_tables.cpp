#include "post/coefficients.hpp"
#include "post/table_cells.hpp"

#include <algorithm>
#include <cmath>
#include <complex>

namespace {

// Density times powers of the length and a factor, 1 where the values stay non-dimensional.
double factor(const Scales &scales, int power, double more) {
    return scales.dimensional() ? scales.density * std::pow(scales.length, power) * more : 1;
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
    const std::vector<int> solved = solved_modes(p2f);
    for (int t = 1; t <= p2f.NPER; ++t) {
        const Frequency kind = frequency_kind(p2f, t);
        double omega = dimensional ? omega_of(p2f, t) : 1;
        if (kind != Frequency::wave)
            omega = 0; // no waves, no damping
        double largest[2][3] = {};
        for (const int i : solved) {
            for (const int j : solved) {
                const int k = rotations(p2f, i) + rotations(p2f, j);
                largest[0][k] = std::max(largest[0][k], std::abs(static_cast<double>(c.A(i, j, t))));
                largest[1][k] = std::max(largest[1][k], std::abs(static_cast<double>(c.B(i, j, t))));
            }
        }
        for (const int i : solved) {
            for (const int j : solved) {
                const int k = rotations(p2f, i) + rotations(p2f, j);
                const double scale = factor(scales, 3 + k, 1);
                std::vector<Cell> cells;
                add_period_cells(cells, p2f, scales, t);
                add_mode_cells(cells, p2f, i);
                add_mode_cells(cells, p2f, j);
                cells.emplace_back(static_cast<double>(dimensional ? k : 3 + k));
                cells.emplace_back(scale *
                                   without_round_off(static_cast<double>(c.A(i, j, t)), largest[0][k]));
                // Next to an added mass of its size a damping of 1e-6 is round-off as well.
                cells.emplace_back(scale * omega *
                                   without_round_off(static_cast<double>(c.B(i, j, t)),
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
    const std::vector<int> solved = solved_modes(p2f);
    for (int t = 1; t <= p2f.NPER; ++t) {
        double largest[2] = {};
        for (int b = 1; b <= p2f.NBETA; ++b)
            for (const int i : solved)
                largest[rotations(p2f, i)] =
                    std::max(largest[rotations(p2f, i)], std::abs(c64(c.X(i, b, t))));
        for (int b = 1; b <= p2f.NBETA; ++b) {
            for (const int i : solved) {
                const int r = rotations(p2f, i);
                const double scale = factor(scales, 2 + r, scales.gravity);
                c64 x(c.X(i, b, t));
                x = {without_round_off(x.real(), largest[r]), without_round_off(x.imag(), largest[r])};
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
    table.notes.emplace_back(Convention{}.note());
    add_wall_note(table, p2f, "X is");
    add_limit_note(table, p2f,
                   "A run has no incident wave at zero and infinite frequency: X stands as 0 there.");
    return table;
}
