#include "run/limits.hpp"

#include "run/messages.hpp"

Status within_limits(const RunState &run) {
    const Options &opt = run.opt;
    Status status = Status::ok;
    const auto refuse = [&](bool asked, const char *text, int value = 0) {
        if (asked)
            status = MSGOUT(text, value);
    };
    refuse(opt.IRRX != 0, "Fully filled tanks are not supported by this version");
    refuse(run.dipoles.IDIPOL, "Dipole panels are not supported by this version");
    return status;
}
