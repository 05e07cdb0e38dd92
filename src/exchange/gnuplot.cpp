// Scripts for gnuplot. Curves differ by colour, dashes and marks, so that a print in black and white can be
// read.
#include "exchange/plot.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr const char *COLOURS[] = {"#000000", "#0072B2", "#D55E00", "#009E73",
                                   "#CC79A7", "#6A3D9A", "#B8860B", "#777777"};
constexpr int DASHES[] = {1, 2, 4, 5, 3, 1, 2, 4};
constexpr int OPEN_MARKS[] = {6, 4, 8, 12, 10, 2, 1, 3}; // circle, square, triangles, diamond, crosses
constexpr int FULL_MARKS[] = {7, 5, 9, 13, 11, 2, 1, 3};
constexpr std::size_t STYLES = 8;

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.7g", value);
    return std::isfinite(value) ? text : "NaN";
}
// In which \n is a new line.
std::string double_quoted(const std::string &text) {
    std::string out = "\"";
    for (const char c : text)
        out += c == '\n' ? "\\n" : c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    return out + "\"";
}
std::string quoted(const std::string &text) {
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? "''" : std::string(1, c);
    return out + "'";
}

// Sizes of letters are pixels in SVG and points, a third more, in PNG.
std::string font(double pixels, bool png) {
    return " font '," + number(png ? 0.75 * pixels : pixels) + "'";
}

struct XAxis {
    double low = 0, high = 1;
    bool over_frequency;
    double of_zero() const { return over_frequency ? low : high; }
    double of_infinity() const { return over_frequency ? high : low; }
};

// What is in a figure, over all its panels.
struct Contents {
    XAxis x;
    bool limits = false;
};
Contents contents_of(const PlotFigure &figure, bool over_frequency) {
    Contents c{{0, 0, over_frequency}, false};
    double lowest = 1e300;
    bool at_zero = false, at_infinity = false;
    for (const PlotPanel &panel : figure.panels)
        for (const PlotCurve &curve : panel.curves) {
            for (const auto &[x, y] : curve.points) {
                c.x.high = std::max(c.x.high, x);
                lowest = std::min(lowest, x);
            }
            at_zero = at_zero || std::isfinite(curve.at_zero);
            at_infinity = at_infinity || std::isfinite(curve.at_infinity);
        }
    // From 0 where a limit stands there, and where that wastes little.
    constexpr double ROOM = 0.05, WASTE = 0.25;
    c.limits = at_zero || at_infinity;
    if (!(over_frequency ? at_zero : at_infinity) && lowest > WASTE * c.x.high && lowest < c.x.high)
        c.x.low = std::max(0.0, lowest - ROOM * (c.x.high - lowest));
    c.x.high = c.x.high > 0 ? c.x.high + ROOM * (c.x.high - c.x.low) : 1;
    return c;
}

// The power of a thousand that numbers of a panel are shown over.
int power_of(const PlotPanel &panel) {
    double largest = 0;
    for (const PlotCurve &curve : panel.curves) {
        for (const auto &[x, y] : curve.points)
            largest = std::isfinite(y) ? std::max(largest, std::abs(y)) : largest;
        for (const double y : {curve.at_zero, curve.at_infinity})
            largest = std::isfinite(y) ? std::max(largest, std::abs(y)) : largest;
    }
    if (largest == 0 || (largest >= 0.01 && largest < 1000))
        return 0;
    return 3 * static_cast<int>(std::floor(std::log10(largest) / 3));
}
bool all_zero(const PlotPanel &panel) {
    for (const PlotCurve &curve : panel.curves) {
        for (const auto &[x, y] : curve.points)
            if (std::isfinite(y) && y != 0)
                return false;
        for (const double y : {curve.at_zero, curve.at_infinity})
            if (std::isfinite(y) && y != 0)
                return false;
    }
    return true;
}

