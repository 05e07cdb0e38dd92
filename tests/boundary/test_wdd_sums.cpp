// Sums of a second-order period. Truth: the sums as they are defined, pair by pair in double precision;
// differences by the heading. Bodies given as a half or a quarter, threads and single problems: whole runs.
#include "boundary/wdd_sums.hpp"

#include "boundary/incident_wave.hpp"
#include "green/field_kernels.hpp"
#include "green/wdkern.hpp"
#include "hull_meshes.hpp"
#include "state/symmetry.hpp"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace {

constexpr int HEADINGS = 2;
constexpr f32 NU = 1.1f;
struct Case {
    RunState run;
    ThreadState thread;
    PeriodWave wave;
};

hulls::Quads free_surface() {
    hulls::Quads quads;
    hulls::add_patch(quads, {0.5, 0, 0}, {0.8, 0, 0}, {0, 1.1, 0}, 2, 2);
    hulls::add_patch(quads, {0, 0.4, 0}, {0.5, 0, 0}, {0, 0.7, 0}, 2, 2);
    return hulls::mirrored(quads);
}

// A body without symmetry planes, free-surface panels around it, and random solutions and steady flows.
void make(Case &c, f32 HBOT) {
    RunState &run = c.run, flat;
    hulls::set_body(free_surface(), flat);
    hulls::set_body(hulls::mirrored(hulls::quarter_box(1, 0.8, -0.5, 0, 2, false)), run);
    run.opt.IQUAD = 1;
    for (RunState *r : {&run, &flat})
        ASSERT_EQ(PREGEO(r->opt, r->files, r->dipoles, r->bodies, r->mesh), Status::ok);
    Mesh &m = flat.mesh;
    run.surface = {m.NEQN,
                   std::move(m.XIV),
                   std::move(m.ETV),
                   std::move(m.XCT),
                   std::move(m.TRM),
                   std::move(m.PMOM),
                   std::move(m.SIDE),
                   std::move(m.XGP),
                   std::move(m.GJAC),
                   std::move(m.PSIZ)};
    ASSERT_EQ(SYMSET(6, 0, 0, run.bodies.MODE, 1, run.sym), Status::ok);
    run.sym.WCLS1[1] = run.sym.WCLS2[1] = run.sym.WCLS3[1] = 1;
    run.opt.HBOT = HBOT;
    run.opt.IRAD = run.opt.IDIFF = run.opt.ISOR = run.opt.IWADD = 1;
    run.periods.NBETA = run.periods.NBETAM = HEADINGS;
    const int N = run.mesh.NEQN, NFSP = run.surface.NFSP;
    ThreadState &t = c.thread;
    SecondOrder &s = t.second;
    ASSERT_TRUE(run.periods.SINBET.alloc(HEADINGS) && run.periods.COSBET.alloc(HEADINGS) &&
                run.flow.STB3.alloc(N, 3, 3) && run.flow.STF2.alloc(NFSP, 2, 3) &&
                run.flow.STF3.alloc(NFSP, 3) && allocate_solution(run, t) == Status::ok &&
                allocate_velocities(run, t));
    for (int b = 1; b <= HEADINGS; ++b) {
        run.periods.SINBET(b) = std::sin(0.7f * static_cast<f32>(b));
        run.periods.COSBET(b) = std::cos(0.7f * static_cast<f32>(b));
    }
    f32 ratio = 1;
    if (HBOT > 0) {
        ASSERT_EQ(HGRN98(NU * HBOT, ratio, t.gstate), 0);
    }
    c.wave = frequency_variables(NU, HBOT, ratio);
    std::mt19937 random(11);
    std::uniform_real_distribution<f32> unit(-1, 1);
    const auto fill = [&](auto *numbers, std::int64_t n) { // complex ones as pairs
        f32 *const values = reinterpret_cast<f32 *>(numbers);
        std::generate_n(values, n * static_cast<std::int64_t>(sizeof(*numbers) / sizeof(f32)),
                        [&]() { return unit(random); });
    };
    const auto fill_all = [&](auto &...array) { (fill(array.data(), array.size()), ...); };
    fill_all(t.PHIR, t.SRCR, t.PHID, t.SRCD, s.PHID2, s.SRCD2, s.W2D0, s.W2D0B);
    fill_all(run.flow.STB3, run.flow.STF2, run.flow.STF3);
}

// Rounding of sums of some hundred products of either sign.
constexpr double ROUNDING = 2e-5;

