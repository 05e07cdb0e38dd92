// The exact forms of the family L as sums over the sides: ln(r + height) is homogeneous but for a constant,
// and its gradient the curl of k x v/(r + height), v from the panel to the field point, so Gauss and Stokes
// lead to the contour. In double precision, as differences cancel for nearly vertical panels.
#pragma once

#include "rankine/near_sides.hpp"

namespace near_field {

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

// The vertical seen from each side: its components kt along the side, kv along the perpendicular from the
// side to the field point (of length rho), w normal to both; their squares add up to 1.
template <int P> struct Vertical {
    alignas(64) PerSide<P> rho, kt, kv, w;
    alignas(64) PerSide<P> kx, ky, kz; // in the frame of the panel
    alignas(64) PerSide<P> Z;          // of the field point
};

// The unit vertical in the frames of the panels.
template <int P>
[[gnu::always_inline]] inline void unit_vertical(const PanelLanes<P> &p, PerPanel<P> (&k)[3]) {
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        const double kx = static_cast<double>(p.up[0][l]), ky = static_cast<double>(p.up[1][l]),
                     kz = static_cast<double>(p.up[2][l]);
        const double over = 1 / std::sqrt(kx * kx + ky * ky + kz * kz);
        k[0][l] = kx * over;
        k[1][l] = ky * over;
        k[2][l] = kz * over;
    }
}

// Vertices and lines of sides are not seen from nearer than the floor.
template <int P>
[[gnu::always_inline]] inline void keep_distance(const PerPanel<P> &floor, const PerPanel<P> &Z,
                                                 Sides<P> &a) {
    alignas(64) PerSide<P> floors, Zs;
    to_sides<P>(floor, floors);
    to_sides<P>(Z, Zs);
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k) {
        const double least = floors[k];
        a.i.r[k] = a.i.r[k] > least ? a.i.r[k] : least;
        a.j.r[k] = a.j.r[k] > least ? a.j.r[k] : least;
        const bool on_line = Zs[k] * Zs[k] + a.d[k] * a.d[k] < least * least;
        a.d[k] = on_line ? std::copysign(least, a.d[k]) : a.d[k];
    }
}

template <int P>
[[gnu::always_inline]] inline void see_vertical(const Sides<P> &a, const PerPanel<P> (&k)[3],
                                                const PerPanel<P> &Z, Vertical<P> &v) {
    to_sides<P>(k[0], v.kx);
    to_sides<P>(k[1], v.ky);
    to_sides<P>(k[2], v.kz);
    to_sides<P>(Z, v.Z);
#pragma omp simd
    for (int i = 0; i < SIDES * P; ++i) {
        const double rho = std::sqrt(v.Z[i] * v.Z[i] + a.d[i] * a.d[i]), over_rho = 1 / rho;
        const double kn = v.kx[i] * a.n[i] - v.ky[i] * a.c[i];
        v.rho[i] = rho;
        v.kt[i] = v.kx[i] * a.c[i] + v.ky[i] * a.n[i];
        v.kv[i] = (a.d[i] * kn + v.Z[i] * v.kz[i]) * over_rho;
        v.w[i] = (v.Z[i] * kn - a.d[i] * v.kz[i]) * over_rho;
    }
}

// The wanted shift of each field point along the vertical: 0 unless the vertical is normal to the plane of a
// side and the field point. True: some point has one.
template <int P>
[[gnu::always_inline]] inline bool level_shift(const PanelLanes<P> &p, const Sides<P> &a,
                                               const Vertical<P> &v, PerPanel<P> &shift) {
    alignas(64) PerSide<P> wanted; // -1: none
    double some = 0;
#pragma omp simd reduction(+ : some)
    for (int i = 0; i < SIDES * P; ++i) {
        const bool level =
            a.counts[i] != 0 && v.kt[i] * v.kt[i] + v.kv[i] * v.kv[i] < LEVEL_SIDE * LEVEL_SIDE;
        const double height = std::abs(v.kx[i] * a.i.x[i] + v.ky[i] * a.i.y[i] + v.kz[i] * v.Z[i]);
        wanted[i] = level ? height : -1.0;
        some += level ? 1.0 : 0.0;
    }
    if (some == 0)
        return false;
    int any = 0;
    for (int l = 0; l < P; ++l) {
        const double width = static_cast<double>(p.width[l]);
        const bool in_level_plane =
            std::abs(v.kx[l]) + std::abs(v.ky[l]) + std::abs(v.Z[l]) < LEVEL_PLANE * width;
        double first = -1; // of the first level side
        for (int k = SIDES - 1; k >= 0; --k)
            first = wanted[k * P + l] >= 0 ? wanted[k * P + l] : first;
        const bool moves = first >= 0 && !in_level_plane;
        shift[l] = moves ? first + LEVEL_SHIFT * width : 0;
        any |= moves ? 1 : 0;
    }
    return any != 0;
}

