// A polynomial on a box is written by Chebyshev polynomials of the local variables, where the high ones are
// small, cut off there and written out in powers.
#include "green/depth_boxes.hpp"

#include "base/simd.hpp"

#include <cstring>

namespace {

constexpr int LENGTH = 12; // of the longest row of S and P
constexpr int KEPT = 8;    // Chebyshev polynomials that are looked at, full vectors

// Coefficients of T_0 to T_7, or of powers.
struct Series {
    double c[KEPT];
};

// T_n in powers of its variable.
struct ChebyshevPowers {
    Series T[KEPT] = {};
    constexpr ChebyshevPowers() {
        T[0].c[0] = T[1].c[1] = 1;
        for (int n = 2; n < KEPT; ++n) {
            for (int k = 0; k < KEPT; ++k)
                T[n].c[k] = (k > 0 ? 2 * T[n - 1].c[k - 1] : 0) - T[n - 2].c[k];
        }
    }
};
constexpr ChebyshevPowers IN_POWERS;

// z^n by Chebyshev polynomials of x, z = (2 box + 1 + x)/8.
struct BoxPowers {
    Series power[BOX_SIDE][LENGTH] = {};
    constexpr BoxPowers() {
        for (int box = 0; box < BOX_SIDE; ++box) {
            double a[LENGTH + 1] = {1};
            for (int n = 0; n < LENGTH; ++n) {
                for (int k = 0; k < KEPT; ++k)
                    power[box][n].c[k] = a[k];
                double b[LENGTH + 1] = {}; // x T_k = (T_(k-1) + T_(k+1))/2, x T_0 = T_1
                for (int k = 0; k < LENGTH; ++k)
                    b[k] = ((2 * box + 1) * a[k] +
                            (k == 1  ? a[0]
                             : k > 1 ? 0.5 * a[k - 1]
                                     : 0) +
                            0.5 * a[k + 1]) /
                           8;
                for (int k = 0; k < LENGTH; ++k)
                    a[k] = b[k];
            }
        }
    }
};
constexpr BoxPowers AT;

// A series that stays in registers while it is summed up.
using Sum [[gnu::vector_size(KEPT * sizeof(double))]] = double;

[[gnu::always_inline]] inline void add(double factor, const Series &from, Sum &to) {
    Sum series;
    std::memcpy(&series, from.c, sizeof series);
    to += factor * series;
}

// The rows of one column of boxes: s_j(t) by Chebyshev polynomials of x, j the power of v.
template <class Shape>
[[gnu::always_inline]] inline void column(const f32 *c, int box, Series (&rows)[Shape::ROWS]) {
    for (int row = 0; row < Shape::ROWS; ++row) {
        Sum s{};
        for (int i = 0; i <= Shape::DEGREE[row]; ++i)
            add(c[row_start<Shape>(row) + i], AT.power[box][Shape::DEGREE[row] - i], s);
        std::memcpy(rows[Shape::ROWS - 1 - row].c, &s, sizeof s);
    }
}

// One box, by Chebyshev polynomials of u and x within Box, in powers.
template <class Shape, class Box>
[[gnu::always_inline]] inline void one_box(const Series (&rows)[Shape::ROWS], int j, int place,
                                           f32 (&value)[Box::TERMS][BOXES]) {
    Sum powers[Box::ROWS] = {}; // of u, and of x
    for (int n = 0; n < Box::ROWS; ++n) {
        Sum cut{}, in_powers{};
        for (int p = n; p < Shape::ROWS; ++p)
            add(AT.power[j][p].c[n], rows[p], cut);
        for (int k = 0; k <= Box::DEGREE[Box::ROWS - 1 - n]; ++k)
            add(cut[k], IN_POWERS.T[k], in_powers);
        for (int m = n & 1; m <= n; m += 2)
            powers[m] += IN_POWERS.T[n].c[m] * in_powers;
    }
    for (int row = 0; row < Box::ROWS; ++row) {
        const int degree = Box::DEGREE[row], start = row_start<Box>(row);
        for (int i = 0; i <= degree; ++i)
            value[start + i][place] = static_cast<f32>(powers[Box::ROWS - 1 - row][degree - i]);
    }
}

template <class Shape, class Box>
[[gnu::always_inline]] inline void all_boxes(const f32 *c, f32 (&value)[Box::TERMS][BOXES]) {
    for (int i = 0; i < BOX_SIDE; ++i) {
        Series rows[Shape::ROWS];
        column<Shape>(c, i, rows);
        for (int j = 0; j < BOX_SIDE; ++j)
            one_box<Shape, Box>(rows, j, i + BOX_SIDE * j, value);
    }
}

} // namespace

VORDA_SIMD void depth_boxes(const f32 (&C91)[91], const f32 (&C57)[57], DepthBoxes &boxes) {
    all_boxes<ShapeS, BoxS>(C91, boxes.S);
    all_boxes<ShapeP, BoxP>(C57, boxes.P);
}
