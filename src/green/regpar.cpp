#include "green/regpar.hpp"

#include "green/green_block.hpp"
#include "state/messages.hpp"

#include <cmath>

namespace {

constexpr f32 STRAIGHT_ABOVE = 1e-5f; // R up to it has no direction
constexpr f32 NEAREST = 5e-7f;        // smallest R^2 + Y^2
enum Geometry { DISTANCE = 1, COSINE, SINE, DEPTH1, DEPTH2 };
enum Flag { NEAR = 1, SELECTOR, BOTTOM };

// Where the values of a block stand: columns of the work space, moved to its first point.
struct BlockColumns {
    const f32 *R, *c, *s, *Z, *ZETA;
    const int *IFLAG;
    const f32 *value[2][DEPTH_VALUES]; // real, imaginary; in deep water only those of the record
};

// Sums of one part of the complex numbers, without the explicit terms.
struct Sums {
    alignas(64) f32 Qs[GREEN_LANES];
    alignas(64) f32 E[GREEN_LANES];
    alignas(64) f32 U[GREEN_LANES];
    alignas(64) f32 T[GREEN_LANES];
    alignas(64) f32 V[GREEN_LANES];
};

// Explicit terms of the real part.
struct Explicit {
    alignas(64) f32 a1[GREEN_LANES];
    alignas(64) f32 a2[GREEN_LANES];
    alignas(64) f32 a3[GREEN_LANES];
    alignas(64) f32 a4[GREEN_LANES];
    alignas(64) f32 a5[GREEN_LANES];
    alignas(64) f32 b[GREEN_LANES];
};

// Factors of i in the distinct results; P(3) = Q(2).
enum Row { P1, P2, P3, P4, Q1, Q3, Q4, W1_, W2_, ROWS };
struct Rows {
    alignas(64) f32 v[2][ROWS][GREEN_LANES]; // real, imaginary
};

template <bool DEEP> [[gnu::always_inline]] inline void explicit_terms(const BlockColumns &g, Explicit &e) {
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 R = g.R[k], Y = g.Z[k] + g.ZETA[k], r1 = std::sqrt(R * R + Y * Y), x = Y + r1, L = logf(x);
        const f32 i1 = 1 / r1, ix = 1 / x, slope = R * i1 * ix;
        const bool near = g.IFLAG[k] == 1;
        e.a1[k] = near ? 0.0f : -2 * slope;
        e.a2[k] = near ? 4 * ix - 3 * L : -2 * i1 * ix;
        e.a3[k] = (near ? 0.0f : -2 * L) - 2;
        e.a4[k] = near ? 4 * L - 2 : (4 + 2 * Y * i1 * i1) * i1 - 2 - 2 * L;
        e.a5[k] = (near ? -4 * slope : 2 * R * i1 * i1 * i1) + (DEEP ? 4 * slope : 0.0f);
        e.b[k] = near ? 8 * L : 4 * i1;
    }
}

// Deep water: all depends on Y alone, and the free-surface relation has replaced the third derivatives.
[[gnu::always_inline]] inline void deep_sums(const BlockColumns &g, int part, Sums &s) {
    const f32 *const *G = g.value[part];
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 R = g.R[k], Y = g.Z[k] + g.ZETA[k];
        const f32 Qs = G[G_R][k] - R * G[G_ZZ][k] + Y * G[G_RZ][k];
        const f32 U = G[G_][k] + R * G[G_R][k] + Y * G[G_Z][k];
        s.Qs[k] = Qs;
        s.E[k] = U - 2 * G[G_Z][k];
        s.U[k] = U;
        s.T[k] = 4 * G[G_Z][k] + 2 * Y * G[G_ZZ][k] + 2 * R * G[G_RZ][k];
        s.V[k] = -(Qs + G[G_R][k]);
    }
}

// Depth H, with the derivatives by it.
[[gnu::always_inline]] inline void finite_sums(const BlockColumns &g, f32 H, int part, Sums &s) {
    const f32 *const *G = g.value[part];
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 R = g.R[k], z = g.Z[k], zeta = g.ZETA[k];
        const f32 U = G[G_][k] + R * G[G_R][k] + H * G[G_H][k] + zeta * G[G_ZETA][k] + z * G[G_Z][k];
        s.Qs[k] = G[G_R][k] - R * G[G_ZZ][k] + H * G[G_RH][k] + zeta * G[G_RZETA][k] + z * G[G_RZ][k];
        s.E[k] = U - (G[G_H][k] + G[G_ZETA][k] + G[G_Z][k]);
        s.U[k] = U;
        s.T[k] = 4 * G[G_ZETA][k] +
                 2 * (H * G[G_ZETAH][k] + zeta * G[G_ZZ][k] + z * G[G_ZZETA][k] + R * G[G_RZETA][k]);
        s.V[k] = 2 * G[G_RZETA][k] - R * G[G_ZZZETA][k] + H * G[G_RZETAH][k] + zeta * G[G_RZZ][k] +
                 z * G[G_RZZETA][k];
    }
}

