// The incident wave of a run for wave drift damping, with its derivatives by heading and frequency.
#pragma once

#include "assembly/thread_state.hpp"

// The deep-water wave number nu = K tanh(K H) and its first two derivatives by K; nu = K for H <= 0.
struct Dispersion {
    f32 NU = 0, NUK = 1, NUKK = 0;
};
Dispersion DISPD(f32 K, f32 H);

// Depth factors of the wave: C = cosh K (z + H) / cosh K H, S the same with sinh, and their derivatives by K;
// in deep water (H <= 0) both are exp(K z), the exponent not below -30.
struct DepthFactors {
    f32 C, S, CK, SK;
};
DepthFactors DEPFAC(f32 z, f32 H, f32 K);

// Frequency, depth and heading of a wave; VG = d nu / d K.
struct PlaneWave {
    f32 H, K, cos_beta, sin_beta, VG;
};
// The parity components (1 to 4 as in WaveComponents) of the wave at a point with normal n: P, its
// derivatives by heading PB, by nu PN and by both PNB; the gradient G (component, axis) and its heading
// derivative GB; the normal derivatives N, NB.
struct WaveDerivatives {
    c32 P[5], PB[5], PN[5], PNB[5];
    c32 G[5][4], GB[5][4];
    c32 N[5], NB[5];
};
void PLNWWD(const PlaneWave &wave, const f32 (&point)[3], const f32 (&normal)[3], WaveDerivatives &d);

// Fills, for wave number K and all panels, headings and classes, the right-hand sides 4 pi times the wave in
// PHID, its heading derivative in PHID2, its nu derivative in W2D0 and the mixed one in W2D0B; minus the
// normal derivatives of the first two in SRCD, SRCD2; and their gradients in VELD, VELD2. All of `thread`,
// W2.. and ..2 of thread.second.
void INCWWD(const RunState &run, f32 K, ThreadState &thread);
