// A melting case from Open to its histories and result files, through the real windows and the real solver.
#include "app/main_window.h"
#include "case_road.h"
#include "solver2d/enthalpy.h"

#include <algorithm>
#include <cmath>
#include <vector>

using fluvane::caseSettings;

namespace {

/// One block of cell values of a result file: rho, u, v, T, H, fl = 0 .. 5.
std::vector<double> cellBlock(const QString& path, int block, int points, int cells) {
    const QList<QByteArray> lines = road::linesOf(path);
    const int first = road::headLines + 2 * points + block * cells;
    std::vector<double> values;
    for (int i = first; i < first + cells && i < lines.size(); ++i)
        values.push_back(lines[i].trimmed().toDouble());
    return values;
}

double mean(const std::vector<double>& values) {
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum / double(values.size());
}

/// Two figures of which one was printed with six digits.
bool agree(double a, double b) {
    return std::abs(a - b) <= 1e-5 * std::max(std::abs(a), std::abs(b)) + 1e-12;
}

} // namespace

class MeltingRoadTest : public QObject {
    Q_OBJECT

private:
    static constexpr int side = 8;
    static constexpr int cells = side * side;
    static constexpr int points = (side + 1) * (side + 1);
    static constexpr double scale = 2.0;   // temperature difference
    static constexpr double melting = 0.1; // Ts and Tl

    static bool shows(QWidget* dialog, const char* widget) {
        return dialog->findChild<QWidget*>(QString::fromLatin1(widget))->isVisible();
    }

    static QWidget* enterPhysics(Shell& shell) {
        shell.choose("actionLattice");
        Shell::press(Shell::dialog("Lattice_Win"), "pushButton_ok");
        return Shell::dialog("Initial_Win");
    }

    /// The physics are confirmed once before the phase change, which takes its latent heat from them, and
    /// once after it, to start from the enthalpy that belongs to it.
    static void setUp(Shell& shell, int flow, int phase) {
        QWidget* const physics = enterPhysics(shell);
        road::pick(physics, "comboBox_flow", flow);
        road::pick(physics, "comboBox_Phase_change", phase);
        road::pick(physics, "comboBox_time", 1);
        road::type(physics, "lineEdit_L", "1");
        road::type(physics, "lineEdit_Re_or_Ra", "1000");
        road::type(physics, "lineEdit_Pr", flow == 2 ? "0.005" : "1");
        road::type(physics, "lineEdit_dt_or_q", QString::number(scale));
        QCOMPARE(physics->findChild<QComboBox*>("comboBox_heat_transfer")->currentIndex(), 1);
        Shell::press(physics, "pushButton_ok");
        QCOMPARE(caseSettings.latentHeat, 0.0);

        QCOMPARE(enterPhysics(shell), physics);
        QVERIFY(physics->isVisible() && shows(physics, "pushButton_phase_change"));
        QCOMPARE(physics->findChild<QComboBox*>("comboBox_Phase_change")->currentIndex(), phase);
        Shell::press(physics, "pushButton_phase_change");
        QWidget* const phaseChange = Shell::dialog("Solid_liquid");
        QVERIFY(phaseChange->isVisible() && !physics->isVisible());
        road::type(phaseChange, "lineEdit_Ts", QString::number(melting));
        road::type(phaseChange, "lineEdit_Tl", QString::number(melting));
        road::type(phaseChange, "lineEdit_Ste", "0.5");
        road::type(phaseChange, "lineEdit_Fl", "0.5");
        Shell::press(phaseChange, "pushButton_ok");
        QVERIFY(physics->isVisible() && !phaseChange->isVisible());
        QCOMPARE(caseSettings.latentHeat, scale / 0.5);
        const double start = fluvane::enthalpyOf(0.0);
        QVERIFY(fluvane::mesh.cells2D[0].H != start);
        Shell::press(physics, "pushButton_ok");
        QVERIFY(shell.window->isVisible() && !physics->isVisible());

        // Deliberate: below the melting range and so negative, whatever initial fraction was typed.
        QVERIFY(start < 0.0);
        for (const fluvane::CellRecord& cell : fluvane::mesh.cells2D)
            QCOMPARE(cell.H, start);
        QCOMPARE(caseSettings.thermalMode, 1);
        QCOMPARE(caseSettings.lftfOn, phase == 2);
        QVERIFY(!caseSettings.steadyState);
    }

    /// Melts from the left, cold on the right, adiabatic below and above.
    static void setWalls(Shell& shell) {
        shell.choose("actionBoundary");
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win");
        for (const char* const zone : {"bottom", "right", "top", "left"}) {
            QVERIFY(wizard->findChild<QLabel*>("labelBI")->text().contains(zone));
            const bool isLeft = qstrcmp(zone, "left") == 0;
            const bool isHeld = isLeft || qstrcmp(zone, "right") == 0;
            road::pick(wizard, "comboBox", isHeld ? 1 : 0);
            QCOMPARE(shows(wizard, "label_fl"), isHeld);
            QCOMPARE(shows(wizard, "lineEdit_fl"), isHeld);
            road::type(wizard, "lineEdit_T", isLeft ? QString::number(scale) : "0");
            road::type(wizard, "lineEdit_fl", isLeft ? "1" : "0");
            Shell::press(wizard, "pushButtonnext");
        }
        QVERIFY(caseSettings.boundaryInitialised && shell.window->isVisible());
    }

    static void lookAtTheRunControl(Shell& shell) {
        shell.find<QPushButton>("pushButton_compute")->click();
        QWidget* const control = Shell::dialog("NUM_Process_Win");
        QVERIFY(control->isVisible());
        for (const char* const row :
             {"label_Error_U", "lineEdit_Error_U", "label_Error_T", "lineEdit_Error_T"})
            QVERIFY2(!shows(control, row), row);
        QVERIFY(shows(control, "lineEdit_Time_Step") && shows(control, "lineEdit_Terminal"));
        Shell::press(control, "pushButton_cancel");
    }

