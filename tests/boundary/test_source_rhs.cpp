// The passes between the solutions of a period on a small state with a panel of every kind. Truth: the
// boundary condition of each kind, written out.
#include "boundary/source_rhs.hpp"
#include "geometry/lid.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace {

// Panels by kind. 1 and 2 are hull at the waterline, the heads of the two strips.
enum Kind {
    HEAD1 = 1,
    HEAD2,
    DEEP,
    STRIP1A,
    STRIP1B,
    STRIP2,
    UNREACHED,
    RAFT,
    REVERSED,
    PLATE,
    STILL_PLATE,
    LID,
    PANELS = LID
};
constexpr int MODES = 7; // the last one an extra mode; mode 2 is off
constexpr int COLUMNS = 6, HEADINGS = 2, CLASSES = 2;
constexpr f32 K = 1.75f, F = 1.25f, DAMPING = 0.5f;
const c32 Z1(-0.3f * K * F, 0.2f * K * F), Z3(-0.7f * K * F, 0.4f * K * F);
const c32 Y = K * c32(1, -DAMPING) * c32(1, -DAMPING);

f32 noise(int i) {
    return static_cast<f32>(std::sin(12.9898 * i));
}
template <class A> void fill(A &values, int seed) {
    for (int i = 0; i < values.size(); ++i)
        values.data()[i] = {noise(seed + 2 * i), noise(seed + 2 * i + 1)};
}

// Normal velocity of a mode on a panel that has one.
f32 velocity(int mode, int p) {
    return static_cast<f32>(10 * mode + p);
}

struct State {
    RunState run;
    ThreadState thread;

    State() {
        Symmetry &sym = run.sym;
        Dipoles &dipoles = run.dipoles;
        Bodies &bodies = run.bodies;
        run.mesh.NEQN = PANELS;
        run.opt.IRR = run.opt.IRAD = run.opt.IDIFF = run.opt.IBDT3 = 1;
        run.periods.NBETA = run.periods.NBETAM = HEADINGS;
        sym.NSYMR = CLASSES;
        sym.NSYMD = COLUMNS;
        bodies.NBODY = 2;
        dipoles.IDIPOL = true;
        const bool made =
            sym.MODLST.alloc(MODES) && run.mesh.IFSP.alloc(PANELS) && run.mesh.projected.alloc(PANELS) &&
            run.mesh.VEL.alloc(MODES, PANELS) && run.strips.IRRP.alloc(PANELS) && run.strips.head.alloc(2) &&
            dipoles.IDIP.alloc(PANELS) && dipoles.DPORA.alloc(PANELS) && dipoles.DPORB.alloc(PANELS) &&
            bodies.BDTYP.alloc(2) && bodies.FSDMP.alloc(2) && bodies.IPANB0.alloc(2) &&
            bodies.IPANB1.alloc(2) && thread.PHIR.alloc(PANELS, COLUMNS) &&
            thread.PHID.alloc(PANELS, HEADINGS, CLASSES) && thread.PHI0.alloc(PANELS, HEADINGS, CLASSES) &&
            thread.SRCD.alloc(PANELS, HEADINGS, CLASSES);
        if (!made)
            std::abort();
        const int active[COLUMNS] = {1, 3, 5, 4, 6, 7};
        std::copy_n(active, COLUMNS, sym.MODLST.data());
        for (const int p : {STRIP1A, STRIP1B, STRIP2, UNREACHED})
            run.mesh.IFSP(p) = 1;
        for (const int p : {RAFT, REVERSED, LID})
            run.mesh.IFSP(p) = -1;
        run.mesh.projected(REVERSED) = 1;
        for (int p = 1; p <= PANELS; ++p)
            for (int m = 1; m <= MODES; ++m)
                run.mesh.VEL(m, p) = run.mesh.IFSP(p) == 1 || p == REVERSED ? 0 : velocity(m, p);
        run.waterline.NWL = 2;
        run.strips.head(1) = HEAD1;
        run.strips.head(2) = HEAD2;
        const int list[5] = {2, STRIP1A, STRIP1B, 1, STRIP2};
        std::copy_n(list, 5, run.strips.IRRP.data());
        dipoles.IDIP(PLATE) = 1;
        dipoles.IDIP(STILL_PLATE) = 3;
        dipoles.DPORA(PLATE) = 0.3f;
        dipoles.DPORB(PLATE) = 0.2f;
        dipoles.DPORA(STILL_PLATE) = 0.7f;
        dipoles.DPORB(STILL_PLATE) = 0.4f;
        bodies.BDTYP(2) = 3;
        bodies.FSDMP(2) = DAMPING;
        bodies.IPANB0(1) = 1;
        bodies.IPANB1(1) = LID - 1;
        bodies.IPANB0(2) = bodies.IPANB1(2) = LID;
        fill(thread.PHIR, 1);
        fill(thread.PHID, 100);
        fill(thread.PHI0, 200);
        fill(thread.SRCD, 300);
    }
    c32 scattered(int p, int b, int s) const { return thread.PHID(p, b, s) - thread.PHI0(p, b, s); }
};

