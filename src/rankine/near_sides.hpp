// The exact forms of S, D and their derivatives as sums over the sides, and what a side has of its own.
// Worked in double precision: S is what remains of a side sum and Z times a solid angle, and single
// precision would keep too little of it.
#pragma once

#include "base/simd.hpp"
#include "rankine/panint_lanes.hpp"

#include <cmath>

namespace near_field {

constexpr double PLANE = 1.0e-6;  // of the width: a field point not farther from the plane lies in it
constexpr double BETWEEN = -0.99; // product of cosines below which the field point lies close to the side
constexpr double TWO_PI = 6.283185307179586;

// The field point seen from a vertex of each side.
template <int P> struct Ends { alignas(64) PerSide<P> x, y, r; };

// A side: its length, its direction (c,n) in the panel, and seen from the field point
template <int P> struct Sides {
    alignas(64) PerSide<P> s, c, n;
    alignas(64) PerSide<P> d; // its distance from the line of the side, positive on the side of the panel
    alignas(64) PerSide<P> ai, aj; // its position along the side from vertex i, j
    alignas(64) PerSide<P> counts; // 1; of a side of no length 0
    Ends<P> i, j;                  // the first and the second vertex

    // Field points at the heights z.
    [[gnu::always_inline]] Sides(const PanelLanes<P> &p, const PerPanel<P> &X, const PerPanel<P> &Y,
                                 const PerPanel<P> &z) {
        see_vertices(p, X, Y, z);
        alignas(64) PerPanel<P> least;
        alignas(64) PerSide<P> leasts;
#pragma omp simd
        for (int l = 0; l < P; ++l)
            least[l] = PLANE * static_cast<double>(p.width[l]);
        to_sides<P>(least, leasts);
#pragma omp simd
        for (int k = 0; k < SIDES * P; ++k)
            counts[k] = static_cast<double>(p.SIDE[k]) > leasts[k] ? 1.0 : 0.0;
#pragma omp simd
        for (int k = 0; k < SIDES * P; ++k) {
            const double dx = i.x[k] - j.x[k], dy = i.y[k] - j.y[k], s2 = dx * dx + dy * dy;
            s[k] = std::sqrt(s2 > 0 ? s2 : 1.0);
            const double over_s = 1 / s[k];
            c[k] = dx * over_s;
            n[k] = dy * over_s;
            d[k] = i.x[k] * n[k] - i.y[k] * c[k];
            ai[k] = i.x[k] * c[k] + i.y[k] * n[k];
            aj[k] = ai[k] - s[k];
        }
    }

  private:
    [[gnu::always_inline]] void see_vertices(const PanelLanes<P> &p, const PerPanel<P> &X,
                                             const PerPanel<P> &Y, const PerPanel<P> &z) {
        alignas(64) PerSide<P> xs, ys, zs;
        to_sides<P>(X, xs);
        to_sides<P>(Y, ys);
        to_sides<P>(z, zs);
#pragma omp simd
        for (int k = 0; k < SIDES * P; ++k) {
            i.x[k] = xs[k] - static_cast<double>(p.XIV[k]);
            i.y[k] = ys[k] - static_cast<double>(p.ETV[k]);
            i.r[k] = std::sqrt(i.x[k] * i.x[k] + i.y[k] * i.y[k] + zs[k] * zs[k]);
        }
        next_vertex<P>(i.x, j.x);
        next_vertex<P>(i.y, j.y);
        next_vertex<P>(i.r, j.r);
    }
};

// Integral of 1/rho along each side.
template <int P>
[[gnu::always_inline]] inline void side_log(const Sides<P> &a, const PerSide<P> &rho2, PerSide<P> &Q) {
    alignas(64) PerSide<P> x;
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k) {
        const double ri = a.i.r[k], rj = a.j.r[k];
        const bool between = a.ai[k] * a.aj[k] <= BETWEEN * ri * rj;
        const double over = between ? (rj - a.aj[k]) * (a.ai[k] + ri) : ri + rj + a.s[k];
        const double under = between ? rho2[k] : ri + rj - a.s[k];
        x[k] = a.counts[k] != 0 ? over / under : 1.0;
    }
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k)
        Q[k] = log(x[k]);
}

// Integral of 1/rho^3 along a side.
template <int P>
[[gnu::always_inline]] inline void side_cube(const Sides<P> &a, const PerSide<P> &rho2, PerSide<P> &G) {
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k) {
        const double ri = a.i.r[k], rj = a.j.r[k], rr = ri + rj, s = a.s[k], q = rho2[k];
        const bool between = a.ai[k] * a.aj[k] <= BETWEEN * ri * rj;
        const double beside = (1 / ri + 1 / rj) * 2 * s / ((rr + s) * (rr - s));
        const double close = (2 - q / (rj * (rj - a.aj[k])) - q / (ri * (ri + a.ai[k]))) / q;
        G[k] = a.counts[k] != 0 ? (between ? close : beside) : 0.0;
    }
}

