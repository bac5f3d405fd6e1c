// A 3D case from Open to its result files, through the real windows and the real solver.
#include "app/main_window.h"
#include "case_road.h"
#include "support/mesh_builder_3d.h"
#include "support/mesh_file_3d.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

using fluvane::caseSettings;
using fluvane::mesh;
using road::compute;
using road::computeWithoutEnd;
using road::linesOf;
using road::pick;
using road::type;

namespace {

constexpr int headLines3D = 5;
const QStringList zones{"low_x", "high_x", "low_y", "high_y", "floor", "lid"};

/// Does the file hold one whole 3D result: head, all values, all tetrahedra, CR LF?
bool isWholeResult3D(const QString& path, int points, int cells) {
    const QList<QByteArray> lines = linesOf(path);
    const int values = headLines3D + 3 * points + 5 * cells;
    if (lines.size() != values + cells)
        return false;
    if (lines[2] != "ZONE N=" + QByteArray::number(points) + ", E=" + QByteArray::number(cells) +
                        ", ZONETYPE = FETETRAHEDRON\r")
        return false;
    const auto isNumber = [](const QByteArray& line) {
        bool ok = false;
        line.trimmed().toDouble(&ok);
        return ok && line.endsWith('\r');
    };
    return std::all_of(lines.begin() + headLines3D, lines.begin() + values, isNumber) &&
           std::all_of(lines.begin() + values, lines.end(),
                       [](const QByteArray& line) { return line.simplified().split(' ').size() == 4; });
}

/// One block of cell values of a result file: rho, u, v, w, T = 0 .. 4.
std::vector<double> cellBlock(const QString& path, int block, int points, int cells) {
    const QList<QByteArray> lines = linesOf(path);
    const int first = headLines3D + 3 * points + block * cells;
    std::vector<double> values;
    for (int i = first; i < first + cells && i < lines.size(); ++i)
        values.push_back(lines[i].trimmed().toDouble());
    return values;
}

/// n cubes of edge 1 along each edge of the box, as a file.
void writeBox(const QString& path, int n) {
    fluvane::support::useD3Q19();
    fluvane::support::makeMesh(fluvane::support::boxOfTetrahedra(n, n, n), 6,
                               fluvane::support::sidesOfBox3D({double(n), double(n), double(n)}));
    mesh.zoneNames.assign(zones.begin(), zones.end());
    fluvane::support::writeMeshFile3D(path);
    resetProcessState();
}

const QString velocities19 = QStringLiteral(FLUVANE_CASES_DIR "/Velocity_file/D3Q19.3Dv");

/// File, Open, 3D, with nineteen velocities and the mesh file.
void chooseFiles3D(Shell& shell, const QString& meshFile) {
    shell.answers.names = QStringList{velocities19, meshFile};
    shell.choose("actionOpen");
    Shell::press(Shell::dialog("Dimension_Win"), "pushButton_3D");
}

void open3D(Shell& shell, int n) {
    writeBox(shell.path("box.msh"), n);
    chooseFiles3D(shell, shell.path("box.msh"));
    QVERIFY2(caseSettings.meshLoaded && caseSettings.is3D, qPrintable(shell.terminal().join('\n')));
}

/// Forced flow at Re 100 (flow 0) or conduction (flow 2), with heat or without.
void setUp(Shell& shell, int n, int flow, bool heat, bool steady = true) {
    shell.choose("actionLattice");
    QWidget* const lattice = Shell::dialog("Lattice_Win");
    type(lattice, "lineEdit_CFL", "0.15");
    Shell::press(lattice, "pushButton_ok");
    QWidget* const physics = Shell::dialog("Initial_Win");
    pick(physics, "comboBox_flow", flow);
    pick(physics, "comboBox_heat_transfer", heat ? 1 : 0);
    pick(physics, "comboBox_time", steady ? 0 : 1);
    type(physics, "lineEdit_L", QString::number(n));
    type(physics, "lineEdit_Re_or_Ra", "100");
    type(physics, "lineEdit_Pr", flow == 2 ? "0.1" : "1");
    type(physics, "lineEdit_dt_or_q", "2");
    Shell::press(physics, "pushButton_ok");
    QVERIFY(caseSettings.latticeInitialised);
    QCOMPARE(caseSettings.heatOn, heat);
}

/// Walls at rest but the lid, which slides along x; with heat all of them at T = 0 but the lid at 1.
void setWalls(Shell& shell, bool heat) {
    shell.choose("actionBoundary");
    QWidget* const wizard = Shell::dialog("Boundary_Information_Win_3D");
    for (const QString& zone : zones) {
        QVERIFY(wizard->findChild<QLabel*>("labelBI")->text().contains(zone));
        const bool lid = zone == "lid";
        type(wizard, "lineEdit_ux", lid ? "1" : "0");
        type(wizard, "lineEdit_uy", "0");
        type(wizard, "lineEdit_uz", "0");
        if (heat) {
            pick(wizard, "comboBox", 1);
            type(wizard, "lineEdit_T", lid ? "1" : "0");
        }
        Shell::press(wizard, "pushButtonnext");
    }
    QVERIFY(caseSettings.boundaryInitialised && shell.window->isVisible());
}

void prepareCavity3D(Shell& shell, int n, bool heat = false, bool steady = true) {
    open3D(shell, n);
    setUp(shell, n, 0, heat, steady);
    setWalls(shell, heat);
    shell.find<QTextBrowser>("textBrowser")->clear();
    shell.answers.seen.clear();
}

/// The unit cube as one hexahedron of six quadrilaterals.
const QString hexahedron =
    QStringLiteral("(0 \"one brick\")\n(0 \"Dimension\")\n(2 3)\n(0 \"Node Section\")\n"
                   "(10 (0 1 8 0 3))\n(10 (1 1 8 1 3)\n(\n"
                   "0 0 0\n1 0 0\n1 1 0\n0 1 0\n0 0 1\n1 0 1\n1 1 1\n0 1 1\n))\n"
                   "(0 \"Cells\")\n(12 (0 1 1 0))\n(12 (2 1 1 1 4))\n"
                   "(0 \"Faces\")\n(13 (0 1 6 0))\n(0 \"Interior faces\")\n"
                   "(13 (3 1 0 2 4)(\n)\n)\n"
                   "(0 \"Faces of zone walls\")\n(13 (4 1 6 3 4)(\n"
                   "1 2 3 4 1 0\n8 7 6 5 1 0\n1 5 6 2 1 0\n2 6 7 3 1 0\n3 7 8 4 1 0\n"
                   "4 8 5 1 1 0\n)\n)\n"
                   "(0 \"Zone Sections\")\n(45 (2 fluid FLUID)())\n"
                   "(45 (3 interior int_FLUID)())\n(45 (4 wall walls)())\n");

} // namespace

