// vorda-p2f: shows what a hand-over file holds, and the coefficients that follow from it.
#include "base/text.hpp"
#include "post/coefficients.hpp"

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>

namespace {

constexpr double TWO_PI = 6.283185307179586;

struct CoefRequest {
    std::string file;
    bool csv = false;
    double density = 0; // kg/m^3; 0: non-dimensional
    double gravity = 0; // m/s^2; 0: that of the file
};

void print_info(const P2fFile &p) {
    std::printf("Hand-over file, format %.1f\n", static_cast<double>(p.version));
    std::printf("Bodies %d, panels %d, modes %d, solved modes %d\n", p.NBODY, p.NEQN, p.NMODES, p.NSYMD);
    std::printf("Symmetry ISX %d, ISY %d: %d image(s), %d class(es)\n", p.ISX, p.ISY, p.NSYMG, p.NSYMR);
    std::printf("IRAD %d, IDIFF %d, ISOR %d, IQUAD %d, ILOG %d, IDIAG %d, ISCATT %d, IRR %d, ISOLVE %d\n",
                p.IRAD, p.IDIFF, p.ISOR, p.IQUAD, p.ILOG, p.IDIAG, p.ISCATT, p.IRR, p.ISOLVE);
    std::printf("Gravity %g, length scale %g, ", static_cast<double>(p.GRAV), static_cast<double>(p.ULEN(1)));
    if (p.HBOT > 0)
        std::printf("water depth %g\n", static_cast<double>(p.HBOT * p.ULEN(1)));
    else
        std::printf("infinite water depth\n");
    for (int b = 1; b <= p.NBODY; ++b) {
        std::printf("Body %d: panels %d, volumes %.6g %.6g %.6g, centre of buoyancy %.6g %.6g %.6g\n", b,
                    p.NEQNB(b), static_cast<double>(p.VOL(1, b)), static_cast<double>(p.VOL(2, b)),
                    static_cast<double>(p.VOL(3, b)), static_cast<double>(p.XCB(1, b)),
                    static_cast<double>(p.XCB(2, b)), static_cast<double>(p.XCB(3, b)));
    }
    if (p.IWADD == 1)
        std::printf("Second-order data: %d free-surface panels\n", p.NFSP);
    std::printf("Periods [s]:");
    for (int i = 1; i <= p.NPER; ++i)
        std::printf(" %.4f", static_cast<double>(p.PER(i)));
    std::printf("\nHeadings [deg]:");
    for (int i = 1; i <= p.NBETA; ++i)
        std::printf(" %.2f", static_cast<double>(p.BETA(i)));
    std::printf("\n\n");
    for (const std::string &line : p.text)
        std::printf("%s\n", line.c_str());
}

// Factor of a coefficient with so many rotations: 1, or density (times gravity) times powers of the length.
double unit(const P2fFile &p, const CoefRequest &request, int base_power, int rotations, double factor) {
    if (request.density <= 0)
        return 1;
    return request.density * factor * std::pow(static_cast<double>(p.ULEN(1)), base_power + rotations);
}

int rotations(const P2fFile &p, int i) {
    return is_rotation(p, i) ? 1 : 0;
}

void print_radiation(const P2fFile &p, const CoefRequest &request, const Coefficients &c, int t) {
    const double omega = p.PER(t) > 0 ? TWO_PI / static_cast<double>(p.PER(t)) : 0;
    const bool dimensional = request.density > 0;
    for (int i = 1; i <= p.NMODES; ++i) {
        for (int j = 1; j <= p.NMODES; ++j) {
            const double scale = unit(p, request, 3, rotations(p, i) + rotations(p, j), 1);
            const double a = scale * static_cast<double>(c.A(i, j, t));
            const double b = scale * (dimensional ? omega : 1) * static_cast<double>(c.B(i, j, t));
            if (a == 0 && b == 0)
                continue;
            std::printf(request.csv ? "radiation,%.6g,%.6g,%d,%d,%.7g,%.7g\n"
                                    : "  %10.4f  %10.5f  %3d %3d  %14.6E  %14.6E\n",
                        static_cast<double>(p.PER(t)), static_cast<double>(p.WVNH(t)), i, j, a, b);
        }
    }
}

void print_exciting(const P2fFile &p, const CoefRequest &request, const Coefficients &c, int t) {
    const double gravity = request.gravity > 0 ? request.gravity : static_cast<double>(p.GRAV);
    for (int b = 1; b <= p.NBETA; ++b) {
        for (int i = 1; i <= p.NMODES; ++i) {
            const std::complex<double> x =
                std::complex<double>(c.X(i, b, t)) * unit(p, request, 2, rotations(p, i), gravity);
            if (x == 0.0)
                continue;
            std::printf(request.csv ? "exciting,%.6g,%.6g,%.6g,%d,%.7g,%.7g,%.7g,%.7g\n"
                                    : "  %10.4f  %10.5f  %8.2f %3d  %14.6E  %8.2f  %14.6E  %14.6E\n",
                        static_cast<double>(p.PER(t)), static_cast<double>(p.WVNH(t)),
                        static_cast<double>(p.BETA(b)), i, std::abs(x), std::arg(x) * 360 / TWO_PI, x.real(),
                        x.imag());
        }
    }
}

void print_coefficients(const P2fFile &p, const CoefRequest &request, const Coefficients &c) {
    const bool dimensional = request.density > 0;
    if (!request.csv)
        std::printf("%s\n", dimensional
                                ? "Dimensional, by the given density"
                                : "Non-dimensional: A/(rho L^k), B/(rho omega L^k), X/(rho g L^(k-1))");
    if (p.IRAD >= 0) {
        std::printf(request.csv ? "kind,period,wavenumber,i,j,A,B\n"
                                : "\nAdded mass and damping\n      Period  Wavenumber    I   J               "
                                  "A               B\n");
        for (int t = 1; t <= p.NPER; ++t)
            print_radiation(p, request, c, t);
    }
    if (p.IDIFF >= 0) {
        std::printf(request.csv
                        ? "kind,period,wavenumber,heading,i,modulus,phase,real,imaginary\n"
                        : "\nExciting force\n      Period  Wavenumber   Heading   I         Modulus     Phase"
                          "            Real       Imaginary\n");
        for (int t = 1; t <= p.NPER; ++t)
            print_exciting(p, request, c, t);
    }
}

} // namespace

