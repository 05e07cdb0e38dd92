#include "geometry/panel.hpp"
#include "geometry/pregeo.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr f32 DOWN = -0.9999f;    // a normal whose vertical component is not above it looks down
constexpr f32 SURFACE = -0.0001f; // a centroid not below it lies in the free surface
constexpr f32 MIN_VOLUME = 1.0e-30f;

// Place of a body in the global axes.
struct Placement {
    f32 x, y, z;
    f32 s, c; // sine and cosine of the heading
    bool turned;
};

Placement placement_of(const Bodies &bodies, int b) {
    Placement at{bodies.XBODY(1, b), bodies.XBODY(2, b), bodies.XBODY(3, b), 0, 1, false};
    const f32 heading = bodies.XBODY(4, b);
    if (heading != 0) {
        at.s = std::sin(DEGREE * heading);
        at.c = std::cos(DEGREE * heading);
    }
    at.turned = at.x != 0 || at.y != 0 || heading != 0;
    return at;
}

void turn(const Placement &at, f32 &x, f32 &y) {
    const f32 old = x;
    x = at.c * old - at.s * y;
    y = at.s * old + at.c * y;
}

void move_to_global(const Placement &at, Panel &p) {
    p.XCT[3] += at.z;
    for (int k = 1; k <= 4; ++k)
        p.XGP[k][3] += at.z;
    if (!at.turned)
        return;
    turn(at, p.XCT[1], p.XCT[2]);
    p.XCT[1] += at.x;
    p.XCT[2] += at.y;
    for (int k = 1; k <= 4; ++k) {
        turn(at, p.XGP[k][1], p.XGP[k][2]);
        p.XGP[k][1] += at.x;
        p.XGP[k][2] += at.y;
    }
    for (int r = 1; r <= 3; ++r)
        turn(at, p.TRM[r][1], p.TRM[r][2]);
}

// Second moments of a panel about the axes of its body, the vertical one about the free surface.
struct SecondMoments {
    f32 xx = 0, xy = 0, yy = 0, zz = 0;
};

SecondMoments second_moments(const Panel &p, bool gauss, f32 ZB) {
    SecondMoments m;
    const auto add = [&](f32 weight, const f32 *at) {
        const f32 z = at[3] + ZB;
        m.xx += weight * at[1] * at[1];
        m.xy += weight * at[1] * at[2];
        m.yy += weight * at[2] * at[2];
        m.zz += weight * z * z;
    };
    if (gauss) {
        for (int k = 1; k <= 4; ++k)
            add(p.GJAC[k], p.XGP[k]);
    } else {
        add(p.PMOM[1], p.XCT);
    }
    return m;
}

// The running sums of a body, in double precision so that their rounding does not grow with the number of
// panels. n is the normal, x the centroid, both in body axes; A the area; the heights are those above the
// free surface.
struct BodySums {
    double n3A = 0, n3Ax = 0, n3Ay = 0, n3Az = 0;  // n3 A times 1, x, y, height
    double n3xx = 0, n3yy = 0, n3zz = 0, n3xy = 0; // normal times second moment
    // With a wall in global axes, the first two moments in axes that are only turned to them:
    double n1Ax = 0, n2Ay = 0;
    double n1xx = 0, n2yy = 0; // normal times second moment

    // Vector area of the hull in global axes. It vanishes to the last bit over a closed body, far from the
    // wall or not, because it comes from the vertices, not from rounded normals.
    double area1 = 0, area2 = 0;

