#include "case/outline.hpp"

#include "base/text.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

BodyPoint minus(const BodyPoint &a, const BodyPoint &b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
double dot(const BodyPoint &a, const BodyPoint &b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
double triple(const BodyPoint &a, const BodyPoint &b, const BodyPoint &c) {
    return a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
           a[2] * (b[0] * c[1] - b[1] * c[0]);
}

// Solid angle of a triangle seen from a point (van Oosterom and Strackee 1983).
double solid_angle(const BodyPoint &at, const BodyPoint &p, const BodyPoint &q, const BodyPoint &r) {
    const BodyPoint a = minus(p, at), b = minus(q, at), c = minus(r, at);
    const double la = std::sqrt(dot(a, a)), lb = std::sqrt(dot(b, b)), lc = std::sqrt(dot(c, c));
    const double below = la * lb * lc + dot(a, b) * lc + dot(b, c) * la + dot(c, a) * lb;
    return 2 * std::atan2(triple(a, b, c), below);
}

// Hull and its image in z = 0 are a closed surface: its solid angle is 4 pi inside, 0 outside.
bool is_inside(const BodyPoint &at, const Outline &body) {
    double angle = 0;
    for (const BodyPanel &panel : body.panels) {
        const auto &p = panel.at;
        BodyPoint q[4];
        for (std::size_t k = 0; k < 4; ++k)
            q[k] = {p[k][0], p[k][1], -p[k][2]};
        angle += solid_angle(at, p[0], p[1], p[2]) + solid_angle(at, p[0], p[2], p[3]);
        angle -= solid_angle(at, q[0], q[1], q[2]) + solid_angle(at, q[0], q[2], q[3]);
    }
    return std::fabs(angle) > 2 * std::numbers::pi;
}

bool boxes_meet(const Outline &a, const Outline &b) {
    for (std::size_t k = 0; k < 3; ++k)
        if (a.low[k] >= b.high[k] || b.low[k] >= a.high[k])
            return false;
    return true;
}

// A hundred panels, evenly chosen: a body that lies in another one has more of them there.
bool reaches_into(const Outline &a, const Outline &b) {
    const std::size_t step = 1 + a.panels.size() / 100;
    for (std::size_t k = 0; k < a.panels.size(); k += step)
        if (is_inside(shape_of(a.panels[k]).centre, b))
            return true;
    return false;
}

bool same_panels(const Outline &a, const Outline &b) {
    if (a.panels.size() != b.panels.size() || a.panels.empty())
        return false;
    const double size = a.high[0] - a.low[0] + a.high[1] - a.low[1];
    for (std::size_t k = 0; k < 3; ++k)
        if (std::fabs(a.low[k] - b.low[k]) > 1e-3 * size || std::fabs(a.high[k] - b.high[k]) > 1e-3 * size)
            return false;
    const BodyPoint apart = minus(shape_of(a.panels[0]).centre, shape_of(b.panels[0]).centre);
    return std::sqrt(dot(apart, apart)) < 1e-3 * size;
}

bool refuse(std::string &error, const std::string &file, const std::string &why) {
    error = why.empty() ? file + ": it is no geometry file" : why;
    return false;
}

// The panel in all images of the body, moved to its place.
void add_placed(const BodyPanel &panel, const RunBody &body, Outline &outline) {
    const double angle = body.heading * std::numbers::pi / 180, c = std::cos(angle), s = std::sin(angle);
    for (int mx = 0; mx <= (outline.index[0] == 1 ? 1 : 0); ++mx)
        for (int my = 0; my <= (outline.index[1] == 1 ? 1 : 0); ++my) {
            BodyPanel image = panel;
            for (BodyPoint &p : image.at) {
                const double x = mx == 1 ? -p[0] : p[0], y = my == 1 ? -p[1] : p[1];
                p = {c * x - s * y + body.place[0], s * x + c * y + body.place[1], p[2] + body.place[2]};
            }
            if (mx != my)
                std::reverse(image.at.begin(), image.at.end());
            outline.panels.push_back(image);
        }
}

} // namespace

bool read_outline(const std::string &file, const RunBody &body, Outline &outline, std::string &error) {
    outline = {};
    FreeReader in;
    f32 head[2];
    if (!in.open(file)) {
        error = file + " cannot be opened";
        return false;
    }
    if (!in.line(outline.title, std::string::npos) || !in.read_array(head, 2))
        return refuse(error, file, in.fault());
    outline.ULEN = static_cast<double>(head[0]);
    outline.GRAV = static_cast<double>(head[1]);
    if (outline.ULEN <= 0)
        return refuse(error, file,
                      file + ": it is a file of several bodies, give each a [[body]] of its own");
    if (!in.read_array(outline.index, 2) || !in.read(outline.given) || outline.given < 1)
        return refuse(error, file, in.fault());
    std::vector<BodyPanel> panels;
    for (int k = 0; k < outline.given; ++k) {
        f32 v[12];
        if (!in.read_array(v, 12))
            return refuse(error, file, in.fault());
        panels.emplace_back();
        for (std::size_t c = 0; c < 12; ++c)
            panels.back().at[c / 3][c % 3] = static_cast<double>(v[c]) * outline.ULEN;
    }
    double size = 0;
    for (const BodyPanel &panel : panels)
        for (const BodyPoint &p : panel.at)
            size = std::max({size, std::fabs(p[0]), std::fabs(p[1]), std::fabs(p[2])});
    int hull = 0;
    for (const BodyPanel &panel : panels) {
        const auto in_surface = [&](const BodyPoint &p) {
            return std::fabs(p[2] + body.place[2]) < IN_SURFACE * size;
        };
        if (std::all_of(panel.at.begin(), panel.at.end(), in_surface)) {
            outline.has_interior = true;
            continue;
        }
        for (std::size_t k = 0; k < 4; ++k) {
            const BodyPoint along = minus(panel.at[(k + 1) % 4], panel.at[k]);
            if (in_surface(panel.at[k]) && in_surface(panel.at[(k + 1) % 4]) && dot(along, along) > 0) {
                ++outline.wet_sides;
                outline.mean_side += std::sqrt(dot(along, along));
            }
        }
        outline.mean_area += shape_of(panel).area;
        ++hull;
        add_placed(panel, body, outline);
    }
    const int images = (outline.index[0] == 1 ? 2 : 1) * (outline.index[1] == 1 ? 2 : 1);
    outline.mean_area /= std::max(1, hull);
    outline.mean_side /= std::max(1, outline.wet_sides);
    outline.reaches_surface = outline.wet_sides > 0;
    outline.wet_sides *= images;
    outline.with_images = outline.given * images;
    outline.low = {1e30, 1e30, 1e30};
    outline.high = {-1e30, -1e30, -1e30};
    for (const BodyPanel &panel : outline.panels)
        for (const BodyPoint &p : panel.at)
            for (std::size_t k = 0; k < 3; ++k) {
                outline.low[k] = std::min(outline.low[k], p[k]);
                outline.high[k] = std::max(outline.high[k], p[k]);
            }
    return true;
}

double waterplane(const Outline &outline) {
    double area = 0;
    for (const BodyPanel &panel : outline.panels) {
        const PanelShape shape = shape_of(panel);
        area += shape.area * shape.normal[2];
    }
    return outline.reaches_surface ? std::fabs(area) : 0;
}

double panels_made(const Outline &outline, int ISOR) {
    constexpr double FRONT = 1.16; // panels of an advancing front in a square of the mean side, as measured
    if (!outline.reaches_surface)
        return 0;
    const double squares = waterplane(outline) / (outline.mean_side * outline.mean_side);
    return ISOR == 0 ? FRONT * squares
                     : outline.wet_sides * (1 + std::floor(2 * squares / outline.wet_sides));
}

bool overlap(const Outline &a, const Outline &b) {
    return boxes_meet(a, b) && (same_panels(a, b) || reaches_into(a, b) || reaches_into(b, a));
}
