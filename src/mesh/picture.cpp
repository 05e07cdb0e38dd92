#include "mesh/picture.hpp"

#include "mesh/hidden.hpp"
#include "mesh/projection.hpp"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace {

// Sizes of the page, in its units (points of a screen).
constexpr double PAGE = 1000, RIM = 30, GAP = 44, HIGHEST = 520, PERSPECTIVE_HEIGHT = 520, LINE = 17;
constexpr double CELLS = 1.0;          // cells of the order of painting, over the units of the page
constexpr double LEAST = 1.0e-3;       // extent of a view that is drawn to scale, over the size
constexpr std::size_t LINES_TOLD = 12; // findings below the picture

using Colour = std::array<double, 3>;
constexpr Colour WHITE{255, 255, 255}, INSIDE{196, 190, 180}, FAULT{222, 60, 55};
struct Look {
    PanelKind kind;
    const char *name;
    Colour colour;
};
constexpr Look LOOKS[] = {{PanelKind::hull, "hull", {104, 160, 214}},
                          {PanelKind::interior, "interior free surface", {126, 200, 150}},
                          {PanelKind::plate, "plate (dipole panels)", {240, 180, 80}},
                          {PanelKind::lid, "damping lid", {186, 150, 216}},
                          {PanelKind::made, "free surface", {150, 212, 216}}};
const Look &look_of(PanelKind kind) {
    return *std::find_if(std::begin(LOOKS), std::end(LOOKS), [&](const Look &l) { return l.kind == kind; });
}

Colour mixed(const Colour &a, const Colour &b, double part) {
    return {a[0] + part * (b[0] - a[0]), a[1] + part * (b[1] - a[1]), a[2] + part * (b[2] - a[2])};
}
Colour paler(const Colour &c) {
    return mixed(c, WHITE, 0.5);
}

[[gnu::format(printf, 2, 3)]] void put(std::string &svg, const char *format, ...) {
    char text[400];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    svg += text;
}
std::string hex(const Colour &c) {
    std::string text;
    put(text, "#%02x%02x%02x", static_cast<unsigned>(c[0]), static_cast<unsigned>(c[1]),
        static_cast<unsigned>(c[2]));
    return text;
}
// Text of the user as text of the file.
std::string escaped(const std::string &text) {
    std::string safe;
    for (const char c : text)
        safe += c == '&'                                  ? "&amp;"
                : c == '<'                                ? "&lt;"
                : c == '>'                                ? "&gt;"
                : static_cast<unsigned char>(c) - 32 > 94 ? "?"
                                                          : std::string(1, c);
    return safe;
}
void put_text(std::string &svg, double x, double y, const char *style, const std::string &text) {
    put(svg, "<text x=\"%.1f\" y=\"%.1f\" %s>", x, y, style);
    svg += escaped(text) + "</text>\n";
}

// A view and its place on the page: the point (x0, y0) of the plane is at the lower left corner.
struct Frame {
    PictureView view;
    const char *title, *right, *up; // axes that are told
    Camera camera;
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0; // extent in the plane
    double left = 0, top = 0, scale = 1;   // on the page

    double px(double x) const { return left + (x - x0) * scale; }
    double py(double y) const { return top + (y1 - y) * scale; }
    double width() const { return (x1 - x0) * scale; }
    double height() const { return (y1 - y0) * scale; }
};

Frame frame_of(const Picture &picture, PictureView view) {
    Frame f{view, "perspective", "", "", camera_of(picture, view)};
    if (view == PictureView::side)
        f.title = "from the side, y < 0", f.right = "x", f.up = "z";
    if (view == PictureView::front)
        f.title = "from the front, x > 0", f.right = "y", f.up = "z";
    if (view == PictureView::top)
        f.title = "from above", f.right = "x", f.up = "y";
    f.x0 = f.y0 = 1e300;
    f.x1 = f.y1 = -1e300;
    for (const DrawnPanel &drawn : picture.panels)
        for (const BodyPoint &p : drawn.panel.at) {
            const auto [x, y, nearness] = project(f.camera, p);
            f.x0 = std::min(f.x0, x);
            f.x1 = std::max(f.x1, x);
            f.y0 = std::min(f.y0, y);
            f.y1 = std::max(f.y1, y);
        }
    return f;
}

