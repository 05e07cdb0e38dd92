#include "command.hpp"

#include "../support/arguments.hpp"

#include <algorithm>
#include <cstdio>

std::shared_ptr<TableRequest> add_table_options(CLI::App &app, const std::vector<std::string> &names) {
    auto request = std::make_shared<TableRequest>();
    if (names.size() > 1)
        app.add_option("--csv", request->wanted,
                       "this table as comma-separated values: " + CLI::detail::join(names, ", "))
            ->check(CLI::IsMember(names))
            ->each([request](const std::string &) { request->csv = true; });
    else
        app.add_flag_callback(
            "--csv", [request] { request->csv = true; }, "comma-separated values instead of a table");
    return request;
}

int show_tables(const TableRequest &request, const std::vector<Table> &tables) {
    if (!request.csv) {
        for (std::size_t k = 0; k < tables.size(); ++k) {
            std::printf("%s", k == 0 ? "" : "\n");
            print_table(stdout, tables[k]);
        }
    } else {
        const auto wanted = std::find_if(tables.begin(), tables.end(), [&](const Table &table) {
            return request.wanted.empty() || table.name == request.wanted;
        });
        if (wanted == tables.end())
            return refuse("the file has no data for the table " + request.wanted);
        print_csv(stdout, *wanted);
    }
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? 0 : refuse("the output cannot be written");
}

std::shared_ptr<double> add_density(CLI::App &app, bool needed) {
    auto density = std::make_shared<double>(0);
    app.add_option("--density", *density,
                   needed ? "density of the water, mass per volume [1025 kg/m^3]"
                          : "density of the water, mass per volume; makes values dimensional")
        ->check(positive_number())
        ->default_str("");
    return density;
}

std::shared_ptr<CaseRequest> add_case(CLI::App &app) {
    auto request = std::make_shared<CaseRequest>();
    app.add_option("--density", request->density,
                   "density of the water, mass per volume [that of the case file, or 1025 kg/m^3]")
        ->check(positive_number())
        ->default_str("");
    app.add_option("--case", request->file, "case file: masses, springs, points, spectra (docs/case.md)");
    return request;
}

bool load_case(const CaseRequest &request, const P2fFile &p2f, LoadedCase &loaded, std::string &error) {
    return load_case(request.file, request.density, p2f, loaded, error);
}

std::shared_ptr<Convention> add_convention(CLI::App &app) {
    auto convention = std::make_shared<Convention>();
    app.add_option_function<std::string>(
           "--convention", [convention](const std::string &word) { convention->minus = word == "exp-iwt"; },
           "phases of exp+iwt or of exp-iwt")
        ->check(CLI::IsMember({"exp+iwt", "exp-iwt"}))
        ->default_str("exp+iwt");
    return convention;
}

int refuse(const std::string &reason) {
    std::fprintf(stderr, "vorda-p2f: %s\n", reason.c_str());
    return 1;
}
