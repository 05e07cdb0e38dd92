// Kernels of the deep-water Green function: one table row, one block of points.
//   X = R, Y = z + zeta, r1^2 = X^2 + Y^2, F = F2(X, Y). Only F and F_X are evaluated; the free-surface
//   relation F_Y = -(F + 2/r1) gives the other derivatives.
#include "green/bessel_fits.hpp"
#include "green/deep_fits.hpp"
#include "green/green_block.hpp"

#include <cmath>

namespace {

constexpr f32 SQRT_HALF = 0.70710678f;

[[gnu::always_inline]] inline f32 polynomial5(const f32 (&c)[6], f32 a) {
    return ((((c[5] * a + c[4]) * a + c[3]) * a + c[2]) * a + c[1]) * a + c[0];
}

struct TableValue {
    f32 B, slope; // slope in v
};

// B = sum of v^n p_n(t) and its slope in one nested pass.
[[gnu::always_inline]] inline TableValue table(const f32 *c, f32 v, f32 t) {
    const f32 p0 = ((((c[5] * t + c[4]) * t + c[3]) * t + c[2]) * t + c[1]) * t + c[0];
    const f32 p1 = ((((c[11] * t + c[10]) * t + c[9]) * t + c[8]) * t + c[7]) * t + c[6];
    const f32 p2 = (((c[16] * t + c[15]) * t + c[14]) * t + c[13]) * t + c[12];
    const f32 p3 = (((c[21] * t + c[20]) * t + c[19]) * t + c[18]) * t + c[17];
    const f32 p4 = ((c[25] * t + c[24]) * t + c[23]) * t + c[22];
    const f32 p5 = (c[28] * t + c[27]) * t + c[26];
    const f32 p6 = c[30] * t + c[29];
    f32 B = p6 * v + p5, slope = p6;
    slope = slope * v + B;
    B = B * v + p4;
    slope = slope * v + B;
    B = B * v + p3;
    slope = slope * v + B;
    B = B * v + p2;
    slope = slope * v + B;
    B = B * v + p1;
    slope = slope * v + B;
    B = B * v + p0;
    return {B, slope};
}

// Local variable of the Y band.
template <bool DEEP> [[gnu::always_inline]] inline f32 band_variable(f32 Y, f32 base) {
    return (DEEP ? 16 / Y : Y) - base;
}

// F and its derivatives; the second ones follow from the relation.
struct RealValues {
    f32 F, FX, FY, FXY, FYY;
};
[[gnu::always_inline]] inline RealValues by_relation(f32 X, f32 Y, f32 F, f32 FX, f32 rinv) {
    const f32 i3 = rinv * rinv * rinv, FY = -(F + 2 * rinv);
    return {F, FX, FY, 2 * X * i3 - FX, 2 * Y * i3 - FY};
}

// The same where Y >= 4, from the table B and the waves W with their slopes in X:
//   F + T = B/r1^5 - W, T = 2/r1 + (2 Y - 2)/r1^3 + (6 Y^2 - 18 Y)/r1^5 + 30 Y^3/r1^7 the far tail.
// The relation is written for F + T, as F and 2/r1 cancel to the order 1/r1^2, and F_Y and 2 Y/r1^3 again.
// (1/r1^2 comes apart from 1/r1: the polynomials of the tail need not wait for the root.)
[[gnu::always_inline]] inline RealValues beyond_tail(f32 X, f32 Y, f32 B, f32 BX, f32 W, f32 WX, f32 i2,
                                                     f32 rinv) {
    const f32 i3 = i2 * rinv, i5 = i2 * i3, p = Y * i2, q = Y * p;
    const f32 N = i5 * B - W, rest = 6 * q + p * (30 * q - 18);
    const f32 FY = (2 * Y - 2 + rest) * i3 - N;
    // Of -(T - 2/r1) and of 1/r1^5, both over X/r1^5.
    const f32 slope = 6 * Y - 6 + 30 * q + p * (210 * q - 90) - 5 * i2 * B;
    const f32 NX = i5 * (BX + X * slope) - WX;
    return {-(FY + 2 * rinv), NX + 2 * X * i3, FY, -NX, N + (2 - rest) * i3};
}

// Real parts; lanes of ISNG < 2 get the image 1/r1 with them.
template <bool SECOND>
[[gnu::always_inline]] inline void store_real(GreenBlock &b, int k, const RealValues &v, f32 rinv) {
    const f32 X = b.X[k], Y = b.Y[k], image = b.ISNG[k] < 2 ? 1.0f : 0.0f;
    const f32 i2 = rinv * rinv, n3 = image * i2 * rinv;
    b.re[G_][k] = b.ISNG[k] < 2 ? v.F + rinv : v.F;
    b.re[G_R][k] = v.FX - X * n3;
    b.re[G_Z][k] = v.FY - Y * n3;
    b.re[G_ZETA][k] = v.FY - Y * n3;
    if constexpr (SECOND) {
        const f32 n5 = 3 * n3 * i2;
        b.re[G_RZ][k] = v.FXY + X * Y * n5;
        b.re[G_RZETA][k] = v.FXY + X * Y * n5;
        b.re[G_ZZ][k] = v.FYY + (Y * Y * n5 - n3);
        b.re[G_ZZETA][k] = v.FYY + (Y * Y * n5 - n3);
    }
}

// Imaginary parts from c0 = 2 pi exp(-Y) J0(X) and c1 = 2 pi exp(-Y) J1(X).
template <bool SECOND>
[[gnu::always_inline]] inline void store_imaginary(GreenBlock &b, int k, f32 c0, f32 c1) {
    b.im[G_][k] = -c0;
    b.im[G_R][k] = c1;
    b.im[G_Z][k] = c0;
    b.im[G_ZETA][k] = c0;
    if constexpr (SECOND) {
        b.im[G_RZ][k] = -c1;
        b.im[G_RZETA][k] = -c1;
        b.im[G_ZZ][k] = -c0;
        b.im[G_ZZETA][k] = -c0;
    }
}

[[gnu::always_inline]] inline f32 decay(f32 Y) {
    return expf(-(Y < MAX_DEPTH ? Y : MAX_DEPTH));
}

template <bool DEEP, bool SECOND, bool WAVES>
[[gnu::always_inline]] inline void near_axis(int row, GreenBlock &b) {
    const f32 *c = FTAB[row - 1];
    const int band = table_band(row);
    const f32 base = static_cast<f32>(DEEP ? 7 - band : band);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 X = b.X[k], Y = b.Y[k];
        const f32 r2 = X * X + Y * Y, x3 = X * (1 / 3.0f), a = x3 * x3;
        const TableValue p = table(c, a, band_variable<DEEP>(Y, base));
        const f32 BX = p.slope * (2 / 3.0f) * x3, exy = decay(Y);
        const f32 J = polynomial5(JA, a), W = polynomial5(WA, a) * x3;
        if constexpr (DEEP) {
            const f32 i2 = 1 / r2, rinv = std::sqrt(i2);
            store_real<SECOND>(b, k, beyond_tail(X, Y, p.B, BX, 0, 0, i2, rinv), rinv);
        } else {
            const f32 r1 = std::sqrt(r2), rinv = r1 > TINY_R1 ? 1 / r1 : 0.0f;
            const f32 s = r1 + Y, L = logf(s), Q = polynomial5(QA, a), V = polynomial5(VA, a) * x3;
            const f32 F = exy * ((r1 * p.B - Q) - J * L);
            const f32 FX = exy * (((r1 * BX - V) + X * rinv * (p.B - J / s)) + L * W);
            store_real<SECOND>(b, k, by_relation(X, Y, F, FX, rinv), rinv);
        }
        if constexpr (WAVES)
            store_imaginary<SECOND>(b, k, PI_F * exy * J, PI_F * exy * W);
    }
}

