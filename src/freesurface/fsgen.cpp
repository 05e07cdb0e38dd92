#include "freesurface/fsgen.hpp"

#include "base/text.hpp"
#include "freesurface/front.hpp"
#include "freesurface/generated_file.hpp"
#include "freesurface/mirror.hpp"
#include "freesurface/rings.hpp"
#include "geometry/dipoles.hpp"
#include "geometry/panel.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace {

constexpr double SLIVER = 0.1;     // area of a panel that is left out, in mean areas
constexpr double COMPLETE = 0.998; // covered part of the waterplane that needs no word
constexpr double ENOUGH = 0.95;    // covered part without which a run makes no sense
constexpr double NO_AREA = 1e-6;   // area of a polygon that has none, in squared mean sides

// Dipole panels are left out: a thin plate bounds no inside.
std::vector<WaterSide> water_sides(const RunState &run, int first, int w1, int count) {
    std::vector<WaterSide> sides;
    const auto XVER = run.mesh.XVER.view();
    for (int w = w1; w < w1 + count; ++w) {
        const int p = first - 1 + run.waterline.IWLP(w);
        const int v = run.waterline.IWLE(w);
        if (is_dipole(run.dipoles, p))
            continue;
        sides.push_back({{XVER(v, 1, p), XVER(v, 2, p)}, {XVER(JP[v], 1, p), XVER(JP[v], 2, p)}});
    }
    return sides;
}

void warn_incomplete(const std::string &why) {
    message("WARNING: Free surface panelling is not completed");
    message_detail(why);
}

// Rings for all contours; false when rings would not cover the inside of each of them once.
bool make_rings(const std::vector<WaterSide> &sides, const WaterlineContours &line, SurfacePanels &panels) {
    std::vector<SurfacePoint> centres;
    for (const Contour &contour : line.contours) {
        centres.push_back(contour_centre(sides, contour));
        if (!seen_from_centre(sides, contour, centres.back()))
            return false;
    }
    for (std::size_t c = 0; c < centres.size(); ++c)
        FSRAD(sides, line.contours[c], centres[c], line.WLMEAN, panels);
    return true;
}

// An outer polygon followed by the holes in it.
using Region = std::vector<Outline>;

double clockwise_area(const Region &region) {
    double area = 0;
    for (const Outline &outline : region)
        area += clockwise_area(outline.points);
    return area;
}

std::vector<Region> make_regions(const std::vector<Outline> &outlines, double WLMEAN) {
    std::vector<Region> regions;
    std::vector<const Outline *> holes;
    for (const Outline &outline : outlines) {
        const double area = clockwise_area(outline.points);
        if (std::fabs(area) < NO_AREA * WLMEAN * WLMEAN)
            warn_incomplete("a contour of the waterline has no area");
        else if (area > 0)
            regions.push_back({outline});
        else
            holes.push_back(&outline);
    }
    for (const Outline *hole : holes) {
        Region *around = nullptr;
        for (Region &region : regions) {
            const Polygon &outer = region.front().points;
            if (lies_inside(outer, hole->points.front()) &&
                (around == nullptr || clockwise_area(outer) < clockwise_area(around->front().points)))
                around = &region;
        }
        if (around == nullptr)
            warn_incomplete(
                "a contour of the waterline runs the wrong way round, its normals point into the water");
        else
            around->push_back(*hole);
    }
    return regions;
}

double area_of(const SurfacePanel &p) {
    return ((p[3].x - p[1].x) * (p[0].y - p[2].y) + (p[0].x - p[2].x) * (p[1].y - p[3].y)) / 2;
}

double area_of(const SurfacePanels &panels) {
    double sum = 0;
    for (const SurfacePanel &panel : panels)
        sum += area_of(panel);
    return sum;
}

void remove_slivers(SurfacePanels &panels) {
    const double mean = area_of(panels) / static_cast<double>(panels.size());
    std::erase_if(panels, [&](const SurfacePanel &panel) { return area_of(panel) / mean < SLIVER; });
}

