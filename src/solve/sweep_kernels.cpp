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

namespace {

constexpr int RUN = 16;     // rows between calls for what is `ahead`
constexpr int AHEAD_OF = 4; // vectors from which on the memory would wait for the products

// VECTORS vectors side by side, so that the matrix is read and parted once for all of them.
template <int VECTORS>
[[gnu::always_inline]] inline void subtract_four(int n, const FourColumns &columns, const f32 (*y)[8],
                                                 const Split *v) {
    const f32 *a = reinterpret_cast<const f32 *>(columns.column[0]),
              *b = reinterpret_cast<const f32 *>(columns.column[1]);
    const f32 *c = reinterpret_cast<const f32 *>(columns.column[2]),
              *d = reinterpret_cast<const f32 *>(columns.column[3]);
    f32 *vr[VECTORS], *vi[VECTORS];
    f32 yr[VECTORS][4], yi[VECTORS][4];
    for (int k = 0; k < VECTORS; ++k) {
        vr[k] = v[k].re;
        vi[k] = v[k].im;
        for (int j = 0; j < 4; ++j) {
            yr[k][j] = y[k][j];
            yi[k][j] = y[k][j + 4];
        }
    }
    const auto rows = [&](int first, int end) __attribute__((always_inline)) {
#pragma omp simd
        for (int i = first; i < end; ++i) {
            const f32 ar = a[2 * i], ai = a[2 * i + 1], br = b[2 * i], bi = b[2 * i + 1];
            const f32 cr = c[2 * i], ci = c[2 * i + 1], dr = d[2 * i], di = d[2 * i + 1];
#pragma GCC unroll 8
            for (int k = 0; k < VECTORS; ++k) {
                f32 re = vr[k][i], im = vi[k][i];
                re = re - yr[k][0] * ar + yi[k][0] * ai;
                im = im - yr[k][0] * ai - yi[k][0] * ar;
                re = re - yr[k][1] * br + yi[k][1] * bi;
                im = im - yr[k][1] * bi - yi[k][1] * br;
                re = re - yr[k][2] * cr + yi[k][2] * ci;
                im = im - yr[k][2] * ci - yi[k][2] * cr;
                re = re - yr[k][3] * dr + yi[k][3] * di;
                im = im - yr[k][3] * di - yi[k][3] * dr;
                vr[k][i] = re;
                vi[k][i] = im;
            }
        }
    };
    int i = 0;
    for (; VECTORS >= AHEAD_OF && i + RUN <= n; i += RUN) {
        for (const f32 *from : {a, b, c, d})
            for (int line = 0; line < 2 * RUN; line += 16)
                __builtin_prefetch(from + 2 * (columns.ahead + i) + line);
        rows(i, i + RUN);
    }
    if (i < n)
        rows(i, n);
}

} // namespace

VORDA_SIMD void subtract_four_columns(int n, const FourColumns &columns, int vectors, const f32 (*y)[8],
                                      const Split *v) {
    switch (vectors) {
    case 1:
        return subtract_four<1>(n, columns, y, v);
    case 2:
        return subtract_four<2>(n, columns, y, v);
    case 3:
        return subtract_four<3>(n, columns, y, v);
    case 4:
        return subtract_four<4>(n, columns, y, v);
    case 5:
        return subtract_four<5>(n, columns, y, v);
    case 6:
        return subtract_four<6>(n, columns, y, v);
    case 7:
        return subtract_four<7>(n, columns, y, v);
    default:
        return subtract_four<8>(n, columns, y, v);
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
