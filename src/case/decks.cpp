#include "case/decks.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>

namespace {

constexpr int DIRECT_BELOW = 1500; // unknowns up to which the direct solver is the faster one

std::string plain(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}
std::string brief(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.4g", value);
    return text;
}

// The bodies keep their planes of symmetry in the run: all have the same and stand in them.
bool keeps_symmetry(const RunCase &run, const std::vector<Outline> &bodies) {
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        const RunBody &body = run.bodies[b];
        const int *index = bodies[b].index;
        if (index[0] != bodies[0].index[0] || index[1] != bodies[0].index[1])
            return false;
        const bool turned = body.heading != 0 && (index[0] != 0 || index[1] != 0);
        if (turned || (index[0] == 1 && body.place[0] != 0) || (index[1] == 1 && body.place[1] != 0))
            return false;
    }
    return true;
}

std::string pot_text(const RunCase &run, const CasePlan &plan) {
    const RunBody &body = run.bodies[0];
    std::string text = "Case " + std::filesystem::path(run.name).filename().string().substr(0, 60) + "\n";
    text += "0    I2ND\n" + std::to_string(plan.ISOR) + "    ISOR\n" + std::to_string(plan.IRR) + "    IRR\n";
    text += plain(run.depth);
    for (const double x : body.place)
        text += " " + plain(has_global_file(run) ? 0 : x);
    text += " " + plain(has_global_file(run) ? 0 : body.heading) + "    HBOT, XBODY\n";
    text += "0 1 0    IQUAD, ILOG, IDIAG\n1 1    IRAD, IDIFF\n1 1 1 1 1 1    MODE\n";
    text += std::to_string(plan.periods) + "    NPER\n";
    const auto list = [&text](const std::vector<double> &values) {
        for (std::size_t k = 0; k < values.size(); ++k)
            text += plain(values[k]) + (k % 10 == 9 || k + 1 == values.size() ? "\n" : " ");
    };
    std::vector<double> waves = run.waves;
    if (run.limits) { // infinite frequency, and zero
        waves.push_back(0);
        waves.push_back(-1);
    }
    list(waves);
    text += std::to_string(run.headings.size()) + "    NBETA\n";
    list(run.headings);
    return text;
}

std::string config_text(const RunCase &run, const CasePlan &plan) {
    // Panels that the solver makes are counted by estimate: the limit leaves room.
    double most = 2.0 * plan.unknowns + 1000;
    if (run.memory > 0)
        most = std::max(2.0, std::min(most, std::sqrt(run.memory * 1e9 / 16)));
    std::string text = "MAXSCR = " + std::to_string(static_cast<int>(most)) +
                       "\nISOLVE = " + std::to_string(plan.ISOLVE) + "\nIPERIO = ";
    text += run.measure == WaveMeasure::period      ? "1\n"
            : run.measure == WaveMeasure::frequency ? "2\n"
                                                    : "4\n";
    if (run.threads > 0)
        text += "NTRD = " + std::to_string(run.threads) + "\n";
    return text;
}

std::string global_text(const RunCase &run) {
    std::string text = "Bodies of " + std::filesystem::path(run.name).filename().string().substr(0, 50) +
                       "\n-1 " + plain(run.gravity) + "\n" + std::to_string(run.bodies.size()) + "\n";
    for (std::size_t b = 0; b < run.bodies.size(); ++b) {
        const RunBody &body = run.bodies[b];
        text += mesh_name(b) + "\n";
        for (const double x : body.place)
            text += plain(x) + " ";
        text += plain(body.heading) + "\n1 1\n1 1 1 1 1 1\n";
    }
    return text;
}

bool fits_wall(const RunCase &run, const Outline &outline, std::string &error) {
    const RunBody &body = run.bodies[0];
    if (body.wall == 0)
        return true;
    const std::size_t axis = static_cast<std::size_t>(body.wall - 1);
    const char *plane = body.wall == 1 ? "x = 0" : "y = 0";
    if (body.heading != 0)
        error = "a body at a wall cannot be turned: leave heading out";
    else if (body.place[axis] != 0 && outline.low[axis] < 0 && outline.high[axis] > 0)
        error = std::string("the body reaches through the wall ") + plane + ": change its place";
    if (error.empty())
        return true;
    error = run.at(body.line, error);
    return false;
}

} // namespace

std::string mesh_name(std::size_t body) {
    return "meshes/body" + std::to_string(body + 1) + ".gdf";
}
bool has_global_file(const RunCase &run) {
    return run.bodies.size() > 1 || (run.bodies[0].wall == 0 && run.bodies[0].place[2] != 0);
}
std::string geometry_name(const RunCase &run) {
    return has_global_file(run) ? "case.gdf" : mesh_name(0);
}

