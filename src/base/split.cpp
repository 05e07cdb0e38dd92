#include "base/split.hpp"

#include "base/simd.hpp"

VORDA_SIMD void add_weighted(int n, const f32 *weight, ConstSplit value, Split sum) {
    const f32 *vr = value.re, *vi = value.im;
    f32 *sr = sum.re, *si = sum.im;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        sr[j] += weight[j] * vr[j];
        si[j] += weight[j] * vi[j];
    }
}

VORDA_SIMD void add_signed(int n, f32 sign, ConstSplit value, Split sum) {
    const f32 *vr = value.re, *vi = value.im;
    f32 *sr = sum.re, *si = sum.im;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        sr[j] += sign * vr[j];
        si[j] += sign * vi[j];
    }
}

namespace {

// Side by side, so that the sums do not wait for one another's additions.
template <int COUNT>
[[gnu::always_inline]] inline void sums_abreast(int n, const f32 *const *weight, ConstSplit value, c32 *sum) {
    const f32 *vr = value.re, *vi = value.im;
    const f32 *w0 = weight[0], *w1 = weight[COUNT > 1 ? 1 : 0];
    const f32 *w2 = weight[COUNT > 2 ? 2 : 0], *w3 = weight[COUNT > 3 ? 3 : 0];
    f32 re0 = 0, im0 = 0, re1 = 0, im1 = 0, re2 = 0, im2 = 0, re3 = 0, im3 = 0;
#pragma omp simd reduction(+ : re0, im0, re1, im1, re2, im2, re3, im3)
    for (int j = 0; j < n; ++j) {
        const f32 re = vr[j], im = vi[j];
        re0 += w0[j] * re;
        im0 += w0[j] * im;
        if (COUNT > 1) {
            re1 += w1[j] * re;
            im1 += w1[j] * im;
        }
        if (COUNT > 2) {
            re2 += w2[j] * re;
            im2 += w2[j] * im;
        }
        if (COUNT > 3) {
            re3 += w3[j] * re;
            im3 += w3[j] * im;
        }
    }
    const c32 all[4] = {{re0, im0}, {re1, im1}, {re2, im2}, {re3, im3}};
    for (int k = 0; k < COUNT; ++k)
        sum[k] = all[k];
}

} // namespace

VORDA_SIMD void weighted_sums(int n, int count, const f32 *const *weight, ConstSplit value, c32 *sum) {
    int k = 0;
    for (; k + 4 <= count; k += 4)
        sums_abreast<4>(n, weight + k, value, sum + k);
    for (; k + 2 <= count; k += 2)
        sums_abreast<2>(n, weight + k, value, sum + k);
    if (k < count)
        sums_abreast<1>(n, weight + k, value, sum + k);
}

VORDA_SIMD c32 complex_sum(int n, ConstSplit weight, ConstSplit value) {
    const f32 *wr = weight.re, *wi = weight.im, *vr = value.re, *vi = value.im;
    f32 re = 0;
    f32 im = 0;
#pragma omp simd reduction(+ : re, im)
    for (int j = 0; j < n; ++j) {
        re += wr[j] * vr[j] - wi[j] * vi[j];
        im += wr[j] * vi[j] + wi[j] * vr[j];
    }
    return {re, im};
}

VORDA_SIMD void add_scaled(int n, c32 factor, ConstSplit value, Split sum) {
    const f32 fr = factor.real(), fi = factor.imag();
    const f32 *vr = value.re, *vi = value.im;
    f32 *sr = sum.re, *si = sum.im;
#pragma omp simd
    for (int j = 0; j < n; ++j) {
        sr[j] += fr * vr[j] - fi * vi[j];
        si[j] += fr * vi[j] + fi * vr[j];
    }
}
