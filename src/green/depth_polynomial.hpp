// The shape of the near-field polynomials of finite depth and their evaluation.
//   S(t, w) = sum over j of w^j s_j(t),   P(t, y) = sum over j of y^j p_j(t),   S3 like S
// Coefficients are stored row by row, the row of the highest j first, a row by falling power of t; the last
// one is the constant.
#pragma once

#include "base/types.hpp"

struct ShapeS {
    static constexpr int ROWS = 9, TERMS = 91;
    static constexpr int DEGREE[ROWS] = {5, 7, 8, 9, 10, 10, 11, 11, 11}; // of s_8 to s_0
};

struct ShapeS3 {
    static constexpr int ROWS = 8, TERMS = 33;
    static constexpr int DEGREE[ROWS] = {1, 2, 3, 3, 4, 4, 4, 4}; // of s_7 to s_0
};

struct ShapeP {
    static constexpr int ROWS = 10, TERMS = 57;
    static constexpr int DEGREE[ROWS] = {2, 3, 4, 4, 5, 5, 6, 6, 6, 6}; // of p_9 to p_0
};

// First coefficient of a row, counted from 0.
template <class Shape> constexpr int row_start(int row) {
    int start = 0;
    for (int r = 0; r < row; ++r)
        start += Shape::DEGREE[r] + 1;
    return start;
}
static_assert(row_start<ShapeS>(ShapeS::ROWS) == ShapeS::TERMS);
static_assert(row_start<ShapeP>(ShapeP::ROWS) == ShapeP::TERMS);
static_assert(row_start<ShapeS3>(ShapeS3::ROWS) == ShapeS3::TERMS);

// Sums of a polynomial at (t, v), v = w or y: value and derivatives; `half_vv` is half the second derivative,
// as nested division gives it.
struct PolynomialSums {
    f32 f = 0, t = 0, v = 0, tv = 0, half_vv = 0;
};

struct PolynomialRow {
    f32 value, slope;
};

// A row and its slope by nested multiplication. Recursion instead of loops, here and below: the loop over the
// points around it can only become vector code when nothing inside it loops.
template <int DEGREE> [[gnu::always_inline]] inline PolynomialRow polynomial_row(const f32 *c, f32 t) {
    if constexpr (DEGREE == 0) {
        return {c[0], 0};
    } else {
        const PolynomialRow above = polynomial_row<DEGREE - 1>(c, t);
        return {above.value * t + c[DEGREE], DEGREE == 1 ? above.value : above.slope * t + above.value};
    }
}

// One row more of the nested multiplication by v.
template <bool SECOND>
[[gnu::always_inline]] inline void add_row(PolynomialSums &s, PolynomialRow row, f32 v) {
    if constexpr (SECOND) {
        s.half_vv = s.half_vv * v + s.v;
        s.tv = s.tv * v + s.t;
    }
    s.v = s.v * v + s.f;
    s.f = s.f * v + row.value;
    s.t = s.t * v + row.slope;
}

template <class Shape, bool SECOND, int ROW = 1>
[[gnu::always_inline]] inline void add_rows(const f32 *c, f32 t, f32 v, PolynomialSums &s) {
    if constexpr (ROW < Shape::ROWS) {
        add_row<SECOND>(s, polynomial_row<Shape::DEGREE[ROW]>(c + row_start<Shape>(ROW), t), v);
        add_rows<Shape, SECOND, ROW + 1>(c, t, v, s);
    }
}

// The same at two values of v, which share the rows.
template <class Shape, bool SECOND, int ROW = 1>
[[gnu::always_inline]] inline void add_rows(const f32 *c, f32 t, f32 v1, f32 v2, PolynomialSums &s1,
                                            PolynomialSums &s2) {
    if constexpr (ROW < Shape::ROWS) {
        const PolynomialRow row = polynomial_row<Shape::DEGREE[ROW]>(c + row_start<Shape>(ROW), t);
        add_row<SECOND>(s1, row, v1);
        add_row<SECOND>(s2, row, v2);
        add_rows<Shape, SECOND, ROW + 1>(c, t, v1, v2, s1, s2);
    }
}

// Without SECOND `tv` and `half_vv` stay 0.
template <class Shape, bool SECOND>
[[gnu::always_inline]] inline PolynomialSums polynomial_sums(const f32 *c, f32 t, f32 v) {
    const PolynomialRow row = polynomial_row<Shape::DEGREE[0]>(c, t);
    PolynomialSums s{row.value, row.slope};
    add_rows<Shape, SECOND>(c, t, v, s);
    return s;
}
template <class Shape, bool SECOND>
[[gnu::always_inline]] inline void polynomial_sums(const f32 *c, f32 t, f32 v1, f32 v2, PolynomialSums &s1,
                                                   PolynomialSums &s2) {
    const PolynomialRow row = polynomial_row<Shape::DEGREE[0]>(c, t);
    s1 = s2 = {row.value, row.slope};
    add_rows<Shape, SECOND>(c, t, v1, v2, s1, s2);
}
