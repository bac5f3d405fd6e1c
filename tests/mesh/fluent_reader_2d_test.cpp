// Reading and refusing 2D Fluent ASCII meshes.
#include "mesh/fluent_reader_2d.h"

#include "mesh/mesh.h"
#include "support/captured_terminal.h"
#include "support/grid_mesh.h"

#include <QFileInfo>

namespace fluvane {

namespace {

class FluentReader2DTest : public CapturedTerminalTest {
protected:
    FluentReader2DTest() { velocitySet.velocityCount = 9; }

    bool read(std::string_view text) const { return readMesh2D(write("grid.msh", text)); }

    /// Expects a refusal of which the one line names the file and holds all `parts`, and an empty mesh.
    void expectRefused(const std::string& text, std::initializer_list<const char*> parts) {
        mesh.pointCount = 1;
        lines.clear();
        EXPECT_FALSE(read(text));
        const std::string problem = problems(1);
        EXPECT_EQ(lines.size(), 1);
        EXPECT_NE(problem.find("grid.msh"), std::string::npos) << problem;
        for (const char* part : parts)
            EXPECT_NE(problem.find(part), std::string::npos) << problem << "\n  lacks: " << part;
        EXPECT_EQ(mesh.pointCount, 0);
        EXPECT_TRUE(mesh.faces2D.empty());
        EXPECT_TRUE(mesh.pointX.empty());
    }

    /// The grid's text with one line, named by its number, replaced or (without text) taken out.
    std::string withLine(int number, const char* line) const {
        std::vector<std::string> all = linesOf(grid.text());
        const auto at = all.begin() + (number - 1);
        if (line)
            *at = line;
        else
            all.erase(at);
        return joined(all);
    }