// The sum over the sides of n F and that of -c F.
template <int P>
[[gnu::always_inline]] inline void tangential(const Sides<P> &a, const PerSide<P> &F, PerPanel<P> &x,
                                              PerPanel<P> &y) {
    alignas(64) PerSide<P> nF, cF;
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k) {
        nF[k] = a.n[k] * F[k];
        cF[k] = -a.c[k] * F[k];
    }
    sum_sides<P>(nF, x);
    sum_sides<P>(cF, y);
}

// The triangle 1-a-b of a panel seen from the height z: tan of half its solid angle is num/den. Vertices from
// 0; a triangle without area has the angle 0.
template <int P>
[[gnu::always_inline]] inline void half_angle(const Ends<P> &v, const PerPanel<P> &z, int a, int b,
                                              PerPanel<P> &num, PerPanel<P> &den) {
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        const double x1 = v.x[l], y1 = v.y[l], r1 = v.r[l], z2 = z[l] * z[l];
        const double xa = v.x[a * P + l], ya = v.y[a * P + l], ra = v.r[a * P + l];
        const double xb = v.x[b * P + l], yb = v.y[b * P + l], rb = v.r[b * P + l];
        const double twice_area = (ya - y1) * (xb - x1) - (xa - x1) * (yb - y1);
        const double dot_1a = x1 * xa + y1 * ya + z2, dot_1b = x1 * xb + y1 * yb + z2,
                     dot_ab = xa * xb + ya * yb + z2;
        num[l] = z[l] * twice_area;
        den[l] = twice_area != 0 ? (r1 * ra + dot_1a) * rb + dot_1b * ra + dot_ab * r1 : 1.0;
    }
}

// Solid angle of the panel from the height z > 0 above or below: the triangles 1-2-3 and 1-3-4, whose half
// angles are the arguments of complex numbers den + i num; one arctangent of their product gives the sum.
template <int P>
[[gnu::always_inline]] inline void solid_angle(const Ends<P> &v, const PerPanel<P> &z, PerPanel<P> &angle) {
    alignas(64) PerPanel<P> num1, den1, num2, den2, re, im, half;
    half_angle<P>(v, z, 1, 2, num1, den1);
    half_angle<P>(v, z, 2, 3, num2, den2);
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        re[l] = den1[l] * den2[l] - num1[l] * num2[l];
        im[l] = den1[l] * num2[l] + num1[l] * den2[l];
    }
#pragma omp simd
    for (int l = 0; l < P; ++l)
        half[l] = atan2(im[l], re[l]);
#pragma omp simd
    for (int l = 0; l < P; ++l)
        angle[l] = 2 * half[l] < -1.0e-10 ? 2 * half[l] + 2 * TWO_PI : 2 * half[l];
}

// D and S, with order 1 SX and SY, with order 2 DX to DZ.
template <int P>
[[gnu::always_inline]] inline void source(const PanelLanes<P> &p, int order, NearIntegrals<P> &out) {
    alignas(64) PerPanel<P> t, Z, height, angle, E;
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        t[l] = PLANE * static_cast<double>(p.width[l]);
        Z[l] = std::abs(p.Z[l]) <= t[l] ? t[l] : p.Z[l];
        height[l] = std::abs(Z[l]);
    }
    const Sides<P> a(p, p.X, p.Y, height);
    alignas(64) PerSide<P> heights, rho2, Q, G;
    to_sides<P>(height, heights);
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k)
        rho2[k] = heights[k] * heights[k] + a.d[k] * a.d[k];
    side_log<P>(a, rho2, Q);
    alignas(64) PerSide<P> dQ;
#pragma omp simd
    for (int k = 0; k < SIDES * P; ++k)
        dQ[k] = a.d[k] * Q[k];
    sum_sides<P>(dQ, E);
    solid_angle<P>(a.i, height, angle);
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        const bool in_plane = std::abs(p.Z[l]) <= t[l];
        out.D[l] = in_plane ? 0.0 : (Z[l] > 0 ? angle[l] : -angle[l]);
        out.S[l] = in_plane ? E[l] : E[l] - height[l] * angle[l];
    }
    if (order > 0)
        tangential<P>(a, Q, out.SX, out.SY);
    if (order > 1) {
        side_cube<P>(a, rho2, G);
        tangential<P>(a, G, out.DX, out.DY);
        alignas(64) PerSide<P> dG;
#pragma omp simd
        for (int k = 0; k < SIDES * P; ++k)
            dG[k] = -a.d[k] * G[k];
        sum_sides<P>(dG, out.DZ);
#pragma omp simd
        for (int l = 0; l < P; ++l) {
            out.DX[l] *= Z[l];
            out.DY[l] *= Z[l];
        }
    }
}

} // namespace near_field