// ln(r + height) at the first vertices of the sides, 0 where it has no meaning; undefined 1 there.
template <int P>
[[gnu::always_inline]] inline void vertex_logarithms(const Ends<P> &e, const Vertical<P> &v, PerSide<P> &f,
                                                     PerSide<P> &undefined) {
    alignas(64) PerSide<P> above;
#pragma omp simd
    for (int i = 0; i < SIDES * P; ++i) {
        const double sum = e.r[i] + v.kx[i] * e.x[i] + v.ky[i] * e.y[i] + v.kz[i] * v.Z[i];
        undefined[i] = sum < VERTEX_LOG * e.r[i] ? 1.0 : 0.0;
        above[i] = undefined[i] != 0 ? 1.0 : sum;
    }
#pragma omp simd
    for (int i = 0; i < SIDES * P; ++i)
        f[i] = log(above[i]);
}

// Along a side, with tau the position of the field point, height = kt tau + rho kv.
template <int P> struct HeightIntegrals {
    alignas(64) PerSide<P> A; // rho times that of 1/(r (r + height))
    alignas(64) PerSide<P> B; // that of 1/(r + height)
};

// A steep side, kt = 1: B by a series about the vertical side, to the third order of alpha; the fourth is
// below 1e-10. xh and xl: x of the ends.
[[gnu::always_inline]] inline double steep_B(double Q, double xh, double xl, double kt, double alpha,
                                             double beta) {
    const double h = 1 / xh, l = 1 / xl;
    const double h2 = h * h, l2 = l * l, h3 = h2 * h, l3 = l2 * l, h4 = h2 * h2, l4 = l2 * l2;
    // j_n, the integrals of 1/x^n, n = 1 to 6, those of one parity summed in pairs.
    const double j2 = l - h, j3 = (l2 - h2) / 2, j4 = (l3 - h3) / 3, j5 = (l4 - h4) / 4,
                 j6 = (l4 * l - h4 * h) / 5;
    const double a2 = alpha * alpha;
    return (Q + j3 - alpha * (j2 + j4) + (a2 - beta) * (j3 + j5) + alpha * (2 * beta - a2) * (j4 + j6)) /
           (1 + kt);
}

// x = (r + tau)/rho makes 1/(r (r + height)) a rational function of x with the quadratic denominator
// (1+kt) x^2 + 2 kv x + (1-kt), so A is an arctangent; B follows from the sum rule of Q, the difference of
// f = ln(r + height) and A, and for a steep side, where that rule cancels, from a series.
template <int P>
[[gnu::always_inline]] inline void height_integrals(const Sides<P> &a, const Vertical<P> &v,
                                                    const PerSide<P> &fi, const PerSide<P> &fj,
                                                    const PerSide<P> &Q, HeightIntegrals<P> &out) {
    alignas(64) PerSide<P> xh, xl, upper, lower, small, series, angle;
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k) {
        // With kt < 0 the side is run along the other way.
        const bool back = v.kt[k] < 0;
        const double kt = std::abs(v.kt[k]), kv = v.kv[k], w = v.w[k], rho = v.rho[k];
        const double th = back ? -a.aj[k] : a.ai[k], tl = back ? -a.ai[k] : a.aj[k];
        const double rh = back ? a.j.r[k] : a.i.r[k], rl = back ? a.i.r[k] : a.j.r[k];
        xh[k] = (th >= 0 ? rh + th : rho) / (th >= 0 ? rho : rh - th);
        xl[k] = (tl >= 0 ? rl + tl : rho) / (tl >= 0 ? rho : rl - tl);
        const double yh = (1 + kt) * xh[k] + kv, yl = (1 + kt) * xl[k] + kv;
        const double slope = (1 + kt) * (xh[k] - xl[k]), up = std::abs(w) * slope, low = w * w + yh * yl;
        const bool is_small = low > 0 && up < SMALL_ANGLE * low;
        const double q = slope / (is_small ? low : 1.0);
        small[k] = is_small ? 1.0 : 0.0;
        series[k] = 2 * q * (1 - w * w * q * q / 3);
        upper[k] = is_small ? 1.0 : up;
        lower[k] = is_small ? 1.0 : low;
    }
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k)
        angle[k] = atan2(upper[k], lower[k]);
    alignas(64) PerSide<P> steep;
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k) {
        const double kt = std::abs(v.kt[k]), kv = v.kv[k], w = v.w[k], m = w * w + kv * kv;
        const double df = v.kt[k] < 0 ? fj[k] - fi[k] : fi[k] - fj[k];
        out.A[k] = small[k] != 0 ? series[k] : 2 * angle[k] / std::abs(w);
        out.B[k] = (Q[k] - kt * df - kv * out.A[k]) / m;
        const double alpha = 2 * std::abs(kv) / (1 + kt), beta = m / ((1 + kt) * (1 + kt));
        steep[k] = m < STEEP_SIDE && alpha * xl[k] + beta < STEEP_SERIES * xl[k] * xl[k] ? 1.0 : 0.0;
    }
    double any = 0;
