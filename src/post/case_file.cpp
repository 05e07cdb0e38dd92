#include "post/case_file.hpp"

#include "post/case_toml.hpp"
#include "post/images.hpp"

#include <algorithm>
#include <cstdlib>

namespace {

// Reads the tables of a case file; the first fault ends it.
class Reader {
  public:
    Reader(const std::string &name, const P2fFile &p2f, CaseFile &file) : name_(name), p_(p2f), c_(file) {}
    std::string fault;

    bool read(const toml::table &top) {
        c_.density = real(top, "density", 0);
        return each(top, "body", [this](const toml::table &t, int n) { return body(t, n); }) &&
               each(top, "spring", [this](const toml::table &t, int) { return spring(t); }) &&
               each(top, "coupling", [this](const toml::table &t, int) { return coupling(t); }) &&
               each(top, "point", [this](const toml::table &t, int n) { return point(t, n); }) &&
               each(top, "spectrum", [this](const toml::table &t, int) { return spectrum(t); }) &&
               each(top, "part", [this](const toml::table &t, int) { return part(t); }) &&
               each(top, "section", [this](const toml::table &t, int) { return section(t); });
    }
    bool refuse(const toml::source_region &where, const std::string &why) {
        fault = at_line(name_, where, why);
        return false;
    }

  private:
    template <class Read> bool each(const toml::table &top, const char *kind, Read read) {
        const toml::array *list = top.get(kind) != nullptr ? top.get(kind)->as_array() : nullptr;
        for (std::size_t n = 0; list != nullptr && n < list->size(); ++n) {
            const toml::table &table = *list->get(n)->as_table();
            if (!read(table, static_cast<int>(n) + 1))
                return false;
        }
        return true;
    }

    static double real(const toml::table &t, const char *key, double standard) {
        const toml::node *node = t.get(key);
        return node != nullptr ? number(*node) : standard;
    }
    static int whole(const toml::table &t, const char *key, int standard) {
        return static_cast<int>(real(t, key, standard));
    }
    template <std::size_t n>
    static void reals(const toml::table &t, const char *key, std::array<double, n> &values) {
        for (std::size_t k = 0; t.get(key) != nullptr && k < n; ++k)
            values[k] = number(*t.get(key)->as_array()->get(k));
    }
    static CaseMatrix matrix(const toml::table &t, const char *key) {
        CaseMatrix rows;
        for (std::size_t i = 0; t.get(key) != nullptr && i < t.get(key)->as_array()->size(); ++i) {
            rows.emplace_back();
            for (const toml::node &value : *t.get(key)->as_array()->get(i)->as_array())
                rows.back().push_back(number(value));
        }
        return rows;
    }

    bool is_body(const toml::table &t, const char *key, int b, int least) {
        return (b >= least && b <= p_.NBODY) ||
               refuse((t.get(key) != nullptr ? *t.get(key) : static_cast<const toml::node &>(t)).source(),
                      "there is no body " + std::to_string(b) + " in the run, it has " +
                          std::to_string(p_.NBODY));
    }

    // Mode, from 1 in the run, that a word names: "roll", "2.roll", "2.7"; `body` when it names none, 0:
    // none.
    bool mode_of(const toml::node &node, std::string word, int body, int &mode) {
        const std::string all = word;
        const std::size_t point = word.find('.');
        if (point != std::string::npos && body == 0) {
            body = std::atoi(word.c_str());
            word.erase(0, point + 1);
        } else if (body == 0 && p_.NBODY == 1) {
            body = 1;
        }
        const int before = body >= 1 && body <= p_.NBODY ? modes_before(p_, body) : 0;
        for (int m = 1; body >= 1 && body <= p_.NBODY && m <= 6 + p_.NEWMDS(body); ++m) {
            if (word == mode_name({body, m}) || word == std::to_string(m)) {
                mode = before + m;
                return true;
            }
        }
        return refuse(node.source(),
                      all + " is no mode of the run; write surge, sway, heave, roll, pitch, yaw or the "
                            "number of the mode, behind the number of the body and a point where "
                            "several bodies are possible");
    }

    bool of_all_modes(const toml::table &t, const char *key, int b, CaseMatrix &to) {
        to = matrix(t, key);
        const std::size_t n = 6 + static_cast<std::size_t>(p_.NEWMDS(b));
        return to.empty() || to.size() == n ||
               refuse(t.get(key)->source(), std::string(key) + " in [[body]] needs " + std::to_string(n) +
                                                " rows, one for each mode of the body");
    }

