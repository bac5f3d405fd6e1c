// Reading and refusing 3D Fluent ASCII meshes.
#include "mesh/fluent_reader_3d.h"

#include "mesh/fluent_reader_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "support/captured_terminal.h"
#include "support/grid_mesh.h"
#include "support/mesh_builder_3d.h"
#include "support/mesh_file_3d.h"

#include <QFileInfo>

#include <algorithm>

namespace fluvane {

namespace {

/// Two tetrahedra on a common triangle, with a boundary zone for each.
const char* const twoCells = R"((0 "Two tetrahedra")
(2 3)
(0 "Node Section")
(10 (0 1 5 0 3))
(10 (1 1 5 1 3)
(
0.5 0.25 -1
1 0 0
0 1 0
0 0 1
1 1 1e+0
))
(12 (0 1 2 0))
(12 (2 1 2 1 2))
(13 (0 1 7 0))
(0 "Interior faces")
(13 (3 1 1 2 3)(
2 3 4 1 2
)
)
(0 "Faces of zone low")
(13 (4 2 4 3 3)(
1 3 2 1 0
1 4 3 1 0
1 2 4 1 0
)
)
(0 "Faces of zone high")
(13 (5 5 7 3 3)(
5 2 3 2 0
5 3 4 2 0
5 4 2 2 0
)
)
(0 "Zone Sections")
(45 (2 fluid FLUID)())
(45 (3 interior int_FLUID)())
(45 (4 wall low)())
(45 (5 wall high)())
)";

// Lines of its text.
constexpr int nodeHeader = 5;
constexpr int firstNode = 7;
constexpr int lastNode = 11;
constexpr int nodesEnd = 12;
constexpr int declaration = 15;
constexpr int interiorHeader = 17;
constexpr int firstFace = 18;
constexpr int lowHeader = 22;
constexpr int firstLowFace = 23;

/// Whether the right hand's thumb points into the first cell when the fingers follow the nodes.
bool pointsIntoFirstCell(const FaceRecord3D& face) {
    const auto at = [&](std::size_t k) {
        const auto p = static_cast<std::size_t>(face.nodes[k]);
        return Vec3{mesh.pointX[p], mesh.pointY[p], mesh.pointZ[p]};
    };
    const Vec3 p0 = at(0), p1 = at(1), p2 = at(2);
    const double nx = (p1.y - p0.y) * (p2.z - p0.z) - (p2.y - p0.y) * (p1.z - p0.z);
    const double ny = (p1.z - p0.z) * (p2.x - p0.x) - (p2.z - p0.z) * (p1.x - p0.x);
    const double nz = (p1.x - p0.x) * (p2.y - p0.y) - (p2.x - p0.x) * (p1.y - p0.y);
    return nx * face.n0x + ny * face.n0y + nz * face.n0z < 0.0;
}

/// The text with one line, named by its number, replaced or (without text) taken out.
std::string withLine(int number, const char* line, const std::string& text = twoCells) {
    std::vector<std::string> all = linesOf(text);
    const auto at = all.begin() + (number - 1);
    if (line)
        *at = line;
    else
        all.erase(at);
    return joined(all);
}

class FluentReader3DTest : public CapturedTerminalTest {
protected:
    FluentReader3DTest() { velocitySet.velocityCount = 9; }

    bool read(std::string_view text) const { return readMesh3D(write("box.msh", text)); }

    /// Expects a refusal of which the one line names the file and holds all `parts`, and an empty mesh.
    void expectRefused(const std::string& text, std::initializer_list<const char*> parts) {
        mesh.pointCount = 1;
        lines.clear();
        EXPECT_FALSE(read(text));
        const std::string problem = problems(1);
        EXPECT_EQ(lines.size(), 1);
        EXPECT_NE(problem.find("box.msh"), std::string::npos) << problem;
        for (const char* part : parts)
            EXPECT_NE(problem.find(part), std::string::npos) << problem << "\n  lacks: " << part;
        EXPECT_EQ(mesh.pointCount, 0);
        EXPECT_TRUE(mesh.faces3D.empty());
        EXPECT_TRUE(mesh.pointZ.empty());
    }

