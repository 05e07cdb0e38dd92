// vorda-p2f info: what a hand-over file holds.
#include "command.hpp"

#include "post/names.hpp"

#include <cmath>
#include <cstdio>

namespace {

// Names of what a file may hold, whether it does, and the switch of the run that puts it there.
void print_contents(const P2fFile &p) {
    const struct {
        const char *what;
        bool there;
        const char *how;
    } contents[] = {
        {"radiation potentials", p.IRAD >= 0, "IRAD 0 or 1"},
        {"diffraction potentials", p.IDIFF >= 0, "IDIFF 0 or 1"},
        {"radiation sources and velocities", p.ISOR == 1 && p.IRAD >= 0, "ISOR=1, IRAD 0 or 1"},
        {"diffraction sources and velocities", p.ISOR == 1 && p.IDIFF >= 0, "ISOR=1, IDIFF 0 or 1"},
        {"interior panels", p.IRR > 0, "IRR 1 to 4"},
        {"dipole panels", p.IDIPOL == 1, "NDIPB in the GDF file"},
        {"second-order data", p.IWADD == 1, "IWADD=1"},
    };
    std::printf("The file holds\n");
    for (const auto &item : contents)
        std::printf("  %-36s %s%s%s\n", item.what, item.there ? "yes" : "no (needs ",
                    item.there ? "" : item.how, item.there ? "" : ")");
}

const char *symmetry(int index) {
    return index == 1 ? "symmetric" : index < 0 ? "wall" : "none";
}

void print_bodies(const P2fFile &p, const UnitNames &unit) {
    for (int b = 1; b <= p.NBODY; ++b) {
        const double L = static_cast<double>(p.ULEN(b)), L3 = L * L * L;
        std::printf("Body %d: %d panels, %d extra modes, ULEN %g %s\n", b, p.NEQNB(b), p.NEWMDS(b), L,
                    unit.length.c_str());
        std::printf("  volumes [%s^3]                %.6g %.6g %.6g\n", unit.length.c_str(),
                    static_cast<double>(p.VOL(1, b)) * L3, static_cast<double>(p.VOL(2, b)) * L3,
                    static_cast<double>(p.VOL(3, b)) * L3);
        std::printf("  centre of buoyancy [%s]       %.6g %.6g %.6g (body axes)\n", unit.length.c_str(),
                    static_cast<double>(p.XCB(1, b)) * L, static_cast<double>(p.XCB(2, b)) * L,
                    static_cast<double>(p.XCB(3, b)) * L);
    }
}

void print_periods(const P2fFile &p, const UnitNames &unit) {
    std::printf("   period [s]  omega [rad/s]  wave number [1/%s]\n", unit.length.c_str());
    const double L = static_cast<double>(p.ULEN(1));
    for (int t = 1; t <= p.NPER; ++t) {
        const double values[] = {period_of(p, t), omega_of(p, t), wave_number_of(p, t) / L};
        constexpr int WIDTH[] = {13, 15, 19};
        for (int k = 0; k < 3; ++k) {
            if (std::isinf(values[k]))
                std::printf("%*s", WIDTH[k], "inf");
            else
                std::printf("%*.5f", WIDTH[k], values[k]);
        }
        std::printf("\n");
    }
    std::printf("Headings [deg]:");
    for (int i = 1; i <= p.NBETA; ++i)
        std::printf(" %.2f", static_cast<double>(p.BETA(i)));
    std::printf("%s\n", p.NBETA == 0 ? " none" : "");
}

int print_info(const P2fFile &p) {
    const UnitNames unit = unit_names(static_cast<double>(p.GRAV));
    std::printf("Hand-over file, format %.1f\n", static_cast<double>(p.version));
    std::printf("Bodies %d, panels %d, modes %d, solved modes %d\n", p.NBODY, p.NEQN, p.NMODES, p.NSYMD);
    std::printf("Plane x = 0: %s, y = 0: %s; %d image(s), %d class(es)\n", symmetry(p.ISX), symmetry(p.ISY),
                p.NSYMG, p.NSYMR);
    std::printf("IRAD %d, IDIFF %d, ISOR %d, IQUAD %d, ILOG %d, IDIAG %d, ISCATT %d, IRR %d, ISOLVE %d\n",
                p.IRAD, p.IDIFF, p.ISOR, p.IQUAD, p.ILOG, p.IDIAG, p.ISCATT, p.IRR, p.ISOLVE);
    std::printf("Gravity %g %s/s^2, ", static_cast<double>(p.GRAV), unit.length.c_str());
    if (p.HBOT > 0)
        std::printf("water depth %g %s\n", static_cast<double>(p.HBOT) * static_cast<double>(p.ULEN(1)),
                    unit.length.c_str());
    else
        std::printf("infinite water depth\n");
    print_bodies(p, unit);
    if (p.IWADD == 1)
        std::printf("Second-order data: %d free-surface panels\n", p.NFSP);
    print_periods(p, unit);
    std::printf("\nReport of the run\n");
    for (const std::string &line : p.text)
        std::printf("%s\n", line.c_str());
    return 0;
}

} // namespace

Show set_up_info(CLI::App &app) {
    const auto list = std::make_shared<bool>(false);
    app.add_flag("--list", *list, "only which data there are, and what puts the others there");
    return [list](const P2fFile &p2f) {
        if (!*list)
            return print_info(p2f);
        print_contents(p2f);
        return 0;
    };
}
