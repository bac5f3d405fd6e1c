// The 3D driver: which files it writes and how often, what it says, how it ends.
#include "solver3d/drivers.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "output/result_file.h"
#include "output/terminal.h"
#include "setup/boundary_assignment.h"
#include "setup/initial_fields.h"
#include "solver2d/drivers.h"
#include "solver3d/time_step.h"
#include "support/case_runner.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "support/spare_memory.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <omp.h>
#include <thread>

#ifdef Q_OS_LINUX
#include "support/placed_files.h"
#endif

using namespace fluvane;

namespace {

constexpr int lidZone = 5;

class Drivers3D : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        clearStopRequest();
        support::useD3Q19();
        support::makeMesh(support::boxOfTetrahedra(2, 2, 2, {0.5, 0.5, 0.5}), 6,
                          support::sidesOfBox3D({1.0, 1.0, 1.0}));
        initialise(true, false);
        setTerminalSink([this](const QString& line) { lines.append(line); });
    }
    void TearDown() override {
        setTerminalSink({});
        clearStopRequest();
        support::resetProcessState();
    }

    /// Flow under a lid, heated by it when heat is on; or conduction from the lid.
    static void initialise(bool flow, bool heat) {
        support::useLattice(0.15);
        initialiseFields(1.0, 0.1, flow ? 1.0 : 0.1, 20.0, 1.0, flow ? 0 : 2, heat ? 1 : 0, 0, 0, 0);
        for (int zone = 0; zone <= lidZone; ++zone) {
            const auto z = static_cast<std::size_t>(zone);
            const std::int32_t first = zone == 0 ? mesh.interiorFaceCount : mesh.zoneLastFace[z - 1];
            const bool lid = zone == lidZone;
            assignBoundary3D(first, mesh.zoneLastFace[z], lid ? 1.0 : 0.0, 0.0, 0.0, 0, heat ? 1 : 0,
                             lid ? 1.0 : 0.0);
        }
        takeProblems();
    }

    bool run(int steps, int interval, const QString& name = "run.dat", double tolerance = 1e-9) {
        return run3D(nullptr, 1, tolerance, tolerance, steps, interval, path(name));
    }
    QString path(const QString& name) const { return folder.filePath(name); }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }
    QByteArray content(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QByteArray presentState() const {
        EXPECT_TRUE(writeResult3D(path("present")));
        const QByteArray bytes = content("present");
        QFile::remove(path("present"));
        return bytes;
    }
    void expectNormalEnd(int n) const {
        ASSERT_GE(lines.size(), 3);
        EXPECT_TRUE(lines[lines.size() - 3].startsWith(QString("Time Steps=%1   error_u=").arg(n)))
            << lines[lines.size() - 3].toStdString();
        EXPECT_EQ(lines[lines.size() - 2], "Compute done");
        EXPECT_TRUE(QRegularExpression("^time=[0-9]+$").match(lines.last()).hasMatch())
            << lines.last().toStdString();
    }
    /// The step of the last residuals said before the end.
    int lastStep() const {
        return QRegularExpression("^Time Steps=([0-9]+) ")
            .match(lines.value(lines.size() - 3))
            .captured(1)
            .toInt();
    }

    QTemporaryDir folder;
    QStringList lines;
};

} // namespace

TEST_F(Drivers3D, MoreThreadsThanTheProcessCanHaveAreRefusedInsteadOfEndingIt) {
    if (!support::addressSpaceIsOurs)
        GTEST_SKIP() << "the address space cannot be limited here";
    {
        const support::SpareMemory spare(std::size_t{40} << 20); // a stack takes 2 MB or more
        EXPECT_FALSE(run3D(nullptr, 50, 1e-9, 1e-9, 5, 1, folder.filePath("run.dat")));
    }
    EXPECT_EQ(lines, QStringList("50 threads cannot be had here: ask for fewer. Nothing was started."));
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST_F(Drivers3D, OneStepWritesStepZeroAndTheFinalFile) {
    EXPECT_TRUE(run(1, 1));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_1.dat"}));
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines[0].startsWith("Time Steps=0   error_u="));
    expectNormalEnd(1);
}

TEST_F(Drivers3D, FilesAppearAtMultiplesOfTheIntervalAndAtTheEnd) {
    EXPECT_TRUE(run(7, 3));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_3.dat", "run_6.dat", "run_7.dat"}));
    EXPECT_EQ(lines.size(), 6);
    expectNormalEnd(7);
}

TEST_F(Drivers3D, AFileOfStepSHoldsTheStateAfterOneStepMoreAndTheLastThatOfTheLimit) {
    EXPECT_TRUE(run(5, 2));
    for (const int s : {0, 2, 4, 5}) {
        SetUp();
        const int steps = s == 5 ? 5 : s + 1;
        for (int n = 0; n < steps; ++n)
            step3D();
        EXPECT_EQ(content(QString("run_%1.dat").arg(s)), presentState()) << s;
    }
    EXPECT_EQ(content("run_4.dat"), content("run_5.dat"));
    EXPECT_NE(content("run_2.dat"), content("run_4.dat"));
}