    void add_vector_area(View<const f32, 2> vertex, const Placement &at) {
        double d13[4], d24[4];
        for (int c = 1; c <= 3; ++c) {
            d13[c] = static_cast<double>(vertex(3, c)) - static_cast<double>(vertex(1, c));
            d24[c] = static_cast<double>(vertex(4, c)) - static_cast<double>(vertex(2, c));
        }
        // Clockwise as seen from the side of the normal.
        const double a1 = -0.5 * (d13[2] * d24[3] - d13[3] * d24[2]);
        const double a2 = -0.5 * (d13[3] * d24[1] - d13[1] * d24[3]);
        area1 += at.c * a1 - at.s * a2;
        area2 += at.s * a1 + at.c * a2;
    }
    void add_hull(const Panel &p, const SecondMoments &m, const Placement &at, bool wall) {
        const f32 *N = p.TRM[3];
        const f32 A = p.PMOM[1];
        n3A += N[3] * A;
        n3Ax += N[3] * A * p.XCT[1];
        n3Ay += N[3] * A * p.XCT[2];
        n3Az += N[3] * A * (p.XCT[3] + at.z);
        n3zz += N[3] * m.zz;
        n3xx += N[3] * m.xx;
        n3yy += N[3] * m.yy;
        n3xy += N[3] * m.xy;
        f32 n1 = N[1], n2 = N[2], x = p.XCT[1], y = p.XCT[2], xx = m.xx, yy = m.yy;
        if (wall) {
            turn(at, n1, n2);
            turn(at, x, y);
            x += at.x;
            y += at.y;
            xx = at.c * at.c * m.xx - 2 * at.c * at.s * m.xy + at.s * at.s * m.yy;
            yy = at.s * at.s * m.xx + 2 * at.c * at.s * m.xy + at.c * at.c * m.yy;
        }
        n1xx += n1 * xx;
        n2yy += n2 * yy;
        n1Ax += n1 * A * x;
        n2Ay += n2 * A * y;
    }
    // A thin structure of the given thickness has volume, but no two sides.
    void add_dipole(const Panel &p, f32 thickness, const Placement &at, bool wall) {
        const f32 volume = p.PMOM[1] * thickness;
        f32 x = p.XCT[1], y = p.XCT[2];
        if (wall)
            turn(at, x, y);
        n3Az -= volume;
        n1Ax -= volume;
        n2Ay -= volume;
        n1xx -= 2 * x * volume;
        n2yy -= 2 * y * volume;
        n3zz -= 2 * (p.XCT[3] + at.z) * volume;
    }
};

// Adds the piece of a wall that closes the body: what the vector area of the hull lacks, at the place of the
// wall as seen from the origin of the body. Then turns the moments back to the axes of the body.
void close_by_walls(const Options &opt, const Placement &at, BodySums &V) {
    if (opt.ISX == -1)
        V.n1xx -= V.area1 * at.x * at.x;
    if (opt.ISY == -1)
        V.n2yy -= V.area2 * at.y * at.y;
    const double turned = V.n1xx;
    V.n1xx = at.c * turned + at.s * V.n2yy;
    V.n2yy = at.c * V.n2yy - at.s * turned;
}

// Fills VOL, XCB and the block of CHYD of the body. Of the three volumes the median is used.
void fill_hydrostatics(const Options &opt, const BodySums &V, const BodyRange &range, Bodies &bodies) {
    const int b = range.body;
    const double sx = std::max(opt.ISX, 0);
    const double sy = std::max(opt.ISY, 0);
    const double mult = (sx + 1) * (sy + 1);
    const double ex = 1 - sx;
    const double ey = 1 - sy;
    const double v1 = -V.n1Ax * mult;
    const double v2 = -V.n2Ay * mult;
    const double v3 = -V.n3Az * mult;
    bodies.VOL(1, b) = static_cast<f32>(v1);
    bodies.VOL(2, b) = static_cast<f32>(v2);
    bodies.VOL(3, b) = static_cast<f32>(v3);
    const double Vm = std::min({std::max(v1, v2), std::max(v2, v3), std::max(v3, v1)});
    double w = 0;
    if (MIN_VOLUME > Vm)
        message(" Warning: body volume less than tolerance ");
    else
        w = -0.5 * mult / Vm;
    const double xb = V.n1xx * ex * w;
    const double yb = V.n2yy * ey * w;
    const double zb = V.n3zz * w - static_cast<double>(bodies.XBODY(3, b));
    bodies.XCB(1, b) = static_cast<f32>(xb);
    bodies.XCB(2, b) = static_cast<f32>(yb);
    bodies.XCB(3, b) = static_cast<f32>(zb);
    const auto set = [&](int i, int j, double value) {
        bodies.CHYD(range.mode + i - 1, range.mode + j - 1) = static_cast<f32>(value);
    };
    const double c34 = V.n3Ay * ey * mult;
    const double c35 = -V.n3Ax * ex * mult;
    const double c45 = -V.n3xy * ex * ey * mult;
    set(3, 3, V.n3A * mult);
    set(3, 4, c34);
    set(4, 3, c34);
    set(3, 5, c35);
    set(5, 3, c35);
    set(4, 4, V.n3yy * mult + Vm * zb);
    set(5, 5, V.n3xx * mult + Vm * zb);
    set(4, 5, c45);
    set(5, 4, c45);
    set(4, 6, -xb * Vm);
    set(5, 6, -yb * Vm);
}

