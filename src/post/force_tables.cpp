#include "post/result_tables.hpp"

#include <algorithm>
#include <cmath>

Table force_table(const P2fFile &p2f, const Scales &scales, const ExcitingForces &X,
                  const Convention &convention) {
    Table table;
    table.name = "exciting";
    table.title =
        "Exciting force of a wave of unit amplitude, about the origins of the bodies and in their axes";
    table.leave_out_zeros = true;
    add_period_columns(table.columns, scales);
    table.columns.push_back({"heading", "deg", Look::fixed, 2});
    table.columns.insert(table.columns.end(), {{"body", ""}, {"mode", ""}, {"k", ""}});
    const std::string unit = scales.names.force + " " + scales.names.length + "^k";
    const auto pair = [&](const std::string &what) {
        table.columns.push_back({what, unit, Look::scientific});
        table.columns.push_back({what + " phase", "deg", Look::fixed, 2});
    };
    pair("pressure");
    pair("Haskind");
    table.columns.push_back({"difference", "%", Look::fixed, 3});
    pair("Froude-Krylov");
    pair("scattering");
    for (int t = 1; t <= p2f.NPER; ++t) {
        double largest[2] = {};
        for (int b = 1; b <= p2f.NBETA; ++b)
            for (int m = 1; m <= p2f.NMODES; ++m)
                largest[rotations(p2f, m)] =
                    std::max(largest[rotations(p2f, m)], std::abs(X.pressure(m, b, t)));
        for (int b = 1; b <= p2f.NBETA; ++b)
            for (const int m : solved_modes(p2f)) {
                const double least = ROUND_OFF * largest[rotations(p2f, m)];
                std::vector<Cell> cells;
                add_period_cells(cells, p2f, scales, t);
                cells.emplace_back(static_cast<double>(p2f.BETA(b)));
                add_mode_cells(cells, p2f, m);
                cells.emplace_back(static_cast<double>(rotations(p2f, m) - 1));
                add_polar_cells(cells, X.pressure(m, b, t), least, convention);
                if (X.haskind.empty()) {
                    add_no_polar_cells(cells);
                    cells.emplace_back(std::nan(""));
                } else {
                    add_polar_cells(cells, X.haskind(m, b, t), least, convention);
                    cells.emplace_back(100 * relative_difference(p2f, X.pressure, X.haskind, m, t));
                }
                add_polar_cells(cells, X.froude_krylov(m, b, t), least, convention);
                add_polar_cells(cells, X.scattering(m, b, t), least, convention);
                table.rows.push_back(std::move(cells));
            }
    }
    table.notes.emplace_back(convention.note());
    if (X.haskind.empty())
        table.notes.push_back("No force by Haskind's relation: " + X.no_haskind + ".");
    else
        table.notes.emplace_back(
            "The difference is the largest of all headings and of the three translations or rotations of "
            "the body at the period, over the largest of these forces.");
    add_wall_note(table, p2f, "the force is");
    add_limit_note(
        table, p2f,
        "At zero frequency the force is that of a level raised by 1, at infinite frequency it is 0.");
    return table;
}

Table added_mass_table(const P2fFile &p2f, const Scales &scales, const RadiationForces &R,
                       const Array<double, 3> &far_field) {
    Table table;
    table.name = "radiation";
    table.title = "Added mass and damping, the symmetric part and the asymmetry (i,j) - (j,i)";
    table.leave_out_zeros = true;
    add_period_columns(table.columns, scales);
    table.columns.insert(table.columns.end(),
                         {{"body i", ""}, {"mode i", ""}, {"body j", ""}, {"mode j", ""}, {"k", ""}});
    const std::string unit = scales.names.mass + " " + scales.names.length + "^k";
    for (const char *what : {"added mass", "its asymmetry"})
        table.columns.push_back({what, unit, Look::scientific});
    for (const char *what : {"damping", "asymmetry", "damping far away"})
        table.columns.push_back({what, unit + "/s", Look::scientific});
    for (int t = 1; t <= p2f.NPER; ++t) {
        const double omega = std::min(omega_of(p2f, t), 1e6);
        double A[3] = {}, B[3] = {};
        for (const int i : solved_modes(p2f))
            for (const int j : solved_modes(p2f)) {
                const int k = rotations(p2f, i) + rotations(p2f, j);
                A[k] = std::max(A[k], std::abs(R.A(i, j, t)));
                B[k] = std::max(B[k], std::abs(R.B(i, j, t)));
            }
        for (const int i : solved_modes(p2f))
            for (const int j : solved_modes(p2f)) {
                const int k = rotations(p2f, i) + rotations(p2f, j);
                const double most_B = std::max(B[k], ROUND_OFF * omega * A[k]);
                std::vector<Cell> cells;
                add_period_cells(cells, p2f, scales, t);
                add_mode_cells(cells, p2f, i);
                add_mode_cells(cells, p2f, j);
                cells.emplace_back(static_cast<double>(k));
                cells.emplace_back(without_round_off(R.A(i, j, t), A[k]));
                cells.emplace_back(without_round_off(2 * R.A_odd(i, j, t), A[k]));
                cells.emplace_back(without_round_off(R.B(i, j, t), most_B));
                cells.emplace_back(without_round_off(2 * R.B_odd(i, j, t), most_B));
                cells.emplace_back(far_field.empty() ? std::nan("")
                                                     : without_round_off(far_field(i, j, t), most_B));
                table.rows.push_back(std::move(cells));
            }
    }
    add_limit_note(table, p2f, "At zero and infinite frequency there are no waves: the damping is 0.");
    return table;
}
