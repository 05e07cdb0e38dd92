// The multipoles of the panels in the lanes, in single precision.
#pragma once

#include "base/simd.hpp"
#include "rankine/panint.hpp"
#include "rankine/panint_lanes.hpp"

#include <cmath>

namespace far_field {

template <int P> using PerPanelSingle = f32[P];

// As PanelLanes.
template <int P> struct Lanes {
    alignas(64) PerPanelSingle<P> X, Y, Z;
    alignas(64) PerPanelSingle<P> PMOM[14], up[3], region2;
};

// S is a sum of terms N/R^n, n = 1, 3, 5, 7, 9, with N a polynomial of X and Y; so D and all derivatives
// follow from the sums over N, n N, n (n + 2) N and over the derivatives of N.
struct MultipoleSums {
    f32 s0 = 0;         // N/R^n
    f32 s1 = 0;         // n N/R^n
    f32 s2 = 0;         // n (n + 2) N/R^n
    f32 x0 = 0, x1 = 0; // the first two with the X derivative of N
    f32 y0 = 0, y1 = 0;

    [[gnu::always_inline]] void add(f32 n, f32 over, f32 N) {
        s0 += N * over;
        s1 += n * N * over;
    }
    [[gnu::always_inline]] void add_gradient(f32 n, f32 over, f32 N, f32 NX, f32 NY) {
        s2 += n * (n + 2) * N * over;
        x0 += NX * over;
        x1 += n * NX * over;
        y0 += NY * over;
        y1 += n * NY * over;
    }
};

// D, S and the derivatives of the order. FOURTH: panels may want the fourth order of the multipoles.
template <int P, bool FOURTH, int ORDER>
[[gnu::always_inline]] inline void source(const Lanes<P> &p, LaneIntegrals<P, f32> &out) {
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        const f32 X = p.X[l], Y = p.Y[l], Z = p.Z[l];
        const f32 m1 = p.PMOM[1][l], m2 = p.PMOM[2][l], m3 = p.PMOM[3][l], m4 = p.PMOM[4][l];
        const f32 R2 = X * X + Y * Y + Z * Z;
        const f32 over_R2 = 1 / R2;
        const f32 over_R = std::sqrt(over_R2);
        const f32 over_R3 = over_R * over_R2;
        const f32 over_R5 = over_R3 * over_R2;
        MultipoleSums t;
        const f32 N3 = -(m2 + m4) / 3;
        f32 N5 = X * X * m2 + Y * Y * m4 + X * Y * m3;
        f32 N5X = 2 * X * m2 + Y * m3, N5Y = 2 * Y * m4 + X * m3;
        if constexpr (FOURTH) {
            const f32 wanted = R2 < FAR_SECOND_ORDER * p.region2[l] ? 1.0f : 0.0f;
            const f32 over_R7 = wanted * over_R5 * over_R2;
            const f32 over_R9 = over_R7 * over_R2;
            const f32 m5 = p.PMOM[5][l], m6 = p.PMOM[6][l], m7 = p.PMOM[7][l], m8 = p.PMOM[8][l];
            const f32 m9 = p.PMOM[9][l], m10 = p.PMOM[10][l], m11 = p.PMOM[11][l], m12 = p.PMOM[12][l],
                      m13 = p.PMOM[13][l];
            N5 += wanted * (0.1f * (m9 + 2 * m11 + m13) - Y * (m8 + m6) - X * (m7 + m5));
            const f32 N7 = (5.0f / 3) * (X * X * X * m5 + Y * Y * Y * m8 + 3 * X * Y * (Y * m7 + X * m6)) -
                           X * X * (m11 + m9) - Y * Y * (m13 + m11) - X * Y * (m12 + m10);
            const f32 N9 = 7 * X * X * Y * Y * m11 + (7.0f / 6) * (X * X * X * X * m9 + Y * Y * Y * Y * m13) +
                           (7.0f / 3) * X * Y * (X * X * m10 + Y * Y * m12);
            t.add(7, over_R7, N7);
            t.add(9, over_R9, N9);
            if constexpr (ORDER > 0) {
                N5X -= wanted * (m7 + m5);
                N5Y -= wanted * (m8 + m6);
                const f32 N7X =
                    5 * (X * X * m5 + Y * (Y * m7 + 2 * X * m6)) - 2 * X * (m11 + m9) - Y * (m12 + m10);
                const f32 N7Y =
                    5 * (Y * Y * m8 + X * (2 * Y * m7 + X * m6)) - 2 * Y * (m13 + m11) - X * (m12 + m10);
                const f32 N9X = 14 * X * Y * Y * m11 + (14.0f / 3) * X * X * X * m9 +
                                (7.0f / 3) * Y * (3 * X * X * m10 + Y * Y * m12);
                const f32 N9Y = 14 * X * X * Y * m11 + (14.0f / 3) * Y * Y * Y * m13 +
                                (7.0f / 3) * X * (X * X * m10 + 3 * Y * Y * m12);
                t.add_gradient(7, over_R7, N7, N7X, N7Y);
                t.add_gradient(9, over_R9, N9, N9X, N9Y);
            }
        }
        t.add(5, over_R5, N5);
        t.add(3, over_R3, N3);
        t.add(1, over_R, m1);
        out.S[l] = t.s0;
        const f32 zr = Z * over_R2;
        out.D[l] = zr * t.s1;
        if constexpr (ORDER > 0) {
            t.add_gradient(5, over_R5, N5, N5X, N5Y);
            t.add_gradient(3, over_R3, N3, 0, 0);
            t.add_gradient(1, over_R, m1, 0, 0);
            out.SX[l] = t.x0 - X * over_R2 * t.s1;
            out.SY[l] = t.y0 - Y * over_R2 * t.s1;
        }
        if constexpr (ORDER > 1) {
            out.DX[l] = zr * (t.x1 - X * over_R2 * t.s2);
            out.DY[l] = zr * (t.y1 - Y * over_R2 * t.s2);
            out.DZ[l] = over_R2 * t.s1 - zr * zr * t.s2;
        }
    }
}

