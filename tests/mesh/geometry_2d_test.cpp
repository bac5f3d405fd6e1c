// Cells, neighbours, area vectors and weights of 2D meshes.
#include "mesh/geometry_2d.h"

#include "mesh/fluent_reader_2d.h"
#include "mesh/mesh.h"
#include "plain_geometry_2d.h"
#include "support/captured_terminal.h"
#include "support/grid_mesh.h"
#include "support/mesh_builder.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <omp.h>
#include <random>

namespace fluvane {

namespace {

using Cells = std::vector<std::vector<int>>;

struct TestFace {
    int n0;
    int n1;
    int c0;
    int c1;
};

void setMesh(const std::vector<Vec2>& points, const std::vector<TestFace>& interior,
             const std::vector<TestFace>& boundary) {
    mesh.clear();
    mesh.sourceName = "hand.msh";
    mesh.pointCount = static_cast<std::int32_t>(points.size());
    for (const Vec2& p : points) {
        mesh.pointX.push_back(p.x);
        mesh.pointY.push_back(p.y);
    }
    std::vector<TestFace> all = interior;
    all.insert(all.end(), boundary.begin(), boundary.end());
    mesh.allocateFaces2D(static_cast<std::int32_t>(all.size()));
    for (std::size_t i = 0; i < all.size(); ++i) {
        FaceRecord& face = mesh.faces2D[i];
        face.n0 = all[i].n0;
        face.n1 = all[i].n1;
        face.c0 = all[i].c0;
        face.c1 = all[i].c1;
    }
    mesh.interiorFaceCount = static_cast<std::int32_t>(interior.size());
    if (boundary.empty())
        return;
    mesh.zoneCount = 1;
    mesh.zoneLastFace[0] = static_cast<std::int32_t>(all.size());
}

/// A mesh of anticlockwise cells; every face has its first cell on its left, or on its right when `turned`.
void setMeshOfCells(const std::vector<Vec2>& points, const Cells& cells, bool turned = false) {
    std::map<std::pair<int, int>, std::size_t> seen;
    std::vector<TestFace> faces;
    for (std::size_t c = 0; c < cells.size(); ++c) {
        for (std::size_t k = 0; k < cells[c].size(); ++k) {
            const int a = cells[c][k];
            const int b = cells[c][(k + 1) % cells[c].size()];
            const auto [at, isNew] = seen.try_emplace(std::minmax(a, b), faces.size());
            if (isNew)
                faces.push_back(turned ? TestFace{b, a, static_cast<int>(c), -1}
                                       : TestFace{a, b, static_cast<int>(c), -1});
            else
                faces[at->second].c1 = static_cast<int>(c);
        }
    }
    std::vector<TestFace> interior;
    std::vector<TestFace> boundary;
    for (const TestFace& face : faces)
        (face.c1 == -1 ? boundary : interior).push_back(face);
    setMesh(points, interior, boundary);
}

/// A distorted n x n grid in which every third square is cut into two triangles.
void setDistortedMesh(int n, bool turned = false) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> shift(-0.25, 0.25);
    std::vector<Vec2> points;
    for (int j = 0; j <= n; ++j)
        for (int i = 0; i <= n; ++i)
            points.push_back({i + shift(random), j + shift(random)});
    Cells cells;
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            const int a = j * (n + 1) + i;
            const int d = a + n + 1;
            if ((i + 2 * j) % 3 == 0) {
                cells.push_back({a, a + 1, d});
                cells.push_back({a + 1, d + 1, d});
            } else {
                cells.push_back({a, a + 1, d + 1, d});
            }
        }
    }
    setMeshOfCells(points, cells, turned);
}

std::vector<int> neighboursOf(std::size_t c) {
    const CellRecord& cell = mesh.cells2D[c];
    return {cell.neighbours.data(), cell.neighbours + cell.neighbourCount};
}

double pointAngle(const CellRecord& cell, int node) {
    return std::atan2(mesh.pointY[static_cast<std::size_t>(node)] - cell.yc,
                      mesh.pointX[static_cast<std::size_t>(node)] - cell.xc);
}