class ThreeDimensionalRoadTest : public QObject {
    Q_OBJECT

private:
    static constexpr int side = 2;
    static constexpr int cells = 5 * side * side * side;
    static constexpr int points = (side + 1) * (side + 1) * (side + 1) + 1; // with the extra one
    static constexpr int boundaryFaces = 6 * side * side * 2;
    static constexpr int faces = (4 * cells + boundaryFaces) / 2;

    static bool shows(QWidget* wizard, const char* widget) {
        return !wizard->findChild<QWidget*>(QString::fromLatin1(widget))->isHidden();
    }
    static QString textOf(QWidget* wizard, const char* field) {
        return wizard->findChild<QLineEdit*>(QString::fromLatin1(field))->text();
    }
    static QStringList filesOf(const Shell& shell, const QString& pattern) {
        return QDir(shell.folder.path()).entryList({pattern}, QDir::Files, QDir::Name);
    }

private slots:
    void openingShowsCountsAndExactlyTheZoneNames() {
        Shell shell;
        open3D(shell, side);
        QCOMPARE(shell.answers.seen, QStringList({"Velocity file [*.3Dv]", "Mesh file [*.msh]"}));
        QCOMPARE(shell.text("labelnumcell"), QString("Num of Cell: %1").arg(cells));
        QCOMPARE(shell.text("labelnumface"), QString("Num of Face: %1").arg(faces));
        // Deliberate: a 3D mesh has one point more than its file, and the count shows it.
        QCOMPARE(shell.text("labelnumpoint"), QString("Num of Point: %1").arg(points));
        QStringList names;
        for (const QString& name : mesh.zoneNames)
            names << name;
        QCOMPARE(names.size(), zones.size());
        QCOMPARE(shell.terminal(), names);
        for (int i = 0; i < zones.size(); ++i)
            QVERIFY(names[i].contains(zones[i]));
        QVERIFY(shell.window->isVisible() && !Shell::dialog("Dimension_Win")->isVisible());
    }

