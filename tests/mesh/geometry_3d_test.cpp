// Cells, neighbours, normals, volumes and weights of 3D meshes.
#include "mesh/geometry_3d.h"

#include "mesh/mesh.h"
#include "support/captured_terminal.h"
#include "support/hand_mesh_3d.h"
#include "support/mesh_builder_3d.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <omp.h>
#include <random>

namespace fluvane {

namespace {

/// A box of tetrahedra whose points inside and outside are moved at random.
void setDistortedBox(int nx, int ny, int nz, unsigned seed = 3) {
    support::Tetrahedra box = support::boxOfTetrahedra(nx, ny, nz);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> shift(-0.15, 0.15);
    for (Vec3& p : box.points)
        p = {p.x + shift(random), p.y + shift(random), p.z + shift(random)};
    support::shuffleCells(box, seed);
    support::makeMesh(box, 1, [](Vec3) { return 0; });
}

std::vector<int> neighboursOf(std::size_t c) {
    const CellRecord3D& cell = mesh.cells3D[c];
    return {cell.neighbours.data(), cell.neighbours + cell.neighbourCount};
}

Vec3 point(std::int32_t p) {
    const auto i = static_cast<std::size_t>(p);
    return {mesh.pointX[i], mesh.pointY[i], mesh.pointZ[i]};
}

const FaceRecord3D& faceOf(const CellRecord3D& cell, std::size_t slot) {
    return mesh.faces3D[static_cast<std::size_t>(cell.faces[slot])];
}

/// The rule for a unit normal, written out.
Vec3 plainNormal(const CellRecord3D& cell, const FaceRecord3D& face) {
    const auto [x0, y0, z0] = point(face.nodes[0]);
    const auto [x1, y1, z1] = point(face.nodes[1]);
    const auto [x2, y2, z2] = point(face.nodes[2]);
    double nx = (y1 - y0) * (z2 - z0) - (y2 - y0) * (z1 - z0);
    double ny = (z1 - z0) * (x2 - x0) - (z2 - z0) * (x1 - x0);
    double nz = (x1 - x0) * (y2 - y0) - (x2 - x0) * (y1 - y0);
    if ((face.xf - cell.xc) * nx + (face.yf - cell.yc) * ny + (face.zf - cell.zc) * nz < 0) {
        nx = -nx;
        ny = -ny;
        nz = -nz;
    }
    const double length = std::sqrt(nx * nx + ny * ny + nz * nz);
    return {nx / length, ny / length, nz / length};
}

/// The neighbour rule, written out from the faces.
std::vector<std::vector<int>> plainNeighbours() {
    std::vector<std::vector<int>> faces(mesh.cells3D.size()), lists(mesh.cells3D.size());
    for (std::size_t i = 0; i < mesh.faces3D.size(); ++i) {
        const auto a = static_cast<std::size_t>(mesh.faces3D[i].c0);
        faces[a].push_back(static_cast<int>(i));
        if (mesh.faces3D[i].c1 == -1)
            continue;
        const auto b = static_cast<std::size_t>(mesh.faces3D[i].c1);
        faces[b].push_back(static_cast<int>(i));
        lists[a].push_back(static_cast<int>(b));
        lists[b].push_back(static_cast<int>(a));
    }
    std::vector<std::vector<int>> all = lists;
    for (std::size_t c = 0; c < lists.size(); ++c)
        for (const int near : lists[c])
            for (const int f : faces[static_cast<std::size_t>(near)])
                for (const int other : {mesh.faces3D[static_cast<std::size_t>(f)].c0,
                                        mesh.faces3D[static_cast<std::size_t>(f)].c1})
                    if (other != -1 && other != static_cast<int>(c) &&
                        std::find(all[c].begin(), all[c].end(), other) == all[c].end())
                        all[c].push_back(other);
    return all;
}

class Geometry3DTest : public CapturedTerminalTest {
protected:
    Geometry3DTest() { velocitySet.velocityCount = 1; }

