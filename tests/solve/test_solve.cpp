// Truth: the solution of the direct solver, which is held to its residual in double precision elsewhere;
// closed forms of small systems.
#include "solve/solve.hpp"

#include "assembly/scratch_store.hpp"
#include "period_system.hpp"
#include "run_folder.hpp"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

// Both solvers stop at residuals of 1e-6 and carry the rounding of single precision through a
// well-conditioned system.
constexpr double SAME_SOLUTION = 1e-4;

// A quarter of a box with one heading.
struct BoxSystem : PeriodSystem {
    BoxSystem() {
        EXPECT_TRUE(make_system(hulls::quarter_box(2.0, 1.4, -1.0, 0.0, 3, false), 1, 1, 1, *this));
    }
};

struct Method {
    const char *name;
    bool INCORE;
    int ISOLVE, ISOLVN;
    double core_share; // NCORE of the iterative solver as a share of NEQN; the block solver takes a block
};
constexpr Method METHODS[] = {{"direct, in core", true, 1, 0, 1},
                              {"full, in core", true, 0, 0, 1},
                              {"3 blocks, in core", true, 3, 0, 1},
                              {"5 blocks, in core", true, 5, 0, 1},
                              {"direct, scratch", false, 1, 0, 1},
                              {"full, scratch", false, 0, 0, 1},
                              {"packed, all rows", false, 0, 1, 1},
                              {"packed, part of the rows", false, 0, 0, 0.4},
                              {"packed, two rows", false, 0, 0, 0},
                              {"4 blocks, even, scratch", false, 4, 0, 1},
                              {"5 blocks, uneven, scratch", false, 5, 0, 1},
                              {"7 blocks, uneven, scratch", false, 7, 0, 1}};

void set_method(const Method &method, RunState &run) {
    const int n = run.mesh.NEQN;
    run.memory.INCORE = method.INCORE;
    run.opt.ISOLVE = method.ISOLVE;
    run.opt.ISOLVN = method.ISOLVN;
    run.opt.NCORE = std::max(2, static_cast<int>(method.core_share * n));
    if (method.ISOLVE > 1) {
        run.opt.NBLKSZ = run.opt.NCORE = (n + method.ISOLVE - 1) / method.ISOLVE;
        run.opt.NBLKLS = n - run.opt.NBLKSZ * (method.ISOLVE - 1);
        ASSERT_GT(run.opt.NBLKLS, 0);
    }
}

// The right-hand sides of the case in a thread of their own, the matrix where the method has it.
struct Attempt {
    ThreadState thread;
    ScratchStore scratch;
    bool prepare(PeriodSystem &c) {
        thread.scratch = &scratch;
        if (failed(allocate_solution(c.run, thread)))
            return false;
        copy_right_hand_sides(c);
        if (!c.run.memory.INCORE)
            return !failed(rows_to_scratch(c.run, c.thread, scratch.IUL, thread.AMAT.data()));
        if (failed(ALLOCATE_WA(c.run, thread)))
            return false;
        std::copy_n(c.thread.ACORE.data(), thread.ACORE.size(), thread.ACORE.data());
        return true;
    }
    void copy_right_hand_sides(const PeriodSystem &c) {
        std::copy_n(c.thread.PHIR.data(), thread.PHIR.size(), thread.PHIR.data());
        std::copy_n(c.thread.PHID.data(), thread.PHID.size(), thread.PHID.data());
    }
    Status solve(const PeriodSystem &c, SolveRequest request) {
        return SOLVE(c.run, request, thread.PHIR, thread.PHID, thread, ITER);
    }
    // All of it by a method.
    Status run(PeriodSystem &c, const Method &method, SolveRequest request) {
        set_method(method, c.run);
        EXPECT_TRUE(prepare(c));
        return solve(c, request);
    }
    int ITER[2] = {7, 7};
};