// Of a panel as it is seen: the fill, darker where it is turned away from the light at the eye's upper left.
std::string fill_of(const DrawnPanel &drawn, const Camera &camera, bool front) {
    const Look &look = look_of(drawn.panel.kind);
    Colour colour = look.colour;
    if (!front)
        colour = look.kind == PanelKind::hull ? INSIDE : mixed(colour, {110, 110, 110}, 0.25);
    if (drawn.fault)
        colour = FAULT;
    if (drawn.image)
        colour = paler(colour);
    const BodyPoint n = shape_of(drawn.panel).normal;
    double along = 0;
    for (std::size_t c = 0; c < 3; ++c)
        along += n[c] * (0.75 * camera.eye[c] + 0.5 * camera.up[c] - 0.43 * camera.right[c]);
    return hex(mixed({0, 0, 0}, colour, 0.78 + 0.22 * std::clamp(front ? -along : along, 0.0, 1.0)));
}

void put_path(std::string &svg, const Frame &f, const BodyPanel &panel) {
    for (std::size_t v = 0; v < 4; ++v) {
        const auto [x, y, nearness] = project(f.camera, panel.at[v]);
        put(svg, "%s%.1f,%.1f", v == 0 ? "" : " ", f.px(x), f.py(y));
    }
}

// The sides of a panel in the waterline.
void put_waterline(std::string &svg, const Frame &f, const BodyPanel &panel, double tolerance) {
    for (std::size_t v = 0; v < 4; ++v) {
        const BodyPoint &a = panel.at[v], &b = panel.at[(v + 1) % 4];
        if (a == b || std::fabs(a[2]) > tolerance || std::fabs(b[2]) > tolerance)
            continue;
        const auto p = project(f.camera, a), q = project(f.camera, b);
        put(svg, "<path class=\"w\" d=\"M%.1f %.1fL%.1f %.1f\"/>\n", f.px(p.x), f.py(p.y), f.px(q.x),
            f.py(q.y));
    }
}

void put_panels(std::string &svg, const Picture &picture, const Frame &f, double size) {
    std::vector<SeenPanel> seen;
    std::vector<bool> front;
    for (const DrawnPanel &drawn : picture.panels) {
        SeenPanel s;
        for (std::size_t v = 0; v < 4; ++v) {
            const auto [x, y, nearness] = project(f.camera, drawn.panel.at[v]);
            s.at[v] = {(x - f.x0) * f.scale * CELLS, (y - f.y0) * f.scale * CELLS};
            s.nearness[v] = nearness;
        }
        const auto &p = s.at;
        front.push_back(
            (p[2][0] - p[0][0]) * (p[3][1] - p[1][1]) - (p[2][1] - p[0][1]) * (p[3][0] - p[1][0]) >= 0);
        seen.push_back(s);
    }
    const std::vector<int> order = painting_order(seen, static_cast<int>(f.width() * CELLS) + 1,
                                                  static_cast<int>(f.height() * CELLS) + 1);
    const double pen = std::clamp(25.0 / std::sqrt(static_cast<double>(picture.panels.size())), 0.12, 0.7);
    put(svg, "<g stroke=\"#2b3d50\" stroke-width=\"%.2f\" stroke-linejoin=\"round\">\n", pen);
    std::vector<bool> shown(picture.panels.size());
    for (const int k : order) {
        const std::size_t i = static_cast<std::size_t>(k);
        const DrawnPanel &drawn = picture.panels[i];
        svg += "<polygon fill=\"" + fill_of(drawn, f.camera, front[i]) + "\" points=\"";
        put_path(svg, f, drawn.panel);
        svg += "\"/>\n";
        shown[i] = true;
        if (picture.waterline &&
            (drawn.panel.kind == PanelKind::hull || drawn.panel.kind == PanelKind::plate))
            put_waterline(svg, f, drawn.panel, IN_SURFACE * size);
    }
    for (std::size_t i = 0; i < picture.panels.size(); ++i)
        if (picture.panels[i].fault && !picture.panels[i].image && !shown[i]) {
            svg += "<polygon class=\"f\" points=\"";
            put_path(svg, f, picture.panels[i].panel);
            svg += "\"/>\n";
        }
    svg += "</g>\n";
}