// A level panel within rounding of z = 0 lies there: above it the wave has no value.
void settle_in_surface(const Options &opt, Panel &p) {
    constexpr f32 ROUNDING = 1.0e-5f; // of the panel's size
    if (opt.IRRX != 0 || std::fabs(p.TRM[3][3]) < 0.9999f ||
        std::fabs(p.XCT[3]) > ROUNDING * std::sqrt(p.PMOM[1]))
        return;
    p.XCT[3] = 0;
    for (int k = 1; k <= 4; ++k)
        p.XGP[k][3] = 0;
}

void fill_velocities(const Panel &p, View<f32, 2> VEL, int mode, int ip) {
    const f32 *n = p.TRM[3];
    const f32 *x = p.XCT;
    for (int c = 1; c <= 3; ++c)
        VEL(mode + c - 1, ip) = n[c];
    VEL(mode + 3, ip) = x[2] * n[3] - x[3] * n[2];
    VEL(mode + 4, ip) = x[3] * n[1] - x[1] * n[3];
    VEL(mode + 5, ip) = x[1] * n[2] - x[2] * n[1];
}

} // namespace

Status BODGEO(const Options &opt, const Dipoles &dipoles, const BodyRange &range, Bodies &bodies,
              Mesh &mesh) {
    const Placement at = placement_of(bodies, range.body);
    const bool gauss = opt.IWADD != 0 || opt.IQUAD != 0;
    const bool wall = opt.ISX == -1 || opt.ISY == -1;
    BodySums sums;
    for (int ip = range.ip1; ip <= range.ip2; ++ip) {
        Panel p{};
        if (failed(PANGEO(mesh.XVER.slice(ip), opt.IDIAG, ip - range.ip1 + 1, p)))
            return Status::failed;
        if (!std::all_of(p.PMOM + 1, p.PMOM + 14, [](f32 moment) { return std::isfinite(moment); }))
            return MSGOUT("Error: panel out of proportion to ULEN, its moments overflow, panel I=",
                          ip - range.ip1 + 1);
        // A panel of the free surface that looks down is no wetted hull, nor is one made by projection: no
        // mode moves it.
        if (mesh.projected(ip) == 0 && !(p.TRM[3][3] <= DOWN && p.XCT[3] + at.z >= SURFACE))
            fill_velocities(p, mesh.VEL, range.mode, ip);
        if (gauss) {
            const f32 *n = p.TRM[3];
            for (int k = 1; k <= 4; ++k) {
                const f32 *r = p.XGP[k];
                mesh.RXNG(k, 1, ip) = r[2] * n[3] - r[3] * n[2];
                mesh.RXNG(k, 2, ip) = r[3] * n[1] - r[1] * n[3];
                mesh.RXNG(k, 3, ip) = r[1] * n[2] - r[2] * n[1];
            }
        }
        if (is_dipole(dipoles, ip))
            sums.add_dipole(p, dipoles.DTHK(ip), at, wall);
        else {
            sums.add_hull(p, second_moments(p, gauss, at.z), at, wall);
            sums.add_vector_area(mesh.XVER.slice(ip), at);
        }
        move_to_global(at, p);
        settle_in_surface(opt, p);
        put_panel(p, ip, mesh);
    }
    if (wall)
        close_by_walls(opt, at, sums);
    fill_hydrostatics(opt, sums, range, bodies);
    for (int c = 1; c <= 3; ++c)
        if (!std::isfinite(bodies.VOL(c, range.body)) || !std::isfinite(bodies.XCB(c, range.body)))
            return MSGOUT("Error: body out of proportion to ULEN, its volume overflows");
    return Status::ok;
}
