// The rows of a period when the matrices are not in memory: Rankine records come in order from unit 60,
// finished rows go in order to AMAT and the scratch files. In between the cores share the tiles of a group.
#include "assembly/assemble_row.hpp"
#include "assembly/period_rows.hpp"
#include "assembly/scratch_rows.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <omp.h>
#include <vector>

namespace {

// A tile on its way from the Rankine records to the stores.
struct ScratchTile {
    int first = 0;
    int last = 0;
    TileRows rows;
    Array<std::uint16_t, 2> stored; // pair codes as read (NEQN,TILE)
    BlockSums sums;
    [[nodiscard]] bool alloc(const RunState &run) {
        const int n = run.mesh.NEQN;
        return rows.alloc(n, run.sym.NSYMR, run.opt, true) && stored.alloc(n, TILE) && sums.alloc(n, run);
    }
};

// Space for a record.
struct ReadBuffers {
    Array<f32, 1> record;    // of the longest record (3 NEQN)
    Array<f32, 1> imaginary; // imaginary part of what is real (NEQN)
};

// Row I of the store into row a of the tile.
Status read_row(const RunState &run, f32 NUL, RecordFile &unit, int I, int a, ReadBuffers &buffers,
                ScratchTile &tile) {
    TileRows &rows = tile.rows;
    f32 *record = buffers.record.data();
    Status status = Status::ok;
    const auto read = [&](Split column, Split row, int level) {
        if (!failed(status))
            status = RANLH(unit, column, row, I, level, NUL, record);
    };
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        for (int level = 0; level <= run.opt.ILOG; ++level) {
            read(rows.column(a, s), rows.row(a, s), level);
            if (rows.keep_source)
                read({rows.source_column(a, s), buffers.imaginary.data()},
                     {rows.source_row(a, s), buffers.imaginary.data()}, level);
            if (rows.planes == 1)
                continue;
            read(rows.column(a, s, PLANE_E), rows.row(a, s, PLANE_E), level);
            const Split columns[3] = {rows.column(a, s, PLANE_V), rows.column(a, s, PLANE_V + 1),
                                      rows.column(a, s, PLANE_V + 2)};
            const Split lines[3] = {rows.row(a, s, PLANE_V), rows.row(a, s, PLANE_V + 1),
                                    rows.row(a, s, PLANE_V + 2)};
            if (!failed(status))
                status = RANVEL(unit, columns, lines, I, level, NUL, record);
        }
    }
    const std::size_t codes = static_cast<std::size_t>(I) * sizeof(std::uint16_t);
    if (!failed(status) && !unit.read({{&tile.stored(1, a + 1), codes}}))
        status = MSGOUT_with(" Error reading scratch file for Rankine LHS, UNIT=", unit.unit(), unit.error());
    return status;
}

// Where the finished rows go: dipole matrix, and with ISOR=1 source matrix and velocities.
struct Stores {
    RowStore dipole;
    RowStore source;
    RecordFile &VELOCITY;
    Array<c32, 3> VROW, VCOL; // the row at work (NEQN,3,NSYMR)
};

Status open_stores(const RunState &run, Stores &stores) {
    if (failed(open_rows(stores.dipole)))
        return Status::failed;
    if (run.opt.ISOR != 1)
        return Status::ok;
    const int n = run.mesh.NEQN;
    if (!stores.VROW.alloc(n, 3, run.sym.NSYMR) || !stores.VCOL.alloc(n, 3, run.sym.NSYMR))
        return MSGOUT(" RAM too small to allocate WAVEGR arrays ");
    if (!stores.VELOCITY.open_scratch())
        return MSGOUT_with("Error opening scratch file, subroutine WAVEGR, UNIT=", stores.VELOCITY.unit(),
                           stores.VELOCITY.error());
    return open_rows(stores.source);
}

// Row I of one matrix plane, all classes.
Status store_plane(const RunState &run, ScratchTile &tile, int I, int plane, RowStore &store) {
    Split row[5], column[5];
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        row[s] = tile.rows.row(I - tile.first, s, plane);
        column[s] = tile.rows.column(I - tile.first, s, plane);
    }
    return store_row(store, I, row, column);
}

