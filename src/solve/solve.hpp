// Solution of the systems of a period, class by class.
#pragma once

#include "assembly/thread_state.hpp"
#include "state/symmetry.hpp"

// Which right-hand sides a call solves for (the results overwrite them), with which matrix, and what
// is left behind.
struct SolveRequest {
    int IRAD = 0;  // -1 leaves the radiation columns out
    int IDIFF = 0; // below 0 leaves the diffraction columns out
    int FACT =
        1; // 1: the matrix is prepared and the iteration counts start from 0; 0: as an earlier call left it
    int KEEP = 0;    // 1: the scratch files stay for a later call; a prepared matrix in memory does anyway
    int ISRC = 0;    // 1: the source matrix, on the second list of units
    f32 EPS = EPSIT; // tolerance of the iterative solvers
    // Reference panel of a fully filled tank, 0: none. The potentials are made to vanish there in the
    // class that is even in both planes, where they are defined up to a constant. The source equations
    // have one solution.
    int IRRX = 0;
    const ModeLists *modes = nullptr; // of the radiation columns; null: the modes of the run
};

// Solves all classes by the method of ISOLVE, with the matrices in thread.ACORE or, with
// ISRC=1, ECORE (INCORE) or where the
// assembly left them in thread.AMAT and on the files of thread.scratch. ITER[0], ITER[1]: largest iteration
// counts of radiation and diffraction, -1 after a direct solution. In memory the direct solver puts its
// factors in the place of the matrix, where a call with FACT=0 finds them; the others leave it as it is.
// Failed: allocation, a scratch file, or a singular matrix (the messages name the class and the right-hand
// sides); the solution is then void.
[[nodiscard]] Status SOLVE(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR,
                           View<c32, 3> PHID, ThreadState &thread, int (&ITER)[2]);
// Bytes that a solution takes in memory beside matrices and factors, while it lasts.
std::int64_t solve_memory(const RunState &run);
// The same for a fully filled tank, request.IRRX not 0. Failed also: ISOLVE is not 1, " Fully filled tank
// exists, ISOLVE=1 is expected! ".
[[nodiscard]] Status SOLVE_R(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR,
                             View<c32, 3> PHID, ThreadState &thread, int (&ITER)[2]);
