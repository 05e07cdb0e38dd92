// The incident wave on the panels.
#pragma once

#include "assembly/thread_state.hpp"

// The four parity components of the incident wave at one point and their gradients: 1 even-even, 2 odd-even,
// 3 odd-odd, 4 even-odd in x, y. Their sum is the potential F(z) exp(-i K (x cos beta + y sin beta)) of
// modulus 1 at z = 0, with F = exp(K z) in deep water and cosh K (z + H) / cosh K H else. Gradient only when
// asked for.
struct WaveComponents {
    c32 C[5];     // from 1
    c32 DC[5][4]; // component and axis, from 1
};
void PLNWAV(f32 HBOT, f32 K, f32 sin_beta, f32 cos_beta, const f32 (&point)[3], bool gradient,
            WaveComponents &wave);

// Parity components P of the incident wave at a point and their derivatives PB by the heading, components
// from 1 as in WaveComponents.
void PLNWFS(f32 HBOT, f32 K, f32 sin_beta, f32 cos_beta, const f32 (&point)[3], c32 (&P)[5], c32 (&PB)[5]);

// Fills PHID, PHI0 and SRCD of the thread for wave number K on all panels, headings and classes. All stay
// zero for K <= 1e-6, where there is no incident wave.
void INCWAV(const RunState &run, f32 K, ThreadState &thread);

// Adds the incident wave to the scattered potential.
void ADDINC(ThreadState &thread);
