// A ship hull from a table of offsets.
#include "shapes.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace {

constexpr int FINE = 16; // points between two waterlines of the table, along which the girth is measured
constexpr std::size_t MOST_VALUES = 1000000;

// Half-breadths y(i, j) at station i and waterline j; heights above the keel.
struct Offsets {
    std::vector<double> x, z;
    std::vector<std::vector<double>> y;
};

bool increasing(const std::vector<double> &values) {
    return std::adjacent_find(values.begin(), values.end(), std::greater_equal<>()) == values.end();
}

// The numbers of a line up to a #; false when something else is there.
bool numbers(std::string line, std::vector<double> &values) {
    values.clear();
    line.resize(std::min(line.size(), line.find('#')));
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == ',' || c == '\t' || c == '\r'; }, ' ');
    const char *at = line.data(), *end = at + line.size();
    for (;;) {
        while (at != end && *at == ' ')
            ++at;
        if (at == end)
            return true;
        at += *at == '+' ? 1 : 0;
        double value = 0;
        const auto [behind, fault] = std::from_chars(at, end, value);
        if (fault != std::errc() || !std::isfinite(value) || (behind != end && *behind != ' '))
            return false;
        values.push_back(value);
        at = behind;
    }
}

// Returns what is wrong with the file.
std::string read_offsets(const std::string &name, Offsets &table) {
    std::error_code ignored;
    std::ifstream in(name);
    if (!in || !std::filesystem::is_regular_file(name, ignored))
        return "--table " + name + ": the file cannot be opened";
    std::vector<double> values;
    std::size_t count = 0;
    int number = 0;
    const auto wrong = [&](const std::string &words) {
        return "--table " + name + ", line " + std::to_string(number) + ": " + words;
    };
    for (std::string line; std::getline(in, line);) {
        ++number;
        if (!numbers(line, values))
            return wrong("not all of it are numbers");
        if (values.empty())
            continue;
        if ((count += values.size()) > MOST_VALUES)
            return wrong("the table is too long");
        if (table.z.empty()) {
            table.z = values;
            if (table.z.size() < 2 || !increasing(table.z))
                return wrong("the heights of two waterlines or more are wanted here, the lowest first");
            continue;
        }
        if (values.size() != table.z.size() + 1)
            return wrong("wanted are x and " + std::to_string(table.z.size()) +
                         " half-breadths, one a waterline");
        table.x.push_back(values.front());
        if (!increasing(table.x))
            return wrong("the x of the stations must increase");
        table.y.emplace_back(values.begin() + 1, values.end());
        if (std::any_of(table.y.back().begin(), table.y.back().end(), [](double y) { return y < 0; }))
            return wrong("a half-breadth is negative");
    }
    return table.x.size() < 2 ? "--table " + name + ": two stations or more are wanted" : "";
}

// The slopes of the monotone cubic through the points. Source: F. N. Fritsch, J. Butland, A method for
// constructing local monotone piecewise cubic interpolants, SIAM J. Sci. Stat. Comput. 5 (1984); it never
// overshoots.
std::vector<double> slopes(const std::vector<double> &x, const std::vector<double> &y) {
    const std::size_t n = x.size();
    std::vector<double> h(n - 1), rise(n - 1), d(n);
    for (std::size_t i = 0; i + 1 < n; ++i) {
        h[i] = x[i + 1] - x[i];
        rise[i] = (y[i + 1] - y[i]) / h[i];
    }
    if (n == 2)
        return {rise[0], rise[0]};
    for (std::size_t i = 1; i + 1 < n; ++i)
        if (rise[i - 1] * rise[i] > 0) {
            const double a = 2 * h[i] + h[i - 1], b = h[i] + 2 * h[i - 1];
            d[i] = (a + b) / (a / rise[i - 1] + b / rise[i]);
        }
    // At an end the parabola of three points, limited to the sense of the first rise.
    const auto end = [](double h0, double h1, double r0, double r1) {
        const double slope = ((2 * h0 + h1) * r0 - h0 * r1) / (h0 + h1);
        return slope * r0 <= 0 ? 0 : std::fabs(slope) > 3 * std::fabs(r0) ? 3 * r0 : slope;
    };
    d[0] = end(h[0], h[1], rise[0], rise[1]);
    d[n - 1] = end(h[n - 2], h[n - 3], rise[n - 2], rise[n - 3]);
    return d;
}

// The value of that cubic at t.
double cubic(const std::vector<double> &x, const std::vector<double> &y, const std::vector<double> &slope,
             double t) {
    const auto behind = std::upper_bound(x.begin() + 1, x.end() - 1, t);
    const std::size_t i = static_cast<std::size_t>(behind - x.begin()) - 1;
    const double h = x[i + 1] - x[i], u = (t - x[i]) / h, w = 1 - u;
    return y[i] * w * w * (1 + 2 * u) + y[i + 1] * u * u * (1 + 2 * w) +
           h * u * w * (slope[i] * w - slope[i + 1] * u);
}

