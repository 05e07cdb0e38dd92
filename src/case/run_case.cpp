#include "case/run_case.hpp"

#include "post/case_toml.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>

namespace {

std::string plain(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

// Reads the tables of a file that is held to the keys already; the first fault ends it.
class Reader {
  public:
    Reader(RunCase &run, std::string &error) : r_(run), error_(error) {}

    bool read(const toml::table &top) {
        r_.depth = real(top, "depth", 0);
        r_.gravity = real(top, "gravity", r_.gravity);
        return waves(top) && bodies(top) && treatment(top) && outputs(top);
    }

  private:
    bool refuse(const toml::node &node, const std::string &why) {
        error_ = r_.at(static_cast<int>(node.source().begin.line), why);
        return false;
    }
    static double real(const toml::table &t, const char *key, double standard) {
        return t.get(key) != nullptr ? number(*t.get(key)) : standard;
    }
    static void word(const toml::table &t, const char *key, std::string &to) { to = t[key].value_or(to); }
    static void three(const toml::table &t, const char *key, std::array<double, 3> &to) {
        for (std::size_t k = 0; t.get(key) != nullptr && k < 3; ++k)
            to[k] = number(*t.get(key)->as_array()->get(k));
    }

    // The numbers of a series and the node of each.
    using Series = std::vector<std::pair<double, const toml::node *>>;
    bool series(const toml::node &node, Series &to) {
        if (const toml::array *list = node.as_array()) {
            for (const toml::node &value : *list)
                to.emplace_back(number(value), &value);
            return true;
        }
        const toml::table &range = *node.as_table();
        const double from = real(range, "from", 0), last = real(range, "to", 0);
        const int count = static_cast<int>(real(range, "count", 2));
        const bool ratio = range["spacing"].value_or(std::string()) == "ratio";
        if (ratio && !(from > 0 && last > 0))
            return refuse(node, "a range with equal ratios needs from and to above 0");
        for (int k = 0; k < count; ++k) {
            const double part = static_cast<double>(k) / (count - 1);
            to.emplace_back(ratio ? from * std::pow(last / from, part) : from + part * (last - from), &node);
        }
        return true;
    }
    // A number that stands twice, as the solver reads them; null: none does.
    static const toml::node *twice(const Series &values, double turn) {
        for (std::size_t i = 0; i < values.size(); ++i)
            for (std::size_t k = 0; k < i; ++k) {
                const double apart = std::fabs(values[i].first - values[k].first);
                const double least = 1e-6 * std::max(std::fabs(values[i].first), 1e-3);
                if (apart <= least || (turn > 0 && std::fabs(std::remainder(apart, turn)) <= 1e-6))
                    return values[i].second;
            }
        return nullptr;
    }

    bool waves(const toml::table &top) {
        const toml::table *t = top["waves"].as_table();
        if (t == nullptr)
            return refuse(top, "the table [waves] is missing: give it periods = [...] in seconds");
        const std::pair<const char *, WaveMeasure> kinds[] = {{"periods", WaveMeasure::period},
                                                              {"frequencies", WaveMeasure::frequency},
                                                              {"wave_numbers", WaveMeasure::wave_number}};
        const toml::node *found = nullptr;
        const char *key = "";
        for (const auto &[name, measure] : kinds) {
            const toml::node *node = t->get(name);
            if (node != nullptr && found != nullptr)
                return refuse(*node,
                              std::string(name) + " in [waves] stands beside " + key + ": give one of them");
            if (node != nullptr) {
                found = node;
                key = name;
                r_.measure = measure;
            }
        }
        if (found == nullptr)
            return refuse(*t, "[waves] needs periods, frequencies or wave_numbers");
        Series values, headings;
        if (!series(*found, values))
            return false;
        for (const auto &[value, node] : values)
            if (!(value > 0))
                return refuse(*node, std::string(key) + " in [waves] has " + plain(value) +
                                         ": waves need numbers above 0; limits = true adds zero and infinite "
                                         "frequency");
        if (const toml::node *node = twice(values, 0))
            return refuse(*node,
                          std::string(key) + " in [waves] has " + value_of(*node) + " twice: leave one out");
        if (t->get("headings") == nullptr)
            headings.emplace_back(0, nullptr);
        else if (!series(*t->get("headings"), headings))
            return false;
        if (const toml::node *node = twice(headings, 360))
            return refuse(*node, "headings in [waves] has " + value_of(*node) +
                                     " twice, also when turned by 360 degrees: leave one out");
        for (const auto &item : values)
            r_.waves.push_back(item.first);
        for (const auto &item : headings)
            r_.headings.push_back(item.first);
        r_.limits = (*t)["limits"].value_or(false);
        return true;
    }
    static std::string value_of(const toml::node &node) {
        return node.is_table() ? "a number" : plain(number(node));
    }

    bool bodies(const toml::table &top) {
        const toml::array *list = top["body"].as_array();
        if (list == nullptr || list->empty())
            return refuse(top, "there is no body: add a table [[body]] with mesh = \"hull.stl\" or a maker");
        for (const toml::node &node : *list)
            if (!body(*node.as_table(), list->size()))
                return false;
        return true;
    }
    bool body(const toml::table &t, std::size_t count) {
        RunBody body;
        const int place = static_cast<int>(r_.bodies.size()) + 1;
        body.line = body.mesh_line = body.place_line = static_cast<int>(t.source().begin.line);
        word(t, "mesh", body.mesh);
        word(t, "maker", body.maker);
        word(t, "part", body.part);
        body.scale = real(t, "scale", 1);
        body.draught = real(t, "draught", 0);
        body.size = real(t, "size", 0);
        body.recombine = t["recombine"].value_or(false);
        body.heading = real(t, "heading", 0);
        three(t, "place", body.place);
        if (static_cast<int>(real(t, "number", place)) != place)
            return refuse(*t.get("number"), "number in [[body]] is " + value_of(*t.get("number")) +
                                                ", but it is body " + std::to_string(place) +
                                                " of the run: leave it out");
        if (body.mesh.empty() == body.maker.empty())
            return refuse(t, body.mesh.empty() ? "[[body]] needs mesh = \"hull.stl\" or maker = \"box\""
                                               : "[[body]] has mesh and maker: give one of them");
        const toml::node &source = *t.get(body.mesh.empty() ? "maker" : "mesh");
        body.mesh_line = static_cast<int>(source.source().begin.line);
        for (const char *key : {"scale", "draught", "size", "recombine"})
            if (!body.maker.empty() && t.get(key) != nullptr)
                return refuse(*t.get(key),
                              std::string(key) + " in [[body]] is for an imported mesh: a maker takes sizes");
        if (body.maker.empty() && t.get("sizes") != nullptr)
            return refuse(
                *t.get("sizes"),
                "sizes in [[body]] are for a maker: take scale, draught, size, recombine for a mesh");
        if (t.get("place") != nullptr)
            body.place_line = static_cast<int>(t.get("place")->source().begin.line);
        if (const std::string wall = t["wall"].value_or(std::string()); !wall.empty()) {
            body.wall = wall == "x" ? 1 : 2;
            if (count > 1)
                return refuse(*t.get("wall"), "wall in [[body]] is possible with one body alone");
        }
        if (t.get("sizes") != nullptr)
            for (const auto &[key, node] : *t.get("sizes")->as_table()) {
                const std::string name(key.str());
                if (name == "output" || name == "o" || name == "ulen" || name == "gravity" || name == "help")
                    return refuse(node, name + " in sizes is not for a case file");
                body.sizes.push_back("--" + name);
                if (!node.is_boolean())
                    body.sizes.push_back(node.is_string() ? *node.value<std::string>() : plain(number(node)));
            }
        r_.bodies.push_back(std::move(body));
        return true;
    }

    bool treatment(const toml::table &top) {
        const toml::table *t = top["treatment"].as_table();
        if (t == nullptr)
            return true;
        word(*t, "irregular", r_.irregular);
        word(*t, "sources", r_.sources);
        word(*t, "solver", r_.solver);
        r_.memory = real(*t, "memory", 0);
        r_.threads = static_cast<int>(real(*t, "threads", 0));
        return true;
    }

    bool outputs(const toml::table &top) {
        const toml::table *t = top["outputs"].as_table();
        if (t == nullptr)
            return true;
        const std::pair<const char *, bool *> flags[] = {
            {"report", &r_.report}, {"netcdf", &r_.netcdf}, {"hdf5", &r_.hdf5},       {"vtu", &r_.vtu},
            {"csv", &r_.csv},       {"drift", &r_.drift},   {"impulse", &r_.impulse},
        };
        for (const auto &[key, flag] : flags)
            *flag = (*t)[key].value_or(*flag);
        if (const toml::array *points = (*t)["points"].as_array())
            for (const toml::node &point : *points) {
                r_.points.emplace_back();
                for (std::size_t k = 0; k < 3; ++k)
                    r_.points.back()[k] = number(*point.as_array()->get(k));
                if (r_.points.back()[2] > 0)
                    return refuse(point, "points in [outputs] lie in the fluid: z is 0 or less, not " +
                                             plain(r_.points.back()[2]));
            }
        if (const toml::array *grid = (*t)["grid"].as_array()) {
            if (!r_.points.empty())
                return refuse(*grid, "grid in [outputs] stands beside points: give one of them");
            for (const toml::node &value : *grid)
                r_.grid.push_back(number(value));
            for (const std::size_t k : {2u, 5u})
                if (r_.grid[k] < 1 || r_.grid[k] != std::floor(r_.grid[k]) || r_.grid[k] > 2000)
                    return refuse(*grid, "grid in [outputs] has " + plain(r_.grid[k]) +
                                             " points along an axis: give a whole number from 1 to 2000");
        }
        r_.level = real(*t, "level", 0);
        if (r_.level > 0)
            return refuse(*t->get("level"), "level in [outputs] lies above the surface: give 0 or less");
        if (r_.impulse && r_.waves.size() < 4)
            return refuse(*t->get("impulse"),
                          "impulse responses need four frequencies at least, and good ones "
                          "many more: give more in [waves]");
        return true;
    }

    RunCase &r_;
    std::string &error_;
};

} // namespace

std::string RunBody::called(std::size_t b) const {
    return "body " + std::to_string(b + 1) + " (" + (mesh.empty() ? maker : mesh) + ")";
}

bool RunCase::wants_sources() const {
    return sources == "on" || (sources == "auto" && (drift || vtu));
}

std::string RunCase::run_folder() const {
    return std::filesystem::path(name).replace_extension(".run").string();
}

double RunCase::shortest_period() const {
    double shortest = 1e30;
    for (const double w : waves) {
        const double omega = measure == WaveMeasure::frequency ? w : std::sqrt(gravity * w);
        shortest = std::min(shortest, measure == WaveMeasure::period ? w : 2 * std::numbers::pi / omega);
    }
    return shortest;
}

std::string RunCase::at(int line, const std::string &why) const {
    return name + ", line " + std::to_string(line) + ": " + why;
}

bool read_run_case(const std::string &name, RunCase &run, std::string &error) {
    run = {};
    run.name = name;
    const std::string folder = std::filesystem::path(name).parent_path().string();
    run.folder = folder.empty() ? "." : folder;
    toml::table top;
    return parse_case(name, top, error) && Reader(run, error).read(top);
}
