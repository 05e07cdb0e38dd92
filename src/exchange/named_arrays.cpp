#include "exchange/named_arrays.hpp"

#include "post/table_cells.hpp"

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

namespace {

constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
constexpr double TWO_PI = 2 * std::numbers::pi;

using Names = std::vector<std::string>;

// Adds arrays of a data set one after the other.
class Maker {
  public:
    Maker(const DataSet &data, TimeFactor factor)
        : d(data), p(*data.p2f), s(data.of_case.scales), minus_(factor == TimeFactor::minus) {}

    NamedArrays make() {
        axes();
        constants();
        bodies();
        if (!d.R.A.empty())
            radiation();
        if (!d.X.pressure.empty())
            waves();
        if (!d.far.empty() || !d.near.empty())
            drift();
        return std::move(all_);
    }

  private:
    void dimension(const char *name, std::size_t n) { all_.dimensions.emplace_back(name, n); }
    void add(std::string name, Names over, std::string unit, std::string meaning,
             std::vector<double> values) {
        all_.arrays.push_back(
            {std::move(name), std::move(over), std::move(unit), std::move(meaning), std::move(values)});
    }
    void add_words(std::string name, Names over, std::string meaning, Names words) {
        all_.arrays.push_back({std::move(name), std::move(over), "", std::move(meaning), std::move(words)});
    }
    static std::size_t at(int k) { return static_cast<std::size_t>(k - 1); }

    // A value of each period.
    std::vector<double> of_periods(const std::function<double(int)> &value) const {
        std::vector<double> values;
        for (const int t : d.order)
            values.push_back(value(t));
        return values;
    }
    std::vector<double> of_modes(const std::function<double(int)> &value) const {
        std::vector<double> values;
        for (const int m : d.modes)
            values.push_back(value(m));
        return values;
    }
    std::vector<double> of_pairs(const Array<double, 2> &matrix) const {
        std::vector<double> values;
        for (const int i : d.modes)
            for (const int j : d.modes)
                values.push_back(matrix(i, j));
        return values;
    }
    std::vector<double> of_periods_and_pairs(const Array<double, 3> &matrices) const {
        std::vector<double> values;
        for (const int t : d.order)
            for (const int i : d.modes)
                for (const int j : d.modes)
                    values.push_back(matrices(i, j, t));
        return values;
    }
    // Real, then imaginary parts over omega, direction and mode.
    void add_complex(const char *name, const char *modes, const std::string &unit, const char *meaning,
                     const Array<c64, 3> &from) {
        std::vector<double> values;
        for (const bool imaginary : {false, true})
            for (const int t : d.order)
                for (const int b : d.headings)
                    for (const int m : d.modes) {
                        const c64 value = minus_ ? std::conj(from(m, b, t)) : from(m, b, t);
                        values.push_back(std::isnan(value.real()) ? NONE
                                         : imaginary              ? value.imag()
                                                                  : value.real());
                    }
        add(name, {"complex", "omega", "wave_direction", modes}, unit, meaning, std::move(values));
    }