// The points of a curve and of its limits as data blocks $Nc and $Nl.
std::string data_of(const PlotPanel &panel, const XAxis &x, double scale) {
    std::string text;
    for (std::size_t k = 0; k < panel.curves.size(); ++k) {
        const PlotCurve &curve = panel.curves[k];
        text += "$C" + std::to_string(k) + " << END\n";
        double before = 0;
        for (std::size_t n = 0; n < curve.points.size(); ++n) {
            const auto &[at, y] = curve.points[n];
            // A phase that goes over 180 degrees begins anew on the other side.
            if (n > 0 && panel.range == PlotPanel::Range::degrees && std::abs(y - before) > 180)
                text += "\n";
            text += number(at) + " " + number(scale * y) + "\n";
            before = y;
        }
        text += "END\n$L" + std::to_string(k) + " << END\n";
        text += number(x.of_zero()) + " " + number(scale * curve.at_zero) + "\n" + number(x.of_infinity()) +
                " " + number(scale * curve.at_infinity) + "\nEND\n";
    }
    return text;
}

// Curves that are the marks of another way share the style of the line before them.
std::size_t style_of(const PlotPanel &panel, std::size_t k) {
    std::size_t style = 0;
    for (std::size_t n = 1; n <= k; ++n)
        style += panel.curves[n].marks_only ? 0 : 1;
    return style % STYLES;
}
std::string line_style(const PlotPanel &panel, std::size_t k) {
    const std::size_t s = style_of(panel, k);
    const std::string colour = " lc rgb '" + std::string(COLOURS[s]) + "'";
    if (panel.curves[k].marks_only)
        return "with points pt " + std::to_string(OPEN_MARKS[s]) + " ps 1.0" + colour;
    // A line that marks of another way belong to has none of its own.
    if (k + 1 < panel.curves.size() && panel.curves[k + 1].marks_only)
        return "with lines lw 1.5 dt " + std::to_string(DASHES[s]) + colour;
    return "with linespoints lw 1.3 dt " + std::to_string(DASHES[s]) + " pt " +
           std::to_string(OPEN_MARKS[s]) + " ps 0.55" + colour;
}

std::string panel_script(const PlotPanel &panel, const Contents &c, bool last_row, bool png) {
    const int power = power_of(panel);
    std::string unit = panel.unit;
    if (power != 0)
        unit = "10^{" + std::to_string(power) + "}·" + unit;
    std::string text = "set xlabel " +
                       quoted(!last_row            ? ""
                              : c.x.over_frequency ? "frequency [rad/s]"
                                                   : "period [s]") +
                       "\nset ylabel " + quoted(panel.quantity + " [" + unit + "]") + font(11, png) + "\n";
    if (panel.range == PlotPanel::Range::degrees)
        text += "set yrange [-180:180]\nset ytics 90\n";
    else
        text += std::string(all_zero(panel)                              ? "set yrange [0:1]"
                            : panel.range == PlotPanel::Range::from_zero ? "set yrange [0:*]"
                                                                         : "set yrange [*:*]") +
                "\nset ytics autofreq\n";
    text += data_of(panel, c.x, std::pow(10.0, -power)) + "plot ";
    for (std::size_t k = 0; k < panel.curves.size(); ++k) {
        const std::string n = std::to_string(k), full = std::to_string(FULL_MARKS[style_of(panel, k)]);
        text += (k == 0 ? "" : ", ") + std::string("$C") + n + " notitle " + line_style(panel, k) + ", $L" +
                n + " notitle with points pt " + full + " ps 0.9 lc rgb '" + COLOURS[style_of(panel, k)] +
                "'";
    }
    return text + "\n";
}

std::size_t names_in_row(const PlotFigure &figure) {
    return figure.columns == 1 ? 3 : 4;
}

