#include "post/hydrostatics.hpp"

#include "post/images.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double DEGREE = 3.14159265358979323846 / 180;

Vec3 cross(const Vec3 &a, const Vec3 &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Place of a body, dimensional.
struct Place {
    Vec3 origin;
    double s, c;
    Vec3 global(const Vec3 &x) const {
        return {origin[0] + c * x[0] - s * x[1], origin[1] + s * x[0] + c * x[1], origin[2] + x[2]};
    }
    Vec3 body(const Vec3 &x) const {
        const double dx = x[0] - origin[0], dy = x[1] - origin[1];
        return {c * dx + s * dy, -s * dx + c * dy, x[2] - origin[2]};
    }
};

// Integrals over the wetted hull in global axes; n the normal, into the body.
struct Sums {
    double area = 0;
    Vec3 nx{};     // n1 x, n2 y, n3 z
    Vec3 nxx{};    // n1 x^2, n2 y^2, n3 z^2
    double n3 = 0; // of the waterplane: n3 times 1, x, y, xx, xy, yy
    double n3x = 0, n3y = 0, n3xx = 0, n3xy = 0, n3yy = 0;

    // Adds `weight` times the triangle, its corners clockwise seen from the side of the normal. The rule of
    // the mid-points is exact for polynomials of second degree.
    void add(double weight, const Vec3 &p, const Vec3 &q, const Vec3 &r) {
        const Vec3 pq{q[0] - p[0], q[1] - p[1], q[2] - p[2]}, pr{r[0] - p[0], r[1] - p[1], r[2] - p[2]};
        Vec3 n = cross(pq, pr);
        for (double &component : n)
            component *= -0.5 * weight;
        area += std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
        const Vec3 *corner[4] = {&p, &q, &r, &p};
        for (int k = 0; k < 3; ++k) {
            Vec3 m;
            for (std::size_t c = 0; c < 3; ++c) {
                m[c] = ((*corner[k])[c] + (*corner[k + 1])[c]) / 2;
                nx[c] += n[c] * m[c] / 3;
                nxx[c] += n[c] * m[c] * m[c] / 3;
            }
            n3 += n[2] / 3;
            n3x += n[2] * m[0] / 3;
            n3y += n[2] * m[1] / 3;
            n3xx += n[2] * m[0] * m[0] / 3;
            n3xy += n[2] * m[0] * m[1] / 3;
            n3yy += n[2] * m[1] * m[1] / 3;
        }
    }
};

// First panel of a body, from 1.
int first_panel(const P2fFile &p2f, int body) {
    int panel = 1;
    for (int b = 1; b < body; ++b)
        panel += p2f.NEQNB(b);
    return panel;
}

void add_panel(const P2fFile &p2f, int ip, const Place &place, Sums &sums, BodyHydrostatics &body) {
    const double length = static_cast<double>(p2f.ULEN(1));
    Vec3 corner[4];
    for (int v = 1; v <= 4; ++v) {
        Vec3 x;
        for (int c = 1; c <= 3; ++c)
            x[static_cast<std::size_t>(c - 1)] = length * static_cast<double>(p2f.XVER(v, c, ip));
        corner[v - 1] = place.global(x);
    }
    for (const Image &image : images_of(p2f)) {
        if (!image.body)
            continue;
        Vec3 p[4];
        for (std::size_t v = 0; v < 4; ++v) {
            // An odd number of reflections turns the sense of the corners.
            p[v] = corner[image.sx * image.sy < 0 ? 3 - v : v];
            p[v][0] *= image.sx;
            p[v][1] *= image.sy;
            const Vec3 own = place.body(p[v]);
            for (std::size_t c = 0; c < 3; ++c) {
                body.lowest[c] = std::min(body.lowest[c], own[c]);
                body.highest[c] = std::max(body.highest[c], own[c]);
            }
        }
        sums.add(0.5, p[0], p[1], p[2]);
        sums.add(0.5, p[0], p[2], p[3]);
        sums.add(0.5, p[1], p[2], p[3]);
        sums.add(0.5, p[1], p[3], p[0]);
    }
}

void fill(const Sums &sums, const Place &place, BodyHydrostatics &body) {
    constexpr double NO_WATERPLANE = 1e-5; // of the wetted surface: what rounding leaves of a closed hull
    for (std::size_t c = 0; c < 3; ++c)
        body.volumes[c] = -sums.nx[c];
    body.volume = (body.volumes[0] + body.volumes[1] + body.volumes[2]) / 3;
    body.wetted_surface = sums.area;
    if (body.volume > 0) {
        for (std::size_t c = 0; c < 3; ++c)
            body.buoyancy_global[c] = -sums.nxx[c] / 2 / body.volume;
        body.buoyancy = place.body(body.buoyancy_global);
    }
    if (sums.n3 <= NO_WATERPLANE * sums.area)
        return;
    body.waterplane_area = sums.n3;
    const double x = sums.n3x / sums.n3, y = sums.n3y / sums.n3;
    body.floatation_global = {x, y, 0};
    body.floatation = place.body(body.floatation_global);
    const double xx = sums.n3xx - sums.n3 * x * x, xy = sums.n3xy - sums.n3 * x * y,
                 yy = sums.n3yy - sums.n3 * y * y;
    const double s = place.s, c = place.c;
    body.second_xx = c * c * xx + 2 * c * s * xy + s * s * yy;
    body.second_yy = s * s * xx - 2 * c * s * xy + c * c * yy;
    body.second_xy = (c * c - s * s) * xy + c * s * (yy - xx);
}

Place place_of(const P2fFile &p2f, int b) {
    const double length = static_cast<double>(p2f.ULEN(1)),
                 heading = DEGREE * static_cast<double>(p2f.XBODY(4, b));
    Place place{{}, std::sin(heading), std::cos(heading)};
    for (int c = 1; c <= 3; ++c)
        place.origin[static_cast<std::size_t>(c - 1)] = length * static_cast<double>(p2f.XBODY(c, b));
    return place;
}

} // namespace

