#include "assembly/tile_rows.hpp"

#include <algorithm>
#include <bit>

namespace {

// A Rankine matrix of the store, with the third index of its class s.
struct StoredPlane {
    View<const f32, 4> matrix;
    int third;
};
StoredPlane stored_plane(const RankineStore &store, int plane, int s) {
    if (plane == PLANE_D)
        return {store.RKDM, s};
    if (plane == PLANE_E)
        return {store.RKNM, s};
    return {store.RKVM, 3 * (s - 1) + plane - PLANE_V + 1};
}

// The columns J = 1..last in which the rows from `first` on, one piece of a column, hold something.
int find_columns(const RankineStore &store, int first, int last, int *columns) {
    const int piece = (first - 1) / NEAR_ROWS;
    const std::uint16_t *words = &store.near_rows(1, piece / 16 + 1);
    int count = 0;
    for (int j = 0; j < last; ++j) {
        columns[count] = j;
        count += words[j] >> (piece % 16) & 1;
    }
    return count;
}

// Rows first..last of a Rankine matrix, its levels together, with what `count` columns hold.
void load_rows(const RunState &run, f32 NUL, const StoredPlane &p, int first, int last, TileRows &tile,
               int count, f32 *const *rows) {
    for (int a = 0; a <= last - first; ++a)
        std::fill_n(rows[a], last, 0.0f);
    const f32 *logarithm = run.opt.ILOG == 1 ? &p.matrix(first, 1, p.third, 1) : nullptr;
    load_tile(last - first + 1, count, tile.columns.data(), &p.matrix(first, 1, p.third, 0), logarithm, NUL,
              run.mesh.NEQN, rows);
}

// The first I-1 elements of column I of a Rankine matrix, its levels together.
void load_column(const RunState &run, f32 NUL, const StoredPlane &p, int I, f32 *column) {
    std::fill_n(column, I - 1, 0.0f);
    const f32 *from = &p.matrix(1, I, p.third, 0);
    const f32 *logarithm = run.opt.ILOG == 1 ? &p.matrix(1, I, p.third, 1) : nullptr;
    for (int g = 0; g * NEAR_GROUP < I - 1; ++g) {
        for (unsigned word = run.store.near_rows(I, g + 1); word != 0; word &= word - 1) {
            const int first = g * NEAR_GROUP + std::countr_zero(word) * NEAR_ROWS;
            const int last = std::min(first + NEAR_ROWS, I - 1);
            for (int j = first; j < last; ++j)
                column[j] = from[j] + (logarithm != nullptr ? NUL * logarithm[j] : 0.0f);
        }
    }
}

c32 *matrix_column(ThreadState &thread, int plane, int I, int J, int s) {
    if (plane == PLANE_D)
        return &thread.ACORE(I, J, s);
    if (plane == PLANE_E)
        return &thread.ECORE(I, J, s);
    return &thread.VCORE(I, J, 3 * (s - 1) + plane - PLANE_V + 1);
}

} // namespace

bool TileRows::alloc(int NEQN, int NSYMR, const Options &opt, bool columns_of_their_own) {
    planes = opt.ISOR == 1 ? 5 : 1;
    own_columns = columns_of_their_own;
    keep_source = keeps_source(opt);
    const int lines = TILE + (own_columns ? TILE : 1);
    return columns.alloc(NEQN) && values_.alloc(NEQN, 2, lines, planes * NSYMR) &&
           (!keep_source || source_.alloc(NEQN, lines, NSYMR));
}

void start_rows(const RunState &run, f32 NUL, int first, int last, TileRows &tile) {
    f32 *rows[TILE];
    const int count = find_columns(run.store, first, last, tile.columns.data());
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        for (int plane = 0; plane < tile.planes; ++plane) {
            for (int a = 0; a <= last - first; ++a) {
                rows[a] = tile.row(a, s, plane).re;
                std::fill_n(tile.row(a, s, plane).im, last, 0.0f);
            }
            load_rows(run, NUL, stored_plane(run.store, plane, s), first, last, tile, count, rows);
        }
        if (!tile.keep_source)
            continue;
        for (int a = 0; a <= last - first; ++a)
            rows[a] = tile.source_row(a, s);
        load_rows(run, NUL, {run.store.RKSM, s}, first, last, tile, count, rows);
    }
}

void start_column(const RunState &run, f32 NUL, int I, int a, TileRows &tile) {
    if (I == 1)
        return;
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        for (int plane = 0; plane < tile.planes; ++plane) {
            load_column(run, NUL, stored_plane(run.store, plane, s), I, tile.column(a, s, plane).re);
            std::fill_n(tile.column(a, s, plane).im, I - 1, 0.0f);
        }
        if (tile.keep_source)
            load_column(run, NUL, {run.store.RKSM, s}, I, tile.source_column(a, s));
    }
}

void store_column_of(int NSYMR, int I, int a, TileRows &tile, ThreadState &thread) {
    for (int s = 1; s <= NSYMR; ++s) {
        for (int plane = 0; plane < tile.planes; ++plane)
            store_column(I - 1, tile.column(a, s, plane), matrix_column(thread, plane, 1, I, s));
    }
}

void store_rows(int NSYMR, int first, int last, TileRows &tile, ThreadState &thread) {
    const std::int64_t n = thread.ACORE.dim(1);
    for (int s = 1; s <= NSYMR; ++s) {
        for (int plane = 0; plane < tile.planes; ++plane) {
            Split rows[TILE];
            for (int a = 0; a <= last - first; ++a)
                rows[a] = tile.row(a, s, plane);
            // Up to the first row's diagonal all rows reach; behind it each only to its own.
            store_tile(last - first + 1, first, rows, matrix_column(thread, plane, first, 1, s), n);
            for (int I = first + 1; I <= last; ++I) {
                for (int J = first + 1; J <= I; ++J)
                    *matrix_column(thread, plane, I, J, s) = {rows[I - first].re[J - 1],
                                                              rows[I - first].im[J - 1]};
            }
        }
    }
}
