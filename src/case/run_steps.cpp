#include "case/run_steps.hpp"

#include "case/decks.hpp"
#include "case/meshes.hpp"
#include "case/outputs.hpp"
#include "case/programs.hpp"
#include "case/trial.hpp"
#include "post/case_file.hpp"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr double GIGABYTE = 1e9;

double since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Masses, springs and seas are read with the results; a fault in them is told before anything is computed.
bool check_results_part(const RunCase &run, std::string &error) {
    P2fFile bodies;
    bodies.NBODY = static_cast<int>(run.bodies.size());
    CaseFile file;
    if (!bodies.NEWMDS.alloc(bodies.NBODY)) {
        error = "there is not enough memory";
        return false;
    }
    return read_case(run.name, bodies, file, error);
}

void tell_plan(const RunCase &run, const CasePlan &plan, const MadeFrom &made) {
    std::printf("plan       %zu %s, %d panels given, %d with images\n", run.bodies.size(),
                run.bodies.size() == 1 ? "body" : "bodies", plan.panels, plan.with_images);
    std::printf("           %s%d unknowns in each of %d %s of symmetry\n", plan.IRR == 3 ? "about " : "",
                plan.unknowns, plan.classes, plan.classes == 1 ? "class" : "classes");
    std::printf("           %d periods, %zu headings; sources %s; irregular frequencies: %s; solver %s\n",
                plan.periods, run.headings.size(), plan.ISOR == 1 ? "on" : "off",
                plan.IRR == 0   ? "left"
                : plan.IRR == 3 ? "panels made inside"
                                : "panels of the mesh",
                plan.ISOLVE == 1 ? "direct" : "iterative");
    std::printf(
        "           about %.2g GB of memory for matrices; panels of %.3g m, the shortest wave has %.3g m\n",
        plan.memory / GIGABYTE, plan.longest_panel, plan.shortest_wave);
    std::istringstream last(made.note("last solution"));
    double seconds = 0, work = 0;
    if (last >> seconds >> work && work > 0)
        std::printf("           about %.0f s, by the last run of this case\n",
                    seconds * work_of(plan) / work);
    std::fflush(stdout);
}

// Before the first run of a case a trial tells the time; a run itself tells it soon enough.
void tell_time_of_trial(const RunCase &run, const CasePlan &plan, const MadeFrom &made) {
    if (!made.note("last solution").empty())
        return;
    const double seconds = seconds_by_trial(run, plan);
    if (seconds >= 0)
        std::printf("           about %.2g s, by a trial of this machine\n", seconds);
    else
        std::printf("           time: not known before the first run of this case\n");
    std::fflush(stdout);
}

// Lines of the list of periods in the solver's report.
int periods_done(const std::string &list) {
    std::istringstream in(list);
    int done = 0;
    bool behind_head = false;
    for (std::string line; std::getline(in, line);) {
        int index = 0, thread = 0;
        behind_head = behind_head || line.find("Index Thread") != std::string::npos;
        if (behind_head && std::sscanf(line.c_str(), "%d %d", &index, &thread) == 2)
            ++done;
    }
    return done;
}

// Plain lines on standard output, a tenth of the periods each; the solver itself tells a terminal.
class Watch {
  public:
    Watch(std::string list, int count) : list_(std::move(list)), count_(count) {}
    void operator()() {
        const int done = periods_done(text_of(list_));
        if (10 * done / count_ <= told_)
            return;
        told_ = 10 * done / count_;
        std::printf("solve      %d of %d periods, %.0f s left\n", done, count_,
                    since(start_) / done * (count_ - done));
        std::fflush(stdout);
    }

  private:
    std::string list_;
    int count_, told_ = 0;
    Clock::time_point start_ = Clock::now();
};

// The end of the report, where the fault stands.
std::string end_of(const std::string &list) {
    std::istringstream in(list);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        if (line.find_first_not_of(' ') != std::string::npos)
            lines.push_back(line);
    std::string text;
    for (std::size_t k = lines.size() > 6 ? lines.size() - 6 : 0; k < lines.size(); ++k)
        text += "\n " + lines[k];
    return text;
}

