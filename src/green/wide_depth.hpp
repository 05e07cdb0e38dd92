// The Green function of finite depth for processors with AVX-512: points are parted by regions, sixteen of
// one region are worked at a time.
#pragma once

#include "green/gstate.hpp"
#include "green/vgrn98.hpp"

// Depth H > 0 as VGRN98 does it; only where wide_available(). Equal to the sorted way within the bound of
// docs/numerics.md, not bit for bit.
void depth_wide(const GreenPoints &points, f32 H, const GSTATE &state, GreenOrder order,
                const GreenArrays &result);
