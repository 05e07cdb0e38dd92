#include "base/text.hpp"
#include "input/input.hpp"
#include "state/messages.hpp"
#include "state/method.hpp"

#include <cmath>

namespace {

constexpr f32 LARGEST_LENGTH = 1.0e9f; // in ULEN

// Tells faults and remembers that there was one.
struct Faults {
    bool any = false;
    void test(bool bad, const char *text, int value = 0) {
        if (bad) {
            (void)MSGOUT(text, value);
            any = true;
        }
    }
};

bool is_switch(int value) {
    return value == 0 || value == 1;
}

void check_solver(const RunState &run, Faults &faults) {
    const Options &opt = run.opt;
    const Method method = method_of(run);
    const bool direct = method == Method::direct && opt.NCORE < run.mesh.NEQN;
    faults.test(direct, " MAXSCR too small for direct solution:");
    faults.test(direct, "                               MAXSCR=", opt.NCORE);
    faults.test(direct, "                                 NEQN=", run.mesh.NEQN);
    const bool blocks = method == Method::blocks && opt.NCORE < opt.NBLKSZ;
    faults.test(blocks, " MAXSCR too small for block iteration:");
    faults.test(blocks, "                               MAXSCR=", opt.NCORE);
    faults.test(blocks, "                  Dimension of blocks=", opt.NBLKSZ);
}

void check_problem(const RunState &run, Faults &faults) {
    const Options &opt = run.opt;
    const Bodies &bodies = run.bodies;
    for (const int index : {opt.ISX, opt.ISY}) {
        faults.test(index < -1 || index > 1, "Value of a symmetry index is illegal");
        if (index < -1 || index > 1)
            message_detail(run.files.FILNAM(1) + ": ISX=" + std::to_string(opt.ISX) +
                           ", ISY=" + std::to_string(opt.ISY));
    }
    for (const int index : {opt.ISX, opt.ISY})
        faults.test(index == -1 && bodies.NBODY >= 2, "Combination of wall plus NBODY is illegal");
    // The modes of a first pass are not final yet.
    const bool first_pass = opt.IMDRUN < 0;
    std::int64_t sum = first_pass ? 1 : 0;
    for (int i = 1; i <= bodies.NMODES && !first_pass; ++i) {
        faults.test(!is_switch(bodies.MODE(i)), "Value of a mode index is illegal, I=", i);
        sum += bodies.MODE(i);
    }
    faults.test(!is_switch(opt.IQUAD), " Value of IQUAD index is illegal ");
    faults.test(!is_switch(opt.ILOG), " Value of ILOG index is illegal ");
    faults.test(!is_switch(opt.IDIAG), " Value of IDIAG index is illegal ");
    faults.test(opt.IDIFF < -1 || opt.IDIFF > 1, "Value of IDIFF index is illegal");
    faults.test(opt.IRAD == -1 && opt.IDIFF == -1, "Error return: both IRAD=-1 and IDIFF=-1");
    faults.test(opt.IRAD == 0 && sum == 0, "IRAD=0 and all mode indices IMODE(I)=0");
    faults.test(opt.IDIFF == 0 && sum == 0, "Error return: IDIFF=0 and all mode indices IMODE(I)=0");
    faults.test(run.periods.NPER < 0, "Number of wave periods is negative: NPER=", run.periods.NPER);
    faults.test(run.periods.NBETA < 0, "Number of wave headings is negative: NBETA=", run.periods.NBETA);
    faults.test(run.periods.NBETA == 0 && opt.IDIFF >= 0,
                "No wave headings specified for diffraction problem");
    faults.test(opt.IRRX > run.mesh.NEQN, "Reference panel of the tank is above NEQN: IRR-10=", opt.IRRX);
    faults.test(opt.IRRX != 0 && opt.IDIFF >= 0, "IDIFF must be -1 for a fully filled tank");
}

// A hull may stand on the bottom, not reach below it. Tells the first panel that does.
void check_depth(const RunState &run, Faults &faults) {
    constexpr f32 ROUNDING = 1.0e-5f; // of vertices and depth, as fractions of the depth
    const f32 lowest = -run.opt.HBOT * (1 + ROUNDING);
    if (run.opt.HBOT <= 0 || run.opt.IRRX != 0) // a tank has no depth of water
        return;
    int first = 1;
    for (int b = 1; b <= run.bodies.NEQNB.dim(1); ++b) {
        for (int ip = first; ip < first + run.bodies.NEQNB(b); ++ip) {
            for (int v = 1; v <= 4; ++v) {
                if (run.mesh.XVER(v, 3, ip) + run.bodies.XBODY(3, b) < lowest) {
                    faults.test(true, "Error: vertex below the bottom, z below -HBOT, for panel I=", ip);
                    const f32 L = run.bodies.ULEN(1);
                    return message_detail("panel " + std::to_string(ip - first + 1) + " of body " +
                                          std::to_string(b) + ", vertex " + std::to_string(v) + ": z =" +
                                          sci(12, 4, (run.mesh.XVER(v, 3, ip) + run.bodies.XBODY(3, b)) * L) +
                                          ", HBOT" + sci(12, 4, run.opt.HBOT * L));
                }
            }
        }
        first += run.bodies.NEQNB(b);
    }
}

// The Green function of finite depth has a range of depths in wave numbers.
void check_depth_range(const RunState &run, Faults &faults) {
    constexpr f32 SHALLOW = 1.0e-5f, DEEP = 1.0e5f;
    for (int t = 1; run.opt.HBOT > 0 && run.opt.IRRX == 0 && t <= run.periods.NPER; ++t) {
        const f32 H = run.periods.WVN0(t) * run.opt.HBOT;
        if (limit_of(run.periods.WVN0(t)) != 0 || (H >= SHALLOW && H <= DEEP))
            continue;
        faults.test(true, "Error return in HGRN98: depth HBOT is illegal ");
        message_detail("period " + std::to_string(t) + ", " + trimmed(sci(11, 4, run.periods.PER(t))) +
                       " s: depth times wave number" + sci(11, 3, H) +
                       ", not between 1.E-5 and 1.E5; give HBOT = 0 for deep water");
    }
}

void check_drift_damping(const RunState &run, Faults &faults) {
    const Options &opt = run.opt;
    faults.test(opt.ISX == -1 || opt.ISY == -1, "It is not possible with walls when IWADD=1");
    faults.test(run.bodies.NBODY > 1, "NBODY must be 1 when IWADD=1");
    // A fully filled tank was given as IRR too.
    faults.test(opt.IRR != 0 || opt.IRRX != 0, "IRR must be 0 when IWADD=1");
    faults.test(opt.ISOR != 1, "ISOR must be 1 when IWADD=1");
    faults.test(method_of(run) == Method::blocks, "ISOLVE must be 0 or 1 when IWADD=1");
    faults.test(opt.ISCATT != 0, "ISCATT must be 0 when IWADD=1");
    faults.test(opt.I2ND != 0, "I2ND must be 0 when IWADD=1");
}

} // namespace