    /// Expects a refusal of which the one line holds all `parts`, and an empty mesh.
    static void expectRefused(std::initializer_list<const char*> parts) {
        EXPECT_FALSE(buildGeometry3D());
        const std::string problem = problems(1);
        for (const char* part : parts)
            EXPECT_NE(problem.find(part), std::string::npos) << problem << "\n  lacks: " << part;
        EXPECT_EQ(mesh.cellCount, 0);
        EXPECT_EQ(mesh.pointCount, 0);
        EXPECT_TRUE(mesh.cells3D.empty());
    }

    /// Builds and expects problem lines that hold the given parts, one each.
    static void expectRemarks(std::initializer_list<const char*> parts) {
        EXPECT_TRUE(buildGeometry3D());
        const std::string said = problems(static_cast<int>(parts.size()));
        for (const char* part : parts)
            EXPECT_NE(said.find(part), std::string::npos) << said << "\n  lacks: " << part;
    }
};

const std::vector<Vec3> corner = {{0, 0, 0}, {3, 0, 0}, {0, 4, 0}, {0, 0, 2}};

} // namespace

TEST_F(Geometry3DTest, RegularTetrahedronHasItsVolumeAndFourUnitNormalsOutwards) {
    const double h = std::sqrt(3.0) / 2.0;
    setMeshOfCells({{0, 0, 0}, {1, 0, 0}, {0.5, h, 0}, {0.5, h / 3, std::sqrt(2.0 / 3.0)}},
                   {tetrahedron(0, 1, 2, 3)});
    ASSERT_TRUE(buildGeometry3D());
    ASSERT_EQ(mesh.cellCount, 1);
    const CellRecord3D& cell = mesh.cells3D[0];
    EXPECT_DOUBLE_EQ(cell.volume, 1.0 / (6.0 * std::sqrt(2.0)));
    ASSERT_EQ(cell.faceCount, 4);
    for (std::size_t k = 0; k < 4; ++k) {
        const FaceRecord3D& face = faceOf(cell, k);
        const Vec3 n = cell.normals[k];
        EXPECT_NEAR(n.x * n.x + n.y * n.y + n.z * n.z, 1.0, 1e-15);
        EXPECT_GT(n.x * (face.xf - cell.xc) + n.y * (face.yf - cell.yc) + n.z * (face.zf - cell.zc), 0.0);
        EXPECT_NEAR(face.area, std::sqrt(3.0) / 4.0, 1e-15);
    }
    problems(1); // a single cell has no neighbours
}

TEST_F(Geometry3DTest, TriangleOfSidesThreeFourFiveHasTheAreaSix) {
    setMeshOfCells(corner, {tetrahedron(0, 1, 2, 3)});
    ASSERT_TRUE(buildGeometry3D());
    EXPECT_EQ(mesh.faces3D[0].area, 6.0);
    EXPECT_DOUBLE_EQ(mesh.cells3D[0].volume, 4.0);
    problems(1);
}

TEST_F(Geometry3DTest, CentresAreTheMeansOfTheNodes) {
    setMeshOfCells(corner, {tetrahedron(0, 1, 2, 3)});
    ASSERT_TRUE(buildGeometry3D());
    EXPECT_EQ(mesh.cells3D[0].xc, 0.75);
    EXPECT_EQ(mesh.cells3D[0].yc, 1.0);
    EXPECT_EQ(mesh.cells3D[0].zc, 0.5);
    EXPECT_DOUBLE_EQ(mesh.faces3D[3].xf, 1.0);
    EXPECT_DOUBLE_EQ(mesh.faces3D[3].yf, 4.0 / 3.0);
    EXPECT_DOUBLE_EQ(mesh.faces3D[3].zf, 2.0 / 3.0);
    problems(1);
}

TEST_F(Geometry3DTest, AllNodesOfAFaceGoToBothCellsInTheirOrder) {
    // Two tetrahedra on the common triangle 2 0 1; unlike in 2D both get it whole.
    setMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, -1}}, {{{2, 0, 1}, 0, 1}},
            {{{0, 1, 3}, 0, -1},
             {{1, 2, 3}, 0, -1},
             {{2, 0, 3}, 0, -1},
             {{0, 1, 4}, 1, -1},
             {{1, 2, 4}, 1, -1},
             {{2, 0, 4}, 1, -1}});
    ASSERT_TRUE(buildGeometry3D());
    const std::vector<int> first(mesh.cells3D[0].nodes.begin(), mesh.cells3D[0].nodes.begin() + 4);
    const std::vector<int> second(mesh.cells3D[1].nodes.begin(), mesh.cells3D[1].nodes.begin() + 4);
    EXPECT_EQ(first, (std::vector<int>{2, 0, 1, 3}));
    EXPECT_EQ(second, (std::vector<int>{2, 0, 1, 4}));
    EXPECT_EQ(mesh.cells3D[1].faces, (std::array<std::int32_t, 6>{0, 4, 5, 6, -1, -1}));
    problems(1);
}

