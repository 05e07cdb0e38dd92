// The wave modes of finite depth for sixteen points, as in mode_kernels.cpp: R, and heights above the bottom
// ZB = H - z and ZETAB = H - zeta.
#pragma once

#include "green/wide_f2.hpp"

#ifdef VORDA_HAS_WIDE

#include "green/block_math.hpp"
#include "green/gstate.hpp"

namespace wide {

constexpr int MODES = 5; // that die out

// What one of the two points of a pair brings to the vertical factors. In a row of the assembly one of them
// is the same throughout: its factors are worked out once. Those of the other may be given.
struct Height {
    Lanes above;                // H - z
    bool common = false;        // one height for all lanes
    f32 known = -1;             // the last common one
    f32 known_turns = -1;       // that of c and s
    Lanes one, rest;            // 1 + e and 1 - e, e = exp(-2 k above)
    f32 c[LANES], s[LANES];     // of a common height beyond R = H: cosine and sine of mu(n) above
    const f32 *given = nullptr; // columns of HeightFactors, `stride` apart
    std::int64_t stride = 0;
};

VORDA_WIDE void set_propagating(const GSTATE &g, Height &h) {
    const Decay d = decay(_mm512_min_ps(all(g.RKTWO) * h.above, all(MAX_EXPONENT)));
    h.one = all(1) + d.e;
    h.rest = d.rest;
}

template <bool FAR> VORDA_WIDE void set_height(const GSTATE &g, Lanes mu, Lanes above, Height &h) {
    const f32 first = _mm512_cvtss_f32(above);
    h.above = above;
    h.common = _mm512_cmpeq_ps_mask(above, all(first)) == 0xffff;
    if (!h.common || first != h.known)
        set_propagating(g, h);
    h.known = h.common ? first : -1.0f;
    if (FAR && h.common && first != h.known_turns) {
        const Turns t = turns(mu * above);
        _mm512_storeu_ps(h.c, t.c);
        _mm512_storeu_ps(h.s, t.s);
        h.known_turns = first;
    }
}

VORDA_WIDE void take_height(const f32 *given, std::int64_t stride, Height &h) {
    h.given = given;
    h.stride = stride;
    h.one = _mm512_loadu_ps(given);
    h.rest = _mm512_loadu_ps(given + stride);
}

// Columns of the cosine and the sine of mode n, from 0.
constexpr int cosine_column(int n) {
    return 2 + 2 * n;
}

VORDA_WIDE Turns mode_turns(const Height &h, f32 mu, int n) {
    if (h.given != nullptr) {
        const f32 *c = h.given + cosine_column(n) * h.stride;
        return {_mm512_loadu_ps(c), _mm512_loadu_ps(c + h.stride)};
    }
    if (h.common)
        return {all(h.c[n]), all(h.s[n])};
    return turns(all(mu) * h.above);
}

// Vertical factor of the propagating mode and its derivatives: E, -E_z, -E_zeta, E_zzeta; E_zz = k^2 E.
struct Vertical {
    Lanes E, Ez, Ezeta, Ezz;
};

VORDA_WIDE Vertical vertical_factor(const GSTATE &g, Lanes Y, const Height &z, const Height &zeta) {
    const Lanes k = all(g.RK), e = exponential(-_mm512_min_ps(k * Y, all(MAX_EXPONENT)));
    const Lanes both = e * z.one, slope = k * e * z.rest;
    return {both * zeta.one, slope * zeta.one, k * both * zeta.rest, k * slope * zeta.rest};
}

// A mode of radial factors w0 and w1 = -dw0/dR: -w0 E and its derivatives.
template <bool SECOND>
VORDA_WIDE void store_mode(Lanes w0, Lanes w1, const Vertical &z, Lanes k2, Lanes (&v)[GREEN_VALUES]) {
    v[G_] = -w0 * z.E;
    v[G_R] = w1 * z.E;
    v[G_Z] = w0 * z.Ez;
    v[G_ZETA] = w0 * z.Ezeta;
    if constexpr (SECOND) {
        v[G_RZ] = -w1 * z.Ez;
        v[G_RZETA] = -w1 * z.Ezeta;
        v[G_ZZ] = -w0 * k2 * z.E;
        v[G_ZZETA] = -w0 * z.Ezz;
    }
}

// Radial factors of the propagating mode: J0, J1 and, far away, Y0, Y1.
struct Radial {
    Lanes J0, J1, Y0, Y1;
};

template <bool FAR> VORDA_WIDE Radial near_axis(const GSTATE &g, Lanes R) {
    const Lanes R2 = R * R;
    Radial w;
    w.J0 = polynomial(g.PJ0, R2);
    w.J1 = R * polynomial(g.PJ1, R2);
    if constexpr (FAR) {
        const Lanes lg = all(TWO_BY_PI) * logarithm(all(g.RK) * R);
        w.Y0 = fma(w.J0, lg, polynomial(g.PY0, R2));
        w.Y1 = fma(w.J1, lg, fma(R, polynomial(g.PY1, R2), -all(g.CFOUR) / R));
    }
    return w;
}

template <bool FAR> VORDA_WIDE Radial far_from_axis(const GSTATE &g, Lanes R) {
    const Lanes rinv = all(1) / R, T = rinv * rinv, r = root(rinv);
    constexpr double PI_HALF = 1.57079632679489661923;
    const Turns phase = wave_phase(WaveNumber(g.quarter_turns * PI_HALF), R);
    const Lanes cs = r * phase.c, sn = r * phase.s;
    const Lanes p0 = polynomial(g.QP0, T), q0 = rinv * polynomial(g.QQ0, T);
    const Lanes p1 = polynomial(g.QP1, T), q1 = rinv * polynomial(g.QQ1, T);
    Radial w{fnma(q0, sn, p0 * cs), fma(p1, sn, q1 * cs), {}, {}};
    if constexpr (FAR) {
        w.Y0 = fma(p0, sn, q0 * cs);
        w.Y1 = fnma(p1, cs, q1 * sn);
    }
    return w;
}

// Stores the propagating mode: the imaginary parts, with FAR the real parts, too.
template <bool FAR, bool SECOND>
VORDA_WIDE void propagating(const GSTATE &g, Lanes R, Lanes Y, const Height &z, const Height &zeta,
                            Lanes (&re)[GREEN_VALUES], Lanes (&im)[GREEN_VALUES]) {
    const Mask beyond = _mm512_cmp_ps_mask(R, all(3 / g.RK), _CMP_GT_OQ);
    Radial w;
    if (beyond != 0xffff)
        w = near_axis<FAR>(g, R);
    if (beyond == 0xffff) {
        w = far_from_axis<FAR>(g, R);
    } else if (beyond != 0) {
        const Radial f = far_from_axis<FAR>(g, R);
        w.J0 = select(beyond, f.J0, w.J0);
        w.J1 = select(beyond, f.J1, w.J1);
        if constexpr (FAR) {
            w.Y0 = select(beyond, f.Y0, w.Y0);
            w.Y1 = select(beyond, f.Y1, w.Y1);
        }
    }
    const Vertical v = vertical_factor(g, Y, z, zeta);
    store_mode<SECOND>(w.J0, w.J1, v, all(g.RKSQ), im);
    if constexpr (FAR)
        store_mode<SECOND>(w.Y0, w.Y1, v, all(g.RKSQ), re);
}

// R, 1/R and its root.
struct Distances {
    Lanes R, inverse, root;
};

// One mode that dies out, added to the lanes within its reach. The sums of the expansion, cos(mu D) +
// cos(mu A) and the like, stand as products of the factors of either point.
template <int TERMS, bool SECOND>
VORDA_WIDE void add_evanescent(const GSTATE &g, int n, Mask m, const Distances &at, const Height &z,
                               const Height &zeta, Lanes (&re)[GREEN_VALUES]) {
    const f32 mu = g.EVK[n];
    const Lanes e = all(2) * at.root * exponential(-_mm512_min_ps(all(mu) * at.R, all(MAX_DECAY)));
    const Lanes T0 = e * first_terms<TERMS>(g.EVA[n], at.inverse),
                T1 = e * first_terms<TERMS>(g.EVB[n], at.inverse);
    const Turns u = mode_turns(z, mu, n), v = mode_turns(zeta, mu, n);
    const Lanes mus = all(mu) * u.s, cc = u.c * v.c, sc = mus * v.c, cs = all(mu) * u.c * v.s;
    re[G_] = _mm512_mask3_fmadd_ps(T0, cc, re[G_], m);
    re[G_R] = _mm512_mask3_fnmadd_ps(T1, cc, re[G_R], m);
    re[G_Z] = _mm512_mask3_fmadd_ps(T0, sc, re[G_Z], m);
    re[G_ZETA] = _mm512_mask3_fmadd_ps(T0, cs, re[G_ZETA], m);
    if constexpr (SECOND) {
        re[G_RZ] = _mm512_mask3_fnmadd_ps(T1, sc, re[G_RZ], m);
        re[G_RZETA] = _mm512_mask3_fnmadd_ps(T1, cs, re[G_RZETA], m);
        re[G_ZZ] = _mm512_mask3_fnmadd_ps(all(mu * mu) * T0, cc, re[G_ZZ], m);
        re[G_ZZETA] = _mm512_mask3_fmadd_ps(all(mu) * T0, mus * v.s, re[G_ZZETA], m);
    }
}

template <bool SECOND>
VORDA_WIDE void evanescent(const GSTATE &g, Lanes R, const Height &z, const Height &zeta,
                           Lanes (&re)[GREEN_VALUES]) {
    const Lanes inverse = all(1) / R;
    const Distances at{R, inverse, root(inverse)};
    const auto within = [&](int n)
                            VORDA_WIDE_TARGET { return _mm512_cmp_ps_mask(R, all(g.reach[n]), _CMP_LT_OQ); };
    Mask m = within(0);
    if (m != 0)
        add_evanescent<7, SECOND>(g, 0, m, at, z, zeta, re);
    for (int n = 1; n < MODES && (m = within(n)) != 0; ++n)
        add_evanescent<5, SECOND>(g, n, m, at, z, zeta, re);
}

} // namespace wide

#endif
