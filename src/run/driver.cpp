#include "run/driver.hpp"

#include "base/pages.hpp"
#include "base/platform.hpp"
#include "freesurface/fdf.hpp"
#include "freesurface/fsmark.hpp"
#include "freesurface/fsstrip.hpp"
#include "geometry/dipoles.hpp"
#include "geometry/pregeo.hpp"
#include "input/input.hpp"
#include "rankine/rankin.hpp"
#include "rankine/rankin_scratch.hpp"
#include "results/p2f_writer.hpp"
#include "run/memory_report.hpp"
#include "run/mesh_report.hpp"
#include "run/period_loop.hpp"
#include "run/wdd_flows.hpp"
#include "state/memory_plan.hpp"
#include "state/messages.hpp"
#include "state/symmetry.hpp"

#include <new>
#include <omp.h>

namespace {

// Every step that fails has told why; the run ends there.
void require(Status status) {
    if (failed(status))
        STOPRN(0);
}

void limit_threads(int NTRD) {
    if (NTRD > 0 && NTRD < omp_get_max_threads())
        omp_set_num_threads(NTRD);
}

void write_report_head(RunState &run) {
    const DateTime now = DATTIM();
    for (const std::string &line :
         {" VORDA run date and starting time:        " + now.date + "  -- " + now.time + " ",
          std::string("    Index Thread  Period  Time          RAD      DIFF (max iterations)")}) {
        run.HDRSCR.push_back(line);
        list_line(line);
    }
}

// The free-surface panels of a drift run; the lists of its readers and makers may not find room.
Status free_surface_stage(RunState &run) {
    try {
        return FDFSTG(run, run.surface);
    } catch (const std::bad_alloc &) {
        return MSGOUT("Insufficient memory to allocate arrays in RDFDF");
    }
}

// In memory, or as records on the scratch units.
Status rankine_matrices(RunState &run, ScratchStore &scratch) {
    if (run.memory.INCORE)
        return RANKIN(run.opt, run.bodies, run.mesh, run.dipoles, run.sym, run.store);
    return rankin_on_scratch(run.opt, run.mesh, run.dipoles, run.sym, scratch.RANKINE, scratch.RANKRHS);
}

[[noreturn]] void run_stages(RunState &run) {
    Stopwatch watch;
    PhaseTimes times;
    require(LISOPN(run.files.list));
    require(GETIP1(run));
    limit_threads(run.opt.NTRD);
    MEMRPT(run.memory);
    RecordFile RESSCR(8);
    if (!RESSCR.open_scratch())
        require(MSGOUT_with("Error opening scratch file, UNIT=", RESSCR.unit(), RESSCR.error()));
    if (run.opt.IRR == 3)
        require(generate_free_surface(run));
    choose_solver(run.opt, run.mesh.NEQN);
    require(INECHO(run));
    run.opt.NCORE = core_order(run.opt, run.mesh.NEQN);
    require(INCHK(run));
    if (!allocate_mesh(run.bodies, run.mesh))
        require(MSGOUT(" RAM too small for number of panels "));
    require(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh));
    require(FSMARK(run.opt, run.bodies, run.mesh));
    require(check_limits(run));
    if (run.opt.IRR >= 1)
        require(fill_strips(run, run.strips));
    const bool drift = run.opt.IWADD == 1;
    if (drift)
        require(free_surface_stage(run));
    if (run.dipoles.IDIPOL)
        require(INIT_DIPOLE(run.mesh, run.dipoles));
    require(SYMSET(run.bodies.NMODES, run.opt.ISX, run.opt.ISY, run.bodies.MODE, drift ? 1 : run.opt.IDIFF,
                   run.sym));
    if (drift) {
        require(WDDCLS(run.bodies.NMODES, run.opt.ISX, run.opt.ISY, run.sym));
        require(WDDLFM(run.bodies.NMODES, run.opt.ISX, run.opt.ISY, run.sym));
        require(allocate_flows(run));
    }
    report_mesh(run);
    MEMPLN(run.opt, run.mesh.NEQN, run.sym.NSYMR, run.memory);
    if (run.memory.INCORE)
        require(allocate_store(run.opt, run.sym, run.mesh.NEQN, run.store));
    const int threads = period_threads(run.memory);
    report_memory(run, threads);
    write_report_head(run);
    times.input = watch.lap();
    if (run.periods.NPER > 0) {
        ScratchStore scratch;
        require(rankine_matrices(run, scratch));
        if (drift)
            require(solve_flows(run, scratch));
        times.rankine = watch.lap();
        period_loop(run, threads, scratch, RESSCR, times);
        (void)watch.lap();
    }
    require(RESWRT(run, RESSCR));
    results_complete(run.files.FILNAM(3));
    message(" VORDA module run completed");
    times.output = watch.lap();
    show_times(times);
    STOPRN(0);
}

} // namespace

void run_solver() {
    keep_freed_memory();
    // On the heap: other threads may still read it while the stop routine ends the process.
    RunState *run = nullptr;
    try {
        run = new RunState;
        run_stages(*run);
    } catch (const std::bad_alloc &) {
        // What no stage has caught: the run ends in order all the same.
        (void)MSGOUT(" RAM too small ");
        STOPRN(0);
    }
}
