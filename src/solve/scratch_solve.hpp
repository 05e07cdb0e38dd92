// SOLVE for matrices that are on scratch files but for what thread.AMAT holds.
#pragma once

#include "solve/solve.hpp"

[[nodiscard]] Status solve_on_scratch(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR,
                                      View<c32, 3> PHID, ThreadState &thread, int (&ITER)[2]);