// Largest difference of two solutions over the largest value of the second.
template <class A> double difference(const A &a, const A &b) {
    double worst = 0, largest = 0;
    for (std::int64_t i = 0; i < a.size(); ++i) {
        worst = std::max(worst, static_cast<double>(std::abs(a.data()[i] - b.data()[i])));
        largest = std::max(largest, static_cast<double>(std::abs(b.data()[i])));
    }
    return worst / largest;
}

template <class A> bool same_bits(const A &a, const A &b) {
    return std::memcmp(a.data(), b.data(), static_cast<std::size_t>(a.size()) * sizeof(c32)) == 0;
}

int files_left() {
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("."))
        count += entry.path().filename().string().rfind("SCRATCH", 0) == 0 ? 1 : 0;
    return count;
}

// Larger hulls and full meshes are in tests/cases.
TEST(Solve, EveryMethodGivesTheDirectSolutionAndKeepsItsMatrixForLaterCalls) {
    const RunFolder folder;
    BoxSystem c;
    Attempt direct;
    ASSERT_EQ(direct.run(c, METHODS[0], {1, 1, 1}), Status::ok);
    for (const Method &method : METHODS) {
        SCOPED_TRACE(method.name);
        Attempt attempt, once;
        ASSERT_EQ(once.run(c, method, {1, 1, 1, 0}), Status::ok);
        EXPECT_LT(difference(once.thread.PHIR, direct.thread.PHIR), SAME_SOLUTION);
        EXPECT_LT(difference(once.thread.PHID, direct.thread.PHID), SAME_SOLUTION);
        EXPECT_EQ(once.ITER[0] == -1, method.ISOLVE == 1);
        ASSERT_EQ(attempt.run(c, method, {1, 1, 1, 1}), Status::ok);
        EXPECT_TRUE(same_bits(attempt.thread.PHIR, once.thread.PHIR));
        // The matrix in AMAT is gone when another one has been solved in between.
        attempt.thread.AMAT.fill(c32(1, 2));
        attempt.copy_right_hand_sides(c);
        attempt.ITER[0] = 30;
        ASSERT_EQ(attempt.solve(c, {-1, 1, 0, 1}), Status::ok);
        EXPECT_EQ(attempt.ITER[0], 30) << "the counts of the chain are kept";
        EXPECT_TRUE(same_bits(attempt.thread.PHID, once.thread.PHID));
        attempt.thread.AMAT.fill(c32(1, 2));
        attempt.copy_right_hand_sides(c);
        ASSERT_EQ(attempt.solve(c, {1, 1, 0, 0}), Status::ok);
        EXPECT_TRUE(same_bits(attempt.thread.PHIR, once.thread.PHIR));
        EXPECT_TRUE(same_bits(attempt.thread.PHID, once.thread.PHID));
        EXPECT_EQ(files_left(), 0);
    }
}

// A system of order n with one class, one radiation column and no headings.
struct SmallSystem : PeriodSystem {
    explicit SmallSystem(int n) {
        run.mesh.NEQN = n;
        run.sym.NSYMR = run.sym.NSYMD = run.sym.NMCLS[1] = 1;
        EXPECT_TRUE(run.sym.MODCLS.alloc(1, 4) && run.sym.MODPOS.alloc(1) && thread.ACORE.alloc(n, n, 1) &&
                    thread.PHIR.alloc(n, 1) && thread.PHID.alloc(n, 1, 1));
        run.sym.MODCLS(1, 1) = run.sym.MODPOS(1) = 1;
        for (int i = 1; i <= n; ++i)
            thread.ACORE(i, i, 1) = 1;
    }
};

