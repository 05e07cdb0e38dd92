// The finished periods of a run beside its result, so that a run which was ended goes on where it stood.
#pragma once

#include "results/period_records.hpp"
#include "state/state.hpp"

#include <functional>
#include <string>

// Files.checkpoint of a run with CHECKP=1, else nothing: every call is then without effect. Records: the
// hashes of the input; for each period, in any order, its head with a hash of its records, and these as in
// the scratch file.
class Checkpoint {
  public:
    // Gets a period of an earlier run with the same input.
    using Found = std::function<Status(const PeriodHead &, const PeriodRecords &)>;
    // Opens the file and hands over the periods in it; a last one that is not whole is cut off. A file of
    // other input is emptied, and a message tells what differs. One that cannot be used is told and done
    // without. Failed: `found` has.
    [[nodiscard]] Status start(const RunState &run, const Found &found);
    // Adds a period. When the disk refuses, that is told, the file goes, and the run does without.
    void add(const PeriodHead &head, const PeriodRecords &records);
    // The result is complete.
    void remove();

  private:
    bool is_of_this_input(const RunState &run);
    [[nodiscard]] Status read_periods(const RunState &run, const Found &found, std::int64_t &end);
    void give_up();
    RecordFile file_{9};
    std::string name_;
};
