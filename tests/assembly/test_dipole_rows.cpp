// Truth: differences. The velocity of a dipole layer is the gradient of its potential, and the row of a
// dipole panel the derivative along its normal of the row that an ordinary panel in its place has.
#include "assembly/wavegr.hpp"
#include "boundary/incident_wave.hpp"
#include "geometry/dipoles.hpp"
#include "hull_meshes.hpp"
#include "rankine/rankin.hpp"
#include "state/memory_plan.hpp"
#include "state/symmetry.hpp"

#include <gtest/gtest.h>

namespace {

struct Setting {
    const char *name;
    f32 W, HBOT;
    int IQUAD, ILOG;
    double size; // of the panels: 0.4 all pairs are near, 0.08 far
};

struct System {
    RunState run;
    ThreadState thread;
};

// Two hull panels and between them in number two plates, in one quarter; panel `moved` is `by` off its place.
// `plates`: 2 and 4 are dipole panels, else all are ordinary and 2 and 4 do not move.
void make_system(const Setting &s, bool plates, int moved, std::array<double, 3> by, System &c) {
    const hulls::Point places[4] = {{0.5, 0.4, -0.35}, {0.9, 1.0, -0.6}, {1.5, 0.3, -0.5}, {0.4, 1.3, -1.0}};
    const hulls::Point along[4][2] = {{{1, 0, 0}, {0, 1, 0}},
                                      {{0.8, 0, 0.6}, {0, 1, 0}},
                                      {{0, 0.6, 0.8}, {1, 0, 0}},
                                      {{0.6, 0.8, 0}, {-0.48, 0.36, 0.8}}};
    hulls::Quads panels;
    for (std::size_t i = 0; i < 4; ++i) {
        hulls::Point corner = places[i], u = along[i][0], v = along[i][1];
        for (std::size_t k = 0; k < 3; ++k) {
            u[k] *= s.size;
            v[k] *= s.size;
            corner[k] += (static_cast<int>(i) + 1 == moved ? by[k] : 0) - u[k] / 2 - v[k] / 2;
        }
        hulls::add_patch(panels, corner, u, v, 1, 1);
    }
    RunState &run = c.run;
    run.opt.ISX = run.opt.ISY = 1;
    run.opt.IQUAD = s.IQUAD;
    run.opt.ILOG = s.ILOG;
    run.opt.ISOR = run.opt.IRAD = 1;
    run.opt.IDIFF = -1;
    run.opt.HBOT = s.HBOT;
    run.memory.INCORE = true;
    hulls::set_body(panels, run);
    if (plates) {
        run.dipoles.IDIPOL = true;
        ASSERT_EQ(DIPGRW(4, run.dipoles), Status::ok);
        run.dipoles.IDIP(2) = run.dipoles.IDIP(4) = 1;
    }
    ASSERT_EQ(PREGEO(run.opt, run.files, run.dipoles, run.bodies, run.mesh), Status::ok);
    for (int mode = 1; mode <= 6 && !plates; ++mode)
        run.mesh.VEL(mode, 2) = run.mesh.VEL(mode, 4) = 0;
    if (plates) {
        ASSERT_EQ(INIT_DIPOLE(run.mesh, run.dipoles), Status::ok);
    }
    ASSERT_EQ(SYMSET(6, 1, 1, run.bodies.MODE, 1, run.sym), Status::ok);
    ASSERT_EQ(allocate_store(run.opt, run.sym, 4, run.store), Status::ok);
    ASSERT_EQ(RANKIN(run.opt, run.bodies, run.mesh, run.dipoles, run.sym, run.store), Status::ok);
    ASSERT_EQ(allocate_solution(run, c.thread), Status::ok);
    ASSERT_EQ(ALLOCATE_WA(run, c.thread), Status::ok);
    f32 F = 1;
    if (s.HBOT > 0 && s.W > 0) {
        ASSERT_EQ(HGRN98(s.W * s.HBOT, F, c.thread.gstate), 0);
    }
    ASSERT_EQ(WAVEGR(run, frequency_variables(s.W, s.HBOT, F), c.thread), Status::ok);
}

// Largest error of `got` against `expected`, both of one kind, as a fraction of the largest expected.
struct Largest {
    double error = 0, size = 0;
    void compare(c32 got, std::complex<double> expected) {
        error = std::max(error, std::abs(std::complex<double>(got) - expected));
        size = std::max(size, std::abs(expected));
    }
};

class DipoleRows : public testing::TestWithParam<Setting> {};

TEST_P(DipoleRows, AreDerivativesOfOrdinaryRows) {
    constexpr double STEP = 0.01;        // of the differences
    constexpr double TOLERANCE = 1.5e-3; // STEP^2 / 6 times the third derivative over the first
    const Setting &s = GetParam();
    System plate;
    make_system(s, true, 0, {}, plate);
    const Mesh &mesh = plate.run.mesh;
    Largest velocity, normal, row, right_hand_side;
    for (int i = 1; i <= 4; ++i) {
        System sides[3][2];
        for (std::size_t k = 0; k < 3; ++k) {
            std::array<double, 3> by{};
            by[k] = STEP;
            make_system(s, false, i, by, sides[k][0]);
            by[k] = -STEP;
            make_system(s, false, i, by, sides[k][1]);
        }
        const auto slope = [&](std::size_t k, auto value) {
            return (std::complex<double>(value(sides[k][0].thread)) -
                    std::complex<double>(value(sides[k][1].thread))) /
                   (2 * STEP);
        };
        const bool on_plate = i % 2 == 0;
        for (int cls = 1; cls <= 4; ++cls) {
            for (int j = 1; j <= 4; ++j) {
                if (i == j)
                    continue;
                std::complex<double> along = 0;
                for (std::size_t k = 0; k < 3; ++k) {
                    const auto gradient = slope(k, [&](const ThreadState &t) { return t.ACORE(i, j, cls); });
                    along += static_cast<double>(mesh.TRM(3, static_cast<int>(k) + 1, i)) * gradient;
                    if (j % 2 == 0)
                        velocity.compare(plate.thread.VCORE(i, j, 3 * (cls - 1) + static_cast<int>(k) + 1),
                                         gradient);
                }
                if (j % 2 == 0)
                    normal.compare(plate.thread.ECORE(i, j, cls), along);
                if (on_plate)
                    row.compare(plate.thread.ACORE(i, j, cls), along);
            }
        }
        for (int mode = 1; on_plate && mode <= 6; ++mode) {
            const int col = plate.run.sym.MODPOS(mode);
            std::complex<double> along = -4 * 3.14159265358979 * static_cast<double>(mesh.VEL(mode, i));
            for (std::size_t k = 0; k < 3; ++k)
                along += static_cast<double>(mesh.TRM(3, static_cast<int>(k) + 1, i)) *
                         slope(k, [&](const ThreadState &t) { return t.PHIR(i, col); });
            right_hand_side.compare(plate.thread.PHIR(i, col), along);
        }
    }
    for (const Largest &l : {velocity, normal, row, right_hand_side}) {
        EXPECT_GT(l.size, 0);
        EXPECT_LT(l.error, TOLERANCE * l.size) << l.size;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Settings, DipoleRows,
    testing::Values(Setting{"deep", 1.3f, -1, 0, 0, 0.4}, Setting{"logarithm", 1.3f, -1, 0, 1, 0.4},
                    Setting{"gauss", 1.3f, -1, 1, 0, 0.4}, Setting{"gauss_logarithm", 1.3f, -1, 1, 1, 0.4},
                    Setting{"far", 1.3f, -1, 0, 0, 0.08}, Setting{"far_gauss", 1.3f, -1, 1, 0, 0.08},
                    Setting{"depth", 1.3f, 1.7f, 0, 1, 0.4}, Setting{"depth_gauss", 1.3f, 1.7f, 1, 0, 0.4},
                    Setting{"far_depth", 1.3f, 1.7f, 0, 0, 0.08},
                    Setting{"infinite_frequency", 0, -1, 0, 1, 0.4},
                    Setting{"infinite_frequency_depth", 0, 1.7f, 1, 0, 0.4},
                    Setting{"zero_frequency_depth", -1, 1.7f, 0, 0, 0.08}),
    [](const auto &c) { return std::string(c.param.name); });

} // namespace