template <int P, bool FOURTH>
[[gnu::always_inline]] inline void source(const Lanes<P> &p, int order, LaneIntegrals<P, f32> &out) {
    if (order == 0)
        source<P, FOURTH, 0>(p, out);
    else if (order == 1)
        source<P, FOURTH, 1>(p, out);
    else
        source<P, FOURTH, 2>(p, out);
}

template <int P>
[[gnu::always_inline]] inline void source(const Lanes<P> &p, int order, LaneIntegrals<P, f32> &out) {
    const auto fourth = [&p](int l) {
        return p.X[l] * p.X[l] + p.Y[l] * p.Y[l] + p.Z[l] * p.Z[l] < FAR_SECOND_ORDER * p.region2[l];
    };
    // Of several panels always: what one of them gets must not depend on the others.
    if (P > 1 || fourth(0))
        source<P, true>(p, order, out);
    else
        source<P, false>(p, order, out);
}

// Derivatives of g = ln f, f = R + k . x. Indices 0, 1, 2 are X, Y, Z.
template <int P> struct LogDerivatives {
    alignas(64) PerPanelSingle<P> R, f, over_R;
    alignas(64) PerPanelSingle<P> u[3], a[3];               // x/R; gradient (u + k)/f
    alignas(64) PerPanelSingle<P> h[3][3], g[3][3];         // second ones of R over f; of ln f
    alignas(64) PerPanelSingle<P> h3[2][3][3], g3[2][3][3]; // third ones, the first two indices in the panel

    [[gnu::always_inline]] explicit LogDerivatives(const Lanes<P> &p) {
        first(p);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) {
#pragma omp simd
                for (int l = 0; l < P; ++l) {
                    h[i][j][l] = ((i == j ? 1.0f : 0.0f) - u[i][l] * u[j][l]) * (over_R[l] / f[l]);
                    g[i][j][l] = h[i][j][l] - a[i][l] * a[j][l];
                }
            }
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 3; ++j)
                for (int n = 0; n < 3; ++n) {
#pragma omp simd
                    for (int l = 0; l < P; ++l) {
                        h3[i][j][n][l] = -h[i][j][l] * (u[n][l] * over_R[l] + a[n][l]) -
                                         (h[i][n][l] * u[j][l] + u[i][l] * h[j][n][l]) * over_R[l];
                        g3[i][j][n][l] = h3[i][j][n][l] - g[i][n][l] * a[j][l] - a[i][l] * g[j][n][l];
                    }
                }
    }

    // Of lane l: i and j in the panel, then Z, then n = X or Y.
    [[gnu::always_inline]] f32 fourth(int i, int j, int n, int l) const {
        const f32 w = over_R[l], uz = u[2][l];
        const f32 h4 = -h3[i][j][n][l] * (uz * w + a[2][l]) -
                       h[i][j][l] * (f[l] * h[2][n][l] * w - uz * u[n][l] * (w * w) + g[2][n][l]) -
                       (h3[i][2][n][l] * u[j][l] + h[i][2][l] * f[l] * h[j][n][l] +
                        f[l] * h[i][n][l] * h[j][2][l] + u[i][l] * h3[j][2][n][l]) *
                           w +
                       (h[i][2][l] * u[j][l] + u[i][l] * h[j][2][l]) * u[n][l] * (w * w);
        return h4 - g3[i][2][n][l] * a[j][l] - g[i][2][l] * g[j][n][l] - g[i][n][l] * g[j][2][l] -
               a[i][l] * g3[j][2][n][l];
    }

  private:
    [[gnu::always_inline]] void first(const Lanes<P> &p) {
#pragma omp simd
        for (int l = 0; l < P; ++l) {
            R[l] = std::sqrt(p.X[l] * p.X[l] + p.Y[l] * p.Y[l] + p.Z[l] * p.Z[l]);
            over_R[l] = 1 / R[l];
            f[l] = R[l] + p.up[0][l] * p.X[l] + p.up[1][l] * p.Y[l] + p.up[2][l] * p.Z[l];
            u[0][l] = p.X[l] * over_R[l];
            u[1][l] = p.Y[l] * over_R[l];
            u[2][l] = p.Z[l] * over_R[l];
        }
        for (int i = 0; i < 3; ++i) {
#pragma omp simd
            for (int l = 0; l < P; ++l)
                a[i][l] = (u[i][l] + p.up[i][l]) / f[l];
        }
    }
};

