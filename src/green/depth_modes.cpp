// Wave modes of finite depth with the derivatives of FGRUIO, one block of points each. The vertical factors
// of mode and point are functions of the heights above the bottom H - z and H - zeta, which grow with H.
#include "green/bessel_fits.hpp"
#include "green/block_math.hpp"
#include "green/depth_block.hpp"

#include <cmath>

namespace {

constexpr f32 SERIES_END = 3; // of k X: fits below, asymptotic forms beyond

// 2 pi times the Bessel functions of k X.
struct Bessel {
    alignas(64) f32 J0[GREEN_LANES];
    alignas(64) f32 J1[GREEN_LANES];
    alignas(64) f32 Y0[GREEN_LANES];
    alignas(64) f32 Y1[GREEN_LANES];
};

template <bool FAR>
[[gnu::always_inline]] inline void bessel(f32 wave_number, double turns, const DepthBlock &b, Bessel &out) {
    const Polynomial<6> J0(J0C), J1(J1C), Y1(Y1C), P0(P0C), Q0(Q0C), P1(P1C), Q1(Q1C);
    const Polynomial<7> Y0(Y0C);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 any = wave_number * b.X[k], x = any < SERIES_END ? any : SERIES_END, x3 = x * (1 / 3.0f);
        const f32 u = x3 * x3;
        const bool beyond = any > SERIES_END;
        const f32 j0 = J0(u), j1 = x3 * J1(u);
        const f32 inverse = 1 / (beyond ? any : SERIES_END), i3 = 3 * inverse, v = i3 * i3;
        const Turn phase = wave_phase(turns, b.X[k]);
        const f32 root = std::sqrt(inverse), cs = root * phase.c, sn = root * phase.s;
        const f32 p0 = P0(v), q0 = i3 * Q0(v), p1 = P1(v), q1 = i3 * Q1(v);
        out.J0[k] = beyond ? p0 * cs - q0 * sn : j0;
        out.J1[k] = beyond ? p1 * sn + q1 * cs : j1;
        if constexpr (FAR) {
            const f32 lg = TWO_BY_PI * logf(x);
            out.Y0[k] = beyond ? p0 * sn + q0 * cs : j0 * lg + Y0(u);
            out.Y1[k] = beyond ? q1 * sn - p1 * cs : j1 * lg - 4 / x + x3 * Y1(u);
        }
    }
}

// Vertical factor of the propagating mode: E, -E_z, -E_zeta, E_zzeta and the H derivatives of E and -E_zeta.
struct Vertical {
    alignas(64) f32 E[GREEN_LANES];
    alignas(64) f32 Ez[GREEN_LANES];
    alignas(64) f32 Ezeta[GREEN_LANES];
    alignas(64) f32 Ezz[GREEN_LANES];
    alignas(64) f32 EH[GREEN_LANES];
    alignas(64) f32 EzetaH[GREEN_LANES];
};

[[gnu::always_inline]] inline void vertical_factor(const HSTATE &s, f32 H, const DepthBlock &b, Vertical &v) {
    const f32 wave = s.RK0, twice = s.RK0X2, DK = s.DRK0, change = DK / wave;
    Decays z, zeta;
    alignas(64) f32 e[GREEN_LANES];
    decays([&](int k) { return twice * (H - b.Z[k]); }, z);
    decays([&](int k) { return twice * (H - b.ZETA[k]); }, zeta);
    exponentials([&](int k) { return wave * (b.Z[k] + b.ZETA[k]); }, MAX_EXPONENT, e);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 e3 = e[k], a = 1 + z.e[k], c = 1 + zeta.e[k], ra = z.rest[k], rc = zeta.rest[k];
        // -da/dH and -dc/dH
        const f32 p = 2 * z.e[k] * ((H - b.Z[k]) * DK + wave),
                  q = 2 * zeta.e[k] * ((H - b.ZETA[k]) * DK + wave);
        const f32 depth = (b.Z[k] + b.ZETA[k]) * DK;
        v.E[k] = e3 * a * c;
        v.Ez[k] = wave * e3 * ra * c;
        v.Ezeta[k] = wave * e3 * a * rc;
        v.Ezz[k] = wave * wave * e3 * ra * rc;
        v.EH[k] = -e3 * (depth * a * c + p * c + q * a);
        v.EzetaH[k] = wave * e3 * ((change - depth) * a * rc + q * a - p * rc);
    }
}

