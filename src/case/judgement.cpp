#include "case/judgement.hpp"

#include "post/table_cells.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <sstream>

namespace {

constexpr double MUCH = 0.05;         // of a difference that two ways should not have
constexpr double PANELS_OF_WAVE = 6;  // that a wave length needs
constexpr double OF_DISPLACED = 0.02; // of mass and displaced mass of a body that floats freely

std::string brief(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
}
std::string percent(double part) {
    return brief(100 * part) + " %";
}

struct Worst {
    double value = 0;
    int t = 0;
    void meet(double v, int period) {
        if (v > value) {
            value = v;
            t = period;
        }
    }
};
void add_row(Table &table, const DataSet &data, const std::string &what, const Worst &worst) {
    table.rows.push_back(
        {what, 100 * worst.value, worst.t > 0 ? period_of(*data.p2f, worst.t) : std::nan("")});
}

// Largest antimetric part over the largest coefficient of the kinds of the two modes, of all waves.
Worst asymmetry(const DataSet &data, const Array<double, 3> &even, const Array<double, 3> &odd) {
    const P2fFile &p2f = *data.p2f;
    double largest[3] = {};
    for (const int t : data.waves)
        for (const int j : data.modes)
            for (const int i : data.modes) {
                double &size = largest[rotations(p2f, i) + rotations(p2f, j)];
                size = std::max(size, std::fabs(even(i, j, t)));
            }
    Worst worst;
    for (const int t : data.waves)
        for (const int j : data.modes)
            for (const int i : data.modes)
                if (const double size = largest[rotations(p2f, i) + rotations(p2f, j)]; size > 0)
                    worst.meet(std::fabs(odd(i, j, t)) / size, t);
    return worst;
}

// Horizontal drift of all bodies, near less far over the largest far one of all waves.
Worst drift_difference(const DataSet &data) {
    const auto each = [&data](auto use) {
        for (const int t : data.waves)
            for (std::size_t b = 0; b < data.far[static_cast<std::size_t>(t - 1)].size(); ++b)
                use(t, b);
    };
    double largest = 0;
    Worst worst;
    each([&](int t, std::size_t b) {
        const FarDrift &far = data.far[static_cast<std::size_t>(t - 1)][b];
        largest = std::max(largest, std::hypot(far.surge, far.sway));
    });
    each([&](int t, std::size_t b) {
        const FarDrift &far = data.far[static_cast<std::size_t>(t - 1)][b];
        double x = -far.surge, y = -far.sway;
        for (const NearDrift &near : data.near[static_cast<std::size_t>(t - 1)][b]) {
            x += near.total(0);
            y += near.total(1);
        }
        if (largest > 0)
            worst.meet(std::hypot(x, y) / largest, t);
    });
    return worst;
}

// Lines of the solver's report behind "WARNING:", with what stands in brackets below.
std::vector<std::string> solver_warnings(const std::string &list) {
    std::vector<std::string> found;
    std::istringstream in(list);
    bool open = false;
    for (std::string line; std::getline(in, line);) {
        const std::size_t begin = line.find_first_not_of(' ');
        if (begin == std::string::npos)
            continue;
        const std::string text = line.substr(begin);
        if (text.rfind("WARNING:", 0) == 0 || text.rfind("Warning:", 0) == 0) {
            found.push_back(text.substr(9));
            open = true;
        } else if (open && text[0] == '(') {
            found.back() += " " + text;
            open = false;
        } else {
            open = false;
        }
    }
    return found;
}

} // namespace

