// A block of points of FGRUIO and what its two regions share.
#pragma once

#include "green/fgruio.hpp"
#include "green/green_block.hpp"

#include <cmath>

struct DepthBlock {
    alignas(64) f32 X[GREEN_LANES];
    alignas(64) f32 Z[GREEN_LANES];
    alignas(64) f32 ZETA[GREEN_LANES];
    alignas(64) f32 re[DEPTH_VALUES][GREEN_LANES];
    alignas(64) f32 im[DEPTH_VALUES][GREEN_LANES];
};

// Value and derivatives of a term f(X, x); x = const + DZ z + DZETA zeta + DH H.
struct ImageTerm {
    f32 f, X, x, Xx, xx, Xxx, xxx;
};
template <int DZ, int DZETA, int DH>
[[gnu::always_inline]] inline void add_term(f32 (&v)[DEPTH_VALUES][GREEN_LANES], int k, const ImageTerm &t) {
    v[G_][k] += t.f;
    v[G_R][k] += t.X;
    v[G_Z][k] += DZ * t.x;
    v[G_ZETA][k] += DZETA * t.x;
    v[G_RZ][k] += DZ * t.Xx;
    v[G_RZETA][k] += DZETA * t.Xx;
    v[G_ZZ][k] += t.xx;
    v[G_ZZETA][k] += DZ * DZETA * t.xx;
    v[G_RZZ][k] += t.Xxx;
    v[G_RZZETA][k] += DZ * DZETA * t.Xxx;
    v[G_ZZZETA][k] += DZETA * t.xxx;
    if constexpr (DH != 0) {
        v[G_H][k] += DH * t.x;
        v[G_RH][k] += DH * t.Xx;
        v[G_RZETAH][k] += DH * DZETA * t.Xxx;
        v[G_ZETAH][k] += DH * DZETA * t.xx;
    }
}

// Stores the propagating mode: the imaginary parts, with `far` the real parts, too.
void depth_propagating(const HSTATE &state, f32 H, bool far, DepthBlock &block);
// H < 2 X: adds `modes` evanescent modes to the real parts and takes the singular terms off.
void depth_far(const HSTATE &state, f32 H, int modes, DepthBlock &block);
// H >= 2 X: stores the real parts. F[p][j]: the values of IGRUIO at the positions 2H - D, 2H + D, 4H - Y, Y.
constexpr int POSITIONS = 4;
void depth_near(const HSTATE &state, f32 H, const f32 *const (&F)[POSITIONS][INFINITE_VALUES],
                DepthBlock &block);