template <bool DEEP, bool SECOND, bool WAVES>
[[gnu::always_inline]] inline void far_from_axis(int row, GreenBlock &b) {
    const f32 *c = FTAB[row - 1];
    const int band = table_band(row);
    const f32 base = static_cast<f32>(DEEP ? 7 - band : band), step = static_cast<f32>(table_step(row));
    // Each in a loop of its own: side by side GCC joins them to sincosf, which has no vector version.
    alignas(64) f32 cosine[GREEN_LANES], sine[GREEN_LANES];
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k)
        cosine[k] = cosf(b.X[k]);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k)
        sine[k] = sinf(b.X[k]);
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 X = b.X[k], Y = b.Y[k];
        const f32 i2 = 1 / (X * X + Y * Y), rinv = std::sqrt(i2);
        const f32 xinv = 1 / X, x3 = 3 * xinv, v = x3 * x3;
        const TableValue p = table(c, 15 / X - step, band_variable<DEEP>(Y, base));
        // cos and sin of X - pi/4 from those of X: the difference itself would round at large X.
        const f32 ex = decay(Y) * std::sqrt(xinv) * SQRT_HALF, cx = cosine[k], sx = sine[k];
        const f32 ca = ex * (cx + sx), sa = ex * (sx - cx);
        const f32 P0 = polynomial5(P0C, v), Q0 = polynomial5(Q0C, v) * x3;
        const f32 P1 = polynomial5(P1C, v), Q1 = polynomial5(Q1C, v) * x3;
        const f32 waves = Q0 * ca + P0 * sa, waves_X = P1 * ca - Q1 * sa; // 2 pi exp(-Y) Y0(X) and its slope
        const f32 BX = -15 * xinv * xinv * p.slope;
        if constexpr (DEEP) {
            store_real<SECOND>(b, k, beyond_tail(X, Y, p.B, BX, waves, waves_X, i2, rinv), rinv);
        } else {
            store_real<SECOND>(b, k, by_relation(X, Y, p.B - waves, BX - waves_X, rinv), rinv);
        }
        if constexpr (WAVES)
            store_imaginary<SECOND>(b, k, P0 * ca - Q0 * sa, Q1 * ca + P1 * sa);
    }
}

