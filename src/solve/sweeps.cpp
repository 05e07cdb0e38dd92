#include "solve/sweeps.hpp"

#include "solve/sweep_kernels.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <array>
#include <omp.h>

namespace {

// Rows that are worked for all columns while four pieces of the matrix stay in the cache.
constexpr int STRIP = 512;
// Vectors that go through the kernel in one call.
constexpr int TOGETHER = 8;
// Columns that are eliminated one by one before the rest of their rows is brought up to date.
constexpr int PANEL = 48;
// Products that are worth a call of the other cores.
constexpr std::int64_t SHARED_WORK = 1 << 17;

// A vector that matrix columns are subtracted from, and their factors; rows and columns count from 0.
struct Update {
    Split v;
    ConstSplit y;
};
using Updates = std::vector<Update>;

// The rows of one strip of some vectors, close together and not a power of two apart: as they stand in memory
// they would drive each other out of the cache.
struct StripVectors {
    alignas(64) f32 value[2 * TOGETHER][STRIP + 16];
    Split v[TOGETHER];
    StripVectors() {
        for (int k = 0; k < TOGETHER; ++k)
            v[k] = {value[2 * k], value[2 * k + 1]};
    }
};

// Elements j.. of y as the factors of four columns; those of columns that are missing are 0.
void take_factors(ConstSplit y, int j, int count, f32 (&factors)[8]) {
    for (int c = 0; c < 4; ++c) {
        factors[c] = c < count ? y.re[j + c] : 0.0f;
        factors[c + 4] = c < count ? y.im[j + c] : 0.0f;
    }
}

void copy(int n, ConstSplit from, Split to) {
    std::copy_n(from.re, n, to.re);
    std::copy_n(from.im, n, to.im);
}

// v -= A(:, b0..b1-1) y for the rows lo..hi-1 of one strip.
void update_strip(const c32 *A, std::int64_t lead, int lo, int hi, int b0, int b1, const Updates &updates) {
    StripVectors strip;
    const int count = lo < hi ? static_cast<int>(updates.size()) : 0;
    for (int first = 0; first < count; first += TOGETHER) {
        const int vectors = std::min(TOGETHER, count - first);
        const Update *u = updates.data() + first;
        for (int k = 0; k < vectors; ++k)
            copy(hi - lo, behind(u[k].v, lo), strip.v[k]);
        for (int j = b0; j < b1; j += 4) {
            FourColumns columns{{}, j + 8 <= b1 ? 4 * lead : 0};
            f32 y[TOGETHER][8];
            for (int c = 0; c < 4; ++c)
                columns.column[c] = A + lo + lead * std::min(j + c, b1 - 1);
            for (int k = 0; k < vectors; ++k)
                take_factors(u[k].y, j, std::min(4, b1 - j), y[k]);
            subtract_four_columns(hi - lo, columns, vectors, y, strip.v);
        }
        for (int k = 0; k < vectors; ++k)
            copy(hi - lo, strip.v[k], behind(u[k].v, lo));
    }
}

// v -= A(:, b0..b1-1) y for all rows lo..hi-1 but those of the block itself.
void update_rows(const c32 *A, std::int64_t lead, int lo, int hi, int b0, int b1, const Updates &updates) {
    const int first = lo / STRIP;
    const int last = (hi + STRIP - 1) / STRIP;
    const bool shared =
        std::int64_t{hi - lo} * (b1 - b0) * static_cast<std::int64_t>(updates.size()) > SHARED_WORK;
#pragma omp parallel for schedule(static) if (shared)
    for (int k = first; k < last; ++k) {
        const int from = std::max(lo, k * STRIP);
        const int to = std::min(hi, (k + 1) * STRIP);
        update_strip(A, lead, from, std::min(to, b0), b0, b1, updates);
        update_strip(A, lead, std::max(from, b1), to, b0, b1, updates);
    }
}

void eliminate(const c32 *A, std::int64_t lead, int lo, int hi, int j, Split v, c32 y) {
    const f32 factor[2] = {y.real(), y.imag()};
    subtract_column(hi - lo, A + lo + lead * j, factor, behind(v, lo));
}

Updates updates_of(const std::vector<SweepColumn> &columns) {
    Updates updates;
    for (const SweepColumn &c : columns)
        updates.push_back({c.r, c.y});
    return updates;
}

// Solves with the factors of a block of order S for its part of all columns, L rows down: y from r, whose
// part becomes 0.
void solve_block(const c32 *LU, int S, const int *IPIV, int L, const std::vector<SweepColumn> &columns) {
    Updates x;
    for (const SweepColumn &c : columns) {
        const Split r = behind(c.r, L);
        const Split y = behind(c.y, L);
        std::copy_n(r.re, S, y.re);
        std::copy_n(r.im, S, y.im);
        std::fill_n(r.re, S, 0.0f);
        std::fill_n(r.im, S, 0.0f);
        for (int i = 0; i < S; ++i) {
            std::swap(y.re[i], y.re[IPIV[i] - 1]);
            std::swap(y.im[i], y.im[IPIV[i] - 1]);
        }
        x.push_back({y, y});
    }
    for (int b0 = 0; b0 < S; b0 += PANEL) {
        const int b1 = std::min(S, b0 + PANEL);
        for (const Update &u : x) {
            for (int j = b0; j < b1; ++j)
                eliminate(LU, S, j + 1, b1, j, u.v, {u.y.re[j], u.y.im[j]});
        }
        update_rows(LU, S, b1, S, b0, b1, x);
    }
    for (int b0 = (S - 1) / PANEL * PANEL; b0 >= 0; b0 -= PANEL) {
        const int b1 = std::min(S, b0 + PANEL);
        for (const Update &u : x) {
            for (int j = b1 - 1; j >= b0; --j) {
                const c32 value = c32(u.v.re[j], u.v.im[j]) / LU[j + std::int64_t{S} * j];
                u.v.re[j] = value.real();
                u.v.im[j] = value.imag();
                eliminate(LU, S, b0, j, j, u.v, value);
            }
        }
        update_rows(LU, S, 0, b0, b0, b1, x);
    }
}

// A run of matrix rows or columns of which the first n elements are worked; those that are missing
// stand for nothing.
struct Run {
    const c32 *row[RUN_ROWS];
    int n;
    int height;
};

Run run_of(View<c32, 2> buffer, int height, int n, std::int64_t shift = 0) {
    Run run{{}, n, height};
    for (int a = 0; a < RUN_ROWS; ++a)
        run.row[a] = &buffer(1, std::min(a + 1, height)) + shift;
    return run;
}

using Sums = std::vector<std::array<f32, 8>>;

// Products of the rows with y, per column.
void products(const Run &run, const std::vector<SweepColumn> &columns, Sums &sums) {
    sums.assign(columns.size(), {});
    for (int from = 0; from < run.n; from += STRIP) {
        const int count = std::min(STRIP, run.n - from);
        const c32 *row[4];
        for (int a = 0; a < 4; ++a)
            row[a] = run.row[a] + from;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            f32 sum[8];
            std::copy_n(sums[c].data(), 8, sum);
            add_four_products(count, row, behind(columns[c].y, from), sum);
            std::copy_n(sum, 8, sums[c].data());
        }
    }
}

