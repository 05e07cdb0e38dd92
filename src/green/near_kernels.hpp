// Kernels of the near field of finite depth, R <= H: pure polynomials, one block of points each.
#pragma once

#include "green/green_block.hpp"
#include "green/gstate.hpp"

// R <= H, Y >= H: stores the real parts, all of the function but 1/r and 1/rb (so 1/r1 is in).
void GDEEP(const GSTATE &state, GreenOrder order, GreenBlock &block);

// R <= H, Y < H: adds to the real parts what the bottom brings to F2, all but 1/r, 1/r1 and 1/rb. F2 must be
// there before.
void GNEAR(const GSTATE &state, GreenOrder order, GreenBlock &block);
