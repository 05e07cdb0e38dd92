#include "input/echo.hpp"

#include "base/text.hpp"
#include "geometry/pregeo.hpp"
#include "input/input.hpp"
#include "input/names.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

namespace {

enum Extension { PRE = 4, MOD = 5 }; // places in EXTS

// A line of the report that goes into the result file as well.
void echo_line(RunState &run, const std::string &line) {
    run.HDRSCR.push_back(line);
    list_line(line);
}

std::string title_line(const std::string &title) {
    std::string line = " ";
    line += text_in(72, title);
    return line;
}

void echo_file(RunState &run, const char *what, int name, int title) {
    echo_line(run, what + text_at_least(20, run.files.FILNAM(name)));
    echo_line(run, title_line(run.files.HEADER(title)));
    echo_line(run, " ");
}

Status echo_single_body(const DateTime &now, RunState &run) {
    echo_file(run, " Input from Geometric Data File:         ", 1, 1);
    if (run.opt.IWADD == 1) {
        FreeReader in;
        // A file that is not there is made later.
        if (in.open(run.files.FILNAM(5))) {
            (void)in.line(run.files.HEADER(5), 72);
            echo_file(run, " Input from Free Surface Data File:      ", 5, 5);
        }
    }
    run.bodies.NBODY = 1;
    run.bodies.NMODES = run.bodies.NEWMDS(1) + 6;
    return run.bodies.NEWMDS(1) > 0 ? MODCHK(1, 1, now, run) : Status::ok;
}

Status echo_bodies(const DateTime &now, RunState &run) {
    echo_file(run, " NBODY data from Global GDF    :         ", 1, 1);
    echo_line(run, " Input from Geometric Data Files:         ");
    run.bodies.NMODES = 0;
    for (int N = 1; N <= run.bodies.NBODY; ++N) {
        const std::string label = "                               N=" + int_in(3, N) + "     ";
        echo_file(run, label.c_str(), N + 4, N + 2);
        run.bodies.NMODES += run.bodies.NEWMDS(N) + 6;
        if (run.bodies.NEWMDS(N) > 0 && failed(MODCHK(N, N + 4, now, run)))
            return Status::failed;
    }
    return Status::ok;
}

Status begin_pre_file(const std::string &heading, int body, const RunState &run) {
    // Under another name until the whole input is sound and the panels are written.
    const std::string name = unfinished_pre(run.files, body);
    (void)remove_at_end(name);
    std::ofstream out(name, std::ios::trunc | std::ios::binary);
    out << heading << '\n'
        << int_in(8, run.opt.ISX) << int_in(8, run.opt.ISY) << int_in(8, run.bodies.NEQNB(body))
        << int_in(8, run.bodies.NMODES) << '\n';
    out.close();
    if (!out)
        return MSGOUT_with("Error writing PRE file of body N=", body, name + ": " + std::strerror(errno));
    return Status::ok;
}

// The two titles of a MOD file. They are shown only: in HEADER they would stand in the place of another body.
Status echo_mod_titles(FreeReader &in, int body, RunState &run) {
    echo_line(run,
              " Input from Extra Mode MOD File:         " + text_at_least(20, run.files.FILNAM(body + 4)));
    for (int k = 0; k < 2; ++k) {
        std::string title;
        if (!in.line(title, 72))
            return MSGOUT_with("Error reading MOD file, header lines of body N=", body, in.fault());
        echo_line(run, title_line(title));
    }
    echo_line(run, " ");
    return Status::ok;
}

// The report tells what the limit frequencies among the periods are.
void show_limits(const Periods &periods) {
    static const char *const names[] = {"", "zero frequency", "infinite frequency"};
    for (int i = 1; i <= periods.NPER; ++i) {
        if (const int limit = limit_of(periods.WVN0(i)); limit != 0)
            list_line(" Limit frequency: period " + int_in(5, i) + " is " + names[limit]);
    }
}

} // namespace

Status MODCHK(int body, int source, const DateTime &now, RunState &run) {
    NameTable &FILNAM = run.files.FILNAM;
    const std::string geometry = FILNAM(source);
    if (body == 1)
        run.opt.IMDRUN = 0;
    SETEXT(FILNAM, source, body + 4, PRE);
    const std::string pre = FILNAM(body + 4);
    SETEXT(FILNAM, body + 4, body + 4, MOD);
    if (same_file(FILNAM(body + 4), geometry) || same_file(pre, geometry) || same_file(pre, FILNAM(2)))
        return MSGOUT_with("The PRE or MOD file would replace the GDF file of body N=", body,
                           geometry + ": give the GDF file another extension");
    FreeReader in;
    if (in.open(FILNAM(body + 4))) {
        if (run.opt.IMDRUN != -1)
            run.opt.IMDRUN = 1;
        return echo_mod_titles(in, body, run);
    }
    run.opt.IMDRUN = -1;
    run.bodies.NEWMDS(body) = -run.bodies.NEWMDS(body);
    FILNAM(body + 4) = pre;
    const std::string heading =
        " SHAPEX Input,  Filename: " + text_at_least(20, pre) + "    " + now.date + "  " + now.time;
    list_line(heading);
    list_line(" ");
    return begin_pre_file(heading, body, run);
}

Status INECHO(RunState &run) {
    const DateTime now = DATTIM();
    run.HDRSCR.clear();
    run.opt.IMDRUN = 0;
    const Status bodies = run.bodies.NBODY == 0 ? echo_single_body(now, run) : echo_bodies(now, run);
    if (failed(bodies))
        return Status::failed;
    echo_file(run, " Input from Potential Control File:      ", 2, 2);
    echo_line(run, " ");
    show_limits(run.periods);
    return Status::ok;
}
