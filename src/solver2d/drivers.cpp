// The steady and the transient driver of a 2D case.
#include "solver2d/drivers.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "output/history_file.h"
#include "output/result_file.h"
#include "output/terminal.h"
#include "solver2d/checks.h"
#include "solver2d/enthalpy.h"
#include "solver2d/time_step.h"

#include <cstdint>
#include <ctime>
#include <omp.h>

namespace fluvane {

namespace {

enum class Outcome { goesOn, converged, notANumber };

void stepHoldingGate() {
    const RunHold hold;
    step2D();
}

/// Writes one instant: the state is copied while the gate is held, the file is written without it.
void saveInstant(const QString& path) {
    ResultSnapshot2D snapshot;
    {
        const RunHold hold;
        snapshot = captureResult2D();
    }
    writeResult2D(path, snapshot);
}

bool foundNaN() {
    const RunHold hold;
    return hasNaN();
}

bool converged(double tolU, double tolT, std::int64_t n) {
    const RunHold hold;
    return checkConvergence2D(tolU, tolT, "Time Steps=" + QString::number(qlonglong{n}));
}

/// What a run says and leaves unstarted instead of overrunning or dividing by zero.
bool canRun(int saveInterval) {
    if (saveInterval < 1) {
        appendTerminalLine(
            QString("\"Terminal\" is %1, but must be at least 1: nothing was started.").arg(saveInterval));
        return false;
    }
    if (mesh.cellCount > 0 && !mesh.matchesVelocitySet()) {
        appendTerminalLine(
            "The velocity file was read after the mesh: read the mesh again. Nothing was started.");
        return false;
    }
    return true;
}

void setThreads(unsigned threads) {
    if (threads > 0)
        omp_set_num_threads(static_cast<int>(threads));
}

QString baseName(const QString& fileName) {
    return QString(fileName).remove(".dat");
}

void sayEnd(std::clock_t start) {
    appendTerminalLine("Compute done");
    appendTerminalLine("time=" + QString::number(static_cast<qlonglong>(std::clock() - start)));
}

/// One run of the steady driver: where its files go and when it reports.
struct SteadyRun {
    double tolU;
    double tolT;
    int saveInterval;
    QString base;

    QString file(std::int64_t n) const { return base + "_" + QString::number(qlonglong{n}) + ".dat"; }

    Outcome advance(std::int64_t n) const {
        stepHoldingGate();
        if (n % saveInterval != 0)
            return Outcome::goesOn;
        saveInstant(file(n));
        if (foundNaN())
            return Outcome::notANumber;
        return converged(tolU, tolT, n) ? Outcome::converged : Outcome::goesOn;
    }
};

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
        const RunHold hold;
        for (const CellRecord& cell : mesh.cells2D) {
            m_fraction += cell.area * liquidFraction(cell.H);
            m_temperature += cell.area * cell.T;
            m_area += cell.area;
        }
        m_fraction /= m_area;
        m_temperature /= m_area;
        m_fractionFile.append(fourierNumber(n), m_fraction);
        m_meanFile.append(fourierNumber(n), m_temperature);
    }

private:
    HistoryFile m_fractionFile;
    HistoryFile m_meanFile;
    double m_fraction = 0.0;
    double m_temperature = 0.0;
    double m_area = 0.0;
};

} // namespace

bool runSteady2D(MainWindow*, unsigned threads, double tolU, double tolT, int steps, int saveInterval,
                 const QString& fileName) {
    if (!canRun(saveInterval))
        return false;
    const std::clock_t start = std::clock();
    const SteadyRun run{tolU, tolT, saveInterval, baseName(fileName)};
    setThreads(threads);

    const bool untilConverged = steps == 0;
    std::int64_t n = 0;
    for (; untilConverged || n < steps; ++n) {
        if (stopRequested())
            return false;
        const Outcome outcome = run.advance(n);
        if (outcome == Outcome::notANumber) {
            if (!untilConverged)
                appendTerminalLine("Wrong");
            return false;
        }
        if (outcome == Outcome::converged)
            break;
    }
    // The converged state of an unlimited run is written at its save point, here and as the final file.
    if (untilConverged)
        saveInstant(run.file(n));
    saveInstant(run.file(n));
    if (foundNaN())
        return false;
    converged(tolU, tolT, n);
    sayEnd(start);
    return true;
}

bool runTransient2D(MainWindow*, unsigned threads, int steps, int saveInterval, const QString& fileName) {
    constexpr int historyInterval = 100;
    if (!canRun(saveInterval))
        return false;
    const std::clock_t start = std::clock();
    const QString base = baseName(fileName);
    const auto resultFile = [&base](int n) {
        const RunHold hold;
        return base + "_" + QString::number(fourierNumber(n)) + ".dat";
    };
    Histories histories(base);
    setThreads(threads);

    int n = 0;
    for (; n < steps; ++n) {
        if (stopRequested())
            return false;
        stepHoldingGate();
        if (n % historyInterval == 0)
            histories.report(n);
        if (n % saveInterval == 0) {
            appendTerminalLine("time=" + QString::number(n));
            saveInstant(resultFile(n));
        }
    }
    saveInstant(resultFile(n));
    sayEnd(start);
    return true;
}

} // namespace fluvane
