#include "solve/scratch_solve.hpp"

#include "assembly/scratch_store.hpp"
#include "solve/class_columns.hpp"
#include "solve/lu.hpp"
#include "solve/sweeps.hpp"
#include "solve/tank.hpp"
#include "state/messages.hpp"
#include "state/method.hpp"

#include <algorithm>

namespace {

struct ScratchSolve {
    const RunState &run;
    const SolveRequest &request;
    UnitList &U;
    View<c32, 2> AMAT;
    int n;
    int S;                // classes
    Array<int, 1> IPIV;   // pivots; of all blocks side by side
    Array<c32, 2> buffer; // records at work (2 n,RUN_ROWS)

    bool keep() const { return request.KEEP == 1; }
    // Class 1 of the dipole matrix has its own place until it has been saved.
    bool own_place(int s) const { return s == 1 && request.ISRC == 0; }
    bool in_place(int s) const { return own_place(s) && request.FACT == 1; }
    bool saves() const { return request.FACT == 1 && keep(); }
};
using Columns = std::vector<RightHandSide>;

Status read_failed(const RecordFile &unit) {
    return MSGOUT_with(" Error reading LHS scratch file in SOLVE ", 0, unit.error());
}

bool read_values(RecordFile &unit, c32 *values, std::int64_t n) {
    return unit.read({{values, static_cast<std::size_t>(n) * sizeof(c32)}});
}

// Opens unit s, lets `work` read or write it, closes it.
template <class Work> Status with_unit(ScratchSolve &c, int s, bool keep, const Work &work) {
    RecordFile &unit = c.U(s);
    OPEN1(unit);
    const Status status = work(unit);
    const Status closed = CLOSE1(unit, keep);
    return failed(status) ? status : closed;
}

Status solve_full_direct(ScratchSolve &c, int s, const Columns &columns, int (&ITER)[2]) {
    int *IPIV = c.IPIV.data();
    const auto fetch = [&](RecordFile &unit) {
        return c.request.FACT == 1 ? RDROWS(unit, c.AMAT, c.n) : RDLU(unit, c.AMAT, IPIV, c.n);
    };
    if (!c.in_place(s) && failed(with_unit(c, s, c.keep(), fetch)))
        return Status::failed;
    const DirectClass of_class{c.run, s, tank_reference(c.run, c.request, s)};
    if (c.request.FACT == 1 && failed(factor_class(of_class, c.AMAT, IPIV, columns)))
        return Status::failed;
    if (failed(solve_class(of_class, c.AMAT, IPIV, columns, ITER)))
        return Status::failed;
    if (!c.saves())
        return Status::ok;
    return with_unit(c, s, true, [&](RecordFile &unit) { return WRLU(unit, c.AMAT, IPIV, c.n); });
}

// The iteration leaves the matrix as it is: only class 1 has to be saved, the others are on
// their units anyway.
Status solve_full(ScratchSolve &c, int s, const Columns &columns, int (&ITER)[2]) {
    const auto fetch = [&](RecordFile &unit) {
        return c.own_place(s) ? RDLU(unit, c.AMAT, c.IPIV.data(), c.n) : RDROWS(unit, c.AMAT, c.n);
    };
    if (!c.in_place(s) && failed(with_unit(c, s, c.keep(), fetch)))
        return Status::failed;
    const FullMatrix matrix{c.AMAT.data(), c.n};
    const Sweep sweep = [&](const std::vector<SweepColumn> &work) {
        sweep_full(matrix, work);
        return Status::ok;
    };
    if (failed(solve_iteratively(c.n, c.request.EPS, sweep, columns, ITER)))
        return Status::failed;
    if (!c.saves() || !c.own_place(s))
        return Status::ok;
    return with_unit(c, s, true, [&](RecordFile &unit) { return WRLU(unit, c.AMAT, c.IPIV.data(), c.n); });
}

Status read_packed(ScratchSolve &c, RecordFile &unit, int rows) {
    for (int I = 1; I <= rows; ++I) {
        if (!read_values(unit, c.AMAT.data() + packed_place(I), 2 * I - 1))
            return read_failed(unit);
    }
    return Status::ok;
}

Status write_packed(ScratchSolve &c, RecordFile &unit, int rows) {
    for (int I = 1; I <= rows; ++I) {
        const c32 *row = c.AMAT.data() + packed_place(I);
        if (failed(WRROW(unit, row, row + I, I)))
            return Status::failed;
    }
    return Status::ok;
}

Status solve_packed(ScratchSolve &c, int s, const Columns &columns, int (&ITER)[2]) {
    const int rows = std::min(c.run.opt.NCORE, c.n);
    const bool more = rows < c.n;
    RecordFile &rest = c.U(more ? c.S + s : s);
    if (!c.in_place(s) &&
        failed(with_unit(c, s, c.keep(), [&](RecordFile &unit) { return read_packed(c, unit, rows); })))
        return Status::failed;
    if (more)
        OPEN1(rest);
    const PackedRows matrix{c.AMAT.data(), c.n, rows, &rest, c.buffer};
    const Sweep sweep = [&](const std::vector<SweepColumn> &work) { return sweep_packed(matrix, work); };
    Status status = solve_iteratively(c.n, c.request.EPS, sweep, columns, ITER);
    if (more && failed(CLOSE1(rest, c.keep())))
        status = Status::failed;
    if (failed(status) || !c.saves() || !c.own_place(s))
        return status;
    return with_unit(c, s, true, [&](RecordFile &unit) { return write_packed(c, unit, rows); });
}

// The units that the block form works on, S classes in front of them.
struct BlockUnits {
    RecordFile &rows;
    RecordFile &columns;
    RecordFile &raw;
    RecordFile &factors;
    explicit BlockUnits(ScratchSolve &c)
        : rows(c.U(c.S + 1)), columns(c.U(c.S + 2)), raw(c.U(c.S + 3)), factors(c.U(c.S + 4)) {}
};

Status rewind_blocks(BlockUnits &b) {
    const bool bad =
        failed(rewind_unit(b.rows)) || failed(rewind_unit(b.columns)) || failed(rewind_unit(b.factors));
    return bad ? Status::failed : Status::ok;
}

// Factors the block in AMAT, which starts behind L rows, and writes it.
Status factor_block(ScratchSolve &c, BlockUnits &b, int s, int L, int order) {
    const View<c32, 2> block(c.AMAT.data(), {Range(order), Range(order)});
    if (failed(LUFACT(block, &c.IPIV(L + 1), order)))
        return MSGOUT(" Error in block iteration: left-hand-side is singular ", s);
    return WRBLK(b.factors, c.AMAT.data(), order);
}

Status factor_raw_blocks(ScratchSolve &c, BlockUnits &b, int s) {
    for (int q = 0, L = 0; q < c.run.opt.ISOLVE; L += c.run.opt.NBLKSZ, ++q) {
        const int order = block_order(c.run.opt, q);
        if (!read_values(b.raw, c.AMAT.data(), std::int64_t{order} * order))
            return read_failed(b.raw);
        if (failed(factor_block(c, b, s, L, order)))
            return Status::failed;
    }
    return Status::ok;
}

// Distributes row records to the units of the block form.
Status split_rows(ScratchSolve &c, BlockUnits &b, int s, RecordFile &unit) {
    c32 *row = c.buffer.data();
    for (int q = 0, L = 0; q < c.run.opt.ISOLVE; L += c.run.opt.NBLKSZ, ++q) {
        const int order = block_order(c.run.opt, q);
        for (int I = L + 1; I <= L + order; ++I) {
            const c32 *column = row + I;
            if (!read_values(unit, row, 2 * I - 1))
                return read_failed(unit);
            if (L > 0 && failed(WROFFD(b.rows, b.columns, row, column, L)))
                return Status::failed;
            PUTBRD(c.AMAT.data(), row + L, column + L, I - L, order);
        }
        if (failed(factor_block(c, b, s, L, order)))
            return Status::failed;
    }
    return Status::ok;
}

// Copies n values from one unit to another.
Status copy_record(RecordFile &from, RecordFile &to, c32 *values, std::int64_t n) {
    if (!read_values(from, values, n))
        return read_failed(from);
    return to.write({bytes_of(values, n)})
               ? Status::ok
               : MSGOUT_with("Unable to write scratch LHS file, UNIT=", to.unit(), to.error());
}

// Moves the prepared form between its three units and the one file of the class: per block its off-diagonal
// rows and columns in turn, then its factors; the pivots last.
Status move_blocks(ScratchSolve &c, BlockUnits &b, RecordFile &file, bool save) {
    const auto move = [&](RecordFile &part, c32 *values, std::int64_t n) {
        return failed(save ? copy_record(part, file, values, n) : copy_record(file, part, values, n));
    };
    for (int q = 0, L = 0; q < c.run.opt.ISOLVE; L += c.run.opt.NBLKSZ, ++q) {
        const int order = block_order(c.run.opt, q);
        for (int t = 0; L > 0 && t < order; ++t) {
            if (move(b.rows, c.buffer.data(), L) || move(b.columns, c.buffer.data(), L))
                return Status::failed;
        }
        if (move(b.factors, c.AMAT.data(), std::int64_t{order} * order))
            return Status::failed;
    }
    if (save)
        return file.write({bytes_of(c.IPIV.data(), c.n)})
                   ? rewind_blocks(b)
                   : MSGOUT_with("Unable to write scratch LHS file, UNIT=", file.unit(), file.error());
    return file.read({{c.IPIV.data(), static_cast<std::size_t>(c.n) * sizeof(int)}}) ? Status::ok
                                                                                     : read_failed(file);
}

Status solve_blocks(ScratchSolve &c, int s, const Columns &columns, int (&ITER)[2]) {
    BlockUnits b(c);
    const auto fetch = [&](RecordFile &unit) {
        return c.request.FACT == 1 ? split_rows(c, b, s, unit) : move_blocks(c, b, unit, false);
    };
    const Status ready = c.in_place(s) ? factor_raw_blocks(c, b, s) : with_unit(c, s, c.keep(), fetch);
    if (failed(ready) || failed(rewind_blocks(b)))
        return Status::failed;
    const BlockFiles matrix{c.n,        c.run.opt.NBLKSZ, &b.rows,       &b.columns,
                            &b.factors, c.AMAT.data(),    c.IPIV.data(), c.buffer};
    const Sweep sweep = [&](const std::vector<SweepColumn> &work) { return sweep_block_files(matrix, work); };
    if (failed(solve_iteratively(c.n, c.request.EPS, sweep, columns, ITER)))
        return Status::failed;
    if (!c.saves())
        return Status::ok;
    return with_unit(c, s, true, [&](RecordFile &unit) { return move_blocks(c, b, unit, true); });
}

} // namespace

Status solve_on_scratch(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR,
                        View<c32, 3> PHID, ThreadState &thread, int (&ITER)[2]) {
    UnitList &units = request.ISRC == 1 ? thread.scratch->IUE : thread.scratch->IUL;
    ScratchSolve c{run, request, units, thread.AMAT, run.mesh.NEQN, run.sym.NSYMR, {}, {}};
    const Method method = method_of(run);
    const bool records = method == Method::blocks || method == Method::iterative_packed;
    if (!c.IPIV.alloc(c.n) || (records && !c.buffer.alloc(2 * std::int64_t{c.n}, RUN_ROWS)))
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    const auto solve = method == Method::blocks             ? solve_blocks
                       : method == Method::direct           ? solve_full_direct
                       : method == Method::iterative_packed ? solve_packed
                                                            : solve_full;
    if (method == Method::blocks)
        OPENSC(units, c.S + 1, 4);
    Status status = Status::ok;
    for (int s = 1; s <= c.S && !failed(status); ++s)
        status = solve(c, s, columns_of_class(run, request, PHIR, PHID, s), ITER);
    if (method == Method::blocks && failed(CLOSSC(units, c.S + 1, 4, false)))
        status = Status::failed;
    return status;
}
