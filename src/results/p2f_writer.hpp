// The hand-over file.
#pragma once

#include "assembly/thread_state.hpp"
#include "results/period_records.hpp"

// The block of one period with IWADD=1: WDDWRT writes it to the hand-over file, RWDPOT reads it back from the
// scratch file. Failed: the disk has no room, or the records are not there; the message is out.
[[nodiscard]] Status WDDWRT(const Options &opt, ThreadState &thread, RecordFile &file);
[[nodiscard]] Status RWDPOT(const Options &opt, RecordFile &file, ThreadState &thread);

// Makes the hand-over file FILNAM(3) from the run state, the text echo and the scratch file, in which the
// periods stand at `places` (NPER), in any order.
// The file appears under its name only when it is complete. Failed: it cannot be written; the message is out.
[[nodiscard]] Status RESWRT(RunState &run, RecordFile &RESSCR, const std::vector<std::int64_t> &places);
