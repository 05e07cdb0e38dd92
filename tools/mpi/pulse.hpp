// Signs of life between the processes of a run, and what one that fails has to tell.
#pragma once

#include "state/messages.hpp"

#include <atomic>
#include <chrono>
#include <mpi.h>
#include <thread>
#include <vector>

// Process 0 and each other one send each other a sign twice a second from a thread of their own. Whoever
// misses the other longer than `patience` ends the run: process 0 by the stop routine, with a message.
class Pulse {
  public:
    // `comm` is used by nothing else. `places` tells of each process where it runs (process 0).
    Pulse(MPI_Comm comm, double patience);
    void start(std::vector<std::string> places);
    // Process 0: the run has ended well. Returns when all others know.
    void end_run();
    // Any other: returns when process 0 has ended the run.
    void wait_for_end();
    // Any other: gives the report of a fault to process 0 and waits to be ended.
    [[noreturn]] void report_fault(const ListReport &report);

  private:
    using Clock = std::chrono::steady_clock;
    void beat();
    void send_signs();
    void receive();
    void take(const MPI_Status &status);
    void look_for_the_dead(Clock::time_point now);
    bool leads() const { return rank_ == 0; }

    MPI_Comm comm_;
    int rank_ = 0, size_ = 1;
    std::chrono::duration<double> patience_;
    std::vector<std::string> places_;
    std::vector<Clock::time_point> heard_; // when, of each process
    std::atomic<bool> end_wanted_{false};
    std::atomic<bool> ended_{false};
    int farewells_ = 0; // of other processes, which send no more signs
    std::thread thread_;
};
