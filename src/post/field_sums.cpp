#include "post/field_sums.hpp"

#include "base/simd.hpp"

namespace {

VORDA_SIMD void sum_products(int n, SplitColumn K, SplitColumn X, double (&sum)[2]) {
    const f32 *kr = K.re, *ki = K.im, *xr = X.re, *xi = X.im;
    double re = 0, im = 0;
#pragma omp simd reduction(+ : re, im)
    for (int i = 0; i < n; ++i) {
        const double a = static_cast<double>(kr[i]), b = static_cast<double>(ki[i]),
                     c = static_cast<double>(xr[i]), e = static_cast<double>(xi[i]);
        re += a * c - b * e;
        im += a * e + b * c;
    }
    sum[0] = re;
    sum[1] = im;
}

} // namespace

std::complex<double> product(int n, SplitColumn K, SplitColumn X) {
    double sum[2];
    sum_products(n, K, X, sum);
    return {sum[0], sum[1]};
}
