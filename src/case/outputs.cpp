#include "case/outputs.hpp"

#include "case/programs.hpp"
#include "case/refinement.hpp"
#include "case/report.hpp"
#include "case/solution.hpp"
#include "exchange/export.hpp"
#include "exchange/part_file.hpp"
#include "post/result_tables.hpp"

#include <cstdio>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

// A file of the run's folder: made by a program, whose words it has, or here.
struct Output {
    const char *thing;
    bool wanted;
    std::vector<std::string> words;
    bool (*make)(const ReportOf &, std::string &error) = nullptr;
    bool keeps_text = false; // what the program prints is the file
};

std::string plain(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

bool write_csv(const ReportOf &of, const std::string &name, const Table &table, std::string &error) {
    PartFile part(of.run->run_folder() + "/" + name);
    std::FILE *out = part.open(error);
    if (out == nullptr)
        return false;
    print_csv(out, table);
    return part.keep(error);
}
bool write_impulse(const ReportOf &of, std::string &error) {
    if (of.data->impulse.times.empty()) {
        error = "there are no impulse responses";
        for (const std::string &note : of.data->notes)
            if (note.rfind("No impulse", 0) == 0)
                error = note;
        return false;
    }
    return write_csv(of, "impulse.csv",
                     radiation_response_table(*of.data->p2f, of.data->of_case.scales, of.data->impulse),
                     error);
}
bool write_refined_radiation(const ReportOf &of, std::string &error) {
    return write_csv(of, "refinement_radiation.csv", refined_radiation_table(*of.data, *of.fine), error);
}
bool write_refined_forces(const ReportOf &of, std::string &error) {
    return write_csv(of, "refinement_exciting.csv", refined_exciting_table(*of.data, *of.fine), error);
}

std::vector<Output> outputs_of(const RunCase &run, bool refined) {
    const std::string file = fs::path(run.name).filename().string(),
                      there = fs::path(run.run_folder()).filename().string(), p2f = there + "/case.p2f";
    const auto exported = [&](const char *name) {
        return std::vector<std::string>{"vorda-p2f", "export", p2f, "--case", file, "-o", there + "/" + name};
    };
    std::vector<std::string> field = {"vorda-p2f", "field", p2f, "--case", file, "--csv", "wave"};
    if (!run.grid.empty()) {
        field.emplace_back("--grid");
        for (const double value : run.grid)
            field.push_back(plain(value));
        field.insert(field.end(), {"--z", plain(run.level)});
    } else {
        field.insert(field.end(), {"--points", there + "/points.txt"});
    }
    return {
        {"results.nc", run.netcdf, exported("results.nc")},
        {"results.h5", run.hdf5, exported("results.h5")},
        {"hull.vtu", run.vtu, exported("hull.vtu")},
        {"tables", run.csv, exported("tables")},
        {"field.csv", !run.grid.empty() || !run.points.empty(), field, nullptr, true},
        {"impulse.csv", run.impulse, {}, write_impulse},
        {"refinement_radiation.csv", refined, {}, write_refined_radiation},
        {"refinement_exciting.csv", refined, {}, write_refined_forces},
        {"report.html", run.report, {}, write_report},
    };
}

bool make_by_program(const RunCase &run, const Output &output, std::string &error) {
    Ended ended;
    if (!run_program({output.words, run.folder, false}, {}, ended, error))
        return false;
    if (ended.code != 0) {
        error = typed(output.words) + " ends with code " + std::to_string(ended.code) + ":\n" + ended.text;
        return false;
    }
    return !output.keeps_text || write_text(run.run_folder() + "/" + output.thing, ended.text, error);
}

// Results of a solution, formed once for all that is made here.
struct Formed {
    P2fFile p2f;
    DataSet data;
    bool there() const { return data.p2f != nullptr; }
    bool form(const RunCase &run, const std::string &version, const Solution &of, const DataWants &wants,
              std::string &error) {
        const std::string file = run.run_folder() + "/" + of.p2f();
        data.p2f = &p2f;
        data.provenance = provenance_of(version, file, "vorda-run " + run.name);
        return read_p2f(file, p2f, error) && load_case(run.name, 0, p2f, data.of_case, error) &&
               form_data_set(wants, data, error);
    }
};

bool write_points(const RunCase &run, std::string &error) {
    std::string text;
    for (const auto &p : run.points)
        text += plain(p[0]) + " " + plain(p[1]) + " " + plain(p[2]) + "\n";
    return run.points.empty() || write_text(run.run_folder() + "/points.txt", text, error);
}

} // namespace

bool make_outputs(const RunCase &run, const std::string &version, const CaseFindings &findings,
                  MadeFrom &made, std::string &error) {
    Formed coarse, fine;
    const ReportOf of{&run, &findings, &coarse.data, findings.refined ? &fine.data : nullptr};
    const auto form = [&] {
        return coarse.there() ||
               (coarse.form(run, version, {"", nullptr, version}, {run.drift, run.impulse}, error) &&
                (!findings.refined || fine.form(run, version, {FINE, nullptr, version}, {}, error)));
    };
    if (!write_points(run, error))
        return false;
    int stay = 0;
    for (const Output &output : outputs_of(run, findings.refined)) {
        const std::string lines = version + "\n" + typed(output.words) + "\n" + hash_line(run.name) +
                                  made.note("case.p2f") + findings.mesh_faults +
                                  (findings.refined ? made.note(std::string(FINE) + "case.p2f") : "");
        const std::string name = run.run_folder() + "/" + output.thing;
        std::error_code fault;
        if (!output.wanted) {
            if (!made.note(output.thing).empty())
                fs::remove_all(name, fault);
            if (!made.forget(output.thing, error))
                return false;
            continue;
        }
        if (made.holds(output.thing, lines)) {
            ++stay;
            continue;
        }
        if (!made.forget(output.thing, error) || (output.make != nullptr && !form()) ||
            !(output.make != nullptr ? output.make(of, error) : make_by_program(run, output, error)) ||
            !made.set(output.thing, lines, error))
            return false;
        std::printf("output     %s\n", name.c_str());
        std::fflush(stdout);
    }
    if (stay > 0)
        std::printf("outputs    %d unchanged, in %s\n", stay, run.run_folder().c_str());
    return true;
}
