// vorda-run: from a case file to a report.
#include "../support/arguments.hpp"

#include "case/new_case.hpp"
#include "case/run_steps.hpp"
#include "post/case_file.hpp"

#include <csignal>
#include <cstdio>

namespace {

int print(const std::string &text) {
    std::fputs(text.c_str(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

int follow(int argc, char **argv) {
    CLI::App app("Makes a run of a case file, solves it and writes a report and other files to CASE.run/.\n"
                 "docs/case-file.md explains case files.",
                 "vorda-run");
    set_up_program(app);
    RunRequest request;
    request.version = "VORDA " VORDA_VERSION;
    std::string hull;
    bool keys = false;
    CLI::Option *file = app.add_option("CASE", request.file, "case file (.toml)");
    app.add_flag("--dry", request.dry, "meshes, decks and the plan alone");
    app.add_flag("--refine", request.refine,
                 "solves it once more with each panel in four; the report tells errors by both");
    app.add_flag("--force", request.force, "goes on with meshes that make numbers wrong");
    app.add_flag("--keys", keys, "lists the keys of case files with values, units and defaults")
        ->excludes(file);
    app.add_option("--new", hull, "prints a case file that suits this hull: a mesh or geometry file")
        ->excludes(file)
        ->default_str("");
    CLI11_PARSE(app, argc, argv);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow has its message, as a full disk has
    if (keys)
        return print(KEY_HEAD + run_key_rows());
    std::string text, error;
    if (!hull.empty()) {
        if (new_case(hull, text, error))
            return print(text);
        std::fprintf(stderr, "vorda-run: %s\n", error.c_str());
        return 1;
    }
    if (request.file.empty()) {
        std::fprintf(stderr,
                     "vorda-run: a case file is needed, or --new HULL, or --keys; --help tells more\n");
        return 1;
    }
    return run_case(request);
}

} // namespace

int main(int argc, char **argv) {
    return guarded(argc, argv, "vorda-run", follow);
}
