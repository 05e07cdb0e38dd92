// Wave numbers of the modes of a given depth H (times nu).
#pragma once

#include <algorithm>
#include <cmath>

// Root m of m tanh(m) = H to some 1e-15: what k = m/H lacks is multiplied with the distance in the phase
// of a wave.
inline double propagating_root(double H) {
    const double E0 = std::exp(-std::min(2 * H, 30.0));
    double m = H <= 2 ? std::sqrt(H) * (1 + 0.169 * H + 0.031 * H * H) : H + H * E0 * (2 - 12 * E0);
    if (H > 4.8) { // the logarithm below has no digits left; this converges by 4 H exp(-2 H) a step
        for (int step = 0; step < 4; ++step)
            m = H / std::tanh(m);
        return m;
    }
    for (int step = 0; step < 2; ++step) {
        // Third-order step on atanh(H/m) = m. The logarithm of (m + H)/(m - H) is taken as log1p: at small H
        // the quotient is near 1 and its own rounding would be all the error of k.
        const double q = (H - m) * (H + m), p = 1 / (H - q);
        const double f = (0.5 * std::log1p(2 * H / (m - H)) - m) * p;
        m -= f * (1 + H * m * f * p) * q;
    }
    return m;
}

// Root m = n pi - y of m tan(m) = -H, n = 1, 2, ..., in the precision T: gives y from the y of n - 1 (not
// read for n = 1). One step serves single precision, two double.
template <class T> T evanescent_angle(T H, int n, T y, int steps) {
    const T x = H / (H + T(2.3333));
    y = n == 1 ? (T(0.0371) / H + T(0.1191) + (T(4.3152) - T(2.8768) * x) * x) * x : y * x;
    for (int step = 0; step < steps; ++step) {
        // Third-order step on atan(H/m) = y.
        const T m = static_cast<T>(n) * T(3.14159265358979323846) - y;
        const T S = m * m + H * H, p = 1 / (H - S), f = (std::atan(H / m) - y) * p;
        y -= S * f * (1 + m * p * f * H);
    }
    return y;
}

// Quarter turns that a wave of the number k makes in a unit of length.
inline double quarter_turns(double k) {
    return k * (2 / 3.14159265358979323846);
}
