#include "exchange/animation.hpp"

#include "exchange/hull_cells.hpp"
#include "post/field.hpp"
#include "post/panels.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>

namespace {

constexpr int PHASES = 24;
constexpr int GRID = 72;         // points each way
constexpr double STEEPNESS = 50; // wave length over amplitude where none is given

struct Moving {
    const DataSet &data;
    int t, b;
    double amplitude;
    double wave_length() const {
        return 2 * std::numbers::pi / wave_number_of(*data.p2f, t) * data.of_case.scales.length;
    }
    // Real part, at a phase of the period.
    double now(c64 value, int phase) const {
        return amplitude * (value * std::polar(1.0, 2 * std::numbers::pi * phase / PHASES)).real();
    }
};

// A place turned by a rotation vector, as a rigid body turns (O. Rodrigues 1840).
Vector3 turned(const Vector3 &alpha, const Vector3 &r) {
    const double angle = std::sqrt(dot(alpha, alpha));
    if (angle == 0)
        return r;
    const Vector3 axis = times(1 / angle, alpha);
    return plus(plus(times(std::cos(angle), r), times(std::sin(angle), cross(axis, r))),
                times((1 - std::cos(angle)) * dot(axis, r), axis));
}

// Motion and rotation of a body in global axes.
struct BodyMotion {
    Vector3 shift{}, turn{}, origin{};
};
BodyMotion motion_of(const Moving &m, int body, int phase) {
    const P2fFile &p = *m.data.p2f;
    const int first = modes_before(p, body);
    const double angle = static_cast<double>(p.XBODY(4, body)) * std::numbers::pi / 180, c = std::cos(angle),
                 s = std::sin(angle);
    double xi[6] = {};
    for (int k = 0; k < 6 && !m.data.xi.empty(); ++k)
        xi[k] = m.now(m.data.xi(first + 1 + k, m.b, m.t), phase);
    const BodyHydrostatics &of = m.data.of_case.bodies[static_cast<std::size_t>(body - 1)];
    return {{c * xi[0] - s * xi[1], s * xi[0] + c * xi[1], xi[2]},
            {c * xi[3] - s * xi[4], s * xi[3] + c * xi[4], xi[5]},
            {of.origin[0], of.origin[1], of.origin[2]}};
}

VtuFile empty_file(const Moving &m) {
    VtuFile file;
    file.attributes = vtu_texts(m.data);
    char text[96];
    std::snprintf(text, sizeof text, "%.6g s, heading %g deg, amplitude %.6g %s", period_of(*m.data.p2f, m.t),
                  static_cast<double>(m.data.p2f->BETA(m.b)), m.amplitude,
                  m.data.of_case.scales.names.length.c_str());
    file.attributes.emplace_back("wave", text);
    file.point_unit = m.data.of_case.scales.names.length;
    return file;
}

VtuFile hull_at(const Moving &m, const std::vector<HullCell> &cells, const PanelValues &values, int phase) {
    const UnitNames &unit = m.data.of_case.scales.names;
    std::vector<BodyMotion> motions;
    for (int body = 1; body <= m.data.p2f->NBODY; ++body)
        motions.push_back(motion_of(m, body, phase));
    std::vector<HullCell> moved = cells;
    std::vector<float> pressure;
    for (HullCell &cell : moved) {
        const BodyMotion &body = motions[static_cast<std::size_t>(cell.body - 1)];
        for (Vector3 &corner : cell.corners)
            corner = plus(plus(body.origin, body.shift),
                          turned(body.turn, plus(corner, times(-1.0, body.origin))));
        cell.normal = turned(body.turn, cell.normal);
        pressure.push_back(static_cast<float>(m.now(values.pressure(cell.panel, cell.image), phase)));
    }
    VtuFile file = empty_file(m);
    add_geometry(moved, file);
    add_marks(moved, unit.length, file);
    file.on_cells.push_back({"pressure", unit.force + "/" + unit.length + "^2", 1, std::move(pressure)});
    return file;
}

// A square around the bodies, up to a wave length beyond them.
std::vector<Vector3> grid_around(const Moving &m, const std::vector<HullCell> &cells) {
    Vector3 low{1e300, 1e300, 0}, high{-1e300, -1e300, 0};
    for (const HullCell &cell : cells)
        for (const Vector3 &corner : cell.corners)
            for (const std::size_t c : {0u, 1u}) {
                low[c] = std::min(low[c], corner[c]);
                high[c] = std::max(high[c], corner[c]);
            }
    const double size = std::max(high[0] - low[0], high[1] - low[1]),
                 half = size / 2 + std::clamp(m.wave_length(), size / 2, 3 * size);
    std::vector<Vector3> points;
    for (int j = 0; j < GRID; ++j)
        for (int i = 0; i < GRID; ++i)
            points.push_back({(low[0] + high[0]) / 2 + half * (2.0 * i / (GRID - 1) - 1),
                              (low[1] + high[1]) / 2 + half * (2.0 * j / (GRID - 1) - 1), 0});
    return points;
}

// Quadrilaterals of which all corners are in the water.
VtuFile wave_at(const Moving &m, const FieldRequest &request, const Field &field, int phase) {
    const UnitNames &unit = m.data.of_case.scales.names;
    const double L = m.data.of_case.scales.length;
    VtuFile file = empty_file(m);
    std::vector<std::int32_t> number(request.points.size(), -1);
    std::vector<float> elevation;
    for (std::size_t k = 0; k < request.points.size(); ++k) {
        if (request.mark[k] != PointMark::fluid)
            continue;
        number[k] = static_cast<std::int32_t>(elevation.size());
        const double z = m.now(field.total(static_cast<int>(k) + 1, m.b), phase);
        elevation.push_back(static_cast<float>(z));
        file.points.insert(file.points.end(), {L * request.points[k][0], L * request.points[k][1], z});
    }
    for (std::size_t j = 0; j + 1 < GRID; ++j)
        for (std::size_t i = 0; i + 1 < GRID; ++i) {
            const std::size_t k = j * GRID + i;
            const std::int32_t corner[4] = {number[k], number[k + 1], number[k + GRID + 1], number[k + GRID]};
            if (*std::min_element(corner, corner + 4) < 0)
                continue;
            file.corners.insert(file.corners.end(), corner, corner + 4);
            file.ends.push_back(static_cast<std::int32_t>(file.corners.size()));
        }
    file.on_points.push_back({"elevation", unit.length, 1, std::move(elevation)});
    return file;
}

std::string unfit(const DataSet &data, const AnimationOf &of) {
    const P2fFile &p = *data.p2f;
    if (of.period < 1 || of.period > p.NPER)
        return "the run has no period " + std::to_string(of.period) + ", it has " + std::to_string(p.NPER);
    if (!has_waves(p, of.period))
        return "period " + std::to_string(of.period) + " is a limit frequency, which has no waves";
    if (p.IDIFF < 0)
        return "the file has no diffraction: set IDIFF=1 in the run";
    if (of.heading < 1 || of.heading > p.NBETA)
        return "the run has no heading " + std::to_string(of.heading) + ", it has " + std::to_string(p.NBETA);
    // A run without radiation is one of bodies that are held.
    return data.xi.empty() && p.IRAD >= 0 ? "there are no motions to show, see the notes of other formats"
                                          : "";
}

bool write_phases(const Moving &m, const std::string &folder, std::string &error) {
    const P2fFile &p2f = *m.data.p2f;
    const Scales &scales = m.data.of_case.scales;
    std::vector<HullCell> cells = hull_cells(p2f, scales.length);
    std::erase_if(
        cells, [](const HullCell &c) { return c.kind == CellKind::inside || c.kind == CellKind::surface; });
    PanelValues values;
    const SurfaceGradient gradient(p2f, PanelKinds(p2f));
    if (!form_panels(p2f, m.t, m.data.motions(m.t), {PanelLoad::Kind::total, m.b}, scales, gradient, values,
                     error))
        return false;
    FieldRequest request;
    for (const Vector3 &point : grid_around(m, cells))
        request.points.push_back(times(1 / scales.length, point));
    request.mark = mark_points(p2f, request.points);
    Field field;
    if (!form_field(p2f, m.t, m.data.motions(m.t), request, field, error))
        return false;
    for (int phase = 0; phase < PHASES; ++phase) {
        const std::string number = (phase < 10 ? "0" : "") + std::to_string(phase) + ".vtu";
        if (!write_vtu(folder + "/hull_" + number, hull_at(m, cells, values, phase), error) ||
            !write_vtu(folder + "/wave_" + number, wave_at(m, request, field, phase), error))
            return false;
    }
    return true;
}

} // namespace