// r -= the columns of the run times y of the rows behind the first L, per column.
void subtract_run(const Run &run, int L, const std::vector<SweepColumn> &columns) {
    const int all = static_cast<int>(columns.size());
    for (int from = 0; from < run.n; from += STRIP) {
        FourColumns four;
        for (int a = 0; a < 4; ++a)
            four.column[a] = run.row[a] + from;
        for (int first = 0; first < all; first += TOGETHER) {
            const int vectors = std::min(TOGETHER, all - first);
            f32 y[TOGETHER][8];
            Split r[TOGETHER];
            const SweepColumn *c = columns.data() + first;
            for (int k = 0; k < vectors; ++k) {
                take_factors(c[k].y, L, run.height, y[k]);
                r[k] = behind(c[k].r, from);
            }
            subtract_four_columns(std::min(STRIP, run.n - from), four, vectors, y, r);
        }
    }
}

// The rows L+1..L+height of one column among themselves, once the part before them is in `sum`.
void packed_corner(const Run &rows, const Run &cols, int L, const std::array<f32, 8> &sum,
                   const SweepColumn &c) {
    for (int a = 0; a < rows.height; ++a) {
        const std::size_t at = static_cast<std::size_t>(a);
        c32 acc(sum[at], sum[at + 4]);
        for (int i = L; i < L + a; ++i)
            acc += rows.row[a][i] * c32(c.y.re[i], c.y.im[i]);
        const int J = L + a;
        const c32 y = (c32(c.r.re[J], c.r.im[J]) - acc) * rows.row[a][J];
        c.y.re[J] = y.real();
        c.y.im[J] = y.imag();
        c.r.re[J] = c.r.im[J] = 0;
        for (int i = L; i < J; ++i) {
            const c32 part = y * cols.row[a][i];
            c.r.re[i] -= part.real();
            c.r.im[i] -= part.imag();
        }
    }
}

Status read_failed(const RecordFile &unit) {
    return MSGOUT_with(" Error reading LHS scratch file in ITRCC ", 0, unit.error());
}

Status rewind(RecordFile &unit) {
    return unit.rewind() ? Status::ok : read_failed(unit);
}