Status store_velocities(const RunState &run, ScratchTile &tile, int I, Stores &stores) {
    const int a = I - tile.first;
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        for (int c = 0; c < 3; ++c) {
            store_column(I, tile.rows.row(a, s, PLANE_V + c), &stores.VROW(1, c + 1, s));
            store_column(I - 1, tile.rows.column(a, s, PLANE_V + c), &stores.VCOL(1, c + 1, s));
        }
    }
    return VWRITE(stores.VELOCITY, stores.VROW, stores.VCOL, I, run.sym.NSYMR);
}

// The finished rows of a tile, in order.
Status store_tile_rows(const RunState &run, ScratchTile &tile, Stores &stores) {
    for (int I = tile.first; I <= tile.last; ++I) {
        if (failed(store_plane(run, tile, I, PLANE_D, stores.dipole)))
            return Status::failed;
        if (run.opt.ISOR == 1 && (failed(store_plane(run, tile, I, PLANE_E, stores.source)) ||
                                  failed(store_velocities(run, tile, I, stores))))
            return Status::failed;
    }
    return Status::ok;
}

Status close_stores(const RunState &run, Stores &stores) {
    Status status = close_rows(stores.dipole);
    if (run.opt.ISOR == 1 && failed(close_rows(stores.source)))
        status = Status::failed;
    return status;
}

} // namespace

Status rows_on_scratch(const AssemblyFrame &f, ThreadState &thread) {
    const char *const no_memory = " RAM too small to allocate WAVEGR arrays ";
    const RunState &run = f.run;
    const int n = run.mesh.NEQN;
    const int group = omp_get_max_threads();
    std::vector<ScratchTile> tiles(static_cast<std::size_t>(group));
    std::vector<RowWork> work(static_cast<std::size_t>(group));
    ReadBuffers buffers;
    bool made = buffers.record.alloc(3LL * n) && buffers.imaginary.alloc(n);
    for (int k = 0; k < group; ++k)
        made = made && tiles[static_cast<std::size_t>(k)].alloc(run) &&
               work[static_cast<std::size_t>(k)].alloc(run);
    if (!made)
        return MSGOUT(no_memory);
    Stores stores{{run, thread.scratch->IUL, thread.AMAT.data(), 1, {}},
                  {run, thread.scratch->IUE, nullptr, 1, {}},
                  thread.scratch->VELOCITY,
                  {},
                  {}};
    if (failed(open_stores(run, stores)) || failed(rewind_unit(thread.scratch->RANKINE)))
        return Status::failed;
    Status status = Status::ok;
    for (int start = 1; !failed(status) && start <= n; start += group * TILE) {
        int count = 0;
        for (int first = start; !failed(status) && count < group && first <= n; first += TILE) {
            ScratchTile &tile = tiles[static_cast<std::size_t>(count++)];
            tile.first = first;
            tile.last = std::min(first + TILE - 1, n);
            tile.sums.clear();
            for (int I = first; !failed(status) && I <= tile.last; ++I)
                status = read_row(run, f.wave.NUL, thread.scratch->RANKINE, I, I - first, buffers, tile);
        }
        bool good = !failed(status);
#pragma omp parallel for schedule(static, 1) reduction(&& : good)
        for (int k = 0; k < count; ++k) {
            ScratchTile &tile = tiles[static_cast<std::size_t>(k)];
            for (int I = tile.first; good && I <= tile.last; ++I)
                good = !failed(assemble_row(f, {I, I - tile.first, tile.rows},
                                            &tile.stored(1, I - tile.first + 1),
                                            work[static_cast<std::size_t>(k)], tile.sums));
        }
        if (!good)
            status = Status::failed;
        for (int k = 0; !failed(status) && k < count; ++k) {
            ScratchTile &tile = tiles[static_cast<std::size_t>(k)];
            status = store_tile_rows(run, tile, stores);
            add_block(run, f.weights, tile.sums, tile.last, thread);
        }
    }
    if (failed(close_stores(run, stores)))
        status = Status::failed;
    return status;
}
