#include "case/refinement.hpp"

#include "case/meshes.hpp"
#include "case/programs.hpp"
#include "case/solution.hpp"
#include "post/table_cells.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

bool divide_mesh(const RunCase &run, std::size_t b, std::string &error) {
    const std::string there = fs::path(run.run_folder()).filename().string() + "/", name = mesh_name(b);
    Ended ended;
    const Start start{
        {"vorda-mesh", "transform", there + name, "-o", there + FINE + name, "--divide"}, run.folder, false};
    if (!run_program(start, {}, ended, error))
        return false;
    if (ended.code != 0)
        error = run.at(run.bodies[b].mesh_line, typed(start.words) + " makes no mesh:\n" + ended.text);
    return ended.code == 0;
}

// Twice the difference, as errors of first order are.
double error_of(double value, double finer) {
    return 2 * (value - finer);
}

// Both values and the error, 0 what is round-off beside `largest`.
void add_values(std::vector<Cell> &cells, double value, double finer, double largest) {
    for (const double v : {value, finer, error_of(value, finer)})
        cells.emplace_back(without_round_off(v, largest));
}

void add_columns(Table &table, const std::string &what, const std::string &unit) {
    for (const char *of : {"", " finer mesh", " error"})
        table.columns.push_back({what + of, unit, Look::scientific});
}

// Calls with each coefficient: which kind (rotations among its modes), value and finer value, period.
template <class Use> void for_radiation(const DataSet &data, const DataSet &fine, bool damping, Use use) {
    const Array<double, 3> &of = damping ? data.R.B : data.R.A, &finer = damping ? fine.R.B : fine.R.A;
    for (const int t : data.order)
        for (const int i : data.modes)
            for (const int j : data.modes)
                use(rotations(*data.p2f, i) + rotations(*data.p2f, j), of(i, j, t), finer(i, j, t), t);
}
template <class Use> void for_forces(const DataSet &data, const DataSet &fine, Use use) {
    for (const int t : data.order)
        for (const int b : data.headings)
            for (const int m : data.modes)
                use(rotations(*data.p2f, m), std::abs(data.X.pressure(m, b, t)),
                    std::abs(fine.X.pressure(m, b, t)), t);
}

// Largest error over the largest value of each kind, or that of translations with the size of the body as
// arm: the turns of a sphere have no coefficients of their own.
struct Worst {
    double largest[3] = {}, error[3] = {};
    int period[3] = {};
    void meet(int kind, double value, double finer, int t) {
        largest[kind] = std::max(largest[kind], std::fabs(value));
        if (const double e = std::fabs(error_of(value, finer)); e > error[kind]) {
            error[kind] = e;
            period[kind] = t;
        }
    }
    void add_rows(Table &table, const DataSet &data, const std::string &what,
                  const std::vector<const char *> &kinds) {
        double volume = 0;
        for (const BodyHydrostatics &body : data.of_case.bodies)
            volume = std::max(volume, body.volume);
        for (std::size_t k = 0; k < kinds.size(); ++k) {
            const double size =
                std::max(largest[k], largest[0] * std::pow(volume, static_cast<double>(k) / 3));
            if (size > 0)
                table.rows.push_back({what + kinds[k], 100 * error[k] / size,
                                      period[k] > 0 ? period_of(*data.p2f, period[k]) : std::nan("")});
        }
    }
};

constexpr const char *FIRST_ORDER = "Error: twice the difference to the run with each panel in four "
                                    "(Richardson, errors as the size of the panels, as "
                                    "at edges; of smooth hulls up to twice too large). Panels stay in their "
                                    "faces: that a curved hull is taken "
                                    "for a faceted one is not in it.";

} // namespace

bool prepare_refinement(const RunCase &run, MadeFrom &made, Refinement &refinement, std::string &error) {
    std::error_code fault;
    fs::create_directories(run.run_folder() + "/" + FINE + "meshes", fault);
    if (fault) {
        error = run.run_folder() + "/" + FINE + " cannot be made: " + fault.message();
        return false;
    }
    std::vector<Outline> outlines(run.bodies.size());
    for (std::size_t b = 0; b < run.bodies.size(); ++b) {
        const std::string thing = FINE + mesh_name(b),
                          lines = "divided\n" + hash_line(run.run_folder() + "/" + mesh_name(b));
        if (!made.holds(thing, lines) &&
            (!made.forget(thing, error) || !divide_mesh(run, b, error) || !made.set(thing, lines, error)))
            return false;
        if (!read_outline(run.run_folder() + "/" + thing, run.bodies[b], outlines[b], error))
            return false;
    }
    if (!make_plan(run, outlines, refinement.plan, error))
        return false;
    std::printf("refine     %d panels, %s%d unknowns in %s%s\n", refinement.plan.panels,
                refinement.plan.IRR == 3 ? "about " : "", refinement.plan.unknowns, run.run_folder().c_str(),
                (std::string("/") + FINE).c_str());
    std::fflush(stdout);
    return true;
}