TEST_F(Geometry3DTest, VolumesFillTheBox) {
    support::Tetrahedra box = support::boxOfTetrahedra(4, 3, 5, {0.5, 1.0, 0.25});
    for (const double amplitude : {0.0, 0.05}) {
        support::distort(box, {2.0, 3.0, 1.25}, amplitude);
        support::makeMesh(box, 6, support::sidesOfBox3D({2.0, 3.0, 1.25}));
        double sum = 0.0;
        for (const CellRecord3D& cell : mesh.cells3D) {
            EXPECT_GT(cell.volume, 0.0);
            sum += cell.volume;
        }
        EXPECT_NEAR(sum, 7.5, 1e-13);
    }
    EXPECT_EQ(problems(0), "");
}

TEST_F(Geometry3DTest, SurfaceOfEveryCellIsClosed) {
    setDistortedBox(4, 4, 4);
    for (const CellRecord3D& cell : mesh.cells3D) {
        Vec3 sum;
        for (std::size_t k = 0; k < 4; ++k) {
            sum.x += faceOf(cell, k).area * cell.normals[k].x;
            sum.y += faceOf(cell, k).area * cell.normals[k].y;
            sum.z += faceOf(cell, k).area * cell.normals[k].z;
        }
        // Heron's formula loses digits in thin triangles.
        EXPECT_NEAR(sum.x, 0.0, 1e-14);
        EXPECT_NEAR(sum.y, 0.0, 1e-14);
        EXPECT_NEAR(sum.z, 0.0, 1e-14);
    }
}

// Deliberate: every component is divided by the length, and nothing is re-associated; many velocities run
// exactly along faces, where one last bit decides the upwind side.
TEST_F(Geometry3DTest, UnitNormalsAreTheRuleBitForBit) {
    setDistortedBox(5, 4, 3);
    for (std::size_t c = 0; c < mesh.cells3D.size(); ++c) {
        const CellRecord3D& cell = mesh.cells3D[c];
        for (std::size_t k = 0; k < 4; ++k) {
            const FaceRecord3D& face = faceOf(cell, k);
            const Vec3 n = plainNormal(cell, face);
            EXPECT_EQ(cell.normals[k].x, n.x);
            EXPECT_EQ(cell.normals[k].y, n.y);
            EXPECT_EQ(cell.normals[k].z, n.z);
            const bool first = face.c0 == static_cast<std::int32_t>(c);
            EXPECT_EQ(first ? face.n0x : face.n1x, n.x);
            EXPECT_EQ(first ? face.n0y : face.n1y, n.y);
            EXPECT_EQ(first ? face.n0z : face.n1z, n.z);
        }
    }
}

TEST_F(Geometry3DTest, DirectionOfTheFilesFacesDoesNotMatter) {
    setDistortedBox(3, 3, 3);
    std::vector<Vec3> before;
    for (const FaceRecord3D& face : mesh.faces3D)
        before.push_back({face.n0x, face.n0y, face.n0z});
    for (std::size_t i = 0; i < mesh.faces3D.size(); i += 2)
        std::swap(mesh.faces3D[i].nodes[1], mesh.faces3D[i].nodes[2]);
    ASSERT_TRUE(buildGeometry3D());
    for (std::size_t i = 0; i < mesh.faces3D.size(); ++i) {
        EXPECT_NEAR(mesh.faces3D[i].n0x, before[i].x, 1e-15);
        EXPECT_NEAR(mesh.faces3D[i].n0y, before[i].y, 1e-15);
        EXPECT_NEAR(mesh.faces3D[i].n0z, before[i].z, 1e-15);
    }
}

