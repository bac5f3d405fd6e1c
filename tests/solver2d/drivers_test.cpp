// The drivers: which files they write, what they say, how they end.
#include "solver2d/drivers.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "output/result_file.h"
#include "output/terminal.h"
#include "setup/initial_fields.h"
#include "solver2d/enthalpy.h"
#include "solver2d/time_step.h"
#include "support/case_runner.h"
#include "support/mesh_builder.h"
#include "support/spare_memory.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <omp.h>
#include <thread>
#include <vector>

using namespace fluvane;

namespace {

class Drivers : public testing::Test {
protected:
    void SetUp() override {
        support::resetProcessState();
        clearStopRequest();
        support::useD2Q9();
        support::makeMesh(support::rectangles(6, 6), 4, support::sidesOfBox());
        support::useLattice(0.4);
        initialiseFields(1.0, 0.1, 1.0, 20.0, 1.0, 0, 0, 0, 0, 0);
        for (const int zone : {0, 1, 2})
            support::assignZone(zone, {});
        support::assignZone(3, support::movingWall(1.0, 0.0));
        takeProblems();
        setTerminalSink([this](const QString& line) { lines.append(line); });
    }
    void TearDown() override {
        setTerminalSink({});
        clearStopRequest();
        support::resetProcessState();
    }

    bool steady(int steps, int interval, double tolerance = 1e-9, const QString& name = "run.dat") {
        return runSteady2D(nullptr, 1, tolerance, tolerance, steps, interval, folder.filePath(name));
    }
    bool transient(int steps, int interval, const QString& name = "run.dat") {
        return runTransient2D(nullptr, 1, steps, interval, folder.filePath(name));
    }
    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files, QDir::Name); }
    QByteArray content(const QString& name) const {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    int historyLines(const QString& name) const { return content(name).count("\r\n"); }
    void expectNormalEnd() const {
        ASSERT_GE(lines.size(), 2);
        EXPECT_EQ(lines[lines.size() - 2], "Compute done");
        EXPECT_TRUE(QRegularExpression("^time=[0-9]+$").match(lines.last()).hasMatch())
            << lines.last().toStdString();
    }

    QTemporaryDir folder;
    QStringList lines;
};

} // namespace

TEST_F(Drivers, OneStepWritesStepZeroAndTheFinalFile) {
    EXPECT_TRUE(steady(1, 1));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_1.dat"}));
    ASSERT_EQ(lines.size(), 4);
    EXPECT_TRUE(lines[0].startsWith("Time Steps=0   error_u="));
    EXPECT_TRUE(lines[1].startsWith("Time Steps=1   error_u="));
    expectNormalEnd();
}

TEST_F(Drivers, FilesAppearAtMultiplesOfTheIntervalAndAtTheEnd) {
    EXPECT_TRUE(steady(7, 3));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_3.dat", "run_6.dat", "run_7.dat"}));
    expectNormalEnd();
}

TEST_F(Drivers, FixedCountThatConvergesEndsAtThatSavePoint) {
    EXPECT_TRUE(steady(100, 5, 10.0));
    // The first check still compares with rest; from the second on everything is below 10.
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_5.dat"}));
    EXPECT_TRUE(lines[lines.size() - 3].startsWith("Time Steps=5 "));
    expectNormalEnd();
}

TEST_F(Drivers, WithoutAStepCountItRunsUntilConverged) {
    EXPECT_TRUE(steady(0, 50, 1e-6));
    const QString last = lines[lines.size() - 3];
    const int n = QRegularExpression("^Time Steps=([0-9]+) ").match(last).captured(1).toInt();
    EXPECT_GT(n, 50);
    EXPECT_EQ(n % 50, 0);
    EXPECT_TRUE(files().contains(QString("run_%1.dat").arg(n)));
    EXPECT_EQ(files().size(), n / 50 + 1);
    expectNormalEnd();
}