    void axes() {
        dimension("omega", d.order.size());
        dimension("wave_direction", d.headings.size());
        dimension("complex", 2);
        dimension("radiating_dof", d.modes.size());
        dimension("influenced_dof", d.modes.size());
        dimension("space_coordinate", 3);
        const std::string per_length = "/" + s.names.length;
        add("omega", {"omega"}, "rad/s", "circular frequency; 0 and inf are the limits without waves",
            of_periods([&](int t) { return omega_of(p, t); }));
        const auto number = [&](int t) { return wave_number_of(p, t) / s.length; };
        add("period", {"omega"}, "s", "wave period", of_periods([&](int t) { return period_of(p, t); }));
        add("freq", {"omega"}, "Hz", "frequency", of_periods([&](int t) { return omega_of(p, t) / TWO_PI; }));
        add("wavenumber", {"omega"}, "rad" + per_length, "wave number in this depth", of_periods(number));
        add("wavelength", {"omega"}, s.names.length, "wave length in this depth",
            of_periods([&](int t) { return TWO_PI / number(t); }));
        std::vector<double> directions;
        for (const int b : d.headings)
            directions.push_back(static_cast<double>(p.BETA(b)) / DEGREES);
        add("wave_direction", {"wave_direction"}, "rad", "direction the waves travel to, against the x axis",
            directions);
        Names names;
        for (const int m : d.modes)
            names.push_back(dof_name(p, m));
        add_words("radiating_dof", {"radiating_dof"}, "degree of freedom that moves", names);
        add_words("influenced_dof", {"influenced_dof"}, "degree of freedom that the force acts on", names);
        add_words("complex", {"complex"}, "real and imaginary part", {"re", "im"});
        add_words("space_coordinate", {"space_coordinate"}, "global axes, z up, z = 0 the free surface",
                  {"x", "y", "z"});
        if (p.NBODY > 1) {
            dimension("body", static_cast<std::size_t>(p.NBODY));
            Names bodies;
            for (int b = 1; b <= p.NBODY; ++b)
                bodies.push_back(body_name(b));
            add_words("body", {"body"}, "bodies", bodies);
        }
    }

    void constants() {
        const std::string &l = s.names.length;
        constexpr double INF = std::numeric_limits<double>::infinity();
        add("rho", {}, s.names.mass + "/" + l + "^3", "density of the water", {s.density});
        add("g", {}, l + "/s^2", "gravity", {s.gravity});
        add("water_depth", {}, l, "water depth, inf for deep water",
            {p.HBOT > 0 ? static_cast<double>(p.HBOT) * s.length : INF});
        add("forward_speed", {}, l + "/s", "forward speed", {0.0});
        std::string joined;
        int faces = 0;
        const int images = (p.ISX == 1 ? 2 : 1) * (p.ISY == 1 ? 2 : 1);
        for (int b = 1; b <= p.NBODY; ++b) {
            joined += (b > 1 ? "+" : "") + body_name(b);
            faces += images * p.NEQNB(b);
        }
        add_words("body_name", {}, "bodies joined by +", {joined});
        add("nb_faces", {}, "1", "panels of all bodies with their images", {static_cast<double>(faces)});
    }

    void bodies() {
        const std::string &l = s.names.length;
        const Names one = p.NBODY > 1 ? Names{"body"} : Names{},
                    place = p.NBODY > 1 ? Names{"body", "space_coordinate"} : Names{"space_coordinate"};
        std::vector<double> buoyancy, mass, origin, displaced, draught;
        for (int b = 1; b <= p.NBODY; ++b) {
            const BodyHydrostatics &body = d.of_case.bodies[at(b)];
            const Vec3 centre = global_place(p, b, d.of_case.masses[at(b)].centre);
            buoyancy.insert(buoyancy.end(), body.buoyancy_global.begin(), body.buoyancy_global.end());
            mass.insert(mass.end(), centre.begin(), centre.end());
            origin.insert(origin.end(), body.origin.begin(), body.origin.end());
            displaced.push_back(s.density * body.volume);
            draught.push_back(-(body.lowest[2] + body.origin[2]));
        }
        add("center_of_buoyancy", place, l, "centre of buoyancy, global axes", buoyancy);
        add("center_of_mass", place, l, "centre of gravity, global axes", mass);
        add("rotation_center", place, l,
            "origin of the body, which motions and moments are about, global axes", origin);
        add("disp_mass", one, s.names.mass, "mass of the displaced water", displaced);
        add("draught", one, l, "depth of the lowest panel vertex", draught);
        const Names pair = {"influenced_dof", "radiating_dof"};
        add("hydrostatic_stiffness", pair, force_per_motion(),
            "stiffness of waterplane, buoyancy and weight, extra modes by the file", of_pairs(d.C));
        add("inertia_matrix", pair, mass_unit(), "mass matrix", of_pairs(d.M));
        add("external_stiffness", pair, force_per_motion(), "stiffness that the case file adds",
            of_pairs(d.C_external));
        add("external_damping", pair, mass_unit("/s"), "damping that the case file adds",
            of_pairs(d.B_external));
        if (d.natural.empty())
            return;
        std::vector<double> natural = of_modes([](int) { return NONE; });
        for (const NaturalMode &mode : d.natural)
            for (std::size_t k = 0; k < d.modes.size(); ++k)
                if (mode.shape[at(d.modes[k])] == 1 && std::isnan(natural[k]))
                    natural[k] = TWO_PI / mode.omega;
        add("natural_period", {"radiating_dof"}, "s",
            "longest period of the natural modes of which this degree of freedom is the largest part",
            natural);
    }

