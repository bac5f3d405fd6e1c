// History files: the form of a line, and what a second reader sees when.
#include "output/history_file.h"

#include "output/terminal.h"
#include "small_mesh.h"

#include <QLocale>
#include <clocale>
#include <limits>
#include <string>

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/resource.h>
#endif

namespace fluvane {
namespace {

using HistoryFileTest = testing::OutputTest;

TEST_F(HistoryFileTest, LinesHoldTwoNumbersOfSixDigitsAndABlankAndEndInCrLf) {
    {
        HistoryFile history(inFolder("run_fl.txt"));
        history.append(0.0, 1.0);
        history.append(0.123456789, 2.0 / 3.0);
        history.append(1e-5, -1234567.0);
        history.append(1.5, std::numeric_limits<double>::infinity());
    }
    EXPECT_EQ(testing::readFile(inFolder("run_fl.txt")), "0 1\r\n"
                                                         "0.123457 0.666667\r\n"
                                                         "1e-05 -1.23457e+06\r\n"
                                                         "1.5 inf\r\n");
}

TEST_F(HistoryFileTest, BeginsEmptyWhateverTheFileHeldBefore) {
    const QString path = inFolder("run_Tave.txt");
    {
        HistoryFile earlier(path);
        for (int n = 0; n < 50; ++n)
            earlier.append(n, n);
    }
    ASSERT_GT(testing::readFile(path).size(), 200);
    HistoryFile history(path);
    EXPECT_EQ(testing::readFile(path), "") << "emptied before its first line";
    history.append(0.0, 0.5);
    EXPECT_EQ(testing::readFile(path), "0 0.5\r\n");
}

TEST_F(HistoryFileTest, EachLineIsThereForASecondReaderAtOnce) {
    const QString path = inFolder("run_fl.txt");
    HistoryFile history(path);
    QByteArray expected;
    for (int n = 0; n < 5; ++n) {
        history.append(n, 0.5);
        expected += QByteArray::number(n) + " 0.5\r\n";
        EXPECT_EQ(testing::readFile(path), expected);
    }
}

TEST_F(HistoryFileTest, SwallowsItsLinesWhereItCannotBeOpened) {
    ASSERT_TRUE(QDir(folder.path()).mkdir("run_fl.txt"));
    for (const QString& path : {inFolder("run_fl.txt"), inFolder("missing/run_fl.txt")}) {
        HistoryFile history(path);
        history.append(0.0, 1.0);
        history.append(0.1, 1.0);
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList("run_fl.txt"));
    EXPECT_TRUE(QDir(inFolder("run_fl.txt")).isEmpty());
}

// Deliberate: the terminal does not name a history file that cannot be written; standard error does, once.
TEST_F(HistoryFileTest, DeliberateOnlyStandardErrorNamesAFileThatCannotBeWritten) {
    QStringList said;
    setTerminalSink([&said](const QString& line) { said << line; });
    ::testing::internal::CaptureStderr();
    {
        HistoryFile history(inFolder("missing/run_fl.txt"));
        history.append(0.0, 1.0);
        history.append(0.1, 1.0);
    }
    const std::string err = ::testing::internal::GetCapturedStderr();
    setTerminalSink({});
    EXPECT_TRUE(said.isEmpty());
    EXPECT_EQ(err, inFolder("missing/run_fl.txt").toStdString() + ": lines could not be written\n");
}

#ifdef Q_OS_LINUX
TEST_F(HistoryFileTest, AFullDiskLeavesNoPartOfALineAndLinesComeAgainWhenThereIsRoom) {
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const QString path = inFolder("run_fl.txt");
    {
        HistoryFile history(path);
        history.append(0.0, 1.0); // five bytes
        rlimit limited = before;
        limited.rlim_cur = 12; // and a part of the second line that follows
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
        history.append(1.0, 1.0);
        history.append(2.0, 1.0);
        history.append(3.0, 1.0);
        EXPECT_EQ(testing::readFile(path), "0 1\r\n1 1\r\n");
        setrlimit(RLIMIT_FSIZE, &before);
        history.append(4.0, 1.0);
    }
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(testing::readFile(path), "0 1\r\n1 1\r\n4 1\r\n");
}
#endif

TEST_F(HistoryFileTest, TakesPathsBeyondAscii) {
    const QString path = inFolder(QString::fromUtf8("Lauf-ß-融化_fl.txt"));
    HistoryFile(path).append(0.25, 0.75);
    EXPECT_EQ(testing::readFile(path), "0.25 0.75\r\n");
}

TEST_F(HistoryFileTest, HasTheSameBytesInEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const QLocale toolkitBefore;
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    HistoryFile(inFolder("run_fl.txt")).append(0.5, 1234.5);
    QLocale::setDefault(toolkitBefore);
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(testing::readFile(inFolder("run_fl.txt")), "0.5 1234.5\r\n");
}

} // namespace
} // namespace fluvane
