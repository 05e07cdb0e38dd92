// The exact forms. They are worked in double precision: S is what remains of a side sum and Z times a solid
// angle, the family L of differences that cancel for nearly vertical panels, and single precision would keep
// too little of either.
#include "rankine/panint.hpp"

#include <algorithm>
#include <cmath>

namespace {

constexpr double PLANE = 1.0e-6;      // of the width: a field point not farther from the plane lies in it
constexpr double BETWEEN = -0.99;     // product of cosines below which the field point lies close to the side
constexpr double VERTEX_LOG = 1.0e-6; // rho + height over rho below which the logarithm is undefined
constexpr double LEVEL_SIDE =
    1.0e-4; // of the sine between the vertical and the normal of side and field point
constexpr double LEVEL_SHIFT = 1.0e-4; // of the width: least shift of such a field point
constexpr double LEVEL_PLANE = 1.0e-3; // of the width: no shift in the plane of a horizontal panel
constexpr int MAX_SHIFTS = 60;         // each at least doubles the height above the side
constexpr double STEEP_SIDE = 1.0e-5; // squared sine of the angle to the vertical below which a side is steep
constexpr double STEEP_SERIES = 0.02; // largest ratio of terms in the series of a steep side
constexpr double SMALL_ANGLE = 1.0e-4; // below which the arctangent is its series
constexpr double ON_SIDE = 1.0e-7;     // of the panel size: least distance from a side in the family L
constexpr double TWO_PI = 6.283185307179586;

// Side from vertex i to j: its length, its direction (c,n) in the panel, seen from the field point.
struct Side {
    double s, c, n;
    double d;      // distance of the field point from the line of the side, positive on the side of the panel
    double ai, aj; // position of the field point along the side from vertex i, j
};

// The field point seen from each vertex.
struct Vertices {
    double x[5], y[5], r[5];

