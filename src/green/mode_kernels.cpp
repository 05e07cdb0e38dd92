// Kernels of the wave modes of finite depth, one block of points each.
//   R = X, heights above the bottom ZB = H - z and ZETAB = H - zeta.
#include "green/block_math.hpp"
#include "green/green_block.hpp"

#include <cmath>

namespace {

// Vertical factor of the propagating mode and its derivatives: E, -E_z, -E_zeta, E_zzeta; E_zz = k^2 E.
struct Vertical {
    alignas(64) f32 E[GREEN_LANES];
    alignas(64) f32 Ez[GREEN_LANES];
    alignas(64) f32 Ezeta[GREEN_LANES];
    alignas(64) f32 Ezz[GREEN_LANES];
};

template <bool SECOND>
[[gnu::always_inline]] inline void vertical_factor(const GSTATE &g, const GreenBlock &b, Vertical &v) {
    const f32 k = g.RK, k_twice = g.RKTWO;
    Decays z, zeta;
    alignas(64) f32 e[GREEN_LANES];
    decays([&](int i) { return k_twice * b.ZB[i]; }, z);
    decays([&](int i) { return k_twice * b.ZETAB[i]; }, zeta);
    exponentials([&](int i) { return k * b.Y[i]; }, MAX_EXPONENT, e);
#pragma omp simd
    for (int i = 0; i < GREEN_LANES; ++i) {
        const f32 both = e[i] * (1 + z.e[i]), slope = k * e[i] * z.rest[i];
        v.E[i] = both * (1 + zeta.e[i]);
        v.Ez[i] = slope * (1 + zeta.e[i]);
        v.Ezeta[i] = k * both * zeta.rest[i];
        if constexpr (SECOND)
            v.Ezz[i] = k * slope * zeta.rest[i];
    }
}

// A mode of radial factors w0 and w1 = -dw0/dR: -w0 E and its derivatives.
template <bool SECOND>
[[gnu::always_inline]] inline void store_mode(f32 (&v)[GREEN_VALUES][GREEN_LANES], int i, f32 w0, f32 w1,
                                              const Vertical &z, f32 k2) {
    v[G_][i] = -w0 * z.E[i];
    v[G_R][i] = w1 * z.E[i];
    v[G_Z][i] = w0 * z.Ez[i];
    v[G_ZETA][i] = w0 * z.Ezeta[i];
    if constexpr (SECOND) {
        v[G_RZ][i] = -w1 * z.Ez[i];
        v[G_RZETA][i] = -w1 * z.Ezeta[i];
        v[G_ZZ][i] = -w0 * k2 * z.E[i];
        v[G_ZZETA][i] = -w0 * z.Ezz[i];
    }
}

template <bool FAR, bool SECOND>
[[gnu::always_inline]] inline void propagating_near_axis(const GSTATE &g, GreenBlock &b) {
    const Polynomial<6> J0(g.PJ0), J1(g.PJ1), Y1(g.PY1);
    const Polynomial<7> Y0(g.PY0);
    const f32 k = g.RK, k2 = g.RKSQ, four_C = g.CFOUR;
    Vertical z;
    vertical_factor<SECOND>(g, b, z);
#pragma omp simd
    for (int i = 0; i < GREEN_LANES; ++i) {
        const f32 R = b.X[i], R2 = R * R;
        const f32 W0 = J0(R2), W1 = R * J1(R2);
        store_mode<SECOND>(b.im, i, W0, W1, z, k2);
        if constexpr (FAR) {
            const f32 lg = TWO_BY_PI * logf(k * R);
            const f32 V0 = W0 * lg + Y0(R2);
            const f32 V1 = W1 * lg - four_C / R + R * Y1(R2);
            store_mode<SECOND>(b.re, i, V0, V1, z, k2);
        }
    }
}

template <bool FAR, bool SECOND>
[[gnu::always_inline]] inline void propagating_far_from_axis(const GSTATE &g, GreenBlock &b) {
    const Polynomial<6> P0(g.QP0), Q0(g.QQ0), P1(g.QP1), Q1(g.QQ1);
    const f32 k2 = g.RKSQ;
    const double turns = g.quarter_turns;
    Vertical z;
    vertical_factor<SECOND>(g, b, z);
#pragma omp simd
    for (int i = 0; i < GREEN_LANES; ++i) {
        const f32 rinv = 1 / b.X[i], T = rinv * rinv;
        const Turn phase = wave_phase(turns, b.X[i]);
        const f32 root = std::sqrt(rinv), cs = root * phase.c, sn = root * phase.s;
        const f32 p0 = P0(T), q0 = rinv * Q0(T);
        const f32 p1 = P1(T), q1 = rinv * Q1(T);
        store_mode<SECOND>(b.im, i, p0 * cs - q0 * sn, q1 * cs + p1 * sn, z, k2);
        if constexpr (FAR)
            store_mode<SECOND>(b.re, i, q0 * cs + p0 * sn, q1 * sn - p1 * cs, z, k2);
    }
}

// One evanescent mode. The sums of the expansion, cos(mu D) + cos(mu A) and the like, stand as products of
// the factors of either point.
template <int TERMS, bool SECOND>
[[gnu::always_inline]] inline void add_evanescent(const GSTATE &g, int n, const f32 (&rinv)[GREEN_LANES],
                                                  const f32 (&root)[GREEN_LANES], GreenBlock &b) {
    const Polynomial<TERMS> K0(g.EVA[n]), K1(g.EVB[n]);
    const f32 mu = g.EVK[n];
    alignas(64) f32 decay[GREEN_LANES];
    exponentials([&](int k) { return mu * b.X[k]; }, MAX_DECAY, decay);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 e = 2 * root[k] * decay[k];
        const f32 T0 = e * K0(rinv[k]), T1 = e * K1(rinv[k]);
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

template <bool SECOND>
[[gnu::always_inline]] inline void evanescent(const GSTATE &g, int modes, GreenBlock &b) {
    alignas(64) f32 rinv[GREEN_LANES], root[GREEN_LANES];
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        rinv[k] = 1 / b.X[k];
        root[k] = std::sqrt(rinv[k]);
    }
    if (modes > 0)
        add_evanescent<7, SECOND>(g, 0, rinv, root, b);
    for (int n = 1; n < modes; ++n)
        add_evanescent<5, SECOND>(g, n, rinv, root, b);
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

VORDA_SIMD void GEVAN(const GSTATE &state, int modes, GreenOrder order, GreenBlock &block) {
    if (order == GreenOrder::second)
        evanescent<true>(state, modes, block);
    else
        evanescent<false>(state, modes, block);
}