Vec3 global_place(const P2fFile &p2f, int body, const Vec3 &at) {
    return place_of(p2f, body).global(at);
}

bool form_hydrostatics(const P2fFile &p2f, std::vector<BodyHydrostatics> &bodies, std::string &error) {
    bodies.clear();
    const PanelKinds kinds(p2f);
    for (int b = 1; b <= p2f.NBODY; ++b) {
        BodyHydrostatics body;
        body.heading = DEGREE * static_cast<double>(p2f.XBODY(4, b));
        const Place place = place_of(p2f, b);
        body.origin = place.origin;
        body.lowest.fill(1e300);
        body.highest.fill(-1e300);
        Sums sums;
        const int first = first_panel(p2f, b);
        for (int ip = first; ip < first + p2f.NEQNB(b); ++ip)
            if (kinds.hull(ip) && !kinds.plate(ip))
                add_panel(p2f, ip, place, sums, body);
        if (sums.area == 0) {
            body.lowest.fill(0);
            body.highest.fill(0);
        }
        fill(sums, place, body);
        // The normals of a tank point out of its fluid.
        if (body.volumes[0] < 0 && body.volumes[1] < 0 && body.volumes[2] < 0) {
            error =
                "body " + std::to_string(b) + " is a tank or has its normals turned: it displaces no water";
            return false;
        }
        bodies.push_back(body);
    }
    return true;
}

BodyMass assumed_mass(const BodyHydrostatics &body, double density) {
    constexpr double ROLL = 0.4, PITCH = 0.25, YAW = 0.25; // usual first estimates for ships
    BodyMass mass;
    mass.mass = density * body.volume;
    mass.centre = {body.buoyancy[0], body.buoyancy[1], -body.origin[2]};
    const double L = body.highest[0] - body.lowest[0], B = body.highest[1] - body.lowest[1];
    const double radius[3] = {ROLL * B, PITCH * L, YAW * L};
    for (std::size_t c = 0; c < 3; ++c)
        mass.inertia[c][c] = mass.mass * radius[c] * radius[c];
    return mass;
}

Matrix6 Stiffness6::total() const {
    Matrix6 sum{};
    for (std::size_t i = 0; i < 6; ++i)
        for (std::size_t j = 0; j < 6; ++j)
            sum[i][j] = waterplane[i][j] + buoyancy[i][j] + weight[i][j];
    return sum;
}

