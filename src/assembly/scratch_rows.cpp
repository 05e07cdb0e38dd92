#include "assembly/scratch_rows.hpp"

#include "assembly/tiles.hpp"
#include "state/messages.hpp"
#include "state/method.hpp"

#include <algorithm>
#include <complex>

namespace {

// First class that goes into row records while the units of the first group are open.
int first_record_class(const RowStore &store) {
    return store.AMAT != nullptr ? 2 : 1;
}

int units_behind_class_1(const RowStore &store) {
    const int classes = store.run.sym.NSYMR;
    return store.AMAT != nullptr && method_of(store.run) == Method::blocks
               ? classes + 2
               : classes + 1 - first_record_class(store);
}

c32 reciprocal(c32 value) {
    return c32(1.0 / std::complex<double>(value));
}

// Rows behind NCORE go to the second group of units.
Status switch_units(RowStore &store) {
    if (failed(CLOSSC(store.units, first_record_class(store), units_behind_class_1(store), true)))
        return Status::failed;
    store.IC = store.run.sym.NSYMR + 1;
    OPENSC(store.units, store.IC, store.run.sym.NSYMR);
    return Status::ok;
}

// Class 1 of the dipole matrix into its block: what is left of and above it to the files, the rest to AMAT.
Status store_in_block(RowStore &store, int I, const c32 *ROW, const c32 *COL) {
    const Options &opt = store.run.opt;
    const int S = store.run.sym.NSYMR;
    const int q = (I - 1) / opt.NBLKSZ;
    const int B = block_order(opt, q);
    const int L = q * opt.NBLKSZ;
    if (L > 0 && failed(WROFFD(store.units(S + 1), store.units(S + 2), ROW, COL, L)))
        return Status::failed;
    PUTBRD(store.AMAT, ROW + L, COL + L, I - L, B);
    if (I % opt.NBLKSZ == 0 || I == store.run.mesh.NEQN)
        return WRBLK(store.units(S + 3), store.AMAT, B);
    return Status::ok;
}

Status store_class_1(RowStore &store, int I, const c32 *ROW, const c32 *COL) {
    const int n = store.run.mesh.NEQN;
    const Method method = method_of(store.run);
    if (method == Method::blocks)
        return store_in_block(store, I, ROW, COL);
    if (method == Method::iterative_packed)
        std::copy_n(ROW, 2 * I - 1, store.AMAT + packed_place(I));
    else
        PUTBRD(store.AMAT, ROW, COL, I, n);
    return Status::ok;
}

} // namespace

Status open_rows(RowStore &store) {
    store.IC = 1;
    if (!store.packed.alloc(2 * std::int64_t{store.run.mesh.NEQN}))
        return MSGOUT(" RAM too small to allocate WAVEGR arrays ");
    OPENSC(store.units, first_record_class(store), units_behind_class_1(store));
    return Status::ok;
}

Status store_row(RowStore &store, int I, const Split (&ROW)[5], const Split (&COL)[5]) {
    const bool packed_form = method_of(store.run) == Method::iterative_packed;
    if (packed_form && I == store.run.opt.NCORE + 1 && failed(switch_units(store)))
        return Status::failed;
    c32 *row = store.packed.data();
    c32 *column = row + I;
    for (int s = 1; s <= store.run.sym.NSYMR; ++s) {
        store_column(I, ROW[s], row);
        store_column(I - 1, COL[s], column);
        if (packed_form)
            row[I - 1] = reciprocal(row[I - 1]);
        const bool to_amat = s == 1 && store.AMAT != nullptr && store.IC == 1;
        const Status status = to_amat ? store_class_1(store, I, row, column)
                                      : WRROW(store.units(store.IC + s - 1), row, column, I);
        if (failed(status))
            return status;
    }
    return Status::ok;
}

Status close_rows(RowStore &store) {
    if (store.IC > 1)
        return CLOSSC(store.units, store.IC, store.run.sym.NSYMR, true);
    return CLOSSC(store.units, first_record_class(store), units_behind_class_1(store), true);
}