void put_frame(std::string &svg, const Picture &picture, const Frame &f, double size) {
    put_text(svg, f.left, f.top - 20, "class=\"h\"", f.title);
    const double y = f.py(0);
    const bool level = picture.waterline && (f.view == PictureView::side || f.view == PictureView::front);
    if (level)
        put(svg, "<path class=\"z\" d=\"M%.1f %.1fH%.1f\"/>\n", f.left - 14, y, f.left + f.width() + 14);
    put_panels(svg, picture, f, size);
    if (level)
        put_text(svg, f.left + f.width() + 16, y + 3, "class=\"b\"", "z = 0");
    if (f.view == PictureView::perspective)
        return;
    // Axes beside the lower left corner.
    const double x = f.left - 16, low = f.top + f.height() + 14;
    put(svg, "<path class=\"a\" d=\"M%.1f %.1fh22m-4 -3l4 3l-4 3M%.1f %.1fv-22m-3 4l3 -4l3 4\"/>\n", x, low,
        x, low);
    put_text(svg, x + 26, low + 3, "", f.right);
    put_text(svg, x - 3, low - 26, "", f.up);
}

// A bar of a round length of about a sixth of the page.
void put_scale(std::string &svg, double x, double y, double scale) {
    const double wanted = PAGE / 6 / scale, decade = std::pow(10, std::floor(std::log10(wanted)));
    const double length = wanted >= 5 * decade ? 5 * decade : wanted >= 2 * decade ? 2 * decade : decade;
    put(svg, "<path class=\"s\" d=\"M%.1f %.1fv8m0 -4h%.1fm0 -4v8\"/>\n", x, y, length * scale);
    char text[40];
    std::snprintf(text, sizeof text, "length %g", length);
    put_text(svg, x + length * scale + 8, y + 8, "", text);
}

void put_swatch(std::string &svg, double &x, double &y, const Colour &colour, const std::string &text) {
    const double width = 40 + 6.6 * static_cast<double>(text.size());
    if (x + width > PAGE - RIM) {
        x = RIM;
        y += LINE + 4;
    }
    put(svg,
        "<rect x=\"%.1f\" y=\"%.1f\" width=\"14\" height=\"11\" fill=\"%s\" stroke=\"#2b3d50\" "
        "stroke-width=\"0.5\"/>\n",
        x, y, hex(colour).c_str());
    put_text(svg, x + 20, y + 10, "", text);
    x += width;
}

// Colours with the panels given, and what the check found. Returns where the page ends.
double put_legend(std::string &svg, const Picture &picture, double top) {
    double x = RIM, y = top;
    std::size_t images = 0, faults = 0, hulls = 0;
    const Colour first = look_of(picture.panels[0].panel.kind).colour;
    for (const Look &look : LOOKS) {
        std::size_t count = 0;
        for (const DrawnPanel &drawn : picture.panels)
            count += drawn.panel.kind == look.kind && !drawn.image ? 1 : 0;
        hulls += look.kind == PanelKind::hull ? count : 0;
        if (count > 0)
            put_swatch(svg, x, y, look.colour, std::string(look.name) + " " + std::to_string(count));
    }
    for (const DrawnPanel &drawn : picture.panels) {
        images += drawn.image ? 1 : 0;
        faults += drawn.fault && !drawn.image ? 1 : 0;
    }
    if (images > 0)
        put_swatch(svg, x, y, paler(first), "images, paler " + std::to_string(images));
    if (hulls > 0)
        put_swatch(svg, x, y, INSIDE, "dry side of the hull");
    if (faults > 0)
        put_swatch(svg, x, y, FAULT, "faulty panels " + std::to_string(faults));
    y += LINE + 6;
    std::size_t told = 0;
    for (const auto *lines : {&picture.faults, &picture.notes})
        for (const std::string &line : *lines)
            if (told++ < LINES_TOLD)
                put_text(svg, RIM, y += LINE, lines == &picture.faults ? "class=\"r\"" : "class=\"n\"", line);
    if (told > LINES_TOLD)
        put_text(svg, RIM, y += LINE, "class=\"n\"",
                 "and " + std::to_string(told - LINES_TOLD) + " more findings");
    return y + RIM;
}