TEST_F(Drivers, NegativeCountRunsNoStepAndWritesTheStateAsItIs) {
    EXPECT_TRUE(steady(-3, 1));
    EXPECT_EQ(files(), QStringList({"run_0.dat"}));
    expectNormalEnd();
}

TEST_F(Drivers, ResultsGoToTheFolderThatWasChosenWhateverItsName) {
    ASSERT_TRUE(QDir(folder.path()).mkdir("my.data"));
    EXPECT_TRUE(steady(-1, 1, 1e-9, "my.data/run.dat"));
    EXPECT_TRUE(QFile::exists(folder.filePath("my.data/run_0.dat")));
}

TEST_F(Drivers, EveryDotDatIsTakenOutOfTheNameAndOnlyLowerCase) {
    EXPECT_TRUE(steady(-1, 1, 1e-9, "a.dat.dat"));
    EXPECT_TRUE(steady(-1, 1, 1e-9, "b"));
    EXPECT_TRUE(steady(-1, 1, 1e-9, "c.DAT"));
    EXPECT_EQ(files(), QStringList({"a_0.dat", "b_0.dat", "c.DAT_0.dat"}));
}

TEST_F(Drivers, NaNEndsAFixedCountWithWrong) {
    mesh.cells2D[3].fTilde[0] = NAN;
    EXPECT_FALSE(steady(10, 1));
    EXPECT_EQ(lines, QStringList({"Wrong"}));
    EXPECT_EQ(files(), QStringList({"run_0.dat"}));
}

TEST_F(Drivers, NaNAfterTheLastSavePointIsWrittenButEndsTheRunWithoutAWord) {
    setTerminalSink([this](const QString& line) {
        lines.append(line);
        mesh.cells2D[3].fTilde[0] = NAN; // said in the check of step 0, which holds the gate
    });
    EXPECT_FALSE(steady(3, 100));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_3.dat"}));
    EXPECT_EQ(lines.size(), 1);
    EXPECT_TRUE(content("run_3.dat").contains("nan"));
}

TEST_F(Drivers, TheNumberOfThreadsIsSetAndChangesNoBit) {
    const int before = omp_get_max_threads();
    const auto path = [this](const char* name) { return folder.filePath(name); };
    EXPECT_TRUE(runSteady2D(nullptr, 3, 0, 0, 20, 100, path("three.dat")));
    EXPECT_EQ(omp_get_max_threads(), 3);
    SetUp();
    EXPECT_TRUE(runSteady2D(nullptr, 1, 0, 0, 20, 100, path("one.dat")));
    EXPECT_EQ(omp_get_max_threads(), 1);
    EXPECT_EQ(content("one_20.dat"), content("three_20.dat"));
    SetUp();
    EXPECT_TRUE(runTransient2D(nullptr, 2, 20, 100, path("two.dat")));
    EXPECT_EQ(omp_get_max_threads(), 2);
    omp_set_num_threads(before);
}