bool check_places(const RunCase &run, const std::vector<Outline> &bodies, std::string &error) {
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        const RunBody &body = run.bodies[b];
        const Outline &outline = bodies[b];
        const double size = outline.high[0] - outline.low[0] + outline.high[2] - outline.low[2];
        if (outline.panels.empty()) {
            error = run.at(body.mesh_line,
                           body.called(b) + " has panels in the free surface alone: it needs a hull");
            return false;
        }
        if (outline.high[2] > 1e-4 * size) {
            error =
                run.at(body.place_line, body.called(b) + " reaches " + brief(outline.high[2]) +
                                            " m above the free surface: set place lower, or make the mesh by "
                                            "vorda-mesh import, which cuts it there");
            return false;
        }
        if (run.depth > 0 && outline.low[2] < -run.depth - 1e-4 * size) {
            error = run.at(body.place_line, body.called(b) + " reaches " + brief(-outline.low[2]) +
                                                " m down, below the bottom in " + brief(run.depth) +
                                                " m: change its place, draught or the depth");
            return false;
        }
        for (std::size_t a = 0; a < b; ++a)
            if (overlap(bodies[a], outline)) {
                error = run.at(body.place_line,
                               body.called(b) + " lies in " + run.bodies[a].called(a) + ": move it by place");
                return false;
            }
    }
    return fits_wall(run, bodies[0], error);
}

bool make_plan(const RunCase &run, const std::vector<Outline> &bodies, CasePlan &plan, std::string &error) {
    plan = {};
    plan.ISOR = run.wants_sources() ? 1 : 0;
    bool surface = false;
    const RunBody *with = nullptr, *without = nullptr;
    for (std::size_t b = 0; b < bodies.size(); ++b) {
        surface = surface || bodies[b].reaches_surface;
        if (bodies[b].has_interior)
            with = &run.bodies[b];
        else if (bodies[b].reaches_surface)
            without = &run.bodies[b];
    }
    const bool given = run.irregular == "given" || (run.irregular == "auto" && with != nullptr);
    if (run.irregular == "off" && with != nullptr) {
        error = run.at(with->mesh_line,
                       "the mesh has panels in the free surface, which irregular = \"off\" leaves no "
                       "use for: set irregular to given, or take a mesh without them");
        return false;
    }
    if (given && without != nullptr) {
        error = run.at(without->mesh_line,
                       std::string("the mesh has no panels in the free surface inside the body") +
                           (with != nullptr ? ", as that of another body has" : "") +
                           ": add them (vorda-mesh import --lid), or take meshes without them and "
                           "irregular = \"auto\"");
        return false;
    }
    // The made panels need whole waterlines; of a body that a wall cuts the report tells that irregular
    // frequencies are left.
    const RunBody &first = run.bodies[0];
    const bool cut = first.wall > 0 && first.place[static_cast<std::size_t>(first.wall - 1)] == 0;
    const bool made = !given && surface && run.irregular == "auto" && !cut;
    plan.IRR = made ? 3 : !given || with == nullptr ? 0 : plan.ISOR == 1 ? 4 : 1;
    plan.periods = static_cast<int>(run.waves.size()) + (run.limits ? 2 : 0);
    const bool keeps = keeps_symmetry(run, bodies);
    if (keeps)
        plan.classes = (bodies[0].index[0] == 1 ? 2 : 1) * (bodies[0].index[1] == 1 ? 2 : 1);
    double unknowns = 0, area = 0;
    for (const Outline &outline : bodies) {
        const double images = static_cast<double>(outline.with_images) / outline.given;
        plan.panels += outline.given;
        plan.with_images += outline.with_images;
        const double inside = made ? panels_made(outline, plan.ISOR) : 0;
        unknowns += keeps ? outline.given + inside / images : outline.with_images + inside;
        area = std::max(area, outline.mean_area);
    }
    plan.unknowns = static_cast<int>(std::ceil(unknowns));
    plan.longest_panel = std::sqrt(area);
    const double T = run.shortest_period();
    plan.shortest_wave = run.gravity * T * T / (2 * std::numbers::pi);
    const bool direct = run.solver == "direct" || (run.solver == "auto" && plan.unknowns < DIRECT_BELOW);
    plan.ISOLVE = direct ? 1 : 0;
    // Shared real matrices of all classes, and a complex one for each of two periods at a time.
    plan.memory = unknowns * unknowns * (4.0 * plan.classes + 2 * 8.0 * plan.classes);
    return true;
}

std::vector<DeckFile> decks_of(const RunCase &run, const CasePlan &plan) {
    std::vector<DeckFile> files = {{"case.pot", pot_text(run, plan)},
                                   {"config.vrd", config_text(run, plan)},
                                   {"fnames.vrd", geometry_name(run) + "\ncase.pot\n"}};
    if (has_global_file(run))
        files.push_back({"case.gdf", global_text(run)});
    return files;
}
