#include "shapes.hpp"

#include <cmath>
#include <cstdio>

namespace {

constexpr double HALF_PI = 1.5707963267948966;
constexpr double MOST_PANELS = 1e6; // a hundred times what a solution takes

Point minus(const Point &a, const Point &b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Point cross(const Point &a, const Point &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Point &a, const Point &b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

} // namespace

double Spacing::end(double t) const {
    return !cosine || t >= 1 ? t : std::sin(HALF_PI * t);
}
double Spacing::ends(double t) const {
    return !cosine || t >= 1 ? t : (1 - std::cos(2 * HALF_PI * t)) / 2;
}

std::vector<double> steps(int n) {
    std::vector<double> values;
    for (int i = 0; i <= n; ++i)
        values.push_back(static_cast<double>(i) / n);
    return values;
}

std::pair<double, double> quarter_circle(double u) {
    return u >= 1 ? std::pair(0.0, 1.0) : std::pair(std::cos(HALF_PI * u), std::sin(HALF_PI * u));
}

MeshPanel oriented(const MeshPanel &panel, const Point &inward) {
    const auto &p = panel.vertex;
    // The normal is along (P1 + P2 - P3 - P4) x (P1 + P4 - P2 - P3).
    const Point d1 = minus(minus({p[0][0] + p[1][0], p[0][1] + p[1][1], p[0][2] + p[1][2]}, p[2]), p[3]);
    const Point d2 = minus(minus({p[0][0] + p[3][0], p[0][1] + p[3][1], p[0][2] + p[3][2]}, p[1]), p[2]);
    if (dot(cross(d1, d2), inward) > 0)
        return panel;
    return {{p[3], p[2], p[1], p[0]}, panel.plate};
}

Panels grid(const std::vector<double> &u, const std::vector<double> &v,
            const std::function<Point(double u, double v)> &surface,
            const std::function<Point(const Point &)> &inward) {
    Panels panels;
    for (std::size_t i = 1; i < u.size(); ++i) {
        for (std::size_t j = 1; j < v.size(); ++j) {
            const MeshPanel panel{{surface(u[i - 1], v[j - 1]), surface(u[i], v[j - 1]), surface(u[i], v[j]),
                                   surface(u[i - 1], v[j])}};
            Point centre{};
            for (const Point &p : panel.vertex) {
                for (std::size_t c = 0; c < 3; ++c)
                    centre[c] += p[c] / 4;
            }
            panels.push_back(oriented(panel, inward(centre)));
        }
    }
    return panels;
}

Panels patch(int nu, int nv, const std::function<Point(double u, double v)> &surface,
             const std::function<Point(const Point &)> &inward) {
    return grid(steps(nu), steps(nv), surface, inward);
}

void append(Panels &to, const Panels &from) {
    to.insert(to.end(), from.begin(), from.end());
}

Panels raised(Panels panels, double rise) {
    for (MeshPanel &panel : panels)
        for (Point &p : panel.vertex)
            p[2] += rise;
    return panels;
}

Panels mirrored(const Panels &panels, int axis) {
    Panels all = panels;
    const std::size_t a = static_cast<std::size_t>(axis);
    for (const MeshPanel &panel : panels) {
        MeshPanel image{{panel.vertex[1], panel.vertex[0], panel.vertex[3], panel.vertex[2]}, panel.plate};
        for (Point &p : image.vertex)
            p[a] = p[a] == 0 ? 0 : -p[a];
        all.push_back(image);
    }
    return all;
}

std::string in_words(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}
std::string refused(const char *option, double value, const std::string &words) {
    return std::string(option) + " " + in_words(value) + ": " + words;
}
bool too_many(double panels) {
    return !(panels <= MOST_PANELS);
}
