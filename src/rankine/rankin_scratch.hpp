// The period-independent influence matrices on scratch files.
#pragma once

#include "base/record_file.hpp"
#include "state/state.hpp"

// As RANKIN, for a run whose matrices are not held in memory: opens the two unnamed scratch files and writes,
// for each panel A in order, per class and level the records of column (1..A-1) and row (1..A) of the dipole
// influence, with ISCATT=1 of the source influence, with ISOR=1 of its normal derivative and its gradient
// (three components a record), then one record of the pair codes (1..A). `right_hand_sides` gets
// RHSRAN(NEQN,NSYMD), one record a level, unless IRAD=-1. The values are those of RANKIN. Failed: as RANKIN,
// or the files cannot be opened or written.
[[nodiscard]] Status rankin_on_scratch(const Options &opt, const Mesh &mesh, const Dipoles &dipoles,
                                       const Symmetry &sym, RecordFile &rows, RecordFile &right_hand_sides);
