// Truth: the rule of storage itself, first index fastest, indices from the lower bound of each range.
#include "base/array.hpp"

#include <gtest/gtest.h>

TEST(Array, WalkingAllIndicesCountsOffsets) {
    Array<int, 4> a;
    ASSERT_TRUE(a.alloc(3, Range(0, 1), 4, Range(-2, 2)));
    std::int64_t counter = 0;
    for (int l = -2; l <= 2; ++l) {
        for (int k = 1; k <= 4; ++k) {
            for (int j = 0; j <= 1; ++j) {
                for (int i = 1; i <= 3; ++i)
                    EXPECT_EQ(&a(i, j, k, l) - a.data(), counter++);
            }
        }
    }
    EXPECT_EQ(a.size(), counter);
    EXPECT_EQ(a.dim(2), 2);
    // The last index fixed: a contiguous part that sees the same elements.
    a(2, 1, 3, 0) = 77;
    const auto part = a.slice(0);
    EXPECT_EQ(part(2, 1, 3), 77);
    EXPECT_EQ(part.slice(3).data(), &a(1, 0, 3, 0));
}

TEST(Array, IsZeroedAlignedAndRefusesWhatCannotBe) {
    Array<double, 2> a;
    ASSERT_TRUE(a.alloc(5, 7));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a.data()) % 64, 0u);
    for (std::int64_t i = 0; i < a.size(); ++i)
        EXPECT_EQ(a.data()[i], 0.0);
    EXPECT_FALSE(a.alloc(std::int64_t{1} << 40, std::int64_t{1} << 40));
    EXPECT_TRUE(a.empty());
    ASSERT_TRUE(a.alloc(0, 3));
    EXPECT_EQ(a.size(), 0);
}

// Large arrays have pages of their own; what one leaves behind must not show in the next.
TEST(Array, LargeOnesAreZeroedAndAlignedToLargePages) {
    constexpr std::int64_t N = (LARGE_BLOCK / sizeof(double)) + 1;
    for (const std::int64_t n : {N - 2, N, 3 * N}) {
        for (int round = 0; round < 2; ++round) {
            Array<double, 1> a;
            ASSERT_TRUE(a.alloc(n));
            if (n >= N) {
                EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a.data()) % (2 << 20), 0u);
            }
            for (std::int64_t i = 1; i <= n; ++i)
                ASSERT_EQ(a(i), 0.0);
            a.fill(1.5);
            Array<double, 1> b = std::move(a);
            EXPECT_EQ(b(n), 1.5);
            ASSERT_TRUE(b.alloc_unset(5));
            b.fill(2);
        }
    }
}

TEST(Array, GrowthKeepsWhatWasThere) {
    Array<int, 3> a;
    ASSERT_TRUE(a.alloc(4, 3, 2));
    for (int i = 0; i < 24; ++i)
        a.data()[i] = i + 1;
    ASSERT_TRUE(a.resize_last(5));
    EXPECT_EQ(a(4, 3, 2), 24);
    EXPECT_EQ(a(1, 1, 3), 0);
    ASSERT_TRUE(a.resize_last(1));
    EXPECT_EQ(a.size(), 12);
    EXPECT_EQ(a(4, 3, 1), 12);
    Array<int, 3> b = std::move(a);
    EXPECT_EQ(b(2, 1, 1), 2);
}

#ifdef VORDA_CHECK_INDEX
TEST(ArrayDeathTest, AnIndexOutsideItsRangeIsNamed) {
    Array<int, 2> a;
    ASSERT_TRUE(a.alloc(3, 4));
    EXPECT_DEATH(a(3, 5) = 1, "array index 5 outside 1..4 in dimension 2");
    EXPECT_DEATH(a(0, 1) = 1, "array index 0 outside 1..3 in dimension 1");
}
#endif