Stiffness6 stiffness_of(const BodyHydrostatics &body, const BodyMass &mass, double density, double gravity) {
    Stiffness6 C;
    const double rg = density * gravity, A = rg * body.waterplane_area;
    const double x = body.floatation[0], y = body.floatation[1];
    C.waterplane[2][2] = A;
    C.waterplane[2][3] = C.waterplane[3][2] = A * y;
    C.waterplane[2][4] = C.waterplane[4][2] = -A * x;
    C.waterplane[3][3] = rg * body.second_yy + A * y * y;
    C.waterplane[4][4] = rg * body.second_xx + A * x * x;
    C.waterplane[3][4] = C.waterplane[4][3] = -rg * body.second_xy - A * x * y;
    // A force F upwards at a place turns with the body: F z against roll and pitch, -F x, -F y by yaw.
    const auto lever = [](double force, const Vec3 &at, Matrix6 &part) {
        part[3][3] = part[4][4] = force * at[2];
        part[3][5] = -force * at[0];
        part[4][5] = -force * at[1];
    };
    lever(rg * body.volume, body.buoyancy, C.buoyancy);
    lever(-mass.mass * gravity, mass.centre, C.weight);
    return C;
}

Matrix6 in_global_axes(const Matrix6 &C, double heading) {
    const double s = std::sin(heading), c = std::cos(heading);
    Matrix6 T{}; // rows: global components of the body's unit motions
    for (std::size_t k : {0, 3}) {
        T[k][k] = T[k + 1][k + 1] = c;
        T[k][k + 1] = -s;
        T[k + 1][k] = s;
        T[k + 2][k + 2] = 1;
    }
    Matrix6 turned{};
    for (std::size_t i = 0; i < 6; ++i)
        for (std::size_t j = 0; j < 6; ++j)
            for (std::size_t k = 0; k < 6; ++k)
                for (std::size_t l = 0; l < 6; ++l)
                    turned[i][j] += T[i][k] * C[k][l] * T[j][l];
    return turned;
}

MetacentricHeights metacentric_heights(const BodyHydrostatics &body, const BodyMass &mass) {
    if (body.volume <= 0)
        return {};
    const double above = body.buoyancy[2] - mass.centre[2];
    return {body.second_yy / body.volume + above, body.second_xx / body.volume + above};
}

bool form_stiffness(const P2fFile &p2f, const std::vector<BodyHydrostatics> &bodies,
                    const std::vector<BodyMass> &masses, const Scales &scales, Array<double, 2> &C) {
    if (!C.alloc(p2f.NMODES, p2f.NMODES))
        return false;
    for (int b = 1; b <= p2f.NBODY; ++b) {
        const std::size_t at = static_cast<std::size_t>(b - 1);
        const int first = modes_before(p2f, b) + 1, last = first + 5 + p2f.NEWMDS(b);
        const Matrix6 rigid = stiffness_of(bodies[at], masses[at], scales.density, scales.gravity).total();
        const double unit = scales.density * scales.gravity * scales.length * scales.length;
        for (int i = first; i <= last; ++i) {
            for (int j = first; j <= last; ++j) {
                const int levers = (is_rotation(p2f, i) ? 1 : 0) + (is_rotation(p2f, j) ? 1 : 0);
                C(i, j) =
                    i < first + 6 && j < first + 6
                        ? rigid[static_cast<std::size_t>(i - first)][static_cast<std::size_t>(j - first)]
                        : unit * std::pow(scales.length, levers) * static_cast<double>(p2f.CHYD(i, j));
            }
        }
    }
    return true;
}

bool form_mass(const P2fFile &p2f, const std::vector<BodyMass> &masses, Array<double, 2> &M) {
    if (!M.alloc(p2f.NMODES, p2f.NMODES))
        return false;
    for (int b = 1; b <= p2f.NBODY; ++b) {
        const BodyMass &body = masses[static_cast<std::size_t>(b - 1)];
        const int first = modes_before(p2f, b) + 1;
        const double m = body.mass;
        const Vec3 &g = body.centre;
        // Velocity of the centre by a rotation: a row for each direction.
        const double lever[3][3] = {{0, g[2], -g[1]}, {-g[2], 0, g[0]}, {g[1], -g[0], 0}};
        for (int i = 0; i < 3; ++i) {
            M(first + i, first + i) = m;
            for (int j = 0; j < 3; ++j) {
                M(first + i, first + 3 + j) = m * lever[i][j];
                M(first + 3 + j, first + i) = m * lever[i][j];
                double own = body.inertia[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
                for (int k = 0; k < 3; ++k)
                    own += m * lever[k][i] * lever[k][j];
                M(first + 3 + i, first + 3 + j) = own;
            }
        }
    }
    return true;
}
