#include "green/igruio.hpp"

#include "green/green_block.hpp"

#include <cmath>

namespace {

// With L = 2 ln(r1 + Y) added to F, so that L_Y = 2/r1, the relation reads f_Y = L - f; twice differentiated
// it gives the third derivatives in the form in which nothing cancels.
VORDA_SIMD void derivatives(const f32 *X_, const f32 *Y_, const int *ISNG, const InfiniteArrays &result) {
    f32 *const *v = result.value;
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 X = X_[k], Y = Y_[k], r1 = std::sqrt(X * X + Y * Y), i1 = 1 / r1, i2 = i1 * i1,
                  i3 = i2 * i1;
        const bool taken_out = ISNG[k] >= 3;
        const f32 image = ISNG[k] < 2 ? 1.0f : 0.0f; // 1/r1, and its derivatives below
        const f32 x3 = 2 * X * i3, y3 = 2 * Y * i3, xyy = 6 * X * Y * i2 * i3,
                  yyy = 2 * i3 - 6 * Y * Y * i2 * i3;
        const f32 FX = v[F_X][k], FY = v[F_Y][k];
        const f32 FXY = (taken_out ? 2 * X * i1 / (r1 + Y) : x3) - FX;
        const f32 FYY = (taken_out ? 2 * i1 : y3) - FY;
        const f32 FXYY = -FXY - (taken_out ? x3 : xyy);
        const f32 FYYY = -FYY + (taken_out ? -y3 : yyy);
        v[F_][k] += image * i1;
        v[F_X][k] -= image * 0.5f * x3;
        v[F_Y][k] -= image * 0.5f * y3;
        v[F_XY][k] = FXY + image * 0.5f * xyy;
        v[F_YY][k] = FYY - image * 0.5f * yyy;
        v[F_XYY][k] = FXYY + image * (3 * X - 15 * X * Y * Y * i2) * i2 * i3;
        v[F_YYY][k] = FYYY + image * (9 * Y - 15 * Y * Y * Y * i2) * i2 * i3;
    }
}

// F2 = -2 sum of a_n, a_n = (-d/dY)^n (1/r1): the wave pole is left out, which is of the order exp(-Y). With
// c_n =
// (-d/dY)^n (1/r1^3) the slope of a_n in X is -X c_n; both follow from the recursions of the Legendre and
// Gegenbauer polynomials (Abramowitz & Stegun 22.7).
VORDA_SIMD void expansion(const f32 *X, const f32 *Y, const InfiniteArrays &result) {
    constexpr int TERMS = 11; // of F2; a derivative by Y starts one later
    alignas(64) f32 a[GREEN_LANES], a_before[GREEN_LANES], c[GREEN_LANES], c_before[GREEN_LANES],
        i2[GREEN_LANES];
    alignas(64) f32 sum[INFINITE_VALUES][GREEN_LANES] = {};
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        i2[k] = 1 / (X[k] * X[k] + Y[k] * Y[k]);
        a[k] = std::sqrt(i2[k]);
        c[k] = -X[k] * a[k] * i2[k];
        a_before[k] = c_before[k] = 0;
    }
    for (int n = 0; n < TERMS + 3; ++n) {
        // The first of the terms is half taken by 1/r1.
        const auto weight = [n](int from) { return n < from ? 0.0f : n == from ? 1.0f : 2.0f; };
        const f32 w0 = n < TERMS ? weight(0) : 0.0f, w1 = n < TERMS + 1 ? weight(1) : 0.0f,
                  w2 = n < TERMS + 2 ? weight(2) : 0.0f, w3 = weight(3);
        const f32 N = static_cast<f32>(n);
#pragma omp simd
        for (int k = 0; k < GREEN_LANES; ++k) {
            sum[F_][k] -= w0 * a[k];
            sum[F_X][k] -= w0 * c[k];
            sum[F_Y][k] += w1 * a[k];
            sum[F_XY][k] += w1 * c[k];
            sum[F_YY][k] -= w2 * a[k];
            sum[F_XYY][k] -= w2 * c[k];
            sum[F_YYY][k] += w3 * a[k];
            const f32 next_a = ((2 * N + 1) * Y[k] * a[k] - N * N * a_before[k]) * i2[k];
            const f32 next_c = ((2 * N + 3) * Y[k] * c[k] - N * (N + 2) * c_before[k]) * i2[k];
            a_before[k] = a[k];
            c_before[k] = c[k];
            a[k] = next_a;
            c[k] = next_c;
        }
    }
    for (int j = 0; j < INFINITE_VALUES; ++j) {
        for (int k = 0; k < GREEN_LANES; ++k)
            result.value[j][k] = sum[j][k];
    }
}

} // namespace

bool InfiniteWork::alloc(int n) {
    return green.alloc(n) && zero.alloc(n) && unread.alloc(n) && selector.alloc(n);
}

void IGRUIO(const InfinitePoints &points, InfiniteWork &work, const InfiniteArrays &result) {
    int *selector = work.selector.data();
    for (int i = 0; i < points.n; ++i)
        selector[i] = points.ISNG[i] >= 3 ? 3 : 2;
    f32 *unread = work.unread.data();
    GreenArrays arrays;
    for (const GreenValue j : {G_, G_R, G_Z, G_ZETA})
        arrays.re[j] = arrays.im[j] = unread;
    arrays.re[G_] = result.value[F_];
    arrays.re[G_R] = result.value[F_X];
    arrays.re[G_Z] = result.value[F_Y];
    VGRN98({points.n, points.X, points.Y, work.zero.data(), selector, nullptr}, -1, {}, GreenOrder::first,
           work.green, arrays);
    for (int first = 0; first < points.n; first += GREEN_LANES)
        derivatives(points.X + first, points.Y + first, points.ISNG + first, result.from(first));
}

void IGRUIO_distant(int n, const f32 *X, const f32 *Y, const InfiniteArrays &result) {
    for (int first = 0; first < n; first += GREEN_LANES)
        expansion(X + first, Y + first, result.from(first));
}
