// Result files, byte for byte.
#include "output/result_file.h"

#include "small_mesh.h"
#include "support/spare_memory.h"

#include <QFileInfo>
#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <atomic>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace fluvane {
namespace {

using testing::makeSmallMesh;
using testing::readFile;

constexpr int headerLines = 11;

using Block = std::vector<std::string>;

/// All lines of a file; every one must end in CR LF.
Block linesOf(const QString& path) {
    const std::string text = readFile(path).toStdString();
    Block lines;
    std::size_t start = 0;
    for (std::size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
        EXPECT_TRUE(end > start && text[end - 1] == '\r') << "line " << lines.size() + 1;
        lines.push_back(text.substr(start, end - 1 - start));
    }
    EXPECT_EQ(start, text.size()) << "the last line ends too";
    return lines;
}

class ResultFile : public testing::OutputTest {
protected:
    void SetUp() override {
        OutputTest::SetUp();
        makeSmallMesh();
        caseSettings.U0 = 0.5;
    }

    Block writtenLines() const {
        EXPECT_TRUE(writeResult2D(inFolder("r.dat")));
        return linesOf(inFolder("r.dat"));
    }

    /// The lines of block `index` after the coordinates: 0 rho, 1 u, 2 v, 3 T, 4 H, 5 fl.
    Block cellBlock(std::ptrdiff_t index) const {
        const Block lines = writtenLines();
        const auto first = lines.begin() + headerLines + 2 * mesh.pointCount + index * mesh.cellCount;
        return {first, first + mesh.cellCount};
    }
};

constexpr int headerLines3D = 5;

/// A tetrahedron and a pyramid on five points, and the extra point of every 3D mesh; all fields different.
class ResultFile3D : public testing::OutputTest {
protected:
    void SetUp() override {
        OutputTest::SetUp();
        caseSettings.is3D = true;
        caseSettings.U0 = 0.5;
        velocitySet.velocityCount = 19;
        mesh.pointCount = 6;
        mesh.pointX = {0.0, 1.0, 0.0, 1.0 / 3.0, 0.25, 0.0};
        mesh.pointY = {0.0, 0.0, 1.0, 0.0, 0.25, 0.0};
        mesh.pointZ = {0.0, 0.0, -0.1, 1e-5, 2.0, 0.0};
        mesh.allocateCells3D(2);
        CellRecord3D& tetrahedron = mesh.cells3D[0];
        tetrahedron.nodeCount = 4;
        tetrahedron.nodes = {3, 0, 2, 1, -1, -1, -1, -1};
        tetrahedron.rho = 1.5;
        tetrahedron.u = 0.25;
        tetrahedron.v = -0.125;
        tetrahedron.w = 1e-20;
        tetrahedron.T = 0.75;
        CellRecord3D& pyramid = mesh.cells3D[1];
        pyramid.nodeCount = 5;
        pyramid.nodes = {0, 1, 4, 2, 3, -1, -1, -1};
        pyramid.rho = 1234567.0;
        pyramid.u = 1.0 / 3.0;
        pyramid.v = 1e-5;
        pyramid.w = -2.0;
        pyramid.T = 0.1;
    }

    Block writtenLines() const {
        EXPECT_TRUE(writeResult3D(inFolder("r.dat")));
        return linesOf(inFolder("r.dat"));
    }

