// The hand-over file.
#pragma once

#include "assembly/thread_state.hpp"
#include "base/record_file.hpp"
#include "run/state.hpp"

// Writes the potentials of one period to the scratch file: PHIR if IRAD >= 0, PHID if IDIFF >= 0. The periods stand
// there in order, without any index. Failed: the disk has no room; the message is out.
[[nodiscard]] Status PERWRT(const Options &opt, const ThreadState &thread, RecordFile &RESSCR);

// Makes the hand-over file FILNAM(3) from the run state, the text echo and the scratch file of the periods. The file
// appears under its name only when it is complete. Failed: it cannot be written; the message is out.
[[nodiscard]] Status RESWRT(RunState &run, RecordFile &RESSCR);
