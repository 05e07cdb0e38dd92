// Accelerated Gauss-Seidel iteration for a set of right-hand sides of one complex system.
#pragma once

#include "base/split.hpp"
#include "state/state.hpp"

#include <functional>
#include <vector>

// One right-hand side in a sweep, A = T + U with T the lower (block) triangle. r: in the residual x, out -U
// y; y: out, T^-1 x.
struct SweepColumn {
    Split r;
    Split y;
};
// One pass over the matrix for all columns; what becomes of a column does not depend on the others.
using Sweep = std::function<Status(const std::vector<SweepColumn> &)>;

enum class Outcome { converged, not_converged, singular };
struct IterativeColumn {
    c32 *B = nullptr; // in the right-hand side, out the solution (N)
    int ITER = 0;     // out: number of accelerated steps
    Outcome outcome = Outcome::converged;
};

// Solves for all columns, as many at a time as memory allows, with at most MAXIT-1 steps each. After each
// sweep the iterate becomes the affine combination of all iterates so far with the smallest residual (reduced
// rank extrapolation; Smith, Ford and Sidi, SIAM Review 29, 1987). Each right-hand side is worked in units of
// its largest modulus; a column has converged when each element of its residual is below EPS in these units.
// A right-hand side of zeros has the solution 0 after one step. A column that has not converged holds its
// last iterate, one whose small system is singular no solution; the caller reports both. Failed: memory
// (" RAM too small. Allocation error in SOLVE "), or the sweep.
[[nodiscard]] Status ITRCC(int N, f32 EPS, const Sweep &sweep, std::vector<IterativeColumn> &columns);
// Bytes that it takes for so many columns.
std::int64_t iteration_memory(int N, int columns);
