// The infinite-depth wave function in double precision, by its definition: the reference of the table
// generator and of the tests.
//   F2(X, Y) = 2 PV integral over s from 0 to infinity of exp(-s Y) J0(s X) / (s - 1) ds
// From d(e^Y F2)/dY = -2 e^Y / r1 and F2(X, 0) = -pi (H0(X) + Y0(X)), with the Struve function H0 (Abramowitz
// & Stegun 12.1), follow forms whose integrands are positive and smooth, so that nothing cancels.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

constexpr double PI_D = 3.14159265358979323846;

// Gauss-Legendre rule of 16 points on (-1, 1).
struct GaussRule {
    static constexpr int N = 16;
    std::array<double, N> x{}, w{};
    GaussRule() {
        for (int i = 0; i < N; ++i) {
            double t = std::cos(PI_D * (i + 0.75) / (N + 0.5)), slope = 1;
            for (int step = 0; step < 100; ++step) {
                double p0 = 1, p1 = t;
                for (int n = 2; n <= N; ++n) {
                    const double p2 = ((2 * n - 1) * t * p1 - (n - 1) * p0) / n;
                    p0 = p1;
                    p1 = p2;
                }
                slope = N * (t * p1 - p0) / (t * t - 1);
                const double change = p1 / slope;
                t -= change;
                if (std::abs(change) < 1e-16)
                    break;
            }
            x[i] = t;
            w[i] = 2 / ((1 - t * t) * slope * slope);
        }
    }
    template <class F> double operator()(double a, double b, F f) const {
        double sum = 0;
        for (int i = 0; i < N; ++i)
            sum += w[i] * f(0.5 * (a + b) + 0.5 * (b - a) * x[i]);
        return 0.5 * (b - a) * sum;
    }
};

// A function and its slope in X.
struct ValueSlope {
    double value = 0, slope = 0;
};

struct F2Definition {
    GaussRule gauss;

    // Struve function H0 by its power series, for X <= 3 or so.
    static ValueSlope struve_h0(double X) {
        double term = 2 / PI_D * X, value = 0, slope = 0;
        for (int k = 0; k < 40; ++k) {
            value += term;
            slope += term * (2 * k + 1) / X;
            term *= -X * X / ((2 * k + 3.0) * (2 * k + 3.0));
        }
        return {value, slope};
    }

    // 1 - J0(X), which keeps its digits at small X.
    static double one_minus_j0(double X) {
        double term = X * X / 4, sum = 0;
        for (int k = 2; k < 40; ++k) {
            sum += term;
            term *= -X * X / (4.0 * k * k);
        }
        return sum;
    }

    // exp(Y) F2 + 2 J0 ln(r1 + Y) + (pi Y0 - 2 J0 ln X): what is left when the logarithm is taken out, X <=
    // 3, Y < 4 or so. It equals -pi H0(X) - 2 integral over t from 0 to Y of (e^t - J0(X)) / sqrt(X^2 + t^2)
    // dt, all of one sign.
    ValueSlope near_numerator(double X, double Y) const {
        X = std::max(X, 1e-13);
        const double top = std::asinh(Y / X), m = one_minus_j0(X), r1 = std::hypot(X, Y);
        double value = 0, slope = 0;
        const int panels = 1 + static_cast<int>(1.5 * top);
        for (int p = 0; p < panels; ++p) { // t = X sinh(theta)
            const double a = top * p / panels, b = top * (p + 1) / panels;
            value += gauss(a, b, [&](double th) { return std::expm1(X * std::sinh(th)); });
            slope += gauss(a, b, [&](double th) {
                const double c = std::cosh(th);
                return std::expm1(X * std::sinh(th)) / (X * c * c);
            });
        }
        const ValueSlope h0 = struve_h0(X);
        return {-PI_D * h0.value - 2 * value - 2 * m * top,
                -PI_D * h0.slope - 2 * ::j1(X) * top + 2 * slope + 2 * m * Y / (X * r1)};
    }

    // Integral over t from 0 to Y of exp(t - Y) / sqrt(X^2 + t^2) dt, X > 0.
    ValueSlope growing_integral(double X, double Y) const {
        ValueSlope sum;
        for (double b = Y; b > 0 && Y - b < 45;) {
            const double h = std::min(b, std::min(1.5, std::max(X, 0.5 * b)));
            sum.value += gauss(b - h, b, [&](double t) { return std::exp(t - Y) / std::hypot(X, t); });
            sum.slope -=
                gauss(b - h, b, [&](double t) { return X * std::exp(t - Y) / std::pow(X * X + t * t, 1.5); });
            b -= h;
        }
        return sum;
    }

