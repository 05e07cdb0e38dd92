#include "assembly/wavegr.hpp"

#include "assembly/right_hand_sides.hpp"
#include "assembly/tiles.hpp"
#include "rankine/rankin.hpp"
#include "run/messages.hpp"
#include "run/symmetry.hpp"

#include <algorithm>
#include <vector>

namespace {

constexpr std::int64_t SUMS_LIMIT = 64ll << 20; // bytes that all BlockSums of a call may take

// The rows of a tile and the column of the row at work, one set per class, in split form.
struct TileRows {
    Array<f32, 4> values; // (NEQN, real or imaginary, TILE + 1, NSYMR): the last is the column
    Array<f32, 3> source; // (NEQN, 4, NSYMR): SROW and SCOL of the row at work
    Array<f32, 3> rankine_source; // (NEQN, TILE, NSYMR): Rankine part of SROW, ISCATT=1
    [[nodiscard]] bool alloc(int NEQN, int NSYMR, bool keep_source) {
        return values.alloc(NEQN, 2, TILE + 1, NSYMR) && source.alloc(NEQN, 4, NSYMR) &&
               (!keep_source || rankine_source.alloc(NEQN, TILE, NSYMR));
    }
    Split row(int a, int s) { return {&values(1, 1, a + 1, s), &values(1, 2, a + 1, s)}; }
    Split column(int s) { return row(TILE, s); }
    Split source_row(int s) { return {&source(1, 1, s), &source(1, 2, s)}; }
    Split source_column(int s) { return {&source(1, 3, s), &source(1, 4, s)}; }
};

// What one assembling thread works with.
struct Workspace {
    WaveRow row;
    TileRows tile;
    Array<int, 1> code;
    [[nodiscard]] bool alloc(const RunState &run) {
        const int n = run.mesh.NEQN;
        return row.alloc(n, run.sym.NSYMG, run.opt) && tile.alloc(n, run.sym.NSYMR, run.opt.ISCATT == 1) && code.alloc(n);
    }
};

// The call's data that all blocks read.
struct Frame {
    const RunState &run;
    const PeriodWave &wave;
    const PanelArrays &panels;
    const SourceWeights &weights;
};

// Rows first..last of class s of a Rankine matrix, both planes together.
void load_rankine_rows(const Frame &f, const Array<f32, 4> &matrix, int first, int last, int s, f32 *const *rows) {
    const f32 *plane1 = f.run.opt.ILOG == 1 ? &matrix(first, 1, s, 1) : nullptr;
    load_tile(last - first + 1, last, &matrix(first, 1, s, 0), plane1, f.wave.NUL, f.run.mesh.NEQN, rows);
}

// Adds the first I-1 elements of column I of class s of a Rankine matrix.
void add_rankine_column(const Frame &f, const Array<f32, 4> &matrix, int I, int s, f32 *column) {
    if (I == 1)
        return;
    for (int plane = 0; plane <= f.run.opt.ILOG; ++plane) {
        const f32 factor = plane == 0 ? 1.0f : f.wave.NUL;
        const f32 *from = &matrix(1, I, s, plane);
        for (int j = 0; j < I - 1; ++j)
            column[j] += factor * from[j];
    }
}

// Starts the rows first..last of a tile from the Rankine store.
void start_rows(const Frame &f, int first, int last, TileRows &tile) {
    f32 *rows[TILE];
    for (int s = 1; s <= f.run.sym.NSYMR; ++s) {
        for (int a = 0; a <= last - first; ++a) {
            rows[a] = tile.row(a, s).re;
            std::fill_n(tile.row(a, s).im, last, 0.0f);
        }
        load_rankine_rows(f, f.run.store.RKDM, first, last, s, rows);
        if (f.run.opt.ISCATT != 1)
            continue;
        for (int a = 0; a <= last - first; ++a)
            rows[a] = &tile.rankine_source(1, a + 1, s);
        load_rankine_rows(f, f.run.store.RKSM, first, last, s, rows);
    }
}

void start_column(const Frame &f, int I, TileRows &tile) {
    for (int s = 1; s <= f.run.sym.NSYMR; ++s) {
        const Split column = tile.column(s);
        std::fill_n(column.re, I, 0.0f);
        std::fill_n(column.im, I, 0.0f);
        add_rankine_column(f, f.run.store.RKDM, I, s, column.re);
    }
}

// Separates the free-surface mark from the pair codes. For pairs in the free surface the store holds the source
// integral; the free-surface condition turns it into the coefficient of the potential.
void free_surface_pairs(const Frame &f, int I, int a, Workspace &w) {
    const RunState &run = f.run;
    const int *stored = &run.store.ICODM(1, I);
    const f32 mark = f.panels.IFSP(I);
    for (int j = 0; j < I; ++j) {
        const bool surface = stored[j] >= CODE_SURFACE;
        w.code.data()[j] = stored[j] & (CODE_SURFACE - 1);
        w.row.EB.data()[j] = surface ? 0.0f : 1.0f;
        w.row.EFR.data()[j] = surface ? f.panels.IFSP.data()[j] : 0.0f;
        w.row.EFC.data()[j] = surface ? mark : 0.0f;
    }
    for (int j = 0; j < I; ++j) {
        if (stored[j] < CODE_SURFACE)
            continue;
        for (int s = 1; s <= run.sym.NSYMR; ++s) {
            f32 &coefficient = w.tile.row(a, s).re[j];
            coefficient *= -f.wave.NUL;
            if (j + 1 == I)
                coefficient -= PI4 * mark;
            else
                w.tile.column(s).re[j] *= -f.wave.NUL;
        }
    }
}

// Folds the images of row I into class s and takes its share of the right-hand sides.
void class_sums(const Frame &f, int I, int a, int s, Workspace &w, BlockSums &sums) {
    const Symmetry &sym = f.run.sym;
    const Split DROW = w.tile.row(a, s);
    const Split DCOL = w.tile.column(s);
    const Split SROW = w.tile.source_row(s);
    const Split SCOL = w.tile.source_column(s);
    for (const Split &source : {SROW, SCOL}) {
        std::fill_n(source.re, I, 0.0f);
        std::fill_n(source.im, I, 0.0f);
    }
    for (int m = 0; m < sym.NSYMG; ++m) {
        const f32 sign = static_cast<f32>(SGN[sym.ICLS[s]][sym.ISYMG[m + 1]]);
        const std::int64_t o = static_cast<std::int64_t>(m) * I;
        const auto image = [o](const Split &v) { return ConstSplit(v.re + o, v.im + o); };
        add_signed(I, sign, image(w.row.DPR), DROW);
        add_signed(I - 1, sign, image(w.row.DPC), DCOL);
        add_signed(I, sign, image(w.row.SPR), SROW);
        add_signed(I - 1, sign, image(w.row.SPC), SCOL);
    }
    // The Rankine share of the radiation right-hand sides comes ready-made; diffraction needs the whole source row.
    if (f.weights.radiation)
        add_radiation(f.run, f.weights, I, s, SROW, SCOL, sums);
    if (f.weights.diffraction) {
        const f32 *rankine = &w.tile.rankine_source(1, a + 1, s);
        for (int j = 0; j < I; ++j)
            SROW.re[j] += rankine[j];
        add_rankine_column(f, f.run.store.RKSM, I, s, SCOL.re);
        add_diffraction(f.run, f.weights, I, s, SROW, SCOL, sums);
    }
}

// Rows first..last, at most TILE of them.
Status assemble_tile(const Frame &f, int first, int last, Workspace &w, BlockSums &sums, ThreadState &thread) {
    const std::int64_t n = f.run.mesh.NEQN;
    const int classes = f.run.sym.NSYMR;
    start_rows(f, first, last, w.tile);
    for (int I = first; I <= last; ++I) {
        start_column(f, I, w.tile);
        free_surface_pairs(f, I, I - first, w);
        if (failed(wave_coefficients(f.run, f.panels, f.wave, thread.gstate, I, w.code.data(), w.row)))
            return Status::failed;
        for (int s = 1; s <= classes; ++s) {
            class_sums(f, I, I - first, s, w, sums);
            store_column(I - 1, w.tile.column(s), &thread.ACORE(1, I, s));
        }
    }
    for (int s = 1; s <= classes; ++s) {
        Split rows[TILE];
        for (int a = 0; a <= last - first; ++a)
            rows[a] = w.tile.row(a, s);
        // Up to the first row's diagonal all rows reach; behind it each only to its own.
        store_tile(last - first + 1, first, rows, &thread.ACORE(first, 1, s), n);
        for (int I = first + 1; I <= last; ++I) {
            for (int J = first + 1; J <= I; ++J)
                thread.ACORE(I, J, s) = {rows[I - first].re[J - 1], rows[I - first].im[J - 1]};
        }
    }
    return Status::ok;
}

// Rows of a block: as many as keep the sums of all blocks within their limit.
int block_rows(const RunState &run) {
    const std::int64_t n = run.mesh.NEQN;
    const std::int64_t headings = run.opt.ISCATT == 1 ? run.periods.NBETAM * run.sym.NSYMR : 0;
    const std::int64_t bytes = std::max<std::int64_t>(1, 8 * n * (run.sym.NSYMD + headings));
    const std::int64_t blocks = std::clamp<std::int64_t>(SUMS_LIMIT / bytes, 4, 64);
    const std::int64_t rows = (n + blocks - 1) / blocks;
    return static_cast<int>((rows + TILE - 1) / TILE * TILE);
}

// The rows of a call, block by block. Failed: memory is refused, or a row has no value.
Status assemble_rows(const Frame &f, ThreadState &thread) {
    const char *const no_memory = " RAM too small to allocate WAVEGR arrays ";
    const int n = f.run.mesh.NEQN;
    const int rows = block_rows(f.run);
    const int blocks = (n + rows - 1) / rows;
    std::vector<BlockSums> sums(static_cast<std::size_t>(blocks));
    for (BlockSums &block : sums) {
        if (!block.alloc(n, f.run))
            return MSGOUT(no_memory);
    }
    bool memory = true;
    bool values = true;
#pragma omp parallel
    {
        Workspace w;
        const bool made = w.alloc(f.run);
#pragma omp critical(wavegr_memory)
        memory = memory && made;
#pragma omp barrier
        // The last blocks have the longest rows: first, so that the cores end together.
#pragma omp for schedule(dynamic, 1) reduction(&& : values)
        for (int k = 0; k < blocks; ++k) {
            const int b = blocks - 1 - k;
            const int end = std::min(n, (b + 1) * rows);
            for (int first = b * rows + 1; memory && values && first <= end; first += TILE)
                values = !failed(assemble_tile(f, first, std::min(first + TILE - 1, end), w,
                                               sums[static_cast<std::size_t>(b)], thread));
        }
    }
    if (!memory)
        return MSGOUT(no_memory);
    if (!values)
        return Status::failed;
    for (int b = 0; b < blocks; ++b)
        add_block(f.run, f.weights, sums[static_cast<std::size_t>(b)], std::min(n, (b + 1) * rows), thread);
    return Status::ok;
}

} // namespace

Status WAVEGR(const RunState &run, const PeriodWave &wave, ThreadState &thread) {
    PanelArrays panels;
    SourceWeights weights;
    if (!panels.make(run.mesh, run.opt.IQUAD == 1) || !weights.make(run, thread))
        return MSGOUT(" RAM too small to allocate WAVEGR arrays ");
    start_right_hand_sides(run, wave.NUL, thread);
    return assemble_rows({run, wave, panels, weights}, thread);
}