    /// A box of 1040 nodes, so that indices have upper and lower digits.
    static std::string boxText(const char* lineEnd = "\n") {
        support::makeMesh(support::boxOfTetrahedra(12, 9, 7), 6, support::sidesOfBox3D({12, 9, 7}));
        return support::meshFileText3D(lineEnd).toStdString();
    }
};

} // namespace

TEST_F(FluentReader3DTest, ReadsPointsFacesZonesAndNames) {
    ASSERT_TRUE(read(twoCells));
    ASSERT_EQ(mesh.pointX.size(), 6U);
    EXPECT_EQ(mesh.pointX[0], 0.5);
    EXPECT_EQ(mesh.pointY[0], 0.25);
    EXPECT_EQ(mesh.pointZ[0], -1.0);
    EXPECT_EQ(mesh.pointZ[4], 1.0);
    EXPECT_EQ(mesh.interiorFaceCount, 1);
    EXPECT_EQ(mesh.zoneCount, 2);
    EXPECT_EQ(mesh.zoneLastFace[0], 4);
    EXPECT_EQ(mesh.zoneLastFace[1], 7);
    EXPECT_EQ(mesh.zoneNames, (std::vector<QString>{"low", "high"}));
    EXPECT_EQ(mesh.faces3D.size(), 7U);
    EXPECT_TRUE(mesh.matchesVelocitySet());
    EXPECT_EQ(problems(0), "");
}

// Deliberate: one point more than the file declares, which is never filled from it.
TEST_F(FluentReader3DTest, ThereIsOnePointMoreThanDeclaredAtTheOrigin) {
    ASSERT_TRUE(read(twoCells));
    EXPECT_EQ(mesh.pointCount, 6);
    ASSERT_EQ(mesh.pointZ.size(), 6U);
    EXPECT_EQ(mesh.pointX[5], 0.0);
    EXPECT_EQ(mesh.pointY[5], 0.0);
    EXPECT_EQ(mesh.pointZ[5], 0.0);
    // No face can name it.
    expectRefused(withLine(firstFace, "2 3 6 1 2"), {"line 18", "nodes from 1 to hexadecimal 5"});
}

TEST_F(FluentReader3DTest, IndicesOfRecordsCountFromZeroAndNoCellIsMinusOne) {
    ASSERT_TRUE(read(twoCells));
    const FaceRecord3D& interior = mesh.faces3D[0];
    EXPECT_EQ(interior.nodes, (std::array<std::int32_t, 4>{1, 2, 3, -1}));
    EXPECT_EQ(interior.c0, 0);
    EXPECT_EQ(interior.c1, 1);
    EXPECT_EQ(mesh.faces3D[6].nodes, (std::array<std::int32_t, 4>{4, 3, 1, -1}));
    EXPECT_EQ(mesh.faces3D[6].c0, 1);
    EXPECT_EQ(mesh.faces3D[6].c1, -1);
}

TEST_F(FluentReader3DTest, FiveWordsAreATriangleAndSixAQuadrilateral) {
    ASSERT_TRUE(read(withLine(firstLowFace, "1 3 2 4 1 0")));
    EXPECT_EQ(mesh.faces3D[0].nodeCount, 3);
    EXPECT_EQ(mesh.faces3D[1].nodeCount, 4);
    EXPECT_EQ(mesh.faces3D[1].nodes, (std::array<std::int32_t, 4>{0, 2, 1, 3}));
    EXPECT_EQ(mesh.faces3D[1].c0, 0);
    EXPECT_EQ(mesh.faces3D[1].c1, -1);
    EXPECT_EQ(mesh.faces3D[2].nodeCount, 3);
}

TEST_F(FluentReader3DTest, OtherNumbersOfWordsAreRefused) {
    for (const char* face : {"", "2 3 4 1", "1 2 3 4 5 1 2", "1 2 3 4 5 1 2 3"})
        expectRefused(withLine(firstFace, face), {"line 18", "n0 n1 n2 c0 c1"});
}

// Deliberate: unlike in 2D nothing is said of the points; the names are said in the order of the file.
TEST_F(FluentReader3DTest, SaysTheZoneNamesAndNothingElse) {
    ASSERT_TRUE(read(twoCells));
    EXPECT_EQ(lines, (QStringList{"low", "high"}));
}

