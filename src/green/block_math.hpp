// Elementary functions of a block of points, of the kind that become vector code.
#pragma once

#include "base/simd.hpp"
#include "base/types.hpp"
#include "green/green_block.hpp"

constexpr f32 TWO_BY_PI = 0.63661977f;
constexpr f32 MAX_EXPONENT = 30.0f; // of the vertical factors: beyond it they stop falling
constexpr f32 MAX_DECAY = 60.0f;    // of the evanescent modes: keeps products among the normal numbers

// A polynomial, constant first. Held by value: read through a pointer into the state the coefficients could
// change with every store of the loop, and the compiler would give up the vector code.
template <int N> struct Polynomial {
    f32 c[N];
    [[gnu::always_inline]] explicit Polynomial(const f32 *from) {
        for (int i = 0; i < N; ++i)
            c[i] = from[i];
    }
    [[gnu::always_inline]] f32 operator()(f32 x) const {
        if constexpr (N == 5)
            return (((c[4] * x + c[3]) * x + c[2]) * x + c[1]) * x + c[0];
        else if constexpr (N == 6)
            return ((((c[5] * x + c[4]) * x + c[3]) * x + c[2]) * x + c[1]) * x + c[0];
        else
            return (((((c[6] * x + c[5]) * x + c[4]) * x + c[3]) * x + c[2]) * x + c[1]) * x + c[0];
    }
};

// exp(-x) and 1 - exp(-x) of a block, x clipped. In loops of their own: next to the clipping GCC takes the
// constant branch out of exp, whose argument then is not clipped, and vector code is lost or slow.
struct Decays {
    alignas(64) f32 e[GREEN_LANES];
    alignas(64) f32 rest[GREEN_LANES];
};

template <class Exponent>
[[gnu::always_inline]] inline void exponentials(Exponent exponent, f32 limit, f32 (&e)[GREEN_LANES]) {
    alignas(64) f32 x[GREEN_LANES];
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 at = exponent(k);
        x[k] = at < limit ? at : limit;
    }
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k)
        e[k] = expf(-x[k]);
}

template <class Exponent> [[gnu::always_inline]] inline void decays(Exponent exponent, Decays &d) {
    exponentials(exponent, MAX_EXPONENT, d.e);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        // 1 - exp(-x) with its digits, since in shallow water both points are close to the bottom on the
        // scale of a wave: below 0.5 the Taylor series, to 5e-9.
        const f32 x = exponent(k);
        const f32 s4 =
            1 - x * (1 / 5.0f) * (1 - x * (1 / 6.0f) * (1 - x * (1 / 7.0f) * (1 - x * (1 / 8.0f))));
        const f32 series = x * (1 - x * (1 / 2.0f) * (1 - x * (1 / 3.0f) * (1 - x * (1 / 4.0f) * s4)));
        d.rest[k] = x < 0.5f ? series : 1 - d.e[k];
    }
}

struct Turn {
    f32 s, c; // sine and cosine
};

// Of q quarter turns and r more, |r| up to pi/4: Taylor polynomials economised there, to 1e-7.
[[gnu::always_inline]] inline Turn turn(int q, f32 r) {
    const f32 v = r * r;
    const f32 s = r + r * v * ((-1.9515296e-4f * v + 8.3321609e-3f) * v - 1.6666655e-1f);
    const f32 c = 1 - 0.5f * v + v * v * ((2.4433157e-5f * v - 1.3887316e-3f) * v + 4.1666646e-2f);
    const bool swap = (q & 1) != 0;
    const f32 sine = swap ? c : s, cosine = swap ? s : c;
    return {(q & 2) != 0 ? -sine : sine, ((q + 1) & 2) != 0 ? -cosine : cosine};
}

// Of 0 <= x <= 13 pi, to 1e-7 and the rounding of x: the nearest multiple of pi/2 is taken off in two parts.
[[gnu::always_inline]] inline Turn turn(f32 x) {
    constexpr f32 PI_HALF_HEAD = 1.5703125f, PI_HALF_TAIL = 4.83826795e-4f;
    const int q = static_cast<int>(
        x * TWO_BY_PI + 0.5f); // NOLINT(bugprone-incorrect-roundings): x >= 0, and it is vector code
    const f32 n = static_cast<f32>(q);
    return turn(q, (x - n * PI_HALF_HEAD) - n * PI_HALF_TAIL);
}

// Of k R - pi/4, k R >= 0, with 2 k / pi: to 1e-7 at any distance. (Beyond 1e9 quarter turns R has no digits
// for a phase.)
[[gnu::always_inline]] inline Turn wave_phase(double quarter_turns, f32 R) {
    constexpr double PI_HALF = 1.57079632679489661923, LAST = 1e9;
    const double any = quarter_turns * static_cast<double>(R), x = any < LAST ? any : LAST;
    const int q = static_cast<int>(x); // of k R - pi/4 the nearest one
    return turn(q, static_cast<f32>((x - 0.5 - q) * PI_HALF));
}
