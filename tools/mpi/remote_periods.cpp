#include "remote_periods.hpp"

#include "state/messages.hpp"
#include "transfer.hpp"

#include <algorithm>
#include <chrono>
#include <new>
#include <omp.h>

namespace {

// What a thread sends first: of a solved period, or with head.period = 0 its first question. The records,
// what the process has to tell and the answer, a period, have the tag of the thread.
struct Arrival {
    PeriodHead head;
    std::int32_t thread = 0;
    std::uint64_t text = 0;        // length of what there is to tell [bytes]
    std::uint64_t records = 0;     // of the period
    std::uint64_t length[64] = {}; // of each record [bytes]
};
constexpr int ARRIVAL = 1, FIRST_TAG = 2;
constexpr std::chrono::microseconds SHORT(100), LONG(5000); // between two looks for arrivals

void send_arrival(Arrival &arrival, const PeriodRecords &records, MPI_Comm comm) {
    const Image text = packed(take_report());
    const int tag = FIRST_TAG + arrival.thread;
    arrival.text = text.size();
    arrival.records = records.size();
    for (std::size_t r = 0; r < records.size(); ++r)
        arrival.length[r] = records[r].size;
    send_bytes(&arrival, sizeof arrival, 0, ARRIVAL, comm);
    send_bytes(text.data(), text.size(), 0, tag, comm);
    for (const Bytes &record : records)
        send_bytes(record.data, record.size, 0, tag, comm);
}

} // namespace

int RemotePeriods::next() {
    const int thread = omp_get_thread_num();
    if (asked_[static_cast<std::size_t>(thread)] == 0) {
        Arrival question;
        question.thread = thread;
        send_arrival(question, {}, comm_);
    }
    std::int32_t period = 0;
    receive_bytes(&period, sizeof period, 0, FIRST_TAG + thread, comm_);
    return period;
}

Status RemotePeriods::finished(const PeriodHead &head, const PeriodRecords &records) {
    Arrival arrival;
    if (records.size() > std::size(arrival.length))
        return MSGOUT("Error in the exchange between the processes of the run");
    arrival.head = head;
    arrival.thread = omp_get_thread_num();
    send_arrival(arrival, records, comm_);
    asked_[static_cast<std::size_t>(arrival.thread)] = 1;
    return Status::ok;
}

PeriodService::PeriodService(MPI_Comm comm, PeriodBook &book, int clients)
    : comm_(comm), book_(book), clients_(clients), thread_([this] {
          try {
              serve();
          } catch (const std::bad_alloc &) {
              (void)MSGOUT(" RAM too small ");
              STOPRN(0);
          }
      }) {}

void PeriodService::serve() {
    for (std::chrono::microseconds pause = SHORT; clients_ > 0;) {
        int there = 0;
        MPI_Status status;
        MPI_Iprobe(MPI_ANY_SOURCE, ARRIVAL, comm_, &there, &status);
        if (there != 0) {
            take(status.MPI_SOURCE);
            pause = SHORT;
        } else {
            std::this_thread::sleep_for(pause);
            pause = std::min(2 * pause, LONG);
        }
    }
}

void PeriodService::take(int source) {
    Arrival arrival;
    receive_bytes(&arrival, sizeof arrival, source, ARRIVAL, comm_);
    const int tag = FIRST_TAG + arrival.thread;
    Image text(arrival.text);
    receive_bytes(text.data(), text.size(), source, tag, comm_);
    add_report(unpacked(std::move(text)));
    PeriodRecords records;
    values_.resize(arrival.records);
    for (std::size_t r = 0; r < arrival.records; ++r) {
        values_[r].resize(arrival.length[r]);
        receive_bytes(values_[r].data(), values_[r].size(), source, tag, comm_);
        records.push_back({values_[r].data(), values_[r].size()});
    }
    if (arrival.head.period > 0 && failed(book_.finished(arrival.head, records)))
        STOPRN(0);
    const std::int32_t next = book_.next();
    if (next == 0)
        --clients_;
    send_bytes(&next, sizeof next, source, tag, comm_);
}