// Deliberate: upper-case letters of face lines are zero digits, unlike in 2D.
TEST_F(FluentReader3DTest, UpperCaseLettersOfFaceLinesAreMisread) {
    std::string text = boxText();
    ASSERT_TRUE(read(text));
    lines.clear();
    // 1A1 counts as 101.
    std::vector<std::string> all = linesOf(text);
    const auto face = std::find_if(all.begin(), all.end(), [](const std::string& l) { return l == ")"; }) - 1;
    const auto index = static_cast<std::size_t>(mesh.interiorFaceCount) - 1;
    *face = "1A1 3fF 3E0 1 2";
    ASSERT_TRUE(read(joined(all)));
    EXPECT_EQ(mesh.faces3D[index].nodes, (std::array<std::int32_t, 4>{0x100, 0x3ef, 0x2ff, -1}));
    const std::string problem = problems(1);
    EXPECT_NE(problem.find("count 0 (1 lines in all)"), std::string::npos) << problem;
    EXPECT_NE(problem.find("line " + std::to_string(face - all.begin() + 1)), std::string::npos) << problem;
    EXPECT_EQ(lines.size(), 7);
}

TEST_F(FluentReader3DTest, UpperCaseLettersThatLeadOutOfTheMeshAreRefusedWithAHint) {
    expectRefused(withLine(firstFace, "A 3 4 1 2"),
                  {"line 18", "nodes from 1", "upper-case letters count 0"});
    expectRefused(withLine(firstFace, "2 3 4 B 2"), {"line 18", "first cell", "upper-case letters count 0"});
    expectRefused(withLine(firstFace, "2 3 4 1 C"),
                  {"line 18", "fifth number", "upper-case letters count 0"});
}

TEST_F(FluentReader3DTest, UpperCaseHeaderCountsReadWrongAndAreRefusedWithAHint) {
    const std::string text = boxText(); // 0x410 nodes
    const std::string damaged = replaced(text, "(10 (1 1 410 1 3)", "(10 (1 1 4A0 1 3)");
    expectRefused(damaged, {"the end of the 1024 nodes", "line 6", "upper-case"});
}

TEST_F(FluentReader3DTest, KnowsTheFileLineOfEachFace) {
    const QString path = write("box.msh", twoCells);
    ASSERT_TRUE(readMesh3D(path));
    EXPECT_EQ(mesh.sourceName, path);
    EXPECT_EQ(mesh.faceLine(0), firstFace);
    EXPECT_EQ(mesh.faceLine(1), firstLowFace);
    EXPECT_EQ(mesh.faceLine(3), firstLowFace + 2);
}

TEST_F(FluentReader3DTest, WrittenMeshComesBackTheSameWithEitherLineEnd) {
    for (const char* lineEnd : {"\n", "\r\n"}) {
        const std::string text = boxText(lineEnd);
        const std::vector<double> x = mesh.pointX;
        const std::int32_t cells = mesh.cellCount, interior = mesh.interiorFaceCount;
        const std::vector<QString> names = mesh.zoneNames;
        std::vector<double> volumes;
        for (const CellRecord3D& cell : mesh.cells3D)
            volumes.push_back(cell.volume);
        ASSERT_TRUE(read(text));
        ASSERT_TRUE(buildGeometry3D());
        EXPECT_EQ(mesh.cellCount, cells);
        EXPECT_EQ(mesh.interiorFaceCount, interior);
        EXPECT_EQ(mesh.zoneNames, names);
        EXPECT_EQ(mesh.pointCount, 1041);
        EXPECT_TRUE(std::equal(x.begin(), x.end(), mesh.pointX.begin()));
        for (std::size_t c = 0; c < volumes.size(); ++c)
            EXPECT_NEAR(mesh.cells3D[c].volume, volumes[c], 1e-15);
        EXPECT_TRUE(std::all_of(mesh.faces3D.begin(), mesh.faces3D.end(), pointsIntoFirstCell));
        EXPECT_EQ(problems(0), "");
    }
}

