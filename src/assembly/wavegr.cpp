#include "assembly/wavegr.hpp"

#include "assembly/class_sums.hpp"
#include "run/messages.hpp"

#include <algorithm>
#include <vector>

namespace {

constexpr std::int64_t SUMS_LIMIT = 64ll << 20; // bytes that all BlockSums of a call may take

// What one assembling thread works with.
struct Workspace {
    WaveRow row;
    TileRows tile;
    ClassWork sums;
    Array<int, 1> code;
    [[nodiscard]] bool alloc(const RunState &run) {
        const int n = run.mesh.NEQN;
        return row.alloc(n, run.sym.NSYMG, run.opt) && tile.alloc(n, run.sym.NSYMR, run.opt, false) &&
               sums.alloc(n, run.opt.ISOR == 1) && code.alloc(n);
    }
};

// Rows first..last, at most TILE of them.
Status assemble_tile(const AssemblyFrame &f, int first, int last, Workspace &w, BlockSums &sums, ThreadState &thread) {
    start_rows(f.run, f.wave.NUL, first, last, w.tile);
    for (int I = first; I <= last; ++I) {
        const int a = I - first;
        start_column(f.run, f.wave.NUL, I, a, w.tile);
        free_surface_pairs(f, I, a, &f.run.store.ICODM(1, I), w.code.data(), w.row, w.tile);
        if (failed(wave_coefficients(f.run, f.panels, f.wave, thread.gstate, I, w.code.data(), w.row)))
            return Status::failed;
        for (int s = 1; s <= f.run.sym.NSYMR; ++s)
            class_sums(f, I, a, s, w.row, w.sums, w.tile, sums);
        store_column_of(f.run.sym.NSYMR, I, a, w.tile, thread);
    }
    store_rows(f.run.sym.NSYMR, first, last, w.tile, thread);
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
Status assemble_rows(const AssemblyFrame &f, ThreadState &thread) {
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
