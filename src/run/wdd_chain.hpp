// The solves of a period of a run for wave drift damping (IWADD=1).
#pragma once

#include "assembly/period_wave.hpp"
#include "run/period_loop.hpp"

// From the systems of the period (WAVEGR) and the incident wave (INCWWD) to all arrays of its block:
// potentials and their heading derivatives, sources, velocities, the free-surface potentials and the
// second-order sets. Each matrix is prepared once. The counts are the largest of all solves, of the
// potentials and of the sources. Failed: the message is out.
[[nodiscard]] Status solve_second_order(const RunState &run, const PeriodWave &wave, ThreadState &thread,
                                        PeriodCounts &counts);
