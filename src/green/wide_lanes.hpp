// Sixteen lanes of an AVX-512 register and the elementary functions of the kernels that work with them. Such
// files are compiled without contraction and write their fused products down: a value depends neither on
// the compiler nor on what else is asked for.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(VORDA_NO_SIMD_CLONES) && !defined(VORDA_NO_WIDE)
#define VORDA_HAS_WIDE

#include "base/types.hpp"

#include <immintrin.h>

#ifndef __clang__ // of the operands that GCC's header leaves undefined because they are not read
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif

#define VORDA_WIDE_TARGET __attribute__((target("avx512f,avx512dq,avx512bw,avx512vl")))
#define VORDA_WIDE VORDA_WIDE_TARGET __attribute__((always_inline)) inline

namespace wide {

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

// The first N coefficients of a polynomial, constant first.
template <int N> VORDA_WIDE Lanes first_terms(const f32 *c, Lanes x) {
    Lanes p = all(c[N - 1]);
#pragma GCC unroll 16
    for (int i = N - 2; i >= 0; --i)
        p = fma(p, x, all(c[i]));
    return p;
}
template <int N> VORDA_WIDE Lanes polynomial(const f32 (&c)[N], Lanes x) {
    return first_terms<N>(&c[0], x);
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

// 1 - e, e = exp(-x), x >= 0, with its digits: below 0.5 the Taylor series, to 5e-9.
VORDA_WIDE Lanes rest_of_decay(Lanes x, Lanes e) {
    constexpr f32 SERIES[8] = {1.0f,       -1 / 2.0f,   1 / 6.0f,    -1 / 24.0f,
                               1 / 120.0f, -1 / 720.0f, 1 / 5040.0f, -1 / 40320.0f};
    const Mask low = _mm512_cmp_ps_mask(x, all(0.5f), _CMP_LT_OQ);
    const Lanes rest = all(1) - e;
    return low != 0 ? select(low, x * polynomial(SERIES, x), rest) : rest;
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
    Lanes c, s; // cosine and sine
};

// Of q quarter turns and r more, |r| up to pi/4, as turn() of block_math.hpp.
VORDA_WIDE Turns turns(Integers q, Lanes r) {
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

// Of 0 <= x <= 13 pi, to 1e-7 and the rounding of x.
VORDA_WIDE Turns turns(Lanes x) {
    constexpr f32 PI_HALF_HEAD = 1.5703125f, PI_HALF_TAIL = 4.83826795e-4f;
    const Integers q = _mm512_cvtps_epi32(x * all(0.63661977f));
    const Lanes n = real(q);
    return turns(q, fnma(n, all(PI_HALF_TAIL), fnma(n, all(PI_HALF_HEAD), x)));
}

// Of x + rest - pi/4, x >= 0, |rest| a few roundings of x. The fused products are exact but for their last
// rounding, so that pi/2 in two parts serves any distance at which x has digits for a phase.
VORDA_WIDE Turns wave_phase(Lanes x, Lanes rest) {
    constexpr f32 PI_HALF_HEAD = 1.57079637f, PI_HALF_TAIL = -4.37113883e-8f, LAST = 4e6f;
    const Lanes near = _mm512_min_ps(x, all(LAST));
    const Integers q = whole(near * all(0.63661977f));
    const Lanes n = real(q) + all(0.5f);
    return turns(q, fnma(n, all(PI_HALF_TAIL), fnma(n, all(PI_HALF_HEAD), near)) + rest);
}

// A wave number that is more than one single-precision number.
struct WaveNumber {
    f32 head, tail;
    explicit WaveNumber(double k) : head(static_cast<f32>(k)), tail(static_cast<f32>(k - head)) {}
};

// Of k R - pi/4.
VORDA_WIDE Turns wave_phase(const WaveNumber &k, Lanes R) {
    const Lanes x = all(k.head) * R;
    return wave_phase(x, fma(all(k.tail), R, _mm512_fmsub_ps(all(k.head), R, x)));
}

// The first lanes of a call whose last block is not full.
VORDA_WIDE Mask first_lanes(int count) {
    return count < LANES ? static_cast<Mask>((1u << count) - 1) : static_cast<Mask>(0xffff);
}

} // namespace wide

#endif
