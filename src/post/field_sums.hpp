// The sums of a field point over panels.
#pragma once

#include "base/types.hpp"

// Sum of K X over n panels, real and imaginary parts apart, in double.
struct SplitColumn {
    const f32 *re, *im;
};
std::complex<double> product(int n, SplitColumn K, SplitColumn X);