TEST_F(Drivers3D, NegativeLimitWritesTheInitialStateAsStepZeroAndStillChecksAndEnds) {
    const QByteArray initial = presentState();
    EXPECT_TRUE(run(-3, 1));
    EXPECT_EQ(files(), QStringList({"run_0.dat"}));
    EXPECT_EQ(content("run_0.dat"), initial);
    EXPECT_EQ(lines.size(), 3);
    expectNormalEnd(0);
}

TEST_F(Drivers3D, WithoutALimitItRunsUntilConverged) {
    initialise(false, true);
    EXPECT_TRUE(run(0, 50));
    const int n = lastStep();
    EXPECT_GT(n, 50);
    EXPECT_EQ(n % 50, 0);
    EXPECT_EQ(files().size(), n / 50 + 1);
    EXPECT_EQ(lines.size(), n / 50 + 1 + 3);
    expectNormalEnd(n);
}

TEST_F(Drivers3D, ALimitBeyondConvergenceEndsAtTheSameStep) {
    initialise(false, true);
    EXPECT_TRUE(run(0, 50));
    const int n = lastStep();
    lines.clear();
    initialise(false, true);
    EXPECT_TRUE(run(1000000, 50, "limited.dat"));
    EXPECT_EQ(lastStep(), n);
    expectNormalEnd(n);
    EXPECT_EQ(content(QString("limited_%1.dat").arg(n)), content(QString("run_%1.dat").arg(n)));
}

TEST_F(Drivers3D, DeliberateTheTolerancesAreNotUsed) {
    EXPECT_TRUE(run(3, 1, "run.dat", 1e30));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_1.dat", "run_2.dat", "run_3.dat"}));
    SetUp();
    initialise(false, true);
    EXPECT_TRUE(run(0, 50, "other.dat", 0.0)) << "converges all the same";
}

#ifdef Q_OS_LINUX
TEST_F(Drivers3D, DeliberateTheConvergedStateIsWrittenThreeTimesWithALimitAndTwiceWithout) {
    for (const int limit : {1000000, 0}) {
        lines.clear();
        initialise(false, true);
        const QString name = QString("run%1").arg(limit);
        QByteArray atSavePoint;
        setTerminalSink([&](const QString& line) {
            // The last but one is the one that converges; the last tells the final residuals.
            const QString step = QRegularExpression("^Time Steps=([0-9]+) ").match(line).captured(1);
            if (!step.isEmpty() && !lines.value(lines.size() - 1).startsWith("Time Steps=" + step + ' '))
                atSavePoint = content(name + '_' + step + ".dat");
            lines.append(line);
        });
        support::PlacedFiles placed(folder.path());
        EXPECT_TRUE(run(limit, 50, name + ".dat"));
        const QString last = QString("%1_%2.dat").arg(name).arg(lastStep());
        EXPECT_EQ(placed.count(last), limit == 0 ? 2 : 3);
        EXPECT_EQ(placed.count(name + "_0.dat"), 1);
        EXPECT_EQ(content(last), atSavePoint) << "each time with the same content";
        EXPECT_FALSE(atSavePoint.isEmpty());
    }
}

TEST_F(Drivers3D, ALimitThatRunsOutWritesItsFileOnce) {
    support::PlacedFiles placed(folder.path());
    EXPECT_TRUE(run(2, 2));
    EXPECT_EQ(placed.count("run_0.dat"), 1);
    EXPECT_EQ(placed.count("run_2.dat"), 1);
}

TEST_F(Drivers3D, DeliberateInTwoDimensionsItIsTheOtherWayRound) {
    for (const int limit : {1000000, 0}) {
        support::resetProcessState();
        support::useD2Q9();
        support::makeMesh(support::rectangles(4, 4), 4, support::sidesOfBox());
        support::useLattice(0.4);
        initialiseFields(1.0, 0.1, 0.1, 20.0, 1.0, 2, 1, 0, 0, 0);
        support::assignZone(0, support::wallAt(1.0));
        support::assignZone(1, support::wallAt(0.0));
        setTerminalSink([this](const QString& line) { lines.append(line); });
        const QString name = QString("plane%1").arg(limit);
        support::PlacedFiles placed(folder.path());
        EXPECT_TRUE(runSteady2D(nullptr, 1, 1e-6, 1e-6, limit, 50, path(name)));
        EXPECT_GT(lastStep(), 0);
        EXPECT_EQ(placed.count(QString("%1_%2.dat").arg(name).arg(lastStep())), limit == 0 ? 3 : 2);
    }
}
#endif

TEST_F(Drivers3D, NaNEndsTheRunAtItsSavePointWithoutAWord) {
    for (const int limit : {10, 0}) {
        SetUp();
        mesh.cells3D[3].fTilde[0] = NAN;
        EXPECT_FALSE(run(limit, 1, QString("nan%1.dat").arg(limit)));
        EXPECT_TRUE(lines.isEmpty()) << lines.join('\n').toStdString();
    }
    EXPECT_EQ(files(), QStringList({"nan0_0.dat", "nan10_0.dat"}));
}

