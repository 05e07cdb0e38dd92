// Pressures, potentials and velocities on the panels of one period as a VTK file.
#include "exchange/animation.hpp"
#include "exchange/export.hpp"
#include "exchange/hull_cells.hpp"
#include "exchange/named_arrays.hpp"
#include "post/panels.hpp"

#include <filesystem>
#include <limits>

namespace {

constexpr float NONE = std::numeric_limits<float>::quiet_NaN();

// What makes the pressures, with its name in the file and what it is the unit of.
struct NamedLoad {
    PanelLoad load;
    std::string name, per;
};

std::string angle_text(const P2fFile &p2f, int heading) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(p2f.BETA(heading)));
    return text;
}

// Unit motions of the modes; the waves past bodies at rest; the whole waves where there are motions.
std::vector<NamedLoad> loads_of(const DataSet &data) {
    const P2fFile &p2f = *data.p2f;
    const std::string &l = data.of_case.scales.names.length;
    std::vector<NamedLoad> loads;
    for (const int j : p2f.IRAD < 0 ? std::vector<int>() : data.modes) {
        const BodyMode m = body_mode(p2f, j);
        std::string name = mode_name(m);
        std::erase(name, ' ');
        loads.push_back({{PanelLoad::Kind::mode, j},
                         p2f.NBODY > 1 ? body_name(m.body) + "_" + name : name,
                         is_rotation(p2f, j) ? "/rad" : "/" + l});
    }
    for (const int b : data.headings)
        loads.push_back({{PanelLoad::Kind::diffraction, b}, "waves_" + angle_text(p2f, b), "/" + l});
    for (const int b : data.headings)
        if (!data.xi.empty())
            loads.push_back({{PanelLoad::Kind::total, b}, "total_" + angle_text(p2f, b), "/" + l});
    return loads;
}

// The six arrays of a load (four without velocities).
void add_values(const std::vector<HullCell> &cells, const NamedLoad &load, const PanelValues &values,
                double density, double omega, const UnitNames &unit, VtuArray *to) {
    const bool moves = !values.velocity.empty();
    std::vector<float> part[6];
    for (const HullCell &cell : cells) {
        const bool none = cell.kind == CellKind::inside || cell.kind == CellKind::surface;
        const c64 p = none ? 0 : values.pressure(cell.panel, cell.image),
                  phi = c64(0, 1) * p / (density * omega);
        const double scalars[4] = {p.real(), p.imag(), phi.real(), phi.imag()};
        for (std::size_t k = 0; k < 4; ++k)
            part[k].push_back(none ? NONE : static_cast<float>(scalars[k]));
        for (int c = 1; moves && c <= 3; ++c) {
            const bool has = cell.kind == CellKind::hull;
            const c64 v = has ? values.velocity(c, cell.panel, cell.image) : 0;
            part[4].push_back(has ? static_cast<float>(v.real()) : NONE);
            part[5].push_back(has ? static_cast<float>(v.imag()) : NONE);
        }
    }
    const std::string l = unit.length;
    const std::string units[3] = {unit.force + "/" + l + "^2" + load.per, l + "^2/s" + load.per,
                                  l + "/s" + load.per};
    constexpr const char *NAMES[3] = {"pressure_", "potential_", "velocity_"};
    for (std::size_t k = 0; k < (moves ? 6u : 4u); ++k)
        to[k] = {NAMES[k / 2] + load.name + (k % 2 == 0 ? "_re" : "_im"), units[k / 2], k < 4 ? 1 : 3,
                 std::move(part[k])};
}

