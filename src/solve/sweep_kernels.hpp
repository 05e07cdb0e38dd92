// Inner loops of the iterative solver. Matrix elements are complex numbers as they are stored, vectors
// are split into real and imaginary arrays. What becomes of a vector does not depend on the vectors that are
// worked beside it.
#pragma once

#include "base/split.hpp"

#include <cstdint>

// v[i] -= y column[i]; y is a real part and an imaginary part.
void subtract_column(int n, const c32 *column, const f32 (&y)[2], Split v);
// Four columns, and how far behind their elements those stand that are wanted next; the memory is asked for
// them meanwhile.
struct FourColumns {
    const c32 *column[4];
    std::int64_t ahead = 0;
};
// v_k[i] -= sum of y_kc column_c[i] over four columns, for 1 to 8 vectors; y_k holds the real parts, then the
// imaginary ones.
void subtract_four_columns(int n, const FourColumns &columns, int vectors, const f32 (*y)[8], const Split *v);
// sum_c += sum over i of row_c[i] y[i] for four rows; sum holds the real parts, then the imaginary ones.
void add_four_products(int n, const c32 *const (&row)[4], ConstSplit y, f32 (&sum)[8]);

// Sum of conj(a[i]) b[i], in double.
c64 hermitian_product(int n, ConstSplit a, ConstSplit b);
// Sum of abs(a[i])^2, in double.
double squared_norm(int n, ConstSplit a);
// out[i] = factor a[i].
void scale_vector(int n, c32 factor, ConstSplit a, Split out);
// out[i] += a[i].
void add_vector(int n, ConstSplit a, Split out);
// The largest abs(a[i]) / scale[i].
f32 largest_ratio(int n, ConstSplit a, const f32 *scale);
