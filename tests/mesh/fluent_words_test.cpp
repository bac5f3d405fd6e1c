// Header numbers and zone names.
#include "mesh/fluent_words.h"

#include <gtest/gtest.h>

namespace fluvane {

TEST(FluentWordsTest, ReadsLowerCaseHexadecimal) {
    EXPECT_EQ(parseHex("3e8"), 1000);
    EXPECT_EQ(parseHex("0123456789abcdef"), 0x0123456789abcdef);
    EXPECT_EQ(parseHex("0"), 0);
    EXPECT_EQ(parseHex(""), 0);
}

// Deliberate: upper-case letters and parentheses are zero digits.
TEST(FluentWordsTest, UpperCaseLettersAndOtherCharactersAreZeroDigits) {
    EXPECT_EQ(parseHex("3E8"), 776);
    EXPECT_EQ(parseHex("1f)"), 0x1f0);
    EXPECT_EQ(parseHex("(1"), 1);
    EXPECT_EQ(parseHex("g-1"), 1);
    EXPECT_EQ(parseHex("\xff"
                       "2"),
              2);
}

TEST(FluentWordsTest, WordsBeyond64BitsWrap) {
    EXPECT_EQ(parseHex("ffffffffffffffff"), -1);
    EXPECT_EQ(parseHex("1ffffffffffffffff"), -1);
}

TEST(FluentWordsTest, HeaderCountIsTheFourthWord) {
    EXPECT_EQ(headerLastIndex("(10 (0 1 2d5 0 2))"), 725);
    EXPECT_EQ(headerLastIndex("  (13\t(3 1  c 2 2)("), 12);
    EXPECT_EQ(headerLastIndex("(13(3 1 c 2 2)("), 2);
    EXPECT_EQ(headerLastIndex("(13 (3 1 1f)"), 0x1f0);
}

TEST(FluentWordsTest, HeaderWithFewerThanFourWordsGivesMinusOne) {
    EXPECT_EQ(headerLastIndex("(13 (3 1"), -1);
    EXPECT_EQ(headerLastIndex("(13 (3 1  "), -1);
    EXPECT_EQ(headerLastIndex(""), -1);
}

TEST(FluentWordsTest, ZoneNameIsTheFourthWord) {
    EXPECT_EQ(zoneNameOf("(45 (3 wall top)())"), "top)())");
    EXPECT_EQ(zoneNameOf("(39 (3 wall top 1)())"), "top");
    EXPECT_EQ(zoneNameOf("(45 (3 wall"), "");
}

} // namespace fluvane