struct FrontInput {
    const std::vector<WaterSide> &sides;
    const WaterlineContours &line;
    double PSCALE;
    std::int64_t limit; // of panels
};

// Fills a region: by a front, or by rings where the front is stuck and they can do it.
FrontEnd fill_region(const FrontInput &in, const Region &region, SurfacePanels &panels) {
    double length = 0;
    int count = 0;
    std::vector<Polygon> polygons;
    for (const Outline &outline : region) {
        polygons.push_back(outline.points);
        length += outline.length;
        count += outline.sides;
    }
    const double WLMEAN = length / count;
    const FrontEnd end = FSFRNT(polygons, in.PSCALE * WLMEAN, in.limit, panels);
    if (end == FrontEnd::stuck && region.size() == 1 && region.front().contours.size() == 1) {
        const Contour &contour = in.line.contours[static_cast<std::size_t>(region.front().contours.front())];
        const SurfacePoint centre = contour_centre(in.sides, contour);
        if (seen_from_centre(in.sides, contour, centre)) {
            panels.clear();
            FSRAD(in.sides, contour, centre, WLMEAN, panels);
            return FrontEnd::filled;
        }
    }
    remove_slivers(panels);
    return end;
}

// What the regions hold and what of it has panels.
struct Covered {
    double wanted = 0, done = 0;
};

// Tells what is left open. Failed: too much for the equations to hold inside.
Status judge(const Covered &area) {
    if (area.done >= COMPLETE * area.wanted)
        return Status::ok;
    const double open = area.wanted - area.done, part = 100 * open / area.wanted;
    warn_incomplete("not covered: area" + sci(11, 3, open) + " ULEN^2," + fixed(6, 2, part) +
                    " per cent of the waterplane");
    return area.done < ENOUGH * area.wanted
               ? MSGOUT("Free-surface panels cover less than 95 per cent of the waterplane")
               : Status::ok;
}

Status make_front(const FrontInput &in, SurfacePlanes planes, SurfacePanels &panels) {
    std::vector<Outline> outlines;
    if (!WLPTS(in.sides, planes, in.line, in.PSCALE, outlines))
        return MSGOUT("Waterline panels do not form a closed contour");
    Covered area;
    for (const Region &region : make_regions(outlines, in.line.WLMEAN)) {
        SurfacePanels filling;
        if (fill_region(in, region, filling) == FrontEnd::out_of_steps) {
            (void)MSGOUT("Number of free-surface panels exceeds limit ",
                         static_cast<int>(std::min<std::int64_t>(in.limit, std::numeric_limits<int>::max())));
            return MSGOUT("Allocation error, insufficient RAM for IRR=3");
        }
        area.wanted += clockwise_area(region);
        area.done += area_of(filling);
        panels.insert(panels.end(), filling.begin(), filling.end());
    }
    return judge(area);
}

// The new panels of one body with these wet sides.
Status make_panels(const RunState &run, int body, const std::vector<WaterSide> &sides, double PSCALE,
                   SurfacePanels &panels) {
    const SurfacePlanes planes{run.opt.ISX == 1, run.opt.ISY == 1};
    WaterlineContours line;
    if (!WLSORT(sides, planes, line))
        return MSGOUT("Waterline panels do not form a closed contour");
    if (run.opt.ISOR != 0) {
        if (make_rings(sides, line, panels))
            return Status::ok;
        message("WARNING: Rings do not cover the inside of the waterline once, an advancing front does it");
        message_detail("body " + std::to_string(body));
    }
    return make_front({sides, line, PSCALE, 2 * static_cast<std::int64_t>(run.bodies.NEQNB(body))}, planes,
                      panels);
}

