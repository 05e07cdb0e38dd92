// Fluid velocities on the body.
#pragma once

#include "assembly/thread_state.hpp"
#include "state/symmetry.hpp"

// The velocity vector at every panel centroid from the source strengths, class by class: thread.VELR from
// the radiation sources thread.SRCR, and thread.VELD from thread.SRCD, through the influence
// thread.VCORE. Nothing is done for IRAD=-1 or IDIFF < 0. The incident wave is not part of VELD. Each axis of
// a class is one product of matrices, worked in strips of rows of fixed size with serial BLAS calls, so that
// the result does not depend on the number of threads; without INCORE the rows of unit 62 are streamed.
// Failed: " RAM too small to allocate BVEL arrays ".
[[nodiscard]] Status BVEL(const RunState &run, ThreadState &thread);

// The same for the radiation columns of these modes alone.
[[nodiscard]] Status BVEL(const RunState &run, const ModeLists &modes, ThreadState &thread);

// The same with IWADD=1, where VELD and VELD2 hold the velocities of the incident wave and of its heading
// derivative: those of the sources SRCD and SRCD2 are added.
[[nodiscard]] Status BVELWD(const RunState &run, ThreadState &thread);
