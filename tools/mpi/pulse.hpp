// Signs of life between the processes of a run, and what one that fails has to tell.
#pragma once

#include "state/messages.hpp"

#include <atomic>
#include <chrono>
#include <mpi.h>
#include <thread>
#include <vector>

// Where a process runs.
struct Place {
    char text[248] = {}; // for messages
    int pid = 0;         // process number on its computer
    int computer = 0;    // number of the computer
};

// Process 0 and each other one send each other a sign twice a second from a thread of their own. Whoever
// misses the other longer than `patience` ends the run: process 0 by the stop routine, with a message. It
// sees the death of a process on its own computer at once.
class Pulse {
  public:
    // `comm` is used by nothing else.
    Pulse(MPI_Comm comm, double patience);
    // With the places of all processes, at process 0.
    void start(std::vector<Place> places);
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
    void look_for_the_dead();
    void look_for_the_silent(Clock::time_point now);
    bool leads() const { return rank_ == 0; }

    MPI_Comm comm_;
    int rank_ = 0, size_ = 1;
    std::chrono::duration<double> patience_;
    std::vector<Place> places_;
    std::vector<Clock::time_point> heard_; // when, of each process
    std::atomic<bool> end_wanted_{false};
    std::atomic<bool> ended_{false};
    int farewells_ = 0; // of other processes, which send no more signs
    std::thread thread_;
};
