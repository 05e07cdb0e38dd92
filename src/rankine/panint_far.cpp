#include "rankine/panint.hpp"

#include <cmath>

namespace {

// S is a sum of terms N/R^n, n = 1, 3, 5, 7, 9, with N a polynomial of X and Y; so D and all derivatives
// follow from the sums over N, n N, n (n + 2) N and over the derivatives of N.
struct MultipoleSums {
    f32 s0 = 0;         // N/R^n
    f32 s1 = 0;         // n N/R^n
    f32 s2 = 0;         // n (n + 2) N/R^n
    f32 x0 = 0, x1 = 0; // the first two with the X derivative of N
    f32 y0 = 0, y1 = 0;

    void add(f32 n, f32 over, f32 N) {
        s0 += N * over;
        s1 += n * N * over;
    }
    void add_gradient(f32 n, f32 over, f32 N, f32 NX, f32 NY) {
        s2 += n * (n + 2) * N * over;
        x0 += NX * over;
        x1 += n * NX * over;
        y0 += NY * over;
        y1 += n * NY * over;
    }
};

// Second-order multipole of ln(R + k . x): m1 g + M : gg / 2 with the second area moments M, and its
// derivatives. g has the gradient a = (u + k)/f with u = x/R, f = R + k . x. Indices 0, 1, 2 are X, Y, Z; M
// has the first two only.
void far_logarithm(f32 X, f32 Y, f32 Z, const Panel &p, int IGRAD, PanelIntegrals &out) {
    const f32 x[3] = {X, Y, Z};
    const f32 k[3] = {p.TRM[1][3], p.TRM[2][3], p.TRM[3][3]};
    const f32 R = std::sqrt(X * X + Y * Y + Z * Z);
    const f32 f = R + k[0] * X + k[1] * Y + k[2] * Z;
    f32 u[3], a[3];
    for (int i = 0; i < 3; ++i) {
        u[i] = x[i] / R;
        a[i] = (u[i] + k[i]) / f;
    }
    const f32 M[2][2] = {{p.PMOM[2] / 3, p.PMOM[3] / 6}, {p.PMOM[3] / 6, p.PMOM[4] / 3}};
    // h = second derivatives of R over f; g = those of ln f.
    f32 h[3][3], g[3][3];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            h[i][j] = ((i == j ? 1.0f : 0.0f) - u[i] * u[j]) / (R * f);
            g[i][j] = h[i][j] - a[i] * a[j];
        }
    // Third derivatives, the first two indices in the panel.
    f32 h3[2][3][3], g3[2][3][3];
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 3; ++j)
            for (int l = 0; l < 3; ++l) {
                h3[i][j][l] = -h[i][j] * (u[l] / R + a[l]) - (h[i][l] * u[j] + u[i] * h[j][l]) / R;
                g3[i][j][l] = h3[i][j][l] - g[i][l] * a[j] - a[i] * g[j][l];
            }
    f32 second = 0, third[3] = {0, 0, 0};
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 2; ++j) {
            second += M[i][j] * g[i][j];
            for (int l = 0; l < 3; ++l)
                third[l] += M[i][j] * g3[i][j][l];
        }
    const f32 area = p.PMOM[1];
    out.L = area * std::log(f) + second;
    out.LZ = -(area * a[2] + third[2]);
    if (IGRAD == 0)
        return;
    out.LX = area * a[0] + third[0];
    out.LY = area * a[1] + third[1];
    // Fourth derivatives i, j in the panel, then Z, then X or Y.
    f32 fourth[2] = {0, 0};
    const int l = 2;
    for (int n = 0; n < 2; ++n)
        for (int i = 0; i < 2; ++i)
            for (int j = 0; j < 2; ++j) {
                const f32 h4 = -h3[i][j][n] * (u[l] / R + a[l]) -
                               h[i][j] * (f * h[l][n] / R - u[l] * u[n] / (R * R) + g[l][n]) -
                               (h3[i][l][n] * u[j] + h[i][l] * f * h[j][n] + f * h[i][n] * h[j][l] +
                                u[i] * h3[j][l][n]) /
                                   R +
                               (h[i][l] * u[j] + u[i] * h[j][l]) * u[n] / (R * R);
                const f32 g4 =
                    h4 - g3[i][l][n] * a[j] - g[i][l] * g[j][n] - g[i][n] * g[j][l] - a[i] * g3[j][l][n];
                fourth[n] += M[i][j] * g4;
            }
    out.LZX = -(area * g[0][2] + fourth[0]);
    out.LZY = -(area * g[1][2] + fourth[1]);
}

} // namespace

