// vorda-mesh: makes, checks and shows panels.
#include "../support/arguments.hpp"
#include "check.hpp"
#include "makers.hpp"
#include "show.hpp"

int main(int argc, char **argv) {
    CLI::App app("Writes the panels of a simple hull, free surface at z = 0, as a GDF file, checks or draws "
                 "such a file.\n"
                 "Panel counts are those of one quarter.",
                 "vorda-mesh");
    set_up_program(app);
    app.require_subcommand(1);
    // Each returns -1 when its command was not given.
    const std::function<int()> programs[] = {add_makers(app), add_check(app), add_show(app)};
    CLI11_PARSE(app, argc, argv);
    for (const std::function<int()> &program : programs)
        if (const int code = program(); code >= 0)
            return code;
    return 1;
}
