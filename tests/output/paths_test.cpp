// Every file that is read or written may have blanks, Chinese characters and the longest path there is.
#include "mesh/fluent_reader_2d.h"
#include "mesh/fluent_reader_3d.h"
#include "output/dumps.h"
#include "output/history_file.h"
#include "output/result_file.h"
#include "output/terminal.h"
#include "small_mesh.h"
#include "support/grid_mesh.h"
#include "velocity/velocity_file.h"

#include <algorithm>
#include <climits>
#include <unistd.h>

namespace fluvane {
namespace {

using testing::readFile;

constexpr int longestComponent = NAME_MAX; // bytes
constexpr int longestPath = PATH_MAX - 1;  // without the zero at its end

const QString lakeName = QString::fromUtf8("湖");      // three bytes
const QString caseName = QString::fromUtf8("算例 一"); // with a blank

/// A component of so many bytes, in Chinese as far as they go.
QString component(int bytes) {
    return lakeName.repeated(bytes / 3) + QStringLiteral("x").repeated(bytes % 3);
}

/// Folders below `root` such that a name of `nameBytes` in the last one has a path of `bytes`.
QString deepFolder(QString path, int nameBytes, int bytes) {
    while (true) {
        const int left = bytes - nameBytes - 1 - static_cast<int>(path.toUtf8().size());
        if (left < 2)
            return path;
        // Not one byte may be left: it would be a slash with nothing behind it.
        const int taken = std::min(left - 1, longestComponent);
        path += '/' + component(left - 1 - taken == 1 ? taken - 1 : taken);
    }
}

struct Place {
    const char* name;
    QString (*folder)(const QString& root);
};

constexpr int nameBytes = 9; // of "point.txt" and of the names below

const Place places[] = {
    {"Blanks", [](const QString& root) { return root + "/a folder  with blanks "; }},
    {"Chinese", [](const QString& root) { return root + '/' + caseName + "/网格"; }},
    {"LongestComponent", [](const QString& root) { return root + '/' + component(longestComponent); }},
    {"LongestPath", [](const QString& root) { return deepFolder(root, nameBytes, longestPath); }},
};

class PathsTest : public testing::OutputTest, public ::testing::WithParamInterface<Place> {
protected:
    void SetUp() override {
        OutputTest::SetUp();
        place = GetParam().folder(folder.path());
        ASSERT_TRUE(QDir().mkpath(place));
        setTerminalSink([this](const QString& line) { said += line + '\n'; });
    }
    void TearDown() override {
        setTerminalSink({});
        takeProblems();
        QDir::setCurrent(previous);
        OutputTest::TearDown();
    }

    QString inPlace(const char* name) const {
        EXPECT_EQ(qstrlen(name), std::size_t{nameBytes});
        return place + '/' + name;
    }

    void put(const QString& path, const std::string& text) const {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << file.errorString().toStdString();
        ASSERT_EQ(file.write(text.data(), static_cast<qint64>(text.size())),
                  static_cast<qint64>(text.size()));
    }

    /// Nothing is left beside the files that were asked for.
    void expectOnly(const QStringList& names) const {
        EXPECT_EQ(QDir(place).entryList(QDir::Files | QDir::Hidden), names);
    }

    QString place;
    QString said;
    const QString previous = QDir::currentPath();
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Places, PathsTest, ::testing::ValuesIn(places),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(PathsTest, VelocityFilesAreRead) {
    put(inPlace("D2Q5.2Dv5"), "0 0 1 3 0\n1 0 1 6 2\n-1 0 1 6 1\n");
    EXPECT_TRUE(readVelocityFile(inPlace("D2Q5.2Dv5"))) << said.toStdString();
    EXPECT_EQ(velocitySet.velocityCount, 3);
}

TEST_P(PathsTest, MeshesAreRead) {
    velocitySet.velocityCount = 3;
    put(inPlace("plane.msh"), GridMesh{2, 2}.text());
    EXPECT_TRUE(readMesh2D(inPlace("plane.msh")));
    EXPECT_EQ(mesh.pointCount, 9) << said.toStdString();
    put(inPlace("space.msh"),
        "(0 \"Node Section\")\n(10 (0 1 5 0 3))\n(10 (1 1 5 1 3)\n(\n0 0 0\n1 0 0\n0 1 0\n"
        "0 0 1\n0 0 -1\n))\n(13 (0 1 1 0))\n(0 \"Inside\")\n(13 (3 1 1 2 3)(\n1 2 3 1 2\n)\n");
    EXPECT_TRUE(readMesh3D(inPlace("space.msh")));
    EXPECT_EQ(mesh.pointCount, 6) << said.toStdString();
}

TEST_P(PathsTest, RefusalsNameTheWholePath) {
    put(inPlace("wrong.msh"), "(2 3)\n");
    EXPECT_FALSE(readMesh2D(inPlace("wrong.msh")));
    EXPECT_TRUE(said.contains(inPlace("wrong.msh") + ", line 1: expected")) << said.toStdString();
}

TEST_P(PathsTest, ResultFilesAreWrittenAndReplaced) {
    testing::makeSmallMesh();
    const QString path = inPlace("plane.dat");
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(writeResult2D(path));
        EXPECT_TRUE(readFile(path).startsWith("TITLE"));
        EXPECT_EQ(access(path.toUtf8().constData(), F_OK), 0) << "not in UTF-8";
    }
    mesh.clear();
    ASSERT_TRUE(writeResult3D(path));
    EXPECT_TRUE(readFile(path).contains("FETETRAHEDRON"));
    expectOnly({"plane.dat"});
}

TEST_P(PathsTest, DumpsAreWrittenIntoTheWorkingFolder) {
    testing::makeSmallMesh();
    ASSERT_TRUE(QDir::setCurrent(place));
    EXPECT_TRUE(dumpPoints() && dumpCells() && dumpFaces());
    EXPECT_TRUE(readFile(inPlace("point.txt")).startsWith("point 0,0,0"));
    expectOnly({"cell.txt", "face.txt", "point.txt"});
}

TEST_P(PathsTest, HistoriesAreWritten) {
    HistoryFile(inPlace("means.txt")).append(1.0, 2.0);
    EXPECT_EQ(readFile(inPlace("means.txt")), "1 2\r\n");
    ASSERT_TRUE(QDir::setCurrent(place));
    HistoryFile(QStringLiteral("means.txt")).append(3.0, 4.0);
    EXPECT_EQ(readFile(inPlace("means.txt")), "3 4\r\n");
}

TEST_P(PathsTest, NothingIsSaidToBeWrittenBeyondTheLongestPath) {
    const QString path = deepFolder(folder.path(), nameBytes + 1, longestPath + 1) + "/beyond.dat";
    EXPECT_FALSE(writeResult2D(path));
    EXPECT_FALSE(readVelocityFile(path));
    EXPECT_TRUE(said.contains("cannot be read")) << said.toStdString();
}

} // namespace fluvane
