// Integrals of the Green function over panels at a field point. Truth: digits of one panel from an
// independent double-precision evaluation; fine quadrature of G; differences of the value.
#include "green/field_kernels.hpp"
#include "green/wdkern.hpp"
#include "green_points.hpp"

namespace {

// The unit square at (2, 0.5, -1) with normal (0.6, 0, 0.8), its vertices in either sense.
Panel square(bool clockwise) {
    Panel p{};
    const f32 X[5] = {0, -0.5f, 0.5f, 0.5f, -0.5f}, Y[5] = {0, -0.5f, -0.5f, 0.5f, 0.5f};
    const f32 frame[4][4] = {{}, {0, 0.8f, 0, -0.6f}, {0, 0, 1, 0}, {0, 0.6f, 0, 0.8f}};
    const f32 centre[4] = {0, 2, 0.5f, -1};
    p.PMOM[1] = 1;
    p.PMOM[2] = p.PMOM[4] = 0.125f;
    p.PMOM[9] = p.PMOM[13] = 3.75f / 80;
    p.PMOM[11] = 3.75f / 144;
    p.PSIZ[1] = p.PSIZ[2] = 1;
    for (int k = 1; k <= 4; ++k) {
        const int v = clockwise ? 5 - k : k;
        p.XIV[k] = X[v];
        p.ETV[k] = Y[v];
        p.SIDE[k] = 1;
        p.GJAC[k] = 0.25f;
        for (int c = 1; c <= 3; ++c)
            p.XGP[k][c] = centre[c] + 0.57735027f * (X[v] * frame[1][c] + Y[v] * frame[2][c]);
    }
    for (int c = 1; c <= 3; ++c) {
        p.XCT[c] = centre[c];
        for (int r = 1; r <= 3; ++r)
            p.TRM[r][c] = frame[r][c];
    }
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
    const Complex wrong[4] = {0, {-6.80698, -2.10719}, {10.3422, -1.02233}, {-0.609391, -1.03252}};
    const double turn[4] = {0, 2 * MIDDLE, -2, 2 * NU * NU * MIDDLE - 2 * NU * N3};
    const Complex right[4] = {0, {0.9016160, -2.1071927}, {1.0894995, -1.0223314}, {3.7118106, -1.0325244}};
    for (const bool clockwise : {false, true}) {
        Setting s({square(clockwise)}, 0, 0.7f);
        ASSERT_EQ(FSFLD(P, s.panels, s.wave, 0.125f, s.work, s.result), Status::ok);
        for (int v = 1; v <= 3; ++v)
            expect_digits(s.result(1, v), clockwise ? right[v] : wrong[v] - TURN * turn[v]);
    }
}

TEST(WorkedPanel, Gradient) {
    struct Row {
        f32 nu;
        bool clockwise;
        int column;
        Complex digits;
        double turn;
    };
    const Row rows[] = {{0.7f, false, PG_V, {-6.295523, -1.583007}, LOW + HIGH},
                        {0.7f, false, PG_VN, {10.45283, -0.7746354}, -2},
                        {0.7f, false, PG_GP3, {-0.6849597, -1.108105}, 2 * NU * HIGH - 2 * N3},
                        {0.7f, false, PG_GF3, {-7.844437, -1.108105}, 2 * NU * HIGH},
                        {0.7f, true, PG_V, {0.9358622, -1.5830070}, 0},
                        {0.7f, true, PG_VN, {0.9166231, -0.7746353}, 0},
                        {0.7f, true, PG_GP1, {-1.2579907, 0.1864143}, 0},
                        {0.7f, true, PG_GF3, {-0.8143933, -1.1081049}, 0},
                        {RIGID_LID, false, PG_V, -8.251684, LOW + HIGH},
                        {RIGID_LID, false, PG_VN, 11.71203, -2},
                        {RIGID_LID, false, PG_GP1, 8.607315, -2 * N1},
                        {RIGID_LID, false, PG_GP3, 8.184549, -2 * N3},
                        {RIGID_LID, false, PG_GF3, 1.025072, 0},
                        {RIGID_LID, true, PG_V, 1.9684980, 0},
                        {RIGID_LID, true, PG_VN, 0.8543430, 0},
                        {RIGID_LID, true, PG_GF3, -1.0250717, 0}};
    for (const Row &row : rows) {
        Setting s({square(row.clockwise)}, 1, row.nu);
        ASSERT_EQ(PANGRD(P, s.panels, s.wave, 1, ALL, s.work, s.result), Status::ok);
        SCOPED_TRACE(row.column);
        expect_digits(s.result(1, row.column), row.digits - TURN * row.turn);
    }
}

TEST(WorkedPanel, WaveNumberDerivative) {
    Complex wrong[9] = {0, {-1.019875, 4.070753}, 0,
                        0, {-2.134463, 5.683472}, 0,
                        0, {2.217191, 0.1380576}, {-5.282666, -0.8831308}};
    const Complex right[9] = {0, {-1.0198749, -0.1457504}, 0, 0, 0, 0, 0, {-2.0525186, 0.1380576}, 0};
    // The turn enters through S and its gradient in the terms of the near panel.
    const Panel panel = square(true);
    const f32 nu = 0.7f, S = static_cast<f32>(TURN * HIGH), G1 = static_cast<f32>(TURN * N1),
              G3 = static_cast<f32>(TURN * N3);
    for (int k = 1; k <= 4; ++k) {
        RegularTerms t;
        LOGPAR({nu * P[1],
                nu * P[2],
                -nu * P[3],
                nu * panel.XGP[k][1],
                nu * panel.XGP[k][2],
                -nu * panel.XGP[k][3],
                nu,
                S,
                0,
                {G1, 0, G3},
                0},
               t);
        const Complex P1(t.P[1]), P2(t.P[2]), P4(t.P[4]), W1(t.W1);
        wrong[1] += 0.25 * NU * P1;
        wrong[4] += 0.25 * NU * NU * (N1 * P2 + N3 * P4);
        wrong[8] -= Complex(0, 0.125 * NU) * (N1 * P1 - N3 * W1);
    }
    for (const bool clockwise : {false, true}) {
        Setting s({square(clockwise)}, 1, nu);
        WdkernWork work;
        ASSERT_TRUE(work.alloc(s.panels));
        ASSERT_EQ(WDKERN(P, s.panels, s.wave, work, s.result), Status::ok);
        for (int v : {1, 4, 7, 8})
            if (!clockwise || right[v] != 0.0)
                expect_digits(s.result(1, v), clockwise ? right[v] : wrong[v]);
    }
}

} // namespace
