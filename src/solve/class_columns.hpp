// The right-hand sides of a class and what is done with them once its matrix is ready.
#pragma once

#include "solve/itrcc.hpp"
#include "solve/solve.hpp"

#include <vector>

struct RightHandSide {
    c32 *B;         // (NEQN)
    bool radiation; // else diffraction
    int label;      // mode or heading
};
// The modes of class s in the radiation array, then the headings in the diffraction array.
std::vector<RightHandSide> columns_of_class(const RunState &run, const SolveRequest &request,
                                            View<c32, 2> PHIR, View<c32, 3> PHID, int s);
// The right-hand sides that have no solution, one message each; failed.
Status report_columns(const std::vector<RightHandSide> &columns);

// Solves with the factors of CGETRF for all columns.
[[nodiscard]] Status solve_directly(View<const c32, 2> LU, const int *IPIV, int n,
                                    const std::vector<RightHandSide> &columns, int (&ITER)[2]);
// Solves by iteration. Every column is tried before a failure of one is returned.
[[nodiscard]] Status solve_iteratively(int n, f32 EPS, const Sweep &sweep,
                                       const std::vector<RightHandSide> &columns, int (&ITER)[2]);
