// Truth: systems whose sweeps are written down in closed form.
#include "solve/itrcc.hpp"

#include <gtest/gtest.h>

namespace {

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
        EXPECT_EQ(sides[c][7], c32(static_cast<f32>(c + 1) / 2, 1));
        EXPECT_EQ(columns[c].ITER, 1);
        EXPECT_EQ(columns[c].outcome, Outcome::converged);
    }
}

// The raw residual of the first sweep is given, at right angles to the right-hand side: the first combination
// is the Gauss-Seidel step but for the square of their ratio.
struct Residual {
    f32 b[2];
    f32 r[2];
    bool first_is_enough;
};
TEST(Itrcc, SmallRightHandSidesAreMeasuredAbsolutely) {
    constexpr f32 EPS = 1e-3f;
    for (const Residual &given :
         {Residual{{100, 0}, {0, 0.0009f}, true}, Residual{{100, 0}, {0, 0.002f}, false},
          Residual{{100, 1}, {-0.00002f, 0.002f}, false}, Residual{{100, 4}, {-0.00008f, 0.002f}, true},
          Residual{{100, 4}, {-0.0002f, 0.005f}, false}}) {
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
        c32 b[2] = {given.b[0], given.b[1]};
        const IterativeColumn column = iterate(2, EPS, sweep, b);
        EXPECT_EQ(column.ITER, given.first_is_enough ? 1 : 2) << given.b[1] << " " << given.r[1];
        EXPECT_EQ(sweeps, column.ITER);
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
    EXPECT_EQ(b, c32(35)) << "35 steps of 1";
}

// What counts as nothing on the right leaves after its first sweep, with that sweep's solution.
TEST(Itrcc, NextToNothingOnTheRight) {
    for (const f32 size : {0.9e-6f, 1.1e-6f}) {
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
        EXPECT_EQ(sweeps == 1, size < 1e-6f);
        if (sweeps == 1) {
            EXPECT_EQ(b[0], c32(5));
        }
    }
}

} // namespace