    // F2 + 2 pi exp(-Y) Y0(X), the part without waves, X >= 1 or so:
    // -2 (exp(-Y) integral over w from 0 to infinity of exp(-w) / sqrt(X^2 + w^2) dw + the integral above).
    ValueSlope smooth_part(double X, double Y) const {
        ValueSlope s = growing_integral(X, Y);
        for (int p = 0; p < 45 && Y < 700; ++p) {
            s.value +=
                std::exp(-Y) * gauss(p, p + 1, [&](double w) { return std::exp(-w) / std::hypot(X, w); });
            s.slope -= std::exp(-Y) * gauss(p, p + 1, [&](double w) {
                           return X * std::exp(-w) / std::pow(X * X + w * w, 1.5);
                       });
        }
        return {-2 * s.value, -2 * s.slope};
    }

    // F2 and its X slope anywhere but at r1 = 0.
    ValueSlope operator()(double X, double Y) const {
        if (X > 3) {
            const ValueSlope s = smooth_part(X, Y);
            return {s.value - 2 * PI_D * std::exp(-Y) * ::y0(X), s.slope + 2 * PI_D * std::exp(-Y) * ::y1(X)};
        }
        X = std::max(X, 1e-13);
        if (Y < 4) {
            const ValueSlope n = near_numerator(X, Y);
            const double r1 = std::hypot(X, Y), log1 = std::log((r1 + Y) / X), e = std::exp(-Y);
            return {e * (n.value - 2 * ::j0(X) * log1 - PI_D * ::y0(X)),
                    e * (n.slope + 2 * ::j1(X) * log1 + 2 * ::j0(X) * (1 / X - X / (r1 * (r1 + Y))) +
                         PI_D * ::y1(X))};
        }
        const ValueSlope g = growing_integral(X, Y), h0 = struve_h0(X);
        return {-2 * g.value - PI_D * std::exp(-Y) * (h0.value + ::y0(X)),
                -2 * g.slope - PI_D * std::exp(-Y) * (h0.slope - ::y1(X))};
    }

    // The far tail T that the boxes of Y >= 4 hold apart, and its X slope: the first four terms of F2 =
    // -2 sum of (-d/dY)^n (1/r1), its expansion without the waves.
    static ValueSlope tail(double X, double Y) {
        const double i2 = 1 / (X * X + Y * Y), i1 = std::sqrt(i2), i3 = i1 * i2, q = Y * Y * i2, p = Y * i2;
        return {2 * i1 + (2 * Y - 2 + 6 * q + p * (30 * q - 18)) * i3,
                -X * i3 * (2 + i2 * (6 * Y - 6 + 30 * q + p * (210 * q - 90)))};
    }

    // F2 + T, Y >= 4; `near`: in the boxes of X <= 3, else without the waves, F2 + 2 pi exp(-Y) Y0(X) + T.
    // The part without waves is -2 integral over t up to Y of exp(t - Y) / sqrt(X^2 + t^2) dt, which four
    // integrations by parts turn into -T and what it leaves as an integral: at great distances the sum of the
    // two would keep no digits. (Near the axis its integrand has a pole at t = 0, which does not count from
    // Y = 50 on.)
    ValueSlope beyond_tail(double X, double Y, bool near) const {
        if (near && Y < 50) {
            const ValueSlope F = (*this)(X, Y), T = tail(X, Y);
            return {F.value + T.value, F.slope + T.slope};
        }
        ValueSlope sum;
        for (double b = Y; Y - b < 45;) {
            const double h = std::min(1.5, 0.5 * std::hypot(X, b));
            sum.value -= gauss(b - h, b, [&](double t) {
                const double i2 = 1 / (X * X + t * t), q = t * t * i2;
                return 2 * std::exp(t - Y) * ((105 * q - 90) * q + 9) * i2 * i2 * std::sqrt(i2);
            });
            sum.slope += gauss(b - h, b, [&](double t) {
                const double i2 = 1 / (X * X + t * t), q = t * t * i2;
                return 2 * std::exp(t - Y) * X * ((945 * q - 630) * q + 45) * i2 * i2 * i2 * std::sqrt(i2);
            });
            b -= h;
        }
        return sum;
    }
};
