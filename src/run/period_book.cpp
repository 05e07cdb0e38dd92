#include "run/period_book.hpp"

#include "base/text.hpp"
#include "state/messages.hpp"

#include <algorithm>

namespace {

// The counts of potentials that are not 0, in their columns; those of the sources stand behind
// them in parentheses.
std::string report_counts(bool sources, const PeriodCounts &counts) {
    const int radiation = counts.potentials[0], diffraction = counts.potentials[1];
    const auto pair = [&](int k) {
        return int_in(3, counts.potentials[k]) + " (" + int_in(2, counts.sources[k]) + ")";
    };
    if (sources && radiation != 0)
        return std::string(5, ' ') + pair(0) + (diffraction != 0 ? " " + pair(1) : "");
    if (sources)
        return std::string(13, ' ') + pair(1);
    if (radiation != 0)
        return " " + int_in(8, radiation) + (diffraction != 0 ? int_in(8, diffraction) : "");
    return std::string(9, ' ') + int_in(8, diffraction);
}

void write_report_row(RunState &run, const PeriodHead &head) {
    const PeriodCounts &counts = head.counts;
    if (counts.potentials[0] == 0 && counts.potentials[1] == 0)
        return;
    const std::string row = int_in(7, head.period) + int_in(7, head.thread) +
                            fixed(10, 4, run.periods.PER(head.period)) + "  " + head.time +
                            report_counts(run.opt.ISOR == 1, counts);
    run.HDRSCR.push_back(row);
    list_line(row);
    const auto last_step = [](const std::int32_t(&n)[2]) { return std::max(n[0], n[1]) >= MAXIT - 1; };
    if (last_step(counts.potentials) || last_step(counts.sources))
        run.HDRSCR.push_back("        No convergence: a solution stopped at the last iteration allowed");
}

} // namespace

PeriodBook::PeriodBook(RunState &run, RecordFile &RESSCR)
    : run_(run), RESSCR_(RESSCR), progress_("period", run.periods.NPER),
      places_(static_cast<std::size_t>(run.periods.NPER), -1) {}

Status PeriodBook::start() {
    const std::lock_guard hold(lock_);
    return checkpoint_.start(
        run_, [this](const PeriodHead &head, const PeriodRecords &records) { return keep(head, records); });
}

int PeriodBook::next() {
    const std::lock_guard hold(lock_);
    while (given_ < run_.periods.NPER)
        if (places_[static_cast<std::size_t>(given_++)] < 0)
            return given_;
    return 0;
}

Status PeriodBook::finished(const PeriodHead &head, const PeriodRecords &records) {
    const std::lock_guard hold(lock_);
    if (failed(keep(head, records)))
        return Status::failed;
    checkpoint_.add(head, records);
    return Status::ok;
}

Status PeriodBook::keep(const PeriodHead &head, const PeriodRecords &records) {
    std::int64_t &place = places_[static_cast<std::size_t>(head.period) - 1];
    if (place >= 0)
        return Status::ok;
    place = RESSCR_.place();
    if (failed(PERWRT(records, RESSCR_)))
        return Status::failed;
    run_.periods.WVNH(head.period) = head.WVNH;
    progress_.step();
    without_a_row_.emplace(head.period, head);
    for (auto row = without_a_row_.begin(); row != without_a_row_.end() && row->first == rows_ + 1;
         row = without_a_row_.erase(row), ++rows_)
        write_report_row(run_, row->second);
    return Status::ok;
}