bool isClockwise(const CellRecord& cell) {
    double turn = 0.0;
    for (int k = 0; k < cell.nodeCount; ++k) {
        const double from = pointAngle(cell, cell.nodes[static_cast<std::size_t>(k)]);
        const double to = pointAngle(cell, cell.nodes[static_cast<std::size_t>((k + 1) % cell.nodeCount)]);
        double step = from - to;
        step += step <= 0.0 ? 2.0 * M_PI : 0.0;
        turn += step;
    }
    return std::abs(turn - 2.0 * M_PI) < 1e-9;
}

class Geometry2DTest : public CapturedTerminalTest {
protected:
    Geometry2DTest() { velocitySet.velocityCount = 1; }

    void readGrid(int nx, int ny) const {
        ASSERT_TRUE(readMesh2D(write("grid.msh", GridMesh{nx, ny}.text())));
    }

    /// Expects a refusal of which the one line holds all `parts`, and an empty mesh.
    static void expectRefused(std::initializer_list<const char*> parts) {
        EXPECT_FALSE(buildGeometry2D());
        const std::string problem = problems(1);
        for (const char* part : parts)
            EXPECT_NE(problem.find(part), std::string::npos) << problem << "\n  lacks: " << part;
        EXPECT_EQ(mesh.cellCount, 0);
        EXPECT_EQ(mesh.pointCount, 0);
        EXPECT_TRUE(mesh.cells2D.empty());
    }
};

const std::vector<Vec2> unitSquare = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

} // namespace

TEST_F(Geometry2DTest, SquareCellHasItsAreaClockwiseNodesAndOutwardVectors) {
    setMeshOfCells({{0, 0}, {2, 0}, {2, 2}, {0, 2}}, {{0, 1, 2, 3}});
    ASSERT_TRUE(buildGeometry2D());
    ASSERT_EQ(mesh.cellCount, 1);
    const CellRecord& cell = mesh.cells2D[0];
    EXPECT_EQ(cell.area, 4.0);
    EXPECT_EQ(cell.xc, 1.0);
    EXPECT_EQ(cell.yc, 1.0);
    EXPECT_TRUE(isClockwise(cell));
    // Angles as the cell looks back from its nodes: lower right, lower left, ... in descending order.
    EXPECT_EQ(cell.nodes, (std::array<std::int32_t, 4>{3, 2, 1, 0}));
    EXPECT_EQ(cell.S[0].y, -2.0);
    EXPECT_EQ(cell.S[1].x, 2.0);
    EXPECT_EQ(cell.S[2].y, 2.0);
    EXPECT_EQ(cell.S[3].x, -2.0);
    EXPECT_EQ(cell.S[3].y, 0.0);
}

TEST_F(Geometry2DTest, TriangleHasItsArea) {
    setMeshOfCells({{0, 0}, {3, 0}, {0, 4}}, {{0, 1, 2}});
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_DOUBLE_EQ(mesh.cells2D[0].area, 6.0);
    EXPECT_DOUBLE_EQ(mesh.cells2D[0].xc, 1.0);
    EXPECT_TRUE(isClockwise(mesh.cells2D[0]));
}

TEST_F(Geometry2DTest, CentreIsTheMeanOfTheNodesNotTheCentroid) {
    setMeshOfCells({{0, 0}, {4, 0}, {1, 1}, {0, 1}}, {{0, 1, 2, 3}});
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_EQ(mesh.cells2D[0].xc, 1.25);
    EXPECT_EQ(mesh.cells2D[0].yc, 0.5);
}

