// A case from Open to its result files, through the real windows and the real solver.
#include "app/main_window.h"
#include "case_road.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <algorithm>

using fluvane::caseSettings;
using road::compute;
using road::computeWithoutEnd;
using road::isWholeResult;
using road::linesOf;
using road::open;
using road::pick;
using road::type;

class WholeRoadTest : public QObject {
    Q_OBJECT

private:
    static constexpr int side = 8;
    static constexpr int cells = side * side;
    static constexpr int points = (side + 1) * (side + 1);

    /// Lattice defaults; forced flow at Re 100, or conduction.
    static void setUp(Shell& shell, bool flow, bool steady) {
        shell.choose("actionLattice");
        Shell::press(Shell::dialog("Lattice_Win"), "pushButton_ok");
        QWidget* const physics = Shell::dialog("Initial_Win");
        pick(physics, "comboBox_flow", flow ? 0 : 2);
        pick(physics, "comboBox_time", steady ? 0 : 1);
        type(physics, "lineEdit_L", "1");
        type(physics, "lineEdit_Re_or_Ra", "100");
        type(physics, "lineEdit_Pr", flow ? "1" : "0.1");
        Shell::press(physics, "pushButton_ok");
        QVERIFY(caseSettings.latticeInitialised);
    }

    /// Walls at rest but the top, which slides.
    static void setCavityWalls(Shell& shell) {
        shell.choose("actionBoundary");
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win");
        for (const char* const zone : {"bottom", "right", "top", "left"}) {
            QVERIFY(wizard->findChild<QLabel*>("labelBI")->text().contains(zone));
            type(wizard, "lineEdit_ux", qstrcmp(zone, "top") == 0 ? "1" : "0");
            type(wizard, "lineEdit_uy", "0");
            Shell::press(wizard, "pushButtonnext");
        }
        QVERIFY(caseSettings.boundaryInitialised && shell.window->isVisible());
    }

    static void prepareCavity(Shell& shell, bool steady = true, int n = side) {
        open(shell, squareMesh(n));
        setUp(shell, true, steady);
        setCavityWalls(shell);
        shell.find<QTextBrowser>("textBrowser")->clear();
        shell.answers.seen.clear();
    }

private slots:
    void openingShowsCountsAndExactlyTheZoneNames() {
        Shell shell;
        open(shell, squareMesh(side));
        QCOMPARE(shell.answers.seen, QStringList({"Velocity file [*.2Dv]", "Mesh file [*.msh]"}));
        QCOMPARE(shell.text("labelnumcell"), QString("Num of Cell: 64"));
        QCOMPARE(shell.text("labelnumface"), QString("Num of Face: 144"));
        QCOMPARE(shell.text("labelnumpoint"), QString("Num of Point: 81"));
        QStringList names;
        for (const QString& name : fluvane::mesh.zoneNames)
            names << name;
        QCOMPARE(names.size(), 4);
        QCOMPARE(shell.terminal(), names);
        QVERIFY(shell.window->isVisible() && !Shell::dialog("Dimension_Win")->isVisible());
    }

    void aSecondMeshReplacesCountsAndTerminal() {
        Shell shell;
        open(shell, squareMesh(side));
        fluvane::appendTerminalLine("something said since");
        open(shell, ringMesh(12, 3));
        QCOMPARE(shell.text("labelnumcell"), QString("Num of Cell: 36"));
        QCOMPARE(shell.text("labelnumface"), QString("Num of Face: 84"));
        QCOMPARE(shell.text("labelnumpoint"), QString("Num of Point: 48"));
        QCOMPARE(shell.terminal().size(), 2);
        QVERIFY(shell.terminal().at(0).contains("inner") && shell.terminal().at(1).contains("outer"));
    }

    void theWizardReopensWhereItWasLeftUntilAnotherMeshIsRead() {
        Shell shell;
        prepareCavity(shell);
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win");
        const auto* const zone = wizard->findChild<QLabel*>("labelBI");
        const auto* const next = wizard->findChild<QPushButton*>("pushButtonnext");
        shell.choose("actionBoundary");
        QVERIFY(zone->text().contains("left"));
        QCOMPARE(next->text(), QString("ok"));
        Shell::press(wizard, "pushButtoncancel");
        open(shell, squareMesh(4)); // as many zones as before
        shell.choose("actionBoundary");
        QVERIFY(zone->text().contains("bottom"));
        QCOMPARE(next->text(), QString("next"));
        Shell::press(wizard, "pushButtoncancel");
    }

