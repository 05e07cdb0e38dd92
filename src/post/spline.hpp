// Cubic spline and the integral of it times exp(i x t), exact for the spline.
#pragma once

#include <complex>
#include <vector>

class CubicSpline {
  public:
    // Through at least two points of rising x; slope 0 at the first one when `level`, else no curvature
    // there; no curvature at the last one.
    CubicSpline(std::vector<double> x, std::vector<double> y, bool level);
    // Integral over all x of f(x) exp(i x t). Pieces of many oscillations by parts, so that their number does
    // not count; those of few by Gauss points, since the terms of the parts would cancel there.
    std::complex<double> transform(double t) const;

  private:
    std::vector<double> x_, y_, curvature_;
};