TEST_F(Geometry2DTest, NeighboursAreTheFaceNeighboursThenTheSecondRing) {
    readGrid(5, 5);
    ASSERT_TRUE(buildGeometry2D());
    ASSERT_EQ(mesh.cellCount, 25);
    // Cell 12 in the middle: its faces come in the order below, left, right, above.
    EXPECT_EQ(neighboursOf(12), (std::vector<int>{7, 11, 13, 17, 2, 6, 8, 10, 16, 14, 18, 22}));
    EXPECT_EQ(neighboursOf(0), (std::vector<int>{1, 5, 2, 6, 10}));
    for (std::size_t c = 0; c < 25; ++c) {
        std::vector<int> list = neighboursOf(c);
        std::sort(list.begin(), list.end());
        EXPECT_EQ(std::adjacent_find(list.begin(), list.end()), list.end());
        EXPECT_EQ(std::count(list.begin(), list.end(), static_cast<int>(c)), 0);
    }
}

TEST_F(Geometry2DTest, AreaVectorsOfEveryCellSumToZeroAndPointOutwards) {
    for (const bool turned : {false, true}) {
        setDistortedMesh(9, turned);
        ASSERT_TRUE(buildGeometry2D());
        for (const CellRecord& cell : mesh.cells2D) {
            Vec2 sum;
            for (std::size_t k = 0; k < static_cast<std::size_t>(cell.faceCount); ++k) {
                const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(cell.faces[k])];
                sum.x += cell.S[k].x;
                sum.y += cell.S[k].y;
                EXPECT_GT((face.xf - cell.xc) * cell.S[k].x + (face.yf - cell.yc) * cell.S[k].y, 0.0);
                EXPECT_NEAR(std::hypot(cell.S[k].x, cell.S[k].y), face.length, 1e-14);
            }
            EXPECT_NEAR(sum.x, 0.0, 1e-15);
            EXPECT_NEAR(sum.y, 0.0, 1e-15);
            EXPECT_TRUE(isClockwise(cell));
        }
        EXPECT_EQ(problems(0), "");
    }
}

TEST_F(Geometry2DTest, AreasFillTheDomain) {
    readGrid(7, 4);
    ASSERT_TRUE(buildGeometry2D());
    double sum = 0.0;
    for (const CellRecord& cell : mesh.cells2D)
        sum += cell.area;
    EXPECT_DOUBLE_EQ(sum, 28.0);
}

TEST_F(Geometry2DTest, WeightsGiveTheGradientOfALinearFieldExactly) {
    setDistortedMesh(8);
    ASSERT_TRUE(buildGeometry2D());
    const auto phi = [](const CellRecord& cell) { return 3.0 * cell.xc - 2.0 * cell.yc + 7.0; };
    for (const CellRecord& cell : mesh.cells2D) {
        Vec2 gradient;
        for (std::int32_t j = 0; j < cell.neighbourCount; ++j) {
            const double difference =
                phi(cell) - phi(mesh.cells2D[static_cast<std::size_t>(cell.neighbours[j])]);
            gradient.x += cell.lsq[j].x * difference;
            gradient.y += cell.lsq[j].y * difference;
        }
        EXPECT_NEAR(gradient.x, 3.0, 1e-11);
        EXPECT_NEAR(gradient.y, -2.0, 1e-11);
    }
}

TEST_F(Geometry2DTest, WeightsFollowTheInverseSquareOfTheDistance) {
    // Cell 0 at (0.5, 0.5) with neighbours at (2, 0.5) and (0.5, 1.5): the system is diagonal.
    setMeshOfCells({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {3, 0}, {3, 1}, {1, 2}, {0, 2}},
                   {{0, 1, 2, 3}, {1, 4, 5, 2}, {3, 2, 6, 7}});
    ASSERT_TRUE(buildGeometry2D());
    ASSERT_EQ(neighboursOf(0), (std::vector<int>{1, 2}));
    EXPECT_DOUBLE_EQ(mesh.cells2D[0].lsq[0].x, 1.0 / -1.5);
    EXPECT_EQ(mesh.cells2D[0].lsq[0].y, 0.0);
    EXPECT_DOUBLE_EQ(mesh.cells2D[0].lsq[1].y, -1.0);
}