TEST_F(Geometry3DTest, BoundaryFaceHasNoSecondCellAndNoSecondNormal) {
    setDistortedBox(2, 2, 2);
    ASSERT_LT(mesh.interiorFaceCount, mesh.totalFaceCount());
    for (std::int32_t i = 0; i < mesh.totalFaceCount(); ++i) {
        const FaceRecord3D& face = mesh.faces3D[static_cast<std::size_t>(i)];
        const bool interior = i < mesh.interiorFaceCount;
        EXPECT_EQ(face.c1 == -1, !interior);
        EXPECT_EQ(face.n1x * face.n1x + face.n1y * face.n1y + face.n1z * face.n1z > 0.5, interior);
    }
}

TEST_F(Geometry3DTest, NeighboursAreTheFaceNeighboursThenTheSecondRingInTheOrderOfTheFaces) {
    setDistortedBox(4, 3, 3);
    const std::vector<std::vector<int>> expected = plainNeighbours();
    ASSERT_EQ(expected.size(), 180U);
    std::size_t longest = 0;
    for (std::size_t c = 0; c < expected.size(); ++c) {
        EXPECT_EQ(neighboursOf(c), expected[c]) << c;
        longest = std::max(longest, expected[c].size());
    }
    EXPECT_GT(longest, 10U);
}

TEST_F(Geometry3DTest, WeightsGiveTheGradientOfALinearFieldExactly) {
    const auto phi = [](const CellRecord3D& cell) { return 3.0 * cell.xc - 2.0 * cell.yc + cell.zc + 7.0; };
    for (const unsigned seed : {1U, 2U, 3U}) {
        setDistortedBox(4, 4, 4, seed);
        for (const CellRecord3D& cell : mesh.cells3D) {
            Vec3 gradient;
            for (std::int32_t j = 0; j < cell.neighbourCount; ++j) {
                const double difference =
                    phi(cell) - phi(mesh.cells3D[static_cast<std::size_t>(cell.neighbours[j])]);
                gradient.x += cell.lsq[j].x * difference;
                gradient.y += cell.lsq[j].y * difference;
                gradient.z += cell.lsq[j].z * difference;
            }
            EXPECT_NEAR(gradient.x, 3.0, 1e-11);
            EXPECT_NEAR(gradient.y, -2.0, 1e-11);
            EXPECT_NEAR(gradient.z, 1.0, 1e-11);
        }
    }
}

TEST_F(Geometry3DTest, WeightsFollowTheInverseSquareOfTheDistance) {
    setDistortedBox(3, 3, 3);
    const auto distance = [](const CellRecord3D& a, const CellRecord3D& b) {
        return std::array<double, 3>{a.xc - b.xc, a.yc - b.yc, a.zc - b.zc};
    };
    for (const CellRecord3D& cell : mesh.cells3D) {
        // M lsq_j = w_j d_j for every neighbour.
        double M[3][3] = {};
        for (std::int32_t j = 0; j < cell.neighbourCount; ++j) {
            const auto d = distance(cell, mesh.cells3D[static_cast<std::size_t>(cell.neighbours[j])]);
            const double w = 1.0 / (d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
            for (std::size_t r = 0; r < 3; ++r)
                for (std::size_t s = 0; s < 3; ++s)
                    M[r][s] += w * d[r] * d[s];
        }
        for (std::int32_t j = 0; j < cell.neighbourCount; ++j) {
            const auto d = distance(cell, mesh.cells3D[static_cast<std::size_t>(cell.neighbours[j])]);
            const double w = 1.0 / (d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
            const Vec3 l = cell.lsq[j];
            for (std::size_t r = 0; r < 3; ++r)
                EXPECT_NEAR(M[r][0] * l.x + M[r][1] * l.y + M[r][2] * l.z, w * d[r], 1e-10);
        }
    }
}

TEST_F(Geometry3DTest, SingularSystemsGetZeroWeightsAndOneProblemLine) {
    setMeshOfCells({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, -1}},
                   {tetrahedron(0, 1, 2, 3), tetrahedron(0, 1, 2, 4)});
    expectRemarks(
        {"hand.msh, line 1, cell 1: the neighbours lie in one plane, gradient weights are 0 (2 in all)"});
    EXPECT_EQ(neighboursOf(0), std::vector<int>{1});
    EXPECT_EQ(mesh.cells3D[0].lsq[0].z, 0.0);
}

TEST_F(Geometry3DTest, CentresInASlantedPlaneAreSingularToo) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        setFan(5 + static_cast<int>(seed % 5), seed);
        const std::string count = std::to_string(5 + seed % 5) + " in all";
        expectRemarks({count.c_str()});
        EXPECT_EQ(mesh.cells3D[2].lsq[1].x, 0.0);
    }
}

