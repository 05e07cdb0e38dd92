// The finite-depth near-field functions in double precision, by their definition: the reference of the table
// generator and of the tests. H = depth times nu, t = R^2/H^2, w = Z^2/H^2, y = Y/H, all of t, w, y in 0..1.
//   I(R, Z) = PV integral over s from 0 to infinity of
//             (s + 1) exp(-s H) cosh(s Z) J0(s R) / (s sinh(s H) - cosh(s H)) ds
//   S(t, w) = I(R, Z),   P(t, y) = I(R, 2 H - Y) - F2(R, Y) - 1/sqrt(R^2 + Y^2)
//   S3(t, w) = I(R, Z) - Phi(R, 2 H - Z) - Phi(R, 2 H + Z), t = (2 R/H)^2, w = (Z/(2 H))^2,
//   Phi(R, Y) = F2(R, Y) + 1/sqrt(R^2 + Y^2)
// With x = s H, H S and H P are integrals over x that have no length in them. They are taken along a ray from
// 0 that passes above the poles x = m (m tanh m = H) and x = H on the real axis: the arc at infinity gives
// nothing, half the residues are imaginary, and so the real part is the principal value. On the ray the
// integrand neither has poles nor cancels. In P the difference of I and F2 + 1/r1 is formed
// under the integral,
//   H P = PV integral of (x + H) J0 [(x - H) exp(-x (4 - y)) + (x + H) exp(-x (2 + y))] / ((x - H) Q) dx,
//   Q = (x - H) - (x + H) exp(-2 x),
// and in S3 likewise
//   H S3 = PV integral of 2 (x + H)^2 exp(-4 x) cosh(x Z/H) J0 / ((x - H) Q) dx.
#pragma once

#include "f2_definition.hpp"

#include <complex>
#include <vector>

// Value and derivatives of S or P; `v` stands for w or y.
struct DepthValues {
    static constexpr int N = 5;
    double f = 0, t = 0, v = 0, tv = 0, vv = 0;
    double operator[](int i) const { return i == 0 ? f : i == 1 ? t : i == 2 ? v : i == 3 ? tv : vv; }
};

// The root m of m tanh m = H.
inline double propagating_root_definition(double H) {
    double m = H > 1 ? H : std::sqrt(H);
    for (int step = 0; step < 60; ++step) {
        const double T = std::tanh(m), change = (m * T - H) / (T + m * (1 - T) * (1 + T));
        m -= change;
        if (std::abs(change) < 1e-16 * m)
            break;
    }
    return m;
}

class DepthDefinition {
  public:
    enum class Function { S, P, S3 };

    // A function on all pairs of the given t and of the given w (S, S3) or y (P).
    DepthDefinition(Function which, std::vector<double> t, std::vector<double> vertical)
        : which_(which), t_(std::move(t)), vertical_(std::move(vertical)) {
        make_ray();
        for (const double at : t_)
            add_radial(at * t_scale());
        for (const double at : vertical_)
            add_vertical(at * w_scale());
    }

    // H times the value and its derivatives for depth H; index i + k * (number of t). Without `derivatives`
    // only the value is filled.
    std::vector<DepthValues> times_depth(double H, bool derivatives) const {
        const std::size_t n = x_.size();
        std::vector<complex> first(n), second(n);
        for (std::size_t q = 0; q < n; ++q)
            kernel(H, x_[q], weight_[q], first[q], second[q]);
        std::vector<DepthValues> result(t_.size() * vertical_.size());
        Factor v;
        for (std::size_t k = 0; k < vertical_.size(); ++k) {
            v.resize(n);
            for (std::size_t q = 0; q < n; ++q) {
                const std::size_t at = k * n + q;
                for (int d = 0; d < (derivatives ? 3 : 1); ++d) {
                    const complex value = first[q] * near_[d][at] +
                                          (which_ == Function::P ? second[q] * far_[d][at] : complex(0));
                    v.re[d][q] = value.real();
                    v.im[d][q] = value.imag();
                }
            }
            for (std::size_t i = 0; i < t_.size(); ++i) {
                DepthValues &out = result[i + k * t_.size()];
                out.f = real_part(radial_[i], 0, v, 0);
                if (!derivatives)
                    continue;
                out.t = t_scale() * real_part(radial_[i], 1, v, 0);
                out.v = w_scale() * real_part(radial_[i], 0, v, 1);
                out.tv = t_scale() * w_scale() * real_part(radial_[i], 1, v, 1);
                out.vv = w_scale() * w_scale() * real_part(radial_[i], 0, v, 2);
            }
        }
        return result;
    }

