// What one thread of the period loop owns: the solution arrays of its period and the matrices in memory.
#pragma once

#include "green/gstate.hpp"
#include "run/state.hpp"

struct ScratchStore;

struct ThreadState {
    Array<c32, 2> PHIR;  // right-hand sides, then radiation potentials (NEQN,NSYMD)
    Array<c32, 3> PHID;  // right-hand sides, then diffraction potentials (NEQN,NBETAM,NSYMR)
    Array<c32, 3> SRCD;  // minus the normal velocity of the incident wave, then sources (NEQN,NBETAM,NSYMR)
    Array<c32, 3> PHI0;  // incident wave on the panels (NEQN,NBETAM,NSYMR)
    Array<c32, 3> ACORE; // dipole influence of the period (NEQN,NEQN,NSYMR)
    Array<c32, 3> ECORE; // normal velocity of sources, ISOR=1 (NEQN,NEQN,NSYMR)
    Array<c32, 3> VCORE; // their velocity, axis and class in the third index, 3 (s-1) + axis (NEQN,NEQN,3*NSYMR)
    Array<c32, 2> ALU;   // factors of a class (NEQN,NEQN), or of its diagonal blocks (NBLKSZ,NEQN), in memory
    // The matrix, packed rows or block that is in memory while the rest is on scratch (NCORE,NCORE).
    Array<c32, 2> AMAT;
    ScratchStore *scratch = nullptr; // files of the run when the matrices are not in memory; the driver owns them
    Array<c32, 2> SRCR;  // radiation right-hand sides, then sources, ISOR=1 (NEQN,NSYMD)
    Array<c32, 3> VELR;  // fluid velocities of the radiation sources, ISOR=1 (NEQN,3,NSYMD)
    Array<c32, 4> VELD;  // those of the diffraction sources, without the incident wave (NEQN,3,NBETAM,NSYMR)
    GSTATE gstate;       // depth state of the period
};

// The solution arrays and, without INCORE, AMAT, for the life of the thread. Failed: " RAM too small for
// number of panels ", " RAM too small.  Reduce MAXSCR ".
[[nodiscard]] Status allocate_solution(const RunState &run, ThreadState &thread);
// The velocities of a period (ISOR=1) and, with INCORE, its matrices. Failed: " RAM too small.or try to set
// ISOR=0 " or " RAM too small ".
[[nodiscard]] Status ALLOCATE_WA(const RunState &run, ThreadState &thread);
void DEALLOCATE_WA(ThreadState &thread);