Table difference_table(const DataSet &data) {
    const P2fFile &p2f = *data.p2f;
    Table table;
    table.name = "differences";
    table.title = "Largest differences between two ways to the same number";
    table.columns = {{"what", ""}, {"difference", "%", Look::fixed, 3}, {"at period", "s", Look::fixed, 3}};
    table.notes = {"Over the largest value of its kind; small panels make them small."};
    if (!data.X.haskind.empty())
        for (const int mode : data.modes) {
            Worst worst;
            for (const int t : data.waves)
                worst.meet(relative_difference(p2f, data.X.pressure, data.X.haskind, mode, t), t);
            const BodyMode of = body_mode(p2f, mode);
            if (worst.t > 0)
                add_row(table, data,
                        "exciting force, pressure and Haskind: body " + std::to_string(of.body) + " " +
                            mode_name(of),
                        worst);
        }
    if (!data.R.A.empty()) {
        add_row(table, data, "added mass, (i,j) and (j,i)", asymmetry(data, data.R.A, data.R.A_odd));
        add_row(table, data, "damping, (i,j) and (j,i)", asymmetry(data, data.R.B, data.R.B_odd));
    }
    if (!data.far.empty() && !data.near.empty())
        add_row(table, data, "mean drift force, waves far away and pressures", drift_difference(data));
    return table;
}

std::vector<std::string> convergence_hints(const ReportOf &of) {
    const CasePlan &plan = of.findings->plan;
    const DataSet &data = *of.data;
    std::vector<std::string> hints;
    const double ratio = plan.shortest_wave / plan.longest_panel;
    hints.push_back("A panel is " + brief(plan.longest_panel) +
                    " m long on the mean of the body with the larger ones; the shortest wave of " +
                    brief(plan.shortest_wave) + " m has " + brief(ratio) + " of them" +
                    (ratio < PANELS_OF_WAVE ? ": too few, take smaller panels or longer waves." : "."));
    if (ratio < PANELS_OF_WAVE) {
        const double length = PANELS_OF_WAVE * plan.longest_panel;
        hints.push_back("Waves from " + brief(std::sqrt(2 * std::numbers::pi * length / of.run->gravity)) +
                        " s on have " + brief(PANELS_OF_WAVE) + " panels and more.");
    }
    const Table differences = difference_table(data);
    for (const auto &row : differences.rows)
        if (const double d = std::get<double>(row[1]); d > 100 * MUCH)
            hints.push_back(std::get<std::string>(row[0]) + " differ by " + percent(d / 100) + " at " +
                            brief(std::get<double>(row[2])) + " s: compare a run with smaller panels.");
    if (hints.size() == 1 && ratio >= PANELS_OF_WAVE)
        hints.push_back("No two ways differ by more than " + percent(MUCH) + ".");
    if (!data.impulse.times.empty())
        hints.emplace_back(
            "Impulse responses are judged in their own table: what comes back of added mass and damping.");
    return hints;
}

std::vector<std::string> warnings_of(const ReportOf &of) {
    std::vector<std::string> warnings;
    std::istringstream faults(of.findings->mesh_faults);
    for (std::string line; std::getline(faults, line);)
        warnings.push_back("Mesh, run with --force: " + line);
    for (const std::string &text : solver_warnings(of.findings->solver_list))
        if (!of.run->limits || text.rfind("a period counts as infinite frequency", 0) != 0) // asked for
            warnings.push_back("Solver: " + text);
    bool surface = false;
    const LoadedCase &loaded = of.data->of_case;
    for (std::size_t b = 0; b < loaded.bodies.size(); ++b) {
        surface = surface || loaded.bodies[b].waterplane_area > 0;
        const double displaced = loaded.scales.density * loaded.bodies[b].volume,
                     mass = loaded.masses[b].mass;
        if (displaced > 0 && std::fabs(mass / displaced - 1) > OF_DISPLACED)
            warnings.push_back("Body " + std::to_string(b + 1) + " has a mass of " + brief(mass) +
                               " kg and displaces " + brief(displaced) +
                               " kg of water: what holds it, or is its draught wrong?");
    }
    if (surface && of.findings->plan.IRR == 0)
        warnings.emplace_back("Irregular frequencies are left: peaks of short waves may be no real ones.");
    const double ratio = of.findings->plan.shortest_wave / of.findings->plan.longest_panel;
    if (ratio < PANELS_OF_WAVE)
        warnings.push_back("The shortest wave has " + brief(ratio) + " panels on its length, " +
                           brief(PANELS_OF_WAVE) + " are needed.");
    for (const std::string &note : of.data->notes)
        warnings.push_back(note);
    return warnings;
}