TEST_F(FluentReader3DTest, LastLineMayLackItsLineFeed) {
    std::string text = twoCells;
    text.pop_back();
    ASSERT_TRUE(read(text));
    EXPECT_EQ(mesh.zoneNames.back(), QString("high"));
}

TEST_F(FluentReader3DTest, NodesEndAtALineOfTwoParentheses) {
    expectRefused(withLine(nodesEnd, ")"), {"line 12", "\"))\""});
    expectRefused(withLine(nodesEnd, "))("), {"line 12", "\"))\""});
    expectRefused(withLine(nodesEnd, nullptr), {"line 12", "\"))\""});
    expectRefused(withLine(nodesEnd, "1 2 3"), {"line 12", "the end of the 5 nodes"});
}

TEST_F(FluentReader3DTest, NodeLinesHoldThreeNumbers) {
    for (const char* node : {"", "0 0", "0 0 x", "0 0 1)", "nan 0 0", "0 inf 0", "0 0 1e999", "0 0 0 x"})
        expectRefused(withLine(firstNode, node), {"line 7", "three decimal numbers"});
    EXPECT_TRUE(read(withLine(firstNode, " 0.0\t+0.0  -1e-3 7.5")));
}

TEST_F(FluentReader3DTest, ThePreviousMeshIsGoneWhateverHappens) {
    ASSERT_TRUE(readMesh2D(write("grid.msh", GridMesh{3, 2}.text())));
    ASSERT_TRUE(read(twoCells));
    EXPECT_TRUE(mesh.faces2D.empty());
    EXPECT_TRUE(mesh.cells2D.empty());
    ASSERT_TRUE(buildGeometry3D());
    ASSERT_TRUE(readMesh2D(write("grid.msh", GridMesh{3, 2}.text())));
    EXPECT_TRUE(mesh.faces3D.empty());
    EXPECT_TRUE(mesh.cells3D.empty());
    EXPECT_TRUE(mesh.pointZ.empty());
    EXPECT_TRUE(mesh.lsqList3D.empty());
    problems(1);
}

TEST_F(FluentReader3DTest, FileThatCannotBeOpenedGivesTrueAndAnEmptyMesh) {
    ASSERT_TRUE(read(twoCells));
    EXPECT_TRUE(readMesh3D(pathOf("absent.msh")));
    EXPECT_EQ(mesh.pointCount, 0);
    EXPECT_EQ(mesh.totalFaceCount(), 0);
    EXPECT_EQ(mesh.zoneCount, 0);
    EXPECT_NE(problems(1).find("absent.msh"), std::string::npos);
    EXPECT_FALSE(QFileInfo::exists(pathOf("absent.msh")));
}

TEST_F(FluentReader3DTest, TwoDimensionalFileIsRefused) {
    expectRefused(replaced(twoCells, "(2 3)", "(2 2)"), {"line 2", "three-dimensional", "\"(2 2)\""});
    expectRefused(std::string(twoCells) + "(0 \"x (2 2) y\")\n", {"\"(2 2)\""});
    expectRefused(GridMesh{3, 2}.text(), {"line 2", "the mark of a two-dimensional one"});
}

TEST_F(FluentReader3DTest, ForeignFormatsAreRefusedByName) {
    expectRefused("$MeshFormat\n2.2 0 8\n", {"line 1", "Gmsh", "tools/fluvane-mesh"});
    expectRefused("(2 3)\n(3010 (1 1 4 1 2)(\n\x01\x02",
                  {"line 2", "binary section 3010", "tools/fluvane-mesh"});
    expectRefused("\x89HDF\r\n\x1a\n", {"HDF5"});
    expectRefused("", {"\"Node Section\""});
    expectRefused("(2 3)\n(10 (0 1 4 0 3))\n", {"line 2", "\"Node Section\"", "tools/fluvane-mesh"});
}

