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
#include "run/crew.hpp"
#include "run/memory_report.hpp"
#include "run/mesh_report.hpp"
#include "run/period_book.hpp"
#include "run/period_loop.hpp"
#include "run/wdd_flows.hpp"
#include "state/memory_plan.hpp"
#include "state/messages.hpp"
#include "state/symmetry.hpp"

#include <algorithm>
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
Status rankine_matrices(RunState &run, Crew &crew, ScratchStore &scratch) {
    if (!run.memory.INCORE)
        return rankin_on_scratch(run.opt, run.mesh, run.dipoles, run.sym, scratch.RANKINE, scratch.RANKRHS);
    const Status filled =
        RANKIN(run.opt, run.bodies, run.mesh, run.dipoles, run.sym, run.store, crew.rankine_rows());
    if (!failed(filled))
        crew.rankine_is_filled();
    return filled;
}

// All that the files tell, checked, and what follows from it before the periods.
void input_stage(RunState &run) {
    require(LISOPN(run.files.list));
    require(GETIP1(run));
    limit_threads(run.opt.NTRD);
    MEMRPT(run.memory);
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
}

// Memory plan and Rankine store. Returns the number of periods that this process may work on at a time.
int memory_stage(RunState &run, Crew &crew) {
    crew.measure_memory(run.memory);
    MEMPLN(run.opt, run.mesh.NEQN, run.sym.NSYMR, run.memory);
    crew.divide_memory(run.memory);
    if (run.memory.INCORE)
        require(crew.allocate_rankine(run));
    const int threads = period_threads(run.memory);
    report_memory(run, threads);
    return threads;
}

// Rankine matrices, steady flows, periods. `book` is null but in the leading process.
void period_stage(RunState &run, Crew &crew, int threads, PeriodBook *book, PhaseTimes &times) {
    Stopwatch watch;
    ScratchStore scratch;
    require(rankine_matrices(run, crew, scratch));
    if (run.opt.IWADD == 1) {
        if (crew.leads())
            require(solve_flows(run, scratch));
        crew.share_flows(run.flow);
    }
    times.rankine = watch.lap();
    // No more threads than there are periods for each process.
    const int all = crew.processes();
    LoopTeam team{std::min(threads, (run.periods.NPER + all - 1) / all)};
    PeriodExchange &periods = crew.open_exchange(book, team.threads, team.first_thread);
    period_loop(run, team, scratch, periods, times);
    crew.close_exchange();
    times.waiting += watch.lap() - times.assembly - times.solve - times.waiting;
}

[[noreturn]] void lead(RunState &run, Crew &crew) {
    Stopwatch watch;
    PhaseTimes times;
    input_stage(run);
    crew.share_input(run);
    RecordFile RESSCR(8);
    if (!RESSCR.open_scratch())
        require(MSGOUT_with("Error opening scratch file, UNIT=", RESSCR.unit(), RESSCR.error()));
    const int threads = memory_stage(run, crew);
    write_report_head(run);
    times.input = watch.lap();
    PeriodBook book(run, RESSCR);
    if (run.periods.NPER > 0) {
        require(book.start());
        period_stage(run, crew, threads, &book, times);
    }
    (void)watch.lap();
    require(RESWRT(run, RESSCR, book.places()));
    results_complete(run.files.FILNAM(3));
    book.close();
    message(" VORDA module run completed");
    times.output = watch.lap();
    show_times(times);
    STOPRN(0);
}

[[noreturn]] void help(RunState &run, Crew &crew) {
    crew.share_input(run);
    limit_threads(run.opt.NTRD);
    const int threads = memory_stage(run, crew);
    PhaseTimes times;
    if (run.periods.NPER > 0)
        period_stage(run, crew, threads, nullptr, times);
    STOPRN(0);
}

} // namespace

Status Crew::allocate_rankine(RunState &run) {
    return allocate_store(run.opt, run.sym, run.mesh.NEQN, run.store);
}

void run_solver() {
    Crew alone;
    run_solver(alone);
}

void run_solver(Crew &crew) {
    keep_freed_memory();
    // On the heap: other threads may still read it while the stop routine ends the process.
    RunState *run = nullptr;
    try {
        run = new RunState;
        if (crew.leads())
            lead(*run, crew);
        help(*run, crew);
    } catch (const std::bad_alloc &) {
        // What no stage has caught: the run ends in order all the same.
        (void)MSGOUT(" RAM too small ");
        STOPRN(0);
    }
}