    // Units of what has rotations in it: of translations, mixed, of rotations.
    std::string mass_unit(const std::string &per = "") const {
        const std::string &m = s.names.mass, &l = s.names.length;
        return m + per + "; " + m + " " + l + per + "; " + m + " " + l + "^2" + per;
    }
    std::string force_per_motion() const {
        const std::string &f = s.names.force, &l = s.names.length;
        return f + "/" + l + "; " + f + "; " + f + " " + l;
    }
    std::string force_unit(const std::string &per) const {
        return s.names.force + per + "; " + s.names.force + " " + s.names.length + per;
    }

    void radiation() {
        const Names over = {"omega", "influenced_dof", "radiating_dof"};
        add("added_mass", over, mass_unit(), "added mass", of_periods_and_pairs(d.R.A));
        add("radiation_damping", over, mass_unit("/s"), "radiation damping, 0 at both limits",
            of_periods_and_pairs(d.R.B));
    }

    void waves() {
        const std::string unit = force_unit("/" + s.names.length);
        const char *f = "influenced_dof";
        add_complex("Froude_Krylov_force", f, unit, "force of the incident wave per unit amplitude",
                    d.X.froude_krylov);
        add_complex("diffraction_force", f, unit, "force of the scattered wave per unit amplitude",
                    d.X.scattering);
        add_complex("excitation_force", f, unit,
                    "sum of both; at zero frequency that of a level raised by 1, at infinite frequency 0",
                    d.X.pressure);
        if (!d.X.haskind.empty())
            add_complex("excitation_force_haskind", f, unit, "the same by Haskind's relation", d.X.haskind);
        if (!d.xi.empty())
            add_complex(
                "rao", "radiating_dof", s.names.length + "/" + s.names.length + "; rad/" + s.names.length,
                "motion of the origin in the axes of the body per unit amplitude, rotations in rad; no "
                "value at the limits",
                d.xi);
    }

