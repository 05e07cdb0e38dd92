// What one thread of the period loop owns: the solution arrays of its period and the matrices in memory.
#pragma once

#include "green/gstate.hpp"
#include "state/state.hpp"

struct ScratchStore;

// What a period of a run with IWADD=1 has beyond the ordinary arrays.
struct SecondOrder {
    Array<c32, 3> PHID2; // heading derivative of the diffraction potential (NEQN,NBETAM,NSYMR)
    Array<c32, 3> SRCD2; // that of its sources (NEQN,NBETAM,NSYMR)
    Array<c32, 4> VELD2; // that of its velocity (NEQN,3,NBETAM,NSYMR)
    // Right-hand sides, then potentials: derivative by the wave number, terms linear in slow surge,
    // sway and yaw.
    Array<c32, 2> W2R0, W2R1, W2R2, W2R3; // (NEQN,NSYMD)
    Array<c32, 3> W2D0, W2D1, W2D2, W2D3; // (NEQN,NBETAM,NSYMR)
    Array<c32, 3> W2D0B;                  // heading derivative of W2D0 (NEQN,NBETAM,NSYMR)
    // On the free surface: potential by Green's formula, by the sources, its second
    // vertical derivative (NFSP,NSYMD).
    Array<c32, 2> FSR1, FSR2, FSR3;
    // The same with the incident wave; 4 and 5 the heading derivatives of 2 and 3 (NFSP,NBETAM,NSYMR).
    Array<c32, 3> FSD1, FSD2, FSD3, FSD4, FSD5;
};

struct ThreadState {
    Array<c32, 2> PHIR;  // right-hand sides, then radiation potentials (NEQN,NSYMD)
    Array<c32, 3> PHID;  // right-hand sides, then diffraction potentials (NEQN,NBETAM,NSYMR)
    Array<c32, 3> SRCD;  // minus the normal velocity of the incident wave, then sources (NEQN,NBETAM,NSYMR)
    Array<c32, 3> PHI0;  // incident wave on the panels (NEQN,NBETAM,NSYMR)
    Array<c32, 3> ACORE; // dipole influence of the period (NEQN,NEQN,NSYMR)
    Array<c32, 3> ECORE; // normal velocity of sources, ISOR=1 (NEQN,NEQN,NSYMR)
    Array<c32, 3>
        VCORE; // their velocity, axis and class in the third index, 3 (s-1) + axis (NEQN,NEQN,3*NSYMR)
    Array<int, 2> APIV, EPIV; // pivots, when factors have taken the place of ACORE and ECORE (NEQN,NSYMR)
    Array<c32, 2> ALU;        // factors of the diagonal blocks of a class, in memory (NBLKSZ,NEQN)
    // The matrix, packed rows or block that is in memory while the rest is on scratch (NCORE,NCORE).
    Array<c32, 2> AMAT;
    ScratchStore *scratch =
        nullptr; // files of the run when the matrices are not in memory; the driver owns them
    // Radiation right-hand sides, then sources, ISOR=1 (NEQN,NSYMD); with IWADD=1 at least three columns, for
    // the steady flows, of which those behind NSYMD are 0 in a period.
    Array<c32, 2> SRCR;
    Array<c32, 3> VELR; // fluid velocities of the radiation sources, ISOR=1 (NEQN,3,NSYMD)
    // Those of the diffraction sources, without the incident wave but for IWADD=1 (NEQN,3,NBETAM,NSYMR).
    Array<c32, 4> VELD;
    GSTATE gstate;      // depth state of the period
    SecondOrder second; // IWADD=1
};

// The solution arrays, those of IWADD=1 too, and, without INCORE, AMAT, for the life of the thread. Failed: "
// RAM too small for number of panels ", " RAM too small ", " RAM too small.  Reduce MAXSCR ".
[[nodiscard]] Status allocate_solution(const RunState &run, ThreadState &thread);
// The velocities and sources of a period, ISOR=1, zeroed; `flows`: those of the steady flows, which have
// three columns at least. False when memory is refused.
[[nodiscard]] bool allocate_velocities(const RunState &run, ThreadState &thread, bool flows = false);
// The velocities of a period (ISOR=1) and, with INCORE, room for its matrices; `flows`: of the steady flows,
// which have three columns at least. A thread keeps its arrays from period to period, so that their pages are
// asked of the system once; the run and `flows` are the same in all its calls. The matrices hold anything:
// the assembly writes every element. Failed: " RAM too small.or try to set ISOR=0 " or " RAM too small ".
[[nodiscard]] Status ALLOCATE_WA(const RunState &run, ThreadState &thread, bool flows = false);