// Places the views; returns them and where the legend begins.
std::vector<Frame> laid_out(const Picture &picture, double &end) {
    const double top = RIM + 46, room = PAGE - 2 * RIM - 2 * GAP;
    // What is seen on edge or end gets a frame all the same.
    double size = 0;
    for (const PictureView view : {PictureView::side, PictureView::front, PictureView::top}) {
        const Frame f = frame_of(picture, view);
        size = std::max({size, f.x1 - f.x0, f.y1 - f.y0});
    }
    const double least = LEAST * size;
    const auto fit = [least](Frame &f, double width, double height) {
        f.scale = std::min(width / std::max(f.x1 - f.x0, least), height / std::max(f.y1 - f.y0, least));
    };
    if (picture.view != PictureView::all) {
        Frame f = frame_of(picture, picture.view);
        fit(f, room, HIGHEST);
        f.left = RIM + GAP / 2 + (room - f.width()) / 2;
        f.top = top;
        end = f.top + f.height() + GAP;
        return {f};
    }
    Frame side = frame_of(picture, PictureView::side), front = frame_of(picture, PictureView::front),
          plan = frame_of(picture, PictureView::top), eye = frame_of(picture, PictureView::perspective);
    const double x = side.x1 - side.x0, y = front.x1 - front.x0, z = side.y1 - side.y0;
    side.scale = std::min((room - GAP) / (x + y), HIGHEST / (y + z));
    front.scale = plan.scale = side.scale;
    const double spare = (room - GAP - (x + y) * side.scale) / 2;
    side.left = plan.left = RIM + GAP / 2 + spare;
    side.top = front.top = top;
    front.left = side.left + side.width() + GAP * 2;
    plan.top = side.top + side.height() + GAP * 1.5;
    fit(eye, room, PERSPECTIVE_HEIGHT);
    eye.left = RIM + GAP / 2 + (room - eye.width()) / 2;
    eye.top = plan.top + plan.height() + GAP * 1.6;
    end = eye.top + eye.height() + GAP / 2;
    return {side, front, plan, eye};
}

bool one_point(const Picture &picture) {
    for (const DrawnPanel &drawn : picture.panels)
        for (const BodyPoint &p : drawn.panel.at)
            if (p != picture.panels[0].panel.at[0])
                return false;
    return true;
}

} // namespace

DrawnPanel image_of(const DrawnPanel &drawn, std::size_t axis) {
    DrawnPanel image = drawn;
    std::reverse(image.panel.at.begin(), image.panel.at.end());
    for (BodyPoint &p : image.panel.at)
        p[axis] = -p[axis];
    image.image = true;
    return image;
}

std::string picture_svg(const Picture &picture) {
    if (one_point(picture))
        return "";
    double end = 0, size = 0;
    const std::vector<Frame> frames = laid_out(picture, end);
    for (const Frame &f : frames)
        size = std::max({size, f.x1 - f.x0, f.y1 - f.y0});
    std::string body;
    put_text(body, RIM, RIM + 6, "class=\"t\"", picture.title);
    for (const Frame &f : frames)
        put_frame(body, picture, f, size);
    // Of the views along the axes; lengths of a perspective have no scale.
    if (frames[0].view != PictureView::perspective)
        put_scale(body, PAGE - RIM - PAGE / 6 - 90, RIM - 4, frames[0].scale);
    const double height = put_legend(body, picture, end);
    std::string svg;
    put(svg,
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" viewBox=\"0 0 %.0f "
        "%.0f\">\n",
        PAGE, height, PAGE, height);
    svg +=
        "<style>text{font:12px "
        "sans-serif;fill:#333}.t{font-size:15px;font-weight:bold}.h{font-weight:bold;fill:#555}"
        ".w{stroke:#0a3fd0;stroke-width:1.5;fill:none;stroke-linecap:round}.z{stroke:#0a3fd0;stroke-width:.8;"
        "stroke-dasharray:7 3}.b{fill:#0a3fd0;font-size:10px}.a,.s{stroke:#333;fill:none}"
        ".f{fill:none;stroke:#d11;stroke-width:1.2;stroke-dasharray:3 2}.r{fill:#c11}.n{fill:#777}</style>\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    return svg + body + "</svg>\n";
}
