// A run while the user is busy in the windows: nothing races, nothing is lost, odd input does no harm.
#include "app/case_road.h"
#include "app/main_window.h"

#include <functional>

using fluvane::caseSettings;
using road::compute;
using road::computeWithoutEnd;
using road::isWholeResult;
using road::pick;
using road::type;

class BusyRunTest : public QObject {
    Q_OBJECT

private:
    static constexpr int side = 20;
    static constexpr int cells = side * side;
    static constexpr int points = (side + 1) * (side + 1);

    /// Confirms lattice and physics as they stand but for the given fields.
    static void setUp(const Shell& shell, bool steady, const QString& Re = "100", const QString& Ma = "0.1") {
        shell.choose("actionLattice");
        Shell::press(Shell::dialog("Lattice_Win"), "pushButton_ok");
        QWidget* const physics = Shell::dialog("Initial_Win");
        pick(physics, "comboBox_flow", 0);
        pick(physics, "comboBox_time", steady ? 0 : 1);
        type(physics, "lineEdit_L", "1");
        type(physics, "lineEdit_Ma", Ma);
        type(physics, "lineEdit_Re_or_Ra", Re);
        type(physics, "lineEdit_Pr", "1");
        Shell::press(physics, "pushButton_ok");
    }

    static void setWalls(const Shell& shell) {
        shell.choose("actionBoundary");
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win");
        for (int zone = 0; zone < 4; ++zone)
            Shell::press(wizard, "pushButtonlast"); // a second walk begins where the first one ended
        for (int zone = 0; zone < 4; ++zone) {
            type(wizard, "lineEdit_ux", zone == 2 ? "1" : "0");
            type(wizard, "lineEdit_uy", "0");
            Shell::press(wizard, "pushButtonnext");
        }
        QVERIFY(shell.window->isVisible());
    }

    static void prepare(Shell& shell, bool steady = true, const QString& Re = "100",
                        const QString& Ma = "0.1") {
        road::open(shell, squareMesh(side));
        setUp(shell, steady, Re, Ma);
        setWalls(shell);
        shell.find<QTextBrowser>("textBrowser")->clear();
        shell.answers.seen.clear();
    }

    /// Saves under a name that is free, and looks at the file.
    static void save(Shell& shell) {
        const QString path = shell.path("saved.dat");
        QFile::remove(path);
        shell.answers.names = QStringList{path};
        shell.choose("actionSave");
        QVERIFY(isWholeResult(path, points, cells));
    }

