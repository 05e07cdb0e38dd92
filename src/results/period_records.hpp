// A finished period on its way from the thread that solved it: what the report tells of it, and its records.
#pragma once

#include "assembly/thread_state.hpp"
#include "base/record_file.hpp"

#include <cstdint>
#include <vector>

// Iteration counts of a period, radiation and diffraction; -1 after a direct solution.
struct PeriodCounts {
    std::int32_t potentials[2] = {0, 0};
    std::int32_t sources[2] = {0, 0};
};

struct PeriodHead {
    std::int32_t period = 0; // from 1
    std::int32_t thread = 0; // that solved it, from 0
    f32 WVNH = 0;            // wave number at the depth of the run
    PeriodCounts counts;
    char time[12] = {}; // of day, when it was finished: hh:mm:ss
};

// The records of a period in the order of the scratch file: the potentials of both problems, then the sources
// and velocities; with IWADD=1 its block. They show the arrays of the thread.
using PeriodRecords = std::vector<Bytes>;
[[nodiscard]] PeriodRecords period_records(const Options &opt, const ThreadState &thread);
// Writes the records of a period to the scratch file. Failed: the disk has no room; the message is out.
[[nodiscard]] Status PERWRT(const PeriodRecords &records, RecordFile &RESSCR);