    // Of S3 alone: the slope in H of H times the value, at fixed t and w.
    std::vector<double> slope_of_times_depth(double H) const {
        const std::size_t n = x_.size();
        std::vector<double> result;
        Factor v;
        v.resize(n);
        for (std::size_t k = 0; k < vertical_.size(); ++k) {
            for (std::size_t q = 0; q < n; ++q) {
                const complex x = x_[q], ex = std::exp(-2.0 * x), Q = (x - H) - (x + H) * ex;
                complex first, second;
                kernel(H, x, weight_[q], first, second);
                const complex value =
                    first * (2.0 / (x + H) + 1.0 / (x - H) + (1.0 + ex) / Q) * near_[0][k * n + q];
                v.re[0][q] = value.real();
                v.im[0][q] = value.imag();
            }
            for (const Factor &radial : radial_)
                result.push_back(real_part(radial, 0, v, 0));
        }
        return result;
    }

    // What multiplies ln m at small H: H S + L ln m (or with P or S3) is analytic in H at H = 0, and so is L.
    static double logarithm_factor(Function which, double H, double t, double vertical) {
        const double m = propagating_root_definition(H), q = (m - H) * (m + H), f = 2 * q / (q + H);
        const double J = f * ::j0(m * std::sqrt(t));
        if (which == Function::S)
            return J * std::cosh(m * std::sqrt(vertical));
        if (which == Function::S3) {
            const double R = 0.5 * std::sqrt(t), Z = 2 * std::sqrt(vertical);
            return f * ::j0(m * R) * std::cosh(m * Z) -
                   8 * H * std::exp(-2 * H) * ::j0(H * R) * std::cosh(H * Z);
        }
        return J * std::cosh(m * (2 - vertical)) - 4 * H * std::exp(-H * vertical) * ::j0(H * std::sqrt(t));
    }

  private:
    using complex = std::complex<double>;
    // A factor of the integrand on the ray: value, first and second derivative.
    struct Factor {
        std::vector<double> re[3], im[3];
        void resize(std::size_t n) {
            for (int d = 0; d < 3; ++d) {
                re[d].resize(n);
                im[d].resize(n);
            }
        }
    };

    // t and w of S3 in those of S.
    double t_scale() const { return which_ == Function::S3 ? 0.25 : 1; }
    double w_scale() const { return which_ == Function::S3 ? 4 : 1; }

    Function which_;
    std::vector<double> t_, vertical_;
    std::vector<complex> x_, weight_;
    std::vector<Factor> radial_;            // per t, derivatives by t
    std::vector<complex> near_[3], far_[3]; // per (vertical, node), derivatives by w or y

    // Panels that grow with the distance, since at small H the poles come close to 0; no longer than 2, the
    // scale of the oscillation.
    void make_ray() {
        constexpr double ANGLE = 0.45, START = 1e-9, END = 80, LONGEST = 2;
        const GaussRule rule;
        const complex direction = std::polar(1.0, ANGLE);
        for (double a = 0, b = START; a < END; a = b, b = std::min(2 * b, b + LONGEST)) {
            for (int i = 0; i < GaussRule::N; ++i) {
                x_.push_back(direction * (0.5 * (a + b) + 0.5 * (b - a) * rule.x[i]));
                weight_.push_back(direction * (0.5 * (b - a) * rule.w[i]));
            }
        }
    }

