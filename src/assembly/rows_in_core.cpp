// The rows of a period when the matrices are in memory, block by block.
#include "assembly/assemble_row.hpp"
#include "assembly/period_rows.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <vector>

namespace {

constexpr std::int64_t SUMS_LIMIT = 64ll << 20; // bytes that all BlockSums of a call may take

// Rows first..last, at most TILE of them, in memory.
Status assemble_tile(const AssemblyFrame &f, int first, int last, RowWork &work, TileRows &tile,
                     BlockSums &sums, ThreadState &thread) {
    start_rows(f.run, f.wave.NUL, first, last, tile);
    for (int I = first; I <= last; ++I) {
        start_column(f.run, f.wave.NUL, I, I - first, tile);
        if (failed(assemble_row(f, {I, I - first, tile}, &f.run.store.ICODM(pair_place(I) + 1), work, sums)))
            return Status::failed;
        store_column_of(f.run.sym.NSYMR, I, I - first, tile, thread);
    }
    store_rows(f.run.sym.NSYMR, first, last, tile, thread);
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

} // namespace

std::int64_t rows_memory(const RunState &run, int cores) {
    const std::int64_t n = run.mesh.NEQN, classes = run.sym.NSYMR, velocities = run.opt.ISOR;
    const std::int64_t headings = run.periods.NBETAM * classes, columns = run.sym.NSYMD + headings;
    const std::int64_t block = block_rows(run), blocks = (n + block - 1) / block;
    const std::int64_t points = run.opt.IQUAD == 1 ? 4 : run.sym.NSYMG;
    // Numbers of 4 bytes, for each panel: of the frame, of a tile of one core, and of a part of its row.
    const std::int64_t frame = 27 + run.sym.NSYMD + 2 * headings;
    const std::int64_t tile = 1 + (TILE + 1) * classes * (2 * (1 + 4 * velocities) + 1);
    const std::int64_t row = points * (11 + (run.dipoles.IDIPOL ? 16 : 8)) +
                             run.sym.NSYMG * (8 + 12 * velocities) + 3 + 8 + 12 * velocities;
    // A block has the rows up to its last one: half of all on the average.
    return 4 * (n * (frame + cores * tile) + cores * row * std::min<std::int64_t>(n, PART)) +
           4 * columns * (blocks + 1) * n;
}

Status rows_in_core(const AssemblyFrame &f, ThreadState &thread) {
    const char *const no_memory = " RAM too small to allocate WAVEGR arrays ";
    const int n = f.run.mesh.NEQN;
    const int rows = block_rows(f.run);
    const int blocks = (n + rows - 1) / rows;
    std::vector<BlockSums> sums(static_cast<std::size_t>(blocks));
    for (int b = 0; b < blocks; ++b) {
        if (!sums[static_cast<std::size_t>(b)].alloc(std::min(n, (b + 1) * rows), f.run))
            return MSGOUT(no_memory);
    }
    bool memory = true;
    bool values = true;
#pragma omp parallel
    {
        RowWork work;
        TileRows tile;
        const bool made = work.alloc(f.run) && tile.alloc(n, f.run.sym.NSYMR, f.run.opt, false);
#pragma omp critical(wavegr_memory)
        memory = memory && made;
#pragma omp barrier
        // The last blocks have the longest rows: first, so that the cores end together.
#pragma omp for schedule(dynamic, 1) reduction(&& : values)
        for (int k = 0; k < blocks; ++k) {
            const int b = blocks - 1 - k;
            const int end = std::min(n, (b + 1) * rows);
            for (int first = b * rows + 1; memory && values && first <= end; first += TILE)
                values = !failed(assemble_tile(f, first, std::min(first + TILE - 1, end), work, tile,
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