TEST_F(Geometry3DTest, StretchedCellsAreNeitherSingularNorFlat) {
    setDistortedBox(3, 3, 3);
    for (double& z : mesh.pointZ)
        z *= 1e-6;
    ASSERT_TRUE(buildGeometry3D());
    EXPECT_EQ(problems(0), "");
}

TEST_F(Geometry3DTest, CellsStretchedAlongASlantedAxisAreNotSingularEither) {
    setDistortedBox(3, 3, 3);
    for (std::size_t p = 0; p < mesh.pointX.size(); ++p) {
        const double x = mesh.pointX[p], y = mesh.pointY[p], z = mesh.pointZ[p] * 1e-4;
        mesh.pointX[p] = (2.0 * x + 2.0 * y + z) / 3.0;
        mesh.pointY[p] = (x - 2.0 * y + 2.0 * z) / 3.0;
        mesh.pointZ[p] = (2.0 * x - y - 2.0 * z) / 3.0;
    }
    ASSERT_TRUE(buildGeometry3D());
    EXPECT_EQ(problems(0), "");
}

TEST_F(Geometry3DTest, FlatTetrahedronIsKeptAndSaid) {
    setDistortedBox(2, 2, 2);
    CellRecord3D cell = std::move(mesh.cells3D[7]);
    const Vec3 a = point(cell.nodes[0]), b = point(cell.nodes[1]), c = point(cell.nodes[2]);
    const auto last = static_cast<std::size_t>(cell.nodes[3]);
    mesh.pointX[last] = 0.3 * a.x + 0.3 * b.x + 0.4 * c.x;
    mesh.pointY[last] = 0.3 * a.y + 0.3 * b.y + 0.4 * c.y;
    mesh.pointZ[last] = 0.3 * a.z + 0.3 * b.z + 0.4 * c.z;
    expectRemarks({"cell 8: the cell is flat"});
    EXPECT_LT(mesh.cells3D[7].volume, 1e-15);
}

TEST_F(Geometry3DTest, FaceWithoutAreaHasNoNormal) {
    setMeshOfCells({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 0, 1}}, {tetrahedron(0, 1, 2, 3)});
    expectRemarks({"flat", "one plane"});
    EXPECT_EQ(mesh.faces3D[0].area, 0.0);
    EXPECT_EQ(mesh.faces3D[0].n0x, 0.0);
    EXPECT_EQ(mesh.faces3D[0].n0y, 0.0);
    EXPECT_EQ(mesh.faces3D[0].n0z, 0.0);
    EXPECT_EQ(minFaceArea3D(), 0.0);
}

TEST_F(Geometry3DTest, ThinTriangleNeverHasAnAreaThatIsNoNumber) {
    std::mt19937 random(8);
    std::uniform_real_distribution<double> number(0.0, 1.0);
    for (int round = 0; round < 100; ++round) {
        const Vec3 a{number(random), number(random), number(random)};
        const double s = number(random);
        setMeshOfCells({{0, 0, 0}, a, {s * a.x, s * a.y, s * a.z}, {0, 0, -1}}, {tetrahedron(0, 1, 2, 3)});
        EXPECT_TRUE(buildGeometry3D());
        EXPECT_GE(mesh.faces3D[0].area, 0.0);
        EXPECT_LT(mesh.faces3D[0].area, 1e-7);
        takeProblems();
    }
}