    /// The lines of block `index` after the coordinates: 0 rho, 1 u, 2 v, 3 w, 4 T.
    Block cellBlock(std::ptrdiff_t index) const {
        const Block lines = writtenLines();
        const auto first = lines.begin() + headerLines3D + 3 * mesh.pointCount + index * mesh.cellCount;
        return {first, first + mesh.cellCount};
    }
};

TEST_F(ResultFile, HasExactlyTheseBytesForAMixedMesh) {
    caseSettings.flowOn = 1;
    caseSettings.heatOn = true;
    caseSettings.buoyancyOn = true;
    caseSettings.thermalMode = 1;
    caseSettings.thermalScaleKind = 0;
    caseSettings.Ra = 1e6;
    caseSettings.Re = 100;
    caseSettings.Pr = 0.71;
    caseSettings.dx = 0.0078125;
    caseSettings.CFL = 0.8;
    caseSettings.dt = 1.0 / 3000.0;
    caseSettings.niu = 1e-5;
    caseSettings.alpha = 0.02;
    caseSettings.dT = 2.0;
    caseSettings.L = 4.0;
    caseSettings.Hsolidus = 0.0;
    caseSettings.Hliquidus = 0.6;
    mesh.cells2D[0].xc = 3.0; // the exact profile is 1 here and 2 in the other cell
    mesh.cells2D[0].yc = 0.0;
    mesh.cells2D[1].xc = 0.0;
    mesh.cells2D[1].yc = -0.9;
    // sqrt(((0.75 - 1)^2 + (0.1 - 2)^2) / (1 + 4)) = sqrt(0.7345)
    const std::string expected = "TITLE = \"UNSTRUCTED TEST\"\r\n"
                                 "Isflow=1\r\n"
                                 "Isheat=1\r\n"
                                 "Isnatural=1\r\n"
                                 "Ra=1e+06,  Re=100,  Pr=0.71,  dx=0.0078125,  CFL=0.8,  dt=0.000333333\r\n"
                                 "niu=1e-05, alpha=0.02\r\n"
                                 "error=0.85703\r\n"
                                 "VARIABLES = \"X\", \"Y\", \"rho\",\"u\",\"v\",\"T\",\"H\",\"fl\"\r\n"
                                 "ZONE N=5, E=2, ZONETYPE = FEQUADRILATERAL\r\n"
                                 "DATAPACKING = BLOCK\r\n"
                                 "VARLOCATION = ([1-2]=NODAL, [3-9]=CELLCENTERED)\r\n"
                                 "0\r\n1\r\n1\r\n0\r\n2\r\n"
                                 "0\r\n0\r\n1\r\n1\r\n0.1\r\n"
                                 "1.5\r\n1.23457e+06\r\n"
                                 "0.5\r\n0.666667\r\n"
                                 "-0.25\r\n2e-05\r\n"
                                 "0.375\r\n0.05\r\n"
                                 "0.3\r\n0.9\r\n"
                                 "0.5\r\n1\r\n"
                                 "1 4 3 2 \r\n"
                                 "5 2 3 5 \r\n";
    ASSERT_TRUE(writeResult2D(inFolder("golden.dat")));
    EXPECT_EQ(readFile(inFolder("golden.dat")).toStdString(), expected);
}

TEST_F(ResultFile, WritesTheFlagsAsDigits) {
    caseSettings.flowOn = 0;
    caseSettings.heatOn = true;
    const auto lines = writtenLines();
    EXPECT_EQ(lines[1], "Isflow=0");
    EXPECT_EQ(lines[2], "Isheat=1");
    EXPECT_EQ(lines[3], "Isnatural=0");
}

TEST_F(ResultFile, NamesSevenCellVariablesThoughThereAreSix) {
    const auto lines = writtenLines();
    EXPECT_EQ(lines[10], "VARLOCATION = ([1-2]=NODAL, [3-9]=CELLCENTERED)");
    const std::size_t blocks = (lines.size() - headerLines - 2 * 5 - 2) / 2;
    EXPECT_EQ(blocks, 6u);
}

TEST_F(ResultFile, RepeatsTheFirstCornerOfATriangleAndEndsEachLineInABlank) {
    const auto lines = writtenLines();
    EXPECT_EQ(lines[lines.size() - 2], "1 4 3 2 ");
    EXPECT_EQ(lines[lines.size() - 1], "5 2 3 5 ");
}

TEST_F(ResultFile, DividesTheVelocityByTheReferenceVelocity) {
    EXPECT_EQ(cellBlock(1), (Block{"0.5", "0.666667"}));
    EXPECT_EQ(cellBlock(2), (Block{"-0.25", "2e-05"}));
}

TEST_F(ResultFile, PrintsInfAndNanWithoutAReferenceVelocity) {
    caseSettings.U0 = 0.0;
    mesh.cells2D[0].u = 0.0;
    const Block u = cellBlock(1);
    EXPECT_TRUE(u[0] == "nan" || u[0] == "-nan") << u[0];
    EXPECT_EQ(u[1], "inf");
    EXPECT_EQ(cellBlock(2), (Block{"-inf", "inf"}));
}

TEST_F(ResultFile, WritesTheStoredTemperatureWithoutHeatTransfer) {
    caseSettings.heatOn = false;
    caseSettings.dT = 2.0;
    caseSettings.thermalScaleKind = 7;
    EXPECT_EQ(cellBlock(3), (Block{"0.75", "0.1"}));
}

TEST_F(ResultFile, ScalesTheTemperatureByTheKindOfThermalScale) {
    caseSettings.heatOn = true;
    caseSettings.dT = 2.0;
    caseSettings.alpha = 0.5;
    caseSettings.L = 4.0;
    caseSettings.thermalScaleKind = 0;
    EXPECT_EQ(cellBlock(3), (Block{"0.375", "0.05"}));
    caseSettings.thermalScaleKind = 1;
    EXPECT_EQ(cellBlock(3), (Block{"0.046875", "0.00625"}));
    caseSettings.thermalScaleKind = 2;
    EXPECT_EQ(cellBlock(3), (Block{"0.0117188", "0.0015625"}));
}

TEST_F(ResultFile, WritesNoTemperatureAtAllForAnUnknownKindOfThermalScale) {
    const std::size_t full = writtenLines().size();
    caseSettings.heatOn = true;
    for (const int kind : {-1, 3}) {
        caseSettings.thermalScaleKind = kind;
        EXPECT_EQ(writtenLines().size(), full - 2) << kind;
    }
}

TEST_F(ResultFile, WritesZerosForEnthalpyAndLiquidFractionWithoutPhaseChange) {
    EXPECT_EQ(cellBlock(4), (Block{"0", "0"}));
    EXPECT_EQ(cellBlock(5), (Block{"0", "0"}));
}

TEST_F(ResultFile, TakesTheLinearBranchAtBothEnthalpyBounds) {
    caseSettings.thermalMode = 1;
    caseSettings.Hsolidus = 0.3;
    caseSettings.Hliquidus = 0.9;
    EXPECT_EQ(cellBlock(4), (Block{"0.3", "0.9"}));
    EXPECT_EQ(cellBlock(5), (Block{"0", "1"}));
    caseSettings.Hsolidus = 0.4;
    caseSettings.Hliquidus = 1.4;
    EXPECT_EQ(cellBlock(5), (Block{"0", "0.5"}));
    // Both bounds in one: only the linear branch divides 0 by 0.
    caseSettings.Hsolidus = caseSettings.Hliquidus = 0.3;
    const Block fl = cellBlock(5);
    EXPECT_TRUE(fl[0] == "nan" || fl[0] == "-nan") << fl[0];
    EXPECT_EQ(fl[1], "1");
}

TEST_F(ResultFile, WritesTheHeaderAndEmptyBlocksForAnEmptyMesh) {
    mesh.clear();
    const auto lines = writtenLines();
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(headerLines));
    EXPECT_EQ(lines[6], "error=0");
    EXPECT_EQ(lines[8], "ZONE N=0, E=0, ZONETYPE = FEQUADRILATERAL");
}

