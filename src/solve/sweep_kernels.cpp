#include "solve/sweep_kernels.hpp"

#include "base/simd.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

VORDA_SIMD void subtract_column(int n, const c32 *column, const f32 (&y)[2], Split v) {
    const f32 *a = reinterpret_cast<const f32 *>(column);
    const f32 yr = y[0], yi = y[1];
    f32 *vr = v.re, *vi = v.im;
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        vr[i] -= yr * a[2 * i] - yi * a[2 * i + 1];
        vi[i] -= yr * a[2 * i + 1] + yi * a[2 * i];
    }
}

VORDA_SIMD void subtract_four_columns(int n, const c32 *const (&column)[4], const f32 (&y)[8], Split v) {
    const f32 *a = reinterpret_cast<const f32 *>(column[0]), *b = reinterpret_cast<const f32 *>(column[1]);
    const f32 *c = reinterpret_cast<const f32 *>(column[2]), *d = reinterpret_cast<const f32 *>(column[3]);
    const f32 ar = y[0], br = y[1], cr = y[2], dr = y[3];
    const f32 ai = y[4], bi = y[5], ci = y[6], di = y[7];
    f32 *vr = v.re, *vi = v.im;
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        f32 re = vr[i], im = vi[i];
        re -= ar * a[2 * i] - ai * a[2 * i + 1];
        im -= ar * a[2 * i + 1] + ai * a[2 * i];
        re -= br * b[2 * i] - bi * b[2 * i + 1];
        im -= br * b[2 * i + 1] + bi * b[2 * i];
        re -= cr * c[2 * i] - ci * c[2 * i + 1];
        im -= cr * c[2 * i + 1] + ci * c[2 * i];
        re -= dr * d[2 * i] - di * d[2 * i + 1];
        im -= dr * d[2 * i + 1] + di * d[2 * i];
        vr[i] = re;
        vi[i] = im;
    }
}

VORDA_SIMD void add_four_products(int n, const c32 *const (&row)[4], ConstSplit y, f32 (&sum)[8]) {
    const f32 *a = reinterpret_cast<const f32 *>(row[0]), *b = reinterpret_cast<const f32 *>(row[1]);
    const f32 *c = reinterpret_cast<const f32 *>(row[2]), *d = reinterpret_cast<const f32 *>(row[3]);
    const f32 *yr = y.re, *yi = y.im;
    f32 ar = 0, br = 0, cr = 0, dr = 0, ai = 0, bi = 0, ci = 0, di = 0;
#pragma omp simd reduction(+ : ar, br, cr, dr, ai, bi, ci, di)
    for (int i = 0; i < n; ++i) {
        const f32 re = yr[i], im = yi[i];
        ar += a[2 * i] * re - a[2 * i + 1] * im;
        ai += a[2 * i] * im + a[2 * i + 1] * re;
        br += b[2 * i] * re - b[2 * i + 1] * im;
        bi += b[2 * i] * im + b[2 * i + 1] * re;
        cr += c[2 * i] * re - c[2 * i + 1] * im;
        ci += c[2 * i] * im + c[2 * i + 1] * re;
        dr += d[2 * i] * re - d[2 * i + 1] * im;
        di += d[2 * i] * im + d[2 * i + 1] * re;
    }
    const f32 total[8] = {ar, br, cr, dr, ai, bi, ci, di};
    for (int k = 0; k < 8; ++k)
        sum[k] += total[k];
}

VORDA_SIMD c64 hermitian_product(int n, ConstSplit a, ConstSplit b) {
    const f32 *ar = a.re, *ai = a.im, *br = b.re, *bi = b.im;
    double re = 0, im = 0;
#pragma omp simd reduction(+ : re, im)
    for (int i = 0; i < n; ++i) {
        const double x = ar[i], y = ai[i], u = br[i], v = bi[i];
        re += x * u + y * v;
        im += x * v - y * u;
    }
    return {re, im};
}

VORDA_SIMD double squared_norm(int n, ConstSplit a) {
    const f32 *ar = a.re, *ai = a.im;
    double sum = 0;
#pragma omp simd reduction(+ : sum)
    for (int i = 0; i < n; ++i) {
        const double x = ar[i], y = ai[i];
        sum += x * x + y * y;
    }
    return sum;
}

VORDA_SIMD void scale_vector(int n, c32 factor, ConstSplit a, Split out) {
    const f32 fr = factor.real(), fi = factor.imag();
    const f32 *ar = a.re, *ai = a.im;
    f32 *re = out.re, *im = out.im;
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        const f32 x = ar[i], y = ai[i];
        re[i] = fr * x - fi * y;
        im[i] = fr * y + fi * x;
    }
}

VORDA_SIMD void add_vector(int n, ConstSplit a, Split out) {
    const f32 *ar = a.re, *ai = a.im;
    f32 *re = out.re, *im = out.im;
#pragma omp simd
    for (int i = 0; i < n; ++i) {
        re[i] += ar[i];
        im[i] += ai[i];
    }
}

VORDA_SIMD f32 largest_ratio(int n, ConstSplit a, const f32 *scale) {
    const f32 *ar = a.re, *ai = a.im;
    // Numbers that are not negative have the order of their bits, a NaN comes out as the largest, and every
    // compiler turns this into vector code.
    std::uint32_t largest = 0;
#pragma omp simd reduction(max : largest)
    for (int i = 0; i < n; ++i) {
        const f32 ratio = std::sqrt(ar[i] * ar[i] + ai[i] * ai[i]) / scale[i];
        largest = std::max(largest, std::bit_cast<std::uint32_t>(ratio));
    }
    return std::bit_cast<f32>(largest);
}