TEST_F(Geometry3DTest, CoordinatesThatAreNoNumbersOrHugeDoNoHarm) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300, 1e-300}) {
        setDistortedBox(2, 2, 2);
        mesh.pointX[13] = mesh.pointY[13] = mesh.pointZ[13] = bad;
        EXPECT_TRUE(buildGeometry3D());
        EXPECT_FALSE(std::isnan(minFaceArea3D()));
        takeProblems();
        setDistortedBox(2, 2, 2);
        std::fill(mesh.pointX.begin(), mesh.pointX.end(), bad);
        EXPECT_TRUE(buildGeometry3D());
        EXPECT_EQ(takeProblems().size(), 2);
    }
}

// Deliberate: the area of a quadrilateral is that of its projection on the x-y plane.
TEST_F(Geometry3DTest, UprightQuadrilateralHasNoAreaAndThenNeitherHasTheSmallestFace) {
    setCubes(1);
    for (double& x : mesh.pointX)
        x *= 3.0;
    EXPECT_FALSE(buildGeometry3D());
    const CellRecord3D& cell = mesh.cells3D[0];
    for (std::size_t k = 0; k < 6; ++k)
        EXPECT_EQ(faceOf(cell, k).area, k < 2 ? 3.0 : 0.0);
    EXPECT_EQ(minFaceArea3D(), 0.0);
    problems(1);
}

TEST_F(Geometry3DTest, SlantedQuadrilateralHasTheAreaOfItsShadow) {
    setCubes(1);
    for (std::size_t p = 0; p < 8; ++p)
        mesh.pointZ[p] += 2.0 * mesh.pointX[p];
    EXPECT_FALSE(buildGeometry3D());
    EXPECT_EQ(mesh.faces3D[0].area, 1.0);
    EXPECT_NEAR(mesh.faces3D[0].n0x, 2.0 / std::sqrt(5.0), 1e-15);
    EXPECT_NEAR(mesh.faces3D[0].n0z, -1.0 / std::sqrt(5.0), 1e-15);
    problems(1);
}

TEST_F(Geometry3DTest, CellsOfOtherShapesAreFilledForInspectionAndRefusedByOneLine) {
    setCubes(5);
    EXPECT_FALSE(buildGeometry3D());
    const std::string problem = problems(1);
    EXPECT_NE(problem.find("hand.msh, line 1, cell 1: "), std::string::npos) << problem;
    EXPECT_NE(problem.find("tetrahedra only (125 in all)"), std::string::npos) << problem;
    ASSERT_EQ(mesh.cellCount, 125);
    const CellRecord3D& middle = mesh.cells3D[62];
    EXPECT_EQ(middle.xc, 2.5);
    EXPECT_EQ(middle.nodeCount, 8);
    EXPECT_EQ(middle.faceCount, 6);
    EXPECT_EQ(middle.volume, 0.0);
    EXPECT_EQ(neighboursOf(62), plainNeighbours()[62]);
    EXPECT_EQ(middle.neighbourCount, 24);
    double weights = 0.0;
    for (std::int32_t j = 0; j < 24; ++j)
        weights += middle.lsq[j].x * (2.5 - mesh.cells3D[static_cast<std::size_t>(middle.neighbours[j])].xc);
    EXPECT_NEAR(weights, 1.0, 1e-14);
}

TEST_F(Geometry3DTest, OnlyTheCellsOfOtherShapesLackTheirVolume) {
    // A tetrahedron beside a pyramid.
    const std::vector<std::vector<int>> pyramid = {{0, 1, 2, 3}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}};
    setMeshOfCells({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, -1, 1}},
                   {tetrahedron(0, 1, 4, 5), pyramid});
    EXPECT_FALSE(buildGeometry3D());
    EXPECT_NE(problems(1).find("cell 2: the cell is not a tetrahedron"), std::string::npos);
    EXPECT_DOUBLE_EQ(mesh.cells3D[0].volume, 1.0 / 6.0);
    EXPECT_EQ(mesh.cells3D[1].volume, 0.0);
}

