#include "solve/tank.hpp"

#include "solve/lu.hpp"
#include "state/messages.hpp"

namespace {

// Takes value P off the values of the other ordinary panels.
void take_off(const RunState &run, int P, c32 *values) {
    const c32 reference = values[P - 1];
    for (int i = 1; i <= run.mesh.NEQN; ++i) {
        if (i != P && !is_dipole(run.dipoles, i))
            values[i - 1] -= reference;
    }
    values[P - 1] = 0;
}

} // namespace

int tank_reference(const RunState &run, const SolveRequest &request, int s) {
    return run.sym.ICLS[s] == 1 ? request.IRRX : 0;
}

Status TNKFAC(const RunState &run, int P, View<c32, 2> A, int *IPIV) {
    for (int j = 1; j <= run.mesh.NEQN; ++j)
        take_off(run, P, &A(1, j));
    A(P, P) = 1;
    return LUFACT(A, IPIV, run.mesh.NEQN);
}

Status TNKSOL(const RunState &run, int P, View<const c32, 2> LU, const int *IPIV,
              const std::vector<RightHandSide> &columns, int (&ITER)[2]) {
    for (const RightHandSide &c : columns)
        take_off(run, P, c.B);
    return solve_directly(LU, IPIV, run.mesh.NEQN, columns, ITER);
}

Status factor_class(const DirectClass &of_class, View<c32, 2> A, int *IPIV,
                    const std::vector<RightHandSide> &columns) {
    const auto &[run, s, P] = of_class;
    if (!failed(P != 0 ? TNKFAC(run, P, A, IPIV) : LUFACT(A, IPIV, run.mesh.NEQN)))
        return Status::ok;
    (void)MSGOUT(" Error in direct solver: left-hand-side is singular ", s);
    return report_columns(columns);
}

Status solve_class(const DirectClass &of_class, View<const c32, 2> LU, const int *IPIV,
                   const std::vector<RightHandSide> &columns, int (&ITER)[2]) {
    const auto &[run, s, P] = of_class;
    return P != 0 ? TNKSOL(run, P, LU, IPIV, columns, ITER)
                  : solve_directly(LU, IPIV, run.mesh.NEQN, columns, ITER);
}
