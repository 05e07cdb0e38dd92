#include "green/hgruio.hpp"

#include "green/depth_coefficients.hpp"
#include "green/depth_roots.hpp"

#include <cmath>

// In double precision, as it is done once for a depth and rounding of k would be multiplied with distances.
void HGRUIO(f32 H, HSTATE &state) {
    constexpr double DEEP = 30; // of 2 m: beyond it k = C = 1
    constexpr double PI = 3.14159265358979323846;
    const double h = H, m = propagating_root(h), k = m / h;
    double C = 1, DC = 0, DK = 0;
    if (2 * m < DEEP) {
        const double ei = std::exp(2 * m), s2 = std::sinh(2 * m), s = std::sinh(m);
        DK = -k * k / (0.5 * s2 + m);
        const double DM = k + h * DK, Dn = 4 * (s * s + h); // e - 2 + 4 H + ei
        C = ei / Dn;
        DC = 2 * C * (DM - 2 / Dn * (s2 * DM + 1));
    }
    state.RK0 = static_cast<f32>(k);
    state.quarter_turns = quarter_turns(k);
    state.RK0SQ = static_cast<f32>(k * k);
    state.RK0X2 = static_cast<f32>(2 * k);
    state.DRK0 = static_cast<f32>(DK);
    state.CN0 = static_cast<f32>(C);
    state.DCN0 = static_cast<f32>(DC);

    double y = 0;
    for (int n = 1; n <= DEPTH_MODES; ++n) {
        y = evanescent_angle(h, n, y, 2);
        const double mh = n * PI - y, mu = mh / h, q = (1 + mu * mu) / (h * (1 + mu * mu) - 1);
        const double c = std::sqrt(2 * PI / mu) * q, d = std::sin(2 * mh);
        const double DMU = -mu * mu / (0.5 * d + mh);
        state.MU[n - 1] = static_cast<f32>(mu);
        state.MUSQ[n - 1] = static_cast<f32>(mu * mu);
        state.DMU[n - 1] = static_cast<f32>(DMU);
        state.CMU[n - 1] = static_cast<f32>(c);
        state.DCMU[n - 1] = static_cast<f32>(c * (q * (d * (h * DMU + mu) - 1) - 0.5 * DMU / mu));
    }
    S3COEF(H, static_cast<f32>(m), static_cast<f32>(k + h * DK), state.S3C, state.DS3C);
}