TEST_F(Geometry3DTest, FourTrianglesThatDoNotCloseAreNoTetrahedron) {
    setMesh(corner, {}, {{{0, 1, 2}, 0, -1}, {{0, 1, 3}, 0, -1}, {{0, 2, 3}, 0, -1}, {{3, 2, 0}, 0, -1}});
    EXPECT_FALSE(buildGeometry3D());
    EXPECT_NE(problems(1).find("not a tetrahedron"), std::string::npos);
    setMesh(corner, {}, {{{0, 1, 2}, 0, -1}, {{0, 1, 3}, 0, -1}, {{0, 2, 3}, 0, -1}});
    EXPECT_FALSE(buildGeometry3D());
    problems(1);
}

TEST_F(Geometry3DTest, CellNumberThatNoFaceNamesIsRefused) {
    setMesh(corner, {{{0, 1, 2}, 0, 2}, {{1, 2, 3}, 0, 2}}, {});
    expectRefused({"hand.msh", "cell 2", "a face that names the cell"});
}

// Deliberate: a face's second cell is looked at only when its first cell does not raise the maximum.
TEST_F(Geometry3DTest, SecondCellIsNotCountedWhenTheFirstRaisesTheMaximum) {
    setMesh(corner, {{{0, 1, 2}, 1, 2}, {{1, 2, 3}, 0, 1}}, {});
    expectRefused({"hand.msh", "line 1, cell 3", "cells from 1 to 2"});
    setMesh(corner, {{{0, 1, 2}, 1, 2}, {{1, 2, 3}, 0, 2}}, {});
    EXPECT_FALSE(buildGeometry3D());
    EXPECT_EQ(mesh.cellCount, 3);
    problems(1);
}

TEST_F(Geometry3DTest, IndicesThatCannotBeFollowedAreRefused) {
    const auto broken = [](auto change, const char* part) {
        setMeshOfCells(corner, {tetrahedron(0, 1, 2, 3)});
        change(mesh.faces3D[2]);
        expectRefused({"hand.msh", "line 3", part});
    };
    broken([](FaceRecord3D& face) { face.nodes[2] = 4; }, "nodes 1, 3 and 5");
    broken([](FaceRecord3D& face) { face.nodes[0] = -1; }, "nodes 0, 3 and 4");
    broken([](FaceRecord3D& face) { face.c0 = -1; }, "cells 0 and 0");
    broken([](FaceRecord3D& face) { face.c0 = 1; }, "cells 2 and 0");
    broken([](FaceRecord3D& face) { face.c1 = 0; }, "cells 1 and 1");
    broken([](FaceRecord3D& face) { face.nodeCount = 5; }, "three or four nodes");
    broken([](FaceRecord3D& face) { face.nodeCount = 2; }, "three or four nodes");
    setMesh(corner, {{{0, 1, 2}, std::numeric_limits<std::int32_t>::max(), 0}}, {});
    expectRefused({"cell 2147483648", "at most 2 cells"});
}

TEST_F(Geometry3DTest, SeventhFaceOrNinthNodeOfACellIsRefusedWithLineAndCell) {
    setMesh(corner, {}, std::vector<TestFace>(7, {{0, 1, 2}, 0, -1}));
    expectRefused({"hand.msh", "line 7, cell 1", "six faces and eight nodes"});
    setMesh(std::vector<Vec3>(9), {}, {{{0, 1, 2}, 0, -1}, {{3, 4, 5}, 0, -1}, {{6, 7, 8}, 0, -1}});
    expectRefused({"hand.msh", "line 3, cell 1", "six faces and eight nodes"});
}

TEST_F(Geometry3DTest, TheFirstFaceTooManyIsNamedForEveryThreadCount) {
    const int before = omp_get_max_threads();
    for (const int threads : {1, 2, 7}) {
        omp_set_num_threads(threads);
        // The last of four cells has too many faces before the first one has.
        std::vector<TestFace> boundary(6, {{0, 1, 2}, 3, -1});
        boundary.insert(boundary.end(), 6, {{0, 1, 2}, 0, -1});
        setMesh(corner, {{{0, 1, 2}, 0, 3}}, boundary);
        expectRefused({"line 7, cell 4", "six faces"});
        // Both cells of a face have too many: the face's first cell is looked at first.
        setMesh(corner, std::vector<TestFace>(7, {{0, 1, 2}, 3, 0}), {});
        expectRefused({"line 7, cell 4", "six faces"});
        // The second cell gets the face before the first one gets its nodes.
        std::vector<TestFace> interior(6, {{0, 1, 2}, 0, 1});
        interior.insert(interior.end(), {{{0, 1, 2}, 3, 2}, {{3, 4, 5}, 3, 2}, {{6, 7, 0}, 3, 2}});
        interior.push_back({{8, 1, 2}, 3, 0});
        setMesh(std::vector<Vec3>(9), interior, {});
        expectRefused({"line 10, cell 1", "six faces"});
    }
    omp_set_num_threads(before);
}

