// Fluid velocities from source strengths. Truth: the plain sum over the panels in double precision.
#include "boundary/bvel.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

using c64 = std::complex<double>;
constexpr int N = 300; // more than a strip of rows, and no multiple of one
constexpr int HEADINGS = 3, CLASSES = 2;

// Two classes of two modes and one: the solution columns of the first class are 3 and 1.
void make(RunState &run, ThreadState &thread, int IRAD, int IDIFF) {
    Symmetry &sym = run.sym;
    run.mesh.NEQN = N;
    run.opt.ISOR = 1;
    run.opt.IRAD = IRAD;
    run.opt.IDIFF = IDIFF;
    run.memory.INCORE = true;
    run.periods.NBETAM = HEADINGS;
    sym.NSYMR = CLASSES;
    sym.NSYMD = 3;
    ASSERT_TRUE(sym.MODCLS.alloc(6, 4) && sym.MODPOS.alloc(6));
    const int rows[3][3] = {{5, 1, 3}, {2, 1, 1}, {3, 2, 2}}; // mode, class, column
    for (const auto &[mode, s, column] : rows) {
        sym.MODCLS(++sym.NMCLS[s], s) = mode;
        sym.MODPOS(mode) = column;
    }
    ASSERT_EQ(allocate_solution(run, thread), Status::ok);
    ASSERT_EQ(ALLOCATE_WA(run, thread), Status::ok);
    std::mt19937 random(7);
    std::uniform_real_distribution<f32> unit(-1, 1);
    for (const auto &[data, size] : {std::pair{thread.VCORE.data(), thread.VCORE.size()},
                                     {thread.SRCR.data(), thread.SRCR.size()},
                                     {thread.SRCD.data(), thread.SRCD.size()}})
        for (std::int64_t i = 0; i < size; ++i)
            data[i] = {unit(random), unit(random)};
}

// Largest difference between the velocities of one column and the sums of class s.
double error(const ThreadState &thread, int s, const c32 *source, const c32 *velocity) {
    double worst = 0;
    for (int axis = 1; axis <= 3; ++axis)
        for (int i = 1; i <= N; ++i) {
            c64 sum = 0;
            for (int j = 1; j <= N; ++j)
                sum += c64(thread.VCORE(i, j, 3 * (s - 1) + axis)) * c64(source[j - 1]);
            worst = std::max(worst, std::abs(c64(velocity[(axis - 1) * N + i - 1]) - sum));
        }
    return worst;
}
// Sums of N products of random signs: rounding grows with sqrt(N), blocked summation keeps it far
// below that bound.
constexpr double TOLERANCE = 6e-8 * N;

TEST(Bvel, IsTheProductOfEachClass) {
    RunState run;
    ThreadState thread;
    make(run, thread, 0, 0);
    ASSERT_EQ(BVEL(run, thread), Status::ok);
    for (const auto &[s, column] : {std::pair{1, 3}, {1, 1}, {2, 2}})
        EXPECT_LT(error(thread, s, &thread.SRCR(1, column), &thread.VELR(1, 1, column)), TOLERANCE);
    for (int s = 1; s <= CLASSES; ++s)
        for (int b = 1; b <= HEADINGS; ++b)
            EXPECT_LT(error(thread, s, &thread.SRCD(1, b, s), &thread.VELD(1, 1, b, s)), TOLERANCE);
}

TEST(Bvel, ProblemThatIsNotSolvedIsLeftOut) {
    for (const auto &[IRAD, IDIFF] : {std::pair{1, -1}, {-1, 1}, {-1, -1}}) {
        RunState run;
        ThreadState t;
        make(run, t, IRAD, IDIFF);
        run.sym.NMCLS[2] = 0; // a class with diffraction at most
        ASSERT_EQ(BVEL(run, t), Status::ok);
        EXPECT_EQ(t.VELR.empty(), IRAD < 0);
        ASSERT_EQ(t.VELD.empty(), IDIFF < 0);
        EXPECT_TRUE(IDIFF < 0 || error(t, 2, &t.SRCD(1, 3, 2), &t.VELD(1, 1, 3, 2)) < TOLERANCE);
    }
}

} // namespace
