// Kernels of the wave modes of finite depth, one block of points each.
//   R = X, heights above the bottom ZB = H - z and ZETAB = H - zeta.
#include "green/green_block.hpp"

#include <cmath>

namespace {

constexpr f32 QUARTER_PI_COS = 0.70710678f;
constexpr f32 TWO_BY_PI = 0.63661977f;
constexpr f32 MAX_EXPONENT = 30.0f; // of the vertical factors: beyond it they stop falling
constexpr f32 MAX_DECAY = 80.0f;    // of the evanescent modes: keeps exp among the normal numbers

template <int N> [[gnu::always_inline]] inline f32 polynomial(const f32 *c, f32 x) {
    if constexpr (N == 1)
        return c[0];
    else
        return polynomial<N - 1>(c + 1, x) * x + c[0];
}

struct Decay {
    f32 e, rest; // exp(-x) and 1 - exp(-x)
};

// 1 - exp(-x) with its digits: in shallow water both points are close to the bottom on the scale of a wave.
// Below 0.5 the Taylor series, to 5e-9.
[[gnu::always_inline]] inline Decay decay(f32 x) {
    x = x < MAX_EXPONENT ? x : MAX_EXPONENT;
    const f32 e = expf(-x);
    const f32 s4 = 1 - x * (1 / 5.0f) * (1 - x * (1 / 6.0f) * (1 - x * (1 / 7.0f) * (1 - x * (1 / 8.0f))));
    const f32 series = x * (1 - x * (1 / 2.0f) * (1 - x * (1 / 3.0f) * (1 - x * (1 / 4.0f) * s4)));
    return {e, x < 0.5f ? series : 1 - e};
}

// Vertical factor of the propagating mode and its derivatives: -E_z, -E_zeta, E_zzeta; E_zz = k^2 E.
struct Vertical {
    f32 E, Ez, Ezeta, Ezz;
};

[[gnu::always_inline]] inline Vertical vertical_factor(f32 k, f32 Y, f32 ZB, f32 ZETAB) {
    const Decay a = decay(2 * k * ZB), b = decay(2 * k * ZETAB);
    const f32 kY = k * Y, e = expf(-(kY < MAX_EXPONENT ? kY : MAX_EXPONENT));
    const f32 ea = e * (1 + a.e), ra = k * e * a.rest;
    return {ea * (1 + b.e), ra * (1 + b.e), k * ea * b.rest, k * ra * b.rest};
}

// A mode of radial factors w0 and w1 = -dw0/dR: -w0 E and its derivatives.
template <bool SECOND>
[[gnu::always_inline]] inline void store_mode(f32 (&v)[GREEN_VALUES][GREEN_LANES], int k, f32 w0, f32 w1,
                                              const Vertical &z, f32 k2) {
    v[G_][k] = -w0 * z.E;
    v[G_R][k] = w1 * z.E;
    v[G_Z][k] = w0 * z.Ez;
    v[G_ZETA][k] = w0 * z.Ezeta;
    if constexpr (SECOND) {
        v[G_RZ][k] = -w1 * z.Ez;
        v[G_RZETA][k] = -w1 * z.Ezeta;
        v[G_ZZ][k] = -w0 * k2 * z.E;
        v[G_ZZETA][k] = -w0 * z.Ezz;
    }
}

template <bool FAR, bool SECOND>
[[gnu::always_inline]] inline void propagating_near_axis(const GSTATE &g, GreenBlock &b) {
    const f32 *J0 = g.PJ0, *J1 = g.PJ1, *Y0 = g.PY0, *Y1 = g.PY1;
    const f32 k = g.RK, k2 = g.RKSQ, four_C = g.CFOUR;
#pragma omp simd
    for (int i = 0; i < GREEN_LANES; ++i) {
        const f32 R = b.X[i], R2 = R * R;
        const Vertical z = vertical_factor(k, b.Y[i], b.ZB[i], b.ZETAB[i]);
        const f32 W0 = polynomial<6>(J0, R2), W1 = R * polynomial<6>(J1, R2);
        store_mode<SECOND>(b.im, i, W0, W1, z, k2);
        if constexpr (FAR) {
            const f32 lg = TWO_BY_PI * logf(k * R);
            const f32 V0 = W0 * lg + polynomial<7>(Y0, R2);
            const f32 V1 = W1 * lg - four_C / R + R * polynomial<6>(Y1, R2);
            store_mode<SECOND>(b.re, i, V0, V1, z, k2);
        }
    }
}

template <bool FAR, bool SECOND>
[[gnu::always_inline]] inline void propagating_far_from_axis(const GSTATE &g, GreenBlock &b) {
    const f32 *P0 = g.QP0, *Q0 = g.QQ0, *P1 = g.QP1, *Q1 = g.QQ1;
    const f32 k = g.RK, k2 = g.RKSQ;
    // Each in a loop of its own: side by side GCC joins them to sincosf, which has no vector version.
    alignas(64) f32 cosine[GREEN_LANES], sine[GREEN_LANES];
#pragma omp simd
    for (int i = 0; i < GREEN_LANES; ++i)
        cosine[i] = cosf(k * b.X[i]);
#pragma omp simd
    for (int i = 0; i < GREEN_LANES; ++i)
        sine[i] = sinf(k * b.X[i]);
#pragma omp simd
    for (int i = 0; i < GREEN_LANES; ++i) {
        const f32 rinv = 1 / b.X[i], T = rinv * rinv;
        const Vertical z = vertical_factor(k, b.Y[i], b.ZB[i], b.ZETAB[i]);
        // cos and sin of k R - pi/4 from those of k R: the difference itself would round at large k R.
        const f32 half = std::sqrt(rinv) * QUARTER_PI_COS;
        const f32 cs = half * (cosine[i] + sine[i]), sn = half * (sine[i] - cosine[i]);
        const f32 p0 = polynomial<6>(P0, T), q0 = rinv * polynomial<6>(Q0, T);
        const f32 p1 = polynomial<6>(P1, T), q1 = rinv * polynomial<6>(Q1, T);
        store_mode<SECOND>(b.im, i, p0 * cs - q0 * sn, q1 * cs + p1 * sn, z, k2);
        if constexpr (FAR)
            store_mode<SECOND>(b.re, i, q0 * cs + p0 * sn, q1 * sn - p1 * cs, z, k2);
    }
}

struct Turn {
    f32 s, c; // sine and cosine
};

// Both at once for 0 <= x <= 5 pi, to 1e-7: the nearest multiple of pi/2 is taken off in two parts, then
// Taylor polynomials economised on +-pi/4.
[[gnu::always_inline]] inline Turn turn(f32 x) {
    constexpr f32 PI_HALF_HEAD = 1.5703125f, PI_HALF_TAIL = 4.83826795e-4f;
    const int q = static_cast<int>(x * TWO_BY_PI + 0.5f);
    const f32 n = static_cast<f32>(q), r = (x - n * PI_HALF_HEAD) - n * PI_HALF_TAIL, v = r * r;
    const f32 s = r + r * v * ((-1.9515296e-4f * v + 8.3321609e-3f) * v - 1.6666655e-1f);
    const f32 c = 1 - 0.5f * v + v * v * ((2.4433157e-5f * v - 1.3887316e-3f) * v + 4.1666646e-2f);
    const bool swap = (q & 1) != 0;
    const f32 sine = swap ? c : s, cosine = swap ? s : c;
    return {(q & 2) != 0 ? -sine : sine, ((q + 1) & 2) != 0 ? -cosine : cosine};
}

// One evanescent mode. The sums of the expansion, cos(mu D) + cos(mu A) and the like, stand as products of
// the factors of either point.
template <int TERMS, bool SECOND>
[[gnu::always_inline]] inline void add_evanescent(f32 mu, const f32 *K0, const f32 *K1,
                                                  const f32 (&rinv)[GREEN_LANES],
                                                  const f32 (&root)[GREEN_LANES], GreenBlock &b) {
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 x = mu * b.X[k], e = 2 * root[k] * expf(-(x < MAX_DECAY ? x : MAX_DECAY));
        const f32 T0 = e * polynomial<TERMS>(K0, rinv[k]), T1 = e * polynomial<TERMS>(K1, rinv[k]);
        const Turn z = turn(mu * b.ZB[k]), zeta = turn(mu * b.ZETAB[k]);
        const f32 cc = z.c * zeta.c, sc = mu * z.s * zeta.c, cs = mu * z.c * zeta.s;
        b.re[G_][k] += T0 * cc;
        b.re[G_R][k] -= T1 * cc;
        b.re[G_Z][k] += T0 * sc;
        b.re[G_ZETA][k] += T0 * cs;
        if constexpr (SECOND) {
            b.re[G_RZ][k] -= T1 * sc;
            b.re[G_RZETA][k] -= T1 * cs;
            b.re[G_ZZ][k] -= mu * mu * T0 * cc;
            b.re[G_ZZETA][k] += mu * mu * T0 * (z.s * zeta.s);
        }
    }
}

