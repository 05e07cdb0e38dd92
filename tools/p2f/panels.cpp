// vorda-p2f panels: pressures and velocities on the hull, elevations along it, loads in sections.
#include "moving.hpp"

#include "post/motions.hpp"
#include "post/wave_tables.hpp"

namespace {

struct PanelOptions {
    std::string load = "total";
    bool hydrostatic = false;
    std::string wanted; // the one table that is asked for, or empty: all
    bool wants(const char *table) const { return wanted.empty() || wanted == table; }
};

// The loads of a period as asked for, with their names.
struct NamedLoad {
    PanelLoad load;
    std::string name;
};
std::vector<NamedLoad> loads_of(const PanelOptions &options, const P2fFile &p2f,
                                const std::vector<int> &headings) {
    std::vector<NamedLoad> loads;
    if (options.load == "modes") {
        for (int j = 1; j <= p2f.NMODES; ++j)
            if (p2f.MODPOS(j) > 0)
                loads.push_back({{PanelLoad::Kind::mode, j}, full_mode_name(p2f, j)});
        return loads;
    }
    const auto kind = options.load == "waves" ? PanelLoad::Kind::diffraction : PanelLoad::Kind::total;
    for (const int b : headings) {
        char name[32];
        std::snprintf(name, sizeof name, "heading %g", static_cast<double>(p2f.BETA(b)));
        loads.push_back({{kind, b, options.hydrostatic}, name});
    }
    return loads;
}

struct HullTables {
    Table panels, waterline, sections, calm;
};

bool add_period(const P2fFile &p2f, const MovingBodies &bodies, const PanelOptions &options, int t,
                const SurfaceGradient &gradient, const Convention &convention, HullTables &tables,
                std::string &error) {
    const Scales &scales = bodies.of_case.scales;
    std::vector<NamedLoad> pressures;
    if (options.wants("panels"))
        pressures = loads_of(options, p2f, bodies.headings);
    for (const NamedLoad &load : pressures) {
        PanelValues values;
        if (!form_panels(p2f, t, bodies.motions(t), load.load, scales, gradient, values, error))
            return false;
        add_panel_rows(tables.panels, p2f, scales, {t, load.load.index}, load.name, values, convention);
    }
    for (const int b : bodies.headings) {
        if (options.wanted == "panels")
            break;
        HullState state;
        if (!form_hull_state(p2f, t, b, bodies.motions(t), Part::total, {.velocity = p2f.ISOR == 1}, state,
                             error))
            return false;
        add_waterline_rows(tables.waterline, p2f, scales, {t, b}, bodies.motions(t), state, gradient,
                           convention);
        for (const CaseSections &sections : bodies.of_case.file.sections) {
            std::vector<SectionLoad> loads;
            const std::vector<MassPart> &parts =
                bodies.of_case.file.bodies[static_cast<std::size_t>(sections.body) - 1].parts;
            if (!form_section_loads(p2f, t, b, bodies.motions(t), scales,
                                    {sections.body, parts, sections.stations, sections.y, sections.z}, loads,
                                    error))
                return false;
            add_section_rows(tables.sections, p2f, scales, {t, b}, sections.body, loads, convention);
            if (t == bodies.periods.front() && b == bodies.headings.front())
                add_calm_rows(tables.calm, sections.body, loads);
        }
    }
    return true;
}

} // namespace

Show set_up_panels(CLI::App &app) {
    const auto tables = add_table_options(app, {"panels", "waterline", "sections", "calm"});
    const auto request = add_moving(app);
    const auto convention = add_convention(app);
    const auto options = std::make_shared<PanelOptions>();
    app.add_option("--load", options->load,
                   "what makes the pressures: total, waves (bodies at rest), modes (unit motions)")
        ->check(CLI::IsMember({"total", "waves", "modes"}));
    app.add_flag("--hydrostatic", options->hydrostatic, "with the change of depth of the moving panels");
    return [=](const P2fFile &p2f) {
        MovingBodies bodies;
        std::string error;
        if (!move_bodies(*request, p2f, bodies, error))
            return refuse(error);
        if ((tables->wanted == "sections" || tables->wanted == "calm") &&
            bodies.of_case.file.sections.empty())
            return refuse("the case file has no [[section]]");
        if (tables->wanted == "waterline" && p2f.ISOR != 1)
            return refuse("the file has no waterlines: set ISOR=1 in the run");
        options->wanted = tables->wanted;
        const Scales &scales = bodies.of_case.scales;
        HullTables made{panel_table(scales, *convention, options->load == "modes"),
                        waterline_table(scales, *convention), section_table(scales, *convention),
                        calm_table(scales)};
        const SurfaceGradient gradient(p2f, PanelKinds(p2f));
        for (const int t : bodies.periods)
            if (!add_period(p2f, bodies, *options, t, gradient, *convention, made, error))
                return refuse(error);
        made.panels.notes.insert(made.panels.notes.end(), bodies.notes.begin(), bodies.notes.end());
        std::vector<Table> all;
        for (Table *table : {&made.panels, &made.waterline, &made.sections, &made.calm})
            if (!table->rows.empty())
                all.push_back(std::move(*table));
        return show_tables(*tables, all);
    };
}