// What the file does not tell, as waves of which it lacks symmetry classes, is left out; `left_out` says why.
void add_period(const DataSet &data, int t, const std::vector<HullCell> &cells, VtuFile &file,
                std::string &left_out) {
    const P2fFile &p2f = *data.p2f;
    const Scales &scales = data.of_case.scales;
    const std::vector<NamedLoad> loads = loads_of(data);
    const SurfaceGradient gradient(p2f, PanelKinds(p2f));
    const std::size_t each = p2f.ISOR == 1 ? 6 : 4, first = file.on_cells.size();
    file.on_cells.resize(first + each * loads.size());
    const int count = static_cast<int>(loads.size());
    std::vector<std::string> faults(loads.size());
#pragma omp parallel for schedule(dynamic)
    for (int k = 0; k < count; ++k) {
        const NamedLoad &load = loads[static_cast<std::size_t>(k)];
        PanelValues values;
        if (form_panels(p2f, t, data.motions(t), load.load, scales, gradient, values,
                        faults[static_cast<std::size_t>(k)]))
            add_values(cells, load, values, scales.density, omega_of(p2f, t), scales.names,
                       &file.on_cells[first + each * static_cast<std::size_t>(k)]);
    }
    std::string names, why;
    for (std::size_t k = 0; k < loads.size(); ++k)
        if (!faults[k].empty()) {
            names += (names.empty() ? "" : ", ") + loads[k].name;
            why = faults[k];
        }
    if (!names.empty())
        left_out = "Left out: " + names + ". " + why + ".";
    std::erase_if(file.on_cells, [](const VtuArray &array) { return array.name.empty(); });
}

// The periods that were asked for, or the first one with waves.
bool choose(const DataSet &data, const std::vector<int> &wanted, std::vector<int> &periods,
            std::string &error) {
    for (const int t : wanted) {
        if (t < 1 || t > data.p2f->NPER) {
            error =
                "the run has no period " + std::to_string(t) + ", it has " + std::to_string(data.p2f->NPER);
            return false;
        }
        if (!has_waves(*data.p2f, t)) {
            error = "period " + std::to_string(t) + " is a limit frequency, which has no waves";
            return false;
        }
        periods.push_back(t);
    }
    for (int t = 1; periods.empty() && t <= data.p2f->NPER; ++t)
        if (has_waves(*data.p2f, t))
            periods.push_back(t);
    return true;
}

} // namespace

std::vector<std::pair<std::string, std::string>> vtu_texts(const DataSet &data) {
    auto texts = data.provenance.texts();
    texts.emplace_back("convention", convention_text(TimeFactor::plus));
    return texts;
}

bool write_hull_vtu(const DataSet &data, ExportRequest &request, std::string &error) {
    if (request.animation)
        return write_animation(data, request, error);
    const P2fFile &p2f = *data.p2f;
    const std::string &unit = data.of_case.scales.names.length;
    std::vector<int> periods;
    if (!choose(data, request.periods, periods, error))
        return false;
    const std::vector<HullCell> cells = hull_cells(p2f, data.of_case.scales.length);
    const std::filesystem::path out = request.out;
    std::vector<PvdStep> steps;
    for (std::size_t k = 0; k < std::max<std::size_t>(periods.size(), 1); ++k) {
        VtuFile file;
        file.attributes = vtu_texts(data);
        file.point_unit = unit;
        add_geometry(cells, file);
        add_marks(cells, unit, file);
        std::string name = request.out;
        if (!periods.empty()) {
            const int t = periods[k];
            char period[48];
            std::snprintf(period, sizeof period, "%.9g s (period %d of the run)", period_of(p2f, t), t);
            file.attributes.emplace_back("period", period);
            std::string left_out;
            add_period(data, t, cells, file, left_out);
            if (!left_out.empty())
                request.notes.push_back(left_out);
            if (periods.size() > 1) {
                name = (out.parent_path() / out.stem()).string() + "_period" + std::to_string(t) + ".vtu";
                steps.push_back({period_of(p2f, t), 0, std::filesystem::path(name).filename().string()});
            }
        }
        if (!write_vtu(name, file, error))
            return false;
        request.written.push_back(name);
    }
    if (steps.empty())
        return true;
    const std::string series = (out.parent_path() / out.stem()).string() + ".pvd";
    request.written.push_back(series);
    return write_pvd(series, vtu_texts(data), steps, error);
}