// A strip beneath the panels with the names of the curves.
std::string key_script(const PlotFigure &figure, const Contents &c, double height, bool png) {
    const PlotPanel &panel = figure.panels.front();
    std::string text =
        "unset border\nunset tics\nunset xlabel\nunset ylabel\nunset grid\nset margins 0,0,0,0\n"
        "set origin 0,0\nset size 1," +
        number(height) +
        "\nset xrange [0:1]\nset yrange [0:1]\n"
        "set key at graph 0.5,0.98 center top horizontal samplen 4 maxcols " +
        std::to_string(names_in_row(figure)) + "\n";
    std::string note = figure.note;
    if (c.limits)
        note += (note.empty() ? "" : "\n") +
                std::string("Full marks at the ends of the axis: limits of frequency 0 and infinity.");
    if (!note.empty())
        text += "set label 1 " + double_quoted(note) + " noenhanced at graph 0.5,0 center offset 0," +
                (c.limits && !figure.note.empty() ? "1.5" : "0.6") + font(10, png) +
                " textcolor rgb '#555555'\n";
    text += "plot ";
    std::string entries;
    for (std::size_t k = 0; k < panel.curves.size(); ++k)
        if (!panel.curves[k].name.empty())
            entries += (entries.empty() ? "" : ", ") + std::string("NaN title ") +
                       quoted(panel.curves[k].name) + " " + line_style(panel, k);
    if (c.limits)
        entries += (entries.empty() ? "" : ", ") +
                   std::string("NaN title 'limits' with points pt 7 ps 0.9 lc rgb '#000000'");
    return text + (entries.empty() ? "NaN notitle" : entries) + "\n";
}

} // namespace

std::string gnuplot_script(const PlotFigure &figure, const PlotRequest &request, const std::string &file) {
    constexpr double WIDTH = 420, HEIGHT = 230, HEAD = 40, KEY_LINE = 22, FOOT = 24, FOOT_LINE = 16; // pixels
    const Contents c = contents_of(figure, request.over_frequency);
    const std::size_t columns = figure.columns, rows = (figure.panels.size() + columns - 1) / columns;
    std::size_t named = c.limits ? 1 : 0;
    for (const PlotCurve &curve : figure.panels.front().curves)
        named += curve.name.empty() ? 0 : 1;
    const double key =
        KEY_LINE * std::ceil(static_cast<double>(named) / static_cast<double>(names_in_row(figure))) + FOOT +
        (c.limits ? FOOT_LINE : 0);
    const double width = WIDTH * (columns == 1 ? 1.6 : static_cast<double>(columns)),
                 height = HEAD + HEIGHT * static_cast<double>(rows) + key;
    const std::string size = number(width) + "," + number(height);
    std::string text = request.png ? "set terminal pngcairo size " + size + " font 'Helvetica,9' dashed\n"
                                   : "set terminal svg size " + size +
                                         " font 'Helvetica,12' dashed background "
                                         "'white'\n";
    text += "set encoding utf8\nset output " + quoted(file) + "\nset multiplot\n";
    text += "set label 1 " + quoted(figure.title) + " noenhanced at screen 0.5," +
            number(1 - 0.5 * HEAD / height) + " center" + font(14, request.png) + "\n";
    text += "set grid lc rgb '#cccccc' lt 1 lw 0.5 dt 3\nset border lw 0.8\nset xrange [" + number(c.x.low) +
            ":" + number(c.x.high) + "]\n";
    for (std::size_t k = 0; k < figure.panels.size(); ++k) {
        const std::size_t row = k / columns, column = k % columns;
        text += "set origin " + number(static_cast<double>(column) / static_cast<double>(columns)) + "," +
                number((key + HEIGHT * static_cast<double>(rows - 1 - row)) / height) + "\nset size " +
                number(1.0 / static_cast<double>(columns)) + "," + number(HEIGHT / height) + "\n";
        text += "set lmargin 10\nset rmargin 2\nset tmargin 0.8\nset bmargin 3\n";
        text += panel_script(figure.panels[k], c, row + 1 == rows, request.png);
        if (k == 0)
            text += "unset label 1\n";
    }
    return text + key_script(figure, c, key / height, request.png) + "unset multiplot\nset output\n";
}
