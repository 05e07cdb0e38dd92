#include "boundary/bvel.hpp"

#include "assembly/scratch_store.hpp"
#include "base/lapack.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr int STRIP = 256; // rows of one product

// A column of source strengths and the place of its velocities, axis after axis.
struct Column {
    const c32 *source;
    c32 *velocity;
    bool add; // to the velocity that is there
};
using Columns = std::vector<std::vector<Column>>; // by class, from 0

// The radiation columns of these modes.
Columns radiation_columns(const RunState &run, const ModeLists &modes, ThreadState &thread) {
    Columns columns(static_cast<std::size_t>(run.sym.NSYMR));
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        for (int k = 1; k <= modes.NMCLS[s]; ++k) {
            const int col = modes.MODPOS(modes.MODCLS(k, s));
            columns[static_cast<std::size_t>(s - 1)].push_back(
                {&thread.SRCR(1, col), &thread.VELR(1, 1, col), false});
        }
    }
    return columns;
}

void add_diffraction(const RunState &run, Array<c32, 3> &source, Array<c32, 4> &velocity, bool add,
                     Columns &columns) {
    for (int s = 1; run.opt.IDIFF >= 0 && s <= run.sym.NSYMR; ++s) {
        for (int b = 1; b <= run.periods.NBETAM; ++b)
            columns[static_cast<std::size_t>(s - 1)].push_back(
                {&source(1, b, s), &velocity(1, 1, b, s), add});
    }
}

// The radiation columns of the run, as far as it has radiation.
Columns radiation_of_run(const RunState &run, ThreadState &thread) {
    return run.opt.IRAD != -1 ? radiation_columns(run, modes_of_run(run.sym), thread)
                              : Columns(static_cast<std::size_t>(run.sym.NSYMR));
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
        velocity[I - 1] = column.add ? velocity[I - 1] + sum : sum;
        VR += I;
        VC += I - 1;
    }
}

// The same from the velocity rows on unit 62, which is dropped at the end.
Status velocities_from_scratch(const RunState &run, const Columns &columns, ThreadState &thread) {
    const int n = run.mesh.NEQN;
    RecordFile &unit = thread.scratch->VELOCITY;
    Array<c32, 1> VR, VC;
    if (!VR.alloc(3LL * n) || !VC.alloc(3LL * n))
        return MSGOUT(" RAM too small to allocate BVEL arrays ");
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

Status velocities(const RunState &run, const Columns &columns, ThreadState &thread) {
    if (!run.memory.INCORE)
        return velocities_from_scratch(run, columns, thread);
    const int n = run.mesh.NEQN;
    const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(c32);
    Array<c32, 2> B, C;
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        const std::vector<Column> &of_class = columns[static_cast<std::size_t>(s - 1)];
        const int count = static_cast<int>(of_class.size());
        if (count == 0)
            continue;
        if (!B.alloc(n, count) || !C.alloc(n, count))
            return MSGOUT(" RAM too small to allocate BVEL arrays ");
        for (int j = 1; j <= count; ++j)
            std::memcpy(&B(1, j), of_class[static_cast<std::size_t>(j - 1)].source, bytes);
        for (int axis = 1; axis <= 3; ++axis) {
            multiply(&thread.VCORE(1, 1, 3 * (s - 1) + axis), B.data(), C.data(), n, count);
            for (int j = 1; j <= count; ++j) {
                const Column &column = of_class[static_cast<std::size_t>(j - 1)];
                c32 *velocity = column.velocity + (axis - 1) * static_cast<std::int64_t>(n);
                for (int i = 1; i <= n; ++i)
                    velocity[i - 1] = column.add ? velocity[i - 1] + C(i, j) : C(i, j);
            }
        }
    }
    return Status::ok;
}

} // namespace

Status BVEL(const RunState &run, ThreadState &thread) {
    Columns columns = radiation_of_run(run, thread);
    add_diffraction(run, thread.SRCD, thread.VELD, false, columns);
    return velocities(run, columns, thread);
}

Status BVEL(const RunState &run, const ModeLists &modes, ThreadState &thread) {
    return velocities(run, radiation_columns(run, modes, thread), thread);
}

Status BVELWD(const RunState &run, ThreadState &thread) {
    Columns columns = radiation_of_run(run, thread);
    add_diffraction(run, thread.SRCD, thread.VELD, true, columns);
    add_diffraction(run, thread.second.SRCD2, thread.second.VELD2, true, columns);
    return velocities(run, columns, thread);
}