TEST_F(Geometry2DTest, FacesTakeTheirCellsAreaVectors) {
    readGrid(2, 1);
    ASSERT_TRUE(buildGeometry2D());
    const FaceRecord& interior = mesh.faces2D[0];
    EXPECT_EQ(interior.S0x, 1.0);
    EXPECT_EQ(interior.S1x, -1.0);
    EXPECT_EQ(interior.length, 1.0);
    EXPECT_EQ(interior.xf, 1.0);
    EXPECT_EQ(interior.yf, 0.5);
}

TEST_F(Geometry2DTest, BoundaryFaceHasNoSecondCellAndNoSecondVector) {
    readGrid(2, 1);
    ASSERT_TRUE(buildGeometry2D());
    for (std::int32_t i = mesh.interiorFaceCount; i < mesh.totalFaceCount(); ++i) {
        const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
        EXPECT_EQ(face.c1, -1);
        EXPECT_EQ(face.S1x, 0.0);
        EXPECT_EQ(face.S1y, 0.0);
        EXPECT_NEAR(std::hypot(face.S0x, face.S0y), 1.0, 1e-15);
    }
}

TEST_F(Geometry2DTest, NodesLevelWithTheCentreAreOrderedByAcos) {
    // A diamond: two nodes level with the centre, two right above and below.
    setMeshOfCells({{1, 0}, {0, 1}, {-1, 0}, {0, -1}}, {{0, 1, 2, 3}});
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_EQ(mesh.cells2D[0].area, 2.0);
    // Angles 3 pi / 2 (above), pi (right), pi / 2 (below), 0 (left).
    EXPECT_EQ(mesh.cells2D[0].nodes, (std::array<std::int32_t, 4>{1, 0, 3, 2}));
}

// Deliberate: 2 pi is the truncated 6.2831852, below the angle pi of a node level with the centre.
TEST_F(Geometry2DTest, NodeJustAboveTheLevelOfTheCentreComesAfterTheOneJustBelow) {
    setMeshOfCells({{2, 0x1p-26}, {-2, 1}, {-2, -1}, {2, -0x1p-26}}, {{0, 1, 2, 3}});
    ASSERT_TRUE(buildGeometry2D());
    ASSERT_EQ(mesh.cells2D[0].yc, 0.0);
    EXPECT_EQ(mesh.cells2D[0].nodes, (std::array<std::int32_t, 4>{1, 3, 0, 2}));
    problems(1);
}

TEST_F(Geometry2DTest, NodeAtTheCentreHasTheAngleZero) {
    setMeshOfCells({{0, 0}, {3, 0}, {1, 1}, {0, 3}}, {{0, 1, 2, 3}});
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_EQ(mesh.cells2D[0].xc, 1.0);
    EXPECT_EQ(mesh.cells2D[0].yc, 1.0);
    EXPECT_EQ(mesh.cells2D[0].nodes[3], 2);
    EXPECT_TRUE(std::isfinite(mesh.cells2D[0].area));
}

TEST_F(Geometry2DTest, SingularSystemsGetZeroWeightsAndOneProblemLine) {
    readGrid(4, 1); // all centres on one line
    ASSERT_TRUE(buildGeometry2D());
    const std::string problem = problems(1);
    EXPECT_NE(problem.find("grid.msh"), std::string::npos);
    EXPECT_NE(problem.find("4 in all"), std::string::npos);
    for (const CellRecord& cell : mesh.cells2D)
        for (std::int32_t j = 0; j < cell.neighbourCount; ++j) {
            EXPECT_EQ(cell.lsq[j].x, 0.0);
            EXPECT_EQ(cell.lsq[j].y, 0.0);
        }
}

TEST_F(Geometry2DTest, SlantedLinesOfCellsAreSingularToo) {
    std::vector<Vec2> points;
    Cells cells;
    for (int i = 0; i <= 6; ++i) {
        points.push_back({0.3 * i, 0.1 * i});
        points.push_back({0.3 * i - 0.1, 0.1 * i + 0.3});
        if (i > 0)
            cells.push_back({2 * i - 2, 2 * i, 2 * i + 1, 2 * i - 1});
    }
    setMeshOfCells(points, cells);
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_NE(problems(1).find("6 in all"), std::string::npos);
    EXPECT_EQ(mesh.cells2D[2].lsq[0].x, 0.0);
}

