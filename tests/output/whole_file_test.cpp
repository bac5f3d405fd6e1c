// Whole-file writing: what a reader of the file sees, and what happens where renaming is impossible.
#include "output/whole_file.h"

#include "output/file_text.h"
#include "small_mesh.h"

#include <QFileInfo>
#include <atomic>
#include <string>
#include <thread>

#ifdef Q_OS_UNIX
#include <csignal>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fluvane {
namespace {

class WholeFile : public testing::OutputTest {
protected:
    QStringList entries() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }
};
using testing::readFile;

TEST_F(WholeFile, CreatesTheFileWithExactlyTheGivenBytes) {
    const std::string content("a\r\nb\0c\n", 7);
    ASSERT_TRUE(writeWholeFile(inFolder("new.dat"), content));
    EXPECT_EQ(readFile(inFolder("new.dat")).toStdString(), content);
    EXPECT_EQ(entries(), QStringList("new.dat")) << "nothing may be left beside it";
}

TEST_F(WholeFile, TakesAContentThatIsMadeWhileItIsBeingWritten) {
    int calls = 0;
    ASSERT_TRUE(writeWholeFile(inFolder("new.dat"), [&](FileText& text) {
        ++calls;
        for (std::size_t i = 0; i < 2 * FileText::chunkBytes; ++i)
            text += static_cast<char>('a' + i % 26);
        EXPECT_FALSE(QFileInfo::exists(inFolder("new.dat"))) << "seen in part";
    }));
    EXPECT_EQ(calls, 1);
    const QByteArray content = readFile(inFolder("new.dat"));
    ASSERT_EQ(static_cast<std::size_t>(content.size()), 2 * FileText::chunkBytes);
    for (int i = 0; i < content.size(); ++i)
        ASSERT_EQ(content[i], 'a' + i % 26) << i;
    EXPECT_EQ(entries(), QStringList("new.dat"));
}

TEST_F(WholeFile, ReplacesALongerFile) {
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), std::string(10000, 'x')));
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), "short"));
    EXPECT_EQ(readFile(inFolder("a.dat")), "short");
}

TEST_F(WholeFile, WritesAnEmptyFile) {
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), "something"));
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), ""));
    EXPECT_EQ(QFileInfo(inFolder("a.dat")).size(), 0);
}

TEST_F(WholeFile, TakesPathsBeyondAscii) {
    const QString subfolder = QString::fromUtf8("Ergebnisse für 结果");
    ASSERT_TRUE(QDir(folder.path()).mkdir(subfolder));
    const QString path = inFolder(subfolder + QString::fromUtf8("/fälle_π.dat"));
    ASSERT_TRUE(writeWholeFile(path, "x"));
    EXPECT_EQ(readFile(path), "x");
}

TEST_F(WholeFile, RefusesAFolderAMissingFolderAndAnEmptyPath) {
    EXPECT_FALSE(writeWholeFile(folder.path(), "x"));
    EXPECT_FALSE(writeWholeFile(inFolder("missing/a.dat"), "x"));
    EXPECT_FALSE(writeWholeFile(QString(), "x"));
    EXPECT_TRUE(entries().isEmpty());
}

TEST_F(WholeFile, IsNeverSeenInParts) {
    const QString path = inFolder("a.dat");
    const std::size_t size = std::size_t{4} << 20;
    ASSERT_TRUE(writeWholeFile(path, std::string(size, 'a')));
    std::atomic<bool> done{false};
    std::atomic<int> reads{0};
    std::atomic<int> broken{0};
    std::thread reader([&] {
        while (!done) {
            QFile file(path);
            const QByteArray seen = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            const bool whole =
                static_cast<std::size_t>(seen.size()) == size && seen.count(seen[0]) == seen.size();
            broken += whole ? 0 : 1;
            ++reads;
        }
    });
    int written = 0;
    for (int i = 0; i < 50 || reads < 5; ++i)
        written += writeWholeFile(path, std::string(size, static_cast<char>('a' + i % 26))) ? 0 : 1;
    done = true;
    reader.join();
    EXPECT_EQ(written, 0) << "writes that failed";
    EXPECT_EQ(broken, 0) << "of " << reads << " reads";
}

#ifdef Q_OS_UNIX

TEST_F(WholeFile, FollowsALinkAndKeepsIt) {
    ASSERT_TRUE(writeWholeFile(inFolder("real.dat"), "old"));
    ASSERT_TRUE(QFile::link(inFolder("real.dat"), inFolder("link.dat")));
    ASSERT_TRUE(QFile::link(inFolder("link.dat"), inFolder("linklink.dat")));
    ASSERT_TRUE(writeWholeFile(inFolder("linklink.dat"), "new"));
    EXPECT_EQ(readFile(inFolder("real.dat")), "new");
    EXPECT_TRUE(QFileInfo(inFolder("link.dat")).isSymLink());
    EXPECT_TRUE(QFileInfo(inFolder("linklink.dat")).isSymLink());
}

