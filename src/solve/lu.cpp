#include "solve/lu.hpp"

#include "base/lapack.hpp"

#include <algorithm>
#include <omp.h>
#include <vector>

namespace {

constexpr int STRIP = 192; // as fast as one call of CGETRF here; narrower strips cost more packing

struct Factors {
    c32 *a;
    int n;
    int *ipiv; // while at work: pivots counted from the first row of their strip
    c32 *at(int row, int column) const { return a + row + static_cast<std::int64_t>(column) * n; }
    int width(int first) const { return std::min(STRIP, n - first); }
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
    for (int k = j + STRIP; k < f.n; k += STRIP)
        swap_rows(f, k, j);
}

void factor_serial(const Factors &f, int &singular_at) {
    const SerialBlas serial;
    for (int k = 0; k < f.n; k += STRIP) {
        factor_strip(f, k, singular_at);
        for (int j = k + STRIP; j < f.n; j += STRIP)
            update_strip(f, k, j);
    }
    for (int j = 0; j < f.n; j += STRIP)
        finish_strip(f, j);
}

void factor_parallel(const Factors &f, int &singular_at) {
    std::vector<char> marks(static_cast<std::size_t>(f.n / STRIP + 1));
    [[maybe_unused]] char *strip = marks.data(); // only their addresses serve, as names of the strips
#pragma omp parallel
#pragma omp single
    {
        for (int k = 0; k < f.n; k += STRIP) {
#pragma omp task depend(inout : strip[k / STRIP]) shared(singular_at)
            factor_strip(f, k, singular_at);
            for (int j = k + STRIP; j < f.n; j += STRIP) {
#pragma omp task depend(in : strip[k / STRIP]) depend(inout : strip[j / STRIP])
                update_strip(f, k, j);
            }
        }
#pragma omp taskwait
        for (int j = 0; j < f.n; j += STRIP) {
#pragma omp task
            finish_strip(f, j);
        }
    }
}

} // namespace

Status LUFACT(View<c32, 2> A, int *IPIV, int n) {
    const Factors f{A.data(), n, IPIV};
    int singular_at = 0;
    if (omp_in_parallel() || omp_get_max_threads() == 1 || n <= STRIP)
        factor_serial(f, singular_at);
    else
        factor_parallel(f, singular_at);
    for (int i = 0; i < n; ++i)
        IPIV[i] += i / STRIP * STRIP;
    return singular_at == 0 ? Status::ok : Status::failed;
}
