#include "run/mesh_report.hpp"

#include "assembly/period_wave.hpp"
#include "base/text.hpp"
#include "geometry/lid.hpp"
#include "mesh/report.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double PI = 3.14159265358979;

// Panels first .. last in the axes of the run: those of the body, turned by its heading and moved
// to its place.
BodyMesh mesh_of(const RunState &run, int b, int first, int last) {
    const Options &opt = run.opt;
    BodyMesh mesh;
    mesh.symmetric[0] = opt.ISX == 1;
    mesh.symmetric[1] = opt.ISY == 1;
    mesh.wall[0] = opt.ISX == -1;
    mesh.wall[1] = opt.ISY == -1;
    mesh.depth = static_cast<double>(opt.HBOT);
    mesh.tank = opt.IRRX != 0;
    const auto XBODY = [&](int c) { return static_cast<double>(run.bodies.XBODY(c, b)); };
    const double heading = XBODY(4) * static_cast<double>(DEGREE), s = std::sin(heading),
                 c = std::cos(heading);
    for (int ip = first; ip <= last; ++ip) {
        BodyPanel panel;
        for (int v = 1; v <= 4; ++v) {
            const double x = static_cast<double>(run.mesh.XVER(v, 1, ip)),
                         y = static_cast<double>(run.mesh.XVER(v, 2, ip));
            panel.at[static_cast<std::size_t>(v) - 1] = {c * x - s * y + XBODY(1), s * x + c * y + XBODY(2),
                                                         static_cast<double>(run.mesh.XVER(v, 3, ip)) +
                                                             XBODY(3)};
        }
        f32 damping = 0;
        const bool projected = run.mesh.projected(ip) != 0;
        panel.kind = is_dipole(run.dipoles, ip)                              ? PanelKind::plate
                     : LIDDMP(run.bodies, ip, damping)                       ? PanelKind::lid
                     : projected || (opt.IRR == 3 && run.mesh.IFSP(ip) == 1) ? PanelKind::made
                     : run.mesh.IFSP(ip) == 1                                ? PanelKind::interior
                                                                             : PanelKind::hull;
        mesh.panels.push_back(panel);
    }
    return mesh;
}

// Wave length in ULEN at the depth of the run; 0 for a limit frequency.
double wave_length(f32 W, f32 HBOT) {
    if (limit_of(W) != 0)
        return 0;
    const double nu = static_cast<double>(W), H = static_cast<double>(HBOT);
    double K = nu;
    for (int i = 0; H > 0 && i < 60; ++i) { // K tanh(K H) = nu, by Newton's method from above
        const double t = std::tanh(K * H), f = K * t - nu, slope = t + K * H * (1 - t * t);
        K = i == 0 ? std::max(nu, std::sqrt(nu / H)) : K - f / slope;
    }
    return 2 * PI / K;
}

double shortest_wave(const RunState &run) {
    double shortest = 0;
    for (int t = 1; t <= run.periods.NPER; ++t) {
        const double length = wave_length(run.periods.WVN0(t), run.opt.HBOT);
        if (length > 0 && (shortest == 0 || length < shortest))
            shortest = length;
    }
    return shortest;
}

void list_settings(const RunState &run) {
    const Options &opt = run.opt;
    const struct {
        const char *name;
        int value;
    } settings[] = {{"MAXSCR", opt.MAXSCR},   {"ISOLVE", opt.ISOLVE},
                    {"ISOR", opt.ISOR},       {"IRR", opt.IRRX != 0 ? 10 + opt.IRRX : opt.IRR},
                    {"IQUAD", opt.IQUAD},     {"ILOG", opt.ILOG},
                    {"IDIAG", opt.IDIAG},     {"ISCATT", opt.ISCATT},
                    {"IPERIO", opt.IPERIO},   {"I2ND", opt.I2ND},
                    {"IWADD", opt.IWADD},     {"IFSLID", opt.IFSLID},
                    {"IUSESCR", opt.IUSESCR}, {"NTRD", opt.NTRD},
                    {"IRAD", opt.IRAD},       {"IDIFF", opt.IDIFF},
                    {"ISX", opt.ISX},         {"ISY", opt.ISY}};
    std::string line = " Settings in force:";
    for (const auto &[name, value] : settings) {
        const std::string item = " " + std::string(name) + "=" + std::to_string(value);
        if (line.size() + item.size() > 100) {
            list_line(line);
            line = "                   ";
        }
        line += item;
    }
    list_line(line);
}

void list_waves(const RunState &run, double shortest) {
    const double L = static_cast<double>(run.bodies.ULEN(1));
    const std::string depth =
        run.opt.HBOT > 0 ? sci(12, 4, static_cast<double>(run.opt.HBOT) * L) : " infinite";
    list_line(" Water depth:" + depth + ", gravity" + sci(12, 4, static_cast<double>(run.opt.GRAV)) +
              ", ULEN" + sci(12, 4, L));
    list_line(" Periods: " + std::to_string(run.periods.NPER) +
              (shortest > 0 ? ", shortest wave length" + sci(12, 4, shortest * L) : std::string()) +
              "; headings: " + std::to_string(run.periods.NBETA) + "; unknowns: " +
              std::to_string(run.mesh.NEQN) + " in each of " + std::to_string(run.sym.NSYMR) + " classes");
    list_line(" ");
}

} // namespace

void report_mesh(const RunState &run) {
    const double shortest = shortest_wave(run);
    int first = 1;
    for (int b = 1; b <= run.bodies.NBODY; ++b) {
        const int last = first + run.bodies.NEQNB(b) - 1;
        const BodyMesh mesh = mesh_of(run, b, first, last);
        first = last + 1;
        const MeshMeasures measures = measure(mesh);
        const std::string name = "body " + std::to_string(b);
        for (const std::string &line :
             mesh_report(name, measures, mesh, static_cast<double>(run.bodies.ULEN(1))))
            list_line(" " + line);
        for (const MeshFinding &finding : check_mesh(mesh, {shortest, run.opt.IRR != 0})) {
            message("WARNING: mesh of body ", b);
            message_detail(told(finding));
        }
        list_line(" ");
    }
    list_settings(run);
    list_waves(run, shortest);
}
