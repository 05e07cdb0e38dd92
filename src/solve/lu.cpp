#include "solve/lu.hpp"

#include "base/lapack.hpp"

#include <algorithm>
#include <omp.h>

namespace {

// Columns of a strip: eight strips keep two cores busy to the end, and narrower ones cost more packing. The
// order alone decides, so that a result does not depend on the number of cores.
int strip_width(int n) {
    constexpr int LEAST = 192, MOST = 512, STEP = 64;
    return std::clamp((n / 8 + STEP - 1) / STEP * STEP, LEAST, MOST);
}

struct Factors {
    c32 *a;
    int n;
    int *ipiv; // while at work: pivots counted from the first row of their strip
    int strip; // its columns
    c32 *at(int row, int column) const { return a + row + static_cast<std::int64_t>(column) * n; }
    int width(int first) const { return std::min(strip, n - first); }
};

void factor_strip(const Factors &f, int k, int &singular_at) {
    const int width = f.width(k);
    const int rows = f.n - k;
    int info = 0;
    cgetrf_(&rows, &width, f.at(k, k), &f.n, f.ipiv + k, &info);
    if (info != 0 && singular_at == 0)
        singular_at = info + k;
}

void swap_rows(const Factors &f, int k, int j) {
    const int width = f.width(j);
    const int last = f.width(k);
    const int one = 1;
    claswp_(&width, f.at(k, j), &f.n, &one, &last, f.ipiv + k, &one);
}

// Brings strip j up to date with the factored strip k on its left.
void update_strip(const Factors &f, int k, int j) {
    const int inner = f.width(k);
    const int width = f.width(j);
    const int below = f.n - k - inner;
    const c32 one = 1;
    const c32 minus_one = -1;
    swap_rows(f, k, j);
    ctrsm_("L", "L", "N", "U", &inner, &width, &one, f.at(k, k), &f.n, f.at(k, j), &f.n, 1, 1, 1, 1);
    if (below > 0)
        cgemm_("N", "N", &below, &width, &inner, &minus_one, f.at(k + inner, k), &f.n, f.at(k, j), &f.n, &one,
               f.at(k + inner, j), &f.n, 1, 1);
}

void finish_strip(const Factors &f, int j) {
    for (int k = j + f.strip; k < f.n; k += f.strip)
        swap_rows(f, k, j);
}

// The strips behind strip k are shared out; whoever has the next one factors it, too, while the others go on.
void factor_all(const Factors &f, int &singular_at) {
    const int strips = (f.n + f.strip - 1) / f.strip;
    const bool share = omp_get_max_threads() > 1 && strips > 1;
    {
        const SerialBlas serial;
        factor_strip(f, 0, singular_at);
    }
    for (int k = 0; k < strips; ++k) {
#pragma omp parallel for schedule(dynamic, 1) if (share)
        for (int j = k + 1; j < strips; ++j) {
            const SerialBlas serial;
            update_strip(f, k * f.strip, j * f.strip);
            if (j == k + 1)
                factor_strip(f, j * f.strip, singular_at);
        }
    }
#pragma omp parallel for schedule(dynamic, 1) if (share)
    for (int j = 0; j < strips; ++j) {
        const SerialBlas serial;
        finish_strip(f, j * f.strip);
    }
}

} // namespace

Status LUFACT(View<c32, 2> A, int *IPIV, int n) {
    const Factors f{A.data(), n, IPIV, strip_width(n)};
    int singular_at = 0;
    if (n > 0)
        factor_all(f, singular_at);
    for (int i = 0; i < n; ++i)
        IPIV[i] += i / f.strip * f.strip;
    return singular_at == 0 ? Status::ok : Status::failed;
}
