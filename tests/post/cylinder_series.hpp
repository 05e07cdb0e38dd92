// The diffraction series of a circular cylinder of radius 1 that stands on the bottom (R. C. MacCamy and R.
// A. Fuchs, 1954), for the wave exp(-i K x) that travels along x.
#pragma once

#include "base/types.hpp"

#include <cmath>
#include <complex>
#include <numbers>

namespace series {

constexpr int TERMS = 30;
constexpr double PI = std::numbers::pi;

// The Hankel function of outgoing waves and its slope.
inline c64 hankel(int m, double x) {
    return {std::cyl_bessel_j(m, x), -std::cyl_neumann(m, x)};
}
inline c64 slope(int m, double x) {
    return m == 0 ? -hankel(1, x) : (hankel(m - 1, x) - hankel(m + 1, x)) / 2.0;
}

// The whole wave over F(z) at a distance of r >= 1 from the axis.
inline c64 wave(double K, double r, double theta) {
    c64 sum = 0;
    for (int m = 0; m <= TERMS; ++m) {
        const c64 H = slope(m, K);
        const c64 f = std::cyl_bessel_j(m, K * r) - H.real() / H * hankel(m, K * r);
        sum += (m == 0 ? 1.0 : 2.0) * std::pow(c64(0, -1), m) * f * std::cos(m * theta);
    }
    return sum;
}

} // namespace series
