#include "modes/mode_file.hpp"

#include "modes/mode_types.hpp"
#include "post/case_toml.hpp"

#include <algorithm>
#include <filesystem>

namespace {

constexpr const char *RIGID[] = {"surge", "sway", "heave", "roll", "pitch", "yaw"};

// Reads the tables of a file that is held to the keys already; the first fault ends it.
class Reader {
  public:
    Reader(ModeFile &file, std::string &error) : f_(file), error_(error) {}

    bool read(const toml::table &top) {
        f_.title = word(top, "title", std::filesystem::path(f_.name).filename().string());
        f_.unit_length = real(top, "unit_length", 1);
        f_.gravity = real(top, "gravity", f_.gravity);
        f_.heading = real(top, "heading", 0);
        f_.number = whole(top, "number", 1);
        three(top, "place", f_.place);
        if (top.get("mode") == nullptr)
            return refuse(top, "there is no mode: add a table [[mode]] with its type");
        return each(top, "mode", [this](const toml::table &t) { return mode(t); }) &&
               each(top, "part", [this](const toml::table &t) { return part(t); }) &&
               each(top, "beam", [this](const toml::table &t) { return beam(t); });
    }

  private:
    bool refuse(const toml::node &node, const std::string &why) {
        error_ = f_.at(line_of(node), why);
        return false;
    }
    static int line_of(const toml::node &node) { return static_cast<int>(node.source().begin.line); }
    static double real(const toml::table &t, const char *key, double standard) {
        return t.get(key) != nullptr ? number(*t.get(key)) : standard;
    }
    static int whole(const toml::table &t, const char *key, int standard) {
        return static_cast<int>(real(t, key, standard));
    }
    static std::string word(const toml::table &t, const char *key, const std::string &standard) {
        return t[key].value_or(standard);
    }
    static void three(const toml::table &t, const char *key, Vec3 &to) {
        for (std::size_t k = 0; t.get(key) != nullptr && k < 3; ++k)
            to[k] = number(*t.get(key)->as_array()->get(k));
    }
    template <class Read> static bool each(const toml::table &top, const char *kind, Read read) {
        const toml::array *list = top.get(kind) != nullptr ? top.get(kind)->as_array() : nullptr;
        for (std::size_t n = 0; list != nullptr && n < list->size(); ++n)
            if (!read(*list->get(n)->as_table()))
                return false;
        return true;
    }
    bool must(const toml::table &t, const std::string &kind, const std::string &keys) {
        for (const CaseKey &key : mode_keys())
            if (kind == key.table && listed(key.key, keys) && t.get(key.key) == nullptr)
                return refuse(t, std::string(key.key) + " in [[" + kind + "]] must be given");
        return true;
    }

    static Polynomial terms(const toml::table &t, const char *key) {
        Polynomial sum;
        for (std::size_t n = 0; t.get(key) != nullptr && n < t.get(key)->as_array()->size(); ++n) {
            const toml::array &term = *t.get(key)->as_array()->get(n)->as_array();
            const auto power = [&](std::size_t k) { return static_cast<int>(number(*term.get(k))); };
            sum.push_back({number(*term.get(0)), {power(1), power(2), power(3)}});
        }
        return sum;
    }
    // The keys of a mode are those of its type.
    bool fit_type(const toml::table &t) {
        if (!must(t, "mode", "type"))
            return false;
        const ModeType &type = mode_type(word(t, "type", ""));
        for (const auto &[key, node] : t)
            if (const std::string name(key.str()); !listed(name, KEYS_OF_ALL) && !listed(name, type.keys))
                return refuse(node, name + " in [[mode]] does not go with the type " + type.name +
                                        ", which takes " + type.keys);
        return must(t, "mode", type.needs);
    }
    bool mode(const toml::table &t) {
        if (!fit_type(t))
            return false;
        ModeEntry m;
        m.line = line_of(t);
        m.type = word(t, "type", "");
        m.number = whole(t, "number", 1);
        m.direction = word(t, "direction", m.direction);
        m.from = real(t, "from", 0);
        m.to = real(t, "to", 0);
        m.y = real(t, "y", 0);
        m.z = real(t, "z", 0);
        m.terms = {terms(t, "dx"), terms(t, "dy"), terms(t, "dz")};
        three(t, "at", m.at);
        m.axis = word(t, "axis", "y")[0] - 'x';
        m.fore = real(t, "fore", 1);
        m.aft = real(t, "aft", 0);
        m.spring = real(t, "spring", 0);
        m.file = word(t, "file", "");
        if (t.get("file") != nullptr && m.file.empty())
            return refuse(*t.get("file"), "file in [[mode]] is empty");
        m.method = word(t, "method", "least-squares");
        m.neighbours = whole(t, "neighbours", m.neighbours);
        for (int k = 0; k < 6; ++k)
            if (word(t, "like", "") == RIGID[k])
                m.like = k + 1;
        if (t.get("mass") != nullptr)
            m.mass = real(t, "mass", 0);
        if (t.get("stiffness") != nullptr)
            m.stiffness = real(t, "stiffness", 0);
        f_.modes.push_back(std::move(m));
        return true;
    }
    bool part(const toml::table &t) {
        if (!must(t, "part", "mass, from"))
            return false;
        const double from = real(t, "from", 0);
        f_.parts.push_back({real(t, "mass", 0), from, real(t, "to", from), real(t, "y", 0), real(t, "z", 0),
                            real(t, "radius_y", 0), real(t, "radius_z", 0)});
        return f_.parts.back().to >= from || refuse(*t.get("to"), "to in [[part]] lies behind from");
    }
    bool beam(const toml::table &t) {
        if (!must(t, "beam", "from, to"))
            return false;
        const BeamStretch stretch = {real(t, "from", 0), real(t, "to", 0), real(t, "ei_vertical", 0),
                                     real(t, "ei_horizontal", 0), real(t, "gj", 0)};
        f_.beams.push_back(stretch);
        return stretch.to >= stretch.from || refuse(*t.get("to"), "to in [[beam]] lies behind from");
    }

    ModeFile &f_;
    std::string &error_;
};

} // namespace

std::string ModeFile::at(int line, const std::string &why) const {
    return name + ", line " + std::to_string(line) + ": " + why;
}

bool read_mode_file(const std::string &name, ModeFile &file, std::string &error) {
    file = {};
    file.name = name;
    const std::string folder = std::filesystem::path(name).parent_path().string();
    file.folder = folder.empty() ? "." : folder;
    toml::table top;
    return parse_keyed(name, mode_keys(), "vorda-modes --keys", top, error) && Reader(file, error).read(top);
}
