// Memory of readers and geometry passes is bounded by the size of the file, and running out of it is a line.
#include "mesh/fluent_reader_2d.h"
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "support/captured_terminal.h"
#include "support/grid_mesh.h"
#include "support/mesh_builder_3d.h"
#include "support/mesh_file_3d.h"
#include "support/spare_memory.h"
#include "velocity/velocity_file.h"

#include <QFile>

#include <memory>
#include <new>
#include <omp.h>
#include <vector>

namespace fluvane {

namespace {

using support::addressSpaceIsOurs;
using support::SpareMemory;

constexpr std::size_t megabyte = std::size_t{1} << 20;

class MemoryBoundsTest : public CapturedTerminalTest {
protected:
    MemoryBoundsTest() {
        velocitySet.velocityCount = 9;
        omp_set_num_threads(1); // a further thread would need memory of its own
    }
    ~MemoryBoundsTest() override { omp_set_num_threads(threadsBefore); }

    void SetUp() override {
        if (!addressSpaceIsOurs)
            GTEST_SKIP() << "the address space cannot be limited here";
    }

    /// The complaint about a text that must be refused within a few megabytes.
    std::string refusalOf(bool (*read)(const QString&), const std::string& text) const {
        const QString path = write("mesh.msh", text);
        const SpareMemory spare(8 * megabyte);
        EXPECT_FALSE(read(path)) << text;
        return problems(1);
    }

    /// A file that has this size and takes no room on the disk.
    QString hollowFile(qint64 bytes) const {
        const QString path = write("hollow", "");
        EXPECT_TRUE(QFile::resize(path, bytes));
        return path;
    }

    static void expectParts(const std::string& line, std::initializer_list<const char*> parts) {
        for (const char* part : parts)
            EXPECT_NE(line.find(part), std::string::npos) << part << " is not in: " << line;
    }

    const int threadsBefore = omp_get_max_threads();
};

std::string nodesThenFaces(const char* nodes, const char* faces, const char* face) {
    return std::string("(0 \"Node Section\")\n(10 (0 1 3 0 2))\n(10 (1 1 ") + nodes +
           " 1 2)\n(\n0 0 0\n1 0 0\n0 1 0\n))\n(13 (0 1 " + faces +
           " 0))\n(0 \"Interior\")\n(13 (3 1 1 2 2)(\n" + face + "\n)\n)\n";
}

std::string grid(int cells) {
    return GridMesh{cells, cells}.text();
}

std::string boxes() {
    support::makeMesh(support::boxOfTetrahedra(8, 8, 8), 6, support::sidesOfBox3D({8, 8, 8}));
    std::string text = support::meshFileText3D().toStdString();
    mesh.clear();
    takeProblems();
    return text;
}

} // namespace

TEST_F(MemoryBoundsTest, TheNumberOfNodesInAHeaderReservesNothing) {
    for (const char* count : {"7fffffff", "ffffffff", "fffffffffffffff", "10000000"}) {
        const std::string text = nodesThenFaces(count, "1", "1 2 1 2");
        ASSERT_LT(text.size(), 200U);
        for (const auto read : {readMesh2D, readMesh3D})
            expectParts(refusalOf(read, text), {"mesh.msh", "line 3", "room", count});
    }
}

TEST_F(MemoryBoundsTest, TheNumberOfFacesInAHeaderReservesNothing) {
    for (const char* count : {"7fffffff", "80000000", "fffffffffffffff", "10000000"})
        for (const auto read : {readMesh2D, readMesh3D})
            expectParts(refusalOf(read, nodesThenFaces("3", count, "1 2 1 2")),
                        {"mesh.msh", "line 9", "room", count});
}

TEST_F(MemoryBoundsTest, NodesAndCellsOfAFaceReserveNothing) {
    for (const char* face : {"1 ee6b2800 1 2", "1 2 ee6b2800 1", "1 2 1 ee6b2800", "1 2 1 7fffffff"})
        expectParts(refusalOf(readMesh2D, nodesThenFaces("3", "1", face)), {"mesh.msh", "line 12", face});
    for (const char* face : {"1 2 ee6b2800 1 2", "1 2 3 ee6b2800 1", "1 2 3 1 ee6b2800", "1 2 3 1 7fffffff"})
        expectParts(refusalOf(readMesh3D, nodesThenFaces("3", "1", face)), {"mesh.msh", "line 12", face});
}

TEST_F(MemoryBoundsTest, AMeshTakesAtMostAKilobyteForAByteOfItsFile) {
    velocitySet.velocityCount = 3;
    const std::string plane = grid(30);
    ASSERT_TRUE(readMesh2D(write("plane.msh", plane)) && buildGeometry2D());
    EXPECT_LT(mesh.bytes(), plane.size() * 1024);
    const std::string space = boxes();
    ASSERT_TRUE(readMesh3D(write("space.msh", space)) && buildGeometry3D());
    EXPECT_LT(mesh.bytes(), space.size() * 1024);
}

TEST_F(MemoryBoundsTest, AFileLargerThanTheMemoryIsRefusedInOneLine) {
    const QString path = hollowFile(qint64{1} << 30);
    for (const auto read : {readMesh2D, readMesh3D}) {
        const SpareMemory spare(8 * megabyte);
        EXPECT_FALSE(read(path));
        expectParts(problems(1), {"hollow", "not enough memory"});
        EXPECT_EQ(mesh.pointCount, 0);
    }
}

TEST_F(MemoryBoundsTest, AVelocityFileWithoutMemoryForItIsRefusedInOneLine) {
    const QString path = hollowFile(qint64{1} << 20);
    velocitySet.velocityCount = 5;
    const SpareMemory spare(megabyte / 2);
    std::vector<std::unique_ptr<char[]>> taken; // what earlier tests gave back may hold a whole file
    while (char* const block = new (std::nothrow) char[megabyte / 2])
        taken.emplace_back(block);
    EXPECT_FALSE(readVelocityFile(path));
    expectParts(problems(1), {"hollow", "not enough memory"});
    EXPECT_EQ(velocitySet.velocityCount, 5);
}

TEST_F(MemoryBoundsTest, RecordsThatDoNotFitAreRefusedByTheReader) {
    velocitySet.velocityCount = 27;
    const QString path = write("mesh.msh", grid(60));
    const SpareMemory spare(2 * megabyte);
    EXPECT_FALSE(readMesh2D(path));
    expectParts(problems(1), {"mesh.msh", "not enough memory"});
    EXPECT_EQ(mesh.totalFaceCount(), 0);
    EXPECT_TRUE(mesh.faces2D.empty());
}

TEST_F(MemoryBoundsTest, CellsThatDoNotFitAreRefusedByTheGeometry) {
    const std::string space = boxes();
    velocitySet.velocityCount = 27;
    ASSERT_TRUE(readMesh2D(write("plane.msh", grid(100))));
    {
        const SpareMemory spare(4 * megabyte);
        EXPECT_FALSE(buildGeometry2D());
    }
    expectParts(problems(1), {"plane.msh", "not enough memory for the cells"});
    EXPECT_EQ(mesh.totalFaceCount(), 0);
    ASSERT_TRUE(readMesh3D(write("space.msh", space)));
    {
        const SpareMemory spare(4 * megabyte);
        EXPECT_FALSE(buildGeometry3D());
    }
    expectParts(problems(1), {"space.msh", "not enough memory for the cells"});
    EXPECT_EQ(mesh.totalFaceCount(), 0);
}

} // namespace fluvane