TEST_F(Drivers3D, NaNAfterTheLastStepIsWrittenButEndsTheRunWithoutAWord) {
    setTerminalSink([this](const QString& line) {
        lines.append(line);
        mesh.cells3D[3].fTilde[0] = NAN; // said in the check of step 0, which holds the gate
    });
    EXPECT_FALSE(run(3, 100));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_3.dat"}));
    EXPECT_EQ(lines.size(), 1);
    EXPECT_TRUE(content("run_3.dat").contains("nan"));
}

TEST_F(Drivers3D, ResultsGoToTheFolderThatWasChosenWhateverItsName) {
    ASSERT_TRUE(QDir(folder.path()).mkdir("my.data"));
    EXPECT_TRUE(run(-1, 1, "my.data/run.dat"));
    EXPECT_TRUE(QFile::exists(folder.filePath("my.data/run_0.dat")));
}

TEST_F(Drivers3D, EveryDotDatIsTakenOutOfTheNameAndOnlyLowerCase) {
    EXPECT_TRUE(run(-1, 1, "a.dat.dat"));
    EXPECT_TRUE(run(-1, 1, "b"));
    EXPECT_TRUE(run(-1, 1, "c.DAT"));
    EXPECT_EQ(files(), QStringList({"a_0.dat", "b_0.dat", "c.DAT_0.dat"}));
}

TEST_F(Drivers3D, IntervalBelowOneStartsNothingAndSaysSo) {
    EXPECT_FALSE(run(5, 0));
    EXPECT_FALSE(run(5, -1));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].contains("Terminal"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(Drivers3D, VelocityFileReadAfterTheMeshIsRefusedInsteadOfOverrunning) {
    support::useD3Q27();
    EXPECT_FALSE(run(5, 1));
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines[0].contains("velocity file"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(Drivers3D, AMeshOfTheOtherDimensionIsRefusedInsteadOfOverrunning) {
    EXPECT_FALSE(runSteady2D(nullptr, 1, 1e-9, 1e-9, 5, 1, path("plane.dat")));
    EXPECT_FALSE(runTransient2D(nullptr, 1, 5, 1, path("plane.dat")));
    support::useD2Q9();
    support::makeMesh(support::rectangles(4, 4), 4, support::sidesOfBox());
    EXPECT_FALSE(run(5, 1));
    ASSERT_EQ(lines.size(), 3);
    for (const QString& line : lines)
        EXPECT_TRUE(line.contains("other dimension")) << line.toStdString();
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(Drivers3D, EmptyMeshRunsWithoutHarm) {
    mesh.clear();
    EXPECT_TRUE(run(2, 1));
    EXPECT_EQ(files(), QStringList({"run_0.dat"})) << "nothing changes, so the first check ends it";
    expectNormalEnd(0);
}

TEST_F(Drivers3D, WithNothingSwitchedOnTheFirstCheckEndsTheRun) {
    caseSettings.flowOn = 0;
    EXPECT_TRUE(run(0, 1));
    EXPECT_EQ(files(), QStringList({"run_0.dat"}));
    EXPECT_TRUE(lines[0].endsWith("   error_u=0   error_T=0"));
}

TEST_F(Drivers3D, StopRequestEndsTheRunBeforeItsNextStep) {
    setTerminalSink([this](const QString& line) {
        lines.append(line);
        if (line.startsWith("Time Steps=4 "))
            requestStop();
    });
    EXPECT_FALSE(run(0, 2));
    EXPECT_EQ(lines.size(), 3);
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_2.dat", "run_4.dat"}));
}

TEST_F(Drivers3D, VisitorIsLetInBetweenTwoStepsOfARun) {
    std::atomic<bool> done{false};
    std::thread runner([&] {
        run(100000000, 1000000);
        done = true;
    });
    for (int n = 0; n < 50; ++n) {
        const VisitorHold hold;
        EXPECT_FALSE(done.load());
    }
    requestStop();
    runner.join();
}

TEST_F(Drivers3D, TheNumberOfThreadsIsSetAndChangesNoBit) {
    const int before = omp_get_max_threads();
    EXPECT_TRUE(run3D(nullptr, 3, 0, 0, 20, 100, path("three.dat")));
    EXPECT_EQ(omp_get_max_threads(), 3);
    SetUp();
    EXPECT_TRUE(run3D(nullptr, 1, 0, 0, 20, 100, path("one.dat")));
    EXPECT_EQ(omp_get_max_threads(), 1);
    EXPECT_EQ(content("one_20.dat"), content("three_20.dat"));
    omp_set_num_threads(before);
}

TEST_F(Drivers3D, HeatAndFlowTogetherReachTheFile) {
    initialise(true, true);
    EXPECT_TRUE(run(50, 100));
    double fastest = 0.0, hottest = 0.0;
    for (const CellRecord3D& c : mesh.cells3D) {
        fastest = std::max(fastest, c.u / caseSettings.U0);
        hottest = std::max(hottest, c.T);
    }
    EXPECT_GT(fastest, 0.01);
    EXPECT_GT(hottest, 0.01);
    EXPECT_EQ(content("run_50.dat"), presentState());
}
