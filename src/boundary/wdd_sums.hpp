// What a run with IWADD=1 forms from the first-order solutions of a period: potentials on the free-surface
// panels and the second-order right-hand sides. Field points are shared among idle cores; the sums of a point
// have a fixed order.
#pragma once

#include "assembly/period_wave.hpp"
#include "assembly/thread_state.hpp"

// The first-order solutions on the free surface: FSR1 to FSR3, FSD1 to FSD5 of thread.second. The incident
// wave is always there, radiation is added for IRAD >= 0, diffraction for IDIFF = 1. Read: PHIR, PHID, SRCR,
// SRCD, SRCD2. Failed: an integral has no value, or " RAM too small ".
[[nodiscard]] Status WDDFS(const RunState &run, const PeriodWave &wave, ThreadState &thread);

// The right-hand sides W2R0 to W2R3 and, for IDIFF = 1, W2D1 to W2D3; to W2D0 and W2D0B, which hold the
// incident wave, the sums over the body are added. Read: PHIR, PHID, PHID2, FSR1, FSD1 and the steady flows.
// Failed: as above, or the regular part of the kernel has no value.
[[nodiscard]] Status WDDRHS(const RunState &run, const PeriodWave &wave, ThreadState &thread);
