// vorda-p2f motions: motions in waves, of points too, natural periods, responses in irregular seas.
#include "command.hpp"

#include "post/result_tables.hpp"

Show set_up_motions(CLI::App &app) {
    const auto tables = add_table_options(app, {"raos", "points", "natural", "seas"});
    const auto request = add_case(app);
    const auto convention = add_convention(app);
    const auto haskind = std::make_shared<bool>(false);
    app.add_flag("--haskind", *haskind, "exciting force by Haskind's relation instead of the pressure");
    return [=](const P2fFile &p2f) {
        LoadedCase of;
        std::string error;
        ExcitingForces X;
        RadiationForces R;
        MotionSystem system;
        Array<c64, 3> xi;
        PointWaves beneath;
        std::vector<NaturalMode> natural;
        std::vector<std::string> notes;
        if (!load_case(*request, p2f, of, error) || !form_radiation(p2f, of.scales, R, error) ||
            !form_system(p2f, of.file, of.bodies, R, of.scales, system, error))
            return refuse(error);
        std::vector<Table> made;
        const bool waves = tables->wanted != "natural";
        if (waves) {
            if (!form_exciting(p2f, of.scales, X, error))
                return refuse(error);
            if (*haskind && !X.no_haskind.empty())
                return refuse(X.no_haskind);
            if (!form_motions(p2f, system, R, *haskind ? X.haskind : X.pressure, xi, error))
                return refuse(error);
            made.push_back(rao_table(p2f, of.scales, xi, *convention));
            made[0].notes.insert(made[0].notes.end(), system.notes.begin(), system.notes.end());
            if (request->file.empty())
                made[0].notes.emplace_back(NO_CASE_NOTE);
            beneath = form_point_waves(p2f, of.file, xi);
            if (!of.file.points.empty())
                made.push_back(point_table(p2f, of.scales, of.file, {xi, beneath}, *convention));
        }
        const bool found = form_natural(p2f, system, R, natural, notes, error);
        if (!found && tables->wanted == "natural")
            return refuse(error);
        if (!found)
            made[0].notes.push_back("No natural periods: " + error + ".");
        else {
            made.push_back(natural_table(p2f, natural));
            made.back().notes.insert(made.back().notes.end(), notes.begin(), notes.end());
        }
        if (waves && !of.file.spectra.empty())
            made.push_back(sea_table(p2f, of.scales, of.file, {xi, beneath}));
        if ((tables->wanted == "points" && of.file.points.empty()) ||
            (tables->wanted == "seas" && of.file.spectra.empty()))
            return refuse("the case file has no [[" +
                          std::string(tables->wanted == "points" ? "point" : "spectrum") + "]]");
        return show_tables(*tables, made);
    };
}