TEST_F(WholeFile, CreatesWhatADanglingLinkNames) {
    ASSERT_TRUE(QFile::link(inFolder("real.dat"), inFolder("link.dat")));
    ASSERT_TRUE(writeWholeFile(inFolder("link.dat"), "new"));
    EXPECT_TRUE(QFileInfo(inFolder("link.dat")).isSymLink());
    EXPECT_EQ(readFile(inFolder("real.dat")), "new");
}

TEST_F(WholeFile, KeepsAPipeAPipe) {
    const QString path = inFolder("pipe");
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    const int readingEnd = open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(readingEnd, 0);
    EXPECT_TRUE(writeWholeFile(path, "through the pipe"));
    char received[64];
    const auto size = read(readingEnd, received, sizeof received);
    close(readingEnd);
    ASSERT_GT(size, 0);
    EXPECT_EQ(std::string(received, static_cast<std::size_t>(size)), "through the pipe");
    struct stat status {};
    ASSERT_EQ(stat(QFile::encodeName(path).constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

TEST_F(WholeFile, WritesInPlaceWhenTheNameLeavesNoRoomForATemporaryOne) {
    const QString path = inFolder(QString(255, 'n'));
    ASSERT_TRUE(writeWholeFile(path, "x"));
    EXPECT_EQ(readFile(path), "x");
}

TEST_F(WholeFile, WritesInPlaceInAFolderThatTakesNoNewFiles) {
    if (geteuid() == 0)
        GTEST_SKIP() << "rights do not bind this user";
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), "old"));
    QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::ExeOwner);
    const bool written = writeWholeFile(inFolder("a.dat"), "new");
    const bool created = writeWholeFile(inFolder("b.dat"), "new");
    QFile::setPermissions(folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    EXPECT_TRUE(written);
    EXPECT_FALSE(created);
    EXPECT_EQ(readFile(inFolder("a.dat")), "new");
}

/// Writes with no file allowed to grow beyond `limit` bytes; a write beyond then fails like a full disk.
bool writeWithinLimit(const QString& path, std::string_view content, rlim_t limit) {
    rlimit before{};
    EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limited = before;
    limited.rlim_cur = limit;
    EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const bool written = writeWholeFile(path, content);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    return written;
}

TEST_F(WholeFile, KeepsTheOldFileWhenThereIsNoRoomForTheNewOne) {
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), "old"));
    EXPECT_FALSE(writeWithinLimit(inFolder("a.dat"), std::string(100000, 'x'), 1000));
    EXPECT_EQ(readFile(inFolder("a.dat")), "old");
    EXPECT_EQ(entries(), QStringList("a.dat")) << "nothing may be left beside it";
}

TEST_F(WholeFile, KeepsTheOldFileWhenTheRoomEndsAmongTheChunksOfTheNewOne) {
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), "old"));
    const std::string content(4 * FileText::chunkBytes, 'x');
    EXPECT_FALSE(writeWithinLimit(inFolder("a.dat"), content, FileText::chunkBytes * 3 / 2));
    EXPECT_EQ(readFile(inFolder("a.dat")), "old");
    EXPECT_EQ(entries(), QStringList("a.dat")) << "nothing may be left beside it";
    EXPECT_TRUE(writeWithinLimit(inFolder("a.dat"), content, content.size()));
}

TEST_F(WholeFile, KeepsTheOldFileWhenNoFileMoreFitsOnTheDisk) {
    const QByteArray disk = QFile::encodeName(folder.path());
    // Two inodes: the folder's and one file's.
    if (mount("none", disk.constData(), "tmpfs", 0, "nr_inodes=2") != 0)
        GTEST_SKIP() << "this user may mount nothing";
    const bool first = writeWholeFile(inFolder("a.dat"), "old") || [this] {
        QFile file(inFolder("a.dat"));
        return file.open(QIODevice::WriteOnly) && file.write("old") == 3;
    }();
    EXPECT_TRUE(first);
    EXPECT_FALSE(writeWholeFile(inFolder("a.dat"), std::string(100, 'x')));
    EXPECT_EQ(readFile(inFolder("a.dat")), "old");
    umount(disk.constData());
}

TEST_F(WholeFile, KeepsTheRightsOfTheFileItReplaces) {
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), "old"));
    const auto rights = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    ASSERT_TRUE(QFile::setPermissions(inFolder("a.dat"), rights));
    ASSERT_TRUE(writeWholeFile(inFolder("a.dat"), "new"));
    EXPECT_FALSE(QFile::permissions(inFolder("a.dat")) & QFile::ReadOther);
    EXPECT_TRUE(QFile::permissions(inFolder("a.dat")) & QFile::ReadGroup);
}

#endif

} // namespace
} // namespace fluvane