    // J0(x sqrt t) and its slope in t, -(x^2/2) J1(z)/z, by the trapezoidal rule for
    //   J0(z) = mean of cos(z cos a),  J1(z)/z = mean of sin(a)^2 cos(z cos a),  a in 0..pi,
    // which errs by J of the order 2 N.
    void add_radial(double t) {
        Factor factor;
        factor.resize(x_.size());
        for (std::size_t q = 0; q < x_.size(); ++q) {
            const complex x = x_[q], z = x * std::sqrt(t);
            const int N = 12 + static_cast<int>(std::abs(z));
            complex value = 0, ratio = 0;
            for (int i = 0; i < N; ++i) {
                const double a = PI_D * (i + 0.5) / N, s = std::sin(a);
                const complex c = std::cos(z * std::cos(a));
                value += c;
                ratio += s * s * c;
            }
            value /= N;
            ratio *= -0.5 * x * x / static_cast<double>(N);
            factor.re[0][q] = value.real();
            factor.im[0][q] = value.imag();
            factor.re[1][q] = ratio.real();
            factor.im[1][q] = ratio.imag();
        }
        radial_.push_back(factor);
    }

    void add_vertical(double at) {
        for (const complex x : x_) {
            if (which_ == Function::P) {
                const complex a = std::exp(-x * (4 - at)), b = std::exp(-x * (2 + at));
                near_[0].push_back(a);
                near_[1].push_back(x * a);
                near_[2].push_back(x * x * a);
                far_[0].push_back(b);
                far_[1].push_back(-x * b);
                far_[2].push_back(x * x * b);
                continue;
            }
            // cosh(z), z = x sqrt w, and its derivatives by w, (x^2/2) sinh(z)/z and
            // (x^4/4) (cosh(z) - sinh(z)/z)/z^2; the series keeps their digits at small z.
            const complex z = x * std::sqrt(at), z2 = z * z;
            complex ratio = 0, curve = 0;
            if (std::abs(z) < 1) {
                complex term = 1; // z^2n/(2n+1)!
                for (int n = 0; n < 12; ++n) {
                    ratio += term;
                    term /= (2 * n + 2.0) * (2 * n + 3.0);
                    curve += (2 * n + 2.0) * term;
                    term *= z2;
                }
            } else {
                ratio = std::sinh(z) / z;
                curve = (std::cosh(z) - ratio) / z2;
            }
            near_[0].push_back(std::cosh(z));
            near_[1].push_back(0.5 * x * x * ratio);
            near_[2].push_back(0.25 * x * x * x * x * curve);
        }
    }

    // What multiplies J0 and the vertical factors; everything is divided by H when H is large.
    void kernel(double H, complex x, complex weight, complex &first, complex &second) const {
        const double a = H > 1 ? 1 / H : 1, b = H > 1 ? 1 : H; // a x + b = (x + H) or (x + H)/H
        const complex sum = a * x + b, difference = a * x - b;
        const complex half = a * x * std::sinh(x) - b * std::cosh(x), ex = std::exp(-x);
        if (which_ == Function::S) {
            first = weight * sum * ex / half;
            return;
        }
        if (which_ == Function::S3) {
            first = weight * sum * sum * ex * ex * ex / (difference * half);
            return;
        }
        first = weight * sum / (2.0 * ex * half);
        second = first * sum / difference;
    }

    static double real_part(const Factor &a, int da, const Factor &b, int db) {
        const double *ar = a.re[da].data(), *ai = a.im[da].data(), *br = b.re[db].data(),
                     *bi = b.im[db].data();
        const int n = static_cast<int>(a.re[da].size());
        double sum = 0;
#pragma omp simd reduction(+ : sum)
        for (int q = 0; q < n; ++q)
            sum += ar[q] * br[q] - ai[q] * bi[q];
        return sum;
    }
};
