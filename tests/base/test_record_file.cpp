// Truth: the framing of sequential binary records, read back byte by byte.
#include "base/record_file.hpp"

#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <vector>

TEST(RecordFile, FramesEveryRecordOnBothSides) {
    const std::string name = testing::TempDir() + "/records.bin";
    RecordFile out(3);
    ASSERT_TRUE(out.create(name));
    const int two[] = {7, -1};
    const f32 one = 5.5f;
    ASSERT_TRUE(out.write({bytes_of(two, 2), bytes_of(one)}));
    ASSERT_TRUE(out.write({})); // a record of length 0 has both frames
    ASSERT_TRUE(out.close());

    std::ifstream raw(name, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(raw)), {});
    ASSERT_EQ(bytes.size(), 4u + 12u + 4u + 8u);
    std::int32_t words[7];
    std::memcpy(words, bytes.data(), sizeof words);
    EXPECT_EQ(words[0], 12);
    EXPECT_EQ(words[1], 7);
    EXPECT_EQ(words[4], 12);
    EXPECT_EQ(words[5], 0);
    EXPECT_EQ(words[6], 0);

    RecordFile in(3);
    ASSERT_TRUE(in.open(name));
    EXPECT_EQ(in.next_length(), 12);
    int got[3];
    ASSERT_TRUE(in.read({{got, 12}}));
    EXPECT_EQ(got[1], -1);
    EXPECT_FALSE(in.read({{got, 4}})); // another length than asked for
    EXPECT_NE(in.error().find("unit 3"), std::string::npos);
}

TEST(RecordFile, AFullDiskIsAnError) {
    RecordFile file(3);
    if (!file.open("/dev/full"))
        GTEST_SKIP() << "no /dev/full here";
    ASSERT_TRUE(file.create("/dev/full"));
    std::vector<char> values(1 << 20);
    const bool written = file.write({{values.data(), values.size()}});
    EXPECT_FALSE(written && file.flush());
    RecordFile nowhere(3);
    EXPECT_FALSE(nowhere.create("/no/such/folder/x"));
    EXPECT_NE(nowhere.error().find("No such file"), std::string::npos);
}

TEST(RecordFile, AReopenedFileEndsAtItsLastNewRecord) {
    const std::string name = testing::TempDir() + "/reopened.bin";
    std::remove(name.c_str());
    RecordFile file(65);
    const std::vector<f32> values(200000, 1.5f);
    ASSERT_TRUE(file.open_or_create(name));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(file.write({bytes_of(values.data(), 200000)}));
    ASSERT_TRUE(file.close());
    f32 got[2];
    ASSERT_TRUE(file.open_or_create(name)); // what was there is there
    EXPECT_EQ(file.next_length(), 800000);
    ASSERT_TRUE(file.rewind());
    for (int i = 0; i < 2; ++i) { // the second time behind the first
        ASSERT_TRUE(file.write({bytes_of(values.data(), 2)}));
        EXPECT_FALSE(file.read({{got, 8}})) << "nothing is behind the record just written";
    }
    ASSERT_TRUE(file.rewind());
    ASSERT_TRUE(file.read({{got, 8}}));
    ASSERT_TRUE(file.write({bytes_of(values.data(), 1)})); // between two records
    ASSERT_TRUE(file.close());
    std::ifstream raw(name, std::ios::binary | std::ios::ate);
    EXPECT_EQ(static_cast<int>(raw.tellg()), 8 + 8 + 8 + 4);
    std::remove(name.c_str());
}