// Radial factor of a mode and its H derivative; -w1 is the slope of w0.
struct Radial {
    f32 w0, w1, w0H, w1H;
};

[[gnu::always_inline]] inline void store_mode(f32 (&v)[DEPTH_VALUES][GREEN_LANES], int k, const Radial &r,
                                              const Vertical &z, f32 k2) {
    v[G_][k] = -r.w0 * z.E[k];
    v[G_R][k] = r.w1 * z.E[k];
    v[G_Z][k] = r.w0 * z.Ez[k];
    v[G_ZETA][k] = r.w0 * z.Ezeta[k];
    v[G_RZ][k] = -r.w1 * z.Ez[k];
    v[G_RZETA][k] = -r.w1 * z.Ezeta[k];
    v[G_ZZ][k] = -r.w0 * k2 * z.E[k];
    v[G_ZZETA][k] = -r.w0 * z.Ezz[k];
    v[G_RZZ][k] = r.w1 * k2 * z.E[k];
    v[G_RZZETA][k] = r.w1 * z.Ezz[k];
    v[G_ZZZETA][k] = r.w0 * k2 * z.Ezeta[k];
    v[G_H][k] = -r.w0H * z.E[k] - r.w0 * z.EH[k];
    v[G_RH][k] = r.w1H * z.E[k] + r.w1 * z.EH[k];
    v[G_ZETAH][k] = r.w0H * z.Ezeta[k] + r.w0 * z.EzetaH[k];
    v[G_RZETAH][k] = -r.w1H * z.Ezeta[k] - r.w1 * z.EzetaH[k];
}

template <bool FAR> [[gnu::always_inline]] inline void propagating(const HSTATE &s, f32 H, DepthBlock &b) {
    const f32 C = s.CN0, k1 = s.RK0, k2 = s.RK0SQ, grow = s.DCN0 / s.CN0, stretch = s.DRK0 / s.RK0;
    Bessel w;
    Vertical z;
    bessel<FAR>(k1, s.quarter_turns, b, w);
    vertical_factor(s, H, b, z);
    const auto radial = [&](f32 f0, f32 f1, f32 X) {
        const f32 w0 = C * f0, w1 = C * k1 * f1;
        return Radial{w0, w1, grow * w0 - stretch * X * w1, grow * w1 + stretch * k2 * X * w0};
    };
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        store_mode(b.im, k, radial(w.J0[k], w.J1[k], b.X[k]), z, k2);
        if constexpr (FAR)
            store_mode(b.re, k, radial(w.Y0[k], w.Y1[k], b.X[k]), z, k2);
    }
}

[[gnu::always_inline]] inline ImageTerm inverse_distance(f32 factor, f32 X, f32 x) {
    const f32 i2 = 1 / (X * X + x * x), i1 = factor * std::sqrt(i2), i3 = i1 * i2, q = x * x * i2;
    return {i1,
            -X * i3,
            -x * i3,
            3 * X * x * i3 * i2,
            (3 * q - 1) * i3,
            (3 - 15 * q) * X * i3 * i2,
            (9 - 15 * q) * x * i3 * i2};
}

[[gnu::always_inline]] inline ImageTerm twice_logarithm(f32 X, f32 x) {
    const f32 r = std::sqrt(X * X + x * x), i1 = 1 / r, i2 = i1 * i1, i3 = i1 * i2;
    return {2 * logf(r + x),     2 * X * i1 / (r + x),     2 * i1, -2 * X * i3, -2 * x * i3,
            6 * X * x * i3 * i2, (6 * x * x * i2 - 2) * i3};
}