TEST_F(Geometry2DTest, ZonesWithoutFacesOfThisDimensionHaveNoSmallestLength) {
    mesh.clear();
    mesh.zoneCount = 1;
    mesh.zoneLastFace[0] = 12;
    EXPECT_EQ(minFaceLength2D(), 10000.0);
}

TEST_F(Geometry2DTest, StretchedCellsAreNotSingular) {
    readGrid(4, 4);
    for (double& y : mesh.pointY)
        y *= 1e-6;
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_EQ(problems(0), "");
}

// Deliberate: a face's second cell is looked at only when its first cell does not raise the maximum.
TEST_F(Geometry2DTest, SecondCellIsNotCountedWhenTheFirstRaisesTheMaximum) {
    setMesh(unitSquare, {{0, 1, 1, 2}, {1, 2, 0, 1}}, {});
    EXPECT_EQ(countCells2D(), 2);
    expectRefused({"hand.msh", "cell 3", "cells from 1 to 2"});

    setMesh(unitSquare, {{0, 1, 1, 2}, {1, 2, 0, 2}}, {});
    EXPECT_EQ(countCells2D(), 3);
}

TEST_F(Geometry2DTest, CellCountIsOneWithoutInteriorFaces) {
    setMeshOfCells(unitSquare, {{0, 1, 2, 3}});
    EXPECT_EQ(countCells2D(), 1);
}

TEST_F(Geometry2DTest, BoundaryCellBeyondTheCountedOnesIsRefusedWithItsLine) {
    readGrid(3, 2);
    const auto first = static_cast<std::size_t>(mesh.interiorFaceCount);
    mesh.faces2D[first + 1].c0 = 6;
    const std::string line = "line " + std::to_string(mesh.faceLine(mesh.interiorFaceCount + 1));
    expectRefused({"grid.msh", line.c_str(), "cell 7", "from 1 to 6"});
}

TEST_F(Geometry2DTest, IndicesThatCannotBeFollowedAreRefused) {
    const auto broken = [this](auto change) {
        readGrid(3, 2);
        change(mesh.faces2D[0]);
        expectRefused({"grid.msh", "line "});
    };
    broken([](FaceRecord& face) { face.n0 = 12; });
    broken([](FaceRecord& face) { face.n1 = -1; });
    broken([](FaceRecord& face) { face.c0 = -1; });
    broken([](FaceRecord& face) { face.c1 = -1; });
    readGrid(3, 2);
    mesh.faces2D[0].c0 = std::numeric_limits<std::int32_t>::max();
    expectRefused({"grid.msh", "cell 2147483648"});
}

TEST_F(Geometry2DTest, FifthFaceOrNodeOfACellIsRefusedWithLineAndCell) {
    std::vector<Vec2> pentagon;
    for (int k = 0; k < 5; ++k)
        pentagon.push_back({std::cos(k * 1.2566), std::sin(k * 1.2566)});
    setMeshOfCells(pentagon, {{0, 1, 2, 3, 4}});
    mesh.faceLineStarts = {{0, 40}};
    expectRefused({"hand.msh", "line 44", "cell 1", "four"});
}

TEST_F(Geometry2DTest, FacesWithoutALengthAreSaidSinceTheTimeStepFollowsTheShortest) {
    // Two squares of which the second is drawn to a point: two of its nodes lie in one place.
    setMeshOfCells({{0, 0}, {1, 0}, {1, 1}, {0, 1}, {2, 0}, {2, 0}}, {{0, 1, 2, 3}, {1, 4, 5, 2}});
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_EQ(minFaceLength2D(), 0.0);
    EXPECT_GT(mesh.cells2D[1].area, 0.0);
    const std::string all = problems(2);
    EXPECT_NE(all.find("cell 2: a face has no length"), std::string::npos) << all;
    EXPECT_NE(all.find("(1 in all)"), std::string::npos) << all;
}

