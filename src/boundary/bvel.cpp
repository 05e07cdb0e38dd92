#include "boundary/bvel.hpp"

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

} // namespace

Status BVEL(const RunState &run, ThreadState &thread) {
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