    const GridMesh grid{4, 3}; // 20 nodes, 17 interior faces of 31
    // Lines of its text.
    static constexpr int nodeHeader = 5;
    static constexpr int firstNode = 7;
    static constexpr int declaration = 30;
    static constexpr int interiorHeader = 32;
    static constexpr int firstFace = 33;
    static constexpr int lastInteriorFace = 49;
    static constexpr int bottomHeader = 53;
    static constexpr int firstBottomFace = 54;
};

} // namespace

TEST_F(FluentReader2DTest, ReadsPointsFacesZonesAndNames) {
    ASSERT_TRUE(read(grid.text()));
    EXPECT_EQ(mesh.pointCount, 20);
    ASSERT_EQ(mesh.pointX.size(), 20U);
    EXPECT_EQ(mesh.pointX[19], 4.0);
    EXPECT_EQ(mesh.pointY[19], 3.0);
    EXPECT_TRUE(mesh.pointZ.empty());
    EXPECT_EQ(mesh.interiorFaceCount, 17);
    EXPECT_EQ(mesh.zoneCount, 4);
    EXPECT_EQ(mesh.zoneLastFace[0], 21);
    EXPECT_EQ(mesh.zoneLastFace[3], 31);
    EXPECT_EQ(mesh.totalFaceCount(), 31);
    EXPECT_EQ(mesh.zoneNames, (std::vector<QString>{"bottom", "right", "top", "left"}));
    EXPECT_EQ(mesh.faces2D.size(), 31U);
    EXPECT_TRUE(mesh.matchesVelocitySet());
    EXPECT_EQ(problems(0), "");
}

TEST_F(FluentReader2DTest, IndicesOfRecordsCountFromZeroAndNoCellIsMinusOne) {
    ASSERT_TRUE(read(grid.text()));
    const FaceRecord& interior = mesh.faces2D[0];
    EXPECT_EQ(interior.n0, 1);
    EXPECT_EQ(interior.n1, 6);
    EXPECT_EQ(interior.c0, 0);
    EXPECT_EQ(interior.c1, 1);
    const FaceRecord& boundary = mesh.faces2D[17];
    EXPECT_EQ(boundary.n0, 0);
    EXPECT_EQ(boundary.n1, 1);
    EXPECT_EQ(boundary.c0, 0);
    EXPECT_EQ(boundary.c1, -1);
}

TEST_F(FluentReader2DTest, SaysThePointCountAndNothingElse) {
    ASSERT_TRUE(read(grid.text()));
    EXPECT_EQ(lines, QStringList{"20"});
}

TEST_F(FluentReader2DTest, KnowsTheFileLineOfEachFace) {
    const QString path = write("grid.msh", grid.text());
    ASSERT_TRUE(readMesh2D(path));
    EXPECT_EQ(mesh.sourceName, path);
    EXPECT_EQ(mesh.faceLine(0), firstFace);
    EXPECT_EQ(mesh.faceLine(16), firstFace + 16);
    EXPECT_EQ(mesh.faceLine(17), firstBottomFace);
}

TEST_F(FluentReader2DTest, CarriageReturnsAreNotPartOfTheLines) {
    ASSERT_TRUE(read(grid.text("\r\n")));
    EXPECT_EQ(mesh.totalFaceCount(), 31);
    EXPECT_EQ(mesh.zoneNames.back(), QString("left"));
}

TEST_F(FluentReader2DTest, LastLineMayLackItsLineFeed) {
    std::string text = grid.text();
    text.pop_back();
    ASSERT_TRUE(read(text));
    EXPECT_EQ(mesh.zoneNames.back(), QString("left"));
}

TEST_F(FluentReader2DTest, FaceLinesAcceptBothLetterCases) {
    ASSERT_TRUE(read(withLine(lastInteriorFace, "E 13 b C")));
    EXPECT_EQ(mesh.faces2D[16].n0, 0xd);
    EXPECT_EQ(mesh.faces2D[16].c0, 0xa);
    EXPECT_EQ(mesh.faces2D[16].c1, 0xb);
}

TEST_F(FluentReader2DTest, WordsAfterTheFourthOfAFaceLineAreIgnored) {
    ASSERT_TRUE(read(withLine(lastInteriorFace, " 000e\t13  b c 99 f -1 wall (")));
    EXPECT_EQ(mesh.faces2D[16].n1, 0x12);
    EXPECT_EQ(mesh.faces2D[16].c1, 0xb);
}

// Deliberate: upper-case letters of header words are zero digits, so that the counts come out wrong.
TEST_F(FluentReader2DTest, UpperCaseHeaderCountsReadWrongAndAreRefusedWithAHint) {
    expectRefused(replaced(grid.text(), "(10 (1 1 14 1 2)", "(10 (1 1 1E 1 2)"), {"line 23", "upper-case"});
    expectRefused(withLine(declaration, "(13 (0 1 1F 0))"), {"line 32", "\"1F\"", "upper-case"});
}

TEST_F(FluentReader2DTest, HeaderWordWithAParenthesisHasAZeroDigitMore) {
    expectRefused(withLine(interiorHeader, "(13 (3 1 1)"), {"line 49", "\"1)\"", "zero digit"});
}

TEST_F(FluentReader2DTest, ReadsADeclaredTotalOfFiveNumbersAndZonesOfSection39) {
    ASSERT_TRUE(read(withLine(declaration, "  (13 (0 1 1f 0 0))")));
    ASSERT_TRUE(read(replaced(grid.text(), "(45 (4 wall bottom)())", "(39 (4 wall bottom)())")));
    EXPECT_EQ(mesh.zoneNames.front(), QString("bottom"));
}

TEST_F(FluentReader2DTest, SectionOfNamesWithoutBoundaryZonesGivesNoZones) {
    const std::string nodes = "(0 \"Node Section\")\n(10 (0 1 2 0 2))\n(10 (1 1 2 1 2)\n(\n0 0\n1 0\n))\n";
    const std::string faces = "(13 (0 1 1 0))\n(0 \"Interior faces\")\n(13 (3 1 1 2 2)(\n1 2 1 2\n)\n)\n";
    ASSERT_TRUE(read(nodes + faces + "(0 \"Zone Sections\")\n(45 (2 fluid F)())\n(45 (3 interior I)())\n"));
    EXPECT_EQ(mesh.zoneCount, 0);
    EXPECT_TRUE(mesh.zoneNames.empty());
    EXPECT_EQ(mesh.totalFaceCount(), 1);
    EXPECT_TRUE(read(nodes + faces));
}

TEST_F(FluentReader2DTest, ASingleCellHasNoInteriorFaces) {
    ASSERT_TRUE(read(GridMesh{1, 1}.text()));
    EXPECT_EQ(mesh.interiorFaceCount, 0);
    EXPECT_EQ(mesh.totalFaceCount(), 4);
}

TEST_F(FluentReader2DTest, OneHundredZonesFitAndOneMoreIsRefused) {
    const auto withZones = [](int zones) {
        std::string text = "(0 \"Node Section\")\n\n(10 (1 1 2 1 2)\n(\n0 0\n1 0\n))\n";
        char line[64];
        std::snprintf(line, sizeof line, "(13 (0 1 %x 0))\n\n(13 (3 1 1 2 2)(\n1 2 1 2\n)\n",
                      static_cast<unsigned>(zones + 1));
        text += line;
        for (int z = 1; z <= zones; ++z) {
            std::snprintf(line, sizeof line, "Faces of zone\n(13 (9 1 %x 3 2)(\n1 2 1 0\n)\n",
                          static_cast<unsigned>(z + 1));
            text += line;
        }
        text += "Zone Sections\n\n\n";
        for (int z = 1; z <= zones; ++z)
            text += "(45 (9 wall w" + std::to_string(z) + ")())\n";
        return text;
    };
    ASSERT_TRUE(read(withZones(100)));
    EXPECT_EQ(mesh.zoneCount, 100);
    EXPECT_EQ(mesh.zoneLastFace[99], 101);
    EXPECT_EQ(mesh.zoneNames[99], QString("w100"));
    expectRefused(withZones(101), {"at most 100 boundary zones"});
}

TEST_F(FluentReader2DTest, MarkersMayStandAnywhereInALine) {
    std::string text = replaced(grid.text(), "(0 \"Node Section\")", "(0 \"the Node Section of it\")");
    text = replaced(text, "(0 \"Zone Sections\")", ";; Zone Sections ;;");
    EXPECT_TRUE(read(text));
}

TEST_F(FluentReader2DTest, ThePreviousMeshIsGoneWhateverHappens) {
    mesh.pointZ = {1.0};
    mesh.faces3D = HugeArray<FaceRecord3D>(2);
    mesh.cells3D = HugeArray<CellRecord3D>(2);
    mesh.cells2D = HugeArray<CellRecord>(2);
    mesh.cellCount = 2;
    ASSERT_TRUE(read(grid.text()));
    EXPECT_TRUE(mesh.pointZ.empty());
    EXPECT_TRUE(mesh.faces3D.empty());
    EXPECT_TRUE(mesh.cells3D.empty());
    EXPECT_TRUE(mesh.cells2D.empty());
    EXPECT_EQ(mesh.cellCount, 0);
}

TEST_F(FluentReader2DTest, FileThatCannotBeOpenedGivesTrueAndAnEmptyMesh) {
    ASSERT_TRUE(read(grid.text()));
    EXPECT_TRUE(readMesh2D(pathOf("absent.msh")));
    EXPECT_EQ(mesh.pointCount, 0);
    EXPECT_EQ(mesh.totalFaceCount(), 0);
    EXPECT_NE(problems(1).find("absent.msh"), std::string::npos);
    EXPECT_FALSE(QFileInfo::exists(pathOf("absent.msh")));
    EXPECT_TRUE(readMesh2D(folder.path()));
    problems(1);
}

TEST_F(FluentReader2DTest, ThreeDimensionalFileIsRefused) {
    expectRefused(replaced(grid.text(), "(2 2)", "(2 3)"), {"line 2", "two-dimensional"});
    expectRefused(grid.text() + "(0 \"x (2 3) y\")\n", {"\"(2 3)\""});
}

TEST_F(FluentReader2DTest, ForeignFormatsAreRefusedByName) {
    expectRefused("$MeshFormat\n2.2 0 8\n", {"line 1", "Gmsh", "tools/fluvane-mesh"});
    expectRefused("(2 2)\n(3010 (1 1 4 1 2)(\n\x01\x02",
                  {"line 2", "binary section 3010", "tools/fluvane-mesh"});
    expectRefused("\x89HDF\r\n\x1a\n", {"HDF5"});
    expectRefused("", {"\"Node Section\""});
    expectRefused("(2 2)\n(10 (0 1 4 0 2))\n", {"line 2", "\"Node Section\"", "tools/fluvane-mesh"});
    // Without comments, as other meshing programs write.
    expectRefused("(2 2)\n(10 (1 1 2 1 2)(\n0 0\n1 0\n))\n(13 (0 1 1 0))\n(13 (3 1 1 2 2)(\n1 2 1 2\n))\n",
                  {"line 6", "\"Node Section\"", "tools/fluvane-mesh"});
}

TEST_F(FluentReader2DTest, SecondInteriorZoneIsRefused) {
    // Its comment says "Interior faces of zone", which is no marker.
    expectRefused(replaced(grid.text(), "Faces of zone bottom", "Interior faces of zone bottom"),
                  {"line 53", "Faces of zone"});
    std::string text = replaced(grid.text(), "Faces of zone bottom", "Interior faces of zone bottom");
    expectRefused(replaced(text, "(13 (4 12 15 3 2)(", "(13 (4 12 15 2 2)("),
                  {"line 53", "single interior face zone", "tools/fluvane-mesh"});
    // Marked like a boundary zone.
    expectRefused(withLine(firstBottomFace, "1 2 1 2"), {"line 54", "0 as the fourth number"});
}

TEST_F(FluentReader2DTest, ZoneOfMixedTypeIsRefused) {
    std::string text = withLine(interiorHeader, "(13 (3 1 11 2 0)(");
    text = replaced(text, "\n2 7 1 2\n", "\n2 2 7 1 2\n");
    expectRefused(text, {"line 33", "mixed type", "line 32", "tools/fluvane-mesh"});
    // Without the leading count the type does not matter.
    EXPECT_TRUE(read(withLine(interiorHeader, "(13 (3 1 11 2 0)(")));
}

TEST_F(FluentReader2DTest, CountsThatDisagreeWithTheLinesAreRefused) {
    expectRefused(withLine(nodeHeader, "(10 (1 1 13 1 2)"), {"line 26", "19 nodes", "line 5"});
    expectRefused(withLine(nodeHeader, "(10 (1 1 15 1 2)"), {"line 27", "node 21 of 21", "line 5"});
    expectRefused(withLine(declaration, "(13 (0 1 20 0))"), {"32 faces", "31 up to"});
    expectRefused(withLine(declaration, "(13 (0 1 1e 0))"), {"0 to 30", "line 30"});
    expectRefused(withLine(interiorHeader, "(13 (3 1 12 2 2)("), {"line 50", "face 18", "after face 17"});
    expectRefused(withLine(interiorHeader, "(13 (3 1 10 2 2)("), {"line 49", "\")\" after face 16"});
    expectRefused(withLine(bottomHeader, "(13 (4 12 11 3 2)("), {"line 54", "line 53"});
    expectRefused(withLine(firstFace, nullptr), {"line 49", "face 17", "after face 16"});
}

TEST_F(FluentReader2DTest, CountsThatTheFileHasNoRoomForAreRefusedBeforeAnythingIsAllocated) {
    expectRefused(withLine(nodeHeader, "(10 (1 1 7fffffff 1 2)"), {"line 5", "room"});
    expectRefused(withLine(nodeHeader, "(10 (1 1 ffffffffffffffffff 1 2)"), {"line 5", "room"});
    expectRefused(withLine(declaration, "(13 (0 1 7fffffff 0))"), {"line 30", "room"});
    expectRefused(withLine(declaration, "(13 (0 1 10000000000000000 0))"), {"line 30"});
    expectRefused(withLine(nodeHeader, "(10 (1 1 0 1 2)"), {"line 5", "at least one node"});
    expectRefused(withLine(declaration, "(13 (0 1 0 0))"), {"line 30", "at least one face"});
    expectRefused(withLine(declaration, "(13 (0 1"), {"line 30", "fourth word"});
}

TEST_F(FluentReader2DTest, NodeAndCellNumbersOutOfRangeAreRefused) {
    expectRefused(withLine(firstFace, "15 7 1 2"), {"line 33", "nodes from 1 to hexadecimal 14"});
    expectRefused(withLine(firstFace, "0 7 1 2"), {"line 33", "nodes"});
    expectRefused(withLine(firstFace, "7 7 1 2"), {"line 33", "two different nodes"});
    expectRefused(withLine(firstFace, "2 7 0 2"), {"line 33", "first cell"});
    expectRefused(withLine(firstFace, "2 7 1 0"), {"line 33", "fourth number"});
    expectRefused(withLine(firstFace, "2 7 1 1"), {"line 33", "another cell"});
    expectRefused(withLine(firstFace, "2 7 1 3f"), {"line 33", "hexadecimal 3e"});
    expectRefused(withLine(firstBottomFace, "1 2 0 1"), {"line 54", "first cell"});
}

TEST_F(FluentReader2DTest, JunkInNodeAndFaceLinesIsRefused) {
    for (const char* node : {"", "0.0", "0.0 x", "0.0 1.0)", "nan 0", "inf 0", "1e999 0", "0 0 x"})
        expectRefused(withLine(firstNode, node), {"line 7", "two decimal numbers"});
    for (const char* face : {"", "2 7 1", "2 7 1 2))", "2 7 1 2 )", "2 7 1 -2", "2 7 1 0x2", "2 7 1 g",
                             "ffffffff 7 1 2", "ffffffffffffffffffff 7 1 2", "("})
        expectRefused(withLine(firstFace, face), {"line 33"});
    EXPECT_TRUE(read(withLine(firstNode, " 0.0\t+0.0 7.5")));
}

TEST_F(FluentReader2DTest, OtherPlacesOfTheParenthesesAreRefused) {
    expectRefused(withLine(lastInteriorFace, "e 13 b c )"), {"line 49", "on a line of its own"});
    expectRefused(replaced(grid.text(), "(10 (1 1 14 1 2)\n(\n", "(10 (1 1 14 1 2)(\n"),
                  {"line 6", "opens the node block"});
    expectRefused(replaced(grid.text(), "(13 (3 1 11 2 2)(\n", "(13 (3 1 11 2 2)\n(\n"),
                  {"line 33", "\"(\""});
    expectRefused(replaced(grid.text(), "e 13 b c\n)\n)\n", "e 13 b c\n))\n"), {"line 50", "\"))\""});
    expectRefused(withLine(interiorHeader, "(13(3 1 11 2 2)("), {"line 32", "(13 (id"});
    expectRefused(withLine(interiorHeader, "(0 \"one line too many\")"), {"line 32", "(13 (id"});
}

TEST_F(FluentReader2DTest, MissingOrRepeatedSectionsAreRefused) {
    const std::string text = grid.text();
    const std::size_t names = text.find("(0 \"Zone Sections\")");
    expectRefused(text.substr(0, names), {"\"Zone Sections\"", "4 boundary zones"});
    expectRefused(text + "(0 \"Zone Sections\")\n", {"Zone Sections"});
    expectRefused(text + "(0 \"Node Section\")\n", {"Node Section"});
    expectRefused(text + "(13 (0 1 1f 0))\n", {"(13 (0"});
    expectRefused(text + "(0 \"Faces of zone x\")\n", {"Faces of zone"});
    expectRefused("(0 \"Zone Sections\")\n" + text, {"line 1"});
}

TEST_F(FluentReader2DTest, ZoneNamesThatDoNotMatchTheZonesAreRefused) {
    const std::string text = grid.text();
    expectRefused(replaced(text, "(45 (7 wall left)())\n", ""), {"boundary zone 4 of 4", "end of the file"});
    expectRefused(replaced(text, "(45 (7 wall left)())", "(45 (7 wall le"), {"boundary zone 4 of 4"});
    expectRefused(replaced(text, "(45 (7 wall left)())", "(45 (7 wall)())"), {"boundary zone 4 of 4"});
    // A second fluid shifts the names by one.
    expectRefused(replaced(text, "(45 (3 ", "(45 (9 fluid OTHER)())\n(45 (3 "),
                  {"boundary zone 1 of 4", "interior"});
}

} // namespace fluvane
