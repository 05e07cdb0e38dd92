// Modes of vibration of a uniform Euler-Bernoulli beam of unit length, s = 0 ... 1: closed forms (Blevins,
// Formulas for natural frequency and mode shape, 1979, table 8-1, and 8-16 for torsion).
#pragma once

enum class BeamEnds {
    free_free,   // both ends free
    clamped_free // held at s = 0
};
// The deflection, or turn, at a place and its two derivatives by s. It is 1 at s = 1.
struct BeamValue {
    double w = 0, slope = 0, curvature = 0;
};

// Frequency parameter beta of bending mode n = 1, 2, ...: omega^2 = beta^4 EI / (m L^4). Free beams have no
// rigid modes among theirs: 4.730, 7.853, ...; 1.875, 4.694, ... when held.
double bending_parameter(BeamEnds ends, int n);
BeamValue bending_mode(BeamEnds ends, double beta, double s);
// Likewise for torsion: omega^2 = beta^2 GJ / (J L^2), beta = n pi, or (n - 1/2) pi.
double torsion_parameter(BeamEnds ends, int n);
BeamValue torsion_mode(BeamEnds ends, double beta, double s);
