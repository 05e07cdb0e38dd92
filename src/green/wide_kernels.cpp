// X = R, Y = z + zeta, r1^2 = X^2 + Y^2, as in deep_kernels.cpp, whose formulas these are. What differs: a
// lane picks the coefficients of its own row from registers, all kinds of points are worked at once and
// blended, a kind that no lane wants is left out. Compiled without contraction, every fused product is
// written down: a value does not depend on the compiler, nor on whether second derivatives are asked for.
#include "green/wide_kernels.hpp"

#if defined(__x86_64__) && defined(__GNUC__) && !defined(VORDA_NO_SIMD_CLONES) && !defined(VORDA_NO_WIDE)

#include "green/bessel_fits.hpp"
#include "green/deep_fits.hpp"
#include "green/tables/ftab.hpp"

#include <immintrin.h>

#ifndef __clang__ // of the operands that GCC's header leaves undefined because they are not read
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#define VORDA_WIDE_TARGET __attribute__((target("avx512f,avx512dq,avx512bw,avx512vl")))
#define VORDA_WIDE VORDA_WIDE_TARGET __attribute__((always_inline)) inline

namespace {

constexpr int LANES = 16;
using Mask = __mmask16;
using Lanes = __m512;     // of f32
using Integers = __m512i; // of int

VORDA_WIDE Lanes all(f32 x) {
    return _mm512_set1_ps(x);
}
// a b + c, c - a b
VORDA_WIDE Lanes fma(Lanes a, Lanes b, Lanes c) {
    return _mm512_fmadd_ps(a, b, c);
}
VORDA_WIDE Lanes fnma(Lanes a, Lanes b, Lanes c) {
    return _mm512_fnmadd_ps(a, b, c);
}
VORDA_WIDE Lanes select(Mask m, Lanes yes, Lanes no) {
    return _mm512_mask_blend_ps(m, no, yes);
}
VORDA_WIDE Lanes root(Lanes x) {
    return _mm512_sqrt_ps(x);
}
VORDA_WIDE Integers whole(Lanes x) {
    return _mm512_cvttps_epi32(x);
}
VORDA_WIDE Lanes real(Integers n) {
    return _mm512_cvtepi32_ps(n);
}

// Coefficients constant first.
template <int N> VORDA_WIDE Lanes polynomial(const f32 (&c)[N], Lanes x) {
    Lanes p = all(c[N - 1]);
#pragma GCC unroll 16
    for (int i = N - 2; i >= 0; --i)
        p = fma(p, x, all(c[i]));
    return p;
}

constexpr f32 LN2_HEAD = 0.693359375f, LN2_TAIL = -2.12194440e-4f;

// To 1e-7, x from -87 to 88: exp(x) = 2^n exp(rest), |rest| <= ln(2)/2. (The fit of this and of the
// logarithm: Moshier, Cephes library.)
VORDA_WIDE Lanes exponential(Lanes x) {
    constexpr f32 FIT[6] = {5.0000001201e-1f, 1.6666665459e-1f, 4.1665795894e-2f,
                            8.3334519073e-3f, 1.3981999507e-3f, 1.9875691500e-4f};
    const Lanes n = _mm512_roundscale_ps(x * all(1.44269504f), 0);
    const Lanes rest = fnma(n, all(LN2_TAIL), fnma(n, all(LN2_HEAD), x));
    const Lanes e = fma(polynomial(FIT, rest), rest * rest, rest) + all(1);
    return _mm512_scalef_ps(e, n);
}

// To 1e-7, x > 0: the mantissa is taken from sqrt(1/2) to sqrt(2).
VORDA_WIDE Lanes logarithm(Lanes x) {
    constexpr f32 FIT[9] = {3.3333331174e-1f,  -2.4999993993e-1f, 2.0000714765e-1f,
                            -1.6668057665e-1f, 1.4249322787e-1f,  -1.2420140846e-1f,
                            1.1676998740e-1f,  -1.1514610310e-1f, 7.0376836292e-2f};
    const Lanes mantissa = _mm512_getmant_ps(x, _MM_MANT_NORM_1_2, _MM_MANT_SIGN_src);
    const Mask high = _mm512_cmp_ps_mask(mantissa, all(1.41421356f), _CMP_GT_OQ);
    const Lanes e = _mm512_getexp_ps(x), n = _mm512_mask_add_ps(e, high, e, all(1));
    const Lanes f = _mm512_mask_mul_ps(mantissa, high, mantissa, all(0.5f)) - all(1), f2 = f * f;
    const Lanes rest = fma(n, all(LN2_TAIL), polynomial(FIT, f) * (f * f2));
    return fma(n, all(LN2_HEAD), f + fnma(all(0.5f), f2, rest));
}

struct Turns {
    Lanes c, s;
};

// Cosine and sine of x - pi/4, x >= 0, reduced in double precision as the waves of finite depth are.
VORDA_WIDE Turns phase(Lanes x) {
    constexpr double TURNS = 0.63661977236758134308, QUARTER = 1.57079632679489661923, LAST = 1e9;
    const __m512d last = _mm512_set1_pd(LAST), half = _mm512_set1_pd(0.5);
    const __m512d low =
        _mm512_min_pd(_mm512_cvtps_pd(_mm512_castps512_ps256(x)) * _mm512_set1_pd(TURNS), last);
    const __m512d high =
        _mm512_min_pd(_mm512_cvtps_pd(_mm512_extractf32x8_ps(x, 1)) * _mm512_set1_pd(TURNS), last);
    const __m256i q_low = _mm512_cvttpd_epi32(low), q_high = _mm512_cvttpd_epi32(high);
    const __m512d rest_low = (low - half - _mm512_cvtepi32_pd(q_low)) * _mm512_set1_pd(QUARTER);
    const __m512d rest_high = (high - half - _mm512_cvtepi32_pd(q_high)) * _mm512_set1_pd(QUARTER);
    const Integers q = _mm512_inserti64x4(_mm512_castsi256_si512(q_low), q_high, 1);
    const Lanes r =
        _mm512_insertf32x8(_mm512_castps256_ps512(_mm512_cvtpd_ps(rest_low)), _mm512_cvtpd_ps(rest_high), 1);
    const Lanes v = r * r;
    const Lanes s =
        fma(r * v, fma(fma(all(-1.9515296e-4f), v, all(8.3321609e-3f)), v, all(-1.6666655e-1f)), r);
    const Lanes c = fma(v * v, fma(fma(all(2.4433157e-5f), v, all(-1.3887316e-3f)), v, all(4.1666646e-2f)),
                        fnma(all(0.5f), v, all(1)));
    const Integers two = _mm512_set1_epi32(2);
    const Mask swap = _mm512_test_epi32_mask(q, _mm512_set1_epi32(1));
    const Lanes sign_s = _mm512_castsi512_ps(_mm512_slli_epi32(_mm512_and_si512(q, two), 30));
    const Lanes sign_c = _mm512_castsi512_ps(
        _mm512_slli_epi32(_mm512_and_si512(_mm512_add_epi32(q, _mm512_set1_epi32(1)), two), 30));
    return {_mm512_xor_ps(select(swap, s, c), sign_c), _mm512_xor_ps(select(swap, c, s), sign_s)};
}

// The row of each lane, from 0.
struct Rows {
    Integers at;
    Mask last; // rows 32 to 47
    VORDA_WIDE Lanes operator[](int term) const {
        const f32 *c = FTAB_BY_TERM.value[term];
        const Lanes any = _mm512_permutex2var_ps(_mm512_load_ps(c), at, _mm512_load_ps(c + LANES));
        return _mm512_mask_permutexvar_ps(any, last, at, _mm512_load_ps(c + 2 * LANES));
    }
};

struct TableLanes {
    Lanes B, slope; // slope in v
};

template <int N> VORDA_WIDE Lanes table_row(const Rows &c, Lanes t) {
    Lanes p = c[FTAB_FIRST[N] + FTAB_DEGREE[N]];
#pragma GCC unroll 8
    for (int k = FTAB_DEGREE[N] - 1; k >= 0; --k)
        p = fma(p, t, c[FTAB_FIRST[N] + k]);
    return p;
}

template <int N> VORDA_WIDE void add_table_row(const Rows &c, Lanes v, Lanes t, TableLanes &p) {
    p.slope = fma(p.slope, v, p.B);
    p.B = fma(p.B, v, table_row<N>(c, t));
}

VORDA_WIDE TableLanes table(const Rows &c, Lanes v, Lanes t) {
    const Lanes p6 = table_row<6>(c, t);
    TableLanes p{fma(p6, v, table_row<5>(c, t)), p6};
    add_table_row<4>(c, v, t, p);
    add_table_row<3>(c, v, t, p);
    add_table_row<2>(c, v, t, p);
    add_table_row<1>(c, v, t, p);
    add_table_row<0>(c, v, t, p);
    return p;
}

// Kinds of lanes.
struct Kinds {
    Mask far;    // X > 3
    Mask deep;   // Y >= 4
    Mask taken;  // the logarithm is taken out: X <= 3, Y < 4, ISNG = 3
    Mask added;  // it is added: ISNG = 3 elsewhere
    Mask image;  // 1/r1 stays: ISNG < 2
    Mask direct; // 1/r stays: ISNG = 0
    Mask shallow() const { return static_cast<Mask>(~(far | deep)); }
};

struct RealLanes {
    Lanes F, FX, FY, FXY, FYY;
};

// Waves with their X slope and the imaginary parts: 2 pi exp(-Y) times Y0, its slope, J0 and J1.
struct WaveLanes {
    Lanes W, WX, J0, J1;
};

// Functions of X <= 3, less exp(-Y).
struct AxisLanes {
    Lanes J, W, Jm; // Jm: J less its constant, before that rounds its digits away
};

VORDA_WIDE AxisLanes axis_lanes(Lanes x3, Lanes a) {
    constexpr f32 REST[5] = {JA[1], JA[2], JA[3], JA[4], JA[5]};
    const Lanes Jm = polynomial(REST, a) * a;
    return {Jm + all(JA[0]), polynomial(WA, a) * x3, Jm};
}

// X > 3.
VORDA_WIDE WaveLanes wave_lanes(Lanes X, Lanes xinv, Lanes exy) {
    const Lanes x3 = all(3) * xinv, v = x3 * x3, ex = exy * root(xinv);
    const Turns turn = phase(X);
    const Lanes ca = ex * turn.c, sa = ex * turn.s;
    const Lanes P0 = polynomial(P0C, v), Q0 = polynomial(Q0C, v) * x3;
    const Lanes P1 = polynomial(P1C, v), Q1 = polynomial(Q1C, v) * x3;
    return {fma(Q0, ca, P0 * sa), fnma(Q1, sa, P1 * ca), fnma(Q0, sa, P0 * ca), fma(Q1, ca, P1 * sa)};
}

// Y >= 4, as in deep_kernels.cpp.
VORDA_WIDE RealLanes beyond_tail(Lanes X, Lanes Y, Lanes B, Lanes BX, Lanes W, Lanes WX, Lanes i2,
                                 Lanes rinv) {
    const Lanes i3 = i2 * rinv, i5 = i2 * i3, p = Y * i2, q = Y * p;
    const Lanes N = fma(i5, B, -W), rest = fma(p, fma(all(30), q, all(-18)), all(6) * q);
    const Lanes FY = fma(fma(all(2), Y, all(-2)) + rest, i3, -N);
    const Lanes slope = fma(all(6), Y, all(-6)) + fma(all(30), q, p * fma(all(210), q, all(-90)));
    const Lanes NX = fma(i5, fma(X, fnma(all(5) * i2, B, slope), BX), -WX);
    return {-fma(all(2), rinv, FY), fma(all(2) * X, i3, NX), FY, -NX, fma(all(2) - rest, i3, N)};
}

// With the logarithm taken out, X <= 3, Y < 4.
struct TakenLanes {
    Lanes G, GR, GZ, GRZ;
};

// What the values of a point are made of beside its coefficients.
struct PointLanes {
    Lanes Q, V, BX, r1, rinv, L, sinv, exy;
    Mask apart; // r1 above TINY_R1
};

// M = 2 - exp(-Y) 2 J0 is what the added logarithm leaves of its factor, small at small r1. 2 - M comes as
// exp(-Y) 2 J0: in G_z = 2 L - G and its like the digits would go.
VORDA_WIDE TakenLanes taken_out(Lanes X, Lanes Y, const TableLanes &p, const AxisLanes &axis,
                                const PointLanes &at) {
    const auto &[Q, V, BX, r1, rinv, L, sinv, exy, apart] = at;
    constexpr f32 SERIES[8] = {1.0f,       -1 / 2.0f,   1 / 6.0f,    -1 / 24.0f,
                               1 / 120.0f, -1 / 720.0f, 1 / 5040.0f, -1 / 40320.0f};
    const Mask low = _mm512_cmp_ps_mask(Y, all(0.5f), _CMP_LT_OQ);
    const Lanes g = select(low, Y * polynomial(SERIES, Y), all(1) - exy), h = all(1) - g;
    const Lanes M = fma(g, axis.J, -axis.Jm), px = X * rinv * sinv, smooth = fma(r1, p.B, -Q);
    const Lanes any = fma(L, axis.W, fma(p.B, X * rinv, fma(r1, BX, -V))),
                inner = _mm512_maskz_mov_ps(apart, any);
    return {fma(M, L, smooth * h), fma(M, px, inner * h), fma(axis.J, L, -smooth) * h,
            fma(axis.J, px, -inner) * h};
}

// Adds 1 / sqrt(X^2 + D^2) to the lanes of 1/r.
template <bool SECOND> VORDA_WIDE void add_direct(Mask m, Lanes X, Lanes D, Lanes (&re)[GREEN_VALUES]) {
    const Lanes r2 = select(m, fma(X, X, D * D), all(1)), i1 = all(1) / root(r2), i2 = i1 * i1, i3 = i2 * i1;
    re[G_] = _mm512_mask_add_ps(re[G_], m, re[G_], i1);
    re[G_R] = _mm512_mask3_fnmadd_ps(X, i3, re[G_R], m);
    re[G_Z] = _mm512_mask3_fnmadd_ps(D, i3, re[G_Z], m);
    re[G_ZETA] = _mm512_mask3_fmadd_ps(D, i3, re[G_ZETA], m);
    if constexpr (SECOND) {
        const Lanes i5 = all(3) * i3 * i2, mixed = X * D, twice = fma(D * D, i5, -i3);
        re[G_RZ] = _mm512_mask3_fmadd_ps(mixed, i5, re[G_RZ], m);
        re[G_RZETA] = _mm512_mask3_fnmadd_ps(mixed, i5, re[G_RZETA], m);
        re[G_ZZ] = _mm512_mask_add_ps(re[G_ZZ], m, re[G_ZZ], twice);
        re[G_ZZETA] = _mm512_mask_sub_ps(re[G_ZZETA], m, re[G_ZZETA], twice);
    }
}

// Sixteen points. `re` and `im`: the values that the order asks for.
template <bool SECOND>
VORDA_WIDE void deep_lanes(Lanes X, Lanes Y, Lanes D, Integers ISNG, Lanes (&re)[GREEN_VALUES],
                           Lanes (&im)[GREEN_VALUES]) {
    const Lanes zero = _mm512_setzero_ps();
    Kinds kind;
    kind.far = _mm512_cmp_ps_mask(X, all(3), _CMP_GT_OQ);
    kind.deep = _mm512_cmp_ps_mask(Y, all(4), _CMP_GE_OQ);
    const Mask logarithms = _mm512_cmpge_epi32_mask(ISNG, _mm512_set1_epi32(3));
    kind.taken = logarithms & kind.shallow();
    kind.added = static_cast<Mask>(logarithms & ~kind.taken);
    kind.image = _mm512_cmplt_epi32_mask(ISNG, _mm512_set1_epi32(2));
    kind.direct = _mm512_cmpeq_epi32_mask(ISNG, _mm512_setzero_si512());
    const Mask shallow = kind.shallow();

    // Row and local variables; a NaN takes the second operand of min and max, and so a valid row.
    const Lanes far_X = _mm512_max_ps(X, all(3)), xinv = all(1) / far_X, w_about = all(15) * xinv;
    const Lanes w = fma(fnma(w_about, far_X, all(15)), xinv, w_about); // 15/X to its last digit
    const Lanes x3 = X * all(1 / 3.0f), a = x3 * x3;
    const Lanes over = all(16) / _mm512_max_ps(Y, all(4));
    const Integers band_shallow = whole(_mm512_min_ps(_mm512_max_ps(Y, zero), all(3)));
    const Integers band_deep = whole(_mm512_min_ps(over, all(3))), step = whole(_mm512_min_ps(w, all(4)));
    const Integers band = _mm512_mask_sub_epi32(band_shallow, kind.deep, _mm512_set1_epi32(7), band_deep);
    const Integers five = _mm512_add_epi32(_mm512_slli_epi32(band, 2), band);
    const Integers row = _mm512_mask_sub_epi32(_mm512_add_epi32(band, _mm512_set1_epi32(40)), kind.far,
                                               _mm512_add_epi32(five, _mm512_set1_epi32(4)), step);
    const Lanes t = select(kind.deep, over - real(band_deep), Y - real(band_shallow));
    const Lanes v = select(kind.far, w - real(step), a);
    const Rows rows{row, _mm512_cmpge_epi32_mask(row, _mm512_set1_epi32(2 * LANES))};
    const TableLanes p = table(rows, v, t);
    const Lanes BX = p.slope * select(kind.far, all(-15) * xinv * xinv, all(2 / 3.0f) * x3);

    const Lanes r2 = fma(X, X, Y * Y);
    const Mask apart = _mm512_cmp_ps_mask(r2, all(TINY_R1 * TINY_R1), _CMP_GT_OQ);
    const Lanes i2 = _mm512_maskz_div_ps(apart, all(1), r2), rinv = root(i2), i3 = i2 * rinv;
    // The root of r2, with one step for its last digit.
    const Lanes r1_about = r2 * rinv, r1 = fma(fnma(r1_about, r1_about, r2), all(0.5f) * rinv, r1_about);
    const Lanes exy = exponential(-_mm512_min_ps(Y, all(MAX_DEPTH)));

    // Waves and imaginary parts.
    WaveLanes wave{zero, zero, zero, zero};
    AxisLanes axis{zero, zero, zero};
    if (kind.far != 0xffff) {
        axis = axis_lanes(x3, a);
        const Lanes pi_exy = all(PI_F) * exy;
        wave.J0 = pi_exy * axis.J;
        wave.J1 = pi_exy * axis.W;
    }
    if (kind.far != 0) {
        const WaveLanes far = wave_lanes(X, xinv, exy);
        wave = {_mm512_maskz_mov_ps(kind.far, far.W), _mm512_maskz_mov_ps(kind.far, far.WX),
                select(kind.far, far.J0, wave.J0), select(kind.far, far.J1, wave.J1)};
    }

    // F2, Y < 4 by the free-surface relation.
    Lanes F = p.B - wave.W, FX = BX - wave.WX, L = zero, sinv = zero, Q = zero, V = zero;
    const Mask asked = shallow | kind.added;
    if (asked != 0) { // ln(r1 + Y)
        const Mask one = static_cast<Mask>(~apart & kind.taken);
        const Lanes s = select(one, all(1), r1 + Y);
        L = logarithm(s);
        sinv = all(1) / s;
    }
    if (shallow != 0) {
        Q = polynomial(QA, a);
        V = polynomial(VA, a) * x3;
        const Lanes f = exy * fnma(axis.J, L, fma(r1, p.B, -Q));
        const Lanes slope = fma(X * rinv, fnma(axis.J, sinv, p.B), fma(r1, BX, -V));
        F = select(shallow, f, F);
        FX = select(shallow, exy * fma(L, axis.W, slope), FX);
    }
    RealLanes r;
    r.F = F;
    r.FX = FX;
    r.FY = -fma(all(2), rinv, F);
    r.FXY = fma(all(2) * X, i3, -FX);
    r.FYY = fma(all(2) * Y, i3, -r.FY);
    if (kind.deep != 0) {
        const RealLanes d = beyond_tail(X, Y, p.B, BX, wave.W, wave.WX, i2, rinv);
        r = {select(kind.deep, d.F, r.F), select(kind.deep, d.FX, r.FX), select(kind.deep, d.FY, r.FY),
             select(kind.deep, d.FXY, r.FXY), select(kind.deep, d.FYY, r.FYY)};
    }

    // With the terms that stay.
    const Lanes n3 = _mm512_maskz_mov_ps(kind.image, i3);
    re[G_] = _mm512_mask_add_ps(r.F, kind.image, r.F, rinv);
    re[G_R] = fnma(X, n3, r.FX);
    re[G_Z] = fnma(Y, n3, r.FY);
    if constexpr (SECOND) {
        const Lanes n5 = all(3) * n3 * i2;
        re[G_RZ] = fma(X * Y, n5, r.FXY);
        re[G_ZZ] = r.FYY + fma(Y * Y, n5, -n3);
    }
    if (kind.taken != 0) {
        const Mask m = kind.taken;
        const Lanes near = _mm512_maskz_mov_ps(apart, r1);
        const TakenLanes g = taken_out(X, Y, p, axis, {Q, V, BX, near, rinv, L, sinv, exy, apart});
        re[G_] = select(m, g.G, re[G_]);
        re[G_R] = select(m, g.GR, re[G_R]);
        re[G_Z] = select(m, g.GZ, re[G_Z]);
        if constexpr (SECOND) {
            re[G_RZ] = select(m, g.GRZ, re[G_RZ]);
            re[G_ZZ] = select(m, fma(all(2), rinv, -g.GZ), re[G_ZZ]);
        }
    }
    if (kind.added != 0) {
        const Mask m = kind.added;
        re[G_] = _mm512_mask3_fmadd_ps(all(2), L, re[G_], m);
        re[G_R] = _mm512_mask3_fmadd_ps(all(2) * X * rinv, sinv, re[G_R], m);
        re[G_Z] = _mm512_mask3_fmadd_ps(all(2), rinv, re[G_Z], m);
        if constexpr (SECOND) {
            re[G_RZ] = _mm512_mask3_fnmadd_ps(all(2) * X, i3, re[G_RZ], m);
            re[G_ZZ] = _mm512_mask3_fnmadd_ps(all(2) * Y, i3, re[G_ZZ], m);
        }
    }
    re[G_ZETA] = re[G_Z];
    im[G_] = -wave.J0;
    im[G_R] = wave.J1;
    im[G_Z] = im[G_ZETA] = wave.J0;
    if constexpr (SECOND) {
        re[G_RZETA] = re[G_RZ];
        re[G_ZZETA] = re[G_ZZ];
        im[G_RZ] = im[G_RZETA] = -wave.J1;
        im[G_ZZ] = im[G_ZZETA] = -wave.J0;
    }
    if (kind.direct != 0)
        add_direct<SECOND>(kind.direct, X, D, re);
}

// The values in the order in which they are worked out: four of the first order, four of the second.
constexpr GreenValue VALUES[GREEN_VALUES] = {G_, G_R, G_Z, G_ZETA, G_RZ, G_ZZ, G_ZZETA, G_RZETA};

template <bool SECOND> VORDA_WIDE void deep_points(const GreenPoints &p, const GreenArrays &result) {
    for (int i = 0; i < p.n; i += LANES) {
        const int rest = p.n - i;
        const Mask m = rest < LANES ? static_cast<Mask>((1u << rest) - 1) : static_cast<Mask>(0xffff);
        const Lanes X = _mm512_mask_loadu_ps(all(1), m, p.R + i),
                    Z = _mm512_mask_loadu_ps(all(1), m, p.Z + i);
        const Lanes ZETA = _mm512_maskz_loadu_ps(m, p.ZETA + i);
        const Integers ISNG = _mm512_mask_loadu_epi32(_mm512_set1_epi32(2), m, p.ISNG + i);
        Lanes re[GREEN_VALUES], im[GREEN_VALUES];
        deep_lanes<SECOND>(X, Z + ZETA, Z - ZETA, ISNG, re, im);
#pragma GCC unroll 8
        for (int j = 0; j < (SECOND ? 8 : 4); ++j) {
            _mm512_mask_storeu_ps(result.re[VALUES[j]] + i, m, re[VALUES[j]]);
            _mm512_mask_storeu_ps(result.im[VALUES[j]] + i, m, im[VALUES[j]]);
        }
    }
}

VORDA_WIDE_TARGET void first_order(const GreenPoints &points, const GreenArrays &result) {
    deep_points<false>(points, result);
}
VORDA_WIDE_TARGET void second_order(const GreenPoints &points, const GreenArrays &result) {
    deep_points<true>(points, result);
}

} // namespace

bool wide_available() {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
           __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
}

void deep_wide(const GreenPoints &points, GreenOrder order, const GreenArrays &result) {
    if (order == GreenOrder::second)
        second_order(points, result);
    else
        first_order(points, result);
}

#else

bool wide_available() {
    return false;
}
void deep_wide(const GreenPoints &, GreenOrder, const GreenArrays &) {}

#endif
