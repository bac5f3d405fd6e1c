// Counts, lines and allocation of the mesh.
#include "mesh/mesh.h"

#include "support/captured_terminal.h"
#include "support/mesh_builder.h"

namespace fluvane {

using MeshTest = CapturedTerminalTest;

TEST_F(MeshTest, TotalFaceCountIsTheEndOfTheLastZoneOrTheInteriorCount) {
    mesh.interiorFaceCount = 5;
    EXPECT_EQ(mesh.totalFaceCount(), 5);
    mesh.zoneCount = 2;
    mesh.zoneLastFace[0] = 8;
    mesh.zoneLastFace[1] = 12;
    EXPECT_EQ(mesh.totalFaceCount(), 12);
}

TEST_F(MeshTest, FaceLineCountsFromTheStartOfTheFacesZone) {
    EXPECT_EQ(mesh.faceLine(0), 0);
    mesh.faceLineStarts = {{0, 10}, {3, 20}};
    EXPECT_EQ(mesh.faceLine(0), 10);
    EXPECT_EQ(mesh.faceLine(2), 12);
    EXPECT_EQ(mesh.faceLine(3), 20);
    EXPECT_EQ(mesh.faceLine(7), 24);
}

TEST_F(MeshTest, RecordsHoldSlicesOfThePoolsForTheVelocitySetAsItStands) {
    velocitySet.velocityCount = 9;
    mesh.allocateFaces2D(3);
    mesh.allocateCells2D(4);
    EXPECT_EQ(mesh.cellCount, 4);
    EXPECT_EQ(mesh.faces2D[2].gFace, mesh.facePools.gFace.data() + 18);
    EXPECT_EQ(mesh.facePools.gFace.size(), 27U);
    EXPECT_EQ(mesh.cells2D[3].fTildePlus, mesh.cellPools.fTildePlus.data() + 27);
    EXPECT_EQ(mesh.cells2D[3].gradGBarPlus.y, mesh.cellPools.gradGBarPlus.data() + 63);
    EXPECT_EQ(mesh.cellPools.gradGBarPlus.size(), 72U);
    EXPECT_TRUE(mesh.matchesVelocitySet());
    velocitySet.velocityCount = 7;
    EXPECT_FALSE(mesh.matchesVelocitySet());
}

TEST_F(MeshTest, NewRecordsAreConnectedToNothing) {
    velocitySet.velocityCount = 1;
    mesh.allocateFaces2D(1);
    mesh.allocateCells2D(1);
    EXPECT_EQ(mesh.faces2D[0].c1, -1);
    EXPECT_EQ(mesh.cells2D[0].faceCount, 0);
    EXPECT_EQ(mesh.cells2D[0].nodes[3], -1);
    EXPECT_EQ(mesh.cells2D[0].faces[3], -1);
}

TEST_F(MeshTest, RecordsWithoutAVelocitySetHaveEmptySlices) {
    velocitySet.velocityCount = -1;
    mesh.allocateFaces2D(2);
    mesh.allocateCells2D(2);
    EXPECT_TRUE(mesh.facePools.fFace.empty());
    EXPECT_TRUE(mesh.cellPools.fTilde.empty());
}

TEST_F(MeshTest, NeighbourSlicesFollowTheOffsets) {
    mesh.allocateCells2D(3);
    mesh.setNeighbours2D({0, 2, 2, 5}, HugeArray<std::int32_t>(5));
    EXPECT_EQ(mesh.cells2D[1].neighbours, mesh.neighbourList.data() + 2);
    EXPECT_EQ(mesh.cells2D[2].neighbours, mesh.neighbourList.data() + 2);
    EXPECT_EQ(mesh.cells2D[2].lsq, mesh.lsqList2D.data() + 2);
    EXPECT_EQ(mesh.lsqList2D.size(), 5U);
    EXPECT_EQ(mesh.lsqList2D[4].x, 0.0);
}

TEST_F(MeshTest, ACellOfQuadrilateralsTakesAtMost1760Bytes) {
    support::useD2Q9();
    support::makeMesh(support::rectangles(200, 200), 4, support::sidesOfBox());
    // 1008 in the pools, 208 in the cell's record, 2 x 136 in those of its faces, 12 x 20 in the lists.
    EXPECT_LE(double(mesh.bytes()) / mesh.cellCount, 1760.0);
    EXPECT_GE(double(mesh.bytes()) / mesh.cellCount, 1008.0 + 208.0 + 2.0 * 136.0 + 230.0);
}

TEST_F(MeshTest, BytesGrowWithWhatIsThere) {
    velocitySet.velocityCount = 9;
    EXPECT_EQ(Mesh{}.bytes(), 0U);
    mesh.pointX = {0.0, 1.0};
    EXPECT_EQ(mesh.bytes(), 16U);
    mesh.allocateCells2D(10);
    EXPECT_EQ(mesh.bytes(), 16U + 10 * (208 + 10 * 9 * 8));
    mesh.allocateFaces2D(5);
    EXPECT_EQ(mesh.bytes(), 16U + 10 * (208 + 10 * 9 * 8) + 5 * (128 + 2 * 9 * 8));
}

TEST_F(MeshTest, ClearedMeshIsEmpty) {
    velocitySet.velocityCount = 9;
    mesh.pointCount = 1;
    mesh.pointX = {1.0};
    mesh.zoneCount = 1;
    mesh.zoneLastFace[0] = 2;
    mesh.zoneNames = {"top"};
    mesh.allocateFaces2D(2);
    mesh.allocateCells2D(2);
    mesh.clear();
    EXPECT_EQ(mesh.pointCount, 0);
    EXPECT_EQ(mesh.cellCount, 0);
    EXPECT_EQ(mesh.totalFaceCount(), 0);
    EXPECT_TRUE(mesh.pointX.empty());
    EXPECT_TRUE(mesh.zoneNames.empty());
    EXPECT_TRUE(mesh.faces2D.empty());
    EXPECT_TRUE(mesh.cellPools.gradFBarPlus.empty());
}

TEST(RecordOutsideTheMesh, HasItsOwnFieldsAndNoRows) {
    mesh.clear();
    FaceRecord face;
    EXPECT_EQ(face.thermalKind, 0);
    EXPECT_EQ(face.flowKind, 0);
    EXPECT_EQ(face.q, 0.0);
    EXPECT_EQ(face.c1, -1);
    EXPECT_EQ(face.n0, -1);
    EXPECT_EQ(face.S1x, 0.0);
    face.fl = 0.5;
    EXPECT_EQ(face.fl, 0.0);
    EXPECT_EQ(face.fFace.data(), nullptr);
    face.q = 2.0;
    const FaceRecord copy = face;
    face.q = 3.0;
    EXPECT_EQ(copy.q, 2.0);
    const CellRecord cell;
    EXPECT_EQ(cell.rho, 1.0);
    EXPECT_EQ(cell.nodes.data(), nullptr);
    EXPECT_EQ(cell.faces[3], -1);
    EXPECT_EQ(cell.fTilde.data(), nullptr);
    const CellRecord3D cell3D;
    EXPECT_EQ(cell3D.nodes[7], -1);
    EXPECT_EQ(cell3D.gradFBarPlus.z.data(), nullptr);
}

} // namespace fluvane
