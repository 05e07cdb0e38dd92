// The Green function of deep water for processors with AVX-512: points in their order,
// sixteen at a time, each lane with its own row of the table.
#pragma once

#include "green/vgrn98.hpp"

// Compiled in, and this processor has AVX-512 F, DQ, BW and VL.
bool wide_available();

// Deep water as VGRN98 does it; only where wide_available(). Equal to the sorted way within the bound of
// docs/numerics.md, not bit for bit.
void deep_wide(const GreenPoints &points, GreenOrder order, const GreenArrays &result);