void expect_near(c32 value, c32 wanted, int p) {
    EXPECT_LT(std::abs(value - wanted), 1e-6f * (1 + std::abs(wanted))) << "panel " << p;
}

// Panels whose velocity is that of the boundary condition, which for an interior panel that no strip reaches
// is what was there; the others by their potential f (on strips the scattered one in waves,
// on lids the total one less the velocity of the incident wave).
TEST(SourceRhs, RadiationHasTheVelocityOfEachKind) {
    struct {
        int IRAD, IDIFF;
        f32 K, F;
    } const rows[] = {{1, 1, K, F}, {1, -1, K, F}, {-1, 1, K, F}, {1, 1, 0, 1}};
    for (const auto &row : rows) { // one problem plays no part in the other; no waves
        State a;
        const State before;
        const ThreadState &t = a.thread, &old = before.thread;
        a.run.opt.IRAD = row.IRAD;
        a.run.opt.IDIFF = row.IDIFF;
        PeriodWave wave;
        wave.IPLIM = row.K > 0 ? 0 : 1;
        wave.NUL = row.K;
        wave.F = row.F;
        SRCRHS(a.run, wave, a.thread.PHIR, a.thread);
        const f32 waves = row.K / K;
        const auto by_potential = [&](int p, c32 rigid, c32 f, c32 head1, c32 head2) {
            return p == STRIP1A || p == STRIP1B ? -row.K * head1
                   : p == STRIP2                ? -row.K * head2
                   : p == LID                   ? waves * Y * f
                   : p == PLATE                 ? rigid - waves * Z1 * f
                   : p == STILL_PLATE           ? rigid - waves * Z3 * f
                                                : rigid;
        };
        for (int p = 1; p <= PANELS; ++p) {
            for (int c = 1; c <= COLUMNS; ++c) {
                const bool still = p == REVERSED || p == STILL_PLATE;
                const c32 f = old.PHIR(p, c), rigid = p == UNREACHED ? f
                                                      : still        ? 0
                                                                     : velocity(a.run.sym.MODLST(c), p);
                const c32 wanted = by_potential(p, rigid, f, old.PHIR(HEAD1, c), old.PHIR(HEAD2, c));
                expect_near(t.PHIR(p, c), row.IRAD == 1 ? wanted : f, p);
            }
            for (int s = 1; s <= CLASSES; ++s)
                for (int b = 1; b <= HEADINGS; ++b) {
                    const c32 rigid = old.SRCD(p, b, s), f = old.PHID(p, b, s);
                    c32 wanted = by_potential(p, rigid, f, before.scattered(HEAD1, b, s),
                                              before.scattered(HEAD2, b, s));
                    if (p == LID)
                        wanted -= row.K * old.PHI0(p, b, s);
                    expect_near(t.SRCD(p, b, s), row.IDIFF == 1 ? wanted : rigid, p);
                    EXPECT_EQ(t.PHID(p, b, s), old.PHID(p, b, s)) << "the potentials stay";
                }
        }
    }
}

TEST(Zerofs, ClearsInteriorPanelsOnly) {
    for (const auto &[IRAD, IDIFF] : {std::pair{1, 1}, {-1, 0}, {0, -1}}) {
        State a;
        const State before;
        a.run.opt.IRAD = IRAD;
        a.run.opt.IDIFF = IDIFF;
        ZEROFS(a.run, a.thread);
        for (int p = 1; p <= PANELS; ++p) {
            const bool interior = p >= STRIP1A && p <= UNREACHED;
            for (int c = 1; c <= COLUMNS; ++c)
                EXPECT_EQ(a.thread.PHIR(p, c), interior && IRAD != -1 ? c32(0) : before.thread.PHIR(p, c));
            for (int b = 1; b <= HEADINGS; ++b)
                for (int s = 1; s <= CLASSES; ++s)
                    EXPECT_EQ(a.thread.PHID(p, b, s),
                              interior && IDIFF != -1 ? c32(0) : before.thread.PHID(p, b, s));
        }
    }
}

TEST(Lid, FirstLidWithThePanelCounts) {
    State a;
    f32 EPS = 9;
    EXPECT_FALSE(LIDDMP(a.run.bodies, LID - 1, EPS));
    EXPECT_EQ(EPS, 0);
    EXPECT_TRUE(LIDDMP(a.run.bodies, LID, EPS));
    EXPECT_EQ(EPS, DAMPING);
    a.run.bodies.BDTYP(2) = 2;
    EXPECT_FALSE(LIDDMP(a.run.bodies, LID, EPS));
    EXPECT_EQ(EPS, 0);
}

} // namespace