    Vertices(double X, double Y, double Z2, const Panel &p) {
        for (int v = 1; v <= 4; ++v) {
            x[v] = X - static_cast<double>(p.XIV[v]);
            y[v] = Y - static_cast<double>(p.ETV[v]);
            r[v] = std::sqrt(x[v] * x[v] + y[v] * y[v] + Z2);
        }
    }
    Side side(int k) const {
        const int j = JP[k];
        Side side;
        const double dx = x[k] - x[j];
        const double dy = y[k] - y[j];
        side.s = std::sqrt(dx * dx + dy * dy);
        side.c = dx / side.s;
        side.n = dy / side.s;
        side.d = x[k] * side.n - y[k] * side.c;
        side.ai = x[k] * side.c + y[k] * side.n;
        side.aj = side.ai - side.s;
        return side;
    }
};

// Integral of 1/rho along a side.
double side_log(const Side &a, double ri, double rj, double rho2) {
    if (a.ai * a.aj <= BETWEEN * ri * rj)
        return std::log((rj - a.aj) * (a.ai + ri) / rho2);
    return std::log((ri + rj + a.s) / (ri + rj - a.s));
}

// Integral of 1/rho^3 along a side.
double side_cube(const Side &a, double ri, double rj, double rho2) {
    if (a.ai * a.aj <= BETWEEN * ri * rj)
        return (2 - rho2 / (rj * (rj - a.aj)) - rho2 / (ri * (ri + a.ai))) / rho2;
    const double rr = ri + rj;
    return (1 / ri + 1 / rj) * 2 * a.s / ((rr + a.s) * (rr - a.s));
}

// Solid angle of the panel from the height z > 0 above or below: the triangles 1-2-3 and 1-3-4, whose half
// angles are the arguments of two complex numbers; of their product one arctangent is needed.
double solid_angle(const Vertices &v, double z) {
    double re = 1, im = 0;
    const double z2 = z * z;
    const double dot13 = v.x[1] * v.x[3] + v.y[1] * v.y[3] + z2;
    for (int k = 2; k <= 3; ++k) {
        const int a = k, b = k + 1;
        const double twice_area =
            (v.y[a] - v.y[1]) * (v.x[b] - v.x[1]) - (v.x[a] - v.x[1]) * (v.y[b] - v.y[1]);
        if (twice_area == 0)
            continue;
        const double dot_1a = k == 2 ? v.x[1] * v.x[2] + v.y[1] * v.y[2] + z2 : dot13;
        const double dot_1b = k == 2 ? dot13 : v.x[1] * v.x[4] + v.y[1] * v.y[4] + z2;
        const double dot_ab = v.x[a] * v.x[b] + v.y[a] * v.y[b] + z2;
        const double den = (v.r[1] * v.r[a] + dot_1a) * v.r[b] + dot_1b * v.r[a] + dot_ab * v.r[1];
        const double num = z * twice_area;
        const double old = re;
        re = old * den - im * num;
        im = old * num + im * den;
    }
    const double half = std::atan2(im, re);
    return 2 * half < -1.0e-10 ? 2 * half + 2 * TWO_PI : 2 * half;
}

void near_source(double X, double Y, double Z_entry, const Panel &p, int IGRAD, PanelIntegrals &out) {
    const double t = PLANE * static_cast<double>(p.width);
    const bool in_plane = std::abs(Z_entry) <= t;
    const double Z = in_plane ? t : Z_entry;
    const double Z2 = Z * Z;
    const Vertices v(X, Y, Z2, p);
    double E = 0, SX = 0, SY = 0, DX = 0, DY = 0, DZ = 0;
    for (int k = 1; k <= 4; ++k) {
        if (!(static_cast<double>(p.SIDE[k]) > t))
            continue;
        const int j = JP[k];
        const Side a = v.side(k);
        const double rho2 = Z2 + a.d * a.d;
        const double Q = side_log(a, v.r[k], v.r[j], rho2);
        E += a.d * Q;
        if (IGRAD != 0) {
            const double G = side_cube(a, v.r[k], v.r[j], rho2);
            SX += Q * a.n;
            SY -= Q * a.c;
            DX += a.n * G;
            DY -= a.c * G;
            DZ -= a.d * G;
        }
    }
    if (in_plane) {
        out.D = 0;
        out.S = static_cast<f32>(E);
    } else {
        const double angle = solid_angle(v, std::abs(Z));
        out.D = static_cast<f32>(Z > 0 ? angle : -angle);
        out.S = static_cast<f32>(E - std::abs(Z) * angle);
    }
    if (IGRAD != 0) {
        out.SX = static_cast<f32>(SX);
        out.SY = static_cast<f32>(SY);
        out.DX = static_cast<f32>(Z * DX);
        out.DY = static_cast<f32>(Z * DY);
        out.DZ = static_cast<f32>(DZ);
    }
}

// Along a side, with tau the position of the field point: the integrals over it of 1/(r (r + height)) times
// rho and of 1/(r + height), where height = kt tau + rho kv. The vertical has the components kt along the
// side, kv along the perpendicular from the side to the field point (of length rho), w normal to both; their
// squares add up to 1.
struct HeightIntegrals {
    double A; // rho times that of 1/(r (r + height))
    double B; // that of 1/(r + height)
};

struct End {
    double tau, r, f; // position, distance, ln(r + height)
};

// x = (r + tau)/rho makes 1/(r (r + height)) a rational function of x with the quadratic denominator
// (1+kt) x^2 + 2 kv x + (1-kt), so A is an arctangent; B follows from the sum rule of Q, the difference of f
// and A, and for a steep side (kt = 1), where that rule cancels, from a series about the vertical side.
HeightIntegrals height_integrals(End hi, End lo, double rho, double kt, double kv, double w, double Q) {
    if (kt < 0) { // run along the side the other way
        std::swap(hi, lo);
        hi.tau = -hi.tau;
        lo.tau = -lo.tau;
        kt = -kt;
    }
    const auto map = [rho](const End &e) { return e.tau >= 0 ? (e.r + e.tau) / rho : rho / (e.r - e.tau); };
    const double xh = map(hi), xl = map(lo);
    const double yh = (1 + kt) * xh + kv, yl = (1 + kt) * xl + kv;
    const double num = (1 + kt) * (xh - xl);
    const double den = w * w + yh * yl;
    HeightIntegrals out;
    if (den > 0 && std::abs(w) * num < SMALL_ANGLE * den) {
        const double q = num / den;
        out.A = 2 * q * (1 - w * w * q * q / 3);
    } else {
        out.A = 2 * std::atan2(std::abs(w) * num, den) / std::abs(w);
    }
    const double m = w * w + kv * kv;
    const double alpha = 2 * kv / (1 + kt), beta = m / ((1 + kt) * (1 + kt));
    if (m < STEEP_SIDE && (std::abs(alpha) + beta / xl) < STEEP_SERIES * xl) {
        double J[7]; // integrals of 1/x^n
        double ph = 1, pl = 1;
        J[1] = Q;
        for (int n = 2; n <= 6; ++n) {
            ph /= xh;
            pl /= xl;
            J[n] = (pl - ph) / (n - 1);
        }
        const auto pair = [&J](int n) { return J[n] + J[n + 2]; };
        const double a2 = alpha * alpha;
        // To the third order of alpha; the fourth is below 1e-10.
        out.B = (pair(1) - alpha * pair(2) + (a2 - beta) * pair(3) + alpha * (2 * beta - a2) * pair(4)) /
                (1 + kt);
    } else {
        out.B = (Q - kt * (hi.f - lo.f) - kv * out.A) / m;
    }
    return out;
}

struct LogSums {
    double L = 0, LZ = 0, LX = 0, LY = 0, LZX = 0, LZY = 0;
};

// L and its derivatives as sums over the sides: ln(r + height) is homogeneous but for a constant, and its
// gradient the curl of k x v/(r + height), v from the panel to the field point, so Gauss and Stokes lead to
// the contour. Returns the status; with status 2 the wanted shift of the field point along k is in `shift`
// and the sums are not complete.
int side_sums(double X, double Y, double Z, const double *k, const Panel &p, int IGRAD, LogSums &sum,
              double &shift) {
    const double width = static_cast<double>(p.width);
    const double floor = ON_SIDE * std::sqrt(static_cast<double>(p.PMOM[1]));
    const bool level = std::abs(k[1]) + std::abs(k[2]) + std::abs(Z) < LEVEL_PLANE * width;
    Vertices v(X, Y, Z * Z, p);
    double f[5];
    bool undefined[5];
    for (int i = 1; i <= 4; ++i) {
        v.r[i] = std::max(v.r[i], floor);
        const double above = v.r[i] + k[1] * v.x[i] + k[2] * v.y[i] + k[3] * Z;
        undefined[i] = above < VERTEX_LOG * v.r[i];
        f[i] = undefined[i] ? 0 : std::log(above);
    }
    int status = 0;
    for (int i = 1; i <= 4; ++i) {
        if (!(static_cast<double>(p.SIDE[i]) > PLANE * width))
            continue;
        const int j = JP[i];
        Side a = v.side(i);
        if (Z * Z + a.d * a.d < floor * floor)
            a.d = std::copysign(floor, a.d);
        const double rho = std::sqrt(Z * Z + a.d * a.d);
        const double kt = k[1] * a.c + k[2] * a.n;
        const double kn = k[1] * a.n - k[2] * a.c;
        const double kv = (a.d * kn + Z * k[3]) / rho;
        const double w = (Z * kn - a.d * k[3]) / rho;
        if (IGRAD != 0 && !level && kt * kt + kv * kv < LEVEL_SIDE * LEVEL_SIDE) {
            shift = std::abs(k[1] * v.x[i] + k[2] * v.y[i] + k[3] * Z) + LEVEL_SHIFT * width;
            return 2;
        }
        if (undefined[i] || undefined[j]) {
            status = 1;
            continue;
        }
        const double Q = side_log(a, v.r[i], v.r[j], rho * rho);
        const HeightIntegrals h =
            height_integrals({a.ai, v.r[i], f[i]}, {a.aj, v.r[j], f[j]}, rho, kt, kv, w, Q);
        // Integral of ln(r + height) along the side, by parts.
        const double along = a.ai * f[i] - a.aj * f[j] - a.s + rho * (h.A + kv * h.B);
        const double LZ = rho * w * h.B;
        sum.LZ += LZ;
        sum.L += 0.5 * (a.d * (along - 0.5 * a.s) - Z * LZ);
        if (IGRAD != 0) {
            const double vertical = Z / rho * h.A + k[3] * h.B; // integral of the Z derivative
            sum.LX += a.n * along;
            sum.LY -= a.c * along;
            sum.LZX -= a.n * vertical;
            sum.LZY += a.c * vertical;
        }
    }
    return status;
}

int near_logarithm(double X, double Y, double Z, const Panel &p, int IGRAD, PanelIntegrals &out) {
    double k[4];
    double length2 = 0;
    for (int r = 1; r <= 3; ++r) {
        k[r] = static_cast<double>(p.TRM[r][3]);
        length2 += k[r] * k[r];
    }
    for (int r = 1; r <= 3; ++r)
        k[r] /= std::sqrt(length2);
    LogSums sum;
    double shift = 0;
    bool moved = false;
    int status = side_sums(X, Y, Z, k, p, IGRAD, sum, shift);
    for (int n = 1; status == 2 && n <= MAX_SHIFTS; ++n) {
        moved = true;
        X += shift * k[1];
        Y += shift * k[2];
        Z += shift * k[3];
        sum = LogSums();
        status = side_sums(X, Y, Z, k, p, IGRAD, sum, shift);
    }
    out.L = static_cast<f32>(sum.L);
    out.LZ = static_cast<f32>(sum.LZ);
    if (IGRAD != 0) {
        out.LX = static_cast<f32>(sum.LX);
        out.LY = static_cast<f32>(sum.LY);
        out.LZX = static_cast<f32>(sum.LZX);
        out.LZY = static_cast<f32>(sum.LZY);
    }
    return status == 0 && moved ? 2 : status;
}

} // namespace

int panint_near(f32 X, f32 Y, f32 Z, const Panel &p, int IGRAD, int ILOGF, PanelIntegrals &out) {
    const double x = static_cast<double>(X), y = static_cast<double>(Y), z = static_cast<double>(Z);
    near_source(x, y, z, p, IGRAD, out);
    return ILOGF != 0 ? near_logarithm(x, y, z, p, IGRAD, out) : 0;
}
