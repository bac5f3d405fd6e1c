// Headers, face words and limits that the mesh readers share.
#include "mesh/fluent_scan.h"

#include "support/captured_terminal.h"

#include <array>

namespace fluvane {

using FluentScanTest = CapturedTerminalTest;

TEST_F(FluentScanTest, FaceWordsAreHexadecimalOfBothCases) {
    std::array<std::int32_t, 4> words{};
    std::string_view rest;
    ASSERT_TRUE(parseFaceWords("  aB\t0 7fffffff 000000000001 2 x", words.data(), 4, rest));
    EXPECT_EQ(words, (std::array<std::int32_t, 4>{0xab, 0, 0x7fffffff, 1}));
    EXPECT_EQ(rest, " 2 x");
}

TEST_F(FluentScanTest, MissingForeignAndTooLargeFaceWordsAreNotParsed) {
    std::array<std::int32_t, 4> words{};
    std::string_view rest;
    for (const char* line : {"", "1 2 3", "1 2 3 ", "1 2 3 4)", "1 2 -3 4", "1 2 0x3 4", "1 2 3 80000000"})
        EXPECT_FALSE(parseFaceWords(line, words.data(), 4, rest)) << line;
}

TEST_F(FluentScanTest, FaceTypeIsTheSixthHeaderWord) {
    EXPECT_EQ(faceTypeOf("(13 (3 1 11 2 2)("), 2);
    EXPECT_EQ(faceTypeOf("(13 (3 1 11 2 0)("), 0);
    EXPECT_EQ(faceTypeOf("(13 (3 1 11 2"), -1);
    EXPECT_EQ(faceTypeOf("(13 (3 1 11 2 )("), -1);
}

TEST_F(FluentScanTest, RoomIsWhatTheRestOfTheFileCanHold) {
    FluentScan scan("file.msh", "header\n12345678\n12345678\n");
    ASSERT_TRUE(scan.next());
    EXPECT_EQ(scan.roomFor(9), 3); // one more, for a last line without its end
    EXPECT_EQ(scan.peek(), "12345678");
    EXPECT_EQ(scan.lineNumber(), 1);
}

TEST_F(FluentScanTest, CountsUpToTheLimitAreReadAndPointedAt) {
    FluentScan scan("file.msh", "\n(13 (3 1 a 2 2)(\n");
    ASSERT_TRUE(scan.next() && scan.next());
    HeaderCount count;
    EXPECT_FALSE(scan.readCount("13", 9, "faces", count));
    EXPECT_NE(problems(1).find("file.msh, line 2: expected a last index of 0 to 9"), std::string::npos);
    EXPECT_FALSE(scan.readCount("10", 10, "nodes", count));
    problems(1);
    ASSERT_TRUE(scan.readCount("13", 10, "faces", count));
    EXPECT_EQ(count.value, 10);
    EXPECT_EQ(FluentScan::originOf(count).toStdString(), " (line 2 says \"a\")");
}

// Deliberate: upper-case letters are zero digits of 3D face lines, but count in 2D ones.
TEST_F(FluentScanTest, LowerCaseWordsTakeUpperCaseLettersForZero) {
    std::array<std::int32_t, 3> values{};
    int count = 0;
    ASSERT_TRUE(parseLowerCaseFaceWords(" 1A f0\tCf 7fffffff", values.data(), 3, count));
    EXPECT_EQ(count, 4);
    EXPECT_EQ(values, (std::array<std::int32_t, 3>{0x10, 0xf0, 0x0f}));
    std::string_view rest;
    ASSERT_TRUE(parseFaceWords(" 1A f0\tCf 7fffffff", values.data(), 3, rest));
    EXPECT_EQ(values, (std::array<std::int32_t, 3>{0x1a, 0xf0, 0xcf}));
    ASSERT_TRUE(parseLowerCaseFaceWords("", values.data(), 3, count));
    EXPECT_EQ(count, 0);
    for (const char* junk : {"g", "1 2)", "80000000", "1 ffffffffffffffffffff", "-1"})
        EXPECT_FALSE(parseLowerCaseFaceWords(junk, values.data(), 3, count)) << junk;
}

TEST_F(FluentScanTest, EveryEndOfTheNameIsTakenOff) {
    FluentScan scan("file.msh", "Zone Sections\n\n\n(45 (3 wall a)())b)())\n");
    ASSERT_TRUE(scan.next());
    std::vector<QString> names;
    ASSERT_TRUE(scan.readZoneNames(1, names));
    EXPECT_EQ(names, std::vector<QString>{"ab"});
}

} // namespace fluvane