bool solve(const RunCase &run, const CasePlan &plan, const std::string &lines, MadeFrom &made,
           std::string &error) {
    const std::string folder = run.run_folder(), list = folder + "/vorda.lis";
    if (made.holds("case.p2f", lines)) {
        std::printf("solve      unchanged, case.p2f stays\n");
        return true;
    }
    std::error_code ignored;
    fs::remove(folder + "/case.p2f", ignored);
    fs::remove(list, ignored);
    if (!made.forget("case.p2f", error))
        return false;
    std::printf("solve      vorda in %s\n", folder.c_str());
    std::fflush(stdout);
    const Clock::time_point start = Clock::now();
    Watch watch(list, plan.periods);
    Ended ended;
    const bool terminal = on_terminal();
    if (!run_program({{"vorda"}, folder, terminal}, terminal ? std::function<void()>() : std::ref(watch),
                     ended, error))
        return false;
    if (ended.code != 0 || !fs::exists(folder + "/case.p2f")) {
        error = "the solver ended without results (code " + std::to_string(ended.code) + "); " + list +
                " tells:" + end_of(text_of(list));
        return false;
    }
    char note[64];
    std::snprintf(note, sizeof note, "%.3f %.6g\n", since(start), work_of(plan));
    std::printf("solve      done in %.1f s\n", since(start));
    std::fflush(stdout);
    return made.set_note("last solution", note, error) && made.set("case.p2f", lines, error);
}

bool write_decks(const RunCase &run, const std::vector<DeckFile> &decks, std::string &error) {
    for (const DeckFile &deck : decks)
        if (!write_text(run.run_folder() + "/" + deck.name, deck.text, error))
            return false;
    return true;
}

bool judge(const RunCase &run, const RunRequest &request, const CasePlan &plan, CaseFindings &findings,
           std::string &error) {
    if (!judge_meshes(run, plan.shortest_wave, findings.mesh_report, findings.mesh_faults, error))
        return false;
    if (findings.mesh_faults.empty()) {
        std::printf("check      the meshes are sound\n");
        return true;
    }
    std::printf("check      %s", findings.mesh_report.c_str());
    std::fflush(stdout);
    if (request.force)
        return true;
    error = run.at(run.bodies[0].mesh_line,
                   "the meshes have faults that make numbers wrong:\n  " + findings.mesh_faults +
                       "repair them (vorda-mesh show draws them), or go on with --force");
    return false;
}

bool all_steps(const RunRequest &request, std::string &error) {
    RunCase run;
    CaseFindings findings;
    std::vector<Outline> outlines;
    if (!read_run_case(request.file, run, error) || !check_results_part(run, error))
        return false;
    MadeFrom made(run.run_folder());
    if (!make_meshes(run, made, outlines, error) || !check_places(run, outlines, error) ||
        !make_plan(run, outlines, findings.plan, error))
        return false;
    const std::vector<DeckFile> decks = decks_of(run, findings.plan);
    tell_plan(run, findings.plan, made);
    if (!write_decks(run, decks, error) || !judge(run, request, findings.plan, findings, error))
        return false;
    if (request.dry) {
        tell_time_of_trial(run, findings.plan, made);
        return true;
    }
    // Another build of the solver solves again, the same one in another place does not.
    const std::string solver = program_beside("vorda");
    std::string lines = request.version + "\nsolver" + hash_line(solver).substr(solver.size());
    for (const DeckFile &deck : decks)
        lines += hash_line(run.run_folder() + "/" + deck.name);
    for (std::size_t b = 0; b < run.bodies.size(); ++b)
        lines += hash_line(run.run_folder() + "/" + mesh_name(b));
    if (!solve(run, findings.plan, lines, made, error))
        return false;
    findings.solver_list = text_of(run.run_folder() + "/vorda.lis");
    return make_outputs(run, request.version, findings, made, error);
}

} // namespace

int run_case(const RunRequest &request) {
    std::string error;
    if (all_steps(request, error))
        return std::fflush(stdout) == 0 ? 0 : 1;
    std::fflush(stdout);
    std::fprintf(stderr, "vorda-run: %s\n", error.c_str());
    return 1;
}