// One above the diagonal: each sweep moves the residual by one row, so that all residuals are orthonormal and
// the best combination of the first 36 is their mean, of norm 1/6.
TEST(Solve, WhatDoesNotConvergeSaysSoAndGoesOn) {
    for (const Method &method : METHODS) {
        if (method.ISOLVE != 0)
            continue;
        SCOPED_TRACE(method.name);
        const RunFolder folder;
        const int n = 60;
        SmallSystem c(n);
        for (int i = 1; i < n; ++i)
            c.thread.ACORE(i, i + 1, 1) = 1;
        c.thread.PHIR(n, 1) = 1;
        Attempt attempt;
        ASSERT_EQ(attempt.run(c, method, {1, -1, 1}), Status::ok);
        EXPECT_EQ(attempt.ITER[0], 35);
        EXPECT_TRUE(folder.told(" No convergence after MAXITT iterations "));
        double norm = 0;
        for (int i = 1; i <= n; ++i) {
            const c32 above = i < n ? attempt.thread.PHIR(i + 1, 1) : c32(0);
            norm += std::norm(c.thread.PHIR(i, 1) - attempt.thread.PHIR(i, 1) - above);
        }
        EXPECT_NEAR(std::sqrt(norm), 1.0 / 6, 1e-5);
    }
}

TEST(Solve, ASweepOutOfTheRangeOfNumbersIsAFault) {
    const RunFolder folder;
    SmallSystem c(60);
    for (int i = 1; i <= 60; ++i) {
        for (int j = 1; j <= 60; ++j)
            c.thread.ACORE(i, j, 1) = i == j ? c32(1) : c32(9, static_cast<f32>((i * 53 + j * 29) % 13 - 6));
        c.thread.PHIR(i, 1) = 1;
    }
    EXPECT_EQ(Attempt().run(c, METHODS[1], {1, -1, 1}), Status::failed);
    EXPECT_TRUE(folder.told(" Error in iterative solver: residual matrix is singular "));
    EXPECT_TRUE(folder.told("       Error in radiation solution for mode M=1"));
}

TEST(Solve, ATankNeedsTheDirectSolver) {
    const RunFolder folder;
    SmallSystem c(2);
    int ITER[2] = {};
    EXPECT_EQ(SOLVE_R(c.run, {1, -1, 1}, c.thread.PHIR, c.thread.PHID, c.thread, ITER), Status::failed);
    EXPECT_TRUE(folder.told(" Fully filled tank exists, ISOLVE=1 is expected! "));
}

// The equations of a tank hold but for one residual that all ordinary panels share, and the reference panel
// has no potential. The equation of a baffle holds as it is.
TEST(Solve, ATankSharesWhatItsPanelsLeave) {
    const RunFolder folder;
    constexpr int N = 6, REFERENCE = 2, BAFFLE = 4;
    SmallSystem c(N);
    c.run.sym.ICLS[1] = 1;
    c.run.dipoles.IDIPOL = true;
    ASSERT_TRUE(c.run.dipoles.IDIP.alloc(N));
    c.run.dipoles.IDIP(BAFFLE) = 1;
    for (int i = 1; i <= N; ++i) {
        for (int j = 1; j <= N; ++j)
            c.thread.ACORE(i, j, 1) = c32(i == j ? 4.0f : static_cast<f32>((3 * i + 5 * j * j) % 7) / 7);
        c.thread.PHIR(i, 1) = static_cast<f32>(i * i % 5);
    }
    SolveRequest request{1, -1, 1};
    request.IRRX = REFERENCE;
    Attempt attempt;
    ASSERT_EQ(attempt.run(c, METHODS[0], request), Status::ok);
    EXPECT_LT(std::abs(attempt.thread.PHIR(REFERENCE, 1)), 1e-6f);
    c32 left[N + 1];
    for (int i = 1; i <= N; ++i) {
        left[i] = -c.thread.PHIR(i, 1);
        for (int j = 1; j <= N; ++j)
            left[i] += c.thread.ACORE(i, j, 1) * attempt.thread.PHIR(j, 1);
    }
    EXPECT_GT(std::abs(left[REFERENCE]), 0.1f);
    for (int i = 1; i <= N; ++i)
        EXPECT_LT(std::abs(left[i] - (i == BAFFLE ? c32(0) : left[REFERENCE])), 1e-5f) << i;
}

