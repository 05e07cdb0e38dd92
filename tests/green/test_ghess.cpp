// Velocities of dipoles. Truth: the Green function in double precision as a function of two points in space,
// and nested differences of it.
#include "finite_reference.hpp"
#include "green/ghess.hpp"
#include "green/vgrn0.hpp"
#include "green_points.hpp"

#include <algorithm>

namespace {

using Point = std::array<double, 3>; // z upward

// Derivative along n at the source, gradient of it at the field point.
template <class F>
std::array<Complex, 3> dipole_velocity(F G, Point field, Point source, const f32 (&n)[3], double h) {
    const auto along_normal = [&](Point at) {
        return difference(
            [&](double s) {
                Point q = source;
                for (int i = 0; i < 3; ++i)
                    q[i] += s * n[i];
                return G(at, q);
            },
            0, h);
    };
    std::array<Complex, 3> W;
    for (int i = 0; i < 3; ++i) {
        W[i] = difference(
            [&](double s) {
                Point at = field;
                at[i] += s;
                return along_normal(at);
            },
            0, h);
    }
    return W;
}

struct Case {
    const char *name;
    f32 R, z, zeta, H; // of the record
    int ISNG, IPLIM;   // IPLIM 0: a wave
};

} // namespace

// All four modes for one record: point A of depth z and B of depth zeta. Rows: A is the source; columns: B.
TEST(Ghess, VelocityOfADipoleByDifferences) {
    constexpr double TOLERANCE = 4e-6, TABLE = 2e-7; // the table of F2 is good to that
    const F2Definition F2;
    const f32 n_A[3] = {0.48f, -0.6f, 0.64f}, n_B[3] = {-0.36f, 0.48f, 0.8f};
    const Case cases[] = {
        {"deep water", 0.9f, 0.4f, 0.7f, -1, 0, 0},
        {"deep water, no 1/r", 2.2f, 0.4f, 0.7f, -1, 1, 0},
        {"deep water, far", 5, 0.6f, 0.1f, -1, 0, 0},
        {"deep water, logarithm", 0.5f, 0.4f, 0.2f, -1, 3, 0},
        {"near", 0.9f, 0.4f, 0.7f, 2, 0, 0},
        {"near, no 1/r1", 0.5f, 0.2f, 0.3f, 1.5f, 2, 0},
        {"near the bottom", 0.8f, 1.2f, 0.9f, 1.5f, 0, 0},
        {"far", 3, 0.4f, 0.7f, 1.5f, 0, 0},
        {"far, shallow", 0.3f, 0.04f, 0.12f, 0.2f, 1, 0},
        {"lid", 0.7f, 0.3f, 0.9f, 1.5f, 0, 1},
        {"high frequency", 2.0f, 0.3f, 0.9f, 1.5f, 0, 2},
        {"one vertical", 0, 0.4f, 0.9f, -1, 0, 0},
        {"one vertical, no 1/r", 0, 0.4f, 0.9f, -1, 1, 0},
        {"one vertical, no wave", 0, 9.5f, 10, -1, 0, 0},
        {"one vertical, no wave, rest", 0, 9.5f, 10, -1, 1, 0},
        {"one vertical, high frequency", 0, 0.5f, 0.9f, -1, 0, 2},
    };
    for (const Case &c : cases) {
        GSTATE state;
        f32 ratio = 0;
        if (c.H > 0) {
            ASSERT_EQ(HGRN98(c.H, ratio, state), 0);
        }
        ModeExpansion modes(c.H > 0 ? c.H : 1.0);
        // B is at the origin, A in the direction (0.6, 0.8).
        const Point A = {0.6 * c.R, 0.8 * c.R, -c.z}, B = {0, 0, -c.zeta};
        const auto G = [&](const Point &p, const Point &q) {
            const double R = std::hypot(p[0] - q[0], p[1] - q[1]), D = p[2] - q[2], Y = -p[2] - q[2];
            const double r = std::hypot(R, D), r1 = std::hypot(R, Y);
            if (c.IPLIM == 0 && c.H > 0)
                return modes(R, -p[2], -q[2]).G + selected_terms(R, -p[2], -q[2], c.H, c.ISNG, 0);
            if (c.IPLIM == 0) {
                Complex sum(F2(R, Y).value + 1 / r1 + 1 / r, -2 * PI_D * std::exp(-Y) * ::j0(R));
                return sum + selected_terms(R, -p[2], -q[2], 0, c.ISNG, 0);
            }
            const double sigma = c.IPLIM == 1 ? 1 : -1;
            double sum = 1 / r + sigma / r1;
            for (int n = 1; n <= 400 && c.H > 0; ++n) {
                const double s = 2.0 * n * c.H, sign = c.IPLIM == 1 || n % 2 == 0 ? 1 : -1;
                for (const double Z : {s, -s})
                    sum += sign * (1 / std::hypot(R, D + Z) + sigma / std::hypot(R, Y + Z));
            }
            return Complex(sum);
        };
        f32 record[16];
        if (c.IPLIM == 0)
            VGRN1P(c.R, c.z, c.zeta, c.H, state, c.ISNG, 0, record);
        else
            VGRN0(c.R, c.z, c.zeta, c.H, c.ISNG, 0, c.IPLIM, record);
        HessianPair pair;
        pair.R = c.R;
        pair.EPSR = 1e-6f;
        std::copy(n_A, n_A + 3, pair.N1);
        std::copy(n_B, n_B + 3, pair.N2);
        pair.C1 = c.R > 0 ? 0.6f : 0.0f;
        pair.S1 = c.R > 0 ? 0.8f : 0.0f;
        pair.C2 = -pair.C1;
        pair.S2 = -pair.S1;
        const double r = std::hypot(c.R, c.z - c.zeta), r1 = std::hypot(c.R, c.z + c.zeta);
        const double near = std::min({r, r1, c.H > 0 ? std::hypot(c.R, 2 * c.H - c.z - c.zeta) : 1e9}),
                     h = 4e-3 * near;
        for (int MODE = 0; MODE < 4; ++MODE) {
            const bool column = MODE % 2 == 1;
            const auto exact = column ? dipole_velocity(G, A, B, n_B, h) : dipole_velocity(G, B, A, n_A, h);
            c32 W[3];
            GHESS(pair, record, MODE, W);
            // Size of the parts: the singular terms that stay, and the wave.
            const double scale = (c.ISNG < 1 ? std::pow(r, -3) : 0) + std::pow(r1, c.ISNG < 2 ? -3 : -2) +
                                 (c.H > 0 ? std::pow(near, -3) : 0) + 2 * PI_D * std::exp(-c.z - c.zeta);
            for (int i = 0; i < 3; ++i) {
                EXPECT_NEAR(W[i].real(), exact[i].real(), TOLERANCE * scale + TABLE)
                    << c.name << " MODE " << MODE << " " << i;
                EXPECT_NEAR(W[i].imag(), exact[i].imag(), TOLERANCE * scale + TABLE)
                    << c.name << " MODE " << MODE << " " << i;
            }
        }
    }
}
