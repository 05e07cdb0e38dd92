// vorda-p2f: shows the hand-over file of a run and what follows from it.
#include "../support/arguments.hpp"
#include "command.hpp"

namespace {

constexpr Command COMMANDS[] = {
    {"info", "what the file holds", set_up_info},
    {"coef", "added mass, damping and exciting force of every period", set_up_coef},
    {"hydrostatics", "volume, waterplane, stiffness and metacentric heights of each body",
     set_up_hydrostatics},
    {"forces", "exciting force, added mass and damping, each in two ways", set_up_forces},
    {"motions", "motions in waves, of points too, natural periods, responses in irregular seas",
     set_up_motions},
    {"drift", "mean drift, by the waves far away and by the pressures on the hull", set_up_drift},
    {"field", "elevation, pressure and velocity at points of the fluid", set_up_field},
    {"panels", "pressures and velocities on the hull, run-up, loads in sections", set_up_panels},
    {"impulse", "impulse responses for the time domain", set_up_impulse},
    {"export", "all results for other programs: NetCDF, HDF5, VTK, CSV, JSON", set_up_export},
    {"plot", "pictures of coefficients, forces, motions and drift", set_up_plot},
};

int run(int argc, char **argv) {
    CLI::App app("Shows the hand-over file of a run and what follows from it", "vorda-p2f");
    set_up_program(app);
    app.require_subcommand(1);
    std::string name;
    Show show;
    for (const Command &command : COMMANDS) {
        CLI::App *sub = app.add_subcommand(command.name, command.what);
        sub->add_option("file", name, "hand-over file (.p2f)")->required();
        const Show of_command = command.set_up(*sub);
        sub->callback([&show, of_command] { show = of_command; });
    }
    CLI11_PARSE(app, argc, argv);

    P2fFile p2f;
    std::string error;
    if (!read_p2f(name, p2f, error))
        return refuse(error);
    return show(p2f);
}

} // namespace

int main(int argc, char **argv) {
    return guarded(argc, argv, "vorda-p2f", run);
}
