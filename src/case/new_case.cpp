#include "case/new_case.hpp"

#include "case/outline.hpp"
#include "case/passing_folder.hpp"
#include "case/programs.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <numbers>

namespace {

namespace fs = std::filesystem;

constexpr double GRAVITY = 9.80665;

// The wetted hull as the run will have it, imported into a folder that goes again.
bool import_hull(const std::string &mesh, Outline &hull, std::string &error) {
    if (fs::path(mesh).extension() == ".gdf")
        return read_outline(mesh, {}, hull, error);
    const PassingFolder folder;
    if (!folder.there) {
        error = folder.name + " cannot be made";
        return false;
    }
    Ended ended;
    const std::string file = folder.name + "/hull.gdf";
    bool good = run_program({{"vorda-mesh", "import", mesh, "-o", file}, ".", false}, {}, ended, error);
    if (good && !fs::exists(file)) {
        error = ended.text;
        good = false;
    }
    return good && read_outline(file, {}, hull, error);
}

double period_of_wave(double length) {
    return std::sqrt(2 * std::numbers::pi * length / GRAVITY);
}
double rounded(double value) { // half seconds
    return std::max(0.5, std::round(2 * value) / 2);
}

} // namespace

bool new_case(const std::string &mesh, std::string &text, std::string &error) {
    Outline hull;
    if (!fs::exists(mesh)) {
        error = "there is no file " + mesh;
        return false;
    }
    if (!import_hull(mesh, hull, error))
        return false;
    const double length = hull.high[0] - hull.low[0], beam = hull.high[1] - hull.low[1],
                 draught = -hull.low[2];
    const double panel = std::sqrt(hull.mean_area), extent = std::max(length, beam);
    // From waves of six panels, or a third of the hull when panels are finer than that, to ten lengths of it.
    const double shortest = std::max(6 * panel, extent / 3);
    const double low = std::max(rounded(period_of_wave(shortest)), 0.5);
    const double high = std::max(rounded(period_of_wave(10 * extent)), low + 2);
    const int count = std::clamp(static_cast<int>(std::lround(2 * (high - low))) + 1, 8, 30);
    char buffer[4096];
    std::snprintf(
        buffer, sizeof buffer,
        "# Case of %s: vorda-run makes a run and a report of it. All keys: vorda-run --keys\n"
        "# The hull is %.4g m long, %.4g m wide, %.4g m deep in the water; %d panels of %.3g m, %d with "
        "images.\n"
        "\n"
        "depth = 0              # of the water [m], 0: infinite\n"
        "density = 1025         # [kg/m^3]\n"
        "\n"
        "[waves]\n"
        "# From waves of %.3g panels to waves of ten lengths of the hull.\n"
        "periods = {from = %.4g, to = %.4g, count = %d}   # [s]\n"
        "headings = %s   # where waves travel to, from the x axis [deg]\n"
        "limits = false         # zero and infinite frequency as well\n"
        "\n"
        "[[body]]\n"
        "mesh = \"%s\"\n"
        "%s"
        "# recombine = true     # joins the triangles of an import: half as many panels\n"
        "# mass = 1e6           # [kg]; without it that of the displaced water\n"
        "# centre = [0, 0, 1]   # of gravity [m]; without it in the free surface\n"
        "# radii = [4, 10, 10]  # of gyration [m]; without them 0.4 beam, 0.25 length, 0.25 length\n"
        "# critical = {roll = 0.05}   # viscous damping over the critical one\n"
        "# fixed = [\"surge\"]    # modes that are held\n"
        "\n"
        "[treatment]\n"
        "irregular = \"auto\"     # panels inside the body where it reaches the surface\n"
        "\n"
        "[outputs]\n"
        "report = true\n"
        "netcdf = false\n"
        "vtu = false\n"
        "\n"
        "# [[spectrum]]         # a sea: significant height [m], peak period [s], heading [deg]\n"
        "# height = 2\n"
        "# period = 9\n"
        "# heading = 180\n",
        fs::path(mesh).filename().c_str(), length, beam, draught, hull.given, panel, hull.with_images,
        GRAVITY * low * low / (2 * std::numbers::pi) / panel, low, high, count,
        beam > 0.8 * length && length > 0.8 * beam ? "[0, 45, 90]" : "{from = 0, to = 180, count = 7}",
        mesh.c_str(),
        hull.GRAV > 0 && std::fabs(hull.GRAV - GRAVITY) > 1e-3
            ? "# The file has another gravity: set gravity above.\n"
            : "");
    text = buffer;
    return true;
}