bool read_run(RecordFile &unit, View<c32, 2> buffer, int height, int n, int growth) {
    for (int a = 0; a < height; ++a) {
        const std::size_t count =
            static_cast<std::size_t>(n) + static_cast<std::size_t>(a) * static_cast<std::size_t>(growth);
        if (!unit.read({{&buffer(1, a + 1), count * sizeof(c32)}}))
            return false;
    }
    return true;
}

} // namespace

void sweep_full(const FullMatrix &matrix, const std::vector<SweepColumn> &columns) {
    const int N = matrix.N;
    const Updates updates = updates_of(columns);
    for (int b0 = 0; b0 < N; b0 += PANEL) {
        const int b1 = std::min(N, b0 + PANEL);
        for (const SweepColumn &c : columns) {
            for (int j = b0; j < b1; ++j) {
                const c32 y = c32(c.r.re[j], c.r.im[j]) / matrix.A[j + std::int64_t{N} * j];
                c.y.re[j] = y.real();
                c.y.im[j] = y.imag();
                // Above the diagonal the residual, below what is left of the right-hand side.
                eliminate(matrix.A, N, b0, b1, j, c.r, y);
                c.r.re[j] = c.r.im[j] = 0;
            }
        }
        update_rows(matrix.A, N, 0, N, b0, b1, updates);
    }
}

void sweep_full_blocks(const FullBlocks &matrix, const std::vector<SweepColumn> &columns) {
    const int N = matrix.N;
    const Updates updates = updates_of(columns);
    for (int L = 0; L < N; L += matrix.NBLKSZ) {
        const int S = std::min(matrix.NBLKSZ, N - L);
        solve_block(matrix.LU + std::int64_t{L} * matrix.NBLKSZ, S, matrix.IPIV + L, L, columns);
        update_rows(matrix.A, N, 0, N, L, L + S, updates);
    }
}

Status sweep_packed(const PackedRows &matrix, const std::vector<SweepColumn> &columns) {
    const int in_memory = std::min(matrix.NCORE, matrix.N);
    Sums sums;
    for (int L = 0; L < matrix.N;) {
        const bool stored = L < in_memory;
        const int height = std::min(RUN_ROWS, (stored ? in_memory : matrix.N) - L);
        if (!stored && !read_run(*matrix.unit, matrix.buffer, height, 2 * L + 1, 2))
            return read_failed(*matrix.unit);
        Run rows{{}, L, height}, cols{{}, L, height};
        for (int a = 0; a < RUN_ROWS; ++a) {
            const std::int64_t place = L + std::min(a, height - 1); // of the row, from 0
            rows.row[a] = stored ? matrix.AMAT + place * place : &matrix.buffer(1, place - L + 1);
            cols.row[a] = rows.row[a] + place + 1;
        }
        products(rows, columns, sums);
        for (std::size_t c = 0; c < columns.size(); ++c)
            packed_corner(rows, cols, L, sums[c], columns[c]);
        subtract_run(cols, L, columns);
        L += height;
    }
    return in_memory < matrix.N ? rewind(*matrix.unit) : Status::ok;
}

Status sweep_block_files(const BlockFiles &matrix, const std::vector<SweepColumn> &columns) {
    Sums sums;
    for (int L = 0; L < matrix.N; L += matrix.NBLKSZ) {
        const int S = std::min(matrix.NBLKSZ, matrix.N - L);
        for (int t = 0; L > 0 && t < S; t += RUN_ROWS) {
            const int height = std::min(RUN_ROWS, S - t);
            if (!read_run(*matrix.rows, matrix.buffer, height, L, 0))
                return read_failed(*matrix.rows);
            products(run_of(matrix.buffer, height, L), columns, sums);
            for (std::size_t c = 0; c < columns.size(); ++c) {
                for (int a = 0; a < height; ++a) {
                    columns[c].r.re[L + t + a] -= sums[c][static_cast<std::size_t>(a)];
                    columns[c].r.im[L + t + a] -= sums[c][static_cast<std::size_t>(a) + 4];
                }
            }
        }
        if (!matrix.blocks->read(
                {{matrix.AMAT, static_cast<std::size_t>(S) * static_cast<std::size_t>(S) * sizeof(c32)}}))
            return read_failed(*matrix.blocks);
        solve_block(matrix.AMAT, S, matrix.IPIV + L, L, columns);
        for (int t = 0; L > 0 && t < S; t += RUN_ROWS) {
            const int height = std::min(RUN_ROWS, S - t);
            if (!read_run(*matrix.columns, matrix.buffer, height, L, 0))
                return read_failed(*matrix.columns);
            subtract_run(run_of(matrix.buffer, height, L), L + t, columns);
        }
    }
    for (RecordFile *unit : {matrix.rows, matrix.columns, matrix.blocks}) {
        if (failed(rewind(*unit)))
            return Status::failed;
    }
    return Status::ok;
}
