#include "freesurface/fdfgen.hpp"

#include "base/text.hpp"
#include "geometry/panel.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr double PI = 3.141592653589793;
constexpr double TOLERANCE = 1.0e-5; // points nearer than it are one

SurfacePoint operator-(SurfacePoint a, SurfacePoint b) {
    return {a.x - b.x, a.y - b.y};
}

// The outer curve: a circle, from an angle counter-clockwise, clipped at symmetry planes that it
// must not cross.
struct OuterCurve {
    SurfacePoint centre;
    double from = 0;  // angle of its first point
    double angle = 0; // that its points cover
    double ROUT = 0;
    int J = 0; // panels between it and the waterline
    bool clip_x = false, clip_y = false;
};

bool on_plane(double coordinate) {
    return std::fabs(coordinate) < TOLERANCE;
}

// A quarter from plane to plane. False: the contour does not run from one to the other.
bool quarter(const LineCentre &line, int N, OuterCurve &outer) {
    const SurfacePoint first = line.points.front(), last = line.points.back();
    const SurfacePoint c = line.centre;
    if (c.x == 0 || c.y == 0)
        return false;
    const bool starts_on_y0 = (c.x > 0) == (c.y > 0);
    if (!on_plane(starts_on_y0 ? first.y : first.x) || !on_plane(starts_on_y0 ? last.x : last.y))
        return false;
    const double a = std::fabs(starts_on_y0 ? first.x : first.y);
    const double b = std::fabs(starts_on_y0 ? last.y : last.x);
    outer.centre = {};
    outer.from = c.y > 0 ? (c.x > 0 ? 0 : PI / 2) : (c.x < 0 ? PI : -PI / 2);
    outer.angle = PI / 2;
    outer.ROUT = 5 * std::min(a, b) + std::max(a, b);
    outer.J = 2 * N;
    return true;
}

// A half from a plane back to it, or a quarter.
bool ends_on_planes(const LineCentre &line, int ISX, int ISY, int N, OuterCurve &outer) {
    const SurfacePoint first = line.points.front(), last = line.points.back();
    if (ISX == 1 && ISY == 1)
        return quarter(line, N, outer);
    if (ISY == 1 && on_plane(first.y) && on_plane(last.y)) {
        outer.centre.y = 0;
        outer.from = line.centre.y >= 0 ? 0 : PI;
    } else if (ISX == 1 && on_plane(first.x) && on_plane(last.x)) {
        outer.centre.x = 0;
        outer.from = line.centre.x >= 0 ? -PI / 2 : PI / 2;
    } else {
        return false;
    }
    outer.angle = PI;
    outer.ROUT = 10 * line.rmin + line.rmax;
    outer.J = N;
    return true;
}

OuterCurve outer_curve(const LineCentre &line, int ISX, int ISY) {
    const int N = static_cast<int>(line.points.size()) - 1;
    OuterCurve outer;
    outer.centre = line.centre;
    if (ends_on_planes(line, ISX, ISY, N, outer))
        return outer;
    const SurfacePoint start = line.points.front() - line.centre;
    outer.from = std::atan2(start.y, start.x);
    outer.angle = 2 * PI;
    outer.ROUT = 5 * line.rmin + line.rmax;
    outer.J = N / 2;
    outer.clip_x = ISX == 1;
    outer.clip_y = ISY == 1;
    return outer;
}

SurfacePoint outer_point(const OuterCurve &outer, double t) {
    const SurfacePoint c = outer.centre;
    double R = outer.ROUT;
    if (outer.clip_x && (R * std::cos(t) + c.x < 0) != (c.x < 0))
        R = -c.x / std::cos(t);
    if (outer.clip_y && (R * std::sin(t) + c.y < 0) != (c.y < 0))
        R = -c.y / std::sin(t);
    return {R * std::cos(t) + c.x, R * std::sin(t) + c.y};
}

// Angles of the points on the outer curve: equal steps, or those of the points of the contour.
std::vector<double> outer_angles(const LineCentre &line, const OuterCurve &outer, bool rays) {
    const std::size_t N = line.points.size() - 1;
    std::vector<double> angles;
    for (std::size_t i = 0; i <= N; ++i) {
        double t = outer.from + static_cast<double>(i) * outer.angle / static_cast<double>(N);
        if (rays) {
            const SurfacePoint r = line.points[i] - outer.centre;
            t = std::atan2(r.y, r.x);
        }
        angles.push_back(t);
    }
    return angles;
}

// Points from W to O in J steps that grow linearly, the last of them twice the first.
std::vector<SurfacePoint> outward(SurfacePoint W, SurfacePoint O, int J) {
    std::vector<SurfacePoint> points = {W};
    for (int j = 0; j < J; ++j) {
        const double step = 2.0 / 3.0 / J * (1 + static_cast<double>(j) / (J - 1));
        points.push_back({points.back().x + step * (O.x - W.x), points.back().y + step * (O.y - W.y)});
    }
    return points;
}

