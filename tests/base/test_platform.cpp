// Truth: folders laid out as the kernel lays out control groups.
#include "base/platform.hpp"

#include "temporary_folder.hpp"

namespace {

class Groups : public testing::Test {
  protected:
    void put(const std::string &file, const std::string &text) const { root.write(file, text); }
    std::int64_t available(const std::string &groups) const {
        MemorySizes sizes{16000, 9000, 0};
        apply_control_groups(groups, root.path().string(), sizes);
        EXPECT_EQ(sizes.total, 16000);
        return sizes.available;
    }
    TemporaryFolder root;
};

TEST_F(Groups, NoLimitLeavesTheMachine) {
    EXPECT_EQ(available(""), 9000);
    EXPECT_EQ(available("0::/absent\n"), 9000);
    put("job/memory.max", "max\n");
    put("job/memory.current", "100\n");
    EXPECT_EQ(available("0::/job\n"), 9000);
}

TEST_F(Groups, VersionTwoCountsTheGroupAndAllAboveIt) {
    put("job/memory.max", "5000\n");
    put("job/memory.current", "1500\n");
    put("job/memory.stat", "anon 1000\nactive_file 60\ninactive_file 300\nslab 9\n");
    EXPECT_EQ(available("0::/job\n"), 3800);
    EXPECT_EQ(available("0::/job/step/task\n"), 3800);
    put("job/step/memory.max", "200\n");
    put("job/step/memory.current", "150\n");
    EXPECT_EQ(available("0::/job/step\n"), 50);
    EXPECT_EQ(available("0::/job\n"), 3800);
    put("memory.max", "1000\n"); // a container shows its own limit at the root
    put("memory.current", "2000\n");
    EXPECT_EQ(available("0::/\n"), 0) << "never negative";
}

TEST_F(Groups, VersionOne) {
    put("memory/job/memory.limit_in_bytes", "4000\n");
    put("memory/job/memory.usage_in_bytes", "1000\n");
    put("memory/job/memory.stat", "inactive_file 1\ntotal_inactive_file 20\n");
    put("memory/memory.limit_in_bytes", "9223372036854771712\n");
    put("memory/memory.usage_in_bytes", "1000\n");
    EXPECT_EQ(available("5:cpu,cpuacct:/job\n4:memory:/job\n0::/\n"), 3020);
    EXPECT_EQ(available("5:cpu,cpuacct:/job\n"), 9000);
}

TEST(Memory, TheMachineTells) {
    MemorySizes sizes;
    ASSERT_TRUE(query_memory(sizes));
    EXPECT_GT(sizes.total, 0);
    EXPECT_GE(sizes.available, 0);
    EXPECT_LE(sizes.available, sizes.total);
}

} // namespace
