// Near field of FGRUIO, one block of points: deep-water functions at four images and the polynomial
//   S3(t, w) = I(R, Z) - Phi(2 H - Z) - Phi(2 H + Z),  t = (2 R/H)^2, w = (Z/(2 H))^2,  Z = D or A = 2 H - Y.
#include "green/depth_block.hpp"
#include "green/depth_polynomial.hpp"

namespace {

// A polynomial and its derivatives as nested division gives them: n t's and m w's stand for the derivative
// over n! m!.
struct ThirdSums {
    f32 f = 0, w = 0, ww = 0, www = 0, t = 0, tw = 0, tww = 0, tt = 0, ttw = 0;
};

struct CurvedRow {
    f32 value, slope, half_curve;
};

template <int DEGREE> [[gnu::always_inline]] inline CurvedRow curved_row(const f32 *c, f32 t) {
    if constexpr (DEGREE == 0) {
        return {c[0], 0, 0};
    } else {
        const CurvedRow above = curved_row<DEGREE - 1>(c, t);
        return {above.value * t + c[DEGREE], above.slope * t + above.value,
                above.half_curve * t + above.slope};
    }
}

template <int ROW = 0>
[[gnu::always_inline]] inline void add_curved_rows(const f32 *c, f32 t, f32 w, ThirdSums &s) {
    if constexpr (ROW < ShapeS3::ROWS) {
        const CurvedRow row = curved_row<ShapeS3::DEGREE[ROW]>(c + row_start<ShapeS3>(ROW), t);
        s.www = s.www * w + s.ww;
        s.ww = s.ww * w + s.w;
        s.w = s.w * w + s.f;
        s.f = s.f * w + row.value;
        s.tww = s.tww * w + s.tw;
        s.tw = s.tw * w + s.t;
        s.t = s.t * w + row.slope;
        s.ttw = s.ttw * w + s.tt;
        s.tt = s.tt * w + row.half_curve;
        add_curved_rows<ROW + 1>(c, t, w, s);
    }
}

// Adds S3 at Z, which grows by DZ with z, DZETA with zeta and DH with H.
template <int DZ, int DZETA, int DH>
[[gnu::always_inline]] inline void add_polynomial(const f32 *c, const f32 *dc, f32 HINV, f32 R, f32 Z,
                                                  f32 (&v)[DEPTH_VALUES][GREEN_LANES], int k) {
    const f32 rate = 2 * HINV, HINV2 = HINV * HINV; // t and w fall by it times themselves with H
    const f32 t = 4 * R * R * HINV2, w = 0.25f * Z * Z * HINV2;
    ThirdSums s;
    add_curved_rows(c, t, w, s);
    const PolynomialSums h = polynomial_sums<ShapeS3, true>(dc, t, w);
    // Slopes of t in R and of w in Z; the second one is a constant.
    const f32 tR = 8 * R * HINV2, wZ = 0.5f * Z * HINV2, wZZ = 0.5f * HINV2;
    const f32 by_ZZ = 2 * s.ww * wZ * wZ + s.w * wZZ, by_RZZ = tR * (2 * s.tww * wZ * wZ + s.tw * wZZ);
    const f32 by_ZZZ = wZ * (6 * s.www * wZ * wZ + 6 * s.ww * wZZ);
    add_term<DZ, DZETA, DH>(v, k, ImageTerm{s.f, tR * s.t, wZ * s.w, tR * wZ * s.tw, by_ZZ, by_RZZ, by_ZZZ});
    v[G_H][k] += h.f - rate * (t * s.t + w * s.w);
    v[G_RH][k] += tR * (h.t - rate * (2 * t * s.tt + w * s.tw + s.t));
    v[G_ZETAH][k] += DZETA * wZ * (h.v - rate * (t * s.tw + 2 * w * s.ww + s.w));
    v[G_RZETAH][k] += DZETA * tR * wZ * (h.tv - rate * (2 * t * s.ttw + 2 * w * s.tww + 2 * s.tw));
}

[[gnu::always_inline]] inline ImageTerm image(const f32 *const (&F)[INFINITE_VALUES], int k) {
    return {F[F_][k], F[F_X][k], F[F_Y][k], F[F_XY][k], F[F_YY][k], F[F_XYY][k], F[F_YYY][k]};
}

} // namespace

VORDA_SIMD void depth_near(const HSTATE &state, f32 H, const f32 *const (&F)[POSITIONS][INFINITE_VALUES],
                           DepthBlock &block) {
    const f32 HINV = 1 / H;
    const f32 *c = state.S3C, *dc = state.DS3C;
    for (auto &value : block.re) {
        for (f32 &lane : value)
            lane = 0;
    }
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        add_term<-1, 1, 2>(block.re, k, image(F[0], k));
        add_term<1, -1, 2>(block.re, k, image(F[1], k));
        add_term<-1, -1, 4>(block.re, k, image(F[2], k));
        add_term<1, 1, 0>(block.re, k, image(F[3], k));
    }
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 Z = block.Z[k], ZETA = block.ZETA[k];
        add_polynomial<1, -1, 0>(c, dc, HINV, block.X[k], Z - ZETA, block.re, k);
    }
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 A = (H - block.Z[k]) + (H - block.ZETA[k]);
        add_polynomial<-1, -1, 2>(c, dc, HINV, block.X[k], A, block.re, k);
    }
}
