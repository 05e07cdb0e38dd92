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

VORDA_SIMD c32 weighted_sum(int n, const f32 *weight, ConstSplit value) {
    const f32 *vr = value.re, *vi = value.im;
    f32 re = 0;
    f32 im = 0;
#pragma omp simd reduction(+ : re, im)
    for (int j = 0; j < n; ++j) {
        re += weight[j] * vr[j];
        im += weight[j] * vi[j];
    }
    return {re, im};
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
