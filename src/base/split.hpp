// Complex arrays in split form, real and imaginary parts apart, and their vector loops. All arrays are
// contiguous, n long.
#pragma once

#include "base/types.hpp"

// A complex array in split form.
struct Split {
    f32 *re = nullptr;
    f32 *im = nullptr;
};
struct ConstSplit {
    const f32 *re = nullptr;
    const f32 *im = nullptr;
    ConstSplit(const f32 *r, const f32 *i) : re(r), im(i) {}
    ConstSplit(const Split &s) : re(s.re), im(s.im) {}
};

// The elements behind the first n.
inline Split behind(Split s, std::int64_t n) {
    return {s.re + n, s.im + n};
}

// sum += weight value, real weights.
void add_weighted(int n, const f32 *weight, ConstSplit value, Split sum);

// sum += sign value.
void add_signed(int n, f32 sign, ConstSplit value, Split sum);
// Real weights against a complex array, `count` lots of them; a sum does not depend on the others.
void weighted_sums(int n, int count, const f32 *const *weight, ConstSplit value, c32 *sum);
// Complex weights against a complex array.
c32 complex_sum(int n, ConstSplit weight, ConstSplit value);
// sum += factor value.
void add_scaled(int n, c32 factor, ConstSplit value, Split sum);
