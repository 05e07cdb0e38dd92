// Truth: systems whose sweeps are written down in closed form.
#include "solve/itrcc.hpp"

#include <gtest/gtest.h>

namespace {

constexpr f32 ROUNDING = 2e-7f; // of a number that is scaled and scaled back

// One right-hand side b of n values.
IterativeColumn iterate(int n, f32 EPS, const Sweep &sweep, c32 *b) {
    std::vector<IterativeColumn> columns(1);
    columns[0].B = b;
    EXPECT_EQ(ITRCC(n, EPS, sweep, columns), Status::ok);
    return columns[0];
}

// A = 2: the sweep solves it at once and leaves nothing.
TEST(Itrcc, ColumnsBeyondTheMemoryLimitAreWorkedInGroups) {
    constexpr int N = 20000;
    constexpr std::size_t COUNT = 60; // of 11.5 MB each, more than 512 MB
    std::vector<std::vector<c32>> sides(COUNT, std::vector<c32>(N));
    std::vector<IterativeColumn> columns(COUNT);
    for (std::size_t c = 0; c < COUNT; ++c) {
        sides[c][7] = c32(static_cast<f32>(c + 1), 2);
        columns[c].B = sides[c].data();
    }
    std::size_t most = 0, all = 0;
    const Sweep halve = [&](const std::vector<SweepColumn> &work) {
        most = std::max(most, work.size());
        all += work.size();
        for (const SweepColumn &w : work)
            for (int i = 0; i < N; ++i) {
                w.y.re[i] = w.r.re[i] / 2;
                w.y.im[i] = w.r.im[i] / 2;
                w.r.re[i] = w.r.im[i] = 0;
            }
        return Status::ok;
    };
    ASSERT_EQ(ITRCC(N, EPSIT, halve, columns), Status::ok);
    EXPECT_LT(most, COUNT);
    EXPECT_EQ(all, COUNT);
    for (std::size_t c = 0; c < COUNT; ++c) {
        EXPECT_LT(std::abs(sides[c][7] - c32(static_cast<f32>(c + 1) / 2, 1)),
                  ROUNDING * static_cast<f32>(c + 1));
        EXPECT_EQ(columns[c].ITER, 1);
        EXPECT_EQ(columns[c].outcome, Outcome::converged);
    }
}

// A diagonal system whose sweep makes two parts of the residual many times larger, as panels on the free
// surface in short waves do: the combination of the iterates takes them out.
TEST(Itrcc, SweepsThatGrowAreCombinedToTheSolution) {
    constexpr int N = 50;
    std::vector<c32> a(N), b(N);
    for (int i = 0; i < N; ++i) {
        a[static_cast<std::size_t>(i)] = {1 + 0.4f * std::sin(static_cast<f32>(i)), 0.1f};
        b[static_cast<std::size_t>(i)] = {std::cos(3 * static_cast<f32>(i)), 0.5f};
    }
    a[10] = -300;
    a[20] = {0, 200};
    const Sweep sweep = [&](const std::vector<SweepColumn> &work) {
        for (int i = 0; i < N; ++i) {
            const c32 y(work[0].r.re[i], work[0].r.im[i]), left = y - a[static_cast<std::size_t>(i)] * y;
            work[0].y.re[i] = y.real();
            work[0].y.im[i] = y.imag();
            work[0].r.re[i] = left.real();
            work[0].r.im[i] = left.imag();
        }
        return Status::ok;
    };
    std::vector<c32> x = b;
    const IterativeColumn column = iterate(N, 1e-5f, sweep, x.data());
    EXPECT_EQ(column.outcome, Outcome::converged);
    EXPECT_LT(column.ITER, 15);
    for (std::size_t i = 0; i < N; ++i)
        EXPECT_LT(std::abs(x[i] - b[i] / a[i]), 3e-5f) << i;
}

// The raw residual of the first sweep is given in units of the largest right-hand side and at right angles to
// it: the first combination is the Gauss-Seidel step but for the square of their ratio.
struct Residual {
    f32 b[2];
    f32 r[2];
    bool first_is_enough;
};
TEST(Itrcc, ResidualsAreMeasuredAgainstTheLargestRightHandSide) {
    constexpr f32 EPS = 1e-3f;
    for (const f32 unit : {1.0f, 100.0f, 1e-5f, 1e-30f, 1e-40f, 1e38f})
        for (const Residual &given :
             {Residual{{1, 0}, {0, 0.0009f}, true}, Residual{{1, 0}, {0, 0.002f}, false},
              Residual{{1, 0.04f}, {-0.00008f, 0.002f}, false},
              Residual{{1, 0.04f}, {-0.000036f, 0.0009f}, true}}) {
            int sweeps = 0;
            const Sweep sweep = [&](const std::vector<SweepColumn> &work) {
                ++sweeps;
                for (int i = 0; i < 2; ++i) {
                    work[0].y.re[i] = work[0].r.re[i];
                    work[0].y.im[i] = work[0].r.im[i] = 0;
                    work[0].r.re[i] = sweeps == 1 ? given.r[i] : 0;
                }
                return Status::ok;
            };
            c32 b[2] = {unit * given.b[0], unit * given.b[1]};
            const IterativeColumn column = iterate(2, EPS, sweep, b);
            EXPECT_EQ(column.ITER, given.first_is_enough ? 1 : 2)
                << unit << " " << given.b[1] << " " << given.r[1];
            EXPECT_EQ(sweeps, column.ITER);
            EXPECT_NEAR(b[0].real() / unit, given.b[0], 5e-3) << "the step is b but for the residual";
        }
}

// A sweep that changes nothing leaves nothing to combine.
TEST(Itrcc, StandingStillIsNoFault) {
    const Sweep still = [](const std::vector<SweepColumn> &work) {
        work[0].y.re[0] = 1;
        return Status::ok;
    };
    c32 b = 3;
    const IterativeColumn column = iterate(1, EPSIT, still, &b);
    EXPECT_EQ(column.outcome, Outcome::not_converged);
    EXPECT_EQ(column.ITER, MAXIT - 1);
    EXPECT_LT(std::abs(b - c32(105)), 105 * ROUNDING) << "35 steps of 1, in units of the right-hand side 3";
}

// Only zeros are nothing on the right: they leave after the first sweep, with its solution.
TEST(Itrcc, NothingOnTheRight) {
    for (const f32 size : {0.0f, 1e-42f, 0.9e-6f}) {
        int sweeps = 0;
        const Sweep sweep = [&](const std::vector<SweepColumn> &work) {
            ++sweeps;
            work[0].y.re[0] = 5;
            work[0].r.re[0] = 0;
            work[0].r.re[1] = 1; // far from converged
            return Status::ok;
        };
        c32 b[2] = {size, 0};
        iterate(2, EPSIT * 1e-3f, sweep, b);
        EXPECT_EQ(sweeps == 1, size == 0) << size;
        if (sweeps == 1) {
            EXPECT_EQ(b[0], c32(5));
        }
    }
}

} // namespace