TEST_F(ResultFile, LeavesMeshAndSettingsAlone) {
    const double T = mesh.cells2D[0].T;
    const double u = mesh.cells2D[0].u;
    ASSERT_TRUE(writeResult2D(inFolder("r.dat")));
    EXPECT_EQ(mesh.cells2D[0].T, T);
    EXPECT_EQ(mesh.cells2D[0].u, u);
    EXPECT_EQ(caseSettings.U0, 0.5);
}

TEST_F(ResultFile, ShowsTheCapturedInstantAfterTheFieldsMovedOn) {
    caseSettings.dt = 0.25;
    ASSERT_TRUE(writeResult2D(inFolder("before.dat")));
    const ResultSnapshot2D snapshot = captureResult2D();
    for (CellRecord& cell : mesh.cells2D)
        cell.rho = cell.u = cell.v = cell.T = cell.H = 77.0;
    caseSettings.dt = 0.5;
    caseSettings.heatOn = true;
    ASSERT_TRUE(writeResult2D(inFolder("later.dat"), snapshot));
    EXPECT_EQ(readFile(inFolder("later.dat")), readFile(inFolder("before.dat")));
}

TEST_F(ResultFile, RunningOutOfMemoryLeavesNoFile) {
    if (!support::addressSpaceIsOurs)
        GTEST_SKIP() << "the address space cannot be limited here";
    constexpr std::int32_t cells = 2'000'000; // no arena keeps so much in reserve
    mesh.allocateCells2D(cells);
    mesh.cellCount = cells;
    {
        const support::SpareMemory spare(std::size_t{1} << 20);
        EXPECT_TRUE(captureResult2D().cells.empty());
        EXPECT_FALSE(writeResult2D(inFolder("r.dat")));
    }
    EXPECT_FALSE(QFileInfo::exists(inFolder("r.dat")));
    EXPECT_EQ(captureResult2D().cells.size(), std::size_t{cells});
}

