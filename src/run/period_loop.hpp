// The period loop: the one parallel region of a run.
#pragma once

#include "assembly/scratch_store.hpp"
#include "assembly/thread_state.hpp"
#include "base/record_file.hpp"
#include "run/phase_times.hpp"
#include "state/state.hpp"

// Iteration counts of a period, radiation and diffraction; -1 after a direct solution.
struct PeriodCounts {
    int potentials[2] = {0, 0};
    int sources[2] = {0, 0};
};

// Solves all periods on `threads` threads, in order, and leaves their solutions on RESSCR in period order.
// Writes the report rows to the list file and the text echo. WVNH(period) is the one element of shared data
// that a period writes. Without the in-core store the matrices go through `scratch`. A failure ends the
// process through the stop routine. Adds the time of the loop to `times`.
void period_loop(RunState &run, int threads, ScratchStore &scratch, RecordFile &RESSCR, PhaseTimes &times);