// One evanescent mode, n from 0.
[[gnu::always_inline]] inline void add_evanescent(const HSTATE &s, f32 H, int n,
                                                  const f32 (&root)[GREEN_LANES], DepthBlock &b) {
    const f32 mu = s.MU[n], mu2 = s.MUSQ[n], DMU = s.DMU[n], c = s.CMU[n], change = DMU / mu;
    const f32 grow = s.DCMU[n] / c + 0.5f * change; // of the normalisation C(n)
    alignas(64) f32 decay[GREEN_LANES];
    exponentials([&](int k) { return mu * b.X[k]; }, MAX_DECAY, decay);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 X = b.X[k], x = mu * X, e = 2 * c * root[k] * decay[k];
        const f32 a0 = ((x + 2.3948274f) * x + 1.121567f) * x + 0.061077427f;
        const f32 a1 = ((x + 2.5198228f) * x + 1.3663534f) * x + 0.12666364f;
        const f32 b0 = ((x + 2.4979281f) * x + 1.5298673f) * x + 0.206072f;
        const f32 b1 = ((x + 2.1229377f) * x + 0.85072356f) * x + 0.035547223f;
        const f32 T0 = e * a0 / a1, T1 = mu * e * b0 / b1;
        const f32 T0H = grow * T0 - change * X * T1, T1H = grow * T1 - DMU * x * T0;
        const f32 u = H - b.Z[k], v = H - b.ZETA[k], uH = DMU * u + mu, vH = DMU * v + mu;
        const Turn z = turn(mu * u), zeta = turn(mu * v);
        const f32 cc = z.c * zeta.c, sc = z.s * zeta.c, cs = z.c * zeta.s, ss = z.s * zeta.s;
        const f32 ccH = -uH * sc - vH * cs, csH = vH * cc - uH * ss;
        b.re[G_][k] += T0 * cc;
        b.re[G_R][k] -= T1 * cc;
        b.re[G_Z][k] += mu * T0 * sc;
        b.re[G_ZETA][k] += mu * T0 * cs;
        b.re[G_RZ][k] -= mu * T1 * sc;
        b.re[G_RZETA][k] -= mu * T1 * cs;
        b.re[G_ZZ][k] -= mu2 * T0 * cc;
        b.re[G_ZZETA][k] += mu2 * T0 * ss;
        b.re[G_RZZ][k] += mu2 * T1 * cc;
        b.re[G_RZZETA][k] -= mu2 * T1 * ss;
        b.re[G_ZZZETA][k] -= mu2 * mu * T0 * cs;
        b.re[G_H][k] += T0H * cc + T0 * ccH;
        b.re[G_RH][k] -= T1H * cc + T1 * ccH;
        b.re[G_ZETAH][k] += (mu * T0H + DMU * T0) * cs + mu * T0 * csH;
        b.re[G_RZETAH][k] -= (mu * T1H + DMU * T1) * cs + mu * T1 * csH;
    }
}

} // namespace

VORDA_SIMD void depth_propagating(const HSTATE &state, f32 H, bool far, DepthBlock &block) {
    if (far)
        propagating<true>(state, H, block);
    else
        propagating<false>(state, H, block);
}

VORDA_SIMD void depth_far(const HSTATE &state, f32 H, int modes, DepthBlock &block) {
    alignas(64) f32 root[GREEN_LANES];
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k)
        root[k] = std::sqrt(1 / block.X[k]);
    for (int n = 0; n < modes; ++n)
        add_evanescent(state, H, n, root, block);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 X = block.X[k], Z = block.Z[k], ZETA = block.ZETA[k];
        add_term<-1, -1, 2>(block.re, k, inverse_distance(-1, X, (H - Z) + (H - ZETA)));
        add_term<1, -1, 0>(block.re, k, inverse_distance(-1, X, Z - ZETA));
        add_term<1, 1, 0>(block.re, k, inverse_distance(-1, X, Z + ZETA));
        add_term<1, 1, 0>(block.re, k, twice_logarithm(X, Z + ZETA));
    }
}
