#include "green/igruio.hpp"

#include "green/green_block.hpp"

#include <cmath>

namespace {

// With L = 2 ln(r1 + Y) added to F, so that L_Y = 2/r1, the relation reads f_Y = L - f; twice differentiated
// it gives the third derivatives in the form in which nothing cancels.
VORDA_SIMD void derivatives(const f32 *X_, const f32 *Y_, const int *ISNG, f32 *const (&v)[INFINITE_VALUES]) {
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

} // namespace

bool InfiniteWork::alloc(int n) {
    return green.alloc(n) && zero.alloc(n) && unread.alloc(n) && selector.alloc(n);
}

void IGRUIO(const InfinitePoints &points, InfiniteWork &work, f32 *const (&value)[INFINITE_VALUES]) {
    int *selector = work.selector.data();
    for (int i = 0; i < points.n; ++i)
        selector[i] = points.ISNG[i] >= 3 ? 3 : 2;
    GreenArrays arrays;
    for (const GreenValue j : {G_, G_R, G_Z, G_ZETA}) {
        arrays.re[j] = j == G_    ? value[F_]
                       : j == G_R ? value[F_X]
                       : j == G_Z ? value[F_Y]
                                  : work.unread.data();
        arrays.im[j] = work.unread.data();
    }
    VGRN98({points.n, points.X, points.Y, work.zero.data(), selector, nullptr}, -1, {}, GreenOrder::first,
           work.green, arrays);
    for (int first = 0; first < points.n; first += GREEN_LANES) {
        f32 *block[INFINITE_VALUES];
        for (int j = 0; j < INFINITE_VALUES; ++j)
            block[j] = value[j] + first;
        derivatives(points.X + first, points.Y + first, points.ISNG + first, block);
    }
}