TEST_F(ResultFile, RefusesASnapshotOfAnotherMesh) {
    const ResultSnapshot2D snapshot = captureResult2D();
    mesh.clear();
    EXPECT_FALSE(writeResult2D(inFolder("r.dat"), snapshot));
    EXPECT_FALSE(QFileInfo::exists(inFolder("r.dat")));
}

TEST_F(ResultFile, HasNoCellsWhenTheMeshIsThreeDimensional) {
    mesh.cells2D = {};
    mesh.cellCount = 4;
    EXPECT_EQ(writtenLines()[8], "ZONE N=5, E=0, ZONETYPE = FEQUADRILATERAL");
}

TEST_F(ResultFile, FailsSilentlyWhereNoFileCanBeOpened) {
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(writeResult2D(inFolder("missing/r.dat")));
    EXPECT_FALSE(writeResult2D(QString()));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(ResultFile, TakesPathsBeyondAscii) {
    const QString path = inFolder(QString::fromUtf8("Höhle_结果_1.dat"));
    ASSERT_TRUE(writeResult2D(path));
    EXPECT_TRUE(readFile(path).startsWith("TITLE"));
}

TEST_F(ResultFile, HasTheSameBytesInEveryLocale) {
    ASSERT_TRUE(writeResult2D(inFolder("c.dat")));
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const QLocale toolkitBefore;
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_TRUE(writeResult2D(inFolder("de.dat")));
    QLocale::setDefault(toolkitBefore);
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(readFile(inFolder("de.dat")), readFile(inFolder("c.dat")));
}

TEST_F(ResultFile, IsWholeWheneverItIsOpened) {
    mesh.clear();
    mesh.allocateCells2D(20000);
    const QString path = inFolder("r.dat");
    ASSERT_TRUE(writeResult2D(path));
    const qint64 size = QFileInfo(path).size();
    std::atomic<bool> done{false};
    std::atomic<int> reads{0};
    std::atomic<int> broken{0};
    std::thread reader([&] {
        for (; !done; ++reads) {
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly) || file.readAll().size() != size)
                ++broken;
        }
    });
    for (int i = 0; i < 50 || reads < 5; ++i)
        EXPECT_TRUE(writeResult2D(path));
    done = true;
    reader.join();
    EXPECT_EQ(broken, 0) << "of " << reads << " reads";
}

TEST_F(ResultFile, ErrorIsZeroForTheConductionProfileBetweenTheCircles) {
    for (CellRecord& cell : mesh.cells2D)
        cell.T = std::log(std::hypot(cell.xc, cell.yc) / 3.0) / std::log(0.3) + 1.0;
    EXPECT_NEAR(exactSolutionError(), 0.0, 1e-15);
}

TEST_F(ResultFile, ErrorProfileIsOneAtRadiusThreeAndTwoAtRadiusNineTenths) {
    mesh.cells2D[0].xc = 0.0;
    mesh.cells2D[0].yc = -3.0;
    mesh.cells2D[1].xc = 0.9;
    mesh.cells2D[1].yc = 0.0;
    mesh.cells2D[0].T = 1.0;
    mesh.cells2D[1].T = 2.0;
    EXPECT_NEAR(exactSolutionError(), 0.0, 1e-15);
    mesh.cells2D[0].T = 0.0;
    mesh.cells2D[1].T = 0.0;
    EXPECT_NEAR(exactSolutionError(), 1.0, 1e-15);
}

TEST_F(ResultFile, ErrorUsesTheStoredTemperatureWhateverTheCase) {
    const double stored = exactSolutionError();
    caseSettings.heatOn = true;
    caseSettings.dT = 5.0;
    EXPECT_EQ(exactSolutionError(), stored);
}

TEST_F(ResultFile, ErrorIsNotFiniteWithACellCentreAtTheOrigin) {
    mesh.cells2D[0].xc = mesh.cells2D[0].yc = 0.0;
    EXPECT_FALSE(std::isfinite(exactSolutionError()));
    const std::string line = writtenLines()[6];
    EXPECT_TRUE(line == "error=nan" || line == "error=-nan") << line;
}

