// Kernels of the near field of finite depth.
//   R = X, D = z - zeta, A = 2 H - Y; t = R^2/H^2, w = D^2/H^2 or A^2/H^2, y = Y/H. With I(R, Z) = S(t, w)
//   the derivatives by R and Z are (2 R/H^2) S_t and (2 Z/H^2) S_w; z raises D and lowers A, zeta lowers
//   both.
#include "green/near_kernels.hpp"

#include "green/depth_polynomial.hpp"

namespace {

template <bool SECOND> [[gnu::always_inline]] inline void two_depths(const GSTATE &g, GreenBlock &b) {
    const f32 *c = g.COEF91;
    const f32 HTWO = g.HTWO, HINV2 = g.HINV2, HINV2X2 = g.HINV2X2, HINV2X8 = g.HINV2X8;
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 R = b.X[k], D = b.D[k], A = HTWO - b.Y[k];
        const f32 w = D * D * HINV2, a = A * A * HINV2;
        PolynomialSums s, i; // direct and image
        polynomial_sums<ShapeS, SECOND>(c, R * R * HINV2, w, a, s, i);
        const f32 R2 = HINV2X2 * R, D2 = HINV2X2 * D, A2 = HINV2X2 * A;
        b.re[G_][k] = s.f + i.f;
        b.re[G_R][k] = R2 * (s.t + i.t);
        const f32 bD = D2 * s.v, bA = A2 * i.v;
        b.re[G_Z][k] = bD - bA;
        b.re[G_ZETA][k] = -bD - bA;
        if constexpr (SECOND) {
            const f32 cD = R2 * D2 * s.tv, cA = R2 * A2 * i.tv;
            const f32 dD = HINV2X2 * s.v + HINV2X8 * w * s.half_vv;
            const f32 dA = HINV2X2 * i.v + HINV2X8 * a * i.half_vv;
            b.re[G_RZ][k] = cD - cA;
            b.re[G_RZETA][k] = -cD - cA;
            b.re[G_ZZ][k] = dD + dA;
            b.re[G_ZZETA][k] = dA - dD;
        }
    }
}

template <bool SECOND> [[gnu::always_inline]] inline void depth_and_surface(const GSTATE &g, GreenBlock &b) {
    const f32 *c91 = g.COEF91, *c57 = g.COEF57;
    const f32 HINV = g.HINV, HINV2 = g.HINV2, HINV2X2 = g.HINV2X2, HINV2X8 = g.HINV2X8;
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 R = b.X[k], D = b.D[k], t = R * R * HINV2, w = D * D * HINV2;
        const PolynomialSums s = polynomial_sums<ShapeS, SECOND>(c91, t, w);
        const PolynomialSums p = polynomial_sums<ShapeP, SECOND>(c57, t, b.Y[k] * HINV);
        const f32 R2 = HINV2X2 * R, D2 = HINV2X2 * D;
        b.re[G_][k] += s.f + p.f;
        b.re[G_R][k] += R2 * (s.t + p.t);
        const f32 bD = D2 * s.v, bP = HINV * p.v;
        b.re[G_Z][k] += bD + bP;
        b.re[G_ZETA][k] += bP - bD;
        if constexpr (SECOND) {
            const f32 cD = R2 * D2 * s.tv, cP = R2 * HINV * p.tv;
            const f32 dD = HINV2X2 * s.v + HINV2X8 * w * s.half_vv;
            const f32 dP = HINV2X2 * p.half_vv;
            b.re[G_RZ][k] += cD + cP;
            b.re[G_RZETA][k] += cP - cD;
            b.re[G_ZZ][k] += dD + dP;
            b.re[G_ZZETA][k] += dP - dD;
        }
    }
}

} // namespace

VORDA_SIMD void GDEEP(const GSTATE &state, GreenOrder order, GreenBlock &block) {
    if (order == GreenOrder::first)
        two_depths<false>(state, block);
    else
        two_depths<true>(state, block);
}

VORDA_SIMD void GNEAR(const GSTATE &state, GreenOrder order, GreenBlock &block) {
    if (order == GreenOrder::first)
        depth_and_surface<false>(state, block);
    else
        depth_and_surface<true>(state, block);
}