template <bool SECOND, bool WAVES>
[[gnu::always_inline]] inline void without_logarithm(int row, GreenBlock &b) {
    const f32 *c = FTAB[row - 1];
    const f32 base = static_cast<f32>(table_band(row));
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 X = b.X[k], Y = b.Y[k], r1 = std::sqrt(X * X + Y * Y);
        // Where r1 counts as zero all its terms drop out: the value is -Q, the R derivatives vanish. By
        // factors, as branches would keep the loop from the vector unit.
        const f32 apart = r1 > TINY_R1 ? 1.0f : 0.0f;
        const f32 rinv = apart / (r1 > TINY_R1 ? r1 : 1.0f), s = r1 > TINY_R1 ? r1 + Y : 1.0f;
        const f32 x3 = X * (1 / 3.0f), a = x3 * x3;
        const TableValue p = table(c, a, band_variable<false>(Y, base));
        const f32 BX = p.slope * (2 / 3.0f) * x3;
        // J less its constant, before that rounds its digits away at small X.
        const f32 Jm = ((((JA[5] * a + JA[4]) * a + JA[3]) * a + JA[2]) * a + JA[1]) * a, J = Jm + JA[0];
        const f32 W = polynomial5(WA, a) * x3;
        const f32 Q = polynomial5(QA, a), V = polynomial5(VA, a) * x3;
        // g = 1 - exp(-Y) with its digits at small Y: below 0.5 the Taylor series, to 5e-9.
        const f32 exy = decay(Y);
        const f32 g4 =
            1 - Y * (1 / 5.0f) * (1 - Y * (1 / 6.0f) * (1 - Y * (1 / 7.0f) * (1 - Y * (1 / 8.0f))));
        const f32 series = Y * (1 - Y * (1 / 2.0f) * (1 - Y * (1 / 3.0f) * (1 - Y * (1 / 4.0f) * g4)));
        const f32 g = Y < 0.5f ? series : 1 - exy;
        // M = 2 - exp(-Y) 2 J0, the factor that the added logarithm leaves of it; small at small r1.
        const f32 M = g * J - Jm;
        const f32 L = logf(s), px = X * rinv / s, h = 1 - g, smooth = apart * r1 * p.B - Q;
        const f32 inner = apart * ((r1 * BX - V) + p.B * X * rinv + L * W);
        // G_z = 2 L - G and its like with 2 - M = h J: as differences they would lose their digits.
        const f32 G = smooth * h + M * L, GZ = (J * L - smooth) * h;
        const f32 GR = M * px + inner * h;
        b.re[G_][k] = G;
        b.re[G_R][k] = GR;
        b.re[G_Z][k] = GZ;
        b.re[G_ZETA][k] = GZ;
        if constexpr (SECOND) {
            b.re[G_RZ][k] = (J * px - inner) * h;
            b.re[G_RZETA][k] = (J * px - inner) * h;
            b.re[G_ZZ][k] = 2 * rinv - GZ;
            b.re[G_ZZETA][k] = 2 * rinv - GZ;
        }
        if constexpr (WAVES)
            store_imaginary<SECOND>(b, k, PI_F * (1 - g) * J, PI_F * (1 - g) * W);
    }
}

