#include "input/pot.hpp"

#include "base/text.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <limits>

namespace {

// Places of KFLAG.
enum Flag { F_ISOR = 3, F_IRR = 4, F_XBODY = 6, F_IQUAD = 7, F_ILOG = 8, F_IDIAG = 9, F_I2ND = 13 };

Status read_fault(const FreeReader &in, const char *what) {
    return MSGOUT_with(std::string("Error reading POT file, ") + what, 0, in.fault());
}

// Two settings of one item show as a read that runs on over lines, or as numbers that are left over.
void warn_of_line(const FreeReader &in, const char *items) {
    if (!in.spread() && !in.number_follows())
        return;
    message(in.spread() ? "WARNING: a read of the POT file takes values of more than one line"
                        : "WARNING: a line of the POT file holds more numbers than are read");
    message_detail(in.place() + ": " + items + (in.spread() ? "" : "; left over: \"" + in.rest() + "\"") +
                   "; what config.vrd sets must not stand in the POT file");
}

// Reads a switch, unless the configuration file gave it, and tests it for 0 and 1.
Status read_switch(FreeReader &in, bool in_pot, const std::string &name, int &value) {
    if (in_pot && !in.read(value))
        return read_fault(in, ("parameter " + name).c_str());
    if (value != 0 && value != 1)
        return MSGOUT("Value of " + name + " is illegal in " + (in_pot ? "POT" : "CONFIG") +
                          " file: " + name + "=",
                      value);
    return Status::ok;
}

// I2ND, ISOR and IRR.
Status read_switches(FreeReader &in, Options &opt) {
    if (failed(read_switch(in, opt.KFLAG[F_I2ND], "I2ND", opt.I2ND)) ||
        failed(read_switch(in, opt.KFLAG[F_ISOR], "ISOR", opt.ISOR)))
        return Status::failed;
    if (opt.I2ND == 1 && opt.ISOR == 0)
        return MSGOUT("Error: I2ND = 1 requires ISOR = 1");
    if (opt.KFLAG[F_IRR] && !in.read(opt.IRR))
        return read_fault(in, "parameter IRR:");
    opt.IRRX = 0;
    if (opt.IRR > 10) {
        opt.IRRX = opt.IRR - 10; // a fully filled tank: the number of its reference panel
        opt.IRR = 0;
    }
    if (opt.IRR < 0 || opt.IRR > 4) {
        (void)MSGOUT("Value of IRR is illegal:");
        return MSGOUT("                               IRR =:", opt.IRR);
    }
    return Status::ok;
}

// Depth, body position and the integration options.
Status read_position(FreeReader &in, const ControlFile &pot) {
    Options &opt = pot.opt;
    Bodies &bodies = pot.bodies;
    f32 values[5] = {};
    if (!in.read_array(values, opt.KFLAG[F_XBODY] ? 5 : 1))
        return read_fault(in, "HBOT,XBODY,,... line");
    warn_of_line(in, opt.KFLAG[F_XBODY] ? "HBOT, XBODY(1..4)" : "HBOT (XBODY stands in config.vrd)");
    pot.typed.HBOT = values[0];
    if (opt.KFLAG[F_XBODY])
        std::copy(values + 1, values + 5, pot.typed.XBODY.data());
    const std::int64_t NMODES = static_cast<std::int64_t>(bodies.NEWMDS(1)) + 6;
    if (!modes_fit(NMODES) || !bodies.MODE.alloc(NMODES))
        return MSGOUT("Insufficient memory to allocate .pot file arrays");
    int options[3] = {};
    int missing = 0;
    for (const int flag : {F_IQUAD, F_ILOG, F_IDIAG})
        missing += opt.KFLAG[static_cast<std::size_t>(flag)] ? 1 : 0;
    if (missing > 0 && !in.read_array(options, missing))
        return read_fault(in, "IQUAD,ILOG,IDIAG line");
    if (missing > 0)
        warn_of_line(in, missing == 3 ? "IQUAD, ILOG, IDIAG"
                                      : "those of IQUAD, ILOG, IDIAG that config.vrd leaves out");
    const int *next = options;
    if (opt.KFLAG[F_IQUAD])
        opt.IQUAD = *next++;
    if (opt.KFLAG[F_ILOG])
        opt.ILOG = *next++;
    if (opt.KFLAG[F_IDIAG])
        opt.IDIAG = *next++;
    if (opt.IRR > 0 && opt.ILOG == 0)
        return MSGOUT("Set ILOG = 1, when IRR > 0");
    return Status::ok;
}

// The problems and modes wanted.
Status read_problems(FreeReader &in, Options &opt, Array<int, 1> &MODE) {
    if (!in.read(opt.IRAD, opt.IDIFF))
        return read_fault(in, "IRAD,IDIFF line");
    if (opt.IRAD < -1 || opt.IRAD > 1)
        return MSGOUT_with("Value of IRAD index is illegal in POT file", 0,
                           in.place() + ": found " + std::to_string(opt.IRAD));
    if (opt.IDIFF < -1 || opt.IDIFF > 1)
        return MSGOUT_with("Value of IDIFF index is illegal in POT file", 0,
                           in.place() + ": found " + std::to_string(opt.IDIFF));
    if (opt.IWADD == 1 && opt.IDIFF == 0)
        return MSGOUT("IDIFF must be -1 or 1 when IWADD=1");
    if (!in.read_array(MODE.data(), 6))
        return read_fault(in, "MODE indices line");
    if (opt.IRAD == 1 || (opt.IDIFF == 1 && opt.IRAD == -1))
        std::fill_n(MODE.data(), 6, 1);
    std::fill(MODE.data() + 6, MODE.data() + MODE.size(), 1);
    settle_problems(MODE, opt);
    return Status::ok;
}

// A count and that many values; `first`, `second` and `values` get that many entries.
struct Series {
    const char *count_name;
    const char *values_name;
};
Status read_series(FreeReader &in, const Series &names, int &count, Array<f32, 1> &values,
                   Array<f32, 1> &first, Array<f32, 1> &second) {
    if (!in.read(count))
        return read_fault(in, names.count_name);
    const int n = std::max(count, 0); // a negative count is refused by the cross-checks
    if (!values.alloc(n) || !first.alloc(n) || !second.alloc(n))
        return MSGOUT("Insufficient memory to allocate .pot file arrays");
    if (n > 0 && !in.read_array(values.data(), n))
        return read_fault(in, names.values_name);
    return Status::ok;
}

} // namespace

