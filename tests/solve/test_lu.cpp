// Truth: the residual of the solution in double precision, and equality of the bits on one core and on two.
#include "solve/lu.hpp"

#include "base/lapack.hpp"

#include <cstring>
#include <gtest/gtest.h>
#include <omp.h>
#include <random>
#include <vector>

namespace {

// Random, with a diagonal that is not dominant: rows are interchanged.
void fill_matrix(Array<c32, 2> &A, int n) {
    ASSERT_TRUE(A.alloc(n, n));
    std::mt19937 random(7);
    std::uniform_real_distribution<f32> unit(-1, 1);
    for (std::int64_t i = 0; i < A.size(); ++i)
        A.data()[i] = {unit(random), unit(random)};
}

class Orders : public testing::TestWithParam<int> {};

TEST_P(Orders, SolveAndDoNotDependOnTheCores) {
    const int n = GetParam();
    Array<c32, 2> A;
    Array<c32, 2> one;
    Array<c32, 2> two;
    fill_matrix(A, n);
    fill_matrix(one, n);
    fill_matrix(two, n);
    std::vector<int> pivots_one(static_cast<std::size_t>(n)), pivots_two(static_cast<std::size_t>(n));
    const int threads = omp_get_max_threads();
    omp_set_num_threads(1);
    ASSERT_EQ(LUFACT(one, pivots_one.data(), n), Status::ok);
    omp_set_num_threads(2);
    ASSERT_EQ(LUFACT(two, pivots_two.data(), n), Status::ok);
    omp_set_num_threads(threads);
    EXPECT_EQ(pivots_one, pivots_two);
    EXPECT_EQ(std::memcmp(one.data(), two.data(), static_cast<std::size_t>(one.size()) * sizeof(c32)), 0);

    // A constant right-hand side would not notice rows that are interchanged wrongly.
    std::vector<c32> x(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = A(static_cast<std::int64_t>(i) + 1, 1) + c32(static_cast<f32>(i % 7));
    const std::vector<c32> b = x;
    const int count = 1;
    int info = 0;
    cgetrs_("N", &n, &count, one.data(), &n, pivots_one.data(), x.data(), &n, &info, 1);
    double worst = 0;
    double size = 0;
    for (int i = 1; i <= n; ++i) {
        std::complex<double> sum = -std::complex<double>(b[static_cast<std::size_t>(i - 1)]);
        for (int j = 1; j <= n; ++j) {
            sum += std::complex<double>(A(i, j)) * std::complex<double>(x[static_cast<std::size_t>(j - 1)]);
            size = std::max(size, std::abs(std::complex<double>(x[static_cast<std::size_t>(j - 1)])));
        }
        worst = std::max(worst, std::abs(sum));
    }
    // Backward error of partial pivoting: a few units of the last place times the growth of n^(2/3).
    EXPECT_LT(worst, 1e-6 * n * size);
}

INSTANTIATE_TEST_SUITE_P(Lu, Orders, testing::Values(1, 5, 191, 192, 193, 500));

TEST(Lu, ASingularMatrixIsRefused) {
    Array<c32, 2> A;
    fill_matrix(A, 300);
    for (int i = 1; i <= 300; ++i)
        A(i, 250) = A(i, 250) * 0.0f;
    std::vector<int> pivots(300);
    EXPECT_EQ(LUFACT(A, pivots.data(), 300), Status::failed);
}

} // namespace
