// The progress line of a run that is started on a terminal.
#pragma once

#include <chrono>
#include <string>

// One line on standard error: phase, step k of n, time left. Nothing is written when standard error
// is no terminal.
class Progress {
  public:
    Progress(std::string phase, int count);
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;
    // One more step is done. Calls of several threads must be serialised by the caller.
    void step();

  private:
    void show() const;
    std::string phase_;
    int count_;
    int done_ = 0;
    bool visible_;
    std::chrono::steady_clock::time_point start_;
};
