// The steady and the transient driver of a 2D case.
#include "solver2d/drivers.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/history_file.h"
#include "output/result_file.h"
#include "output/terminal.h"
#include "solver2d/checks.h"
#include "solver2d/enthalpy.h"
#include "solver2d/loop_team.h"
#include "solver2d/run_support.h"
#include "solver2d/time_step.h"

#include <ctime>

namespace fluvane {

namespace {

void save(const QString& path) {
    saveInstant(path, captureResult2D, writeResult2D);
}

double fourierNumber(int n) {
    const CaseSettings& s = caseSettings;
    return n * s.dt * s.alpha / s.L / s.L;
}

/// The mean liquid fraction and the mean temperature over time.
class Histories {
public:
    explicit Histories(const QString& base)
        : m_fractionFile(base + "_fl.txt"), m_meanFile(base + "_Tave.txt") {}

    /// Deliberate: the sums are never set back. After a report they hold the printed means, and the next
    /// report adds the new area-weighted sums to them and divides by the grown area.
    void report(int n) {
        const double Fo = accumulate(n);
        m_fractionFile.append(Fo, m_fraction);
        m_meanFile.append(Fo, m_temperature);
    }

private:
    /// Returns the Fourier number of the same instant. The files are written without the gate: they may lie
    /// where writing takes long.
    double accumulate(int n) {
        const RunHold hold;
        for (const CellRecord& cell : mesh.cells2D) {
            m_fraction += cell.area * liquidFraction(cell.H);
            m_temperature += cell.area * cell.T;
            m_area += cell.area;
        }
        m_fraction /= m_area;
        m_temperature /= m_area;
        return fourierNumber(n);
    }

    HistoryFile m_fractionFile;
    HistoryFile m_meanFile;
    double m_fraction = 0.0;
    double m_temperature = 0.0;
    double m_area = 0.0;
};

bool stepThroughTime(int steps, int saveInterval, const QString& base) {
    constexpr int historyInterval = 100;
    const std::clock_t start = std::clock();
    const auto resultFile = [&base](int n) {
        const RunHold hold;
        return base + "_" + QString::number(fourierNumber(n)) + ".dat";
    };
    Histories histories(base);

    int n = 0;
    for (; n < steps; ++n) {
        if (stopRequested())
            return false;
        {
            const RunHold hold;
            step2D();
        }
        if (n % historyInterval == 0)
            histories.report(n);
        if (n % saveInterval == 0) {
            appendTerminalLine("time=" + QString::number(n));
            save(resultFile(n));
        }
    }
    save(resultFile(n));
    sayEnd(start);
    return true;
}

} // namespace

bool runSteady2D(MainWindow*, unsigned threads, double tolU, double tolT, int steps, int saveInterval,
                 const QString& fileName) {
    if (!canRun(false, saveInterval) || !setThreads(threads))
        return false;
    SteadyRun run;
    run.step = step2D;
    run.save = save;
    run.check = [tolU, tolT](const QString& prefix) { return checkConvergence2D(tolU, tolT, prefix); };
    run.steps = steps;
    run.saveInterval = saveInterval;
    run.base = baseName(fileName);
    run.repeatsUnlimited = true;
    run.namesNaN = true;
    return runSteadily(run);
}

bool runTransient2D(MainWindow*, unsigned threads, int steps, int saveInterval, const QString& fileName) {
    if (!canRun(false, saveInterval) || !setThreads(threads))
        return false;
    bool ended = false;
    withTeam([&] { ended = stepThroughTime(steps, saveInterval, baseName(fileName)); });
    return ended;
}

} // namespace fluvane
