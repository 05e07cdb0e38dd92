#include "solve/solve.hpp"

#include "base/lapack.hpp"
#include "run/messages.hpp"
#include "solve/lu.hpp"

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

// Solves with the factors for all columns in one back substitution.
Status solve_columns(View<const c32, 2> LU, const int *IPIV, int n, const std::vector<c32 *> &columns) {
    const int count = static_cast<int>(columns.size());
    if (count == 0)
        return Status::ok;
    Array<c32, 2> XR;
    if (!XR.alloc(n, count))
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(c32);
    for (int j = 0; j < count; ++j)
        std::memcpy(&XR(1, j + 1), columns[j], bytes);
    int info = 0;
    cgetrs_("N", &n, &count, LU.data(), &n, IPIV, XR.data(), &n, &info, 1);
    for (int j = 0; j < count; ++j)
        std::memcpy(columns[j], &XR(1, j + 1), bytes);
    return Status::ok;
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
            return MSGOUT(" Error in direct solver: left-hand-side is singular ", s);
        if (failed(solve_columns(thread.ALU, IPIV.data(), n, columns_of_class(run, request, PHIR, PHID, s))))
            return Status::failed;
        if (request.IRAD != -1 && run.sym.NMCLS[s] > 0)
            ITER[0] = -1;
        if (request.IDIFF >= 0)
            ITER[1] = -1;
    }
    return Status::ok;
}
