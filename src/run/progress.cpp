#include "run/progress.hpp"

#include <cstdio>
#include <unistd.h>
#include <utility>

Progress::Progress(std::string phase, int count)
    : phase_(std::move(phase)), count_(count), visible_(isatty(STDERR_FILENO) == 1),
      start_(std::chrono::steady_clock::now()) {
    show();
}

Progress::~Progress() {
    if (visible_)
        std::fputs("\r\033[K", stderr);
}

void Progress::step() {
    ++done_;
    show();
}

void Progress::show() const {
    if (!visible_)
        return;
    std::fprintf(stderr, "\r\033[Kvorda: %s %d of %d", phase_.c_str(), done_, count_);
    if (done_ > 0) {
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start_;
        std::fprintf(stderr, ", %.0f s left", spent.count() / done_ * (count_ - done_));
    }
    std::fflush(stderr);
}