    static QByteArray content(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// What a run of 100 steps leaves under "run", with `meanwhile` done again and again until it ends.
    static QByteArray resultOfARun(bool steady, const std::function<void(Shell&)>& meanwhile, int* times) {
        Shell shell;
        prepare(shell, steady);
        compute(shell, "100", "25", "run.dat");
        while (fluvane::runActive()) {
            meanwhile(shell);
            ++*times;
            QCoreApplication::processEvents();
        }
        QByteArray all;
        const QDir folder(shell.folder.path());
        for (const QString& file : folder.entryList({"run_*"}, QDir::Files, QDir::Name))
            all += file.toUtf8() + '\n' + content(folder.filePath(file));
        return all;
    }

private slots:
    void aRunWithSavesAndDumpsGivesTheSameBitsAsOneWithout_data() {
        QTest::addColumn<bool>("steady");
        QTest::newRow("steady") << true;
        QTest::newRow("transient") << false;
    }
    void aRunWithSavesAndDumpsGivesTheSameBitsAsOneWithout() {
        QFETCH(bool, steady);
        int looks = 0;
        int saves = 0;
        const QByteArray quiet = resultOfARun(
            steady, [](Shell&) { QTest::qWait(1); }, &looks);
        const QByteArray busy = resultOfARun(
            steady,
            [](Shell& shell) {
                save(shell);
                for (const char* const dump : {"actionCell", "actionFace", "actionPoint"})
                    shell.choose(dump);
            },
            &saves);
        QVERIFY2(saves > 0, "the run was over before anything was saved");
        QVERIFY(quiet.count("ZONE N=") >= 5);
        QVERIFY(quiet == busy);
    }

    void dialogsConfirmedDuringARunTakeTurnsWithItsSteps() {
        Shell shell;
        prepare(shell);
        // A field just set to rest has not changed: below no tolerance, so that a look at it then ends
        // nothing.
        computeWithoutEnd(shell, "20", "run.dat");
        for (int round = 0; round < 5; ++round) {
            setUp(shell, true);
            setWalls(shell);
            save(shell);
            shell.choose("actionHelp");
            shell.choose("actionVersion");
            QCoreApplication::processEvents();
        }
        QVERIFY2(fluvane::runActive(), qPrintable(shell.terminal().join('\n')));
        QVERIFY(!shell.terminal().isEmpty());
    }

    void oddRunInputNeitherHangsNorCrashes_data() {
        QTest::addColumn<QString>("threads");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("interval");
        QTest::addColumn<QString>("said"); ///< in a box, when nothing can start
        QTest::newRow("no interval") << "2"
                                     << "5"
                                     << "0"
                                     << "Error: Terminal must be at least 1";
        QTest::newRow("negative interval") << "2"
                                           << "5"
                                           << "-3"
                                           << "Error: Terminal must be at least 1";
        QTest::newRow("empty interval") << "2"
                                        << "5"
                                        << ""
                                        << "Error: Terminal must be at least 1";
        QTest::newRow("word for an interval") << "2"
                                              << "5"
                                              << "ten"
                                              << "Error: Terminal must be at least 1";
        QTest::newRow("negative steps") << "2"
                                        << "-7"
                                        << "1"
                                        << "";
        QTest::newRow("no threads") << "0"
                                    << "3"
                                    << "1"
                                    << "";
        QTest::newRow("negative threads") << "-4"
                                          << "3"
                                          << "1"
                                          << "";
        QTest::newRow("empty threads") << ""
                                       << "3"
                                       << "1"
                                       << "";
        QTest::newRow("more threads than processors") << "50"
                                                      << "3"
                                                      << "1"
                                                      << "";
        QTest::newRow("number too large to be one") << "99999999999"
                                                    << "3"
                                                    << "1"
                                                    << "";
        QTest::newRow("interval beyond the steps") << "2"
                                                   << "3"
                                                   << "100000"
                                                   << "";
    }
    void oddRunInputNeitherHangsNorCrashes() {
        QFETCH(QString, threads);
        QFETCH(QString, steps);
        QFETCH(QString, interval);
        QFETCH(QString, said);
        Shell shell;
        prepare(shell);
        shell.answers.names = QStringList{shell.path("run.dat")};
        shell.find<QPushButton>("pushButton_compute")->click();
        QWidget* const control = Shell::dialog("NUM_Process_Win");
        type(control, "lineEdit_Process", threads);
        type(control, "lineEdit_Time_Step", steps);
        type(control, "lineEdit_Terminal", interval);
        type(control, "lineEdit_Error_U", "");
        type(control, "lineEdit_Error_T", "");
        Shell::press(control, "pushButton_ok");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QVERIFY(shell.window->isVisible());
        if (said.isEmpty()) {
            QTRY_VERIFY_WITH_TIMEOUT(shell.terminal().contains("Compute done"), patience);
            const int last = std::max(steps.toInt(), 0);
            QVERIFY(isWholeResult(shell.path(QStringLiteral("run_%1.dat").arg(last)), points, cells));
        } else {
            QCOMPARE(shell.answers.seen, QStringList(said));
            QVERIFY(QDir(shell.folder.path()).entryList({"run_*"}).isEmpty());
        }
    }

    void withoutAStepCountAnEmptyToleranceRunsOnUntilTheWindowCloses() {
        Shell shell;
        prepare(shell);
        QWidget* const control = Shell::dialog("NUM_Process_Win");
        type(control, "lineEdit_Error_U", "");
        type(control, "lineEdit_Error_T", "");
        compute(shell, "", "50", "run.dat");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(shell.path("run_100.dat")), patience);
        QVERIFY(fluvane::runActive());
    }

    void emptySetUpFieldsDoNoHarm() {
        Shell shell;
        road::open(shell, squareMesh(side));
        shell.choose("actionLattice");
        QWidget* const lattice = Shell::dialog("Lattice_Win");
        QWidget* const physics = Shell::dialog("Initial_Win");
        for (QWidget* const dialog : {lattice, physics})
            for (QLineEdit* const field : dialog->findChildren<QLineEdit*>())
                field->clear();
        Shell::press(lattice, "pushButton_ok");
        if (physics->isVisible())
            Shell::press(physics, "pushButton_ok");
        shell.choose("actionBoundary");
        QWidget* const wizard = Shell::dialog("Boundary_Information_Win");
        for (int zone = 0; zone < 4; ++zone) {
            for (QLineEdit* const field : wizard->findChildren<QLineEdit*>())
                field->clear();
            Shell::press(wizard, "pushButtonnext");
        }
        compute(shell, "3", "1", "run.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QVERIFY(shell.window->isVisible());
    }

    // Deliberate: a NaN ends a run with a step count with "Wrong", one without a count without a word.
    void aDivergingRunEndsAndTheNextCaseWorks_data() {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("said");
        QTest::newRow("with a step count") << "100000"
                                           << "Wrong";
        QTest::newRow("without one") << "0"
                                     << "";
    }
    void aDivergingRunEndsAndTheNextCaseWorks() {
        QFETCH(QString, steps);
        QFETCH(QString, said);
        Shell shell;
        prepare(shell, true, "1e7", "40");
        compute(shell, steps, "10", "bad.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QCOMPARE(shell.terminal().contains("Wrong"), !said.isEmpty());
        QVERIFY(!shell.terminal().contains("Compute done"));
        const QStringList files = QDir(shell.folder.path()).entryList({"bad_*.dat"}, QDir::Files);
        QVERIFY(std::any_of(files.begin(), files.end(), [&shell](const QString& file) {
            return content(shell.path(file)).contains("nan");
        }));

        prepare(shell);
        compute(shell, "5", "5", "good.dat");
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QTRY_VERIFY_WITH_TIMEOUT(shell.terminal().contains("Compute done"), patience);
        QVERIFY(isWholeResult(shell.path("good_5.dat"), points, cells));
        QVERIFY(!content(shell.path("good_5.dat")).contains("nan"));
    }
};

QTEST_MAIN(BusyRunTest)
#include "busy_run_test.moc"