void panint_far(f32 X, f32 Y, f32 Z, const Panel &p, int IGRAD, int ILOGF, PanelIntegrals &out) {
    const f32 *m = p.PMOM;
    const f32 R2 = X * X + Y * Y + Z * Z;
    const f32 over_R2 = 1 / R2;
    const f32 over_R = std::sqrt(over_R2);
    const f32 over_R3 = over_R * over_R2;
    const f32 over_R5 = over_R3 * over_R2;
    const bool fourth_order = R2 < FAR_SECOND_ORDER * p.region2;

    MultipoleSums t;
    const f32 N3 = -(m[2] + m[4]) / 3;
    f32 N5 = X * X * m[2] + Y * Y * m[4] + X * Y * m[3];
    f32 N7 = 0, N9 = 0, over_R7 = 0, over_R9 = 0;
    if (fourth_order) {
        over_R7 = over_R5 * over_R2;
        over_R9 = over_R7 * over_R2;
        N5 += 0.1f * (m[9] + 2 * m[11] + m[13]) - Y * (m[8] + m[6]) - X * (m[7] + m[5]);
        N7 = (5.0f / 3) * (X * X * X * m[5] + Y * Y * Y * m[8] + 3 * X * Y * (Y * m[7] + X * m[6])) -
             X * X * (m[11] + m[9]) - Y * Y * (m[13] + m[11]) - X * Y * (m[12] + m[10]);
        N9 = 7 * X * X * Y * Y * m[11] + (7.0f / 6) * (X * X * X * X * m[9] + Y * Y * Y * Y * m[13]) +
             (7.0f / 3) * X * Y * (X * X * m[10] + Y * Y * m[12]);
        t.add(7, over_R7, N7);
        t.add(9, over_R9, N9);
    }
    t.add(5, over_R5, N5);
    t.add(3, over_R3, N3);
    t.add(1, over_R, m[1]);
    out.S = t.s0;
    out.D = Z * over_R2 * t.s1;

    if (IGRAD != 0) {
        f32 N5X = 2 * X * m[2] + Y * m[3];
        f32 N5Y = 2 * Y * m[4] + X * m[3];
        if (fourth_order) {
            N5X -= m[7] + m[5];
            N5Y -= m[8] + m[6];
            const f32 N7X = 5 * (X * X * m[5] + Y * (Y * m[7] + 2 * X * m[6])) - 2 * X * (m[11] + m[9]) -
                            Y * (m[12] + m[10]);
            const f32 N7Y = 5 * (Y * Y * m[8] + X * (2 * Y * m[7] + X * m[6])) - 2 * Y * (m[13] + m[11]) -
                            X * (m[12] + m[10]);
            const f32 N9X = 14 * X * Y * Y * m[11] + (14.0f / 3) * X * X * X * m[9] +
                            (7.0f / 3) * Y * (3 * X * X * m[10] + Y * Y * m[12]);
            const f32 N9Y = 14 * X * X * Y * m[11] + (14.0f / 3) * Y * Y * Y * m[13] +
                            (7.0f / 3) * X * (X * X * m[10] + 3 * Y * Y * m[12]);
            t.add_gradient(7, over_R7, N7, N7X, N7Y);
            t.add_gradient(9, over_R9, N9, N9X, N9Y);
        }
        t.add_gradient(5, over_R5, N5, N5X, N5Y);
        t.add_gradient(3, over_R3, N3, 0, 0);
        t.add_gradient(1, over_R, m[1], 0, 0);
        const f32 zr = Z * over_R2;
        out.SX = t.x0 - X * over_R2 * t.s1;
        out.SY = t.y0 - Y * over_R2 * t.s1;
        out.DX = zr * (t.x1 - X * over_R2 * t.s2);
        out.DY = zr * (t.y1 - Y * over_R2 * t.s2);
        out.DZ = over_R2 * t.s1 - zr * zr * t.s2;
    }
    if (ILOGF != 0)
        far_logarithm(X, Y, Z, p, IGRAD, out);
}
