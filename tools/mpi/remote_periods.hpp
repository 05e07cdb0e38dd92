// Periods that go out to other processes, and come back solved.
#pragma once

#include "run/period_book.hpp"

#include <atomic>
#include <mpi.h>
#include <thread>

// The book of the run as the period threads of another process see it.
class RemotePeriods final : public PeriodExchange {
  public:
    // For `threads` period threads of this process.
    RemotePeriods(MPI_Comm comm, int threads) : comm_(comm), asked_(static_cast<std::size_t>(threads), 0) {}
    int next() override;
    [[nodiscard]] Status finished(const PeriodHead &head, const PeriodRecords &records) override;

  private:
    MPI_Comm comm_;
    std::vector<char> asked_; // by thread: a period was asked for, the answer is on its way
};

// The other end: serves the threads of all other processes from the book, in a thread of its own.
class PeriodService {
  public:
    // `clients` threads will ask.
    PeriodService(MPI_Comm comm, PeriodBook &book, int clients);
    // When all have been told that there are no more periods.
    void wait_for_end() { thread_.join(); }

  private:
    void serve();
    void take(int source);
    MPI_Comm comm_;
    PeriodBook &book_;
    int clients_;
    std::vector<std::vector<char>> values_; // records of the period that comes in
    std::thread thread_;
};
