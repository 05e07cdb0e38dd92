// Integrals of the Green function over panels at a field point. Truth: digits of one panel from an
// independent double-precision evaluation; fine quadrature of G; differences of the value.
#include "green/field_kernels.hpp"
#include "green/vgrn0.hpp"
#include "green/wdkern.hpp"
#include "green_points.hpp"

namespace {

// The unit square at (2, 0.5, -1) with normal (0.6, 0, 0.8), its vertices in the wrong sense.
Panel square() {
    Panel p{};
    const f32 X[5] = {0, -0.5f, 0.5f, 0.5f, -0.5f}, Y[5] = {0, -0.5f, -0.5f, 0.5f, 0.5f};
    const f32 frame[4][4] = {{}, {0, 0.8f, 0, -0.6f}, {0, 0, 1, 0}, {0, 0.6f, 0, 0.8f}};
    const f32 centre[4] = {0, 2, 0.5f, -1};
    p.PMOM[1] = 1;
    p.PMOM[2] = p.PMOM[4] = 0.125f;
    p.PMOM[9] = p.PMOM[13] = 3.75f / 80;
    p.PMOM[11] = 3.75f / 144;
    for (int k = 1; k <= 4; ++k) {
        p.XIV[k] = X[k];
        p.ETV[k] = Y[k];
        p.SIDE[k] = 1;
        p.GJAC[k] = 0.25f;
        for (int c = 1; c <= 3; ++c)
            p.XGP[k][c] = centre[c] + 0.57735027f * (X[k] * frame[1][c] + Y[k] * frame[2][c]);
    }
    for (int c = 1; c <= 3; ++c) {
        p.XCT[c] = centre[c];
        for (int r = 1; r <= 3; ++r)
            p.TRM[r][c] = frame[r][c];
    }
    p.PSIZ[1] = p.PSIZ[2] = 1;
    measure_regions(p);
    return p;
}

// One or more panels and what a call needs.
struct Setting {
    FieldPanels panels;
    FieldWork work;
    KernelValues result;
    GSTATE gstate;
    FieldWave wave;
    Setting(std::vector<Panel> list, int IQUAD, f32 nu, f32 HBOT = -1) {
        EXPECT_TRUE(panels.make(std::move(list), IQUAD) && work.alloc(panels) && result.alloc(panels, 8));
        wave = {HBOT, nu, &gstate};
        f32 ratio;
        if (HBOT > 0 && nu > 0) {
            EXPECT_EQ(HGRN98(nu * HBOT, ratio, gstate), 0);
        }
    }
};
constexpr int ALL = WANT_V | WANT_VN | WANT_HORIZONTAL | WANT_GP3 | WANT_GF3;

// Printed to six to eight digits; single precision loses the last one to cancellation.
constexpr double DIGITS = 4e-6;
void expect_digits(c32 value, Complex digits) {
    EXPECT_NEAR(value.real(), digits.real(), DIGITS * std::max(1.0, std::abs(digits)));
    EXPECT_NEAR(value.imag(), digits.imag(), DIGITS * std::max(1.0, std::abs(digits)));
}

// Vertices in the wrong sense, which no panel of a mesh has, leave its solid angle open to multiples of 2 pi.
// The digits of that panel belong to a D that is 2 pi less than the one here, an S that is TURN times the
// height of the field point over the panel more, and a gradient of S that is TURN times the normal more.
constexpr double TURN = 6.283185307179586;
constexpr double N1 = 0.6, N3 = 0.8, NU = 0.7;
constexpr double LOW = 0.18, HIGH = 0.82,
                 MIDDLE = 0.5; // heights of P, its image, and the point in the surface
const f32 P[4] = {0, 1.5f, 0.3f, -0.4f};

TEST(WorkedPanel, SurfacePoint) {
    const Complex digits[4] = {0, {-6.80698, -2.10719}, {10.3422, -1.02233}, {-0.609391, -1.03252}};
    const double turn[4] = {0, 2 * MIDDLE, -2, 2 * NU * NU * MIDDLE - 2 * NU * N3};
    Setting s({square()}, 0, 0.7f);
    ASSERT_EQ(FSFLD(P, s.panels, s.wave, 0.125f, s.work, s.result), Status::ok);
    for (int v = 1; v <= 3; ++v)
        expect_digits(s.result(1, v), digits[v] - TURN * turn[v]);
}

TEST(WorkedPanel, Gradient) {
    struct Row {
        f32 nu;
        int column;
        Complex digits;
        double turn;
    };
    double logarithm = 0; // its gradient holds S, too: mean over the points of dx / (e + r)
    const Panel panel = square();
    for (int k = 1; k <= 4; ++k) {
        const double dx = P[1] - panel.XGP[k][1], dy = P[2] - panel.XGP[k][2], e = 1.4;
        logarithm += 0.25 * dx / (e + std::hypot(dx, dy, e));
    }
    const Row rows[] = {{0.7f, PG_GP1, {9.94278, 0.1864143}, 2 * NU * HIGH * logarithm - 2 * N1},
                        {0.7f, PG_V, {-6.295523, -1.583007}, LOW + HIGH},
                        {0.7f, PG_VN, {10.45283, -0.7746354}, -2},
                        {0.7f, PG_GP3, {-0.6849597, -1.108105}, 2 * NU * HIGH - 2 * N3},
                        {0.7f, PG_GF3, {-7.844437, -1.108105}, 2 * NU * HIGH},
                        {RIGID_LID, PG_V, -8.251684, LOW + HIGH},
                        {RIGID_LID, PG_VN, 11.71203, -2},
                        {RIGID_LID, PG_GP1, 8.607315, -2 * N1},
                        {RIGID_LID, PG_GP3, 8.184549, -2 * N3},
                        {RIGID_LID, PG_GF3, 1.025072, 0}};
    for (const Row &row : rows) {
        Setting s({square()}, 1, row.nu);
        ASSERT_EQ(PANGRD(P, s.panels, s.wave, 1, ALL, s.work, s.result), Status::ok);
        SCOPED_TRACE(row.column);
        expect_digits(s.result(1, row.column), row.digits - TURN * row.turn);
    }
}

TEST(WorkedPanel, WaveNumberDerivative) {
    Complex digits[9] = {0, {-1.019875, 4.070753}, 0,
                         0, {-2.134463, 5.683472}, 0,
                         0, {2.217191, 0.1380576}, {-5.282666, -0.8831308}};
    // The turn enters through S and its gradient in the terms of the near panel.
    const Panel panel = square();
    const f32 nu = 0.7f, S = static_cast<f32>(TURN * HIGH), G1 = static_cast<f32>(TURN * N1),
              G3 = static_cast<f32>(TURN * N3);
    for (int k = 1; k <= 4; ++k) {
        RegularTerms t;
        const f32(&X)[4] = panel.XGP[k];
        LOGPAR({nu * P[1], nu * P[2], -nu * P[3], nu * X[1], nu * X[2], -nu * X[3], nu, S, 0, {G1, 0, G3}, 0},
               t);
        const Complex P1(t.P[1]), P2(t.P[2]), P4(t.P[4]), W1(t.W1);
        digits[1] += 0.25 * NU * P1;
        digits[4] += 0.25 * NU * NU * (N1 * P2 + N3 * P4);
        digits[8] -= Complex(0, 0.125 * NU) * (N1 * P1 - N3 * W1);
    }
    Setting s({square()}, 1, nu);
    WdkernWork work;
    ASSERT_TRUE(work.alloc(s.panels));
    ASSERT_EQ(WDKERN(P, s.panels, s.wave, work, s.result), Status::ok);
    for (int v : {1, 4, 7, 8})
        expect_digits(s.result(1, v), digits[v]);
}

// ---- Small squares against fine quadrature of the complete G ----

constexpr f32 SIZE = 0.1f; // side; nu SIZE is small, so that the wave part costs no digits

// Centre and the inclination of the normal against the vertical, and its azimuth.
Panel small_square(std::array<double, 3> centre, double inclination, double azimuth) {
    const double ci = std::cos(inclination), si = std::sin(inclination), ca = std::cos(azimuth),
                 sa = std::sin(azimuth);
    const double u[3] = {ci * ca, ci * sa, -si}, v[3] = {-sa, ca, 0};
    const int su[5] = {0, 1, 1, -1, -1}, sv[5] = {0, 1, -1, -1, 1};
    Array<f32, 2> vertex;
    EXPECT_TRUE(vertex.alloc(4, 3));
    for (int k = 1; k <= 4; ++k)
        for (int c = 0; c < 3; ++c)
            vertex(k, c + 1) = static_cast<f32>(centre[static_cast<std::size_t>(c)] +
                                                0.5 * SIZE * (su[k] * u[c] + sv[k] * v[c]));
    Panel panel;
    EXPECT_EQ(PANGEO(vertex, 0, 1, panel), Status::ok);
    return panel;
}

// Near and far ones, near the surface, near a bottom at 0.9, of all inclinations; the first in
// the free surface.
std::vector<Panel> some_panels() {
    return {small_square({0.9, 0.2, 0}, 0, 0.3),       small_square({0.3, -0.1, -0.4}, 0.5, 0.9),
            small_square({0.5, 0.4, -0.12}, 1.57, 2),  small_square({0.5, 0.1, -0.84}, 0.2, -1),
            small_square({2.5, -1.5, -0.2}, 1.2, 0.4), small_square({-4, 3, -0.7}, 2.5, -2)};
}

// Sum over 8 x 8 cells of two by two Gauss points of `integrand`, a function of the source point.
template <class F> Complex fine(const Panel &p, F integrand) {
    Complex sum = 0;
    for (int i = 0; i < 16; ++i)
        for (int j = 0; j < 16; ++j) {
            const auto at = [](int k) {
                return (0.5 * (k / 2) + 0.25 + (k % 2 == 0 ? -0.25 : 0.25) / std::sqrt(3.0)) / 4 - 0.5;
            };
            double x[3];
            for (int c = 0; c < 3; ++c)
                x[c] = p.XCT[c + 1] + SIZE * (at(i) * p.TRM[1][c + 1] + at(j) * p.TRM[2][c + 1]);
            sum += integrand(x);
        }
    return sum * static_cast<double>(p.PMOM[1]) / 256.0;
}

// Values of the reference in the sense of the kernels: G of dimension 1/length and its derivatives.
enum Reference { VALUE, NORMAL, PANEL_X, PANEL_Y, PANEL_Z, FIELD_Z, FIELD_ZZ };
Complex reference(Reference what, const f32 (&F)[4], const Panel &p, const Setting &s) {
    const bool lid = s.wave.NU < 0;
    const double nu = lid ? 1 : s.wave.NU;
    return fine(p, [&](const double(&x)[3]) {
        const double dx = F[1] - x[0], dy = F[2] - x[1], rho = std::hypot(dx, dy), c = dx / rho,
                     sn = dy / rho;
        f32 g[16];
        const f32 R = static_cast<f32>(nu * rho), Z = static_cast<f32>(-nu * F[3]),
                  ZETA = static_cast<f32>(std::max(0.0, -nu * x[2]));
        if (lid)
            VGRN0(R, Z, ZETA, s.wave.HBOT, 0, 0, 1, g);
        else
            VGRN1P(R, Z, ZETA, static_cast<f32>(nu) * s.wave.HBOT, s.gstate, 0, 0, g);
        const auto G = [&](GreenValue v) {
            return (v == G_ || v == G_ZZ ? 1 : -1) * std::pow(nu, ORDER[v] + 1) *
                   Complex(g[2 * v], g[2 * v + 1]);
        };
        const Complex gradient[3] = {c * G(G_R), sn * G(G_R), G(G_ZETA)};
        if (what == NORMAL)
            return double(p.TRM[3][1]) * gradient[0] + double(p.TRM[3][2]) * gradient[1] +
                   double(p.TRM[3][3]) * gradient[2];
        return what == VALUE      ? G(G_)
               : what == FIELD_Z  ? G(G_Z)
               : what == FIELD_ZZ ? G(G_ZZ)
                                  : gradient[what - PANEL_X];
    });
}

// Distance of the centroid from a point, and the size of what is integrated: singular part and waves.
double distance(const f32 (&F)[4], const Panel &p) {
    return std::hypot(F[1] - p.XCT[1], F[2] - p.XCT[2], F[3] - p.XCT[3]);
}
double size_of(const Panel &p, double d, int order) {
    return p.PMOM[1] * (std::pow(d, -order) + 1);
}

// Largest error of a column against a reference, near panels or far ones.
double worst(const Setting &s, int column, Reference what, const f32 (&F)[4], bool near) {
    const int order = what == VALUE ? 1 : what == FIELD_ZZ ? 3 : 2;
    double error = 0;
    for (int NP = 1; NP <= s.panels.n; ++NP) {
        const Panel &p = s.panels.panel[static_cast<std::size_t>(NP) - 1];
        if ((s.work.near(NP) != 0) == near)
            error = std::max(error, std::abs(Complex(s.result(NP, column)) - reference(what, F, p, s)) /
                                        size_of(p, distance(F, p), order));
    }
    return error;
}

// Columns 1, 2, ... against their references, near and far panels apart.
template <class Limit>
void expect_fine(const Setting &s, const std::vector<Reference> &what, const f32 (&F)[4], Limit limit) {
    for (int v = 1; v <= static_cast<int>(what.size()); ++v)
        for (const bool near : {false, true})
            EXPECT_LT(worst(s, v, what[v - 1], F, near), limit(v, near)) << "column " << v << near;
}

class FieldKernels : public ::testing::TestWithParam<f32> {}; // depth
const f32 SURFACE[4] = {0, 0.6f, 0.05f, 0}, BODY[4] = {0, 0.55f, 0.1f, -0.35f},
          DEEP[4] = {0, 0.4f, 0.3f, -0.55f};

// The wave part by four points, and single precision.
constexpr double QUADRATURE = 5e-5;

TEST_P(FieldKernels, SurfacePointsAgreeWithFineQuadrature) {
    Setting s(some_panels(), 1, 0.9f, GetParam());
    ASSERT_EQ(FSFLD(SURFACE, s.panels, s.wave, 0.006f, s.work, s.result), Status::ok);
    // The last is a difference: 3 (STEP/d)^2 and rounding.
    expect_fine(s, {VALUE, NORMAL, FIELD_ZZ}, SURFACE,
                [](int v, bool) { return v == FS_C ? 2e-3 : QUADRATURE; });
}

TEST_P(FieldKernels, GradientsAgreeWithFineQuadrature) {
    for (const auto &[nu, ILOGK] : {std::pair{0.9f, 0}, {0.9f, 1}, {RIGID_LID, 0}})
        for (const auto *const place : {&BODY, &DEEP, &SURFACE}) {
            const auto &point = *place;
            Setting s(some_panels(), 1, nu, GetParam());
            ASSERT_EQ(PANGRD(point, s.panels, s.wave, ILOGK, ALL, s.work, s.result), Status::ok);
            SCOPED_TRACE(testing::Message() << nu << ILOGK);
            expect_fine(s, {VALUE, NORMAL, PANEL_X, PANEL_Y, PANEL_Z, FIELD_Z}, point,
                        [lid = nu < 0, log = ILOGK == 1](int v, bool near) {
                            // The gradient of the logarithm takes 1/r at its mean over the panel.
                            const bool mean = near && log && (v == PG_GP1 || v == PG_GP2);
                            return mean ? 3e-3 : lid ? 5e-6 : QUADRATURE;
                        });
        }
}

// Steady flows that pick the integrals of G and of its x and y derivatives.
TEST(FieldKernel, OfTheSteadyFlowsAgreesWithFineQuadrature) {
    const struct {
        f32 HBOT, F[4];
    } rows[] = {{-1, {0, 0.55f, 0.1f, -0.35f}},
                {-1, {0, 0.4f, 0.3f, -0.55f}},
                {0.9f, {0, 0.4f, 0.3f, -0.55f}},
                {0.3f, {0, 0.55f, 0.1f, -0.25f}}}; // with an image in the bottom that is near
    for (const auto &[HBOT, F] : rows) {
        SteadyFlow flow;
        Setting s({small_square({0.6, 0.05, 0}, 0, 0.3), small_square({0.2, 0.4, 0}, 0, 1),
                   small_square({3, -2, 0}, 0, 2)},
                  1, 0.9f, HBOT);
        ASSERT_TRUE(flow.STF2.alloc(3, 2, 3) && flow.STF3.alloc(3, 3));
        for (int J = 1; J <= 3; ++J) {
            flow.STF3(J, 1) = -1;
            flow.STF2(J, 1, 2) = flow.STF2(J, 2, 3) = 0.5f;
        }
        ASSERT_EQ(FSKERN(F, s.panels, s.wave, flow, s.work, s.result), Status::ok);
        SCOPED_TRACE(HBOT);
        expect_fine(s, {VALUE, PANEL_X, PANEL_Y}, F,
                    [](int v, bool near) { return near && v > 1 ? 3e-3 : QUADRATURE; });
    }
}

// With D the derivative by the place of the field point in x, in y and around the vertical axis (times nu),
// U(1) to U(3) are -2 i d/dnu of D V, U(4) to U(6) the same of D VN, and U(7), U(8) are d/dnu of V and VN.
TEST_P(FieldKernels, WaveNumberKernelIsMadeOfDerivatives) {
    constexpr double STEP = 0.05;
    const f32 H = GetParam();
    for (const auto *const place : {&BODY, &DEEP}) {
        const auto &F = *place;
        Setting s(some_panels(), 1, 0.9f, H);
        WdkernWork work;
        ASSERT_TRUE(work.alloc(s.panels));
        ASSERT_EQ(WDKERN(F, s.panels, s.wave, work, s.result), Status::ok);
        for (int NP = 1; NP <= s.panels.n; ++NP) {
            const Panel &p = s.panels.panel[static_cast<std::size_t>(NP) - 1];
            const double d = std::hypot(F[1] - p.XCT[1], F[2] - p.XCT[2], F[3] + p.XCT[3]);
            // Far away U grows with the distance. Over a near panel its exact integrals are spread evenly
            // over the points.
            const double limit = work.near(NP) != 0 ? 1e-2 : 1e-3;
            for (int normal = 0; normal < 2; ++normal) {
                const auto f = [&](const std::array<double, 3> &at) { // nu, x, y
                    Setting t({p}, 1, static_cast<f32>(at[0]), H);
                    EXPECT_EQ(PANGRD({0, static_cast<f32>(at[1]), static_cast<f32>(at[2]), F[3]}, t.panels,
                                     t.wave, 1, WANT_V | WANT_VN, t.work, t.result),
                              Status::ok);
                    return Complex(t.result(1, normal == 0 ? PG_V : PG_VN));
                };
                const double x = F[1], y = F[2];
                const auto by = [&](std::array<int, 3> times) {
                    return derivative<3>(f, {0.9, x, y}, times, {STEP, STEP, STEP});
                };
                const Complex X = by({1, 1, 0}), Y = by({1, 0, 1});
                const Complex factor(0, -2), around = static_cast<double>(s.wave.NU) * (x * Y - y * X);
                const Complex expected[4] = {by({1, 0, 0}), factor * X, factor * Y, factor * around};
                const int columns[2][4] = {{7, 1, 2, 3}, {8, 4, 5, 6}};
                for (int k = 0; k < 4; ++k) {
                    const int u = columns[normal][k];
                    EXPECT_LT(std::abs(Complex(s.result(NP, u)) - expected[k]),
                              limit * (size_of(p, d, normal + (k > 0 ? 1 : 0)) + std::abs(expected[k])))
                        << "panel " << NP << " U" << u;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, FieldKernels, ::testing::Values(-1.0f, 0.9f));

// With one point a panel, a panel straight below the field point has four in WDKERN and no horizontal
// derivative in FSKERN.
TEST(PanelBelow, StraightAbove) {
    const Panel below = small_square({0.3, 0.2, -0.5}, 0.4, 1), surface = small_square({0.3, 0.2, 0}, 0, 0.2);
    for (const f32 shift : {0.0f, 1.2e-4f}) {
        c32 U[2];
        for (const int IQUAD : {0, 1}) {
            Setting s({below}, IQUAD, 0.9f);
            WdkernWork work;
            ASSERT_TRUE(work.alloc(s.panels));
            ASSERT_EQ(
                WDKERN({0, below.XCT[1] + shift, below.XCT[2], -0.1f}, s.panels, s.wave, work, s.result),
                Status::ok);
            U[IQUAD] = s.result(1, 4);
        }
        EXPECT_EQ(U[0] == U[1], shift == 0) << shift;
    }
    SteadyFlow flow;
    ASSERT_TRUE(flow.STF2.alloc(1, 2, 3) && flow.STF3.alloc(1, 3));
    flow.STF2(1, 1, 1) = 0.5f;
    Setting s({surface}, 0, 0.9f);
    ASSERT_EQ(FSKERN({0, surface.XCT[1], surface.XCT[2], -0.2f}, s.panels, s.wave, flow, s.work, s.result),
              Status::ok);
    EXPECT_EQ(s.work.ISNG(1, 1), 3);
    EXPECT_NEAR(std::abs(s.result(1, 1)), 0, 1e-6);
}

} // namespace