    bool body(const toml::table &t, int n) {
        const int b = whole(t, "number", n);
        if (!is_body(t, "number", b, 1))
            return false;
        if (std::find(seen_.begin(), seen_.end(), b) != seen_.end())
            return refuse(t.source(), "body " + std::to_string(b) + " stands here a second time");
        seen_.push_back(b);
        CaseBody &to = c_.bodies[static_cast<std::size_t>(b - 1)];
        if (t.get("mass") != nullptr)
            to.mass = real(t, "mass", 0);
        if (t.get("centre") != nullptr)
            reals(t, "centre", to.centre.emplace());
        if (t.get("radii") != nullptr)
            reals(t, "radii", to.radii.emplace());
        if (t.get("inertia") != nullptr) {
            to.inertia = matrix(t, "inertia");
            if (to.inertia->size() != 3)
                return refuse(t.get("inertia")->source(), "inertia in [[body]] needs three rows");
        }
        const int given =
            (to.radii ? 1 : 0) + (to.inertia ? 1 : 0) + (t.get("mass_matrix") != nullptr ? 1 : 0);
        if (given > 1)
            return refuse(t.source(), "only one of radii, inertia, mass_matrix can hold for a body");
        if (!of_all_modes(t, "mass_matrix", b, to.mass_matrix) ||
            !of_all_modes(t, "stiffness", b, to.stiffness) || !of_all_modes(t, "damping", b, to.damping))
            return false;
        if (const toml::node *critical = t.get("critical"))
            for (const auto &[key, node] : *critical->as_table()) {
                int mode = 0;
                if (!mode_of(node, std::string(key.str()), b, mode))
                    return false;
                to.critical.emplace_back(mode, number(node));
            }
        if (const toml::node *fixed = t.get("fixed"))
            for (const toml::node &word : *fixed->as_array()) {
                int mode = 0;
                if (!mode_of(word, *word.value<std::string>(), b, mode))
                    return false;
                c_.fixed.push_back(mode);
            }
        return true;
    }

    bool must(const toml::table &t, const char *kind, std::initializer_list<const char *> keys) {
        for (const char *key : keys)
            if (t.get(key) == nullptr)
                return refuse(t.source(), std::string(key) + " in [[" + kind + "]] must be given");
        return true;
    }

    bool part(const toml::table &t) {
        const int b = whole(t, "body", 1);
        if (!must(t, "part", {"mass", "from"}) || !is_body(t, "body", b, 1))
            return false;
        CaseBody &of = c_.bodies[static_cast<std::size_t>(b - 1)];
        if (of.mass || of.centre || of.radii || of.inertia || !of.mass_matrix.empty())
            return refuse(t.source(),
                          "the mass of body " + std::to_string(b) + " is given in [[body]] and in [[part]]");
        const double from = real(t, "from", 0);
        of.parts.push_back({real(t, "mass", 0), from, real(t, "to", from), real(t, "y", 0), real(t, "z", 0),
                            real(t, "radius_y", 0), real(t, "radius_z", 0)});
        return of.parts.back().to >= from || refuse(t.get("to")->source(), "to in [[part]] lies behind from");
    }

    bool section(const toml::table &t) {
        CaseSections sections{whole(t, "body", 1), {}, real(t, "y", 0), real(t, "z", 0)};
        if (!must(t, "section", {"from"}) || !is_body(t, "body", sections.body, 1))
            return false;
        const double from = real(t, "from", 0), to = real(t, "to", from);
        const int count = whole(t, "count", 1);
        for (int k = 0; k < count; ++k)
            sections.stations.push_back(count == 1 ? from : from + k * (to - from) / (count - 1));
        if (c_.bodies[static_cast<std::size_t>(sections.body - 1)].parts.empty())
            return refuse(t.source(),
                          "sections need the mass of body " + std::to_string(sections.body) + " as [[part]]");
        c_.sections.push_back(sections);
        return true;
    }

    bool spring(const toml::table &t) {
        CaseSpring spring;
        spring.body = whole(t, "body", 1);
        spring.to = whole(t, "to", 0);
        reals(t, "at", spring.at);
        reals(t, "stiffness", spring.stiffness);
        reals(t, "damping", spring.damping);
        if (!is_body(t, "body", spring.body, 1) || !is_body(t, "to", spring.to, 0))
            return false;
        if (spring.body == spring.to)
            return refuse(t.source(), "a spring needs two ends");
        c_.springs.push_back(spring);
        return true;
    }

