#include "base/text.hpp"
#include "input/config.hpp"
#include "input/gdf.hpp"
#include "input/input.hpp"
#include "input/names.hpp"
#include "input/pot.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr f32 FOUR_PI2 = 39.47842f;
constexpr f32 LIMIT_PERIOD = 1.0e-6f; // a value not above this stands for a limit frequency

bool make_head_arrays(Files &files, Bodies &bodies, TypedInput &typed) {
    files.HEADER.resize(5);
    files.FILNAM.resize(5);
    return bodies.NEQNB.alloc(1) && bodies.NWLB.alloc(1) && bodies.NEWMDS.alloc(1) && bodies.ULEN.alloc(1) &&
           typed.XBODY.alloc(4, 1);
}

// Settings that no other file has to be known for.
Status check_configuration(const Options &opt, const std::map<int, int> &NEWMDS) {
    if (opt.IWADD != 0 && opt.IWADD != 1)
        return MSGOUT("Illegal value of IWADD=", opt.IWADD);
    if (opt.CHECKP != 0 && opt.CHECKP != 1)
        return MSGOUT("Illegal value of CHECKP=", opt.CHECKP);
    if (opt.ISCATT != 0 && opt.ISCATT != 1)
        return MSGOUT("Illegal value of ISCATT=", opt.ISCATT);
    const auto of_body_1 = NEWMDS.find(1);
    if (opt.IWADD == 1 && of_body_1 != NEWMDS.end() && of_body_1->second != 0)
        return MSGOUT("Value of NEWMDS is not possible when IWADD=1");
    for (const auto &[body, modes] : NEWMDS) {
        if (modes < 0)
            return MSGOUT("Value of NEWMDS is illegal In CONFIG file: NEWMDS=", modes);
    }
    return Status::ok;
}

// Warns of a number of PER that counts as infinite frequency where another limit, or a wave, may be meant.
void warn_of_limit(int period, const std::string &found) {
    message("WARNING: a period counts as infinite frequency, period ", period);
    message_detail(found + "; give a negative value for zero frequency");
}

// WVN0 and PER [s] of all periods from the numbers as read. All faults are told.
Status wave_numbers(const Options &opt, const Array<f32, 1> &PER, f32 ULEN1, Periods &periods) {
    Status status = Status::ok;
    for (int i = 1; i <= periods.NPER; ++i) {
        f32 p = PER(i);
        f32 &k = periods.WVN0(i);
        periods.PER(i) = p;
        if (p <= LIMIT_PERIOD) {
            k = p;
            // Of periods, 0 is the limit of high frequencies; of frequencies and wave numbers it looks like
            // that of low ones.
            if (limit_of(p) == 2 && (p < 0 || opt.IPERIO > 1))
                warn_of_limit(i, "the value" + sci(11, 3, p) + " of PER");
            if (opt.IWADD == 1)
                status = MSGOUT("Do not use IWADD=1 option for zero or infinite periods");
            continue;
        }
        if (opt.IPERIO < 3) {
            if (opt.IPERIO == 2)
                p = PI2 / p;
            k = FOUR_PI2 * ULEN1 / (opt.GRAV * (p * p));
            periods.PER(i) = p;
        } else {
            if (opt.IPERIO == 4 && opt.HBOT > 0)
                p *= std::tanh(opt.HBOT * p);
            k = p;
            periods.PER(i) = PI2 / std::sqrt(opt.RULEN * opt.GRAV * p);
        }
        // Beyond the range of single precision there is no wave to compute.
        if (!(k > 0) || !std::isfinite(k) || !std::isfinite(periods.PER(i)))
            status = MSGOUT_with("Error reading POT file, array of periods PER", 0,
                                 "the wave number of period " + std::to_string(i) + " is out of range");
        else if (limit_of(k) != 0)
            warn_of_limit(i, sci(11, 3, periods.PER(i)) + " s, wave number times ULEN" + sci(11, 3, k) +
                                 ", not above 1.E-6");
    }
    return status;
}

Status check_solver(Options &opt) {
    Status status = Status::ok;
    if (opt.ISOLVE < -1)
        status = MSGOUT("Value of ISOLVE is illegal In CONFIG file: ISOLVE=", opt.ISOLVE);
    opt.ISOLVN = opt.ISOLVE == -1 ? 1 : 0;
    if (opt.ISOLVE == -1)
        opt.ISOLVE = 0;
    if (opt.MAXSCR < 2)
        status = MSGOUT("Value of MAXSCR is illegal In CONFIG file: MAXSCR=", opt.MAXSCR);
    return status;
}

} // namespace

Status GETIP1(RunState &run) {
    constexpr const char *NO_MEMORY = "Insufficient memory to allocate arrays in GETIP1";
    Options &opt = run.opt;
    Periods &periods = run.periods;
    TypedInput typed;
    if (!make_head_arrays(run.files, run.bodies, typed))
        return MSGOUT(NO_MEMORY);
    // The names come first: a result of an earlier run must not survive a fault of the configuration.
    const Status configured = RDCONF(run.files.config, opt, typed);
    if (failed(RDNAMS(run.files, opt)) || failed(configured) ||
        failed(check_configuration(opt, typed.NEWMDS)))
        return Status::failed;
    if (typed.NEWMDS.count(1) > 0)
        run.bodies.NEWMDS(1) = typed.NEWMDS[1];
    if (opt.IWADD == 1 && failed(RDFDFN(run.files)))
        return Status::failed;
    if (failed(POTRD({run.files, opt, run.bodies, periods, typed})))
        return Status::failed;
    periods.NBETAM = std::max(periods.NBETA, 1);
    for (int i = 1; i <= periods.NBETA; ++i) {
        periods.SINBET(i) = std::sin(periods.BETA(i) * DEGREE);
        periods.COSBET(i) = std::cos(periods.BETA(i) * DEGREE);
    }
    if (failed(GDFRD(typed, run)))
        return Status::failed;
    for (const auto &[body, modes] : typed.NEWMDS) {
        if (body > std::max(run.bodies.NBODY, 1) && modes != 0)
            message("WARNING: NEWMDS of a body that does not exist, N=", body);
    }
    opt.HBOT = (typed.HBOT > 0 ? typed.HBOT : -1.0f) * opt.RULEN;
    const Status waves = wave_numbers(opt, typed.PER, run.bodies.ULEN(1), periods);
    const Status solver = check_solver(opt);
    const int nwl = std::max(run.waterline.NWL, 1);
    const int nbody = std::max(run.bodies.NBODY, 1);
    if (!run.waterline.IWLP.resize_last(nwl) || !run.waterline.IWLE.resize_last(nwl) ||
        !run.bodies.NPANS.alloc(nbody) || !run.bodies.VOL.alloc(3, nbody) || !run.bodies.XCB.alloc(3, nbody))
        return MSGOUT(NO_MEMORY);
    return failed(waves) || failed(solver) ? Status::failed : Status::ok;
}