// --- three dimensions ------------------------------------------------------------------------------------

TEST_F(ResultFile3D, HasExactlyTheseBytes) {
    caseSettings.heatOn = true;
    caseSettings.thermalScaleKind = 0;
    caseSettings.dT = 2.0;
    const std::string expected = "TITLE = \"UNSTRUCTED TEST\"\r\n"
                                 "VARIABLES = \"X\", \"Y\",\"Z\",\"rho\",\"u\",\"v\",\"w\",\"T\"\r\n"
                                 "ZONE N=6, E=2, ZONETYPE = FETETRAHEDRON\r\n"
                                 "DATAPACKING = BLOCK\r\n"
                                 "VARLOCATION = ([1-3]=NODAL, [4-8]=CELLCENTERED)\r\n"
                                 "0\r\n1\r\n0\r\n0.333333\r\n0.25\r\n0\r\n"
                                 "0\r\n0\r\n1\r\n0\r\n0.25\r\n0\r\n"
                                 "0\r\n0\r\n-0.1\r\n1e-05\r\n2\r\n0\r\n"
                                 "1.5\r\n1.23457e+06\r\n"
                                 "0.25\r\n0.333333\r\n"
                                 "-0.125\r\n1e-05\r\n"
                                 "1e-20\r\n-2\r\n"
                                 "0.375\r\n0.05\r\n"
                                 "4 1 3 2 \r\n"
                                 "1 2 5 3 4 \r\n";
    ASSERT_TRUE(writeResult3D(inFolder("golden.dat")));
    EXPECT_EQ(readFile(inFolder("golden.dat")).toStdString(), expected);
}

TEST_F(ResultFile3D, DeliberateNoParametersAndNoErrorLineStandBetweenTitleAndVariables) {
    caseSettings.flowOn = 1;
    caseSettings.Re = 100;
    const Block lines = writtenLines();
    EXPECT_EQ(lines[0], "TITLE = \"UNSTRUCTED TEST\"");
    EXPECT_EQ(lines[1].rfind("VARIABLES = ", 0), 0u) << lines[1];
    for (const std::string& line : lines)
        for (const char* const key : {"Isflow", "Isheat", "Isnatural", "Re=", "niu", "error"})
            EXPECT_EQ(line.find(key), std::string::npos) << line;
}

TEST_F(ResultFile3D, DeliberateVelocitiesAreWrittenAsStoredAndNotInUnitsOfTheReferenceVelocity) {
    for (const double U0 : {0.5, 0.0}) {
        caseSettings.U0 = U0;
        EXPECT_EQ(cellBlock(1), (Block{"0.25", "0.333333"})) << U0;
        EXPECT_EQ(cellBlock(2), (Block{"-0.125", "1e-05"})) << U0;
        EXPECT_EQ(cellBlock(3), (Block{"1e-20", "-2"})) << U0;
    }
}

TEST_F(ResultFile3D, DeliberateNoEnthalpyAndNoLiquidFractionIsWrittenWhateverTheThermalMode) {
    const std::size_t count = writtenLines().size();
    EXPECT_EQ(count, 5u + 3 * 6 + 5 * 2 + 2);
    caseSettings.thermalMode = 1;
    caseSettings.Hliquidus = 1.0;
    EXPECT_EQ(writtenLines().size(), count);
}

TEST_F(ResultFile3D, DeliberateConnectivityLinesHoldAllCornersOfACellAndNoPadding) {
    const Block before = writtenLines();
    EXPECT_EQ(before[before.size() - 2], "4 1 3 2 ");
    EXPECT_EQ(before[before.size() - 1], "1 2 5 3 4 ");
    EXPECT_EQ(before[2], "ZONE N=6, E=2, ZONETYPE = FETETRAHEDRON");
    mesh.cells3D[0].nodeCount = 3;
    mesh.cells3D[1].nodeCount = 8;
    mesh.cells3D[1].nodes = {0, 1, 2, 3, 4, 5, 0, 1};
    const Block after = writtenLines();
    EXPECT_EQ(after[after.size() - 2], "4 1 3 ");
    EXPECT_EQ(after[after.size() - 1], "1 2 3 4 5 6 1 2 ");
    EXPECT_EQ(after[2], before[2]);
}

