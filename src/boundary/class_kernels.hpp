// Kernels of a few field points, summed over the images with the signs of each symmetry class, and their
// products with columns of the solution: every kernel is formed once for a pair and an image, whatever is
// multiplied with it.
#pragma once

#include "green/field_panels.hpp"

// Field points of one product of matrices. Fixed, so that a result does not depend on the number of threads.
constexpr int FIELD_STRIP = 16;

struct FieldStrip {
    int first, last;
};
// Number of strips of `count` field points, and the k-th of them, from 1.
constexpr int strips_of(int count) {
    return (count + FIELD_STRIP - 1) / FIELD_STRIP;
}
constexpr FieldStrip strip_of(int k, int count) {
    return {(k - 1) * FIELD_STRIP + 1, k * FIELD_STRIP < count ? k * FIELD_STRIP : count};
}

// Solution columns or results: `columns` of them, each `rows` long, side by side.
template <class T> struct ColumnBlock {
    T *data;
    int rows, columns;
};

// The radiation columns of class c, which SYMSET numbers one after the other, and all headings of class c. T
// is c32 or const c32.
template <class T> ColumnBlock<T> radiation_columns(const Symmetry &sym, int c, View<T, 2> columns) {
    return {&columns(1, sym.MODPOS(sym.MODCLS(1, c))), static_cast<int>(columns.dim(1)), sym.NMCLS[c]};
}
template <class T> ColumnBlock<T> heading_columns(int c, View<T, 3> columns) {
    return {&columns(1, 1, c), static_cast<int>(columns.dim(1)), static_cast<int>(columns.dim(2))};
}
// The normal velocity VEL of the mode of each radiation column, as complex columns (NEQN,NSYMD).
// False: no memory.
[[nodiscard]] bool velocity_columns(const Mesh &mesh, const Symmetry &sym, Array<c32, 2> &columns);

// Several kernels over n panels; kernel and class share the last index, (kernel-1) NSYMR + class.
struct ClassKernels {
    Array<c32, 3> K;       // (n,FIELD_STRIP,kernels NSYMR)
    Array<c32, 2> product; // (FIELD_STRIP,columns)
    int classes = 0;       // NSYMR
    // `columns`: the most of one product. False: no memory.
    [[nodiscard]] bool alloc(int n, int kernels, int columns, int NSYMR);
    void clear() { K.fill(0); }
    // Adds image m (1..4) at the p-th point of the strip: a column of `values` to a kernel.
    void add_image(const Symmetry &sym, int m, int p, const KernelValues &values, int column, int kernel);
    // result(i,j) += factor times the sum over NP of K(NP,i) X(NP,j), i the points of the strip.
    void multiply(int kernel, int c, c32 factor, ColumnBlock<const c32> X, FieldStrip strip,
                  ColumnBlock<c32> result);
};
