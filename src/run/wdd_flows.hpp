// The step before the periods of a run for wave drift damping (IWADD=1): the steady flows.
#pragma once

#include "assembly/scratch_store.hpp"
#include "state/state.hpp"

// Makes the arrays of run.flow, of zeros. Failed: " RAM too small ".
[[nodiscard]] Status allocate_flows(RunState &run);

// Solves for the sources of slow surge, sway and yaw at wave number 1e-4, where the free surface is as good
// as rigid, with the matrices of RANKIN, and fills run.flow. Failed: the message is out.
[[nodiscard]] Status solve_flows(RunState &run, ScratchStore &scratch);