TEST_F(Geometry2DTest, CellNumberThatNoFaceNamesIsRefused) {
    setMesh(unitSquare, {{0, 1, 0, 3}, {1, 2, 0, 1}}, {{2, 3, 0, -1}});
    expectRefused({"hand.msh", "cell 3", "a face that names the cell"});
}

TEST_F(Geometry2DTest, CellsThatDoNotCloseAreKeptAndSaid) {
    // One face is turned round, so the cell gets three of its four nodes.
    setMesh(unitSquare, {}, {{0, 1, 0, -1}, {1, 2, 0, -1}, {2, 3, 0, -1}, {0, 3, 0, -1}});
    EXPECT_TRUE(buildGeometry2D());
    EXPECT_NE(problems(2).find("do not run round the cell"), std::string::npos);
    EXPECT_EQ(mesh.cells2D[0].nodeCount, 3);
}

TEST_F(Geometry2DTest, CellsOfTwoNodesKeepTheAreaUnset) {
    setMesh(unitSquare, {{0, 1, 0, 1}}, {{1, 2, 0, -1}, {2, 3, 1, -1}});
    EXPECT_TRUE(buildGeometry2D());
    EXPECT_EQ(mesh.cells2D[0].area, 0.0);
    EXPECT_EQ(mesh.cells2D[0].nodeCount, 2);
    problems(2);
}

TEST_F(Geometry2DTest, SmallestFaceLengthStartsFromTenThousand) {
    readGrid(2, 2);
    mesh.pointX = {0, 2, 4, 0, 2, 4, 0, 2, 4};
    mesh.pointY = {0, 0, 0, 0.5, 0.5, 0.5, 3, 3, 3};
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_EQ(minFaceLength2D(), 0.5);
    for (double& x : mesh.pointX)
        x *= 1e6;
    for (double& y : mesh.pointY)
        y *= 1e6;
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_EQ(minFaceLength2D(), 10000.0);
}

TEST_F(Geometry2DTest, UnusedPointsChangeNothing) {
    readGrid(2, 2);
    mesh.pointX.insert(mesh.pointX.end(), {0.1, 0.1});
    mesh.pointY.insert(mesh.pointY.end(), {0.1, 0.1});
    mesh.pointCount += 2;
    ASSERT_TRUE(buildGeometry2D());
    EXPECT_EQ(minFaceLength2D(), 1.0);
    EXPECT_EQ(mesh.cells2D[3].xc, 1.5);
}

TEST_F(Geometry2DTest, EmptyMeshStaysEmpty) {
    EXPECT_TRUE(buildGeometry2D());
    EXPECT_EQ(mesh.cellCount, 0);
    EXPECT_EQ(minFaceLength2D(), 10000.0);
    EXPECT_EQ(problems(0), "");
}