TEST(Solve, ASingularMatrixIsRefused) {
    for (const Method &method : METHODS) {
        if (method.ISOLVE == 0)
            continue;
        SCOPED_TRACE(method.name);
        const RunFolder folder;
        SmallSystem c(40);
        for (int i = 1; i <= 40; ++i)
            c.thread.ACORE(i, 39, 1) = 0;
        EXPECT_EQ(Attempt().run(c, method, {1, -1, 1}), Status::failed);
        EXPECT_TRUE(folder.told(method.ISOLVE == 1
                                    ? " Error in direct solver: left-hand-side is singular 1"
                                    : " Error in block iteration: left-hand-side is singular 1"));
        EXPECT_EQ(folder.told("       Error in radiation solution for mode M=1"), method.ISOLVE == 1);
    }
}

struct Damage {
    int method;
    int unit;
    bool truncated; // else empty
    const char *told;
};
TEST(Solve, DamagedFilesAreTold) {
    const Damage cases[] = {{4, 65, true, " Error reading scratch file for LHS from SOLVE, UNIT=65"},
                            {5, 66, false, " Error reading scratch file for LHS from SOLVE, UNIT=66"},
                            {7, 66, true, " Error reading LHS scratch file in SOLVE "},
                            {7, 68, true, " Error reading LHS scratch file in ITRCC "},
                            {9, 68, true, " Error reading LHS scratch file in ITRCC "},
                            {9, 69, true, " Error reading LHS scratch file in ITRCC "},
                            {9, 70, false, " Error reading LHS scratch file in SOLVE "},
                            {9, 67, true, " Error reading LHS scratch file in SOLVE "}};
    BoxSystem c;
    for (const Damage &damage : cases) {
        const RunFolder folder;
        const Method &method = METHODS[damage.method];
        SCOPED_TRACE(std::string(method.name) + ": " + damage.told);
        set_method(method, c.run);
        Attempt attempt;
        ASSERT_TRUE(attempt.prepare(c));
        const std::string name = std::string("SCRATCH") + static_cast<char>(damage.unit);
        ASSERT_TRUE(folder.exists(name));
        std::filesystem::resize_file(name, damage.truncated ? std::filesystem::file_size(name) - 10 : 0);
        EXPECT_EQ(attempt.solve(c, {1, 1, 1}), Status::failed);
        EXPECT_TRUE(folder.told(damage.told)) << folder.list_text();
        EXPECT_EQ(folder.told("       Error in diffraction solution for heading IBETA=1"),
                  folder.list_has("in ITRCC"));
    }
}

// The disk is full for one unit: with four classes and blocks all eight are in use, the last two for the
// factors and, with KEEP, for the saved class 1.
TEST(Solve, AFullDiskIsTold) {
    BoxSystem c;
    ASSERT_EQ(c.run.sym.NSYMR, 4);
    for (const bool last_unit : {true, false}) {
        const RunFolder folder;
        set_method(METHODS[9], c.run);
        Attempt attempt;
        ASSERT_TRUE(attempt.prepare(c));
        EXPECT_EQ(files_left(), 6); // classes 2 to 4, rows, columns, blocks
        std::filesystem::create_symlink("/dev/full", last_unit ? "SCRATCHG" : "SCRATCH@");
        EXPECT_EQ(attempt.solve(c, {1, 1, 1, 1}), Status::failed);
        EXPECT_TRUE(folder.told(last_unit ? "Error writing scratch LHS file, UNIT=71"
                                          : "Error writing scratch LHS file, UNIT=64"))
            << folder.list_text();
    }
}

TEST(Solve, SavedFactorsThatAreGoneAreTold) {
    const RunFolder folder;
    BoxSystem c;
    Attempt attempt;
    ASSERT_EQ(attempt.run(c, METHODS[4], {1, 1, 1, 1}), Status::ok);
    std::filesystem::resize_file("SCRATCHA", 100);
    EXPECT_EQ(attempt.solve(c, {1, 1, 0, 0}), Status::failed);
    EXPECT_TRUE(folder.told("Unable to read scratch LHS file, UNIT=65")) << folder.list_text();
}

} // namespace
