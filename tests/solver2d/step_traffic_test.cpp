// The bytes of a step against sums by hand on small meshes and against known figures on large ones.
#include "solver2d/step_traffic.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"

#include <gtest/gtest.h>

#include <string>

using namespace fluvane;

namespace {

class StepTraffic : public testing::Test {
protected:
    StepTraffic() { support::resetProcessState(); }
    ~StepTraffic() override { support::resetProcessState(); }

    static void solve(bool flow, bool heat, bool enthalpy = false) {
        caseSettings.flowOn = flow ? 1 : 0;
        caseSettings.heatOn = heat;
        caseSettings.thermalMode = enthalpy ? 1 : 0;
    }

    static void makeSquares(int n) {
        support::useD2Q9();
        support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
    }

    static void makeTetrahedra(int n) {
        const double size = n;
        support::useD3Q19();
        support::makeMesh(support::boxOfTetrahedra(n, n, n), 6, support::sidesOfBox3D({size, size, size}));
    }
};

void expectTraffic(const LoopTraffic& loop, const char* name, std::int64_t read, std::int64_t written,
                   std::int64_t allocated) {
    EXPECT_STREQ(loop.name, name);
    EXPECT_EQ(loop.read, read) << name;
    EXPECT_EQ(loop.written, written) << name;
    EXPECT_EQ(loop.allocated, allocated) << name;
}

constexpr std::int64_t line = 64;
constexpr std::int64_t row9 = 72;
constexpr std::int64_t row19 = 152;

// Four squares: 4 interior and 8 boundary faces; each cell has the 3 others as neighbours.
TEST_F(StepTraffic, CountsTheFlowOfFourSquaresAsByHand) {
    makeSquares(2);
    ASSERT_EQ(mesh.neighbourList.size(), 12u);
    solve(true, false);
    const auto loops = stepTraffic2D();
    expectTraffic(loops[0], "collide", 4 * (line + row9), 4 * 2 * row9, 4 * 2 * row9);
    expectTraffic(loops[1], "gradients", 4 * row9 + 5 * 4 + 12 * (4 + 16), 4 * 2 * row9, 4 * 2 * row9);
    expectTraffic(loops[2], "reconstruct", 4 * 2 * line + 4 * (line + 3 * row9), 4 * (line + row9), 4 * row9);
    expectTraffic(loops[3], "boundary", 8 * (2 * line + row9) + 4 * (2 * line + 3 * row9), 8 * (line + row9),
                  0);
    expectTraffic(loops[4], "recover", 12 * (line + row9), 12 * row9, 0);
    expectTraffic(loops[5], "update", 4 * 3 * line + (12 + 4) * row9, 4 * (2 * line + row9), 4 * row9);
}

TEST_F(StepTraffic, CountsRecordsOnceAndListsTwiceForFlowAndHeat) {
    makeSquares(2);
    solve(true, true);
    const auto loops = stepTraffic2D();
    expectTraffic(loops[0], "collide", 4 * (line + 2 * row9), 2 * 4 * 2 * row9, 2 * 4 * 2 * row9);
    expectTraffic(loops[1], "gradients", 2 * (4 * row9 + 5 * 4 + 12 * 20), 2 * 4 * 2 * row9,
                  2 * 4 * 2 * row9);
    expectTraffic(loops[2], "reconstruct", 4 * 2 * line + 4 * (line + 2 * 3 * row9), 4 * (line + 2 * row9),
                  4 * 2 * row9);
    expectTraffic(loops[3], "boundary", 8 * (2 * line + 2 * row9) + 4 * (2 * line + 2 * 3 * row9),
                  8 * (line + 2 * row9), 0);
    expectTraffic(loops[4], "recover", 12 * (line + 2 * row9), 12 * 2 * row9, 0);
    expectTraffic(loops[5], "update", 4 * 3 * line + (12 + 4) * 2 * row9, 4 * (2 * line + 2 * row9),
                  4 * 2 * row9);
}

TEST_F(StepTraffic, CountsTheCellsBesideTheBoundaryOnce) {
    makeSquares(3);
    solve(true, false);
    // 12 boundary faces, but only 8 of the 9 cells lie at the boundary.
    EXPECT_EQ(stepTraffic2D()[3].read, 12 * (2 * line + row9) + 8 * (2 * line + 3 * row9));
}

// One brick of five tetrahedra: 4 interior faces round the middle one and 12 boundary faces, three a corner
// tetrahedron; all five cells are neighbours of each other.
TEST_F(StepTraffic, CountsTheFlowOfFiveTetrahedraAsByHand) {
    makeTetrahedra(1);
    ASSERT_EQ(mesh.interiorFaceCount, 4);
    ASSERT_EQ(mesh.totalFaceCount(), 16);
    ASSERT_EQ(mesh.neighbourList.size(), 20u);
    solve(true, false);
    const auto loops = stepTraffic3D();
    expectTraffic(loops[0], "collide", 5 * (line + row19), 5 * 2 * row19, 5 * 2 * row19);
    expectTraffic(loops[1], "gradients", 5 * row19 + 6 * 4 + 20 * (4 + 24), 5 * 3 * row19, 5 * 3 * row19);
    expectTraffic(loops[2], "reconstruct", 4 * 2 * line + 5 * (line + 4 * row19), 4 * (line + row19),
                  4 * row19);
    expectTraffic(loops[3], "boundary", 12 * (3 * line + row19) + 4 * (2 * line + 4 * row19),
                  12 * (line + row19), 0);
    // Moments; centre, volume and previous values; two lines of four normals; areas; faces.
    expectTraffic(loops[4], "update", 5 * 6 * line + (16 + 5) * row19, 5 * (2 * line + row19), 5 * row19);
}

TEST_F(StepTraffic, CountsTheLineOfTheEnthalpyOf3DCells) {
    makeTetrahedra(1);
    solve(true, true);
    const LoopTraffic temperature = stepTraffic3D()[4];
    solve(true, true, true);
    const LoopTraffic enthalpy = stepTraffic3D()[4];
    EXPECT_EQ(enthalpy.read - temperature.read, 5 * line);
    EXPECT_EQ(enthalpy.written - temperature.written, 5 * line);
}

TEST_F(StepTraffic, TellsTheBytesWithAndWithoutReadingWhatIsOnlyWritten) {
    makeSquares(2);
    solve(true, false);
    const auto loops = stepTraffic2D();
    std::int64_t moved = 0, allocated = 0;
    for (const LoopTraffic& loop : loops) {
        moved += loop.read + loop.written;
        allocated += loop.allocated;
    }
    EXPECT_EQ(totalBytes(loops, RowStores::pastCaches), moved);
    EXPECT_EQ(totalBytes(loops, RowStores::ordinary), moved + allocated);
    EXPECT_EQ(allocated, (4 * (2 + 2 + 1) + 4) * row9);
}

TEST_F(StepTraffic, IsNothingWithoutFlowAndHeatAndOnTheEmptyMesh) {
    makeSquares(2);
    solve(false, false);
    EXPECT_EQ(totalBytes(stepTraffic2D(), RowStores::ordinary), 0);
    EXPECT_STREQ(stepTraffic2D()[5].name, "update");
    mesh.clear();
    solve(true, true);
    EXPECT_EQ(totalBytes(stepTraffic2D(), RowStores::ordinary), 0);
    EXPECT_EQ(totalBytes(stepTraffic3D(), RowStores::ordinary), 0);
}

double bytesPerCell(auto traffic) {
    return static_cast<double>(totalBytes(traffic(), RowStores::ordinary)) / mesh.cellCount;
}

TEST_F(StepTraffic, NeedsAboutThreeThousandBytesASquareOfALargeMesh) {
    makeSquares(200);
    solve(true, false);
    const double flow = bytesPerCell(stepTraffic2D);
    // Per square 2 faces and 12 neighbours: 424 + 604 + 952 + 416 + 680, but for the rim.
    EXPECT_NEAR(flow, 3076.0, 0.01 * 3076.0);
    solve(true, true);
    EXPECT_NEAR(bytesPerCell(stepTraffic2D) / flow, 1.69, 0.02);
}

TEST_F(StepTraffic, NeedsAboutFiveThousandBytesATetrahedronOfALargeMesh) {
    makeTetrahedra(16);
    solve(true, false);
    const double flow = bytesPerCell(stepTraffic3D);
    EXPECT_NEAR(flow, 5000.0, 400.0);
    solve(true, true);
    EXPECT_NEAR(bytesPerCell(stepTraffic3D) / flow, 1.79, 0.05);
}

} // namespace
