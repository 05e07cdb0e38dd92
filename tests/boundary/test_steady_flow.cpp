// Steady flows under a rigid lid. Truth: the sphere in a uniform stream, whose sources are 3/(8 pi) times
// minus the coordinate along the stream.
#include "boundary/steady_flow.hpp"
#include "wdd_bodies.hpp"

namespace {

// A hemisphere of radius 1 with the sources of the sphere, and the velocity of these.
void set_sphere(RunState &run, ThreadState &thread, int ISX, int ISY, int m) {
    const auto first_quadrant = [](const hulls::Quads &all) {
        hulls::Quads quarter;
        for (const hulls::Quad &q : all)
            if (q[0][0] + q[2][0] > 0 && q[0][1] + q[2][1] > 0)
                quarter.push_back(q);
        return quarter;
    };
    hulls::Quads surface;
    hulls::add_patch(surface, {1.1, 0.2, 0}, {1.5, 0, 0}, {0, 1.8, 0}, 3, 3);
    wdd::make(run, first_quadrant(hulls::hemisphere(1, m)), surface, ISX, ISY);
    run.opt.HBOT = -1;
    const int N = run.mesh.NEQN;
    ASSERT_TRUE(run.bodies.NWLB.alloc(1) && run.waterline.IWLP.alloc(N) && thread.SRCR.alloc(N, 3) &&
                thread.VELR.alloc(N, 3, 3));
    for (int i = 1; i <= N; ++i) {
        const double x[3] = {run.mesh.XCT(1, i), run.mesh.XCT(2, i), run.mesh.XCT(3, i)},
                     r = std::hypot(x[0], x[1], x[2]);
        if (x[2] > -0.5 * std::sin(1.6 / m))
            run.waterline.IWLP(++run.bodies.NWLB(1)) = i;
        thread.SRCR(i, 3) = static_cast<f32>(5 / (4 * 3.14159265358979) * x[0] * x[1] / (r * r));
        for (int d = 1; d <= 2; ++d) {
            thread.SRCR(i, d) = static_cast<f32>(-3 / (8 * 3.14159265358979) * x[d - 1] / r);
            for (int a = 1; a <= 3; ++a) // gradient of -x_d / (2 r^3) on the sphere
                thread.VELR(i, a, d) =
                    static_cast<f32>(1.5 * x[d - 1] * x[a - 1] / (r * r) - (a == d ? 0.5 : 0));
        }
    }
}

struct Errors {
    double STB1 = 0, STF1 = 0, STF2 = 0, STF3 = 0,
           normal = 0; // largest, over the largest value; the last absolute
};

Errors errors(const RunState &run) {
    const SteadyFlow &flow = run.flow;
    Errors e;
    double largest[4] = {};
    const auto keep = [&](double &error, int which, double value, double exact) {
        error = std::max(error, std::abs(value - exact));
        largest[which] = std::max(largest[which], std::abs(exact));
    };
    for (int u = 1; u <= run.bodies.NWLB(1); ++u)
        for (int d = 1; d <= 2; ++d) {
            const int i = run.waterline.IWLP(u);
            keep(e.STB1, 0, flow.STB1(u, d), -1.5 * run.mesh.XCT(d, i));
        }
    for (int J = 1; J <= run.surface.NFSP; ++J) {
        const double x[3] = {0, run.surface.XCTF(1, J), run.surface.XCTF(2, J)}, r = std::hypot(x[1], x[2]);
        const double r3 = std::pow(r, 3), r5 = r3 * r * r, r7 = r5 * r * r;
        for (int d = 1; d <= 2; ++d) {
            keep(e.STF1, 1, flow.STF1(J, d), -x[d] * (1 + 0.5 / r3));
            keep(e.STF3, 3, flow.STF3(J, d), 1.5 * x[d] / r5);
            for (int a = 1; a <= 2; ++a)
                keep(e.STF2, 2, flow.STF2(J, a, d), 1.5 * x[d] * x[a] / r5 - (a == d ? 0.5 : 0) / r3);
        }
        keep(e.STF3, 3, flow.STF3(J, 3), -5 * x[1] * x[2] / r7);
        for (int a = 1; a <= 2; ++a)
            keep(e.STF2, 2, flow.STF2(J, a, 3), x[3 - a] / r5 - 5 * x[1] * x[2] * x[a] / r7);
    }
    for (int i = 1; i <= run.mesh.NEQN; ++i)
        for (int d = 1; d <= 3; ++d) {
            double normal = 0;
            for (int a = 1; a <= 3; ++a)
                normal += flow.STB3(i, a, d) * run.mesh.XCT(a, i);
            e.normal = std::max(e.normal, std::abs(normal));
        }
    e.STB1 /= largest[0];
    e.STF1 /= largest[1];
    e.STF2 /= largest[2];
    e.STF3 /= largest[3];
    return e;
}

class SteadyFlows : public ::testing::TestWithParam<std::pair<int, int>> {}; // ISX, ISY

TEST_P(SteadyFlows, SphereInUniformStreams) {
    const auto [ISX, ISY] = GetParam();
    Errors e[2];
    for (const int fine : {0, 1}) {
        RunState run;
        ThreadState thread;
        set_sphere(run, thread, ISX, ISY, fine == 0 ? 7 : 14);
        ASSERT_EQ(WDDSTB(run, thread, run.flow), Status::ok);
        ASSERT_EQ(WDDSTF(run, run.flow), Status::ok);
        e[fine] = errors(run);
        EXPECT_LT(e[fine].normal, 3e-7);
    }
    const std::array<double, 2> pairs[4] = {
        {e[0].STB1, e[1].STB1}, {e[0].STF1, e[1].STF1}, {e[0].STF2, e[1].STF2}, {e[0].STF3, e[1].STF3}};
    const double limit[4] = {5e-3, 5e-3, 5e-2, 5e-2};
    for (int k = 0; k < 4; ++k) {
        EXPECT_LT(pairs[k][0], limit[k]) << k;
        // Centroids inside the sphere: an error of second order.
        EXPECT_NEAR(pairs[k][0] / pairs[k][1], 4, 0.5) << k;
    }
}
INSTANTIATE_TEST_SUITE_P(Meshes, SteadyFlows,
                         ::testing::Values(std::pair{0, 0}, std::pair{0, 1}, std::pair{1, 0},
                                           std::pair{1, 1}));

} // namespace
