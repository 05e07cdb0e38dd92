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

constexpr int EXPANSION = 11; // terms of F2; its derivatives by Y have one more each

// Sums of the a_n and c_n below from n = 0, 1, 2, 3 on, the first one of them counted half.
struct ExpansionSums {
    f32 a0 = 0, a1 = 0, a2 = 0, a3 = 0, c0 = 0, c1 = 0, c2 = 0;
};

// `sum` with the term n.
template <int n, int FROM> [[gnu::always_inline]] inline f32 added(f32 sum, f32 term) {
    if constexpr (n == FROM)
        return 0.5f * term;
    else if constexpr (n > FROM && n < EXPANSION + FROM)
        return sum + term;
    else
        return sum;
}

// Adds term n and the later ones. Recursion instead of a loop, for the sake of the loop around it.
template <int n = 0>
[[gnu::always_inline]] inline void expand(f32 Y, f32 i2, f32 a, f32 a_before, f32 c, f32 c_before,
                                          ExpansionSums &s) {
    if constexpr (n < EXPANSION + 3) {
        constexpr f32 N = n;
        s.a0 = added<n, 0>(s.a0, a);
        s.a1 = added<n, 1>(s.a1, a);
        s.a2 = added<n, 2>(s.a2, a);
        s.a3 = added<n, 3>(s.a3, a);
        s.c0 = added<n, 0>(s.c0, c);
        s.c1 = added<n, 1>(s.c1, c);
        s.c2 = added<n, 2>(s.c2, c);
        expand<n + 1>(Y, i2, i2 * ((2 * N + 1) * Y * a - N * N * a_before), a,
                      i2 * ((2 * N + 3) * Y * c - N * (N + 2) * c_before), c, s);
    }
}

// F2 = -2 sum of a_n, a_n = (-d/dY)^n (1/r1): the wave pole is left out, which is of the order exp(-Y). The
// slope of a_n in X is X c_n, c_n = -(-d/dY)^n (1/r1^3); both follow from the recursions of the Legendre and
// Gegenbauer polynomials (Abramowitz & Stegun 22.7).
VORDA_SIMD void expansion(const f32 *X, const f32 *Y, const InfiniteArrays &result) {
    f32 *const *v = result.value;
#pragma omp simd
    for (int k = 0; k < GREEN_LANES; ++k) {
        const f32 i2 = 1 / (X[k] * X[k] + Y[k] * Y[k]), i1 = std::sqrt(i2), twice = -2 * X[k];
        ExpansionSums s;
        expand(Y[k], i2, i1, 0, -i1 * i2, 0, s);
        v[F_][k] = -2 * s.a0;
        v[F_Y][k] = 2 * s.a1;
        v[F_YY][k] = -2 * s.a2;
        v[F_YYY][k] = 2 * s.a3;
        v[F_X][k] = twice * s.c0;
        v[F_XY][k] = -twice * s.c1;
        v[F_XYY][k] = twice * s.c2;
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