/// Compares the present mesh bit for bit.
void expectPlainGeometry() {
    const std::vector<testing::PlainCell2D> plain = testing::plainCells2D();
    for (std::size_t i = 0; i < plain.size(); ++i) {
        const testing::PlainCell2D& a = plain[i];
        const CellRecord& b = mesh.cells2D[i];
        ASSERT_TRUE(std::equal(a.faces.begin(), a.faces.end(), b.faces.begin())) << i;
        ASSERT_EQ(a.nodes, (std::vector<std::int32_t>{b.nodes.begin(), b.nodes.begin() + b.nodeCount})) << i;
        ASSERT_EQ(a.neighbours,
                  (std::vector<std::int32_t>{b.neighbours.data(), b.neighbours + b.neighbourCount}));
        ASSERT_TRUE(a.xc == b.xc && a.yc == b.yc && a.area == b.area) << i;
        for (std::size_t k = 0; k < a.S.size(); ++k) {
            ASSERT_TRUE(a.S[k].x == b.S[k].x && a.S[k].y == b.S[k].y) << i;
            const FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(a.faces[k])];
            const bool first = face.c0 == static_cast<std::int32_t>(i);
            ASSERT_TRUE(a.S[k].x == (first ? face.S0x : face.S1x)) << i;
            ASSERT_TRUE(a.S[k].y == (first ? face.S0y : face.S1y)) << i;
        }
        for (std::size_t j = 0; j < a.lsq.size(); ++j)
            ASSERT_TRUE(a.lsq[j].x == b.lsq[j].x && a.lsq[j].y == b.lsq[j].y) << i;
    }
    for (const FaceRecord& face : mesh.faces2D) {
        const Vec2 p0 = testing::plainPoint(face.n0), p1 = testing::plainPoint(face.n1);
        const double dx = p0.x - p1.x, dy = p0.y - p1.y;
        ASSERT_EQ(face.xf, (p0.x + p1.x) / 2);
        ASSERT_EQ(face.yf, (p0.y + p1.y) / 2);
        ASSERT_EQ(face.length, std::sqrt(dx * dx + dy * dy));
    }
}

TEST_F(Geometry2DTest, GeometryIsThatOfThePlainestCodeBitForBit) {
    for (const bool triangles : {false, true}) {
        for (const double amplitude : {0.0, 0.06, 1e-9}) { // nodes level with centres, anywhere, nearly level
            support::PlaneCells plane =
                triangles ? support::cutRectangles(23, 17) : support::rectangles(23, 17);
            support::distort(plane, amplitude);
            support::shuffleCells(plane, 3);
            support::makeMesh(plane, 4, support::sidesOfBox());
            expectPlainGeometry();
        }
    }
    support::makeMesh(support::ring(9, 40, 0.9, 3.0), 2,
                      [](double x, double y) { return x * x + y * y > 4; });
    expectPlainGeometry();
}

TEST_F(Geometry2DTest, OrderOfNodesSurvivesExtremeSizes) {
    for (const double size : {1e-170, 1e-150, 1e-100, 1e100, 1e150, 1e160}) {
        support::PlaneCells plane = support::rectangles(3, 3);
        support::distort(plane, 0.05);
        for (std::size_t i = 0; i < plane.x.size(); ++i) {
            plane.x[i] *= size;
            plane.y[i] *= size;
        }
        support::makeMesh(plane, 4, support::sidesOfBox(size, size));
        const std::vector<testing::PlainCell2D> plain = testing::plainCells2D();
        for (std::size_t i = 0; i < plain.size(); ++i)
            EXPECT_TRUE(
                std::equal(plain[i].nodes.begin(), plain[i].nodes.end(), mesh.cells2D[i].nodes.begin()))
                << size << ' ' << i;
    }
}

TEST_F(Geometry2DTest, ResultIsTheSameForEveryThreadCount) {
    const auto everything = [](int threads) {
        omp_set_num_threads(threads);
        setDistortedMesh(20);
        EXPECT_TRUE(buildGeometry2D());
        std::vector<double> values;
        for (const CellRecord& cell : mesh.cells2D) {
            values.insert(values.end(), {cell.xc, cell.yc, cell.area, double(cell.neighbourCount)});
            for (std::size_t k = 0; k < 4; ++k)
                values.insert(values.end(), {cell.S[k].x, cell.S[k].y, double(cell.nodes[k])});
            for (std::int32_t j = 0; j < cell.neighbourCount; ++j)
                values.insert(values.end(), {cell.lsq[j].x, cell.lsq[j].y, double(cell.neighbours[j])});
        }
        for (const FaceRecord& face : mesh.faces2D)
            values.insert(values.end(),
                          {face.xf, face.yf, face.length, face.S0x, face.S0y, face.S1x, face.S1y});
        return values;
    };
    const int before = omp_get_max_threads();
    const std::vector<double> one = everything(1);
    EXPECT_EQ(one, everything(2));
    EXPECT_EQ(one, everything(7));
    omp_set_num_threads(before);
}

} // namespace fluvane
