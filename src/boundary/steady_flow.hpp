// The flows past the body of slow steady surge, sway and yaw, d = 1, 2, 3, under a rigid lid: streams -x, -y
// and (y, -x) and the sources that keep the hull tight. Once per run, before the periods; field points are
// shared among the cores, and the sums of a point have a fixed order.
#pragma once

#include "assembly/thread_state.hpp"

// STB1, STB2 and STB3 from the sources thread.SRCR (NEQN,>=3) of the preparatory solve and their velocity
// thread.VELR, which BVEL made for the lists WMODC, WMODM, WMODP. STB1 gets rows 1..NWLB(1) and columns 1, 2,
// the rest stays as it was. Failed: an integral has no value, or " RAM too small ".
[[nodiscard]] Status WDDSTB(const RunState &run, const ThreadState &thread, SteadyFlow &flow);

// STF1, STF2 and STF3 on the free-surface panels from STB2. Failed: as above.
[[nodiscard]] Status WDDSTF(const RunState &run, SteadyFlow &flow);