// Puts the panels behind the last panel of the body and moves those of the bodies after it.
Status insert_panels(int body, int last, const SurfacePanels &panels, RunState &run) {
    const std::int64_t count = static_cast<std::int64_t>(panels.size());
    const int N = run.mesh.NEQN;
    if (N + count > std::numeric_limits<int>::max() || failed(XVGROW(N + count, run.mesh.XVER)) ||
        (run.dipoles.IDIPOL && failed(DIPGRW(N + count, run.dipoles))))
        return MSGOUT("Allocation error, insufficient RAM for IRR=3");
    const auto XVER = run.mesh.XVER.view();
    f32 *const vertices = XVER.data();
    std::copy_backward(vertices + 12 * std::int64_t{last}, vertices + 12 * std::int64_t{N},
                       vertices + 12 * (N + count));
    const f32 z = -run.bodies.XBODY(3, body);
    for (std::int64_t i = 0; i < count; ++i) {
        for (int v = 1; v <= 4; ++v) {
            const SurfacePoint p = panels[static_cast<std::size_t>(i)][static_cast<std::size_t>(v - 1)];
            XVER(v, 1, last + 1 + i) = static_cast<f32>(p.x);
            XVER(v, 2, last + 1 + i) = static_cast<f32>(p.y);
            XVER(v, 3, last + 1 + i) = z;
        }
    }
    if (run.dipoles.IDIPOL) {
        const auto move = [&](auto &array) {
            auto *const entry = array.data();
            std::copy_backward(entry + last, entry + N, entry + N + count);
            std::fill(entry + last, entry + last + count, 0);
        };
        move(run.dipoles.IDIP);
        move(run.dipoles.DPORA);
        move(run.dipoles.DPORB);
        move(run.dipoles.DTHK);
    }
    run.bodies.NEQNB(body) += static_cast<int>(count);
    run.mesh.NEQN += static_cast<int>(count);
    return Status::ok;
}

// Covers the body, of which the first panel is `first` and the first waterline panel `w1`, and
// writes its file.
Status cover_body(int body, int first, int w1, double PSCALE, const std::string &idf_name, RunState &run) {
    try {
        const std::vector<WaterSide> sides = water_sides(run, first, w1, run.bodies.NWLB(body));
        if (sides.empty())
            return Status::ok;
        SurfacePanels panels;
        if (failed(make_panels(run, body, sides, PSCALE, panels)) ||
            failed(insert_panels(body, first - 1 + run.bodies.NEQNB(body), panels, run)))
            return Status::failed;
        return write_generated_geometry(run, body, first, idf_name);
    } catch (const std::bad_alloc &) {
        return MSGOUT("Allocation error, insufficient RAM for IRR=3");
    }
}

} // namespace

Status FSGEN(double PSCALE, const std::vector<std::string> &idf_names, RunState &run) {
    Bodies &bodies = run.bodies;
    int first = 1;
    int w1 = 1;
    for (int b = 1; b <= std::max(bodies.NBODY, 1); ++b) {
        const bool is_hull = run.opt.IFSLID == 0 || bodies.BDTYP.empty() || bodies.BDTYP(b) == 0;
        if (is_hull && bodies.NWLB(b) != 0 &&
            failed(cover_body(b, first, w1, PSCALE, idf_names[static_cast<std::size_t>(b) - 1], run)))
            return MSGOUT("Error in generating free-surface panels for body N=", b);
        if (run.opt.IFSLID != 0 && !bodies.IPANB0.empty()) {
            bodies.IPANB0(b) = first;
            bodies.IPANB1(b) = first + bodies.NEQNB(b) - 1;
        }
        first += bodies.NEQNB(b);
        w1 += bodies.NWLB(b);
    }
    return Status::ok;
}

Status fill_waterline(const std::vector<WaterSide> &sides, SurfacePlanes planes, double PSCALE,
                      std::int64_t limit, SurfacePanels &panels) {
    WaterlineContours line;
    if (!WLSORT(sides, planes, line))
        return MSGOUT("Waterline panels do not form a closed contour");
    return make_front({sides, line, PSCALE, limit}, planes, panels);
}
