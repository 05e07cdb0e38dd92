// The period-independent influence matrices.
#pragma once

#include "state/state.hpp"

// Mark in a pair code: both panels lie in z = 0.
constexpr int CODE_SURFACE = 4096;

// The part of the rows that a process fills of a store that several share: every parts-th block of rows.
struct RowShare {
    int part = 0, parts = 1; // part = 0 .. parts - 1
};

// Fills the Rankine store, which is allocated for the run and zero on entry: the integrals of 1/rho and of
// its images in the free surface and in the bottom for all pairs of panels nearer than sqrt(RKNEAR region2),
// summed over the images into the symmetry classes, the code word of each pair and the right-hand sides
// RHSRAN; of a store that is shared, the rows of `share`. The rows are shared among the threads; the result
// does not depend on their number. Failed: an integral has no value, or two panels lie in the free surface
// with ILOG=0, or memory is short.
[[nodiscard]] Status RANKIN(const Options &opt, const Bodies &bodies, const Mesh &mesh,
                            const Dipoles &dipoles, const Symmetry &sym, RankineStore &store,
                            RowShare share = {});
