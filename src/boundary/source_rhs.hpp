// What stands between the solution for the potentials and that for the sources.
#pragma once

#include "assembly/thread_state.hpp"
#include "assembly/wave_row.hpp"

// Clears the potentials PHIR (IRAD >= 0) and PHID (IDIFF >= 0) on the interior free-surface panels, IFSP=1.
void ZEROFS(const RunState &run, ThreadState &thread);

// A fully filled tank: the potentials of rigid motions, real, in the class that is even in both planes become
// those relative to panel IRRX. The other classes have no constant to choose.
void shift_to_reference(const RunState &run, ThreadState &thread);

// Turns the radiation potentials RS (NEQN,NSYMD) into the right-hand sides of the source equations, the
// normal velocity on each panel, and completes those of diffraction in thread.SRCD, which holds minus the
// normal velocity of the incident wave; thread.PHID and PHI0 are read. K is the deep-water wave number of the
// period, 0 at a limit frequency.
// - Hull: the normal velocity of the mode; hull without draught as well.
// - Interior panels in a strip: -K times the potential of the waterline panel at its head, of the scattered
// wave in
//   diffraction. Interior panels in no strip keep their potential and their SRCD.
// - Panels of a lid: K (1 - i e)^2 times the potential, in diffraction of the total wave, less K times the
// incident one.
// - Dipole panels: the normal velocity less the potential times what the plate lets through; IDIP=3 has no
// velocity. A
//   porous plate has none at infinite frequency.
void SRCRHS(const RunState &run, const PeriodWave &wave, View<c32, 2> RS, ThreadState &thread);