    void goingBackInTheWizardRestoresThePageFromItsFaces() {
        Shell shell;
        open3D(shell, side);
        setUp(shell, side, 0, true);
        shell.choose("actionBoundary");
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win_3D");
        type(wizard, "lineEdit_ux", "0.6");
        type(wizard, "lineEdit_uy", "-0.8");
        type(wizard, "lineEdit_uz", "0");
        pick(wizard, "comboBox", 1);
        type(wizard, "lineEdit_T", "0.25");
        Shell::press(wizard, "pushButtonnext");
        pick(wizard, "comboBox_flow_type", 2);
        pick(wizard, "comboBox", 2);
        type(wizard, "lineEdit_T", "-3");
        QVERIFY(!shows(wizard, "lineEdit_ux") && !shows(wizard, "lineEdit_uz"));
        Shell::press(wizard, "pushButtonnext");
        pick(wizard, "comboBox_flow_type", 0);
        pick(wizard, "comboBox", 0);
        type(wizard, "lineEdit_uz", "0.5");
        QVERIFY(!shows(wizard, "lineEdit_T"));

        Shell::press(wizard, "pushButtonlast");
        QVERIFY(wizard->findChild<QLabel*>("labelBI")->text().contains(zones[1]));
        QCOMPARE(wizard->findChild<QComboBox*>("comboBox_flow_type")->currentIndex(), 2);
        QVERIFY(!shows(wizard, "lineEdit_ux") && !shows(wizard, "lineEdit_uz"));
        QCOMPARE(wizard->findChild<QLabel*>("label_T")->text(), QString("q"));
        QCOMPARE(textOf(wizard, "lineEdit_T"), QString("-3"));
        QCOMPARE(wizard->findChild<QPushButton*>("pushButtonnext")->text(), QString("next"));

        Shell::press(wizard, "pushButtonlast");
        QVERIFY(wizard->findChild<QLabel*>("labelBI")->text().contains(zones[0]));
        QCOMPARE(wizard->findChild<QComboBox*>("comboBox_flow_type")->currentIndex(), 0);
        QCOMPARE(textOf(wizard, "lineEdit_ux"), QString("0.6"));
        QCOMPARE(textOf(wizard, "lineEdit_uy"), QString("-0.8"));
        // Deliberate: uz is not filled; what was typed on the page that was left still stands there.
        QCOMPARE(textOf(wizard, "lineEdit_uz"), QString("0.5"));
        QCOMPARE(wizard->findChild<QLabel*>("label_T")->text(), QString("T"));
        QCOMPARE(textOf(wizard, "lineEdit_T"), QString("0.25"));
        Shell::press(wizard, "pushButtonlast");
        QVERIFY(wizard->findChild<QLabel*>("labelBI")->text().contains(zones[0]));
        QVERIFY(!caseSettings.boundaryInitialised);
    }

