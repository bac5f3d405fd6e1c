// What the drivers of both dimensions share.
#pragma once

#include "mesh/run_gate.h"
#include "output/terminal.h"

#include <QString>
#include <cstdint>
#include <ctime>
#include <functional>

namespace fluvane {

/// True when the mesh is empty or its records are those of the dimension asked for: after an opening that
/// was broken off the settings may name the other one.
bool meshHasDimension(bool is3D);

/// False, with a terminal line that says why, for what could only overrun or divide by zero: an interval
/// below 1, a mesh of the other dimension, records made for another velocity count, a velocity without its
/// opposite.
bool canRun(bool is3D, int saveInterval);

/// The threads of every later parallel loop of the calling thread; 0 leaves them as they are. False, with a
/// terminal line, when the process cannot have as many: the OpenMP runtime would end it.
bool setThreads(unsigned threads);

/// The result file's path, its name without any ".dat"; folders keep theirs.
QString baseName(const QString& fileName);

/// "Compute done", and the clock ticks since `start`.
void sayEnd(std::clock_t start);

/// Writes one instant: the state is copied while the gate is held, the file is written without it.
/// Deliberate: the terminal does not name a file that cannot be written, the run goes on; standard error
/// names it.
template <class Snapshot>
void saveInstant(const QString& path, Snapshot (*capture)(), bool (*write)(const QString&, const Snapshot&)) {
    const Snapshot snapshot = [capture] {
        const RunHold hold;
        return capture();
    }();
    if (!write(path, snapshot))
        sayOnStandardError(path + QStringLiteral(": could not be written"));
}

/// A run that ends by convergence, after a number of steps, or on a NaN.
struct SteadyRun {
    std::function<void()> step;
    std::function<void(const QString& path)> save;
    std::function<bool(const QString& prefix)> check; ///< says the residuals; true when converged
    int steps = 0;                                    ///< 0: until converged; negative: none
    int saveInterval = 1;
    QString base;                  ///< result files are named by it, "_", the step number and ".dat"
    bool namesNaN = false;         ///< says "Wrong" when a NaN ends a run with a step count
    bool repeatsUnlimited = false; ///< see runSteadily
};

/// Steps, and every `saveInterval` steps writes a file, looks for a NaN and checks the residuals; then writes
/// and checks once more. Deliberate: the file of the converged state is written three times under one name
/// where `repeatsUnlimited` equals whether the run has no step count, otherwise twice.
/// Returns false on a NaN and when the program is closing.
bool runSteadily(const SteadyRun& run);

} // namespace fluvane
