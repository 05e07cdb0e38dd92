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

// ln of the most that a derivative of order m of mode n can be at R.
f32 mode_size(const GSTATE &state, int n, int m, f32 R) {
    const f32 mu = state.EVK[n], x = mu * R, slack = 1 + 1 / x; // of K1 over its asymptotic form
    return std::log(2 * state.EVA[n][0] * slack) - 0.5f * std::log(R) + static_cast<f32>(m) * std::log(mu) -
           x;
}

// ln of what they are measured by: the larger of the image, r1 <= sqrt(R^2 + 4 H^2), and the propagating mode
// on the bottom, where it is least. Hankel's |H0(x)| and |H1(x)| are not below sqrt(2 / (pi max(x, 1))) (by 4
// %).
f32 whole_size(const GSTATE &state, f32 H, int m, f32 R) {
    const f32 k = state.RK, order = static_cast<f32>(m), x = k * R > 1 ? k * R : 1.0f;
    const f32 image = -0.5f * (order + 1) * std::log(R * R + 4 * H * H);
    const f32 wave =
        std::log(2 * PI_F * state.CFOUR * std::sqrt(2 / (PI_F * x))) - 2 * k * H + order * std::log(k);
    return image > wave ? image : wave;
}

// The distances beyond which a mode is less than DROPPED of the function in value, first and second
// derivatives.
void mode_reaches(f32 H, GSTATE &state) {
    constexpr f32 LN_DROPPED = -17.3f; // 3e-8, half a unit in the last place
    for (int n = 0; n < 5; ++n) {
        f32 low = H, high = 64 * H; // exp(-pi/2 64) is nothing to anything
        for (int step = 0; step < 16; ++step) {
            const f32 R = 0.5f * (low + high);
            bool lost = true;
            for (int m = 0; m <= 2; ++m)
                lost = lost && mode_size(state, n, m, R) < whole_size(state, H, m, R) + LN_DROPPED;
            (lost ? high : low) = R;
        }
        state.reach[n] = high;
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
    mode_reaches(H, state);
    SCOEF(H, m, state.COEF91);
    PCOEF(H, m, state.COEF57);
    depth_boxes(state.COEF91, state.COEF57, state.boxes);
    return 0;
}
