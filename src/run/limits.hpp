// What this version of the solver does not do. A run that asks for it ends with a message, never with a wrong result.
#pragma once

#include "run/state.hpp"

// Tests the input after the cross-checks. Failed: one message per case is out.
[[nodiscard]] Status within_limits(const RunState &run);
