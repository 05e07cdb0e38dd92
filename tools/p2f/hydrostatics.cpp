// vorda-p2f hydrostatics: volume, waterplane, stiffness and metacentric heights of each body.
#include "command.hpp"

#include "post/result_tables.hpp"

Show set_up_hydrostatics(CLI::App &app) {
    const auto tables = add_table_options(app, {"particulars", "stiffness"});
    const auto request = add_case(app);
    const auto global = std::make_shared<bool>(false);
    app.add_flag("--global", *global,
                 "stiffness in axes parallel to the global ones, not in those of the body");
    return [=](const P2fFile &p2f) {
        LoadedCase of;
        std::string error;
        if (!load_case(*request, p2f, of, error))
            return refuse(error);
        return show_tables(*tables, {particulars_table(of.bodies, of.masses, of.scales),
                                     stiffness_table(p2f, of.bodies, of.masses, of.scales, *global)});
    };
}
