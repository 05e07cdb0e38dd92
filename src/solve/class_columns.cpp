#include "solve/class_columns.hpp"

#include "base/lapack.hpp"
#include "state/messages.hpp"

#include <algorithm>
#include <cstring>
#include <omp.h>

std::vector<RightHandSide> columns_of_class(const RunState &run, const SolveRequest &request,
                                            View<c32, 2> PHIR, View<c32, 3> PHID, int s) {
    std::vector<RightHandSide> columns;
    if (request.IRAD != -1) {
        const ModeLists modes = request.modes != nullptr ? *request.modes : modes_of_run(run.sym);
        for (int k = 1; k <= modes.NMCLS[s]; ++k) {
            const int mode = modes.MODCLS(k, s);
            columns.push_back({&PHIR(1, modes.MODPOS(mode)), true, mode});
        }
    }
    if (request.IDIFF >= 0) {
        for (int b = 1; b <= run.periods.NBETAM; ++b)
            columns.push_back({&PHID(1, b, s), false, b});
    }
    return columns;
}

Status report_columns(const std::vector<RightHandSide> &columns) {
    for (const RightHandSide &c : columns)
        (void)MSGOUT(c.radiation ? "       Error in radiation solution for mode M="
                                 : "       Error in diffraction solution for heading IBETA=",
                     c.label);
    return Status::failed;
}

// Each group is one back substitution; the groups are the same on any number of cores, and so
// are the results.
Status solve_directly(View<const c32, 2> LU, const int *IPIV, int n,
                      const std::vector<RightHandSide> &columns, int (&ITER)[2]) {
    constexpr int GROUP = 8;
    const int count = static_cast<int>(columns.size());
    if (count == 0)
        return Status::ok;
    Array<c32, 2> XR;
    if (!XR.alloc(n, count))
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(c32);
#pragma omp parallel for schedule(static, 1) if (count > GROUP)
    for (int first = 0; first < count; first += GROUP) {
        const SerialBlas serial;
        const int width = std::min(GROUP, count - first);
        for (int j = first; j < first + width; ++j)
            std::memcpy(&XR(1, j + 1), columns[static_cast<std::size_t>(j)].B, bytes);
        int info = 0;
        cgetrs_("N", &n, &width, LU.data(), &n, IPIV, &XR(1, first + 1), &n, &info, 1);
        for (int j = first; j < first + width; ++j)
            std::memcpy(columns[static_cast<std::size_t>(j)].B, &XR(1, j + 1), bytes);
    }
    for (const RightHandSide &c : columns)
        ITER[c.radiation ? 0 : 1] = -1;
    return Status::ok;
}

namespace {

void report_no_convergence() {
    message(" No convergence after MAXITT iterations ");
    warn_at_end("some solutions did not converge (No convergence after MAXITT iterations): use ISOLVE=1, or "
                "other panels");
}

} // namespace

Status solve_iteratively(int n, f32 EPS, const Sweep &sweep, const std::vector<RightHandSide> &columns,
                         int (&ITER)[2]) {
    std::vector<IterativeColumn> solutions(columns.size());
    for (std::size_t c = 0; c < columns.size(); ++c)
        solutions[c].B = columns[c].B;
    if (failed(ITRCC(n, EPS, sweep, solutions)))
        return report_columns(columns);
    Status status = Status::ok;
    for (std::size_t c = 0; c < columns.size(); ++c) {
        int &largest = ITER[columns[c].radiation ? 0 : 1];
        largest = std::max(largest, solutions[c].ITER);
        if (solutions[c].outcome == Outcome::not_converged)
            report_no_convergence();
        if (solutions[c].outcome == Outcome::singular) {
            (void)MSGOUT(" Error in iterative solver: residual matrix is singular ");
            status = report_columns({columns[c]});
        }
    }
    return status;
}
