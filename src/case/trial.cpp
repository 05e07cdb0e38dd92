#include "case/trial.hpp"

#include "case/made_from.hpp"
#include "case/passing_folder.hpp"
#include "case/programs.hpp"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

namespace {

namespace fs = std::filesystem;

// A box in water and waves of the case.
RunCase trial_case(const RunCase &run, const std::string &folder) {
    RunCase trial = run;
    trial.bodies = {RunBody()};
    trial.name = folder + "/trial.toml";
    trial.irregular = "off";
    trial.limits = false;
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    const std::size_t threads = run.threads > 0 ? static_cast<std::size_t>(run.threads) : cores;
    trial.waves.resize(std::min(trial.waves.size(), 2 * threads));
    return trial;
}

// Its panels are as large as those of the case.
bool make_box(const RunCase &trial, double h, Outline &outline, std::string &error) {
    const double draft = trial.depth > 0 ? std::min(8 * h, 0.5 * trial.depth) : 8 * h;
    const std::string folder = trial.run_folder();
    std::error_code fault;
    std::filesystem::create_directories(folder + "/meshes", fault);
    Ended ended;
    return run_program({{"vorda-mesh", "box", "--part", "full", "--nu", "10", "--nv", "6", "--nw", "8",
                         "--length", std::to_string(20 * h), "--beam", std::to_string(12 * h), "--draft",
                         std::to_string(draft), "-o", mesh_name(0)},
                        folder,
                        false},
                       nullptr, ended, error) &&
           read_outline(folder + "/" + mesh_name(0), trial.bodies[0], outline, error);
}

// Wall time of the run [s], or negative.
double timed(const RunCase &trial, const CasePlan &plan) {
    const std::string folder = trial.run_folder();
    std::string error;
    for (const DeckFile &deck : decks_of(trial, plan))
        if (!write_text(folder + "/" + deck.name, deck.text, error))
            return -1;
    const auto start = std::chrono::steady_clock::now();
    Ended ended;
    if (!run_program({{"vorda"}, folder, false}, nullptr, ended, error) || !fs::exists(folder + "/case.p2f"))
        return -1;
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    fs::remove(folder + "/case.p2f");
    return seconds;
}

} // namespace

double work_of(const CasePlan &plan) {
    return static_cast<double>(plan.unknowns) * plan.unknowns * plan.classes * plan.periods *
           (plan.ISOR == 1 ? 2 : 1);
}

double seconds_by_trial(const RunCase &run, const CasePlan &plan) {
    const PassingFolder folder;
    const RunCase trial = trial_case(run, folder.name);
    std::vector<Outline> outlines(1);
    CasePlan small;
    std::string error;
    if (!folder.there || !make_box(trial, plan.longest_panel, outlines[0], error) ||
        !make_plan(trial, outlines, small, error))
        return -1;
    double seconds[2];
    for (small.ISOLVE = 0; small.ISOLVE < 2; ++small.ISOLVE) {
        seconds[small.ISOLVE] = timed(trial, small);
        if (seconds[small.ISOLVE] < 0)
            return -1;
    }
    const double larger = static_cast<double>(plan.unknowns) / small.unknowns;
    const double decomposition = plan.ISOLVE == 1 ? std::max(0.0, seconds[1] - seconds[0]) : 0;
    return (seconds[0] + decomposition * larger) * work_of(plan) / work_of(small);
}