    void complaintsOfThisOpeningSurviveTheClearing() {
        Shell shell;
        const QuadMesh square = squareMesh(2);
        QVERIFY(writeText(shell.path("nine.2Dv"), velocityLines));
        QVERIFY(QuadMeshFile(square).write(shell.path("case.msh")));
        fluvane::reportProblem("of an earlier opening");
        // What a reader complains about comes while the file dialogs run.
        QTimer complaint;
        connect(&complaint, &QTimer::timeout, this, [&complaint] {
            fluvane::reportProblem("of this opening");
            complaint.stop();
        });
        complaint.start(0);
        shell.answers.names = QStringList{shell.path("nine.2Dv"), shell.path("case.msh")};
        emit shell.window->Read_velocity();
        QCOMPARE(shell.terminal().size(), 5);
        QCOMPARE(shell.terminal().constLast(), QString("of this opening"));
    }

    void longCountsAreNotCutOff() {
        Shell shell;
        open(shell, squareMesh(110));
        QCOMPARE(shell.text("labelnumpoint"), QString("Num of Point: 12321"));
        for (const char* const name : {"labelnumcell", "labelnumface", "labelnumpoint"}) {
            const auto* const label = shell.find<QLabel>(name);
            QVERIFY2(label->fontMetrics().horizontalAdvance(label->text()) <= label->width(), name);
            QCOMPARE(label->font().pointSize(), 12);
        }
    }

    void aSteadyRunReportsAndWritesItsFiles() {
        Shell shell;
        prepareCavity(shell);
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
        QCOMPARE(QDir(shell.folder.path()).entryList({"run*"}, QDir::Files),
                 QStringList({"run_0.dat", "run_10.dat", "run_20.dat"}));
        for (const char* const file : {"run_0.dat", "run_10.dat", "run_20.dat"})
            QVERIFY2(isWholeResult(shell.path(file), points, cells), file);
        QCOMPARE(shell.answers.seen, QStringList("Auto Saved [*.dat]"));
    }

    void theLidDragsTheFluidAlong() {
        Shell shell;
        prepareCavity(shell);
        compute(shell, "200", "200", "run");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        const QList<QByteArray> lines = linesOf(shell.path("run_200.dat"));
        QVERIFY(lines.size() > road::headLines + 2 * points + 2 * cells);
        const double besideLid =
            lines[road::headLines + 2 * points + cells + cells - side / 2].trimmed().toDouble();
        QVERIFY2(besideLid > 0.1 && besideLid < 1, QByteArray::number(besideLid).constData());
    }

