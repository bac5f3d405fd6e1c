// Lines, words and numbers of text files.
#include "velocity/text_file.h"

#include "support/captured_terminal.h"

#include <cmath>
#include <string>

namespace fluvane {

using TextFileTest = CapturedTerminalTest;

TEST_F(TextFileTest, LinesEndAtLineFeedsAndLoseTheirCarriageReturn) {
    LineScanner scanner("one\r\n\n two");
    ASSERT_TRUE(scanner.next());
    EXPECT_EQ(scanner.line(), "one");
    EXPECT_EQ(scanner.lineNumber(), 1);
    ASSERT_TRUE(scanner.next());
    EXPECT_EQ(scanner.line(), "");
    EXPECT_EQ(scanner.rest(), " two");
    ASSERT_TRUE(scanner.next());
    EXPECT_EQ(scanner.line(), " two");
    EXPECT_EQ(scanner.lineNumber(), 3);
    EXPECT_FALSE(scanner.next());
}

TEST_F(TextFileTest, WordsAreTakenOneByOne) {
    std::string_view text = " \ta  b\r ";
    EXPECT_EQ(takeWord(text), "a");
    EXPECT_EQ(takeWord(text), "b");
    EXPECT_EQ(takeWord(text), "");
}

TEST_F(TextFileTest, NumbersTakeTheWholeWord) {
    EXPECT_EQ(parseDecimal("-1.5e3"), -1500.0);
    EXPECT_EQ(parseDecimal("+.5"), 0.5);
    EXPECT_EQ(parseDecimal("2."), 2.0);
    for (const char* word : {"", "+", "+-1", "1x", "0x10", "1,5", "nan", "inf", "-inf", "1e999", "--1", "))"})
        EXPECT_FALSE(parseDecimal(word)) << word;
}

TEST_F(TextFileTest, NumbersTooSmallForADoubleAreZero) {
    EXPECT_EQ(parseDecimal("1e-999"), 0.0);
    EXPECT_EQ(parseDecimal("0." + std::string(500, '0') + "1"), 0.0);
    EXPECT_GT(parseDecimal("4.9e-324").value_or(0.0), 0.0);
}

TEST_F(TextFileTest, ReadsEveryByte) {
    const std::string text("a\0b\r\n\xff", 6);
    const TextFile file = readTextFile(write("bytes", text), 100);
    EXPECT_TRUE(file.opened);
    EXPECT_TRUE(file.error.isEmpty());
    EXPECT_EQ(file.text(), text);
}

TEST_F(TextFileTest, EmptyFileIsReadWithoutError) {
    const TextFile file = readTextFile(write("empty", ""), 100);
    EXPECT_TRUE(file.opened);
    EXPECT_TRUE(file.error.isEmpty());
    EXPECT_TRUE(file.text().empty());
}

TEST_F(TextFileTest, LongerFilesThanTheLimitAreNotRead) {
    const QString path = write("long", "12345");
    EXPECT_TRUE(readTextFile(path, 5).error.isEmpty());
    const TextFile file = readTextFile(path, 4);
    EXPECT_TRUE(file.opened);
    EXPECT_FALSE(file.error.isEmpty());
}

TEST_F(TextFileTest, FoldersAndMissingFilesAreNotOpened) {
    EXPECT_FALSE(readTextFile(folder.path(), 100).opened);
    EXPECT_FALSE(readTextFile(pathOf("absent"), 100).opened);
    EXPECT_FALSE(readTextFile(QString(), 100).opened);
}

TEST_F(TextFileTest, QuotedTextIsShortAndPrintable) {
    EXPECT_EQ(quotedText("plain").toStdString(), "\"plain\"");
    EXPECT_EQ(quotedText(std::string_view("a\0\tb", 4)).toStdString(), "\"a??b\"");
    EXPECT_EQ(quotedText(std::string(100, 'x')).toStdString(), "\"" + std::string(60, 'x') + "...\"");
}

} // namespace fluvane