#pragma omp simd reduction(+ : any)
    for (int k = 0; k < SIDES * P; ++k)
        any += steep[k];
    if (any == 0)
        return;
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k) {
        const double kt = std::abs(v.kt[k]), kv = v.kv[k], m = v.w[k] * v.w[k] + kv * kv;
        const double B = steep_B(Q[k], xh[k], xl[k], kt, 2 * kv / (1 + kt), m / ((1 + kt) * (1 + kt)));
        out.B[k] = steep[k] != 0 ? B : out.B[k];
    }
}

// The sums over the sides; f and Q belong to the field points of v. Status 1 where f is undefined.
template <int P>
[[gnu::always_inline]] inline void logarithm_sums(const Sides<P> &a, const Vertical<P> &v, int order,
                                                  NearIntegrals<P> &out) {
    alignas(64) PerSide<P> fi, fj, lost_i, lost_j, rho2, Q;
    vertex_logarithms<P>(a.i, v, fi, lost_i);
    next_vertex<P>(fi, fj);
    next_vertex<P>(lost_i, lost_j);
#pragma omp simd
    for (int i = 0; i < SIDES * P; ++i)
        rho2[i] = v.rho[i] * v.rho[i];
    side_log<P>(a, rho2, Q);
    HeightIntegrals<P> h;
    height_integrals<P>(a, v, fi, fj, Q, h);
    alignas(64) PerSide<P> along, rise, share, LZ, lost;
#pragma omp simd
    for (int i = 0; i < SIDES * P; ++i) {
        const double rho = v.rho[i];
        const double undefined = lost_i[i] + lost_j[i];
        const bool counts = a.counts[i] != 0 && undefined == 0;
        lost[i] = a.counts[i] != 0 ? undefined : 0.0;
        // Integral of ln(r + height) along the side, by parts.
        const double F = a.ai[i] * fi[i] - a.aj[i] * fj[i] - a.s[i] + rho * (h.A[i] + v.kv[i] * h.B[i]);
        const double Z_part = rho * v.w[i] * h.B[i];
        LZ[i] = counts ? Z_part : 0.0;
        along[i] = counts ? F : 0.0;
        share[i] = counts ? 0.5 * (a.d[i] * (F - 0.5 * a.s[i]) - v.Z[i] * Z_part) : 0.0;
        rise[i] =
            counts ? -(v.Z[i] / rho * h.A[i] + v.kz[i] * h.B[i]) : 0.0; // minus integral of the Z derivative
    }
    sum_sides<P>(share, out.L);
    sum_sides<P>(LZ, out.LZ);
    if (order > 0)
        tangential<P>(a, along, out.LX, out.LY);
    if (order > 1)
        tangential<P>(a, rise, out.LZX, out.LZY);
    alignas(64) PerPanel<P> undefined;
    sum_sides<P>(lost, undefined);
    for (int l = 0; l < P; ++l)
        out.status[l] = undefined[l] != 0 ? 1 : 0;
}

// The family L, with order 1 and 2 of field points moved off the level of a side.
template <int P>
[[gnu::always_inline]] inline void logarithm(const PanelLanes<P> &p, int order, NearIntegrals<P> &out) {
    alignas(64) PerPanel<P> k[3], X, Y, Z, floor, shift;
    bool moved[P] = {};
    unit_vertical<P>(p, k);
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        X[l] = p.X[l];
        Y[l] = p.Y[l];
        Z[l] = p.Z[l];
        floor[l] = ON_SIDE * std::sqrt(static_cast<double>(p.area[l]));
    }
    Vertical<P> vertical;
    for (int n = 0;; ++n) {
        Sides<P> a(p, X, Y, Z);
        keep_distance<P>(floor, Z, a);
        see_vertical<P>(a, k, Z, vertical);
        if (order == 0 || n == MAX_SHIFTS || !level_shift<P>(p, a, vertical, shift)) {
            logarithm_sums<P>(a, vertical, order, out);
            break;
        }
        for (int l = 0; l < P; ++l) {
            moved[l] = moved[l] || shift[l] != 0;
            X[l] += shift[l] * k[0][l];
            Y[l] += shift[l] * k[1][l];
            Z[l] += shift[l] * k[2][l];
        }
    }
    for (int l = 0; l < P; ++l)
        out.status[l] = out.status[l] == 0 && moved[l] ? 2 : out.status[l];
}

} // namespace near_field