// Clockwise, without crossing sides.
bool faces_up(const SurfacePanel &panel) {
    int right_turns = 0;
    for (std::size_t k = 0; k < 4; ++k) {
        const SurfacePoint a = panel[(k + 1) % 4] - panel[k], b = panel[(k + 2) % 4] - panel[(k + 1) % 4];
        right_turns += a.x * b.y - a.y * b.x < 0 ? 1 : 0;
    }
    const SurfacePoint d = panel[2] - panel[0], e = panel[3] - panel[1];
    return right_turns >= 3 && d.x * e.y - d.y * e.x < 0;
}

bool make_panels(const LineCentre &line, const OuterCurve &outer, bool rays, SurfacePanels &panels) {
    const std::vector<double> angles = outer_angles(line, outer, rays);
    panels.clear();
    bool good = true;
    std::vector<SurfacePoint> here, next;
    for (std::size_t i = 0; i < line.points.size(); ++i) {
        next = outward(line.points[i], outer_point(outer, angles[i]), outer.J);
        for (std::size_t j = 0; i > 0 && j + 1 < next.size(); ++j) {
            panels.push_back({here[j], next[j], next[j + 1], here[j + 1]});
            good = good && faces_up(panels.back());
        }
        here = next;
    }
    return good;
}

// The wet sides in the direction that keeps the body on the left.
std::vector<WaterSide> water_sides(const RunState &run) {
    std::vector<WaterSide> sides;
    for (int k = 1; k <= run.waterline.NWL; ++k) {
        const int panel = run.waterline.IWLP(k), v = run.waterline.IWLE(k);
        const auto point = [&](int vertex) {
            return SurfacePoint{run.mesh.XVER(vertex, 1, panel), run.mesh.XVER(vertex, 2, panel)};
        };
        sides.push_back({point(JP[v]), point(v)});
    }
    return sides;
}

bool write_file(const RunState &run, const SurfaceRing &ring, std::FILE *file) {
    const double length = 1.0 / static_cast<double>(run.opt.RULEN);
    const std::string &name = run.files.FILNAM(5);
    const int n = static_cast<int>(ring.panels.size());
    bool good = std::fprintf(file, "%72s\n %.7g\n %d %d\n 0 0 0 0\n", name.c_str(), ring.ROUT, n, n) > 0;
    for (const SurfacePanel &panel : ring.panels) {
        std::string x, y;
        for (const SurfacePoint p : panel) {
            x += fixed(14, 5, p.x * length);
            y += fixed(14, 5, p.y * length);
        }
        good = good && std::fprintf(file, "%s\n%s\n", x.c_str(), y.c_str()) > 0;
    }
    return good;
}

} // namespace

Status surface_ring(const LineCentre &line, int ISX, int ISY, SurfaceRing &ring) {
    if (ISX < 0 || ISY < 0 || ISX > 1 || ISY > 1)
        return MSGOUT("Unable to open or create FDF file");
    const int N = static_cast<int>(line.points.size()) - 1;
    const OuterCurve outer = outer_curve(line, ISX, ISY);
    if (N < 2 || outer.J < 2)
        return MSGOUT("Too few waterline panels to create the FDF file, NWL=", N);
    ring.ROUT = outer.ROUT;
    if (make_panels(line, outer, false, ring.panels) || make_panels(line, outer, true, ring.panels))
        return Status::ok;
    return MSGOUT_with(
        "Unable to open or create FDF file", 0,
        "The rays from the middle of the waterline cross it more than once: give a file of your own");
}

Status FDFGEN(const RunState &run) {
    const std::vector<WaterSide> sides = water_sides(run);
    if (sides.empty())
        return MSGOUT_with("Unable to open or create FDF file", 0, "The body has no waterline");
    std::vector<SurfacePoint> XYCH;
    int NSHORT = 0;
    WLCHN(sides, TOLERANCE, XYCH, NSHORT);
    if (sides.size() >= XYCH.size() + static_cast<std::size_t>(NSHORT))
        return MSGOUT("More than one intersection with free surface, Unable to create FDF file");
    SurfaceRing ring;
    if (failed(surface_ring(WLCENT(XYCH, TOLERANCE), run.opt.ISX, run.opt.ISY, ring)))
        return Status::failed;
    const std::string &name = run.files.FILNAM(5);
    std::FILE *file = std::fopen(name.c_str(), "wx");
    bool good = file != nullptr && write_file(run, ring, file);
    const int error = errno;
    if (file != nullptr && std::fclose(file) != 0)
        good = false;
    if (good)
        return Status::ok;
    if (file != nullptr)
        std::remove(name.c_str());
    return MSGOUT_with("Unable to open or create FDF file", 0, name + ": " + std::strerror(error));
}