// Rows of one part. On one vertical G is a function of R^2 to any order, so that B = -E/2 and Wc = 0.
template <bool REAL>
[[gnu::always_inline]] inline void rows(const BlockColumns &g, const Sums &s, const Explicit &e,
                                        f32 (&v)[ROWS][GREEN_LANES]) {
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 R = g.R[k], c = g.c[k], sn = g.s[k];
        const f32 A = s.Qs[k] + (REAL ? e.a1[k] : 0), E = s.E[k] + (REAL ? e.a4[k] : 0);
        const f32 U = s.U[k] + (REAL ? e.a3[k] : 0), T = s.T[k] - (REAL ? e.b[k] : 0);
        const f32 V = s.V[k] + (REAL ? e.a5[k] : 0);
        const bool apart = R > STRAIGHT_ABOVE;
        const f32 quotient = s.Qs[k] / (apart ? R : 1.0f) + (REAL ? e.a2[k] : 0);
        const f32 B = apart ? quotient : -0.5f * E, Wc = apart ? E + 2 * quotient : 0.0f;
        v[P1][k] = 2 * c * A;
        v[Q1][k] = 2 * sn * A;
        v[P2][k] = 2 * c * c * Wc - 2 * B;
        v[Q3][k] = 2 * sn * sn * Wc - 2 * B;
        v[P3][k] = 2 * c * sn * Wc;
        v[P4][k] = -2 * c * V;
        v[Q4][k] = -2 * sn * V;
        v[W1_][k] = -T;
        v[W2_][k] = U;
    }
}

VORDA_SIMD void deep_block(const BlockColumns &g, Rows &r) {
    Sums s;
    Explicit e;
    explicit_terms<true>(g, e);
    deep_sums(g, 0, s);
    rows<true>(g, s, e, r.v[0]);
    deep_sums(g, 1, s);
    rows<false>(g, s, e, r.v[1]);
}

VORDA_SIMD void finite_block(const BlockColumns &g, f32 H, Rows &r) {
    Sums s;
    Explicit e;
    explicit_terms<false>(g, e);
    finite_sums(g, H, 0, s);
    rows<true>(g, s, e, r.v[0]);
    finite_sums(g, H, 1, s);
    rows<false>(g, s, e, r.v[1]);
}

void store(const Rows &r, int k, RegularTerms &out) {
    const auto value = [&](Row row) { return c32(r.v[0][row][k], r.v[1][row][k]); };
    const auto turned = [&](Row row) { return c32(-r.v[1][row][k], r.v[0][row][k]); }; // times i
    out.P[1] = turned(P1);
    out.P[2] = turned(P2);
    out.P[3] = out.Q[2] = turned(P3);
    out.P[4] = turned(P4);
    out.Q[1] = turned(Q1);
    out.Q[3] = turned(Q3);
    out.Q[4] = turned(Q4);
    out.W1 = turned(W1_);
    out.W2 = value(W2_);
}

// Distances, directions and selectors; the last point fills up the last block. False: a pair at one point of
// the free surface.
bool prepare(const KernelPoints &p, int padded, RegularWork &work) {
    f32 *R = &work.geometry(1, DISTANCE), *c = &work.geometry(1, COSINE), *s = &work.geometry(1, SINE),
        *Z = &work.geometry(1, DEPTH1), *ZETA = &work.geometry(1, DEPTH2);
    int *near = &work.flags(1, NEAR), *ISNG = &work.flags(1, SELECTOR), *IBOT = &work.flags(1, BOTTOM);
    bool good = true;
    for (int i = 0; i < padded; ++i) {
        const int at = i < p.n ? i : p.n - 1;
        const f32 dx = p.X1 - p.X2[at], dy = p.Y1 - p.Y2[at], R2 = dx * dx + dy * dy, Y = p.Z1 + p.Z2[at];
        R[i] = std::sqrt(R2);
        const f32 Rinv = R[i] > STRAIGHT_ABOVE ? 1 / R[i] : 0.0f;
        c[i] = dx * Rinv;
        s[i] = dy * Rinv;
        Z[i] = p.Z1;
        ZETA[i] = p.Z2[at];
        near[i] = p.IFLAG[at];
        ISNG[i] = 3;
        IBOT[i] = 1;
        good = good && R2 + Y * Y >= NEAREST;
    }
    return good;
}

