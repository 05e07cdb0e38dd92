// The exact forms. They are worked in double precision: S is what remains of a side sum and Z times a solid
// angle, the family L of differences that cancel for nearly vertical panels, and single precision would keep
// too little of either.
#include "rankine/panint.hpp"

#include "base/simd.hpp"

#include <cmath>
#include <cstring>

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

// The four sides abreast, side k from vertex k to the next one, from 0. Loops over them hold no branch, so
// that they become vector code; what no lane of a loop may do (a side of no length, a point on a side) is
// done with harmless numbers and left out of the sums.
constexpr int SIDES = 4;
using Four = double[SIDES];

// The field point seen from a vertex of each side.
struct Ends {
    alignas(32) Four x, y, r;
};

// Four values in a register: those of the next vertex come from it, not from memory that was just written.
using Register [[gnu::vector_size(SIDES * sizeof(double))]] = double;
using HalfRegister [[gnu::vector_size(SIDES * sizeof(f32))]] = f32;

[[gnu::always_inline]] inline void put(const Register &x, Four &first, Four &second) {
    const Register next = __builtin_shufflevector(x, x, 1, 2, 3, 0);
    std::memcpy(first, &x, sizeof x);
    std::memcpy(second, &next, sizeof next);
}

[[gnu::always_inline]] inline void see_vertices(double X, double Y, double Z2, const Panel &p, Ends &i,
                                                Ends &j) {
    HalfRegister XI, ET;
    std::memcpy(&XI, &p.XIV[1], sizeof XI);
    std::memcpy(&ET, &p.ETV[1], sizeof ET);
    const Register x = X - __builtin_convertvector(XI, Register),
                   y = Y - __builtin_convertvector(ET, Register);
    Register r = x * x + y * y + Z2;
    for (int k = 0; k < SIDES; ++k)
        r[k] = std::sqrt(r[k]);
    put(x, i.x, j.x);
    put(y, i.y, j.y);
    put(r, i.r, j.r);
}

// A side: its length, its direction (c,n) in the panel, and seen from the field point
struct Sides {
    alignas(32) Four s, c, n;
    alignas(32) Four d;      // its distance from the line of the side, positive on the side of the panel
    alignas(32) Four ai, aj; // its position along the side from vertex i, j
    bool counts[SIDES];      // not of no length
    Ends i, j;               // the first and the second vertex

    [[gnu::always_inline]] Sides(double X, double Y, double Z2, const Panel &p) {
        see_vertices(X, Y, Z2, p, i, j);
        const double least = PLANE * static_cast<double>(p.width);
        for (int k = 0; k < SIDES; ++k)
            counts[k] = static_cast<double>(p.SIDE[k + 1]) > least;
#pragma omp simd
        for (int k = 0; k < SIDES; ++k) {
            const double dx = i.x[k] - j.x[k], dy = i.y[k] - j.y[k], s2 = dx * dx + dy * dy;
            s[k] = std::sqrt(s2 > 0 ? s2 : 1.0);
            c[k] = dx / s[k];
            n[k] = dy / s[k];
            d[k] = i.x[k] * n[k] - i.y[k] * c[k];
            ai[k] = i.x[k] * c[k] + i.y[k] * n[k];
            aj[k] = ai[k] - s[k];
        }
    }
};

// Integral of 1/rho along each side.
[[gnu::always_inline]] inline void side_log(const Sides &a, const Four &rho2, Four &Q) {
    alignas(32) Four x;
#pragma omp simd
    for (int k = 0; k < SIDES; ++k) {
        const double ri = a.i.r[k], rj = a.j.r[k];
        const bool between = a.ai[k] * a.aj[k] <= BETWEEN * ri * rj;
        x[k] = (between ? (rj - a.aj[k]) * (a.ai[k] + ri) : ri + rj + a.s[k]) /
               (between ? rho2[k] : ri + rj - a.s[k]);
    }
#pragma omp simd
    for (int k = 0; k < SIDES; ++k)
        Q[k] = log(x[k]);
}

