#include "boundary/bvel.hpp"

#include "assembly/scratch_store.hpp"
#include "base/lapack.hpp"
#include "run/messages.hpp"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr int STRIP = 256; // rows of one product

// A column of source strengths and the place of its velocities, axis after axis.
struct Column {
    const c32 *source;
    c32 *velocity;
};

std::vector<Column> columns_of_class(const RunState &run, int s, ThreadState &thread) {
    std::vector<Column> columns;
    for (int k = 1; run.opt.IRAD != -1 && k <= run.sym.NMCLS[s]; ++k) {
        const int col = run.sym.MODPOS(run.sym.MODCLS(k, s));
        columns.push_back({&thread.SRCR(1, col), &thread.VELR(1, 1, col)});
    }
    for (int b = 1; run.opt.IDIFF >= 0 && b <= run.periods.NBETAM; ++b)
        columns.push_back({&thread.SRCD(1, b, s), &thread.VELD(1, 1, b, s)});
    return columns;
}

// C = V B for the n x n matrix V.
void multiply(const c32 *V, const c32 *B, c32 *C, int n, int columns) {
    const int strips = (n + STRIP - 1) / STRIP;
#pragma omp parallel for schedule(dynamic, 1)
    for (int k = 0; k < strips; ++k) {
        const SerialBlas serial;
        const int first = k * STRIP;
        const int rows = std::min(STRIP, n - first);
        const c32 one = 1;
        const c32 zero = 0;
        cgemm_("N", "N", &rows, &columns, &n, &one, V + first, &n, B, &n, &zero, C + first, &n, 1, 1);
    }
}

// The velocity records of a row: VROW(1..I,1..3), VCOL(1..I-1,1..3).
Status read_row(RecordFile &unit, int I, c32 *VR, c32 *VC) {
    const std::size_t row = 3 * static_cast<std::size_t>(I) * sizeof(c32);
    if (unit.read({{VR, row}}) && unit.read({{VC, row - 3 * sizeof(c32)}}))
        return Status::ok;
    return MSGOUT_with("Error reading scratch file for velocities, UNIT=", unit.unit(), unit.error());
}

// The row and the column of panel I, one axis after the other, on a column of sources.
void add_row(int n, int I, const c32 *VR, const c32 *VC, const Column &column) {
    const c32 own = column.source[I - 1];
    for (int axis = 0; axis < 3; ++axis) {
        c32 *velocity = column.velocity + static_cast<std::int64_t>(axis) * n;
        c32 sum = own * VR[I - 1];
        for (int j = 0; j < I - 1; ++j) {
            sum += column.source[j] * VR[j];
            velocity[j] += own * VC[j];
        }
        velocity[I - 1] = sum;
        VR += I;
        VC += I - 1;
    }
}

// The same from the velocity rows on unit 62, which is dropped at the end.
Status velocities_from_scratch(const RunState &run, ThreadState &thread) {
    const int n = run.mesh.NEQN;
    RecordFile &unit = thread.scratch->VELOCITY;
    Array<c32, 1> VR, VC;
    if (!VR.alloc(3LL * n) || !VC.alloc(3LL * n))
        return MSGOUT(" RAM too small to allocate BVEL arrays ");
    std::vector<std::vector<Column>> columns;
    for (int s = 1; s <= run.sym.NSYMR; ++s)
        columns.push_back(columns_of_class(run, s, thread));
    Status status = rewind_unit(unit);
    for (int I = 1; I <= n; ++I) {
        for (const std::vector<Column> &of_class : columns) {
            if (failed(status) || failed(status = read_row(unit, I, VR.data(), VC.data())))
                return Status::failed;
            for (const Column &column : of_class)
                add_row(n, I, VR.data(), VC.data(), column);
        }
    }
    unit.close();
    return status;
}

} // namespace

Status BVEL(const RunState &run, ThreadState &thread) {
    if (!run.memory.INCORE)
        return velocities_from_scratch(run, thread);
    const int n = run.mesh.NEQN;
    const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(c32);
    Array<c32, 2> B, C;
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        const std::vector<Column> columns = columns_of_class(run, s, thread);
        const int count = static_cast<int>(columns.size());
        if (count == 0)
            continue;
        if (!B.alloc(n, count) || !C.alloc(n, count))
            return MSGOUT(" RAM too small to allocate BVEL arrays ");
        for (int j = 1; j <= count; ++j)
            std::memcpy(&B(1, j), columns[static_cast<std::size_t>(j - 1)].source, bytes);
        for (int axis = 1; axis <= 3; ++axis) {
            multiply(&thread.VCORE(1, 1, 3 * (s - 1) + axis), B.data(), C.data(), n, count);
            for (int j = 1; j <= count; ++j)
                std::memcpy(columns[static_cast<std::size_t>(j - 1)].velocity +
                                (axis - 1) * static_cast<std::int64_t>(n),
                            &C(1, j), bytes);
        }
    }
    return Status::ok;
}