TEST_F(Drivers, VelocityWithoutItsOppositeIsRefusedInsteadOfOverrunning) {
    velocitySet.opposite[6] = 9;
    EXPECT_FALSE(steady(5, 1));
    EXPECT_FALSE(transient(5, 1));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].contains("opposite"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(Drivers, MoreThreadsThanTheProcessCanHaveAreRefusedInsteadOfEndingIt) {
    if (!support::addressSpaceIsOurs)
        GTEST_SKIP() << "the address space cannot be limited here";
    {
        const support::SpareMemory spare(std::size_t{40} << 20); // a stack takes 2 MB or more
        EXPECT_FALSE(runSteady2D(nullptr, 50, 1e-9, 1e-9, 5, 1, folder.filePath("run.dat")));
        EXPECT_FALSE(runTransient2D(nullptr, 50, 5, 1, folder.filePath("run.dat")));
    }
    const QString refusal = "50 threads cannot be had here: ask for fewer. Nothing was started.";
    EXPECT_EQ(lines, QStringList({refusal, refusal}));
    EXPECT_TRUE(files().isEmpty());
    EXPECT_TRUE(steady(1, 1));
}

TEST_F(Drivers, ThreadsThatTheLastRunLeftAreNotAskedForOnceMore) {
    if (!support::addressSpaceIsOurs)
        GTEST_SKIP() << "the address space cannot be limited here";
    const auto withFifty = [this] {
        return runSteady2D(nullptr, 50, 1e-9, 1e-9, 1, 1, folder.filePath("run.dat"));
    };
    EXPECT_TRUE(withFifty());
    {
        const support::SpareMemory spare(std::size_t{40} << 20);
        EXPECT_TRUE(withFifty());
    }
    EXPECT_TRUE(steady(1, 1));
}

TEST_F(Drivers, NaNEndsAnUnlimitedRunWithoutAWord) {
    mesh.cells2D[3].fTilde[0] = NAN;
    EXPECT_FALSE(steady(0, 1));
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(Drivers, IntervalBelowOneStartsNothingAndSaysSo) {
    EXPECT_FALSE(steady(5, 0));
    EXPECT_FALSE(transient(5, -1));
    EXPECT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].contains("Terminal"));
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(Drivers, VelocityFileReadAfterTheMeshIsRefusedInsteadOfOverrunning) {
    support::useD2Q13();
    EXPECT_FALSE(steady(5, 1));
    EXPECT_FALSE(transient(5, 1));
    EXPECT_EQ(lines.size(), 2);
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(Drivers, EmptyMeshRunsWithoutHarm) {
    mesh.clear();
    EXPECT_TRUE(steady(2, 1));
    EXPECT_TRUE(files().contains("run_0.dat"));
}

TEST_F(Drivers, StopRequestEndsTheRunBeforeItsNextStep) {
    std::thread stopper([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        requestStop();
    });
    EXPECT_FALSE(steady(0, 1000000, 0.0));
    stopper.join();
    EXPECT_FALSE(lines.contains("Compute done"));
    EXPECT_EQ(files(), QStringList({"run_0.dat"}));
}

TEST_F(Drivers, VisitorIsLetInBetweenTwoStepsOfARun) {
    std::atomic<bool> done{false};
    std::thread run([&] {
        steady(0, 1000000, 0.0);
        done = true;
    });
    for (int n = 0; n < 50; ++n) {
        const VisitorHold hold;
        EXPECT_FALSE(done.load());
    }
    requestStop();
    run.join();
}

TEST_F(Drivers, SteadyDriverWritesTheSameStateThatStepsGive) {
    EXPECT_TRUE(steady(3, 100));
    const QByteArray driven = content("run_3.dat");
    SetUp();
    for (int n = 0; n < 3; ++n)
        step2D();
    EXPECT_TRUE(steady(-1, 1, 1e-9, "byhand"));
    EXPECT_EQ(content("byhand_0.dat"), driven);
}

TEST_F(Drivers, TransientOneStepWritesOneHistoryLineEachAndTwoFiles) {
    EXPECT_TRUE(transient(1, 1));
    const double fourier = caseSettings.dt * caseSettings.alpha;
    EXPECT_EQ(files(), QStringList({"run_" + QString::number(fourier) + ".dat", "run_0.dat", "run_Tave.txt",
                                    "run_fl.txt"}));
    EXPECT_EQ(content("run_Tave.txt"), "0 0\r\n");
    EXPECT_EQ(content("run_fl.txt").count("\r\n"), 1);
    EXPECT_EQ(lines.first(), "time=0");
    expectNormalEnd();
}

TEST_F(Drivers, DeliberateHistoriesKeepAddingToTheirPrintedMeans) {
    caseSettings.heatOn = true;
    caseSettings.tauG = caseSettings.dt;
    support::assignZone(0, support::wallAt(1.0));
    std::vector<double> means;
    for (int n = 0; n <= 200; ++n) {
        step2D();
        if (n % 100 != 0)
            continue;
        double sum = 0.0, area = 0.0;
        for (const CellRecord& c : mesh.cells2D) {
            sum += c.area * c.T;
            area += c.area;
        }
        means.push_back(sum / area);
    }
    // The area of the unit square is 1: after the first report each is (previous report + mean) / count.
    const double second = (means[0] + means[1]) / 2.0, third = (second + means[2]) / 3.0;
    SetUp();
    caseSettings.heatOn = true;
    caseSettings.tauG = caseSettings.dt;
    support::assignZone(0, support::wallAt(1.0));
    EXPECT_TRUE(transient(201, 1000));
    const QList<QByteArray> history = content("run_Tave.txt").split('\n');
    ASSERT_EQ(history.size(), 4);
    EXPECT_NEAR(history[0].trimmed().split(' ')[1].toDouble(), means[0], 1e-5 * means[0]);
    EXPECT_NEAR(history[1].trimmed().split(' ')[1].toDouble(), second, 1e-5 * second);
    EXPECT_NEAR(history[2].trimmed().split(' ')[1].toDouble(), third, 1e-5 * third);
    EXPECT_GT(std::abs(third - means[2]), 0.1 * means[2]) << "a plain mean would be told apart";
}

TEST_F(Drivers, TransientWithoutStepsWritesTheInitialState) {
    EXPECT_TRUE(transient(0, 1));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_Tave.txt", "run_fl.txt"}));
    EXPECT_TRUE(content("run_fl.txt").isEmpty());
}

TEST_F(Drivers, TransientWithoutStepsSaysNoInstantButTheEnd) {
    EXPECT_TRUE(transient(-2, 1, "a.dat.dat"));
    EXPECT_EQ(files(), QStringList({"a_0.dat", "a_Tave.txt", "a_fl.txt"}));
    EXPECT_EQ(lines.size(), 2);
    expectNormalEnd();
}

TEST_F(Drivers, TransientFilesAreNamedByTheFourierNumberWithSixDigits) {
    // The length enters squared; the settings are read when a file is written.
    caseSettings.L = 2.0;
    caseSettings.alpha = 0.123456789 * 4.0 / caseSettings.dt;
    EXPECT_TRUE(transient(4, 2));
    EXPECT_EQ(files(), QStringList({"run_0.246914.dat", "run_0.493827.dat", "run_0.dat", "run_Tave.txt",
                                    "run_fl.txt"}));
    EXPECT_EQ(lines.mid(0, lines.size() - 2), QStringList({"time=0", "time=2"}));
}

TEST_F(Drivers, OfTwoFilesWithTheSameFourierNumberTheLaterStays) {
    caseSettings.alpha = 0.0; // every Fourier number is 0
    EXPECT_TRUE(transient(6, 2));
    EXPECT_EQ(files(), QStringList({"run_0.dat", "run_Tave.txt", "run_fl.txt"}));
    const QByteArray kept = content("run_0.dat");
    ASSERT_TRUE(writeResult2D(folder.filePath("now.dat")));
    EXPECT_EQ(kept, content("now.dat"));
    // The cell beside the lid moves on with every step, so an earlier instant would differ.
    step2D();
    ASSERT_TRUE(writeResult2D(folder.filePath("now.dat")));
    EXPECT_NE(kept, content("now.dat"));
}

TEST_F(Drivers, DeliberateTransientRunGoesOnToItsEndOnFieldsThatAreNotNumbers) {
    caseSettings.heatOn = true;
    caseSettings.tauG = caseSettings.dt;
    for (std::size_t k = 0; k < 9; ++k)
        mesh.cells2D[3].fTilde[k] = mesh.cells2D[3].gTilde[k] = NAN;
    EXPECT_TRUE(transient(102, 50));
    EXPECT_TRUE(std::isnan(mesh.cells2D[3].T));
    EXPECT_EQ(lines.mid(0, lines.size() - 2), QStringList({"time=0", "time=50", "time=100"}));
    expectNormalEnd();
    EXPECT_EQ(historyLines("run_Tave.txt"), 2);
    EXPECT_TRUE(content("run_Tave.txt").contains("nan"));
}

TEST_F(Drivers, TransientRunDoesNotEndWhenNothingChangesAnyMore) {
    support::assignZone(3, {}); // at rest from the start
    EXPECT_TRUE(transient(5, 1));
    EXPECT_EQ(lines.mid(0, lines.size() - 2),
              QStringList({"time=0", "time=1", "time=2", "time=3", "time=4"}));
}

TEST_F(Drivers, InTheTemperatureFormTheFractionFollowsFromTheEnthalpyAsItStands) {
    caseSettings.heatOn = true;
    caseSettings.tauG = caseSettings.dt;
    setPhaseChange(0.5, 0.2, 0.2, 0.0);
    ASSERT_EQ(caseSettings.thermalMode, 0);
    for (CellRecord& c : mesh.cells2D)
        c.H = c.xc < 0.5 ? 0.75 * caseSettings.Hliquidus : -1.0;
    support::assignZone(0, support::wallAt(1.0)); // hot enough to melt, were H advanced
    EXPECT_TRUE(transient(1, 1));
    EXPECT_EQ(content("run_fl.txt"), "0 0.375\r\n");
}

TEST_F(Drivers, DeliberateBothHistoriesDivideByAnAreaThatGrowsWithEveryReport) {
    // On an area of 4: after the first report each is (previous report + 4 mean) / (4 reports).
    const auto melting = [this] {
        SetUp();
        support::makeMesh(support::rectangles(4, 4, 2.0, 2.0), 4, support::sidesOfBox(2.0, 2.0));
        initialiseFields(1.0, 0.1, 0.005, 20.0, 1.0, 2, 1, 0, 1, 1);
        setPhaseChange(1.0, -0.1, -0.1, 0.0);
        initialiseFields(1.0, 0.1, 0.005, 20.0, 1.0, 2, 1, 0, 1, 1);
        // The state at T = 0 is liquid; from the left it freezes.
        support::assignZone(0, support::wallAt(-1.0));
        for (const int zone : {1, 2, 3})
            support::assignZone(zone, {});
    };
    melting();
    double fraction = 0.0, temperature = 0.0, area = 0.0, plainFraction = 0.0;
    QByteArray fractions, temperatures;
    for (int n = 0; n <= 300; ++n) {
        step2D();
        if (n % 100 != 0)
            continue;
        double sumFraction = 0.0, sumTemperature = 0.0;
        for (const CellRecord& c : mesh.cells2D) {
            sumFraction += c.area * liquidFraction(c.H);
            sumTemperature += c.area * c.T;
        }
        area += 4.0;
        fraction = (fraction + sumFraction) / area;
        temperature = (temperature + sumTemperature) / area;
        plainFraction = sumFraction / 4.0;
        const QByteArray fourier = QByteArray::number(n * caseSettings.dt * caseSettings.alpha);
        fractions += fourier + ' ' + QByteArray::number(fraction) + "\r\n";
        temperatures += fourier + ' ' + QByteArray::number(temperature) + "\r\n";
    }
    EXPECT_GT(plainFraction, 0.1);
    EXPECT_LT(plainFraction, 0.9) << "the front is under way";
    EXPECT_GT(std::abs(fraction - plainFraction), 0.1 * plainFraction);
    melting();
    EXPECT_TRUE(transient(301, 1000));
    EXPECT_EQ(content("run_fl.txt").toStdString(), fractions.toStdString());
    EXPECT_EQ(content("run_Tave.txt").toStdString(), temperatures.toStdString());
}

TEST_F(Drivers, HistoriesAreCompleteToTheLastLineWhileTheRunIsGoing) {
    int looks = 0;
    setTerminalSink([&](const QString& line) {
        lines.append(line);
        if (!line.startsWith("time=") || lines.contains("Compute done"))
            return;
        const int reports = line.mid(5).toInt() / 100 + 1;
        for (const char* const name : {"run_fl.txt", "run_Tave.txt"}) {
            EXPECT_EQ(historyLines(name), reports) << name << " at " << line.toStdString();
            EXPECT_TRUE(content(name).endsWith("\r\n")) << name;
        }
        ++looks;
    });
    EXPECT_TRUE(transient(451, 50));
    EXPECT_EQ(looks, 10);
    EXPECT_EQ(historyLines("run_fl.txt"), 5);
}

TEST_F(Drivers, StoppedTransientRunLeavesItsHistoriesWhole) {
    setTerminalSink([this](const QString& line) {
        lines.append(line);
        if (line == "time=300")
            requestStop();
    });
    EXPECT_FALSE(transient(1000000, 100));
    EXPECT_EQ(lines, QStringList({"time=0", "time=100", "time=200", "time=300"}));
    for (const char* const name : {"run_fl.txt", "run_Tave.txt"}) {
        EXPECT_EQ(historyLines(name), 4) << name;
        EXPECT_TRUE(content(name).endsWith("\r\n")) << name;
    }
}

TEST_F(Drivers, HistoriesThatCannotBeOpenedAreLostAndTheRunGoesOn) {
    ASSERT_TRUE(QDir(folder.path()).mkdir("run_fl.txt") && QDir(folder.path()).mkdir("run_Tave.txt"));
    EXPECT_TRUE(transient(1, 1));
    EXPECT_EQ(files().size(), 2);
    EXPECT_EQ(lines.size(), 3) << lines.join('\n').toStdString();
    expectNormalEnd();
}

// Deliberate: the terminal does not name a file that cannot be written; standard error does.
TEST_F(Drivers, DeliberateOnlyStandardErrorNamesAResultFileThatCannotBeWritten) {
    testing::internal::CaptureStderr();
    EXPECT_TRUE(steady(1, 1, 1e-9, "missing/run.dat"));
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(lines.size(), 4) << lines.join('\n').toStdString();
    for (const char* const name : {"missing/run_0.dat", "missing/run_1.dat"})
        EXPECT_NE(err.find(folder.filePath(name).toStdString() + ": could not be written\n"),
                  std::string::npos)
            << err;
}

#ifdef Q_OS_LINUX
TEST_F(Drivers, HundredThousandStepsGrowNeitherMemoryNorOpenFiles) {
    support::makeMesh(support::rectangles(4, 4), 4, support::sidesOfBox());
    setPhaseChange(1.0, 0.1, 0.1, 0.0);
    initialiseFields(1.0, 0.1, 1.0, 20.0, 1.0, 0, 1, 0, 1, 1);
    support::assignZone(0, support::wallAt(1.0));
    struct Use {
        int openFiles;
        long pages;
    };
    const auto use = [] {
        QFile statm("/proc/self/statm");
        EXPECT_TRUE(statm.open(QIODevice::ReadOnly));
        const long pages = statm.readAll().split(' ').value(1).toLong();
        statm.close();
        return Use{static_cast<int>(QDir("/proc/self/fd")
                                        .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                                        .size()),
                   pages};
    };
    const Use before = use();
    std::vector<Use> during;
    during.reserve(100);
    setTerminalSink([&](const QString& line) {
        if (line.startsWith("time=") && during.size() < 100)
            during.push_back(use());
    });
    constexpr int steps = 100000;
    EXPECT_TRUE(transient(steps, steps / 20));
    ASSERT_EQ(during.size(), 21U); // 20 save points and the clock ticks at the end
    ASSERT_GT(before.pages, 0);
    for (std::size_t i = 0; i < 20; ++i)
        EXPECT_EQ(during[i].openFiles, before.openFiles + 2) << "the two histories, at save point " << i;
    EXPECT_EQ(use().openFiles, before.openFiles);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // those keep what was freed
    // What the first steps touch for the first time is there at the second save point. 64 pages in 95000
    // steps are 3 bytes a step, less than any allocation.
    EXPECT_LT(use().pages, during[1].pages + 64);
#endif
    EXPECT_EQ(historyLines("run_fl.txt"), steps / 100);
}
#endif