int main(int argc, char **argv) {
    CLI::App app("Shows the hand-over file of a run");
    app.require_subcommand(1);
    CoefRequest request;
    CLI::App *info = app.add_subcommand("info", "what the file holds");
    info->add_option("file", request.file, "hand-over file (.p2f)")->required();
    CLI::App *coef = app.add_subcommand("coef", "added mass, damping and exciting force of every period");
    coef->add_option("file", request.file, "hand-over file (.p2f)")->required();
    coef->add_flag("--csv", request.csv, "comma-separated values instead of a table");
    coef->add_option("--density", request.density, "density; makes the values dimensional")
        ->check(CLI::PositiveNumber);
    coef->add_option("--gravity", request.gravity, "gravity, when not that of the file")
        ->check(CLI::PositiveNumber);
    CLI11_PARSE(app, argc, argv);

    P2fFile p2f;
    std::string error;
    if (!read_p2f(request.file, p2f, error)) {
        std::fprintf(stderr, "vorda-p2f: %s\n", error.c_str());
        return 1;
    }
    if (info->parsed()) {
        print_info(p2f);
        return 0;
    }
    Coefficients coefficients;
    if (!form_coefficients(p2f, coefficients)) {
        std::fprintf(stderr, "vorda-p2f: not enough memory\n");
        return 1;
    }
    print_coefficients(p2f, request, coefficients);
    return 0;
}
