#include "case/run_steps.hpp"

#include "case/meshes.hpp"
#include "case/outputs.hpp"
#include "case/refinement.hpp"
#include "case/solution.hpp"
#include "case/trial.hpp"
#include "post/case_file.hpp"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>

namespace {

constexpr double GIGABYTE = 1e9;

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
    const Solution solution{"", &findings.plan, request.version};
    tell_plan(run, findings.plan, made);
    if (!write_decks(run, solution, error) || !judge(run, request, findings.plan, findings, error))
        return false;
    Refinement refinement;
    if (request.refine && !prepare_refinement(run, made, refinement, error))
        return false;
    if (request.dry) {
        tell_time_of_trial(run, findings.plan, made);
        return true;
    }
    if (!solve(run, solution, made, error))
        return false;
    const Solution fine{FINE, &refinement.plan, request.version};
    if (request.refine && !(write_decks(run, fine, error) && solve(run, fine, made, error)))
        return false;
    findings.refined = request.refine;
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
