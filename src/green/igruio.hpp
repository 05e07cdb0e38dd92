// The infinite-depth wave function F2 (vgrn98.hpp) with derivatives to the third order, as FGRUIO needs it at
// the images of its near field.
#pragma once

#include "base/array.hpp"
#include "base/types.hpp"
#include "green/vgrn98.hpp"

enum InfiniteValue { F_, F_X, F_Y, F_XY, F_YY, F_XYY, F_YYY, INFINITE_VALUES };

// Arrays of `n`, a multiple of GREEN_LANES.
struct InfinitePoints {
    int n = 0;
    const f32 *X = nullptr; // horizontal distance
    const f32 *Y = nullptr; // sum of the depths, > 0 where X = 0
    // What is evaluated: 1 F2 + 1/r1, 2 F2 alone, 3 F2 + 2 ln(r1 + Y), which is finite at r1 = 0; r1^2 = X^2
    // + Y^2.
    const int *ISNG = nullptr;
};

// Results, one array of n for each value.
struct InfiniteArrays {
    f32 *value[INFINITE_VALUES] = {};
    // The same from point `by` on.
    InfiniteArrays from(int by) const {
        InfiniteArrays moved = *this;
        for (f32 *&v : moved.value)
            v += by;
        return moved;
    }
};

struct InfiniteWork {
    GreenWork green;
    Array<f32, 1> zero, unread;
    Array<int, 1> selector;
    // False: no memory for n points.
    [[nodiscard]] bool alloc(int n);
};

// Evaluates by the table of deep water; the free-surface relation F_Y = -(F + 2/r1) gives what the
// table does not.
void IGRUIO(const InfinitePoints &points, InfiniteWork &work, const InfiniteArrays &result);

// F2 + 1/r1 alike, for Y above DISTANT: by its expansion in (-d/dY)^n (1/r1), n points. What it leaves out is
// 4e-9 or less, and falls with Y. (It takes less time than the table.)
constexpr f32 DISTANT = 20;
void IGRUIO_distant(int n, const f32 *X, const f32 *Y, const InfiniteArrays &result);