Table refinement_table(const DataSet &data, const DataSet &fine) {
    Table table;
    table.name = "refinement";
    table.title = "Largest errors by a run with each panel in four";
    table.columns = {{"what", ""}, {"error", "%", Look::fixed, 3}, {"at period", "s", Look::fixed, 3}};
    table.notes = {"Over the largest coefficient of its kind, or of translations with the cube root of the "
                   "displaced volume as arm, where that is more.",
                   FIRST_ORDER};
    const std::vector<const char *> pairs = {", translations", ", translations with rotations",
                                             ", rotations"};
    for (const bool damping : {false, true}) {
        Worst worst;
        for_radiation(data, fine, damping, [&](int kind, double value, double finer, int t) {
            worst.meet(kind, value, finer, t);
        });
        worst.add_rows(table, data, damping ? "damping" : "added mass", pairs);
    }
    if (!data.X.pressure.empty() && !fine.X.pressure.empty()) {
        Worst worst;
        for_forces(data, fine,
                   [&](int kind, double value, double finer, int t) { worst.meet(kind, value, finer, t); });
        worst.add_rows(table, data, "exciting", {" force", " moment"});
    }
    return table;
}

Table refined_radiation_table(const DataSet &data, const DataSet &fine) {
    const P2fFile &p2f = *data.p2f;
    const Scales &scales = data.of_case.scales;
    Table table;
    table.name = "refinement_radiation";
    table.title = "Added mass and damping, and their errors by a run with each panel in four";
    table.leave_out_zeros = true;
    add_period_columns(table.columns, scales);
    table.columns.insert(table.columns.end(),
                         {{"body i", ""}, {"mode i", ""}, {"body j", ""}, {"mode j", ""}, {"k", ""}});
    const std::string unit = scales.names.mass + " " + scales.names.length + "^k";
    add_columns(table, "added mass", unit);
    add_columns(table, "damping", unit + "/s");
    double A[3] = {}, B[3] = {};
    const auto largest = [](double(&of)[3]) {
        return
            [&of](int kind, double value, double, int) { of[kind] = std::max(of[kind], std::fabs(value)); };
    };
    for_radiation(data, fine, false, largest(A));
    for_radiation(data, fine, true, largest(B));
    for (const int t : data.order)
        for (const int i : data.modes)
            for (const int j : data.modes) {
                const int k = rotations(p2f, i) + rotations(p2f, j);
                std::vector<Cell> cells;
                add_period_cells(cells, p2f, scales, t);
                add_mode_cells(cells, p2f, i);
                add_mode_cells(cells, p2f, j);
                cells.emplace_back(static_cast<double>(k));
                add_values(cells, data.R.A(i, j, t), fine.R.A(i, j, t), A[k]);
                add_values(cells, data.R.B(i, j, t), fine.R.B(i, j, t), B[k]);
                table.rows.push_back(std::move(cells));
            }
    table.notes = {FIRST_ORDER};
    return table;
}

Table refined_exciting_table(const DataSet &data, const DataSet &fine) {
    const P2fFile &p2f = *data.p2f;
    const Scales &scales = data.of_case.scales;
    Table table;
    table.name = "refinement_exciting";
    table.title = "Moduli of exciting forces, and their errors by a run with each panel in four";
    table.leave_out_zeros = true;
    if (data.X.pressure.empty() || fine.X.pressure.empty())
        return table;
    add_period_columns(table.columns, scales);
    table.columns.push_back({"heading", "deg", Look::fixed, 2});
    table.columns.insert(table.columns.end(), {{"body", ""}, {"mode", ""}, {"k", ""}});
    add_columns(table, "modulus", scales.names.force + " " + scales.names.length + "^k");
    double X[3] = {};
    for_forces(data, fine, [&X](int kind, double value, double, int) { X[kind] = std::max(X[kind], value); });
    for (const int t : data.order)
        for (const int b : data.headings)
            for (const int m : data.modes) {
                const int k = rotations(p2f, m);
                std::vector<Cell> cells;
                add_period_cells(cells, p2f, scales, t);
                cells.emplace_back(static_cast<double>(p2f.BETA(b)));
                add_mode_cells(cells, p2f, m);
                cells.emplace_back(static_cast<double>(k - 1));
                add_values(cells, std::abs(data.X.pressure(m, b, t)), std::abs(fine.X.pressure(m, b, t)),
                           X[k]);
                table.rows.push_back(std::move(cells));
            }
    table.notes = {FIRST_ORDER};
    return table;
}
