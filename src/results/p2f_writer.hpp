// The hand-over file.
#pragma once

#include "assembly/thread_state.hpp"
#include "base/record_file.hpp"
#include "state/state.hpp"

// What a call of PERWRT writes: the potentials PHIR if IRAD >= 0 and PHID if IDIFF >= 0; or the
// sources SRCR and velocities VELR if IRAD >= 0, SRCD and VELD if IDIFF >= 0.
enum class PeriodPart { potentials = 0, sources = 1 };
// Writes a part of one period to the scratch file. The periods stand there in order, without any index, the
// potentials of each before its sources. Failed: the disk has no room; the message is out.
[[nodiscard]] Status PERWRT(const Options &opt, const ThreadState &thread, RecordFile &RESSCR,
                            PeriodPart part = PeriodPart::potentials);

// The block of one period with IWADD=1: WDDWRT writes it, to the scratch file or to the hand-over file,
// RWDPOT reads it back. Failed: the disk has no room, or the records are not there; the message is out.
[[nodiscard]] Status WDDWRT(const Options &opt, ThreadState &thread, RecordFile &file);
[[nodiscard]] Status RWDPOT(const Options &opt, RecordFile &file, ThreadState &thread);

// Makes the hand-over file FILNAM(3) from the run state, the text echo and the scratch file of the periods.
// The file appears under its name only when it is complete. Failed: it cannot be written; the message is out.
[[nodiscard]] Status RESWRT(RunState &run, RecordFile &RESSCR);
