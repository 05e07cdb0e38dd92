// The control file of a run.
#pragma once

#include "input/typed.hpp"
#include "state/state.hpp"

// Reads FILNAM(2): the problems, periods and headings. What the configuration file has set (KFLAG false) is
// not expected in it. Makes MODE for the modes of one body, PER, WVN0, WVNH, BETA, SINBET and COSBET; depth,
// place and PER as typed go to `typed`.
struct ControlFile {
    Files &files; // name and title
    Options &opt;
    Bodies &bodies; // NEWMDS is read, MODE is made
    Periods &periods;
    TypedInput &typed;
};
[[nodiscard]] Status POTRD(const ControlFile &pot);

// False when memory for the modes of a run, that is for their matrix CHYD, is refused; nothing is made.
[[nodiscard]] bool modes_fit(std::int64_t NMODES);

// With all modes switched on, a problem that is wanted for the modes of MODE (index 0) is wanted whole (1).
void settle_problems(View<const int, 1> MODE, Options &opt);
