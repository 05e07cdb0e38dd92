// Fluid velocities from source strengths. Truth: the plain sum over the panels in double precision.
#include "boundary/bvel.hpp"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <omp.h>
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
    sym.NMCLS[1] = 2;
    sym.NMCLS[2] = 1;
    sym.MODCLS(1, 1) = 5;
    sym.MODCLS(2, 1) = 2;
    sym.MODCLS(1, 2) = 3;
    sym.MODPOS(5) = 3;
    sym.MODPOS(2) = 1;
    sym.MODPOS(3) = 2;
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
// Sums of N products of random signs: rounding grows with sqrt(N), blocked summation keeps it far below that
// bound.
constexpr double TOLERANCE = 6e-8 * N;

TEST(Bvel, IsTheProductOfEachClass) {
    RunState run;
    ThreadState thread;
    make(run, thread, 0, 0);
    ASSERT_EQ(BVEL(run, thread), Status::ok);
    EXPECT_LT(error(thread, 1, &thread.SRCR(1, 3), &thread.VELR(1, 1, 3)), TOLERANCE);
    EXPECT_LT(error(thread, 1, &thread.SRCR(1, 1), &thread.VELR(1, 1, 1)), TOLERANCE);
    EXPECT_LT(error(thread, 2, &thread.SRCR(1, 2), &thread.VELR(1, 1, 2)), TOLERANCE);
    for (int s = 1; s <= CLASSES; ++s)
        for (int b = 1; b <= HEADINGS; ++b)
            EXPECT_LT(error(thread, s, &thread.SRCD(1, b, s), &thread.VELD(1, 1, b, s)), TOLERANCE);
}

TEST(Bvel, ProblemThatIsNotSolvedIsLeftOut) {
    RunState radiation, diffraction, none;
    ThreadState r, d, n;
    make(radiation, r, 1, -1);
    ASSERT_EQ(BVEL(radiation, r), Status::ok);
    EXPECT_LT(error(r, 2, &r.SRCR(1, 2), &r.VELR(1, 1, 2)), TOLERANCE);
    EXPECT_TRUE(r.VELD.empty());
    make(diffraction, d, -1, 1);
    diffraction.sym.NMCLS[2] = 0;
    ASSERT_EQ(BVEL(diffraction, d), Status::ok);
    EXPECT_LT(error(d, 2, &d.SRCD(1, 3, 2), &d.VELD(1, 1, 3, 2)), TOLERANCE);
    EXPECT_TRUE(d.VELR.empty());
    make(none, n, -1, -1);
    EXPECT_EQ(BVEL(none, n), Status::ok);
}

TEST(Bvel, DoesNotDependOnTheThreads) {
    const int before = omp_get_max_threads();
    RunState run;
    ThreadState one, two;
    omp_set_num_threads(1);
    make(run, one, 0, 0);
    ASSERT_EQ(BVEL(run, one), Status::ok);
    omp_set_num_threads(2);
    make(run, two, 0, 0);
    ASSERT_EQ(BVEL(run, two), Status::ok);
    omp_set_num_threads(before);
    EXPECT_EQ(std::memcmp(one.VELR.data(), two.VELR.data(),
                          static_cast<std::size_t>(one.VELR.size()) * sizeof(c32)),
              0);
    EXPECT_EQ(std::memcmp(one.VELD.data(), two.VELD.data(),
                          static_cast<std::size_t>(one.VELD.size()) * sizeof(c32)),
              0);
}

TEST(Bvel, ArraysLiveForAPeriod) {
    RunState run;
    ThreadState thread;
    make(run, thread, 0, 0);
    DEALLOCATE_WA(thread);
    EXPECT_TRUE(thread.VELR.empty() && thread.VELD.empty() && thread.VCORE.empty());
    run.memory.INCORE = false; // velocities are needed all the same
    ASSERT_EQ(ALLOCATE_WA(run, thread), Status::ok);
    EXPECT_EQ(thread.VELR.size(), 3 * N * 3);
    EXPECT_TRUE(thread.VCORE.empty());
    DEALLOCATE_WA(thread);
    run.opt.ISOR = 0;
    ASSERT_EQ(ALLOCATE_WA(run, thread), Status::ok);
    EXPECT_TRUE(thread.VELR.empty() && thread.VELD.empty());
}

} // namespace