TEST_F(FluentReader3DTest, ZoneOfMixedTypeIsRefusedAtItsFirstLineWithItsHeader) {
    std::string text = withLine(lowHeader, "(13 (4 2 4 3 0)(");
    EXPECT_TRUE(read(text)); // without the leading count the type does not matter
    expectRefused(withLine(firstLowFace, "3 1 3 2 1 0", text),
                  {"line 23", "mixed type (line 22)", "tools/fluvane-mesh"});
    expectRefused(withLine(firstLowFace, "4 1 3 2 5 1 0", text), {"line 23", "mixed type (line 22)"});
    // Polygons.
    text = withLine(lowHeader, "(13 (4 2 4 3 5)(");
    expectRefused(withLine(firstLowFace, "5 1 3 2 5 4 1 0", text), {"line 23", "mixed type (line 22)"});
}

TEST_F(FluentReader3DTest, SecondInteriorZoneIsRefused) {
    std::string text = replaced(twoCells, "Faces of zone low", "Interior faces of zone low");
    expectRefused(text, {"line 22", "Faces of zone"});
    expectRefused(replaced(text, "(13 (4 2 4 3 3)(", "(13 (4 2 4 2 3)("),
                  {"line 22", "single interior face zone", "tools/fluvane-mesh"});
    expectRefused(withLine(firstLowFace, "1 3 2 1 2"), {"line 23", "0 as the fifth number"});
    expectRefused(withLine(firstLowFace, "1 3 2 4 1 2"), {"line 23", "0 as the sixth number"});
}

TEST_F(FluentReader3DTest, CountsThatDisagreeWithTheLinesAreRefused) {
    expectRefused(withLine(nodeHeader, "(10 (1 1 4 1 3)"), {"line 11", "4 nodes", "line 5"});
    expectRefused(withLine(nodeHeader, "(10 (1 1 6 1 3)"), {"line 12", "node 6 of 6", "line 5"});
    expectRefused(withLine(lastNode, nullptr), {"line 11", "node 5 of 5"});
    expectRefused(withLine(declaration, "(13 (0 1 8 0))"), {"8 faces", "7 up to"});
    expectRefused(withLine(declaration, "(13 (0 1 6 0))"), {"0 to 6", "line 15"});
    expectRefused(withLine(interiorHeader, "(13 (3 1 2 2 3)("), {"line 19", "face 2", "after face 1"});
    expectRefused(withLine(interiorHeader, "(13 (3 1 0 2 3)("), {"line 18", "\")\" after face 0"});
    expectRefused(withLine(firstFace, nullptr), {"line 18", "face 1", "after face 0"});
    expectRefused(withLine(lowHeader, "(13 (4 2 3 3 3)("), {"line 25", "\")\" after face 3", "line 22"});
}

TEST_F(FluentReader3DTest, CountsThatTheFileHasNoRoomForAreRefusedBeforeAnythingIsAllocated) {
    expectRefused(withLine(nodeHeader, "(10 (1 1 7fffffff 1 3)"), {"line 5", "room"});
    expectRefused(withLine(declaration, "(13 (0 1 7fffffff 0))"), {"line 15", "room"});
    expectRefused(withLine(declaration, "(13 (0 1 10000000000000000 0))"), {"line 15"});
    expectRefused(withLine(nodeHeader, "(10 (1 1 0 1 3)"), {"line 5", "at least one node"});
    expectRefused(withLine(declaration, "(13 (0 1 0 0))"), {"line 15", "at least one face"});
}

TEST_F(FluentReader3DTest, NodeAndCellNumbersOutOfRangeAreRefused) {
    expectRefused(withLine(firstFace, "0 3 4 1 2"), {"line 18", "three different nodes"});
    expectRefused(withLine(firstFace, "2 3 2 1 2"), {"line 18", "three different nodes"});
    expectRefused(withLine(firstFace, "2 3 4 2 1 2"), {"line 18", "four different nodes"});
    expectRefused(withLine(firstFace, "2 3 4 0 2"), {"line 18", "first cell", "fourth number"});
    expectRefused(withLine(firstFace, "2 3 4 1 0"), {"line 18", "another cell", "fifth number"});
    expectRefused(withLine(firstFace, "2 3 4 1 1"), {"line 18", "another cell"});
    expectRefused(withLine(firstFace, "2 3 4 1 f"), {"line 18", "hexadecimal e"});
    expectRefused(withLine(firstFace, "2 3 4 1 ffffffff"), {"line 18"});
    expectRefused(withLine(firstLowFace, "1 3 2 0 1"), {"line 23", "first cell"});
    expectRefused(withLine(firstFace, "2 3 4 1 2)"), {"line 18", "n0 n1 n2 c0 c1"});
    expectRefused(withLine(firstFace, "2 3 4 1 g"), {"line 18", "n0 n1 n2 c0 c1"});
}