TEST_F(ResultFile3D, ScalesTheTemperatureAsInTwoDimensions) {
    caseSettings.heatOn = true;
    caseSettings.dT = 2.0;
    caseSettings.alpha = 0.5;
    caseSettings.L = 4.0;
    caseSettings.thermalScaleKind = 0;
    EXPECT_EQ(cellBlock(4), (Block{"0.375", "0.05"}));
    caseSettings.thermalScaleKind = 1;
    EXPECT_EQ(cellBlock(4), (Block{"0.046875", "0.00625"}));
    caseSettings.thermalScaleKind = 2;
    EXPECT_EQ(cellBlock(4), (Block{"0.0117188", "0.0015625"}));
}

TEST_F(ResultFile3D, WritesNoTemperatureAtAllForAnUnknownKindOfThermalScale) {
    const std::size_t full = writtenLines().size();
    caseSettings.heatOn = true;
    for (const int kind : {-1, 3}) {
        caseSettings.thermalScaleKind = kind;
        EXPECT_EQ(writtenLines().size(), full - 2) << kind;
    }
}

TEST_F(ResultFile3D, WritesTheStoredTemperatureWithoutHeatTransfer) {
    caseSettings.heatOn = false;
    caseSettings.dT = 2.0;
    caseSettings.thermalScaleKind = 7;
    EXPECT_EQ(cellBlock(4), (Block{"0.75", "0.1"}));
}

TEST_F(ResultFile3D, WritesTheHeaderAndEmptyBlocksForAnEmptyMesh) {
    mesh.clear();
    const Block lines = writtenLines();
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(headerLines3D));
    EXPECT_EQ(lines[2], "ZONE N=0, E=0, ZONETYPE = FETETRAHEDRON");
}

TEST_F(ResultFile3D, ShowsTheCapturedInstantAfterTheFieldsMovedOn) {
    caseSettings.heatOn = true;
    caseSettings.dT = 2.0;
    ASSERT_TRUE(writeResult3D(inFolder("before.dat")));
    const ResultSnapshot3D snapshot = captureResult3D();
    for (CellRecord3D& cell : mesh.cells3D)
        cell.rho = cell.u = cell.v = cell.w = cell.T = 77.0;
    caseSettings.dT = 5.0;
    caseSettings.thermalScaleKind = 1;
    ASSERT_TRUE(writeResult3D(inFolder("later.dat"), snapshot));
    EXPECT_EQ(readFile(inFolder("later.dat")), readFile(inFolder("before.dat")));
}

TEST_F(ResultFile3D, RunningOutOfMemoryLeavesNoFile) {
    if (!support::addressSpaceIsOurs)
        GTEST_SKIP() << "the address space cannot be limited here";
    constexpr std::int32_t cells = 2'000'000; // no arena keeps so much in reserve
    mesh.allocateCells3D(cells);
    mesh.cellCount = cells;
    {
        const support::SpareMemory spare(std::size_t{1} << 20);
        EXPECT_TRUE(captureResult3D().cells.empty());
        EXPECT_FALSE(writeResult3D(inFolder("r.dat")));
    }
    EXPECT_FALSE(QFileInfo::exists(inFolder("r.dat")));
    EXPECT_EQ(captureResult3D().cells.size(), std::size_t{cells});
}

TEST_F(ResultFile3D, RefusesASnapshotOfAnotherMesh) {
    const ResultSnapshot3D snapshot = captureResult3D();
    mesh.clear();
    EXPECT_FALSE(writeResult3D(inFolder("r.dat"), snapshot));
    EXPECT_FALSE(QFileInfo::exists(inFolder("r.dat")));
}

TEST_F(ResultFile3D, FailsSilentlyWhereNoFileCanBeOpened) {
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(writeResult3D(inFolder("missing/r.dat")));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(ResultFile3D, HasTheSameBytesInEveryLocale) {
    ASSERT_TRUE(writeResult3D(inFolder("c.dat")));
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    EXPECT_TRUE(writeResult3D(inFolder("de.dat")));
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(readFile(inFolder("de.dat")), readFile(inFolder("c.dat")));
}

TEST_F(ResultFile3D, PrintsValuesThatAreNotFinite) {
    mesh.cells3D[0].u = INFINITY;
    mesh.cells3D[1].u = NAN;
    EXPECT_EQ(cellBlock(1)[0], "inf");
    EXPECT_EQ(cellBlock(1)[1], "nan");
}

} // namespace
} // namespace fluvane
