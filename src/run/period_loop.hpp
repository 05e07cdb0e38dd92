// The period loop: the one parallel region of a run.
#pragma once

#include "assembly/scratch_store.hpp"
#include "assembly/thread_state.hpp"
#include "results/period_records.hpp"
#include "run/period_book.hpp"
#include "run/phase_times.hpp"
#include "state/state.hpp"

// Who works in the loop.
struct LoopTeam {
    int threads = 1;      // periods side by side; 0: this process has no room for one
    int first_thread = 0; // number of the first of them in the report
};

// Solves periods until `periods` has no more, and gives them away there. Without the in-core store the
// matrices go through `scratch`. A failure ends the process through the stop routine. Adds the time of the
// loop to `times`.
void period_loop(const RunState &run, LoopTeam team, ScratchStore &scratch, PeriodExchange &periods,
                 PhaseTimes &times);