template <bool SECOND> [[gnu::always_inline]] inline void evanescent(const GSTATE &g, GreenBlock &b) {
    alignas(64) f32 rinv[GREEN_LANES], root[GREEN_LANES];
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        rinv[k] = 1 / b.X[k];
        root[k] = std::sqrt(rinv[k]);
    }
    add_evanescent<7, SECOND>(g.EVK[0], g.EVA[0], g.EVB[0], rinv, root, b);
    for (int n = 1; n < 5; ++n)
        add_evanescent<5, SECOND>(g.EVK[n], g.EVA[n], g.EVB[n], rinv, root, b);
}

} // namespace

VORDA_SIMD void GPROPS(const GSTATE &state, bool far, GreenOrder order, GreenBlock &block) {
    const bool second = order == GreenOrder::second;
    if (far) {
        if (second)
            propagating_near_axis<true, true>(state, block);
        else
            propagating_near_axis<true, false>(state, block);
    } else {
        if (second)
            propagating_near_axis<false, true>(state, block);
        else
            propagating_near_axis<false, false>(state, block);
    }
}

VORDA_SIMD void GPROPL(const GSTATE &state, bool far, GreenOrder order, GreenBlock &block) {
    const bool second = order == GreenOrder::second;
    if (far) {
        if (second)
            propagating_far_from_axis<true, true>(state, block);
        else
            propagating_far_from_axis<true, false>(state, block);
    } else {
        if (second)
            propagating_far_from_axis<false, true>(state, block);
        else
            propagating_far_from_axis<false, false>(state, block);
    }
}

VORDA_SIMD void GEVAN(const GSTATE &state, GreenOrder order, GreenBlock &block) {
    if (order == GreenOrder::second)
        evanescent<true>(state, block);
    else
        evanescent<false>(state, block);
}