bool write_animation(const DataSet &data, ExportRequest &request, std::string &error) {
    namespace fs = std::filesystem;
    error = unfit(data, *request.animation);
    if (!error.empty())
        return false;
    Moving m{data, request.animation->period, request.animation->heading, request.animation->amplitude};
    if (m.amplitude <= 0)
        m.amplitude = m.wave_length() / STEEPNESS;
    const fs::path out = request.out, stem = out.parent_path() / out.stem();
    const fs::path folder = stem.string() + "_phases", made = folder.string() + ".part";
    std::error_code fault;
    fs::remove_all(made, fault);
    if (!fs::create_directory(made, fault)) {
        error = made.string() + " cannot be made: " + fault.message();
        return false;
    }
    bool good = write_phases(m, made.string(), error);
    if (good) {
        fs::remove_all(folder, fault);
        fs::rename(made, folder, fault);
        if (fault)
            error = folder.string() + " cannot be written: " + fault.message();
        good = !fault;
    }
    std::vector<PvdStep> steps;
    for (int phase = 0; phase < PHASES; ++phase)
        for (const bool wave : {false, true})
            steps.push_back({period_of(*data.p2f, m.t) * phase / PHASES, wave ? 1 : 0,
                             folder.filename().string() + (wave ? "/wave_" : "/hull_") +
                                 (phase < 10 ? "0" : "") + std::to_string(phase) + ".vtu"});
    good = good && write_pvd(stem.string() + ".pvd", vtu_texts(data), steps, error);
    if (!good) {
        fs::remove_all(made, fault);
        return false;
    }
    request.written = {stem.string() + ".pvd", folder.string()};
    return true;
}
