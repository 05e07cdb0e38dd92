// vorda-mesh: makes, imports, checks and shows panels.
#include "../support/arguments.hpp"
#include "check.hpp"
#include "export.hpp"
#include "import.hpp"
#include "makers.hpp"
#include "show.hpp"
#include "transform.hpp"

namespace {

int run(int argc, char **argv) {
    CLI::App app("Writes the panels of a hull, made or imported, free surface at z = 0, as a GDF file; "
                 "checks, draws,\n"
                 "moves and exports such a file.\n"
                 "Panel counts of makers are those of one quarter.",
                 "vorda-mesh");
    set_up_program(app);
    app.require_subcommand(1);
    // Each returns -1 when its command was not given.
    const std::function<int()> programs[] = {add_makers(app),    add_import(app), add_export(app),
                                             add_transform(app), add_check(app),  add_show(app)};
    CLI11_PARSE(app, argc, argv);
    for (const std::function<int()> &program : programs)
        if (const int code = program(); code >= 0)
            return code;
    return 1;
}

} // namespace

int main(int argc, char **argv) {
    return guarded(argc, argv, "vorda-mesh", run);
}
