// The subcommands of vorda-p2f: each adds its options and returns what it does with a file.
#pragma once

#include "post/loaded_case.hpp"
#include "post/table_cells.hpp"

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// Shows the file as the options ask; the exit code, 0 when all went well (else standard error tells).
using Show = std::function<int(const P2fFile &)>;

struct Command {
    const char *name, *what;
    Show (*set_up)(CLI::App &);
};

Show set_up_info(CLI::App &app);
Show set_up_coef(CLI::App &app);
Show set_up_hydrostatics(CLI::App &app);
Show set_up_forces(CLI::App &app);
Show set_up_motions(CLI::App &app);
Show set_up_impulse(CLI::App &app);
Show set_up_drift(CLI::App &app);
Show set_up_field(CLI::App &app);
Show set_up_panels(CLI::App &app);
Show set_up_export(CLI::App &app);
Show set_up_plot(CLI::App &app);

// What a command with tables is asked for.
struct TableRequest {
    bool csv = false;
    std::string wanted; // name of the table for --csv; empty: the only one
};

// Adds --csv, with a name where the command has more tables than one.
std::shared_ptr<TableRequest> add_table_options(CLI::App &app, const std::vector<std::string> &names);

// Prints all tables for people, or the wanted one as comma-separated values.
int show_tables(const TableRequest &request, const std::vector<Table> &tables);

// Adds --density. Without it the value is 0: sea water, or values that stay non-dimensional.
std::shared_ptr<double> add_density(CLI::App &app, bool needed);

// Adds --density and --case: what the results need beside the file.
struct CaseRequest {
    double density = 0; // 0: that of the case file, or sea water
    std::string file;   // empty: everything as by default
};
std::shared_ptr<CaseRequest> add_case(CLI::App &app);

// The case that was asked for. False, with the reason in `error`.
[[nodiscard]] bool load_case(const CaseRequest &request, const P2fFile &p2f, LoadedCase &loaded,
                             std::string &error);

// Adds --convention.
std::shared_ptr<Convention> add_convention(CLI::App &app);

// "vorda-p2f: reason" on standard error; 1.
int refuse(const std::string &reason);
