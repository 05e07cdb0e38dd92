// The Green function of finite depth in double precision.
#pragma once

#include "../../tools/tables/depth_definition.hpp"

#include <array>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <vector>

// Value and first derivatives.
struct FiniteValues {
    std::complex<double> G, G_R, G_z, G_zeta;
    FiniteValues &operator+=(const FiniteValues &o) {
        G += o.G;
        G_R += o.G_R;
        G_z += o.G_z;
        G_zeta += o.G_zeta;
        return *this;
    }
};

// factor / sqrt(R^2 + Z^2)
inline FiniteValues image_term(double factor, double R, double Z, double dz, double dzeta) {
    const double r = std::hypot(R, Z), i3 = factor / (r * r * r);
    return {factor / r, -R * i3, -Z * dz * i3, -Z * dzeta * i3};
}

// What the selectors leave in the real part, taken off or added to the complete function.
inline FiniteValues selected_values(double R, double z, double zeta, double H, int ISNG, int IBOT) {
    FiniteValues sum;
    const double Y = z + zeta, r1 = std::hypot(R, Y);
    if (ISNG >= 1)
        sum += image_term(-1, R, z - zeta, 1, -1);
    if (ISNG >= 2)
        sum += image_term(-1, R, Y, 1, 1);
    if (ISNG == 3)
        sum += {2 * std::log(r1 + Y), 2 * R / (r1 * (r1 + Y)), 2 / r1, 2 / r1};
    if (IBOT == 1)
        sum += image_term(-1, R, (H - z) + (H - zeta), -1, -1);
    return sum;
}

inline double selected_terms(double R, double z, double zeta, double H, int ISNG, int IBOT) {
    return selected_values(R, z, zeta, H, ISNG, IBOT).G.real();
}

// The expansion in wave modes, for R > 0.05 H or so: complete function.
class ModeExpansion {
  public:
    explicit ModeExpansion(double depth) : H(depth) {
        const double m = propagating_root_definition(H), e = std::exp(-2 * m), e1 = -std::expm1(-2 * m);
        k = m / H;
        C = (1 + k) * e1 / (2 * (e1 * e1 + 4 * H * e));
    }

    FiniteValues operator()(double R, double z, double zeta) {
        FiniteValues sum = propagating(z, zeta, {::y0(k * R), ::j0(k * R)}, {::y1(k * R), ::j1(k * R)});
        for (int n = 1;; ++n) {
            const double mu = wave_number(n);
            if (mu * R > 40)
                return sum;
            const double Cn = (mu * mu + 1) / (H * (mu * mu + 1) - 1);
            const double T0 = 4 * Cn * std::cyl_bessel_k(0, mu * R),
                         T1 = 4 * Cn * mu * std::cyl_bessel_k(1, mu * R);
            const double cz = std::cos(mu * (H - z)), cf = std::cos(mu * (H - zeta));
            sum += {T0 * cz * cf, -T1 * cz * cf, T0 * mu * std::sin(mu * (H - z)) * cf,
                    T0 * mu * cz * std::sin(mu * (H - zeta))};
        }
    }

    // The imaginary part alone, at any R.
    FiniteValues imaginary(double R, double z, double zeta) const {
        return propagating(z, zeta, {0, ::j0(k * R)}, {0, ::j1(k * R)});
    }

    double H, k, C;

  private:
    using complex = std::complex<double>;
    FiniteValues propagating(double z, double zeta, complex h0, complex h1) const {
        const double u = 2 * k * (H - z), v = 2 * k * (H - zeta),
                     f = 2 * PI_D * C * std::exp(-k * (z + zeta));
        const double a = 1 + std::exp(-u), b = 1 + std::exp(-v), ra = -std::expm1(-u), rb = -std::expm1(-v);
        return {-f * a * b * h0, f * k * a * b * h1, f * k * ra * b * h0, f * k * a * rb * h0};
    }
    double wave_number(int n) {
        while (static_cast<int>(mu_.size()) < n) {
            const double pi_n = PI_D * (static_cast<double>(mu_.size()) + 1);
            double y = std::atan(H / pi_n);
            for (int i = 0; i < 100; ++i) {
                const double m = pi_n - y, change = (std::atan(H / m) - y) / (H / (m * m + H * H) - 1);
                y -= change;
                if (std::abs(change) < 1e-16)
                    break;
            }
            mu_.push_back((pi_n - y) / H);
        }
        return mu_[n - 1];
    }
    std::vector<double> mu_;
};
