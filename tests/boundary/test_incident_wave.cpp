// Truth: the plane wave exp(-i K (x cos b + y sin b)) with its depth factor in double precision, and its
// central differences.
#include "boundary/incident_wave.hpp"
#include "state/symmetry.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace {

struct Sea {
    double depth; // negative: deep water
    double K;
    double beta;
};

c64 plane_wave(const Sea &sea, double x, double y, double z) {
    const double F = sea.depth < 0 ? std::exp(sea.K * z)
                                   : std::cosh(sea.K * (z + sea.depth)) / std::cosh(sea.K * sea.depth);
    const double phase = sea.K * (x * std::cos(sea.beta) + y * std::sin(sea.beta));
    return F * c64(std::cos(phase), -std::sin(phase));
}

// The part of these parities, from the four images of the point.
c64 parity_part(const Sea &sea, int j, double x, double y, double z) {
    const double px[5] = {0, 1, -1, -1, 1}, py[5] = {0, 1, 1, -1, -1};
    return (plane_wave(sea, x, y, z) + px[j] * plane_wave(sea, -x, y, z) + py[j] * plane_wave(sea, x, -y, z) +
            px[j] * py[j] * plane_wave(sea, -x, -y, z)) /
           4.0;
}

class Seas : public testing::TestWithParam<Sea> {};

TEST_P(Seas, ComponentsHaveTheirParitiesAndSumToTheWave) {
    constexpr double TOLERANCE = 3e-6; // single precision of phases up to 10
    const Sea sea = GetParam();
    const double x = 0.7, y = -1.9, z = -0.4, step = 1e-5;
    WaveComponents wave;
    const f32 point[3] = {static_cast<f32>(x), static_cast<f32>(y), static_cast<f32>(z)};
    PLNWAV(static_cast<f32>(sea.depth), static_cast<f32>(sea.K), static_cast<f32>(std::sin(sea.beta)),
           static_cast<f32>(std::cos(sea.beta)), point, true, wave);
    for (int j = 1; j <= 4; ++j) {
        const auto part = [&](double u, double v, double w) { return parity_part(sea, j, u, v, w); };
        EXPECT_LT(std::abs(c64(wave.C[j]) - part(x, y, z)), TOLERANCE);
        const c64 slope[4] = {0, (part(x + step, y, z) - part(x - step, y, z)) / (2 * step),
                              (part(x, y + step, z) - part(x, y - step, z)) / (2 * step),
                              (part(x, y, z + step) - part(x, y, z - step)) / (2 * step)};
        for (int c = 1; c <= 3; ++c)
            EXPECT_LT(std::abs(c64(wave.DC[j][c]) - slope[c]), TOLERANCE * std::max(1.0, sea.K))
                << j << " " << c;
    }
}

INSTANTIATE_TEST_SUITE_P(IncidentWave, Seas,
                         testing::Values(Sea{-1, 0.3, 0}, Sea{-1, 4, 0.7}, Sea{-1, 2, 2.5}, Sea{3, 0.2, 1.1},
                                         Sea{0.5, 3, -0.4}, Sea{50, 2, 0.3}, Sea{80, 1.7, 0.3}));

TEST(IncidentWave, DepthFactorIsClippedNotLost) {
    WaveComponents wave;
    const f32 point[3] = {0, 0, -200};
    PLNWAV(-1, 1, 0, 1, point, false, wave);
    EXPECT_FLOAT_EQ(wave.C[1].real(), std::exp(-30.0f));
}

// Panels of the plane z = 0 in the scattering sum: interior panels and the images of overhangs that cancel
// some of them take no part, hull without draught does.
TEST(IncidentWave, ScatteringSumLeavesOutInteriorPanels) {
    enum { HULL = 1, INTERIOR, OVERHANG, RAFT, PANELS = RAFT };
    for (const int ISCATT : {1, 0}) {
        RunState run;
        run.mesh.NEQN = PANELS;
        run.opt.HBOT = -1;
        run.opt.ISOR = 1;
        run.opt.IRR = 2;
        run.opt.ISCATT = ISCATT;
        run.periods.NBETA = 1;
        ASSERT_EQ(SYMSET(0, 0, 0, {}, 1, run.sym), Status::ok);
        ThreadState thread;
        ASSERT_TRUE(run.mesh.XCT.alloc(3, PANELS) && run.mesh.TRM.alloc(3, 3, PANELS) &&
                    run.mesh.IFSP.alloc(PANELS) && run.mesh.projected.alloc(PANELS) &&
                    run.periods.SINBET.alloc(1) && run.periods.COSBET.alloc(1) &&
                    allocate_solution(run, thread) == Status::ok);
        run.periods.COSBET(1) = 1;
        const f32 up[PANELS + 1] = {0, 1, -1, 1, 1};
        const int mark[PANELS + 1] = {0, 0, 1, -1, -1};
        for (int p = 1; p <= PANELS; ++p) {
            run.mesh.TRM(3, 3, p) = up[p];
            run.mesh.IFSP(p) = mark[p];
        }
        run.mesh.projected(INTERIOR) = run.mesh.projected(OVERHANG) = 1;
        const f32 K = 2; // the vertical velocity at the origin
        INCWAV(run, K, thread);
        EXPECT_EQ(thread.SRCD(HULL, 1, 1), c32(-K));
        EXPECT_EQ(thread.SRCD(RAFT, 1, 1), c32(-K));
        EXPECT_EQ(thread.SRCD(INTERIOR, 1, 1), c32(ISCATT == 1 ? 0 : K));
        EXPECT_EQ(thread.SRCD(OVERHANG, 1, 1), c32(ISCATT == 1 ? 0 : -K));
        for (int p = 1; p <= PANELS; ++p)
            EXPECT_EQ(thread.PHI0(p, 1, 1), c32(1)) << "kept for the source conditions of interior panels";
    }
}

} // namespace
