#include "solve/solve.hpp"

#include "solve/class_columns.hpp"
#include "solve/lu.hpp"
#include "solve/scratch_solve.hpp"
#include "solve/sweeps.hpp"
#include "solve/tank.hpp"
#include "state/messages.hpp"
#include "state/method.hpp"

#include <algorithm>

namespace {

struct CoreSolve {
    const RunState &run;
    ThreadState &thread;
    Array<c32, 3> &matrices; // dipole or source influence, by class
    Array<int, 2> &pivots;   // of the factors that take the place of the matrices (n,NSYMR)
    Array<int, 1> IPIV;      // of the factors of diagonal blocks
    int n;
};

// The factors take the place of the matrix, which nothing else reads any more.
Status solve_full_direct(CoreSolve &c, const SolveRequest &request, int s,
                         const std::vector<RightHandSide> &columns, int (&ITER)[2]) {
    const View<c32, 2> LU = c.matrices.slice(s);
    int *IPIV = &c.pivots(1, s);
    const DirectClass of_class{c.run, s, tank_reference(c.run, request, s)};
    if (request.FACT == 1 && failed(factor_class(of_class, LU, IPIV, columns)))
        return Status::failed;
    return solve_class(of_class, LU, IPIV, columns, ITER);
}

// Only the diagonal blocks are copied, to be factored; the sweeps read the others where they are.
Status solve_blocks(CoreSolve &c, const SolveRequest &request, int s,
                    const std::vector<RightHandSide> &columns, int (&ITER)[2]) {
    const int block = c.run.opt.NBLKSZ;
    const View<c32, 2> A = c.matrices.slice(s);
    c32 *LU = c.thread.ALU.data();
    for (int L = 0; L < c.n; L += block) {
        const int S = std::min(block, c.n - L);
        const View<c32, 2> part(LU + std::int64_t{L} * block, {Range(S), Range(S)});
        for (int j = 1; j <= S; ++j)
            std::copy_n(&A(L + 1, L + j), S, &part(1, j));
        if (failed(LUFACT(part, &c.IPIV(L + 1), S)))
            return MSGOUT(" Error in block iteration: left-hand-side is singular ", s);
    }
    const FullBlocks matrix{A.data(), c.n, block, LU, c.IPIV.data()};
    const Sweep sweep = [&matrix](const std::vector<SweepColumn> &work) {
        sweep_full_blocks(matrix, work);
        return Status::ok;
    };
    return solve_iteratively(c.n, request.EPS, sweep, columns, ITER);
}

Status solve_in_core(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR, View<c32, 3> PHID,
                     ThreadState &thread, int (&ITER)[2]) {
    const Method method = method_of(run);
    const bool direct = method == Method::direct;
    const bool sources = request.ISRC == 1;
    CoreSolve c{run, thread,       sources ? thread.ECORE : thread.ACORE, sources ? thread.EPIV : thread.APIV,
                {},  run.mesh.NEQN};
    bool made = true;
    if (direct && c.pivots.empty())
        made = c.pivots.alloc(c.n, run.sym.NSYMR);
    if (method == Method::blocks)
        made = c.IPIV.alloc(c.n) && (!thread.ALU.empty() || thread.ALU.alloc(run.opt.NBLKSZ, c.n));
    if (!made)
        return MSGOUT(" RAM too small. Allocation error in SOLVE ");
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        const auto columns = columns_of_class(run, request, PHIR, PHID, s);
        const FullMatrix matrix{c.matrices.slice(s).data(), c.n};
        const Sweep sweep = [&matrix](const std::vector<SweepColumn> &work) {
            sweep_full(matrix, work);
            return Status::ok;
        };
        const Status status = direct ? solve_full_direct(c, request, s, columns, ITER)
                              : method == Method::blocks
                                  ? solve_blocks(c, request, s, columns, ITER)
                                  : solve_iteratively(c.n, request.EPS, sweep, columns, ITER);
        if (failed(status))
            return status;
    }
    return Status::ok;
}

} // namespace

Status SOLVE(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR, View<c32, 3> PHID,
             ThreadState &thread, int (&ITER)[2]) {
    if (request.FACT == 1)
        ITER[0] = ITER[1] = 0;
    return run.memory.INCORE ? solve_in_core(run, request, PHIR, PHID, thread, ITER)
                             : solve_on_scratch(run, request, PHIR, PHID, thread, ITER);
}

std::int64_t solve_memory(const RunState &run) {
    int most = 0; // columns of a class
    for (int s = 1; s <= run.sym.NSYMR; ++s)
        most = std::max(most, run.sym.NMCLS[s]);
    const int n = run.mesh.NEQN, columns = most + run.periods.NBETAM;
    return method_of(run) == Method::direct ? 8ll * n * columns : iteration_memory(n, columns);
}

Status SOLVE_R(const RunState &run, const SolveRequest &request, View<c32, 2> PHIR, View<c32, 3> PHID,
               ThreadState &thread, int (&ITER)[2]) {
    if (method_of(run) != Method::direct)
        return MSGOUT(" Fully filled tank exists, ISOLVE=1 is expected! ");
    return SOLVE(run, request, PHIR, PHID, thread, ITER);
}
