#include "green/gstate.hpp"

#include "green/bessel_fits.hpp"
#include "green/depth_coefficients.hpp"
#include "green/depth_roots.hpp"

#include <cmath>

namespace {

// Large-argument series of sqrt(2 x / pi) exp(x) K0(x) (A) and K1(x) (B): 7 terms in (pi/2)/x for the first
// mode, which must be good just above R = H; 5 terms in (3 pi/2)/x for the others.
constexpr f32 A7[7] = {0.99999988f,  -0.079562798f,  0.028231105f, -0.016981402f,
                       0.011022209f, -0.0052203778f, 0.0011738245f};
constexpr f32 B7[7] = {1.0000002f,    0.23871426f,  -0.047167148f, 0.024106618f,
                       -0.014681226f, 0.006768554f, -0.0015028031f};
constexpr f32 A5[5] = {0.99999994f, -0.026522536f, 0.0031381443f, -0.00061128865f, 0.000098683908f};
constexpr f32 B5[5] = {1.0000001f, 0.079573318f, -0.005241652f, 0.00086858543f, -0.00013209617f};

constexpr f32 PI_F = 3.14159265f;

// Evanescent wave numbers and the two polynomials of each mode.
void evanescent_modes(f32 H, GSTATE &state) {
    f32 y = 0;
    for (int n = 1; n <= 5; ++n) {
        y = evanescent_angle(H, n, y, 1);
        const f32 m = static_cast<f32>(n) * PI_F - y;
        const f32 mu = m / H;
        state.EVK[n - 1] = mu;

        const f32 c =
            2.5066283f * (mu * mu + 1) / ((m * mu + H - 1) * std::sqrt(mu)); // sqrt(2 pi) C(n) / sqrt(mu)
        const f32 w = (n == 1 ? 0.5f : 1.5f) * PI_F / mu;
        f32 power = c;
        for (int j = 0; j < (n == 1 ? 7 : 5); ++j) {
            state.EVA[n - 1][j] = (n == 1 ? A7[j] : A5[j]) * power;
            state.EVB[n - 1][j] = (n == 1 ? B7[j] : B5[j]) * mu * power;
            power *= w;
        }
    }
}

// The fitted Bessel functions with k and C folded in, so that the evaluation works in R itself.
void scaled_bessel(f32 k, f32 C, GSTATE &state) {
    const f32 u = k * k / 9, q = 9 / (k * k), s = C / std::sqrt(k);
    f32 ui = C, qi = s;
    for (int i = 0; i < 7; ++i) {
        state.PY0[i] = Y0C[i] * ui;
        if (i < 6) {
            state.PJ0[i] = J0C[i] * ui;
            state.PJ1[i] = J1C[i] * (k * k / 3) * ui;
            state.PY1[i] = Y1C[i] * (k * k / 3) * ui;
            state.QP0[i] = P0C[i] * qi;
            state.QQ0[i] = Q0C[i] * (3 / k) * qi;
            state.QP1[i] = P1C[i] * k * qi;
            state.QQ1[i] = Q1C[i] * 3 * qi;
        }
        ui *= u;
        qi *= q;
    }
}

} // namespace

void INIT_HGRN98_ARRAYS(GSTATE &state) {
    state = GSTATE{};
}

int HGRN98(f32 H, f32 &RATIO, GSTATE &state) {
    if (!(H >= 1e-5f && H <= 100000.0f))
        return 1;
    state.HINV = 1 / H;
    state.HTWO = 2 * H;
    state.HINV2 = state.HINV * state.HINV;
    state.HINV2X2 = 2 * state.HINV2;
    state.HINV2X8 = 8 * state.HINV2;

    const double root = propagating_root(H);
    const f32 m = static_cast<f32>(root), k = static_cast<f32>(root / H);
    state.RK = k;
    state.quarter_turns = quarter_turns(root / H);
    state.RKSQ = k * k;
    state.RKTWO = 2 * k;
    RATIO = k;

    // With e = exp(-2 m): C = (1 + k)(1 - e) / (2 ((1 - e)^2 + 4 H e)).
    const f32 e = 2 * m < 30 ? std::exp(-2 * m) : 0.0f;
    const f32 e1 = 2 * m < 30 ? -std::expm1(-2 * m) : 1.0f; // 1 - e with its digits at small H
    const f32 C = (1 + k) * e1 / (2 * (e1 * e1 + 4 * H * e));
    state.CFOUR = 4 * C;
    scaled_bessel(k, C, state);
    evanescent_modes(H, state);
    SCOEF(H, m, state.COEF91);
    PCOEF(H, m, state.COEF57);
    return 0;
}
