// Vectors of three components, real or complex.
#pragma once

#include <array>
#include <complex>

using Vector3 = std::array<double, 3>;
using Complex3 = std::array<std::complex<double>, 3>;

template <class A, class B> auto cross(const std::array<A, 3> &a, const std::array<B, 3> &b) {
    return std::array{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
template <class A, class B> auto dot(const std::array<A, 3> &a, const std::array<B, 3> &b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
template <class A, class B> auto times(A factor, const std::array<B, 3> &a) {
    return std::array{factor * a[0], factor * a[1], factor * a[2]};
}
template <class A, class B> auto plus(const std::array<A, 3> &a, const std::array<B, 3> &b) {
    return std::array{a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
inline Complex3 conj(const Complex3 &a) {
    return {std::conj(a[0]), std::conj(a[1]), std::conj(a[2])};
}
inline Vector3 real(const Complex3 &a) {
    return {a[0].real(), a[1].real(), a[2].real()};
}
