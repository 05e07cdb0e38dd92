#include "run/limits.hpp"

#include "run/messages.hpp"

Status within_limits(const RunState &run) {
    const Options &opt = run.opt;
    Status status = Status::ok;
    const auto refuse = [&](bool asked, const char *text, int value = 0) {
        if (asked)
            status = MSGOUT(text, value);
    };
    refuse(opt.IWADD == 1, "Runs for wave drift damping are not supported by this version: set IWADD=0");
    return status;
}
