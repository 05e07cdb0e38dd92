#include "shapes.hpp"

#include <cmath>

namespace {

constexpr double HALF_PI = 1.5707963267948966;

Point minus(const Point &a, const Point &b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Point cross(const Point &a, const Point &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Point &a, const Point &b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void append(Panels &to, const Panels &from) {
    to.insert(to.end(), from.begin(), from.end());
}

Point up(const Point &) {
    return {0, 0, 1};
}
Point down(const Point &) {
    return {0, 0, -1};
}

Panels disc(double radius, double z, int around, int radial,
            const std::function<Point(const Point &)> &inward) {
    return patch(
        around, radial,
        [=](double u, double v) {
            return Point{radius * v * std::cos(HALF_PI * u), radius * v * std::sin(HALF_PI * u), z};
        },
        inward);
}

} // namespace

MeshPanel oriented(const MeshPanel &panel, const Point &inward) {
    const auto &p = panel.vertex;
    // The normal is along (P1 + P2 - P3 - P4) x (P1 + P4 - P2 - P3).
    const Point d1 = minus(minus({p[0][0] + p[1][0], p[0][1] + p[1][1], p[0][2] + p[1][2]}, p[2]), p[3]);
    const Point d2 = minus(minus({p[0][0] + p[3][0], p[0][1] + p[3][1], p[0][2] + p[3][2]}, p[1]), p[2]);
    if (dot(cross(d1, d2), inward) > 0)
        return panel;
    return {{p[3], p[2], p[1], p[0]}, panel.plate};
}

Panels patch(int nu, int nv, const std::function<Point(double u, double v)> &surface,
             const std::function<Point(const Point &)> &inward) {
    Panels panels;
    for (int i = 0; i < nu; ++i) {
        for (int j = 0; j < nv; ++j) {
            const double u0 = static_cast<double>(i) / nu, u1 = static_cast<double>(i + 1) / nu;
            const double v0 = static_cast<double>(j) / nv, v1 = static_cast<double>(j + 1) / nv;
            const MeshPanel panel{{surface(u0, v0), surface(u1, v0), surface(u1, v1), surface(u0, v1)}};
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

Panels hemisphere(double radius, int around, int down_count) {
    return patch(
        around, down_count,
        [=](double u, double v) {
            // v = 0 is the waterline. A ring of triangles closes the bottom.
            const double a = HALF_PI * u, b = HALF_PI * v;
            const double r = v == 1 ? 0 : radius * std::cos(b);
            return Point{r * std::cos(a), r * std::sin(a), v == 0 ? 0 : -radius * std::sin(b)};
        },
        [](const Point &c) {
            return Point{-c[0], -c[1], -c[2]};
        });
}

Panels cylinder(double radius, double draft, int around, int down_count, int radial, bool bottom, bool lid) {
    Panels panels = patch(
        around, down_count,
        [=](double u, double v) {
            return Point{radius * std::cos(HALF_PI * u), radius * std::sin(HALF_PI * u), -draft * v};
        },
        [](const Point &c) {
            return Point{-c[0], -c[1], 0};
        });
    if (bottom)
        append(panels, disc(radius, -draft, around, radial, up));
    if (lid)
        append(panels, disc(radius, 0, around, radial, down));
    return panels;
}

Panels box(double length, double beam, double draft, int nx, int ny, int nz, bool lid) {
    const double l = length / 2, b = beam / 2;
    Panels panels = patch(
        ny, nz,
        [=](double u, double v) {
            return Point{l, b * u, -draft * v};
        },
        [](const Point &) {
            return Point{-1, 0, 0};
        });
    append(panels, patch(
                       nx, nz,
                       [=](double u, double v) {
                           return Point{l * u, b, -draft * v};
                       },
                       [](const Point &) {
                           return Point{0, -1, 0};
                       }));
    append(panels, patch(
                       nx, ny,
                       [=](double u, double v) {
                           return Point{l * u, b * v, -draft};
                       },
                       up));
    if (lid)
        append(panels, patch(
                           nx, ny,
                           [=](double u, double v) {
                               return Point{l * u, b * v, 0};
                           },
                           down));
    return panels;
}

Panels wigley(double length, double beam, double draft, int nx, int nz) {
    return patch(
        nx, nz,
        [=](double u, double v) {
            return Point{length / 2 * u, beam / 2 * (1 - u * u) * (1 - v * v), -draft * v};
        },
        [](const Point &) {
            return Point{0, -1, 0};
        });
}

Panels heave_plate(double radius, double z, int around, int radial) {
    Panels panels = disc(radius, z, around, radial, up);
    for (MeshPanel &panel : panels)
        panel.plate = true;
    return panels;
}

Panels twin_plates(double distance, double beam, double draft, int ny, int nz) {
    Panels panels = patch(
        ny, nz,
        [=](double u, double v) {
            return Point{distance / 2, beam / 2 * u, -draft * v};
        },
        [](const Point &) {
            return Point{-1, 0, 0};
        });
    for (MeshPanel &panel : panels)
        panel.plate = true;
    return panels;
}

Panels tank(double length, double beam, double height, double top, int nx, int ny, int nz) {
    Panels panels = box(length, beam, height, nx, ny, nz, true);
    for (MeshPanel &panel : panels) {
        std::swap(panel.vertex[0], panel.vertex[3]);
        std::swap(panel.vertex[1], panel.vertex[2]);
        for (Point &p : panel.vertex)
            p[2] += top;
    }
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
