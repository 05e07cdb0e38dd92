// The incident wave of a hand-over file: exp(-i K (x cos beta + y sin beta)) F(z), of modulus 1 in z = 0.
#pragma once

#include "post/images.hpp"

// F = cosh K (z + H) / cosh K H, exp(K z) in deep water, and its slope. Lengths in units of ULEN(1).
struct DepthProfile {
    double K, H; // H <= 0: deep water
    double value(double z) const;
    double slope(double z) const;
};
DepthProfile depth_profile(const P2fFile &p2f, int t);

struct WaveAt {
    c64 phi, gradient[3];
};
// Of period t and heading b at a point. Beside a wall only the part that is even about it, which is half the
// sum of the wave and its reflection.
WaveAt incident_wave(const P2fFile &p2f, int t, int b, const double (&at)[3]);