// WAVES: with the imaginary parts.
template <bool WAVES> [[gnu::always_inline]] inline void near_axis(int row, GreenOrder order, GreenBlock &b) {
    const bool second = order == GreenOrder::second;
    if (table_band(row) < 4) {
        if (second)
            near_axis<false, true, WAVES>(row, b);
        else
            near_axis<false, false, WAVES>(row, b);
    } else {
        if (second)
            near_axis<true, true, WAVES>(row, b);
        else
            near_axis<true, false, WAVES>(row, b);
    }
}

template <bool WAVES>
[[gnu::always_inline]] inline void far_from_axis(int row, GreenOrder order, GreenBlock &b) {
    const bool second = order == GreenOrder::second;
    if (table_band(row) < 4) {
        if (second)
            far_from_axis<false, true, WAVES>(row, b);
        else
            far_from_axis<false, false, WAVES>(row, b);
    } else {
        if (second)
            far_from_axis<true, true, WAVES>(row, b);
        else
            far_from_axis<true, false, WAVES>(row, b);
    }
}

template <bool WAVES>
[[gnu::always_inline]] inline void without_logarithm(int row, GreenOrder order, GreenBlock &b) {
    if (order == GreenOrder::second)
        without_logarithm<true, WAVES>(row, b);
    else
        without_logarithm<false, WAVES>(row, b);
}

} // namespace

VORDA_SIMD void GINFS(int row, GreenOrder order, GreenBlock &block) {
    near_axis<true>(row, order, block);
}
VORDA_SIMD void GINFL(int row, GreenOrder order, GreenBlock &block) {
    far_from_axis<true>(row, order, block);
}
VORDA_SIMD void GINFG(int row, GreenOrder order, GreenBlock &block) {
    without_logarithm<true>(row, order, block);
}

VORDA_SIMD void FINFS(int row, GreenOrder order, GreenBlock &block) {
    near_axis<false>(row, order, block);
}
VORDA_SIMD void FINFL(int row, GreenOrder order, GreenBlock &block) {
    far_from_axis<false>(row, order, block);
}
VORDA_SIMD void FINFG(int row, GreenOrder order, GreenBlock &block) {
    without_logarithm<false>(row, order, block);
}