    void conductionInARingRunsUntilItHasConverged() {
        Shell shell;
        open(shell, ringMesh(16, 4));
        setUp(shell, false, true);
        shell.choose("actionBoundary");
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win");
        for (const char* const T : {"2", "1"}) {
            pick(wizard, "comboBox", 1);
            type(wizard, "lineEdit_T", T);
            Shell::press(wizard, "pushButtonnext");
        }
        shell.find<QTextBrowser>("textBrowser")->clear();
        type(Shell::dialog("NUM_Process_Win"), "lineEdit_Error_T", "1e-7");
        compute(shell, "0", "100", "ring.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), 120000);
        QTRY_VERIFY_WITH_TIMEOUT(shell.terminal().contains("Compute done"), patience);
        const QStringList files = QDir(shell.folder.path()).entryList({"ring_*.dat"}, QDir::Files);
        QVERIFY(files.size() > 1);
        const QString reported = shell.terminal().at(shell.terminal().size() - 3);
        const auto step = QRegularExpression("^Time Steps=([0-9]+) ").match(reported).captured(1);
        QVERIFY2(files.contains("ring_" + step + ".dat"), qPrintable(reported));
        // The line compares with the exact profile, from which the state at rest is far away.
        const auto errorIn = [&shell](const QString& file) {
            return linesOf(shell.path(file)).value(6).trimmed().mid(qstrlen("error=")).toDouble();
        };
        QVERIFY(errorIn("ring_0.dat") > 0.5);
        const double error = errorIn("ring_" + step + ".dat");
        QVERIFY2(error > 0.0 && error < 0.1, QByteArray::number(error).constData());
    }

    void aTransientRunWritesHistoriesAndFilesNamedByTheFourierNumber() {
        Shell shell;
        prepareCavity(shell, false);
        compute(shell, "3", "2", "run.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QTRY_COMPARE_WITH_TIMEOUT(shell.terminal().size(), 4, patience);
        QCOMPARE(shell.terminal().mid(0, 3), QStringList({"time=0", "time=2", "Compute done"}));
        const QStringList files = QDir(shell.folder.path()).entryList({"run_*.dat"}, QDir::Files);
        QVERIFY(files.contains("run_0.dat"));
        const double Fo = 3 * caseSettings.dt * caseSettings.alpha / caseSettings.L / caseSettings.L;
        QVERIFY(files.contains("run_" + QString::number(Fo) + ".dat"));
        QCOMPARE(linesOf(shell.path("run_fl.txt")).size(), 1);
        QCOMPARE(linesOf(shell.path("run_Tave.txt")).size(), 1);
    }

    void duringARunSaveHoldsOneInstantAndTheRestIsRefused() {
        constexpr int n = 40;
        Shell shell;
        prepareCavity(shell, true, n);
        computeWithoutEnd(shell, "50", "long.dat");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(shell.path("long_50.dat")), patience);
        QVERIFY(fluvane::runActive());
        shell.answers.seen.clear();

        shell.answers.names = QStringList{shell.path("saved.dat")};
        shell.choose("actionSave");
        QVERIFY(isWholeResult(shell.path("saved.dat"), (n + 1) * (n + 1), n * n));
        shell.choose("actionOpen");
        shell.find<QPushButton>("pushButton_compute")->click();
        const QString running = "Message: A computation is running; please wait until it is done";
        QCOMPARE(shell.answers.seen,
                 QStringList({"Data file [*.dat]", "Message: Save Succeed", running, running}));
        QVERIFY(shell.window->isVisible() && fluvane::runActive());
        shell.choose("actionFace");
        QVERIFY(QFile::exists(shell.path("face.txt")));
    }

    void theWindowAnswersPromptlyDuringARun() {
        Shell shell;
        prepareCavity(shell, true, 40);
        computeWithoutEnd(shell, "100", "long.dat");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(shell.path("long_0.dat")), patience);
        qint64 worst = 0;
        int ticks = 0;
        QElapsedTimer since;
        QTimer tick;
        connect(&tick, &QTimer::timeout, this, [&] {
            worst = std::max(worst, since.restart() - 10);
            ++ticks;
            shell.window->repaint();
        });
        since.start();
        tick.start(10);
        QTRY_VERIFY_WITH_TIMEOUT(ticks >= 100, patience);
        tick.stop();
        QVERIFY(fluvane::runActive());
        qInfo("latest a 10 ms timer came during a run: %lld ms", static_cast<long long>(worst));
        QVERIFY(worst < 5000);
    }

    void closingDuringARunEndsItAndLeavesWholeFiles() {
        constexpr int n = 40;
        Shell shell;
        prepareCavity(shell, true, n);
        computeWithoutEnd(shell, "20", "long.dat");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(shell.path("long_20.dat")), patience);
        QElapsedTimer since;
        since.start();
        QTimer::singleShot(0, shell.window.get(), &QWidget::close);
        QCOMPARE(QCoreApplication::exec(), 0);
        QThreadPool::globalInstance()->waitForDone();
        qInfo("from closing to the end of the run: %lld ms", static_cast<long long>(since.elapsed()));
        QVERIFY(since.elapsed() < 10000);
        QVERIFY(!fluvane::runActive());
        const QDir folder(shell.folder.path());
        QVERIFY(folder.entryList({"long_*"}, QDir::Files).size() >= 2);
        for (const QString& file : folder.entryList({"long_*"}, QDir::Files))
            QVERIFY2(isWholeResult(folder.filePath(file), (n + 1) * (n + 1), n * n), qPrintable(file));
        QVERIFY(!shell.terminal().contains("Compute done"));
        QTimer::singleShot(0, qApp, [] { QCoreApplication::quit(); });
        QCoreApplication::exec();
    }
};

QTEST_MAIN(WholeRoadTest)
#include "whole_road_test.moc"
