// Panels side by side in the lanes of vector code, each with its own field point.
//
// The kernels are templates over the number P of panels: with P = 1 the four sides of a panel are the lanes,
// with P = 8 eight panels and their sides. Loops hold no branch: what no lane of a loop may do (a side of no
// length, a point on a side) is done with harmless numbers and left out of the sums. No lane reads another
// one, so the values of a panel do not depend on its company.
#pragma once

#include "rankine/panint.hpp"

#include <cstring>

constexpr int SIDES = 4;   // side k from vertex k to the next one, from 0
constexpr int ABREAST = 8; // panels of a batch

template <int P> using PerPanel = double[P];
template <int P> using PerSide = double[SIDES * P]; // side or vertex k of panel l at k P + l

template <int P> struct PanelLanes {
    alignas(P * sizeof(f32)) f32 XIV[SIDES * P], ETV[SIDES * P], SIDE[SIDES * P];
    alignas(P * sizeof(f32)) f32 up[3][P]; // the vertical in local axes
    alignas(P * sizeof(f32)) f32 width[P], area[P];
    alignas(64) PerPanel<P> X, Y, Z; // field points in the frames of the panels
};

// As PanelIntegrals. D and S always; order 1 SX and SY, order 2 DX to DZ; with the logarithm L and LZ, order
// 1 LX and LY, order 2 LZX and LZY.
template <int P, class Real> struct LaneIntegrals {
    alignas(P * sizeof(Real)) Real D[P], S[P], SX[P], SY[P], DX[P], DY[P], DZ[P];
    alignas(P * sizeof(Real)) Real L[P], LZ[P], LX[P], LY[P], LZX[P], LZY[P];
};

// The exact forms, with the status of PANINT.
template <int P> struct NearIntegrals : LaneIntegrals<P, double> { int status[P]; };

// The integrals of the one panel, those that were asked for.
template <class Real>
void put_integrals(const LaneIntegrals<1, Real> &I, int IGRAD, int ILOGF, PanelIntegrals &out) {
    const auto put = [](const Real(&from)[1], f32 &to) { to = static_cast<f32>(from[0]); };
    put(I.D, out.D);
    put(I.S, out.S);
    if (IGRAD != 0) {
        put(I.SX, out.SX);
        put(I.SY, out.SY);
        put(I.DX, out.DX);
        put(I.DY, out.DY);
        put(I.DZ, out.DZ);
    }
    if (ILOGF != 0) {
        put(I.L, out.L);
        put(I.LZ, out.LZ);
    }
    if (IGRAD != 0 && ILOGF != 0) {
        put(I.LX, out.LX);
        put(I.LY, out.LY);
        put(I.LZX, out.LZX);
        put(I.LZY, out.LZY);
    }
}

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