// Integral of 1/rho^3 along a side.
[[gnu::always_inline]] inline void side_cube(const Sides &a, const Four &rho2, Four &G) {
#pragma omp simd
    for (int k = 0; k < SIDES; ++k) {
        const double ri = a.i.r[k], rj = a.j.r[k], rr = ri + rj, s = a.s[k], q = rho2[k];
        const bool between = a.ai[k] * a.aj[k] <= BETWEEN * ri * rj;
        const double beside = (1 / ri + 1 / rj) * 2 * s / ((rr + s) * (rr - s));
        const double close = (2 - q / (rj * (rj - a.aj[k])) - q / (ri * (ri + a.ai[k]))) / q;
        G[k] = between ? close : beside;
    }
}

// Solid angle of the panel from the height z > 0 above or below: the triangles 1-2-3 and 1-3-4, whose half
// angles are the arguments of two complex numbers; of their product one arctangent is needed.
[[gnu::always_inline]] inline double solid_angle(const Ends &v, double z) {
    double re = 1, im = 0;
    const double z2 = z * z;
    const double dot13 = v.x[0] * v.x[2] + v.y[0] * v.y[2] + z2;
    for (int k = 1; k <= 2; ++k) {
        const int a = k, b = k + 1;
        const double twice_area =
            (v.y[a] - v.y[0]) * (v.x[b] - v.x[0]) - (v.x[a] - v.x[0]) * (v.y[b] - v.y[0]);
        if (twice_area == 0)
            continue;
        const double dot_1a = k == 1 ? v.x[0] * v.x[1] + v.y[0] * v.y[1] + z2 : dot13;
        const double dot_1b = k == 1 ? dot13 : v.x[0] * v.x[3] + v.y[0] * v.y[3] + z2;
        const double dot_ab = v.x[a] * v.x[b] + v.y[a] * v.y[b] + z2;
        const double den = (v.r[0] * v.r[a] + dot_1a) * v.r[b] + dot_1b * v.r[a] + dot_ab * v.r[0];
        const double num = z * twice_area;
        const double old = re;
        re = old * den - im * num;
        im = old * num + im * den;
    }
    const double half = std::atan2(im, re);
    return 2 * half < -1.0e-10 ? 2 * half + 2 * TWO_PI : 2 * half;
}

