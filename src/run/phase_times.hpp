// Where the time of a run goes.
#pragma once

#include <chrono>

// Seconds by the clock. What the periods do side by side is a mean over the threads that do it.
struct PhaseTimes {
    double input = 0;    // up to the Rankine matrices
    double rankine = 0;  // these, and the steady flows of a second-order run
    double assembly = 0; // incident wave and rows of the periods
    double solve = 0;    // solutions, sources and velocities of the periods
    double waiting = 0;  // of threads, and of other processes, for the last periods
    double output = 0;   // hand-over file
};

class Stopwatch {
  public:
    // Seconds since the last call, or since the watch was made.
    double lap() {
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double> spent = now - last_;
        last_ = now;
        return spent.count();
    }

  private:
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

// One line on standard error, on a terminal only: list files of equal runs stay equal.
void show_times(const PhaseTimes &times);
