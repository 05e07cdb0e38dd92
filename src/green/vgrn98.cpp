// Sorting of the points by method, and the way of a block: gather, evaluate, scatter.
#include "green/vgrn98.hpp"

#include "green/green_block.hpp"

#include <cassert>

namespace {

// Methods of deep water, by what a block of them needs, m = row of FTAB:
//   m            GINFL (m <= 40) or GINFS, then ADDDIR: ISNG 0, 1, 2
//   LOGARITHM+m  the same, then ADDLOG: ISNG 3, but for the next
//   TAKEN_OUT+m  GINFG: ISNG 3, X <= 3, Y < 4, so rows 41 to 44
constexpr int LOGARITHM = FTAB_ROWS, TAKEN_OUT = 2 * FTAB_ROWS - 40, DEEP_METHODS = TAKEN_OUT + 44;

// The method of a point. Comparisons are written so that a NaN also ends in a valid row.
[[gnu::always_inline]] inline int deep_method(f32 R, f32 Y, int ISNG) {
    const f32 y = Y > 0 ? Y : 0.0f, s = 16 / (Y > 4 ? Y : 4.0f), w = 15 / (R > 3 ? R : 3.0f);
    const int shallow = static_cast<int>(y < 3 ? y : 3.0f) + 1;
    const int deep = 8 - static_cast<int>(s < 3 ? s : 3.0f);
    const int band = Y >= 4 ? deep : shallow;
    const int step = static_cast<int>(w < 4 ? w : 4.0f);
    const int row = R > 3 ? 5 * band - step : 40 + band;
    const int kind = row > 40 && band <= 4 ? TAKEN_OUT : LOGARITHM;
    return row + (ISNG >= 3 ? kind : 0);
}

VORDA_SIMD void sort_keys(int n, const f32 *R, const f32 *Z, const f32 *ZETA, const int *ISNG, int *method) {
#pragma omp simd
    for (int i = 0; i < n; ++i)
        method[i] = deep_method(R[i], Z[i] + ZETA[i], ISNG[i]);
}

void set_lane(GreenBlock &block, int lane, f32 R, f32 Z, f32 ZETA, int ISNG) {
    block.X[lane] = R;
    block.Y[lane] = Z + ZETA;
    block.D[lane] = Z - ZETA;
    block.ISNG[lane] = ISNG;
}

// The region kernel stores, then the singular terms are added.
void evaluate_deep(int method, GreenOrder order, GreenBlock &block) {
    if (method > TAKEN_OUT + 40) {
        GINFG(method - TAKEN_OUT, order, block);
        return;
    }
    const bool logarithm = method > LOGARITHM;
    const int row = logarithm ? method - LOGARITHM : method;
    if (row > 40)
        GINFS(row, order, block);
    else
        GINFL(row, order, block);
    if (logarithm)
        ADDLOG(order, block);
    else
        ADDDIR(order, block);
}

void scatter(const GreenBlock &block, const int *list, int count, GreenOrder order,
             const GreenArrays &result) {
    constexpr GreenValue FIRST[4] = {G_, G_R, G_Z, G_ZETA};
    const int values = order == GreenOrder::first ? 4 : GREEN_VALUES;
    for (int j = 0; j < values; ++j) {
        const int value = order == GreenOrder::first ? FIRST[j] : j;
        f32 *re = result.re[value], *im = result.im[value];
        for (int k = 0; k < count; ++k) {
            re[list[k]] = block.re[value][k];
            im[list[k]] = block.im[value][k];
        }
    }
}

} // namespace

bool GreenWork::alloc(int n) {
    return method.alloc(n) && sorted.alloc(n);
}

void VGRN98(const GreenPoints &points, [[maybe_unused]] f32 H, const GSTATE &, GreenOrder order,
            GreenWork &work, const GreenArrays &result) {
    assert(H <= 0);
    const int n = points.n;
    if (n < 1)
        return;
    assert(work.sorted.size() >= n);
    int *method = work.method.data(), *sorted = work.sorted.data();
    sort_keys(n, points.R, points.Z, points.ZETA, points.ISNG, method);
    int first[DEEP_METHODS + 2] = {}; // of each method in `sorted`, then where the next one goes
    for (int i = 0; i < n; ++i)
        ++first[method[i] + 1];
    for (int m = 1; m <= DEEP_METHODS + 1; ++m)
        first[m] += first[m - 1];
    for (int i = 0; i < n; ++i)
        sorted[first[method[i]]++] = i;

    GreenBlock block;
    for (int m = 1; m <= DEEP_METHODS; ++m) {
        for (int begin = first[m - 1], end = first[m]; begin < end; begin += GREEN_LANES) {
            const int count = end - begin < GREEN_LANES ? end - begin : GREEN_LANES;
            for (int k = 0; k < GREEN_LANES; ++k) {
                const int i = sorted[begin + (k < count ? k : count - 1)];
                set_lane(block, k, points.R[i], points.Z[i], points.ZETA[i], points.ISNG[i]);
            }
            evaluate_deep(m, order, block);
            scatter(block, sorted + begin, count, order, result);
        }
    }
}

void VGRN1P(f32 R, f32 Z, f32 ZETA, [[maybe_unused]] f32 H, const GSTATE &, int ISNG,
            [[maybe_unused]] int IBOT, f32 (&record)[16]) {
    assert(H <= 0);
    GreenBlock block;
    for (int k = 0; k < GREEN_LANES; ++k)
        set_lane(block, k, R, Z, ZETA, ISNG);
    evaluate_deep(deep_method(R, Z + ZETA, ISNG), GreenOrder::second, block);
    for (int j = 0; j < GREEN_VALUES; ++j) {
        record[2 * j] = block.re[j][0];
        record[2 * j + 1] = block.im[j][0];
    }
}