[[gnu::always_inline]] inline void near_source(double X, double Y, double Z_entry, const Panel &p, int IGRAD,
                                               PanelIntegrals &out) {
    const double t = PLANE * static_cast<double>(p.width);
    const bool in_plane = std::abs(Z_entry) <= t;
    const double Z = in_plane ? t : Z_entry;
    const Sides a(X, Y, Z * Z, p);
    alignas(32) Four rho2, Q, G{};
#pragma omp simd
    for (int k = 0; k < SIDES; ++k)
        rho2[k] = Z * Z + a.d[k] * a.d[k];
    side_log(a, rho2, Q);
    if (IGRAD != 0)
        side_cube(a, rho2, G);
    double E = 0, SX = 0, SY = 0, DX = 0, DY = 0, DZ = 0;
    for (int k = 0; k < SIDES; ++k) {
        if (!a.counts[k])
            continue;
        E += a.d[k] * Q[k];
        SX += Q[k] * a.n[k];
        SY -= Q[k] * a.c[k];
        DX += a.n[k] * G[k];
        DY -= a.c[k] * G[k];
        DZ -= a.d[k] * G[k];
    }
    if (in_plane) {
        out.D = 0;
        out.S = static_cast<f32>(E);
    } else {
        const double angle = solid_angle(a.i, std::abs(Z));
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
    alignas(32) Four A; // rho times that of 1/(r (r + height))
    alignas(32) Four B; // that of 1/(r + height)
};

struct Vertical {
    alignas(32) Four rho, kt, kv, w;
};

// A steep side, kt = 1: B by a series about the vertical side. xh and xl: x of the ends.
double steep_B(double Q, double xh, double xl, double kt, double alpha, double beta) {
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
    return (pair(1) - alpha * pair(2) + (a2 - beta) * pair(3) + alpha * (2 * beta - a2) * pair(4)) / (1 + kt);
}

// x = (r + tau)/rho makes 1/(r (r + height)) a rational function of x with the quadratic denominator
// (1+kt) x^2 + 2 kv x + (1-kt), so A is an arctangent; B follows from the sum rule of Q, the difference of
// f = ln(r + height) and A, and for a steep side, where that rule cancels, from a series.
[[gnu::always_inline]] inline void height_integrals(const Sides &a, const Vertical &vertical, const Four &fi,
                                                    const Four &fj, const Four &Q, HeightIntegrals &out) {
    alignas(32) Four xh, xl, upper, lower, angle, slope;
#pragma omp simd
    for (int k = 0; k < SIDES; ++k) {
        // With kt < 0 the side is run along the other way.
        const bool back = vertical.kt[k] < 0;
        const double kt = std::abs(vertical.kt[k]), kv = vertical.kv[k], w = vertical.w[k],
                     rho = vertical.rho[k];
        const double th = back ? -a.aj[k] : a.ai[k], tl = back ? -a.ai[k] : a.aj[k];
        const double rh = back ? a.j.r[k] : a.i.r[k], rl = back ? a.i.r[k] : a.j.r[k];
        xh[k] = (th >= 0 ? rh + th : rho) / (th >= 0 ? rho : rh - th);
        xl[k] = (tl >= 0 ? rl + tl : rho) / (tl >= 0 ? rho : rl - tl);
        const double yh = (1 + kt) * xh[k] + kv, yl = (1 + kt) * xl[k] + kv;
        slope[k] = (1 + kt) * (xh[k] - xl[k]);
        upper[k] = std::abs(w) * slope[k];
        lower[k] = w * w + yh * yl;
    }
#pragma omp simd
    for (int k = 0; k < SIDES; ++k)
        angle[k] = atan2(upper[k], lower[k]);
#pragma omp simd
    for (int k = 0; k < SIDES; ++k) {
        const double kt = std::abs(vertical.kt[k]), kv = vertical.kv[k], w = vertical.w[k];
        const double df = vertical.kt[k] < 0 ? fj[k] - fi[k] : fi[k] - fj[k];
        const bool small = lower[k] > 0 && upper[k] < SMALL_ANGLE * lower[k];
        const double q = slope[k] / (small ? lower[k] : 1.0);
        out.A[k] = small ? 2 * q * (1 - w * w * q * q / 3) : 2 * angle[k] / std::abs(w);
        out.B[k] = (Q[k] - kt * df - kv * out.A[k]) / (w * w + kv * kv);
    }
    for (int k = 0; k < SIDES; ++k) {
        const double kt = std::abs(vertical.kt[k]), kv = vertical.kv[k], w = vertical.w[k],
                     m = w * w + kv * kv;
        const double alpha = 2 * kv / (1 + kt), beta = m / ((1 + kt) * (1 + kt));
        if (m < STEEP_SIDE && (std::abs(alpha) + beta / xl[k]) < STEEP_SERIES * xl[k])
            out.B[k] = steep_B(Q[k], xh[k], xl[k], kt, alpha, beta);
    }
}

struct LogSums {
    double L = 0, LZ = 0, LX = 0, LY = 0, LZX = 0, LZY = 0;
};

// ln(r + height) at the vertices of the sides, 0 and a mark where it has no meaning.
[[gnu::always_inline]] inline void vertex_logarithms(const Ends &v, double Z, const double *k, Four &f,
                                                     bool (&undefined)[SIDES]) {
    alignas(32) Four above;
#pragma omp simd
    for (int i = 0; i < SIDES; ++i)
        above[i] = v.r[i] + k[1] * v.x[i] + k[2] * v.y[i] + k[3] * Z;
    for (int i = 0; i < SIDES; ++i) {
        undefined[i] = above[i] < VERTEX_LOG * v.r[i];
        above[i] = undefined[i] ? 1 : above[i];
    }
#pragma omp simd
    for (int i = 0; i < SIDES; ++i)
        f[i] = log(above[i]);
}

// The vertical seen from each side; a field point on the line of a side is moved off it.
[[gnu::always_inline]] inline void see_vertical(Sides &a, double Z, const double *k, double floor,
                                                Vertical &vertical) {
#pragma omp simd
    for (int i = 0; i < SIDES; ++i) {
        const bool on_line = Z * Z + a.d[i] * a.d[i] < floor * floor;
        a.d[i] = on_line ? std::copysign(floor, a.d[i]) : a.d[i];
        const double rho = std::sqrt(Z * Z + a.d[i] * a.d[i]);
        const double kn = k[1] * a.n[i] - k[2] * a.c[i];
        vertical.rho[i] = rho;
        vertical.kt[i] = k[1] * a.c[i] + k[2] * a.n[i];
        vertical.kv[i] = (a.d[i] * kn + Z * k[3]) / rho;
        vertical.w[i] = (Z * kn - a.d[i] * k[3]) / rho;
    }
}

// L and its derivatives as sums over the sides: ln(r + height) is homogeneous but for a constant, and its
// gradient the curl of k x v/(r + height), v from the panel to the field point, so Gauss and Stokes lead to
// the contour. Returns the status; with status 2 the wanted shift of the field point along k is in `shift`
// and the sums are not complete.
[[gnu::always_inline]] inline int side_sums(double X, double Y, double Z, const double *k, const Panel &p,
                                            int IGRAD, LogSums &sum, double &shift) {
    const double width = static_cast<double>(p.width);
    const double floor = ON_SIDE * std::sqrt(static_cast<double>(p.PMOM[1]));
    const bool level = std::abs(k[1]) + std::abs(k[2]) + std::abs(Z) < LEVEL_PLANE * width;
    Sides a(X, Y, Z * Z, p);
#pragma omp simd
    for (int i = 0; i < SIDES; ++i) {
        a.i.r[i] = a.i.r[i] > floor ? a.i.r[i] : floor;
        a.j.r[i] = a.j.r[i] > floor ? a.j.r[i] : floor;
    }
    Vertical vertical;
    see_vertical(a, Z, k, floor, vertical);
    for (int i = 0; i < SIDES; ++i) {
        if (IGRAD != 0 && !level && a.counts[i] &&
            vertical.kt[i] * vertical.kt[i] + vertical.kv[i] * vertical.kv[i] < LEVEL_SIDE * LEVEL_SIDE) {
            shift = std::abs(k[1] * a.i.x[i] + k[2] * a.i.y[i] + k[3] * Z) + LEVEL_SHIFT * width;
            return 2;
        }
    }
    alignas(32) Four f, rho2, Q;
    bool undefined[SIDES];
    vertex_logarithms(a.i, Z, k, f, undefined);
    Register of_vertices;
    std::memcpy(&of_vertices, f, sizeof f);
    alignas(32) Four fj;
    put(of_vertices, f, fj);
#pragma omp simd
    for (int i = 0; i < SIDES; ++i)
        rho2[i] = vertical.rho[i] * vertical.rho[i];
    side_log(a, rho2, Q);
    HeightIntegrals h;
    height_integrals(a, vertical, f, fj, Q, h);
    int status = 0;
    for (int i = 0; i < SIDES; ++i) {
        if (!a.counts[i])
            continue;
        if (undefined[i] || undefined[(i + 1) % SIDES]) {
            status = 1;
            continue;
        }
        // Integral of ln(r + height) along the side, by parts.
        const double along =
            a.ai[i] * f[i] - a.aj[i] * fj[i] - a.s[i] + vertical.rho[i] * (h.A[i] + vertical.kv[i] * h.B[i]);
        const double LZ = vertical.rho[i] * vertical.w[i] * h.B[i];
        const double rise = Z / vertical.rho[i] * h.A[i] + k[3] * h.B[i]; // integral of the Z derivative
        sum.LZ += LZ;
        sum.L += 0.5 * (a.d[i] * (along - 0.5 * a.s[i]) - Z * LZ);
        sum.LX += a.n[i] * along;
        sum.LY -= a.c[i] * along;
        sum.LZX -= a.n[i] * rise;
        sum.LZY += a.c[i] * rise;
    }
    return status;
}

[[gnu::always_inline]] inline int near_logarithm(double X, double Y, double Z, const Panel &p, int IGRAD,
                                                 PanelIntegrals &out) {
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

VORDA_SIMD int panint_near(f32 X, f32 Y, f32 Z, const Panel &p, int IGRAD, int ILOGF, PanelIntegrals &out) {
    const double x = static_cast<double>(X), y = static_cast<double>(Y), z = static_cast<double>(Z);
    near_source(x, y, z, p, IGRAD, out);
    return ILOGF != 0 ? near_logarithm(x, y, z, p, IGRAD, out) : 0;
}
