// Truth: the definition, pair by pair in double precision: influence of the source panel = weights times the
// Green function and its derivative along the source normal, summed over images with the signs of the class.
#include "assembly/row_part.hpp"
#include "assembly/tiles.hpp"
#include "assembly/wavegr.hpp"

#include "boundary/incident_wave.hpp"
#include "green/vgrn98.hpp"
#include "hull_meshes.hpp"
#include "rankine/rankin.hpp"
#include "state/memory_plan.hpp"
#include "state/symmetry.hpp"

#include <gtest/gtest.h>

namespace {

using Vector = std::array<double, 3>;

struct Setting {
    int ISX, ISY, IQUAD, ILOG, ISCATT, ISOR;
    bool lid;
    int least = TILE; // panels are more
    f32 HBOT = -1;
};

struct Case {
    RunState run;
    ThreadState thread;
    PeriodWave wave;
};

constexpr f32 WAVE_NUMBER = 1.3f;

// A box of unit draft, its quarter, half or whole, with two headings and all modes.
void make_case(const Setting &setting, Case &c) {
    RunState &run = c.run;
    run.opt.ISX = setting.ISX;
    run.opt.ISY = setting.ISY;
    run.opt.IQUAD = setting.IQUAD;
    run.opt.ILOG = setting.ILOG;
    run.opt.ISCATT = setting.ISCATT;
    run.opt.ISOR = setting.ISOR;
    run.opt.IRAD = run.opt.IDIFF = 1;
    run.opt.HBOT = setting.HBOT;
    run.memory.INCORE = true;
    const hulls::Quads quarter =
        hulls::quarter_box(2.0, 1.4, -1.0, 0.0, setting.least > TILE ? 6 : 3, setting.lid);
    hulls::set_body(setting.ISX == 0 && setting.ISY == 0 ? hulls::mirrored(quarter) : quarter, run);
    ASSERT_EQ(hulls::pre_pass(run), Status::ok);
    for (int ip = 1; ip <= run.mesh.NEQN; ++ip)
        run.mesh.IFSP(ip) = run.mesh.XCT(3, ip) > -0.0001f ? 1 : 0;
    run.periods.NPER = 1;
    run.periods.NBETA = run.periods.NBETAM = 2;
    ASSERT_TRUE(run.periods.SINBET.alloc(2) && run.periods.COSBET.alloc(2));
    run.periods.SINBET(1) = 0.6f;
    run.periods.COSBET(1) = 0.8f;
    run.periods.SINBET(2) = 1.0f;
    ASSERT_FALSE(failed(SYMSET(6, setting.ISX, setting.ISY, run.bodies.MODE, 1, run.sym)) ||
                 failed(allocate_store(run.opt, run.sym, run.mesh.NEQN, run.store)) ||
                 failed(RANKIN(run.opt, run.bodies, run.mesh, run.dipoles, run.sym, run.store)) ||
                 failed(allocate_solution(run, c.thread)) || failed(ALLOCATE_WA(run, c.thread)));
    f32 F = 1;
    ASSERT_EQ(depth_state(WAVE_NUMBER, run.opt.HBOT, c.thread.gstate, F), Status::ok);
    c.wave = frequency_variables(WAVE_NUMBER, run.opt.HBOT, F);
    INCWAV(run, WAVE_NUMBER, c.thread);
}

// Value of a Rankine matrix at the frequency: its two planes together.
double rankine(const Case &c, View<const f32, 4> matrix, int I, int J, int third) {
    const double logarithm =
        c.run.opt.ILOG == 1 ? static_cast<double>(c.wave.NUL) * matrix(I, J, third, 1) : 0;
    return matrix(I, J, third, 0) + logarithm;
}

// Influence of one panel on one field point: source, dipole, velocity of the source there,
// its normal component.
struct Influence {
    c64 S;
    c64 D;
    c64 V[3];
    c64 E;
};
Influence wave_influence(const Case &c, int source, const Vector &field, int selectors, bool surface) {
    const int ISNG = selectors & 3, IBOT = selectors >> 2 & 1;
    const RunState &run = c.run;
    const double nu = static_cast<double>(c.wave.NU);
    const double offset = ISNG == 3 ? -2 * std::log(nu) : 0;
    Influence sum{};
    const int points = run.opt.IQUAD == 1 ? 4 : 1;
    for (int q = 1; q <= points; ++q) {
        Vector p;
        for (int k = 1; k <= 3; ++k)
            p[static_cast<std::size_t>(k - 1)] =
                points == 4 ? run.mesh.XGP(q, k, source) : run.mesh.XCT(k, source);
        const double weight = points == 4 ? run.mesh.GJAC(q, source) : run.mesh.PMOM(1, source);
        const double dx = p[0] - field[0], dy = p[1] - field[1];
        const double d = std::hypot(dx, dy);
        f32 record[16];
        VGRN1P(static_cast<f32>(nu * d), static_cast<f32>(-nu * p[2]), static_cast<f32>(-nu * field[2]),
               c.wave.HNU, c.thread.gstate, ISNG, IBOT, record);
        const c64 G = c64(record[0] + offset, record[1]);
        const c64 GR(record[2], record[3]), GZ(record[4], record[5]), GF(record[12], record[13]);
        const double h =
            d > 1e-6 ? (run.mesh.TRM(3, 1, source) * dx + run.mesh.TRM(3, 2, source) * dy) / d : 0;
        sum.S += nu * weight * G;
        // In the free surface dG/dz = nu G stands for the normal derivative.
        if (surface)
            sum.D -= nu * nu * weight * static_cast<double>(run.mesh.IFSP(source)) * G;
        else
            sum.D += nu * nu * weight * (GR * h - GZ * static_cast<double>(run.mesh.TRM(3, 3, source)));
        if (surface)
            continue;
        // Gradient at the field point: horizontally away from the source, and upward.
        sum.V[0] -= d > 1e-6 ? nu * nu * weight * GR * dx / d : 0;
        sum.V[1] -= d > 1e-6 ? nu * nu * weight * GR * dy / d : 0;
        sum.V[2] -= nu * nu * weight * GF;
    }
    return sum;
}

// Source and dipole influence of panel J on panel I in class s, Rankine part included.
Influence coefficient(const Case &c, int I, int J, int s) {
    const RunState &run = c.run;
    const RankineStore &store = run.store;
    const int code = store.ICODM(pair_place(std::max(I, J)) + std::min(I, J));
    const bool surface = code >= 4096;
    Influence sum{};
    const double NUL = static_cast<double>(c.wave.NUL),
                 own = surface && I == J ? 4 * M_PI * run.mesh.IFSP(I) : 0;
    sum.D = rankine(c, store.RKDM, I, J, s) * (surface ? -NUL : 1) - own;
    if (run.opt.ISCATT == 1)
        sum.S = rankine(c, store.RKSM, I, J, s);
    if (run.opt.ISOR == 1) {
        sum.E = rankine(c, store.RKNM, I, J, s) * (surface ? -NUL : 1) - own;
        for (int k = 0; k < 3; ++k)
            sum.V[k] = rankine(c, store.RKVM, I, J, 3 * (s - 1) + k + 1);
    }
    for (int m = 0; m < run.sym.NSYMG; ++m) {
        const int g = run.sym.ISYMG[m + 1];
        const Vector field = {SGX[g] * static_cast<double>(run.mesh.XCT(1, I)),
                              SGY[g] * static_cast<double>(run.mesh.XCT(2, I)),
                              static_cast<double>(run.mesh.XCT(3, I))};
        const double sign = SGN[run.sym.ICLS[s]][g];
        const Influence wave = wave_influence(c, J, field, code >> (3 * m) & 7, surface);
        sum.D += sign * wave.D;
        sum.S += sign * wave.S;
        // The real point's velocity is the mirror image of that of the imaged point.
        const double mirror[3] = {sign * SGX[g], sign * SGY[g], sign};
        for (int k = 0; k < 3; ++k) {
            sum.V[k] += mirror[k] * wave.V[k];
            sum.E += static_cast<double>(run.mesh.TRM(3, k + 1, I)) * mirror[k] * wave.V[k];
        }
        if (surface)
            sum.E += sign * wave.D;
    }
    return sum;
}

class WaveRows : public testing::TestWithParam<Setting> {};

TEST_P(WaveRows, EqualTheDefinition) {
    // Single precision of the Green function times areas of 0.1, summed over at most four images
    // and N panels.
    constexpr double TOLERANCE = 5e-6;
    Case c;
    make_case(GetParam(), c);
    const RunState &run = c.run;
    const int N = run.mesh.NEQN;
    ASSERT_GT(N, GetParam().least);
    ASSERT_EQ(WAVEGR(run, c.wave, c.thread), Status::ok);
    for (int s = 1; s <= run.sym.NSYMR; ++s) {
        double worst = 0;
        for (int I = 1; I <= N; ++I) {
            c64 rad[7] = {}, dif[3] = {};
            for (int k = 1; k <= run.sym.NMCLS[s]; ++k) {
                const int column = run.sym.MODPOS(run.sym.MODCLS(k, s));
                rad[k] = run.store.RHSRAN(I, column, 0);
                if (run.opt.ILOG == 1)
                    rad[k] += static_cast<double>(c.wave.NUL * run.store.RHSRAN(I, column, 1));
            }
            for (int J = 1; J <= N; ++J) {
                const Influence full = coefficient(c, I, J, s);
                worst = std::max(worst, std::abs(full.D - c64(c.thread.ACORE(I, J, s))));
                if (run.opt.ISOR == 1) {
                    worst = std::max(worst, std::abs(full.E - c64(c.thread.ECORE(I, J, s))));
                    for (int k = 0; k < 3; ++k)
                        worst = std::max(
                            worst, std::abs(full.V[k] - c64(c.thread.VCORE(I, J, 3 * (s - 1) + k + 1))));
                }
                const double in_store = run.opt.ISCATT == 1 ? rankine(c, run.store.RKSM, I, J, s) : 0;
                for (int k = 1; k <= run.sym.NMCLS[s]; ++k)
                    rad[k] +=
                        (full.S - in_store) * static_cast<double>(run.mesh.VEL(run.sym.MODCLS(k, s), J));
                for (int b = 1; b <= 2; ++b)
                    dif[b] += full.S * c64(c.thread.SRCD(J, b, s));
            }
            for (int k = 1; k <= run.sym.NMCLS[s]; ++k)
                EXPECT_LT(std::abs(rad[k] - c64(c.thread.PHIR(I, run.sym.MODPOS(run.sym.MODCLS(k, s))))),
                          TOLERANCE * 4);
            for (int b = 1; run.opt.ISCATT == 1 && b <= 2; ++b)
                EXPECT_LT(std::abs(dif[b] - c64(c.thread.PHID(I, b, s))), TOLERANCE * 4);
        }
        EXPECT_LT(worst, TOLERANCE) << "class " << s;
    }
}

INSTANTIATE_TEST_SUITE_P(Settings, WaveRows,
                         testing::Values(Setting{1, 1, 0, 0, 0, 0, false}, Setting{0, 0, 0, 0, 0, 1, false},
                                         Setting{1, 1, 0, 1, 1, 1, true}, Setting{1, 1, 1, 0, 1, 0, false},
                                         Setting{1, 1, 1, 1, 1, 1, true}, Setting{-1, 1, 0, 1, 1, 1, false},
                                         Setting{0, 0, 1, 1, 1, 0, true},
                                         Setting{0, 0, 0, 1, 1, 1, true, PART, 1.6f}));

} // namespace
