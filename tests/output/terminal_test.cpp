// The terminal sink: every line once, in order, from any thread.
#include "output/terminal.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace fluvane {
namespace {

class Terminal : public ::testing::Test {
protected:
    void SetUp() override {
        takeProblems();
        setTerminalSink([this](const QString& line) { lines.append(line); });
    }
    void TearDown() override {
        setTerminalSink({});
        takeProblems();
    }
    QStringList lines;
};

TEST_F(Terminal, HandsLinesToTheSinkInOrder) {
    appendTerminalLine("first");
    appendTerminalLine("");
    appendTerminalLine(QString::fromUtf8("dritte ä"));
    EXPECT_EQ(lines, QStringList({"first", "", QString::fromUtf8("dritte ä")}));
    EXPECT_TRUE(takeProblems().isEmpty()) << "a plain line is no complaint";
}

TEST_F(Terminal, WritesToStandardErrorWithoutASink) {
    setTerminalSink({});
    ::testing::internal::CaptureStderr();
    appendTerminalLine(QString::fromUtf8("nobody listens: ä"));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "nobody listens: ä\n");
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(Terminal, ReplacesTheSink) {
    QStringList others;
    setTerminalSink([&](const QString& line) { others.append(line); });
    appendTerminalLine("x");
    EXPECT_EQ(others, QStringList("x"));
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(Terminal, KeepsComplaintsUntilTheyAreTaken) {
    reportProblem("bad mesh");
    appendTerminalLine("between");
    reportProblem("bad velocity file");
    EXPECT_EQ(lines, QStringList({"bad mesh", "between", "bad velocity file"}));
    EXPECT_EQ(takeProblems(), QStringList({"bad mesh", "bad velocity file"}));
    EXPECT_TRUE(takeProblems().isEmpty());
}

TEST_F(Terminal, KeepsTheOrderOfEachThreadAndLosesNothing) {
    constexpr int threadCount = 4;
    constexpr int lineCount = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < lineCount; ++i)
                appendTerminalLine(QString("%1 %2").arg(t).arg(i));
        });
    for (std::thread& thread : threads)
        thread.join();
    ASSERT_EQ(lines.size(), threadCount * lineCount);
    std::vector<int> next(threadCount, 0);
    for (const QString& line : lines) {
        const QStringList words = line.split(' ');
        int& expected = next[static_cast<std::size_t>(words[0].toInt())];
        ASSERT_EQ(words[1].toInt(), expected);
        ++expected;
    }
}

} // namespace
} // namespace fluvane