Status evaluate(const KernelPoints &points, f32 H, const GSTATE &gstate, RegularWork &work) {
    const f32 *R = &work.geometry(1, DISTANCE), *Z = &work.geometry(1, DEPTH1),
              *ZETA = &work.geometry(1, DEPTH2);
    GreenArrays record;
    DepthArrays arrays;
    for (int j = 0; j < DEPTH_VALUES; ++j) {
        arrays.re[j] = &work.values(1, 1, j + 1);
        arrays.im[j] = &work.values(1, 2, j + 1);
    }
    if (H > 0) {
        if (failed(FGRUIO({points.n, R, Z, ZETA}, H, work.depth, arrays)))
            return MSGOUT("REGPAR: ERROR IN CALL TO FGRUIO");
        return Status::ok;
    }
    for (int j = 0; j < GREEN_VALUES; ++j) {
        record.re[j] = arrays.re[j];
        record.im[j] = arrays.im[j];
    }
    VGRN98({points.n, R, Z, ZETA, &work.flags(1, SELECTOR), &work.flags(1, BOTTOM)}, H, gstate,
           GreenOrder::second, work.green, record);
    return Status::ok;
}

} // namespace

bool RegularWork::alloc(int n) {
    const int all = padded(n);
    return geometry.alloc(all, DEPTH2) && flags.alloc(all, BOTTOM) && values.alloc(all, 2, DEPTH_VALUES) &&
           green.alloc(n) && depth.alloc(n);
}

Status REGPAR(const KernelPoints &points, f32 H, const GSTATE &gstate, RegularWork &work,
              RegularTerms *result) {
    if (points.n < 1)
        return Status::ok;
    if (!prepare(points, padded(points.n), work))
        return MSGOUT("REGPAR: XX+Y*Y TOO SMALL");
    if (failed(evaluate(points, H, gstate, work)))
        return Status::failed;
    Rows r;
    for (int first = 1; first <= points.n; first += GREEN_LANES) {
        BlockColumns g{&work.geometry(first, DISTANCE),
                       &work.geometry(first, COSINE),
                       &work.geometry(first, SINE),
                       &work.geometry(first, DEPTH1),
                       &work.geometry(first, DEPTH2),
                       &work.flags(first, NEAR),
                       {}};
        for (int j = 0; j < DEPTH_VALUES; ++j) {
            g.value[0][j] = &work.values(first, 1, j + 1);
            g.value[1][j] = &work.values(first, 2, j + 1);
        }
        if (H > 0)
            finite_block(g, H, r);
        else
            deep_block(g, r);
        for (int k = 0; k < GREEN_LANES && first + k <= points.n; ++k)
            store(r, k, result[first + k - 1]);
    }
    return Status::ok;
}

void LOGPAR(const NearPair &pair, RegularTerms &result) {
    const f32 dx = pair.X1 - pair.X2, dy = pair.Y1 - pair.Y2, R = std::sqrt(dx * dx + dy * dy);
    const f32 Rinv = R > STRAIGHT_ABOVE ? 1 / R : 0.0f, c = dx * Rinv, s = dy * Rinv;
    const f32 Y = pair.Z1 + pair.Z2, r1 = std::sqrt(R * R + Y * Y), p = 1 / (Y + r1);
    const f32 e0 = pair.PA / pair.NU;
    const f32 e1 = -(pair.PN[0] * dx + pair.PN[1] * dy + pair.PN[2] * Y) / (pair.NU * pair.NU * r1);
    const f32 f = pair.PB + pair.PD * std::log(pair.NU);
    const f32 g = 3 * f - 2 * r1 * p * (e1 + 2 * e0), h = -2 * e0 * p * R;
    const f32 w = 2 * e1 * Y / r1 - 6 * f + 4 * e0 + 2 * g, v = 2 * (h - e1 * R / r1);
    result.P[1] = {0, 2 * c * h};
    result.P[2] = {0, 2 * c * c * w - 2 * g};
    result.P[3] = result.Q[2] = {0, 2 * c * s * w};
    result.P[4] = {0, 2 * c * v};
    result.Q[1] = {0, 2 * s * h};
    result.Q[3] = {0, 2 * s * s * w - 2 * g};
    result.Q[4] = {0, 2 * s * v};
    result.W1 = {0, 4 * e0 - 8 * f};
    result.W2 = {-2 * f, 0};
}