    static QString fourier(int n) {
        return QString::number(n * caseSettings.dt * caseSettings.alpha / caseSettings.L / caseSettings.L);
    }

    /// Every report adds the mean of its instant to the one printed before and divides by the count, on an
    /// area of 1; the results of the same instants hold the cells.
    static void compareHistory(const Shell& shell, const QString& history, int block, double unit) {
        const QList<QByteArray> lines = road::linesOf(shell.path(history));
        QCOMPARE(lines.size(), 3);
        double expected = 0.0;
        for (int report = 0; report < 3; ++report) {
            const QString result = shell.path("run_" + fourier(100 * report) + ".dat");
            expected = (expected + unit * mean(cellBlock(result, block, points, cells))) / (report + 1);
            const QList<QByteArray> figures = lines[report].split(' ');
            QCOMPARE(figures.size(), 2);
            QCOMPARE(QString(figures[0]), fourier(100 * report));
            QVERIFY(figures[1].endsWith('\r'));
            QVERIFY2(agree(figures[1].trimmed().toDouble(), expected), lines[report].constData());
        }
    }

    /// The ice keeps still, or, in the LFTF form, goes along.
    static void compareVariant(const QString& result, bool flow, bool lftf) {
        const std::vector<double> u = cellBlock(result, 1, points, cells);
        const std::vector<double> fl = cellBlock(result, 5, points, cells);
        double inIce = 0.0, inLiquid = 0.0;
        for (std::size_t i = 0; i < u.size(); ++i)
            (fl[i] < 0.5 ? inIce : inLiquid) += std::abs(u[i]);
        QCOMPARE(inLiquid > 0.0, flow);
        QCOMPARE(inIce > 0.0, flow && lftf);
    }

private slots:
    void aMeltingCaseGoesTheWholeRoad_data() {
        QTest::addColumn<int>("flow");
        QTest::addColumn<int>("phase");
        QTest::newRow("natural convection, Considered") << 1 << 1;
        QTest::newRow("natural convection, LFTF") << 1 << 2;
        QTest::newRow("conduction, Considered") << 2 << 1;
        QTest::newRow("conduction, LFTF") << 2 << 2;
    }

    void aMeltingCaseGoesTheWholeRoad() {
        QFETCH(int, flow);
        QFETCH(int, phase);
        Shell shell;
        road::open(shell, squareMesh(side));
        setUp(shell, flow, phase);
        setWalls(shell);
        lookAtTheRunControl(shell);
        if (QTest::currentTestFailed())
            return;
        shell.find<QTextBrowser>("textBrowser")->clear();
        road::compute(shell, "300", "100", "run.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QTRY_COMPARE_WITH_TIMEOUT(shell.terminal().size(), 5, patience);
        QCOMPARE(shell.terminal().mid(0, 4), QStringList({"time=0", "time=100", "time=200", "Compute done"}));

        QStringList expected{"run_fl.txt", "run_Tave.txt"};
        for (const int n : {0, 100, 200, 300})
            expected << "run_" + fourier(n) + ".dat";
        expected.sort();
        QStringList files = QDir(shell.folder.path()).entryList({"run*"}, QDir::Files);
        files.sort();
        QCOMPARE(files, expected);
        for (const QString& file : files.filter(".dat"))
            QVERIFY2(isWhole(shell, file), qPrintable(file));
        compareHistory(shell, "run_fl.txt", 5, 1.0);
        compareHistory(shell, "run_Tave.txt", 3, scale);

        const QString last = shell.path("run_" + fourier(300) + ".dat");
        const std::vector<double> H = cellBlock(last, 4, points, cells);
        const std::vector<double> fl = cellBlock(last, 5, points, cells);
        for (std::size_t row = 0; row < side; ++row) {
            QCOMPARE(fl[row * side], 1.0);
            QVERIFY(H[row * side] > caseSettings.Hliquidus);
            QCOMPARE(fl[row * side + side - 1], 0.0);
            QVERIFY(H[row * side + side - 1] < 0.0);
        }
        QVERIFY(std::all_of(fl.begin(), fl.end(), [](double f) { return f >= 0.0 && f <= 1.0; }));
        const double atFirst = mean(cellBlock(shell.path("run_0.dat"), 5, points, cells));
        QVERIFY2(atFirst < 0.01, "the typed initial fraction has no effect");
        compareVariant(last, flow == 1, phase == 2);
    }

    void theFaceDumpShowsTheWallsFractionAndEnthalpy() {
        Shell shell;
        road::open(shell, squareMesh(side));
        setUp(shell, 2, 1);
        setWalls(shell);
        if (QTest::currentTestFailed())
            return;
        road::compute(shell, "1", "1", "run.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        shell.choose("actionFace");
        const QList<QByteArray> lines = road::linesOf(shell.path("face.txt"));
        QCOMPARE(lines.size(), fluvane::mesh.totalFaceCount());
        // The zone "left" comes last.
        const QByteArray wallH = QByteArray::number(fluvane::enthalpyOf(scale), 'g', 6);
        for (int i = 0; i < side; ++i) {
            const QByteArray& line = lines[lines.size() - 1 - i];
            QVERIFY2(line.endsWith(" 1 " + wallH + '\r'), line.constData());
        }
        QVERIFY2(!lines[0].endsWith(" 1 " + wallH + '\r'), lines[0].constData());
    }

private:
    static bool isWhole(const Shell& shell, const QString& file) {
        return road::isWholeResult(shell.path(file), points, cells);
    }
};

QTEST_MAIN(MeltingRoadTest)
#include "melting_road_test.moc"