// n + 1 points of a section, from the keel in y = 0 up to `draft` at equal steps of its girth; y, height.
std::vector<std::array<double, 2>> section(const std::vector<double> &z, const std::vector<double> &y,
                                           double draft, int n) {
    std::vector<std::array<double, 2>> fine{{0, z[0]}}, points;
    const std::vector<double> slope = slopes(z, y);
    for (std::size_t j = 0; j + 1 < z.size() && z[j] < draft; ++j) {
        const double top = std::min(z[j + 1], draft);
        for (int k = j == 0 ? 0 : 1; k <= FINE; ++k) {
            const double height = k == FINE ? top : z[j] + (top - z[j]) * k / FINE;
            fine.push_back({std::max(0.0, cubic(z, y, slope, height)), height});
        }
    }
    std::vector<double> girth{0};
    for (std::size_t k = 1; k < fine.size(); ++k)
        girth.push_back(girth.back() + std::hypot(fine[k][0] - fine[k - 1][0], fine[k][1] - fine[k - 1][1]));
    for (int i = 0; i < n; ++i) {
        const double wanted = girth.back() * i / n;
        const std::size_t k = static_cast<std::size_t>(
            std::upper_bound(girth.begin() + 1, girth.end() - 1, wanted) - girth.begin());
        const double part = girth[k] > girth[k - 1] ? (wanted - girth[k - 1]) / (girth[k] - girth[k - 1]) : 0;
        points.push_back({fine[k - 1][0] + part * (fine[k][0] - fine[k - 1][0]),
                          fine[k - 1][1] + part * (fine[k][1] - fine[k - 1][1])});
    }
    points.push_back(fine.back());
    return points;
}

// Adds a panel, unless it has no area or lies in the plane y = 0, where both sides of the hull are one.
void add(Panels &panels, const MeshPanel &panel) {
    const auto &p = panel.vertex;
    Point a, b;
    bool flat = true;
    for (std::size_t c = 0; c < 3; ++c) {
        a[c] = p[2][c] - p[0][c];
        b[c] = p[3][c] - p[1][c];
    }
    for (const Point &v : p)
        flat = flat && v[1] == 0;
    const double area =
        std::hypot(a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]);
    const double size = std::hypot(a[0], a[1], a[2]) + std::hypot(b[0], b[1], b[2]);
    if (!flat && area > 1e-9 * size * size)
        panels.push_back(panel);
}

} // namespace

// The half y >= 0. An end whose half-breadths are not all 0 is closed by a transom.
std::string ship(const Sizes &s, Panels &half) {
    Offsets table;
    if (std::string wrong = read_offsets(s.table, table); !wrong.empty())
        return wrong;
    const double draft = s.draft > 0 ? table.z.front() + s.draft : table.z.back();
    if (draft > table.z.back())
        return refused("--draft", s.draft, "the table ends at " + in_words(table.z.back() - table.z.front()));
    if (too_many((1.0 * s.nu + 2 * s.nw) * s.nv))
        return refused("--nu", s.nu, "more than a million panels");
    const std::size_t stations = table.x.size(), lines = table.z.size();
    std::vector<std::vector<double>> at_line(lines, std::vector<double>(stations)), slope;
    for (std::size_t j = 0; j < lines; ++j) {
        for (std::size_t i = 0; i < stations; ++i)
            at_line[j][i] = table.y[i][j];
        slope.push_back(slopes(table.x, at_line[j]));
    }
    const Spacing to{s.cosine};
    std::vector<double> x, y(lines);
    std::vector<std::vector<std::array<double, 2>>> sections;
    for (const double t : steps(s.nu)) {
        x.push_back(t >= 1 ? table.x.back()
                           : table.x.front() + (table.x.back() - table.x.front()) * to.ends(t));
        for (std::size_t j = 0; j < lines; ++j)
            y[j] = std::max(0.0, cubic(table.x, at_line[j], slope[j], x.back()));
        sections.push_back(section(table.z, y, draft, s.nv));
    }
    const std::size_t nu = static_cast<std::size_t>(s.nu), nv = static_cast<std::size_t>(s.nv);
    const auto at = [&](std::size_t i, std::size_t j) {
        return Point{x[i], sections[i][j][0], sections[i][j][1] - draft};
    };
    half.clear();
    for (std::size_t i = 0; i < nu; ++i)
        for (std::size_t j = 0; j < nv; ++j)
            add(half, {{at(i, j), at(i, j + 1), at(i + 1, j + 1), at(i + 1, j)}});
    // Between the points of the section and as many of its middle line.
    for (const std::size_t i : {std::size_t{0}, nu}) {
        const auto in = [&](std::size_t j, int k) {
            const double outward = static_cast<double>(k) / s.nw;
            const Point edge = at(i, j);
            const double middle = (table.z.front() - draft) * (1 - static_cast<double>(j) / s.nv);
            return Point{x[i], outward * edge[1],
                         k == s.nw ? edge[2] : middle + outward * (edge[2] - middle)};
        };
        for (std::size_t j = 0; j < nv; ++j)
            for (int k = 0; k < s.nw; ++k) {
                MeshPanel panel{{in(j, k), in(j, k + 1), in(j + 1, k + 1), in(j + 1, k)}};
                if (i == 0)
                    std::reverse(panel.vertex.begin(), panel.vertex.end());
                add(half, panel);
            }
    }
    if (half.empty())
        return "--table " + s.table + ": all half-breadths up to the draft are 0";
    return "";
}
