// Sixteen lanes of an AVX-512 register and the elementary functions of the kernels that work with them. Such
// files are compiled without contraction and write their fused products down: a value depends neither on
// the compiler nor on what else is asked for.
#pragma once

#if defined(__x86_64__) && defined(__GNUC__) && !defined(VORDA_NO_SIMD_CLONES) && !defined(VORDA_NO_WIDE)
#define VORDA_HAS_WIDE

#include "base/types.hpp"

#include <bit>
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
// 1/x, its root and that of x, all but to the last digit: x > 0 and no end of the range, one Newton step from
// 14 bits. That takes as many products as a root and a quotient, but the results come sooner.
struct Roots {
    Lanes inverse, inverse_root, root;
};
VORDA_WIDE Roots roots(Lanes x) {
    const Lanes y = _mm512_rsqrt14_ps(x), y2 = y * y, half = all(0.5f) * y, s = x * y;
    const Lanes e = fnma(x, y2, all(1));
    return {fma(y2, e, y2), fma(half, e, y), fma(fnma(s, s, x), half, s)};
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

// Of sixteen numbers, one for each lane by the last four bits of its place.
VORDA_WIDE Lanes one_of(const f32 (&table)[LANES], Integers place) {
    return _mm512_permutexvar_ps(place, _mm512_load_ps(table));
}

// The bits of 2^(j/16) less j at the fourth bit of the mantissa: adding 16 n + j there gives 2^(n + j/16).
struct Sixteenths {
    alignas(64) f32 value[LANES];
    alignas(64) f32 excess[LANES]; // of their logarithms, by rounding
};
constexpr Sixteenths sixteenths() {
    constexpr f32 POWERS[LANES] = {1.0f,        1.04427373f, 1.09050775f, 1.13878858f,
                                   1.18920708f, 1.24185777f, 1.29683959f, 1.35425556f,
                                   1.41421354f, 1.47682619f, 1.54221082f, 1.61049032f,
                                   1.68179286f, 1.75625217f, 1.8340081f,  1.91520655f};
    Sixteenths s{{},
                 {0.0f, -4.628547e-08f, 1.199216e-08f, -4.729782e-08f, -3.193418e-08f, -3.621057e-08f,
                  3.099072e-08f, 7.475213e-09f, -1.711427e-08f, 3.047683e-08f, -5.233334e-09f, -6.107592e-09f,
                  1.471961e-08f, 5.258795e-09f, 6.128260e-09f, -5.140609e-09f}};
    for (int j = 0; j < LANES; ++j)
        s.value[j] = std::bit_cast<f32>(std::bit_cast<int>(POWERS[j]) - (j << 19));
    return s;
}
inline constexpr Sixteenths SIXTEENTHS = sixteenths();

constexpr f32 LN2_HEAD = 0.693359375f, LN2_TAIL = -2.12194440e-4f;

// exp(x) = scale (1 + p), scale = 2^n, n in sixteenths, |p| < 0.022 (Tang 1989, ACM Transactions on
// Mathematical Software 15); x from -87 to 88. A sum with 1.5 2^19 has its last bit at 1/16.
struct Power {
    Lanes scale, p;
};
VORDA_WIDE Power power(Lanes x) {
    constexpr f32 SHIFT = 786432.0f;
    const Lanes shifted = fma(x, all(1.44269504f), all(SHIFT)), n = shifted - all(SHIFT);
    const Integers bits = _mm512_castps_si512(shifted);
    const Lanes rest = fnma(n, all(LN2_TAIL), fnma(n, all(LN2_HEAD), x)) - one_of(SIXTEENTHS.excess, bits);
    const Integers sixteenth = _mm512_castps_si512(one_of(SIXTEENTHS.value, bits));
    return {_mm512_castsi512_ps(_mm512_add_epi32(sixteenth, _mm512_slli_epi32(bits, 19))),
            fma(fma(all(0.166669925f), rest, all(0.500014661f)), rest * rest, rest)};
}

// To 7e-8.
VORDA_WIDE Lanes exponential(Lanes x) {
    const Power e = power(x);
    return fma(e.scale, e.p, e.scale);
}

// e = exp(-x) to 7e-8 and 1 - e to 1.6e-7 of itself, 0 <= x <= 87. Next to 0 the scale is 1; from 1/2 on its
// difference from 1 is exact.
struct Decay {
    Lanes e, rest;
};
VORDA_WIDE Decay decay(Lanes x) {
    const Power of = power(-x);
    const Lanes e = fma(of.scale, of.p, of.scale);
    const Mask exact = _mm512_cmp_ps_mask(of.scale, all(0.5f), _CMP_GE_OQ);
    return {e, select(exact, fnma(of.scale, of.p, all(1) - of.scale), all(1) - e)};
}

// c near 1/mantissa for the first four bits of a mantissa from 3/4 to 3/2, and -ln(c), which are
// such that their rounding is lost; 1 next to 1.
struct MantissaTable {
    alignas(64) f32 c[LANES];
    alignas(64) f32 ln[LANES];
};
inline constexpr MantissaTable MANTISSAS{
    {1, 0.914255738f, 0.864864707f, 0.820512831f, 0.780458212f, 0.74415648f, 0.711086273f, 0.68082118f,
     1.3061446f, 1.25490201f, 1.20757711f, 1.16362619f, 1.12277699f, 1.08474588f, 1.04915035f, 1},
    {0, 0.0896449462f, 0.145182192f, 0.19782573f, 0.247874081f, 0.295503944f, 0.340961516f, 0.384455591f,
     -0.267079741f, -0.227057487f, -0.188615963f, -0.151541159f, -0.115805067f, -0.0813457519f,
     -0.0479806438f, 0}};

// To 1.2e-7, x > 0: ln(x) = n ln(2) - ln(c) + ln(c mantissa). The factor 4/3 is rounded up, so that n is the
// exponent that belongs to the mantissa.
VORDA_WIDE Lanes logarithm(Lanes x) {
    constexpr f32 FIT[4] = {-0.500000022f, 0.333344693f, -0.250052305f, 0.1883056f};
    const Lanes mantissa = _mm512_getmant_ps(x, _MM_MANT_NORM_p75_1p5, _MM_MANT_SIGN_src);
    const Lanes n = _mm512_getexp_ps(x * all(1.33333337f));
    const Integers place = _mm512_srli_epi32(_mm512_castps_si512(mantissa), 19);
    const Lanes f = _mm512_fmsub_ps(mantissa, one_of(MANTISSAS.c, place), all(1));
    const Lanes rest = fma(f * f, polynomial(FIT, f), f);
    return fma(n, all(LN2_HEAD), fma(n, all(LN2_TAIL), one_of(MANTISSAS.ln, place)) + rest);
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
