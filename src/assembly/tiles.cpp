#include "assembly/tiles.hpp"

#include "base/simd.hpp"

namespace {

constexpr int AHEAD = 32; // columns: no prefetcher follows steps of a whole column
constexpr int RUN = 16;   // columns that are turned around together, in registers or the first cache

// With a height that is known a piece of a column is a few registers.
[[gnu::always_inline]] inline void store_run(int height, int count, const Split *rows, int first, c32 *matrix,
                                             std::int64_t lead) {
    f32 turned[RUN][2 * TILE];
    for (int a = 0; a < height; ++a) {
        const f32 *re = rows[a].re + first;
        const f32 *im = rows[a].im + first;
        for (int j = 0; j < count; ++j) {
            turned[j][2 * a] = re[j];
            turned[j][2 * a + 1] = im[j];
        }
    }
    for (int j = 0; j < count; ++j) {
        f32 *to = reinterpret_cast<f32 *>(matrix + lead * (first + j));
        for (int a = 0; a < 2 * height; ++a)
            to[a] = turned[j][a]; // NOLINT: its rows are set above
    }
}

} // namespace

VORDA_SIMD void load_tile(int height, int count, const int *columns, const f32 *plane0, const f32 *plane1,
                          f32 factor, std::int64_t lead, f32 *const *rows) {
    for (int k = 0; k < count; ++k) {
        const int j = columns[k], later = columns[k + AHEAD < count ? k + AHEAD : count - 1];
        const f32 *from = plane0 + lead * j;
        __builtin_prefetch(plane0 + lead * later);
        if (plane1 != nullptr)
            __builtin_prefetch(plane1 + lead * later);
        f32 value[TILE] = {};
        for (int a = 0; a < height; ++a)
            value[a] = from[a];
        if (plane1 != nullptr) {
            const f32 *second = plane1 + lead * j;
            for (int a = 0; a < height; ++a)
                value[a] += factor * second[a];
        }
        for (int a = 0; a < height; ++a)
            rows[a][j] = value[a];
    }
}

VORDA_SIMD void store_tile(int height, int columns, const Split *rows, c32 *matrix, std::int64_t lead) {
    int first = 0;
    for (; height == TILE && first + RUN <= columns; first += RUN) {
        for (int j = first + AHEAD; j < first + AHEAD + RUN && j < columns; ++j) {
            const c32 *piece = matrix + lead * j;
            __builtin_prefetch(piece, 1);
            __builtin_prefetch(piece + TILE / 2, 1);
        }
        store_run(TILE, RUN, rows, first, matrix, lead);
    }
    for (; first < columns; first += RUN)
        store_run(height, columns - first < RUN ? columns - first : RUN, rows, first, matrix, lead);
}

VORDA_SIMD void store_column(int n, ConstSplit value, c32 *column) {
    f32 *to = reinterpret_cast<f32 *>(column);
    const f32 *re = value.re, *im = value.im;
    for (int j = 0; j < n; ++j) {
        to[2 * j] = re[j];
        to[2 * j + 1] = im[j];
    }
}