Status INCHK(const RunState &run) {
    Faults faults;
    check_solver(run, faults);
    check_problem(run, faults);
    check_depth(run, faults);
    check_depth_range(run, faults);
    if (run.opt.IWADD == 1)
        check_drift_damping(run, faults);
    for (int b = 1; b <= run.bodies.XBODY.dim(2); ++b) {
        for (int c = 1; c <= 3; ++c)
            faults.test(std::fabs(run.bodies.XBODY(c, b)) > LARGEST_LENGTH,
                        "XBODY is out of proportion to ULEN for body N=", b);
    }
    faults.test(run.opt.HBOT > LARGEST_LENGTH || (run.opt.HBOT > 0 && run.opt.HBOT < 1 / LARGEST_LENGTH),
                "HBOT is out of proportion to ULEN");
    if (run.dipoles.IDIPOL) {
        faults.test(run.opt.I2ND != 0, "I2ND must be 0 when there are dipoles");
        faults.test(run.opt.IWADD == 1, "IWADD must be 0 when there are dipoles");
        const int reference = run.opt.IRRX;
        faults.test(reference > 0 && reference <= run.mesh.NEQN && run.dipoles.IDIP(reference) != 0,
                    "Reference panel of the tank is a dipole panel: IRR-10=", reference);
    }
    return faults.any ? Status::failed : Status::ok;
}

Status check_limits(const RunState &run) {
    bool infinite = false;
    for (int t = 1; t <= run.periods.NPER; ++t)
        infinite = infinite || limit_of(run.periods.WVN0(t)) == 2;
    int ip = 0;
    for (int b = 1; infinite && b <= run.bodies.NBODY; ++b) {
        const bool lid = !run.bodies.BDTYP.empty() && run.bodies.BDTYP(b) == 3;
        for (int k = 1; k <= run.bodies.NEQNB(b); ++k) {
            ++ip;
            if (!lid && run.mesh.IFSP(ip) == -1 && run.mesh.projected(ip) == 0)
                return MSGOUT("Infinite frequency is not possible with a hull of no draught, panel I=", ip);
        }
    }
    return Status::ok;
}
