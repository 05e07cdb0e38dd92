// Truth: the rules of free-form reading and fixed columns, written out as tables.
#include "base/text.hpp"

#include <gtest/gtest.h>

namespace {

TEST(FreeReader, ReadsNumbersOfAnyForm) {
    struct Row {
        const char *text;
        f32 first, second;
    };
    for (const Row &row :
         {Row{"1 2", 1, 2}, Row{"1,2\n", 1, 2}, Row{" 1 , 2 rest", 1, 2}, Row{"1\r\n\r\n2\r\n", 1, 2},
          Row{"1,\n2", 1, 2}, Row{"2*-1.5D+01", -15, -15}, Row{"1d2 +3.E-1", 100, 0.3f},
          Row{".5 5.", 0.5f, 5}, Row{"1e-60 1", 0, 1}, Row{"\t1\t2", 1, 2}}) {
        FreeReader in;
        in.open_text("x.pot", row.text);
        f32 a = -1, b = -1;
        ASSERT_TRUE(in.read(a, b)) << row.text;
        EXPECT_EQ(a, row.first);
        EXPECT_EQ(b, row.second);
    }
    for (const char *text :
         {"1", "1 ,, 2", "1 two", "nan 1", "1 infinity", "1 1e40", "1 2x", "0*1 2", "", "1 --2"}) {
        FreeReader in;
        in.open_text("x.pot", text);
        f32 a = -1, b = -1;
        EXPECT_FALSE(in.read(a, b)) << text;
        EXPECT_NE(in.fault().find("x.pot"), std::string::npos);
    }
}

TEST(FreeReader, TheRestOfTheLastLineIsDropped) {
    FreeReader in;
    in.open_text("f", "title, 1 2 3\n1 2 3\n4\n5 6\n2*7\n2*1 3\n8");
    std::string title;
    ASSERT_TRUE(in.line(title, 5));
    EXPECT_EQ(title, "title");
    int a = 0, b = 0, c = 0;
    ASSERT_TRUE(in.read(a));
    EXPECT_EQ(a, 1);
    EXPECT_EQ(in.line_number(), 3);
    ASSERT_TRUE(in.read(a, b)); // runs on over a line end
    EXPECT_EQ(a * 10 + b, 45);
    ASSERT_TRUE(in.read(a)); // the unused repeat ends with its read
    EXPECT_EQ(a, 7);
    ASSERT_TRUE(in.read(a, b, c)); // as often as it says
    EXPECT_EQ(100 * a + 10 * b + c, 113);
    EXPECT_FALSE(in.at_end());
    ASSERT_TRUE(in.read(a));
    EXPECT_EQ(a, 8);
    EXPECT_TRUE(in.at_end());
    EXPECT_FALSE(in.read(a));
    EXPECT_TRUE(in.ended());
}

TEST(FreeReader, TellsWhereAndWhatItFound) {
    FreeReader in;
    in.open_text("ship.gdf", "1\n2 abc");
    int a = 0, b = 0, c = 0;
    EXPECT_FALSE(in.read(a, b, c));
    EXPECT_FALSE(in.ended());
    EXPECT_EQ(in.fault(), "ship.gdf, line 2: found \"abc\" where an integer is expected");
    in.open_text("ship.gdf", "1.5");
    EXPECT_FALSE(in.read(a));
    FreeReader missing;
    EXPECT_FALSE(missing.open("/no/such/file"));
}

TEST(FreeReader, ItemsBehindABlankAreCounted) {
    const auto items = [](const std::string &line) {
        FreeReader in;
        in.open_text("f", line);
        return in.NITEMS();
    };
    EXPECT_EQ(items(" 120 5\n7 8 9"), 2);
    EXPECT_EQ(items("120 5"), 1);
    EXPECT_EQ(items("  120"), 1);
    EXPECT_EQ(items(std::string(250, ' ') + "5"), 0);
}

TEST(FixedColumns, FillOrOverflow) {
    EXPECT_EQ(int_in(5, 42), "   42");
    EXPECT_EQ(int_in(3, -100), "***");
    EXPECT_EQ(fixed(10, 4, 3.14159), "    3.1416");
    EXPECT_EQ(fixed(5, 2, 123.456), "*****");
    EXPECT_EQ(sci(13, 5, -0.000123456), " -1.23456E-04");
    EXPECT_EQ(text_in(4, "ab"), "ab  ");
    EXPECT_EQ(text_in(4, "abcdef"), "abcd");
    EXPECT_EQ(text_at_least(4, "abcdef"), "abcdef");
    EXPECT_EQ(trimmed("ab \r"), "ab");
}

} // namespace