    bool coupling(const toml::table &t) {
        const toml::node *modes = t.get("modes");
        if (modes == nullptr || modes->as_array()->size() != 2)
            return refuse((modes != nullptr ? *modes : static_cast<const toml::node &>(t)).source(),
                          "modes in [[coupling]] has to name two modes");
        CaseCoupling coupling{0, 0, real(t, "stiffness", 0), real(t, "damping", 0)};
        for (int *mode : {&coupling.i, &coupling.j}) {
            const toml::node &word = *modes->as_array()->get(mode == &coupling.i ? 0 : 1);
            if (!mode_of(word, *word.value<std::string>(), 0, *mode))
                return false;
        }
        c_.couplings.push_back(coupling);
        return true;
    }

    bool point(const toml::table &t, int n) {
        CasePoint point{std::to_string(n), whole(t, "body", 1), {}};
        if (t.get("at") == nullptr)
            return refuse(t.source(), "at in [[point]] must be given");
        if (t.get("name") != nullptr)
            point.name = *t.get("name")->value<std::string>();
        reals(t, "at", point.at);
        if (!is_body(t, "body", point.body, 1))
            return false;
        c_.points.push_back(point);
        return true;
    }

    bool spectrum(const toml::table &t) {
        CaseSpectrum s;
        s.type = t.get("type") != nullptr ? *t.get("type")->value<std::string>() : "jonswap";
        if (s.type != "jonswap" && s.type != "pierson-moskowitz" && s.type != "table")
            return refuse(t.get("type")->source(),
                          "type in [[spectrum]] has to be jonswap, pierson-moskowitz or table");
        const bool table = s.type == "table";
        for (const char *key : {"height", "period", "values"}) {
            const bool needed = table == (std::string_view(key) == "values");
            if ((t.get(key) != nullptr) != needed)
                return refuse(t.source(), std::string(key) +
                                              (needed ? " must be given for a " : " does not go with a ") +
                                              s.type + " spectrum");
        }
        s.height = real(t, "height", 0);
        s.period = real(t, "period", 0);
        s.gamma = s.type == "jonswap" ? real(t, "gamma", 3.3) : 1;
        if (s.type != "jonswap" && t.get("gamma") != nullptr)
            return refuse(t.get("gamma")->source(), "gamma goes with a jonswap spectrum only");
        s.heading = real(t, "heading", 0);
        s.spreading = real(t, "spreading", 0);
        s.hours = real(t, "hours", 3);
        for (const std::vector<double> &pair : pairs(t)) {
            if (pair[0] < 0 || pair[1] < 0 || (!s.values.empty() && pair[0] <= s.values.back().first))
                return refuse(t.get("values")->source(),
                              "values in [[spectrum]] need rising frequencies and no "
                              "negative number");
            s.values.emplace_back(pair[0], pair[1]);
        }
        c_.spectra.push_back(s);
        return true;
    }
    static std::vector<std::vector<double>> pairs(const toml::table &t) { return matrix(t, "values"); }

    const std::string &name_;
    const P2fFile &p_;
    CaseFile &c_;
    std::vector<int> seen_; // bodies
};

} // namespace

CaseFile plain_case(const P2fFile &p2f) {
    CaseFile file;
    file.bodies.resize(static_cast<std::size_t>(p2f.NBODY));
    return file;
}

bool read_case(const std::string &name, const P2fFile &p2f, CaseFile &file, std::string &error) {
    file = plain_case(p2f);
    Reader reader(name, p2f, file);
    toml::table top;
    if (!parse_case(name, top, error))
        return false;
    if (reader.read(top))
        return true;
    error = reader.fault;
    return false;
}

BodyMass mass_of(const CaseBody &body, const BodyHydrostatics &geometry, double density) {
    BodyMass mass = assumed_mass(geometry, density);
    if (!body.parts.empty()) {
        const PartsTogether parts = together(body.parts);
        return {parts.mass, parts.centre, parts.inertia};
    }
    const double ratio = body.mass && mass.mass > 0 ? *body.mass / mass.mass : 1;
    for (auto &row : mass.inertia)
        for (double &value : row)
            value *= ratio;
    mass.mass = body.mass.value_or(mass.mass);
    mass.centre = body.centre.value_or(mass.centre);
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            if (body.radii)
                mass.inertia[i][j] = i == j ? mass.mass * (*body.radii)[i] * (*body.radii)[i] : 0;
            if (body.inertia)
                mass.inertia[i][j] = (*body.inertia)[i][j];
        }
    return mass;
}
