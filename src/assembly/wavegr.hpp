// The system of one period: Rankine store plus wave terms, folded into the symmetry classes.
#pragma once

#include "assembly/period_wave.hpp"
#include "assembly/thread_state.hpp"

// Fills thread.ACORE (on scratch: thread.AMAT and the files of thread.scratch) with the dipole influence of
// every class, 2 pi on the diagonal included, thread.PHIR with the radiation right-hand sides (IRAD >= 0)
// and, with ISCATT=1, thread.PHID with those of diffraction from the incident normal velocity in thread.SRCD.
// Rows are assembled in blocks on the idle cores; the sums are added in the order of the blocks, so that the
// result does not depend on the thread count. Failed: " RAM too small to allocate WAVEGR arrays ", a scratch
// file, an image without a value; the message is out.
[[nodiscard]] Status WAVEGR(const RunState &run, const PeriodWave &wave, ThreadState &thread);