// Second-order multipole of ln(R + k . x) and its derivatives: m1 g + M : gg / 2 with the second area
// moments M.
template <int P>
[[gnu::always_inline]] inline void logarithm(const Lanes<P> &p, int order, LaneIntegrals<P, f32> &out) {
    const LogDerivatives<P> d(p);
    alignas(64) PerPanelSingle<P> M[2][2], ln_f, second = {}, third[3] = {}, fourth[2] = {};
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        M[0][0][l] = p.PMOM[2][l] / 3;
        M[0][1][l] = M[1][0][l] = p.PMOM[3][l] / 6;
        M[1][1][l] = p.PMOM[4][l] / 3;
    }
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j) {
#pragma omp simd
            for (int l = 0; l < P; ++l) {
                second[l] += M[i][j][l] * d.g[i][j][l];
                for (int n = 0; n < 3; ++n)
                    third[n][l] += M[i][j][l] * d.g3[i][j][n][l];
            }
        }
#pragma omp simd
    for (int l = 0; l < P; ++l)
        ln_f[l] = logf(d.f[l]);
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        const f32 area = p.PMOM[1][l];
        out.L[l] = area * ln_f[l] + second[l];
        out.LZ[l] = -(area * d.a[2][l] + third[2][l]);
        out.LX[l] = area * d.a[0][l] + third[0][l];
        out.LY[l] = area * d.a[1][l] + third[1][l];
    }
    if (order < 2)
        return;
    for (int n = 0; n < 2; ++n)
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 2; ++j) {
#pragma omp simd
                for (int l = 0; l < P; ++l)
                    fourth[n][l] += M[i][j][l] * d.fourth(i, j, n, l);
            }
#pragma omp simd
    for (int l = 0; l < P; ++l) {
        out.LZX[l] = -(p.PMOM[1][l] * d.g[0][2][l] + fourth[0][l]);
        out.LZY[l] = -(p.PMOM[1][l] * d.g[1][2][l] + fourth[1][l]);
    }
}

} // namespace far_field
