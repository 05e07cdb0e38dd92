// Solution of the systems of a period, class by class.
#pragma once

#include "assembly/thread_state.hpp"

// Which right-hand sides a call solves for; the results overwrite them.
struct SolveRequest {
    int IRAD = 0;   // -1 leaves the radiation columns out
    int IDIFF = 0;  // below 0 leaves the diffraction columns out
    int FACT = 1;   // 1: the iteration counts start from 0
};

// Solves all classes. ITER[0], ITER[1]: iteration counts of radiation and diffraction, -1 after a direct
// solution. Failed: allocation, or a singular matrix (the message names the class); the solution is then void.
[[nodiscard]] Status SOLVE(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR, View<c32, 3> PHID,
                           ThreadState &thread, int (&ITER)[2]);