TEST_F(Geometry3DTest, MoreThanTwentyFourNeighboursAreRefusedWithLineAndCell) {
    // The first of two rings holds six cells, the second 30: six faces each, no cell met twice.
    std::vector<TestFace> interior;
    for (int near = 1; near <= 6; ++near)
        interior.push_back({{0, 1, 2}, 0, near});
    for (int near = 1; near <= 6; ++near)
        for (int k = 0; k < 5; ++k)
            interior.push_back({{0, 1, 2}, near, 7 + 5 * (near - 1) + k});
    setMesh(corner, interior, {});
    expectRefused({"hand.msh", "line 1, cell 1", "at most 24", "found 36"});
}

TEST_F(Geometry3DTest, SmallestFaceAreaStartsFromTenThousand) {
    setMeshOfCells(corner, {tetrahedron(0, 1, 2, 3)});
    ASSERT_TRUE(buildGeometry3D());
    EXPECT_DOUBLE_EQ(minFaceArea3D(), 3.0);
    for (std::vector<double>* coordinate : {&mesh.pointX, &mesh.pointY, &mesh.pointZ})
        for (double& value : *coordinate)
            value *= 1e3;
    ASSERT_TRUE(buildGeometry3D());
    EXPECT_EQ(minFaceArea3D(), 10000.0);
    mesh.clear();
    mesh.zoneCount = 1;
    mesh.zoneLastFace[0] = 12; // counts the faces of the other dimension
    EXPECT_EQ(minFaceArea3D(), 10000.0);
    problems(2);
}

TEST_F(Geometry3DTest, ExtraPointsChangeNothing) {
    setMeshOfCells(corner, {tetrahedron(0, 1, 2, 3)});
    for (std::vector<double>* coordinate : {&mesh.pointX, &mesh.pointY, &mesh.pointZ})
        coordinate->push_back(0.0);
    ++mesh.pointCount;
    ASSERT_TRUE(buildGeometry3D());
    EXPECT_DOUBLE_EQ(mesh.cells3D[0].volume, 4.0);
    EXPECT_DOUBLE_EQ(minFaceArea3D(), 3.0);
    problems(1);
}

TEST_F(Geometry3DTest, EmptyMeshStaysEmpty) {
    EXPECT_TRUE(buildGeometry3D());
    EXPECT_EQ(mesh.cellCount, 0);
    EXPECT_EQ(minFaceArea3D(), 10000.0);
    EXPECT_EQ(problems(0), "");
}

TEST_F(Geometry3DTest, ResultIsTheSameForEveryThreadCount) {
    const auto everything = [](int threads) {
        omp_set_num_threads(threads);
        setDistortedBox(6, 6, 6);
        std::vector<double> values;
        for (const CellRecord3D& cell : mesh.cells3D) {
            values.insert(values.end(),
                          {cell.xc, cell.yc, cell.zc, cell.volume, double(cell.neighbourCount)});
            for (const Vec3& n : cell.normals)
                values.insert(values.end(), {n.x, n.y, n.z});
            for (std::int32_t j = 0; j < cell.neighbourCount; ++j)
                values.insert(values.end(),
                              {cell.lsq[j].x, cell.lsq[j].y, cell.lsq[j].z, double(cell.neighbours[j])});
        }
        for (const FaceRecord3D& face : mesh.faces3D)
            values.insert(values.end(), {face.xf, face.yf, face.zf, face.area, face.n0x, face.n1z});
        return values;
    };
    const int before = omp_get_max_threads();
    const std::vector<double> one = everything(1);
    EXPECT_EQ(one, everything(2));
    EXPECT_EQ(one, everything(7));
    omp_set_num_threads(before);
}

} // namespace fluvane
