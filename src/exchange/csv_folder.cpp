// A folder of comma-separated values: the tables of vorda-p2f, COMMAND_TABLE.csv each.
#include "exchange/export.hpp"
#include "exchange/part_file.hpp"

#include "post/result_tables.hpp"
#include "post/wave_tables.hpp"

#include <filesystem>

namespace {

void add_drift(const DataSet &data, std::vector<NamedTable> &tables) {
    const P2fFile &p2f = *data.p2f;
    const Scales &scales = data.of_case.scales;
    Table drift = drift_table(scales), bodies = body_drift_table(scales), energy = energy_table(scales);
    for (const int t : data.waves) {
        const std::size_t at = static_cast<std::size_t>(t - 1);
        if (!data.far.empty()) {
            add_drift_rows(drift, p2f, scales, t, data.far[at],
                           data.near.empty() ? std::vector<std::vector<NearDrift>>() : data.near[at]);
            add_energy_rows(energy, p2f, scales, t, data.far[at]);
        }
        if (!data.near.empty())
            add_body_drift_rows(bodies, p2f, scales, t, data.near[at]);
    }
    for (Table *table : {&drift, &bodies, &energy})
        if (!table->rows.empty())
            tables.push_back({"drift", std::move(*table)});
}

} // namespace

std::vector<NamedTable> tables_of(const DataSet &data) {
    const P2fFile &p2f = *data.p2f;
    const LoadedCase &of = data.of_case;
    const Scales &scales = of.scales;
    const Convention plus;
    std::vector<NamedTable> tables;
    tables.push_back({"hydrostatics", particulars_table(of.bodies, of.masses, scales)});
    tables.push_back({"hydrostatics", stiffness_table(p2f, of.bodies, of.masses, scales, false)});
    if (!data.X.pressure.empty())
        tables.push_back({"forces", force_table(p2f, scales, data.X, plus)});
    if (!data.R.A.empty())
        tables.push_back({"forces", added_mass_table(p2f, scales, data.R, {})});
    if (!data.xi.empty()) {
        tables.push_back({"motions", rao_table(p2f, scales, data.xi, plus)});
        const PointWaves waves = form_point_waves(p2f, of.file, data.xi);
        if (!of.file.points.empty())
            tables.push_back({"motions", point_table(p2f, scales, of.file, {data.xi, waves}, plus)});
        if (!of.file.spectra.empty())
            tables.push_back({"motions", sea_table(p2f, scales, of.file, {data.xi, waves})});
    }
    if (!data.natural.empty())
        tables.push_back({"motions", natural_table(p2f, data.natural)});
    add_drift(data, tables);
    if (!data.impulse.times.empty()) {
        tables.push_back({"impulse", impulse_check_table(p2f, scales, data.impulse)});
        tables.push_back({"impulse", radiation_response_table(p2f, scales, data.impulse)});
        if (!data.impulse.exciting.empty())
            tables.push_back({"impulse", exciting_response_table(p2f, scales, data.impulse)});
    }
    return tables;
}

namespace {

// What the numbers mean and where they came from.
Table about_table(const DataSet &data) {
    Table table;
    table.name = "about";
    table.columns = {{"what", ""}, {"text", ""}};
    for (const auto &[name, text] : data.provenance.texts())
        table.rows.push_back({name, text});
    table.rows.push_back({"convention", Convention().note()});
    for (const std::string &note : data.notes)
        table.rows.push_back({"note", note});
    return table;
}

bool write_table(const std::string &name, const Table &table, std::string &error) {
    PartFile part(name);
    std::FILE *out = part.open(error);
    if (out == nullptr)
        return false;
    print_csv(out, table);
    return part.keep(error);
}

} // namespace

bool write_csv_folder(const DataSet &data, ExportRequest &request, std::string &error) {
    PartFolder folder(request.out);
    if (!folder.make(error))
        return false;
    std::vector<NamedTable> tables = tables_of(data);
    std::vector<std::string> names = {"about.csv"};
    bool good = write_table((folder.part() / names[0]).string(), about_table(data), error);
    for (std::size_t k = 0; good && k < tables.size(); ++k) {
        names.push_back(std::string(tables[k].command) + "_" + tables[k].table.name + ".csv");
        good = write_table((folder.part() / names.back()).string(), tables[k].table, error);
    }
    return good && folder.keep(names, request.written, error);
}
