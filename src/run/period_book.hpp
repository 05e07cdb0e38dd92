// Which periods are to be solved, and where their solutions go.
#pragma once

#include "base/record_file.hpp"
#include "results/checkpoint.hpp"
#include "results/period_records.hpp"
#include "run/progress.hpp"
#include "state/state.hpp"

#include <map>
#include <mutex>
#include <vector>

// What a thread of the period loop deals with: the book of its own process, or that of another.
class PeriodExchange {
  public:
    virtual ~PeriodExchange() = default;
    // A period to be solved, each one once; 0: no more.
    virtual int next() = 0;
    // Gives away a solved period; the records may change afterwards. Failed: the message is out.
    [[nodiscard]] virtual Status finished(const PeriodHead &head, const PeriodRecords &records) = 0;
};

// The book of a run, in the process that reports and writes. Any thread may call it.
class PeriodBook final : public PeriodExchange {
  public:
    // `RESSCR` is the open, empty scratch file.
    PeriodBook(RunState &run, RecordFile &RESSCR);
    // Takes over the periods of the checkpoint and opens it. Failed: the message is out.
    [[nodiscard]] Status start();
    // In order: the threads at work are never far apart.
    int next() override;
    // Writes it to the scratch file and the checkpoint and, when its turn comes, its row to the list file and
    // the text echo. Sets WVNH.
    [[nodiscard]] Status finished(const PeriodHead &head, const PeriodRecords &records) override;
    // Where the periods stand in the scratch file (NPER).
    const std::vector<std::int64_t> &places() const { return places_; }
    // The result is complete: the checkpoint goes.
    void close() { checkpoint_.remove(); }

  private:
    Status keep(const PeriodHead &head, const PeriodRecords &records);
    RunState &run_;
    RecordFile &RESSCR_;
    Checkpoint checkpoint_;
    Progress progress_;
    std::mutex lock_;
    std::vector<std::int64_t> places_;        // -1: not solved yet
    std::map<int, PeriodHead> without_a_row_; // periods whose row waits for those before
    int given_ = 0;                           // last period that was looked at for handing out
    int rows_ = 0;                            // periods whose row is written
};
