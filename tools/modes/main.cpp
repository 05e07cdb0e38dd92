// vorda-modes: extra modes of a body for the second pass of its run.
#include "../support/arguments.hpp"

#include "modes/make_modes.hpp"
#include "modes/mode_types.hpp"

#include <filesystem>

namespace {

void print(const std::vector<ModeSummary> &modes) {
    constexpr const char *LIKE[] = {"", "surge", "sway", "heave", "roll", "pitch", "yaw"};
    std::printf("Mode  Like   Largest on a panel  Mass         Stiffness    Kind\n");
    for (std::size_t k = 0; k < modes.size(); ++k) {
        const ModeSummary &m = modes[k];
        std::printf("%4zu  %-5s  %-18.4g  %-11.5g  %-11.5g  %s\n", k + 7, LIKE[m.like], m.largest, m.mass,
                    m.stiffness, m.text.c_str());
    }
}

int make(int argc, char **argv) {
    CLI::App app(
        "Makes the MOD file of the extra modes of a body from the PRE file that the first pass of a run\n"
        "left, and a file of modes. docs/modes.md explains files of modes.",
        "vorda-modes");
    set_up_program(app);
    ModesRequest request;
    bool keys = false;
    CLI::Option *pre = app.add_option("PRE", request.pre, "PRE file of the body");
    app.add_option("MODES", request.modes, "file of modes (.toml)");
    app.add_option("-o,--output", request.mod, "MOD file to write")->default_str("PRE with .mod");
    app.add_option("--case", request.case_file,
                   "case file to write for vorda-p2f motions: generalised mass and stiffness")
        ->default_str("none");
    app.add_flag("--keys", keys, "lists the keys of files of modes with values, units and defaults")
        ->excludes(pre);
    CLI11_PARSE(app, argc, argv);
    if (keys) {
        std::printf("%s%s\n| Type | Mode | Keys |\n|---|---|---|\n%s", KEY_HEAD,
                    key_rows(mode_keys()).c_str(), mode_type_rows().c_str());
        return std::fflush(stdout) == 0 ? 0 : 1;
    }
    std::string error = "a PRE file and a file of modes are needed, or --keys; --help tells more";
    if (request.mod.empty())
        request.mod = std::filesystem::path(request.pre).replace_extension(".mod").string();
    std::vector<ModeSummary> told;
    if (request.modes.empty() || !make_modes(request, told, error)) {
        std::fprintf(stderr, "vorda-modes: %s\n", error.c_str());
        return 1;
    }
    print(told);
    std::printf("Wrote %s; config.vrd needs NEWMDS = %zu for this body\n", request.mod.c_str(), told.size());
    return std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    return guarded(argc, argv, "vorda-modes", make);
}
