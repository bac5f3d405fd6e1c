// The steady driver of a 2D case.
#include "solver2d/drivers.h"

#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "output/result_file.h"
#include "output/terminal.h"
#include "solver2d/checks.h"
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

} // namespace

bool runSteady2D(MainWindow*, unsigned threads, double tolU, double tolT, int steps, int saveInterval,
                 const QString& fileName) {
    if (!canRun(saveInterval))
        return false;
    const std::clock_t start = std::clock();
    const SteadyRun run{tolU, tolT, saveInterval, QString(fileName).remove(".dat")};
    if (threads > 0)
        omp_set_num_threads(static_cast<int>(threads));

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
    appendTerminalLine("Compute done");
    appendTerminalLine("time=" + QString::number(static_cast<qlonglong>(std::clock() - start)));
    return true;
}

} // namespace fluvane
