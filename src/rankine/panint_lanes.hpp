// Panels side by side in the lanes of vector code, each with its own field point.
//
// The kernels are templates over the number P of panels: with P = 1 the four sides of a panel are the lanes,
// with P = 8 eight panels and their sides. Loops hold no branch: what no lane of a loop may do (a side of no
// length, a point on a side) is done with harmless numbers and left out of the sums. No lane reads another
// one, so the values of a panel do not depend on its company.
#pragma once

#include "base/types.hpp"

#include <cstring>

constexpr int SIDES = 4;   // side k from vertex k to the next one, from 0
constexpr int ABREAST = 8; // panels of a batch

template <int P> using PerPanel = double[P];
template <int P> using PerSide = double[SIDES * P]; // side or vertex k of panel l at k P + l

template <int P> struct PanelLanes {
    alignas(64) f32 XIV[SIDES * P], ETV[SIDES * P]; // vertices
    alignas(64) f32 SIDE[SIDES * P];
    alignas(64) f32 up[3][P]; // the vertical in local axes
    alignas(64) f32 width[P], area[P];
    alignas(64) PerPanel<P> X, Y, Z; // field points in the frames of the panels
};

// As PanelIntegrals. D and S always; order 1 SX and SY, order 2 DX to DZ; with the logarithm L and LZ, order 1
// LX and LY, order 2 LZX and LZY, and the status of PANINT.
template <int P> struct NearIntegrals {
    alignas(64) PerPanel<P> D, S, SX, SY, DX, DY, DZ;
    alignas(64) PerPanel<P> L, LZ, LX, LY, LZX, LZY;
    int status[P];
};

// Four values in a register: those of the next vertex come from it, not from memory that was just written.
template <int P> [[gnu::always_inline]] inline void next_vertex(const PerSide<P> &first, PerSide<P> &second) {
    if constexpr (P == 1) {
        using Register [[gnu::vector_size(SIDES * sizeof(double))]] = double;
        Register x;
        std::memcpy(&x, first, sizeof x);
        const Register next = __builtin_shufflevector(x, x, 1, 2, 3, 0);
        std::memcpy(second, &next, sizeof next);
    } else {
        std::memcpy(second, first + P, (SIDES - 1) * P * sizeof(double));
        std::memcpy(second + (SIDES - 1) * P, first, P * sizeof(double));
    }
}

// The value of each panel at each of its sides.
template <int P> [[gnu::always_inline]] inline void to_sides(const PerPanel<P> &panel, PerSide<P> &side) {
    for (int k = 0; k < SIDES; ++k)
        for (int l = 0; l < P; ++l)
            side[k * P + l] = panel[l];
}

template <int P> [[gnu::always_inline]] inline void sum_sides(const PerSide<P> &side, PerPanel<P> &sum) {
#pragma omp simd
    for (int l = 0; l < P; ++l)
        sum[l] = ((side[l] + side[P + l]) + side[2 * P + l]) + side[3 * P + l];
}
