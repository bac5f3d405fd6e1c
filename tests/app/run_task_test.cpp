// Tests of the run on a pool thread.
#include "app/run_task.h"

#include "shell_fixture.h"

#include <QMutex>
#include <QScopeGuard>
#include <QSemaphore>
#include <QtConcurrent>

class RunTaskTest : public QObject {
    Q_OBJECT

private:
    QStringList said;
    QMutex mutex;

private slots:
    void init() {
        resetProcessState();
        said.clear();
        fluvane::setTerminalSink([this](const QString& line) {
            const QMutexLocker lock(&mutex);
            said << line;
        });
    }
    void cleanup() {
        resetProcessState();
        fluvane::setTerminalSink({});
    }

    void aRunClaimsTheMeshAndGivesItBack() {
        const QTemporaryDir folder;
        RunTask task;
        task.steps = 1;
        task.fileName = folder.filePath("run.dat");
        QVERIFY(startRunTask(task));
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QTRY_VERIFY_WITH_TIMEOUT(QThreadPool::globalInstance()->activeThreadCount() == 0, patience);
        QVERIFY(said.contains("Compute done"));
        QVERIFY(QFile::exists(folder.filePath("run_1.dat")));
    }

    void theToolkitHasAThreadOfThePoolBesideTheRunOnASingleProcessor() {
        QThreadPool* const pool = QThreadPool::globalInstance();
        const int before = pool->maxThreadCount();
        pool->setMaxThreadCount(1);
        const QTemporaryDir folder;
        RunTask task;
        task.steps = 1;
        task.fileName = folder.filePath("run.dat");
        QSemaphore toolkitRan;
        const auto after = qScopeGuard([&] {
            toolkitRan.release(100);
            pool->waitForDone();
            fluvane::setTerminalSink({});
            pool->setMaxThreadCount(before);
        });
        fluvane::setTerminalSink([&toolkitRan](const QString&) {
            if (fluvane::runActive()) // the run waits in its line for a job of the toolkit, as the window
                                      // would
                toolkitRan.tryAcquire(1, 2 * patience);
        });
        QVERIFY(startRunTask(task));
        QtConcurrent::run([&toolkitRan] { toolkitRan.release(100); });
        QVERIFY(toolkitRan.tryAcquire(1, patience));
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
    }

    void aSecondRunIsNotStarted() {
        QVERIFY(fluvane::tryStartRun());
        QVERIFY(!startRunTask({}));
        fluvane::endRun();
        QVERIFY(said.isEmpty());
    }

    void nothingStartsWhenTheProgramIsClosing() {
        fluvane::requestStop();
        QVERIFY(!startRunTask({}));
        QVERIFY(!fluvane::runActive());
    }

    void steadyOrTransientChoosesTheDriver() {
        const QTemporaryDir folder;
        RunTask task;
        task.steps = 1;
        task.steady = false;
        task.fileName = folder.filePath("run.dat");
        QVERIFY(startRunTask(task));
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        QVERIFY(QFile::exists(folder.filePath("run_fl.txt")));
        QVERIFY(QFile::exists(folder.filePath("run_Tave.txt")));
    }

    // Deliberate: the time type does not choose among 3D drivers; there is only one.
    void aThreeDimensionalCaseTakesItsOwnDriverWhateverTheTimeType_data() {
        QTest::addColumn<bool>("steady");
        QTest::newRow("steady") << true;
        QTest::newRow("transient") << false;
    }
    void aThreeDimensionalCaseTakesItsOwnDriverWhateverTheTimeType() {
        QFETCH(bool, steady);
        const QTemporaryDir folder;
        RunTask task;
        task.steps = 1;
        task.is3D = true;
        task.steady = steady;
        task.fileName = folder.filePath("run.dat");
        QVERIFY(startRunTask(task));
        QTRY_VERIFY_WITH_TIMEOUT(!fluvane::runActive(), patience);
        // Nothing changes in the empty mesh, so the check of step 0 ends the run.
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList("run_0.dat"));
        QFile file(folder.filePath("run_0.dat"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("FETETRAHEDRON"));
    }
};

QTEST_MAIN(RunTaskTest)
#include "run_task_test.moc"