    void aRunReportsAndWritesItsFiles() {
        Shell shell;
        prepareCavity3D(shell, side);
        compute(shell, "20", "10", "run.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QTRY_COMPARE_WITH_TIMEOUT(shell.terminal().size(), 5, patience);
        const QStringList said = shell.terminal();
        const QString number = "[0-9.e+-]+";
        for (int i = 0; i < 3; ++i)
            QVERIFY2(QRegularExpression("^Time Steps=" + QString::number(10 * i) + "   error_u=" + number +
                                        "   error_T=0$")
                         .match(said.at(i))
                         .hasMatch(),
                     qPrintable(said.at(i)));
        QCOMPARE(said.at(3), QString("Compute done"));
        QVERIFY(QRegularExpression("^time=[0-9]+$").match(said.at(4)).hasMatch());
        QCOMPARE(filesOf(shell, "run*"), QStringList({"run_0.dat", "run_10.dat", "run_20.dat"}));
        for (const char* const file : {"run_0.dat", "run_10.dat", "run_20.dat"})
            QVERIFY2(isWholeResult3D(shell.path(file), points, cells), file);
        QCOMPARE(shell.answers.seen, QStringList("Auto Saved [*.dat]"));
    }

    void theLidDragsTheFluidAlongAndWarmsIt() {
        Shell shell;
        constexpr int n = 4, cellsOf = 5 * n * n * n, pointsOf = (n + 1) * (n + 1) * (n + 1) + 1;
        prepareCavity3D(shell, n, true);
        compute(shell, "200", "200", "run");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        const std::vector<double> u = cellBlock(shell.path("run_200.dat"), 1, pointsOf, cellsOf);
        const std::vector<double> T = cellBlock(shell.path("run_200.dat"), 4, pointsOf, cellsOf);
        QCOMPARE(u.size(), std::size_t(cellsOf));
        // The velocities are not in units of the lid's, the temperatures are in units of dT = 2.
        const double fastest = *std::max_element(u.begin(), u.end()) / caseSettings.U0;
        const double hottest = *std::max_element(T.begin(), T.end());
        QVERIFY2(fastest > 0.1 && fastest < 1, QByteArray::number(fastest).constData());
        QVERIFY2(hottest > 0.1 && hottest < 0.5, QByteArray::number(hottest).constData());
        const auto cell = std::size_t(std::max_element(u.begin(), u.end()) - u.begin());
        QVERIFY(mesh.cells3D[cell].zc > n - 1);
    }

    void conductionRunsUntilItHasConvergedWhateverTheTolerance() {
        Shell shell;
        open3D(shell, side);
        setUp(shell, side, 2, true);
        setWalls(shell, true);
        shell.find<QTextBrowser>("textBrowser")->clear();
        type(Shell::dialog("NUM_Process_Win"), "lineEdit_Error_T", "1e-6");
        compute(shell, "0", "50", "cube.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QTRY_VERIFY_WITH_TIMEOUT(shell.terminal().contains("Compute done"), patience);
        const QString reported = shell.terminal().at(shell.terminal().size() - 3);
        const auto match = QRegularExpression("^Time Steps=([0-9]+) .*error_T=(.*)$").match(reported);
        QVERIFY2(match.captured(2).toDouble() < 1e-9, qPrintable(reported));
        const QString last = "cube_" + match.captured(1) + ".dat";
        QVERIFY(isWholeResult3D(shell.path(last), points, cells));
        // By symmetry over the six sides, of which one is at 1 (0.5 in units of dT = 2): a sixth of that.
        double volume = 0.0, mean = 0.0;
        const std::vector<double> T = cellBlock(shell.path(last), 4, points, cells);
        for (std::size_t i = 0; i < T.size(); ++i) {
            volume += mesh.cells3D[i].volume;
            mean += mesh.cells3D[i].volume * T[i];
        }
        QVERIFY2(std::abs(mean / volume - 0.5 / 6) < 0.01, QByteArray::number(mean / volume).constData());
    }

    // Deliberate: there is one 3D driver, and it writes no histories.
    void aTransientCaseRunsTheSameDriver() {
        Shell shell;
        prepareCavity3D(shell, side, false, false);
        QVERIFY(!caseSettings.steadyState);
        compute(shell, "3", "2", "run.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QTRY_VERIFY_WITH_TIMEOUT(shell.terminal().contains("Compute done"), patience);
        QCOMPARE(filesOf(shell, "run*"), QStringList({"run_0.dat", "run_2.dat", "run_3.dat"}));
        QVERIFY(shell.terminal().constFirst().startsWith("Time Steps=0   error_u="));
        // Deliberate: the fields follow the time type alone; the dimension is not looked at.
        QVERIFY(!shows(Shell::dialog("NUM_Process_Win"), "lineEdit_Error_U"));
    }

    void saveAndDumpsShowTheCase() {
        Shell shell;
        prepareCavity3D(shell, side);
        shell.answers.names = QStringList{shell.path("saved.dat")};
        shell.choose("actionSave");
        QCOMPARE(shell.answers.seen, QStringList({"Data file [*.dat]", "Message: Save Succeed"}));
        QVERIFY(isWholeResult3D(shell.path("saved.dat"), points, cells));

        for (const char* const action : {"actionCell", "actionFace", "actionPoint"})
            shell.choose(action);
        const QList<QByteArray> cellLines = linesOf(shell.path("cell.txt"));
        QCOMPARE(cellLines.size(), cells * 6);
        QVERIFY(cellLines[0].startsWith("m=0    V=0.") && cellLines[0].endsWith("   faces_num=4\r"));
        for (int i = 5; i < cellLines.size(); i += 6) {
            QVERIFY2(cellLines[i].startsWith("  Intergal="), cellLines[i].constData());
            for (const QByteArray& part : cellLines[i].trimmed().mid(int(qstrlen("Intergal="))).split(','))
                QVERIFY2(std::abs(part.toDouble()) < 1e-12, "the cell is closed");
        }
        const QList<QByteArray> faceLines = linesOf(shell.path("face.txt"));
        QCOMPARE(faceLines.size(), faces);
        QVERIFY(!faceLines.constFirst().contains("-1") && faceLines.constLast().contains("  -1  0."));
        const QList<QByteArray> pointLines = linesOf(shell.path("point.txt"));
        QCOMPARE(pointLines.size(), points);
        QCOMPARE(pointLines.constLast(), QByteArray("point 0,0,0\r"));
        QCOMPARE(pointLines.at(points - 2), QByteArray("point 2,2,2\r"));
    }

    void duringARunSaveHoldsOneInstantAndTheRestIsRefused() {
        constexpr int n = 8, cellsOf = 5 * n * n * n, pointsOf = (n + 1) * (n + 1) * (n + 1) + 1;
        Shell shell;
        prepareCavity3D(shell, n);
        computeWithoutEnd(shell, "20", "long.dat");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(shell.path("long_20.dat")), patience);
        QVERIFY(fluvane::runActive());
        shell.answers.seen.clear();
        shell.answers.names = QStringList{shell.path("saved.dat")};
        shell.choose("actionSave");
        QVERIFY(isWholeResult3D(shell.path("saved.dat"), pointsOf, cellsOf));
        shell.choose("actionOpen");
        shell.find<QPushButton>("pushButton_compute")->click();
        const QString running = "Message: A computation is running; please wait until it is done";
        QCOMPARE(shell.answers.seen,
                 QStringList({"Data file [*.dat]", "Message: Save Succeed", running, running}));
        shell.choose("actionCell");
        QVERIFY(QFile::exists(shell.path("cell.txt")));
        QVERIFY(fluvane::runActive());
        fluvane::requestStop();
        QThreadPool::globalInstance()->waitForDone();
        for (const QString& file : filesOf(shell, "long_*"))
            QVERIFY2(isWholeResult3D(shell.path(file), pointsOf, cellsOf), qPrintable(file));
    }

    void aMeshOfTheOtherDimensionIsRefusedWithTheBoxAndLeavesNothingDangling() {
        Shell shell;
        const QuadMesh square = squareMesh(2);
        QVERIFY(QuadMeshFile(square).write(shell.path("plane.msh")));
        open3D(shell, side);
        const QString counted = shell.text("labelnumcell");
        shell.answers.seen.clear();
        chooseFiles3D(shell, shell.path("plane.msh"));
        QCOMPARE(shell.answers.seen.constLast(), QString("Error: Please select the 3D file"));
        QVERIFY2(shell.terminal().constLast().contains("plane.msh"),
                 qPrintable(shell.terminal().constLast()));
        QCOMPARE(shell.text("labelnumcell"), counted);
        QCOMPARE(mesh.cellCount, 0);
        QVERIFY(mesh.pointX.empty() && mesh.faces3D.size() == 0);
        for (const char* const action : {"actionCell", "actionFace", "actionPoint", "actionBoundary"})
            shell.choose(action);

        QVERIFY(writeText(shell.path("nine.2Dv"), velocityLines));
        shell.answers.names = QStringList{shell.path("nine.2Dv"), shell.path("box.msh")};
        shell.choose("actionOpen");
        Shell::press(Shell::dialog("Dimension_Win"), "pushButton_2D");
        QCOMPARE(shell.answers.seen.constLast(), QString("Error: Please select the 2D file"));
        QVERIFY(shell.terminal().constLast().contains("box.msh"));
        QCOMPARE(mesh.cellCount, 0);
    }

    void aMeshOfHexahedraIsRefusedWithTheCause() {
        Shell shell;
        QVERIFY(writeText(shell.path("brick.msh"), hexahedron));
        chooseFiles3D(shell, shell.path("brick.msh"));
        QCOMPARE(shell.answers.seen.constLast(), QString("Error: Please select the 3D file"));
        const QString said = shell.terminal().constLast();
        QVERIFY2(said.contains("brick.msh") && said.contains("tetrahedr"), qPrintable(said));
        QVERIFY(!caseSettings.meshLoaded);
        QCOMPARE(mesh.cellCount, 0);
        QCOMPARE(mesh.pointCount, 0);
        QCOMPARE(shell.text("labelnumcell"), QString("Num of Cell: "));
    }

    void anOpeningBrokenOffAfterTheDimensionLeavesNothingToRunOrSave() {
        Shell shell;
        prepareCavity3D(shell, side);
        shell.choose("actionOpen");
        Shell::press(Shell::dialog("Dimension_Win"), "pushButton_2D"); // and no velocity file
        shell.answers.seen.clear();
        shell.choose("actionSave");
        compute(shell, "2", "1", "run.dat");
        const QString other = "Error: The mesh is of the other dimension; please open the mesh again";
        QCOMPARE(shell.answers.seen, QStringList({other, other}));
        QVERIFY(!fluvane::runActive());
        QVERIFY(filesOf(shell, "*.dat").isEmpty());
        // Set-up goes on harmlessly.
        shell.choose("actionLattice");
        Shell::press(Shell::dialog("Lattice_Win"), "pushButton_ok");
        Shell::press(Shell::dialog("Initial_Win"), "pushButton_ok");
        for (const char* const action : {"actionCell", "actionFace", "actionPoint"})
            shell.choose(action);
        QVERIFY(shell.window->isVisible());
    }

    void aPlaneCaseAfterASpatialOneAndBackRunLikeTheFirst() {
        Shell shell;
        prepareCavity3D(shell, side);
        compute(shell, "5", "100", "first.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        road::open(shell, squareMesh(4));
        QVERIFY(!caseSettings.is3D);
        QCOMPARE(shell.text("labelnumcell"), QString("Num of Cell: 16"));
        prepareCavity3D(shell, side);
        compute(shell, "5", "100", "second.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QVERIFY(isWholeResult3D(shell.path("first_5.dat"), points, cells));
        QCOMPARE(linesOf(shell.path("second_5.dat")), linesOf(shell.path("first_5.dat")));
    }

    void theShippedCavityOpensAndRuns() {
        Shell shell;
        QVERIFY(QFile::copy(FLUVANE_CASES_DIR "/cavity-3d/cavity_3d_10.msh", shell.path("cavity.msh")));
        chooseFiles3D(shell, shell.path("cavity.msh"));
        QVERIFY2(caseSettings.meshLoaded, qPrintable(shell.terminal().join('\n')));
        QCOMPARE(shell.text("labelnumcell"), QString("Num of Cell: 5000"));
        QCOMPARE(shell.text("labelnumface"), QString("Num of Face: 10600"));
        QCOMPARE(shell.text("labelnumpoint"), QString("Num of Point: 1332"));
        QCOMPARE(shell.terminal().size(), 2);
        setUp(shell, 10, 0, false);
        shell.choose("actionBoundary");
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win_3D");
        for (const char* const ux : {"0", "1"}) {
            type(wizard, "lineEdit_ux", ux);
            Shell::press(wizard, "pushButtonnext");
        }
        compute(shell, "10", "10", "run.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QVERIFY(isWholeResult3D(shell.path("run_10.dat"), 1332, 5000));
    }
};

QTEST_MAIN(ThreeDimensionalRoadTest)
#include "three_dimensional_road_test.moc"
