// The equations of a fully filled tank. Without a free surface the potential is defined up to
// a constant only.
#pragma once

#include "solve/class_columns.hpp"

// The reference panel that pins the solution of class s, 0: none. Only the class that is even in both planes
// holds the constant.
int tank_reference(const RunState &run, const SolveRequest &request, int s);

// The system of such a class with reference panel P: equation P is taken off all others of ordinary panels
// and replaced by "the solution at P is 0". What a panel mesh leaves of the condition that flow into the tank
// is flow out of it is so shared alike by all ordinary panels, and the solution depends on P by a constant
// only. Dipole panels have normal velocities as equations and stay as they are. TNKFAC factors the matrix A
// (NEQN,NEQN) in place, pivots to IPIV (NEQN); failed: singular, no message.
[[nodiscard]] Status TNKFAC(const RunState &run, int P, View<c32, 2> A, int *IPIV);
// TNKSOL solves for all columns with the factors of TNKFAC.
[[nodiscard]] Status TNKSOL(const RunState &run, int P, View<const c32, 2> LU, const int *IPIV,
                            const std::vector<RightHandSide> &columns, int (&ITER)[2]);

// The direct solution of one class, of a tank or not. P is its tank_reference.
struct DirectClass {
    const RunState &run;
    int s;
    int P;
};
// Failed: singular; the messages name the class and its right-hand sides.
[[nodiscard]] Status factor_class(const DirectClass &of_class, View<c32, 2> A, int *IPIV,
                                  const std::vector<RightHandSide> &columns);
[[nodiscard]] Status solve_class(const DirectClass &of_class, View<const c32, 2> LU, const int *IPIV,
                                 const std::vector<RightHandSide> &columns, int (&ITER)[2]);
