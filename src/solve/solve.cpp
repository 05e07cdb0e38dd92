#include "solve/solve.hpp"

#include "base/lapack.hpp"
#include "run/messages.hpp"
#include "solve/lu.hpp"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

// The columns of a class: its modes in the radiation array, its headings in the diffraction array.
std::vector<c32 *> columns_of_class(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR,
                                    View<c32, 3> PHID, int s) {
    std::vector<c32 *> columns;
    if (request.IRAD != -1) {
        for (int k = 1; k <= run.sym.NMCLS[s]; ++k)
            columns.push_back(&PHIR(1, run.sym.MODPOS(run.sym.MODCLS(k, s))));
    }
    if (request.IDIFF >= 0) {
        for (int b = 1; b <= run.periods.NBETAM; ++b)
            columns.push_back(&PHID(1, b, s));
    }
    return columns;
}

// Solves with the factors for all columns. Each group is one back substitution; the groups are the same on any number
// of cores, and so are the results.
Status solve_columns(View<const c32, 2> LU, const int *IPIV, int n, const std::vector<c32 *> &columns) {
    constexpr int GROUP = 4;
    const int count = static_cast<int>(columns.size());
    if (count == 0)
        return Status::ok;
    Array<c32, 2> XR;
    if (!XR.alloc(n, count))
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(c32);
#pragma omp parallel for schedule(static, 1)
    for (int first = 0; first < count; first += GROUP) {
        const SerialBlas serial;
        const int width = std::min(GROUP, count - first);
        for (int j = first; j < first + width; ++j)
            std::memcpy(&XR(1, j + 1), columns[static_cast<std::size_t>(j)], bytes);
        int info = 0;
        cgetrs_("N", &n, &width, LU.data(), &n, IPIV, &XR(1, first + 1), &n, &info, 1);
        for (int j = first; j < first + width; ++j)
            std::memcpy(columns[static_cast<std::size_t>(j)], &XR(1, j + 1), bytes);
    }
    return Status::ok;
}

// After a singular matrix every right-hand side of the class reports.
Status report_singular(const RunState &run, const SolveRequest &request, int s) {
    (void)MSGOUT(" Error in direct solver: left-hand-side is singular ", s);
    for (int k = 1; request.IRAD != -1 && k <= run.sym.NMCLS[s]; ++k)
        (void)MSGOUT("       Error in radiation solution for mode M=", run.sym.MODCLS(k, s));
    for (int b = 1; request.IDIFF >= 0 && b <= run.periods.NBETAM; ++b)
        (void)MSGOUT("       Error in diffraction solution for heading IBETA=", b);
    return Status::failed;
}

} // namespace

Status SOLVE(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR, View<c32, 3> PHID,
             ThreadState &thread, int (&ITER)[2]) {
    const int n = run.mesh.NEQN;
    Array<int, 1> IPIV;
    if (!IPIV.alloc(n) || (thread.ALU.empty() && !thread.ALU.alloc(n, n)))
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    if (request.FACT == 1)
        ITER[0] = ITER[1] = 0;
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        std::memcpy(thread.ALU.data(), thread.ACORE.slice(s).data(),
                    static_cast<std::size_t>(thread.ALU.size()) * sizeof(c32));
        if (failed(LUFACT(thread.ALU, IPIV.data(), n)))
            return report_singular(run, request, s);
        if (failed(solve_columns(thread.ALU, IPIV.data(), n, columns_of_class(run, request, PHIR, PHID, s))))
            return Status::failed;
        if (request.IRAD != -1 && run.sym.NMCLS[s] > 0)
            ITER[0] = -1;
        if (request.IDIFF >= 0)
            ITER[1] = -1;
    }
    return Status::ok;
}