    // In the axes of the body, as its motions are.
    std::array<double, 6> in_body_axes(int body, std::array<double, 6> F) const {
        const double angle = static_cast<double>(p.XBODY(4, body)) / DEGREES, c = std::cos(angle),
                     sine = std::sin(angle);
        for (const std::size_t k : {0u, 3u}) {
            const double x = F[k], y = F[k + 1];
            F[k] = c * x + sine * y;
            F[k + 1] = c * y - sine * x;
        }
        return F;
    }
    // Force over rho g L, moment over rho g L^2.
    double drift_unit(std::size_t component) const {
        return s.density * s.gravity * s.length * (component < 3 ? 1 : s.length);
    }
    void drift() {
        const std::string unit = force_unit("/" + s.names.length + "^2");
        std::vector<double> far, near, together;
        for (const int t : d.order)
            for (const int b : d.headings) {
                const bool has_far = !d.far.empty() && !d.far[at(t)].empty(),
                           has_near = !d.near.empty() && !d.near[at(t)].empty();
                const FarDrift waves = has_far ? d.far[at(t)][at(b)] : FarDrift{NONE, NONE, NONE, 0, 0};
                for (const double value :
                     {drift_unit(0) * waves.surge, drift_unit(1) * waves.sway, drift_unit(5) * waves.yaw})
                    together.push_back(value);
                // Of one body: about its own origin.
                const std::array<double, 6> one =
                    in_body_axes(1, {waves.surge, waves.sway, NONE, NONE, NONE,
                                     waves.yaw - static_cast<double>(p.XBODY(1, 1)) * waves.sway +
                                         static_cast<double>(p.XBODY(2, 1)) * waves.surge});
                for (const int m : d.modes) {
                    const BodyMode mode = body_mode(p, m);
                    const std::size_t c = at(mode.number);
                    far.push_back(c < 6 ? drift_unit(c) * one[c] : NONE);
                    std::array<double, 6> F{};
                    for (std::size_t k = 0; has_near && k < 6; ++k)
                        F[k] = d.near[at(t)][at(b)][at(mode.body)].total(k);
                    near.push_back(has_near && c < 6 ? drift_unit(c) * in_body_axes(mode.body, F)[c] : NONE);
                }
            }
        const Names over = {"omega", "wave_direction", "influenced_dof"};
        if (!d.far.empty() && p.NBODY == 1)
            add("drift_force_far", over, unit,
                "mean drift over the amplitude squared by the waves far away, body axes and origin; surge, "
                "sway and yaw alone",
                far);
        if (!d.far.empty() && p.NBODY > 1) {
            dimension("drift_component", 3);
            add_words("drift_component", {"drift_component"}, "on all bodies, global axes and origin",
                      {"Surge", "Sway", "Yaw"});
            add("drift_force_far", {"omega", "wave_direction", "drift_component"}, unit,
                "mean drift on all bodies together over the amplitude squared by the waves far away",
                together);
        }
        if (!d.near.empty())
            add("drift_force_near", over, unit,
                "mean drift over the amplitude squared by the pressures, body axes and origin", near);
    }

    const DataSet &d;
    const P2fFile &p;
    const Scales &s;
    bool minus_;
    NamedArrays all_;
};

} // namespace

std::size_t NamedArrays::length(const std::string &dimension) const {
    for (const auto &[name, n] : dimensions)
        if (name == dimension)
            return n;
    return 0;
}

std::string convention_text(TimeFactor factor) {
    const std::string sign = factor == TimeFactor::minus ? "-" : "+",
                      other = factor == TimeFactor::minus ? "+" : "-";
    return "Complex values X stand for Re(X exp(" + sign +
           "i omega t)). Waves of unit amplitude have the elevation Re(exp(" + other +
           "i k (x cos beta + y sin beta) " + sign +
           " i omega t)): they travel to the direction beta and their phase is 0 at the global origin. "
           "Motions, "
           "forces and moments are about the origins of the bodies and in their axes.";
}

std::string dof_name(const P2fFile &p2f, int mode) {
    const BodyMode m = body_mode(p2f, mode);
    std::string name = mode_name(m);
    std::erase(name, ' ');
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    return p2f.NBODY > 1 ? body_name(m.body) + "__" + name : name;
}

std::string body_name(int body) {
    return "body" + std::to_string(body);
}

NamedArrays named_arrays(const DataSet &data, TimeFactor factor) {
    NamedArrays all = Maker(data, factor).make();
    all.texts.emplace_back("title", "Hydrodynamic coefficients, forces and motions of floating bodies");
    for (const auto &text : data.provenance.texts())
        all.texts.push_back(text);
    all.texts.emplace_back("convention", convention_text(factor));
    all.texts.emplace_back("units", data.of_case.scales.names.length + ", " + data.of_case.scales.names.mass +
                                        ", s, " + data.of_case.scales.names.force +
                                        ". Units behind each other are those of translations, then with "
                                        "rotations (rad) among the degrees of freedom concerned");
    std::string notes;
    for (const std::string &note : data.notes)
        notes += (notes.empty() ? "" : " ") + note;
    if (!notes.empty())
        all.texts.emplace_back("comment", notes);
    return all;
}
