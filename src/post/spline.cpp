#include "post/spline.hpp"

#include "base/types.hpp"

#include <cmath>
#include <cstddef>

CubicSpline::CubicSpline(std::vector<double> x, std::vector<double> y, bool level)
    : x_(std::move(x)), y_(std::move(y)), curvature_(x_.size()) {
    // Tridiagonal equations of the curvatures, eliminated from the front.
    const std::size_t n = x_.size();
    std::vector<double> upper(n), right(n);
    if (level) {
        const double h = x_[1] - x_[0];
        upper[0] = 0.5;
        right[0] = 3 * (y_[1] - y_[0]) / (h * h);
    }
    for (std::size_t k = 1; k + 1 < n; ++k) {
        const double a = x_[k] - x_[k - 1], b = x_[k + 1] - x_[k];
        const double pivot = 2 * (a + b) - a * upper[k - 1];
        upper[k] = b / pivot;
        right[k] = (6 * ((y_[k + 1] - y_[k]) / b - (y_[k] - y_[k - 1]) / a) - a * right[k - 1]) / pivot;
    }
    for (std::size_t k = n - 1; k-- > 0;)
        curvature_[k] = right[k] - upper[k] * curvature_[k + 1];
}

std::complex<double> CubicSpline::transform(double t) const {
    constexpr double FEW = 3; // radians over a piece
    constexpr double POINT[4] = {0.1834346424956498, 0.5255324099163290, 0.7966664774136267,
                                 0.9602898564975363};
    constexpr double WEIGHT[4] = {0.3626837833783620, 0.3137066458778873, 0.2223810344533745,
                                  0.1012285362903763};
    c64 sum = 0;
    for (std::size_t k = 0; k + 1 < x_.size(); ++k) {
        const double a = x_[k], h = x_[k + 1] - a, p = curvature_[k], q = curvature_[k + 1];
        const double slope = (y_[k + 1] - y_[k]) / h - h * (2 * p + q) / 6, third = (q - p) / h;
        if (std::abs(h * t) < FEW) {
            for (int g = 0; g < 8; ++g) {
                const double u = h / 2 * (1 + (g < 4 ? -POINT[g] : POINT[g - 4]));
                const double f = y_[k] + u * (slope + u * (p / 2 + u * third / 6));
                sum += h / 2 * WEIGHT[g % 4] * f * std::polar(1.0, (a + u) * t);
            }
            continue;
        }
        const double slope_end = slope + h * (p + q) / 2;
        const c64 s = 1.0 / c64(0, t); // each integration by parts
        const auto parts = [&](double f, double f1, double f2) {
            return s * (f - s * (f1 - s * (f2 - s * third)));
        };
        sum += std::polar(1.0, (a + h) * t) * parts(y_[k + 1], slope_end, q) -
               std::polar(1.0, a * t) * parts(y_[k], slope, p);
    }
    return sum;
}