// The sums of one field point over a body without symmetry, for radiation column `col` and heading `b`.
struct PlainSums {
    c64 W2R[4], W2D[4], W2D0B, FSR[4], FSD[6];
};
PlainSums plain_sums(const Case &c, int i, int J, int col, int b) {
    const RunState &run = c.run;
    const ThreadState &t = c.thread;
    const FieldWave wave{run.opt.HBOT, NU, &t.gstate};
    const c64 I(0, 1);
    const double K = double(c.wave.W) * c.wave.F, cb = run.periods.COSBET(b), sb = run.periods.SINBET(b);
    FieldPanels body, surface;
    FieldWork on_body, on_surface;
    WdkernWork wdkern;
    KernelValues U, GP, Q, ABC;
    EXPECT_TRUE(body.make(run.mesh, 1) && surface.make(run.surface, 1) && on_body.alloc(body) &&
                on_surface.alloc(surface) && wdkern.alloc(body) && U.alloc(body, 8) && GP.alloc(body, 6) &&
                Q.alloc(surface, 3) && ABC.alloc(body, 3));
    const f32 P[4] = {0, run.mesh.XCT(1, i), run.mesh.XCT(2, i), run.mesh.XCT(3, i)};
    const f32 F[4] = {0, run.surface.XCTF(1, J), run.surface.XCTF(2, J), 0};
    EXPECT_EQ(WDKERN(P, body, wave, wdkern, U), Status::ok);
    EXPECT_EQ(PANGRD(P, body, wave, 1, WANT_HORIZONTAL | WANT_GP3, on_body, GP), Status::ok);
    EXPECT_EQ(FSFLD(F, body, wave, DZSTEP(body.n, run.mesh.PMOM), on_body, ABC), Status::ok);
    EXPECT_EQ(FSKERN(P, surface, wave, run.flow, on_surface, Q), Status::ok);
    PlainSums r{};
    for (int NP = 1; NP <= body.n; ++NP) {
        const c64 f = t.PHIR(NP, col), phi = t.PHID(NP, b, 1), phi2 = t.second.PHID2(NP, b, 1);
        const double g = run.mesh.VEL(col, NP);
        const auto u = [&](int k) { return c64(U(NP, k)); };
        r.W2R[0] += u(7) * g - u(8) * f;
        r.W2D[0] -= u(8) * phi;
        r.W2D0B -= u(8) * phi2;
        r.W2D[1] += 2 * K * cb * u(8) * phi;
        r.W2D[2] += 2 * K * sb * u(8) * phi;
        r.W2D[3] -= 2.0 * I * double(NU) * u(8) * phi2;
        for (int d = 1; d <= 3; ++d) {
            c64 T = 0;
            for (int a = 1; a <= 3; ++a)
                T += double(run.flow.STB3(NP, a, d)) * c64(GP(NP, PG_GP1 + a - 1));
            r.W2R[d] += ((d == 3 ? I : I / double(NU)) * T - u(d)) * g + u(3 + d) * f;
            r.W2D[d] += u(3 + d) * phi;
        }
        const c64 A(ABC(NP, 1)), B(ABC(NP, 2)), C(ABC(NP, 3)), source(t.SRCR(NP, col));
        const c64 s1(t.SRCD(NP, b, 1)), s2(t.second.SRCD2(NP, b, 1));
        r.FSR[1] += (g * A - f * B) / double(PI4);
        r.FSR[2] += source * A;
        r.FSR[3] += source * C;
        r.FSD[1] -= phi * B / double(PI4);
        r.FSD[2] += s1 * A;
        r.FSD[3] += s1 * C;
        r.FSD[4] += s2 * A;
        r.FSD[5] += s2 * C;
    }
    for (int j = 1; j <= surface.n; ++j)
        for (int d = 1; d <= 3; ++d) {
            const c64 a = I * (d == 3 ? double(NU) : 1.0) * c64(Q(j, d));
            r.W2R[d] += a * c64(t.second.FSR1(j, col));
            r.W2D[d] += a * c64(t.second.FSD1(j, b, 1));
        }
    const double x = F[1], y = F[2];
    const auto incident = [&](double heading) {
        return std::exp(-I * K * (x * std::cos(heading) + y * std::sin(heading)));
    };
    const double beta = std::atan2(sb, cb);
    const c64 turned = (incident(beta + 1e-5) - incident(beta - 1e-5)) / 2e-5;
    const c64 waves[6] = {0, incident(beta), incident(beta), K * K * incident(beta), turned, K * K * turned};
    for (int k = 1; k <= 5; ++k)
        r.FSD[k] += waves[k];
    return r;
}

TEST(WddSums, EqualThePlainSums) {
    for (const f32 HBOT : {-1.0f, 0.9f}) {
        Case c;
        make(c, HBOT);
        SecondOrder &s = c.thread.second;
        const int i = 21, J = 18, col = 5, b = 2;
        const c64 before[2] = {s.W2D0(i, b, 1), s.W2D0B(i, b, 1)};
        ASSERT_EQ(WDDFS(c.run, c.wave, c.thread), Status::ok);
        ASSERT_EQ(WDDRHS(c.run, c.wave, c.thread), Status::ok);
        PlainSums r = plain_sums(c, i, J, col, b);
        r.W2D[0] += before[0];
        r.W2D0B += before[1];
        const std::pair<c32, c64> pairs[] = {
            {s.W2R0(i, col), r.W2R[0]},  {s.W2R1(i, col), r.W2R[1]},  {s.W2R2(i, col), r.W2R[2]},
            {s.W2R3(i, col), r.W2R[3]},  {s.W2D0(i, b, 1), r.W2D[0]}, {s.W2D1(i, b, 1), r.W2D[1]},
            {s.W2D2(i, b, 1), r.W2D[2]}, {s.W2D3(i, b, 1), r.W2D[3]}, {s.W2D0B(i, b, 1), r.W2D0B},
            {s.FSR1(J, col), r.FSR[1]},  {s.FSR2(J, col), r.FSR[2]},  {s.FSR3(J, col), r.FSR[3]},
            {s.FSD1(J, b, 1), r.FSD[1]}, {s.FSD2(J, b, 1), r.FSD[2]}, {s.FSD3(J, b, 1), r.FSD[3]},
            {s.FSD4(J, b, 1), r.FSD[4]}, {s.FSD5(J, b, 1), r.FSD[5]}};
        for (std::size_t k = 0; k < std::size(pairs); ++k)
            EXPECT_LT(std::abs(c64(pairs[k].first) - pairs[k].second),
                      ROUNDING * (1 + std::abs(pairs[k].second)))
                << k;
    }
}

} // namespace
