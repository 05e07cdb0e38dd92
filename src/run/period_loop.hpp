// The period loop: the one parallel region of a run.
#pragma once

#include "assembly/scratch_store.hpp"
#include "base/record_file.hpp"
#include "run/state.hpp"

// Solves all periods on `threads` threads, in order, and leaves their solutions on RESSCR in period order. Writes the
// report rows to the list file and the text echo. WVNH(period) is the one element of shared data that a period writes.
// Without the in-core store the matrices go through `scratch`. A failure ends the process through the stop routine.
void period_loop(RunState &run, int threads, ScratchStore &scratch, RecordFile &RESSCR);
