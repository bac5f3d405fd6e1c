// Mesh dumps, byte for byte.
#include "output/dumps.h"

#include "small_mesh.h"

namespace fluvane {
namespace {

using testing::makeSmallMesh;
using testing::readFile;

/// Runs each test in a working directory of its own.
class Dumps : public testing::OutputTest {
protected:
    void SetUp() override {
        OutputTest::SetUp();
        ASSERT_TRUE(QDir::setCurrent(folder.path()));
    }
    void TearDown() override {
        QDir::setCurrent(previous);
        OutputTest::TearDown();
    }

    /// One tetrahedron on the axes, its faces all on the boundary.
    void makeTetrahedron() {
        caseSettings.is3D = true;
        mesh.pointCount = 4;
        mesh.pointX = {0.0, 1.0, 0.0, 0.0};
        mesh.pointY = {0.0, 0.0, 1.0, 0.0};
        mesh.pointZ = {0.0, 0.0, 0.0, 0.25};
        mesh.faces3D = HugeArray<FaceRecord3D>(4);
        mesh.zoneCount = 1;
        mesh.zoneLastFace[0] = 4;
        const double areas[] = {0.5, 0.125, 0.125, 0.5};
        for (std::size_t i = 0; i < 4; ++i) {
            mesh.faces3D[i].c0 = 0;
            mesh.faces3D[i].area = areas[i];
        }
        mesh.cells3D = HugeArray<CellRecord3D>(1);
        mesh.cellCount = 1;
        CellRecord3D& cell = mesh.cells3D[0];
        cell.volume = 1.0 / 24.0;
        cell.faceCount = 4;
        cell.faces = {3, 2, 1, 0, -1, -1};
        cell.normals[0] = {0.25, 0.25, 0.5};
        cell.normals[1] = {-1.0, 0.0, 0.0};
        cell.normals[2] = {0.0, -1.0, 0.0};
        cell.normals[3] = {0.0, 0.0, -1.0};
    }

    QString previous = QDir::currentPath();
};

TEST_F(Dumps, PointsOf2DHaveALiteralZero) {
    makeSmallMesh();
    ASSERT_TRUE(dumpPoints());
    EXPECT_EQ(readFile("point.txt"), "point 0,0,0\r\npoint 1,0,0\r\npoint 1,1,0\r\npoint 0,1,0\r\n"
                                     "point 2,0.1,0\r\n");
}

TEST_F(Dumps, PointsOf3DHaveTheirThirdCoordinate) {
    makeTetrahedron();
    ASSERT_TRUE(dumpPoints());
    EXPECT_EQ(readFile("point.txt"), "point 0,0,0\r\npoint 1,0,0\r\npoint 0,1,0\r\npoint 0,0,0.25\r\n");
}

TEST_F(Dumps, CellsOf2DListNeighboursAndWeights) {
    makeSmallMesh();
    mesh.setNeighbours2D({0, 2, 3}, HugeArray<std::int32_t>(3));
    mesh.cells2D[0].neighbourCount = 2;
    mesh.cells2D[1].neighbourCount = 1;
    mesh.cells2D[0].neighbours[0] = 1;
    mesh.cells2D[0].lsq[0] = {-1.0 / 3.0, 0.5};
    mesh.cells2D[0].neighbours[1] = 7;
    mesh.cells2D[0].lsq[1] = {1e-7, -2.0};
    mesh.cells2D[1].neighbours[0] = 0;
    mesh.cells2D[1].lsq[0] = {1.0, 0.0};
    ASSERT_TRUE(dumpCells());
    EXPECT_EQ(readFile("cell.txt"), "m=0   cells_num=2\r\n"
                                    "   k=0    1   -0.333333,0.5\r\n"
                                    "   k=1    7   1e-07,-2\r\n"
                                    "m=1   cells_num=1\r\n"
                                    "   k=0    0   1,0\r\n");
}

TEST_F(Dumps, CellsOf3DListNormalsAndTheClosureSum) {
    makeTetrahedron();
    ASSERT_TRUE(dumpCells());
    EXPECT_EQ(readFile("cell.txt"), "m=0    V=0.0416667   faces_num=4\r\n"
                                    "  3   0.25,0.25,0.5\r\n"
                                    "  2   -1,0,0\r\n"
                                    "  1   0,-1,0\r\n"
                                    "  0   0,0,-1\r\n"
                                    "  Intergal=0,0,-0.25\r\n");
}

TEST_F(Dumps, FacesOf2DTakeTheZoneNameAtTheFaceIndexAndNoneBeyondTheTable) {
    makeSmallMesh();
    FaceRecord& face = mesh.faces2D[1];
    face.rho = 1.0;
    face.u = 0.1;
    face.v = -0.2;
    face.fl = 0.5;
    face.H = 3.0;
    ASSERT_TRUE(dumpFaces());
    EXPECT_EQ(readFile("face.txt"), QByteArray("m=0,    WALL   0   0   0 0 0\r\n"
                                               "m=1,    Einlaß   1   0.1   -0.2 0.5 3\r\n"
                                               "m=2,       0   0   0 0 0\r\n"
                                               "m=3,       0   0   0 0 0\r\n"
                                               "m=4,       0   0   0 0 0\r\n"
                                               "m=5,       0   0   0 0 0\r\n"));
}

TEST_F(Dumps, FacesOf3DPrintMinusOneWhereThereIsNoNeighbour) {
    makeTetrahedron();
    mesh.faces3D[1].c1 = 5;
    mesh.zoneLastFace[0] = 2;
    ASSERT_TRUE(dumpFaces());
    EXPECT_EQ(readFile("face.txt"), "m=0,  0  -1  0.5\r\nm=1,  0  5  0.125\r\n");
}

TEST_F(Dumps, AreEmptyForAnEmptyMesh) {
    for (const bool is3D : {false, true}) {
        caseSettings.is3D = is3D;
        ASSERT_TRUE(dumpPoints() && dumpCells() && dumpFaces());
        for (const char* name : {"point.txt", "cell.txt", "face.txt"})
            EXPECT_EQ(readFile(name), "") << name;
    }
}

TEST_F(Dumps, AreEmptyWhenTheMeshHasTheOtherDimension) {
    makeSmallMesh();
    caseSettings.is3D = true;
    ASSERT_TRUE(dumpPoints() && dumpCells() && dumpFaces());
    for (const char* name : {"point.txt", "cell.txt", "face.txt"})
        EXPECT_EQ(readFile(name), "") << name;
}

TEST_F(Dumps, OverwriteEarlierFiles) {
    makeSmallMesh();
    ASSERT_TRUE(dumpPoints() && dumpCells() && dumpFaces());
    mesh.clear();
    ASSERT_TRUE(dumpPoints() && dumpCells() && dumpFaces());
    for (const char* name : {"point.txt", "cell.txt", "face.txt"})
        EXPECT_EQ(readFile(name), "") << name;
}

TEST_F(Dumps, FailSilentlyWhereAFolderIsInTheWay) {
    makeSmallMesh();
    QDir().mkdir("point.txt");
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(dumpPoints());
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace fluvane