bool modes_fit(std::int64_t NMODES) {
    Array<f32, 2> CHYD;
    return NMODES <= std::numeric_limits<int>::max() && CHYD.alloc(NMODES, NMODES);
}

void settle_problems(View<const int, 1> MODE, Options &opt) {
    const int *first = MODE.data();
    if (std::any_of(first, first + MODE.size(), [](int mode) { return mode != 1; }))
        return;
    if (opt.IRAD == 0)
        opt.IRAD = 1;
    if (opt.IDIFF == 0)
        opt.IDIFF = 1;
}

Status POTRD(const ControlFile &pot) {
    FreeReader in;
    if (!in.open(pot.files.FILNAM(2)))
        return MSGOUT_with("Error opening POT file ", 0, in.fault());
    if (!in.line(pot.files.HEADER(2), 72))
        return read_fault(in, "header line");
    if (failed(read_switches(in, pot.opt)) || failed(read_position(in, pot)) ||
        failed(read_problems(in, pot.opt, pot.bodies.MODE)))
        return Status::failed;
    Periods &per = pot.periods;
    const Series periods = {"parameter NPER", "array of periods PER"};
    if (failed(read_series(in, periods, per.NPER, pot.typed.PER, per.WVN0, per.WVNH)))
        return Status::failed;
    if (!per.PER.alloc(std::max(per.NPER, 0)))
        return MSGOUT("Insufficient memory to allocate .pot file arrays");
    const Series headings = {"parameter NBETA", "array of heading angles BETA"};
    return read_series(in, headings, per.NBETA, per.BETA, per.SINBET, per.COSBET);
}