TEST_F(FluentReader3DTest, OtherPlacesOfTheParenthesesAreRefused) {
    const std::string text = twoCells;
    expectRefused(replaced(text, "(10 (1 1 5 1 3)\n(\n", "(10 (1 1 5 1 3)(\n"),
                  {"line 6", "opens the node block"});
    expectRefused(replaced(text, "(13 (3 1 1 2 3)(\n", "(13 (3 1 1 2 3)\n(\n"), {"line 18", "\"(\""});
    expectRefused(replaced(text, "2 3 4 1 2\n)\n)\n", "2 3 4 1 2\n))\n"), {"line 19", "\"))\""});
    expectRefused(withLine(interiorHeader, "(13(3 1 1 2 3)("), {"line 17", "(13 (id"});
}

TEST_F(FluentReader3DTest, MissingOrRepeatedSectionsAreRefused) {
    const std::string text = twoCells;
    expectRefused(text.substr(0, text.find("(0 \"Zone Sections\")")),
                  {"\"Zone Sections\"", "2 boundary zones"});
    expectRefused(text + "(0 \"Zone Sections\")\n", {"Zone Sections"});
    expectRefused(text + "(0 \"Node Section\")\n", {"Node Section"});
    expectRefused(text + "(13 (0 1 7 0))\n", {"(13 (0"});
    expectRefused(text + "(0 \"Faces of zone x\")\n", {"Faces of zone"});
    expectRefused(replaced(text, "(45 (5 wall high)())\n", ""), {"boundary zone 2 of 2"});
}

TEST_F(FluentReader3DTest, OneHundredZonesFitAndOneMoreIsRefused) {
    const auto withZones = [](int zones) {
        std::string text = "(0 \"Node Section\")\n\n(10 (1 1 3 1 3)\n(\n0 0 0\n1 0 0\n0 1 0\n))\n";
        char line[64];
        std::snprintf(line, sizeof line, "(13 (0 1 %x 0))\n\n(13 (3 1 1 2 3)(\n1 2 3 1 2\n)\n",
                      static_cast<unsigned>(zones + 1));
        text += line;
        for (int z = 1; z <= zones; ++z) {
            std::snprintf(line, sizeof line, "Faces of zone\n(13 (9 1 %x 3 3)(\n1 2 3 1 0\n)\n",
                          static_cast<unsigned>(z + 1));
            text += line;
        }
        text += "Zone Sections\n\n\n";
        for (int z = 1; z <= zones; ++z)
            text += "(45 (9 wall w" + std::to_string(z) + ")())\n";
        return text;
    };
    ASSERT_TRUE(read(withZones(100)));
    EXPECT_EQ(mesh.zoneLastFace[99], 101);
    EXPECT_EQ(lines.size(), 100);
    expectRefused(withZones(101), {"at most 100 boundary zones"});
}

TEST_F(FluentReader3DTest, WithoutBoundaryZonesThereAreNoNames) {
    const std::string text = "(0 \"Node Section\")\n\n(10 (1 1 3 1 3)\n(\n0 0 0\n1 0 0\n0 1 0\n))\n"
                             "(13 (0 1 1 0))\n\n(13 (3 1 1 2 3)(\n1 2 3 1 2\n)\n)\n";
    ASSERT_TRUE(read(text));
    EXPECT_EQ(mesh.zoneCount, 0);
    EXPECT_EQ(mesh.totalFaceCount(), 1);
    ASSERT_TRUE(read(text + "(0 \"Zone Sections\")\n(45 (2 fluid F)())\n(45 (3 interior I)())\n"));
    EXPECT_EQ(mesh.zoneCount, 0);
    EXPECT_TRUE(lines.empty());
}

} // namespace fluvane
