// Integrals of the Green function over panels at a field point. Truth: fine quadrature of the complete G over
// small squares; differences of the value.
#include "green/field_kernels.hpp"
#include "green/vgrn0.hpp"
#include "green/wdkern.hpp"
#include "green_points.hpp"

namespace {

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

// The wave part by four points and by one, and single precision.
constexpr double QUADRATURE = 5e-5, ONE_POINT = 1.4e-3;

TEST_P(FieldKernels, SurfacePointsAgreeWithFineQuadrature) {
    for (const int IQUAD : {0, 1}) {
        Setting s(some_panels(), IQUAD, 0.9f, GetParam());
        ASSERT_EQ(FSFLD(SURFACE, s.panels, s.wave, 0.006f, s.work, s.result), Status::ok);
        // The last is a difference: 3 (STEP/d)^2 and rounding.
        expect_fine(s, {VALUE, NORMAL, FIELD_ZZ}, SURFACE, [IQUAD](int v, bool) {
            return v == FS_C ? (IQUAD == 0 ? 1e-2 : 2e-3) : IQUAD == 0 ? ONE_POINT : QUADRATURE;
        });
    }
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
