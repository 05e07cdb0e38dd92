#include "run/limits.hpp"

#include "run/messages.hpp"

Status within_limits(const RunState &run) {
    const Options &opt = run.opt;
    Status status = Status::ok;
    const auto refuse = [&](bool asked, const char *text, int value = 0) {
        if (asked)
            status = MSGOUT(text, value);
    };
    refuse(opt.ISOR == 1, "Sources and velocities are not supported by this version: set ISOR=0");
    refuse(opt.IRR != 0 || opt.IRRX != 0,
           "Irregular-frequency treatment and tanks are not supported by this version: set IRR=0");
    refuse(run.dipoles.IDIPOL, "Dipole panels are not supported by this version");
    refuse(opt.IMDRUN == 1, "Extra modes are not supported by this version beyond the PRE file: set NEWMDS=0");
    refuse(opt.IWADD == 1, "Runs for wave drift damping are not supported by this version: set IWADD=0");
    refuse(run.bodies.IBDT3 == 1, "Lid bodies (BDTYP=3) are not supported by this version");
    return status;
}
