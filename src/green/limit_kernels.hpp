// Kernels of the Green function at the limit frequencies, one block of points each: lengths over H, in deep
// water in any unit. They store the real parts.
#pragma once

#include "green/green_block.hpp"

enum class Limit {
    zero,    // the surface is a rigid lid
    infinite // G = 0 there
};

// Depth H: R <= H by images, R > H by modes. ZB and ZETAB of the block are 1 - z and 1 - zeta.
void limit_images(Limit limit, GreenOrder order, GreenBlock &block);
void limit_modes(Limit limit, GreenOrder order, GreenBlock &block);
// Deep water.
void limit_pair(Limit limit, GreenOrder order, GreenBlock &block);
