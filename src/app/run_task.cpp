// One run on a pool thread.
#include "app/run_task.h"

#include "mesh/run_gate.h"
#include "output/terminal.h"
#include "solver2d/drivers.h"
#include "solver3d/drivers.h"

#include <QThreadPool>
#include <QtConcurrent>
#include <algorithm>
#include <exception>

namespace {

/// Gives the mesh back however the driver ends.
struct RunClaim {
    RunClaim() = default;
    ~RunClaim() { fluvane::endRun(); }
    RunClaim(const RunClaim&) = delete;
    RunClaim& operator=(const RunClaim&) = delete;
};

void runDriver(const RunTask& t) {
    const RunClaim claim;
    try {
        const auto threads = static_cast<unsigned>(std::max(t.threads, 1));
        if (t.is3D)
            fluvane::run3D(t.window, threads, t.tolU, t.tolT, t.steps, t.saveInterval, t.fileName);
        else if (t.steady)
            fluvane::runSteady2D(t.window, threads, t.tolU, t.tolT, t.steps, t.saveInterval, t.fileName);
        else
            fluvane::runTransient2D(t.window, threads, t.steps, t.saveInterval, t.fileName);
    } catch (const std::exception& failure) {
        fluvane::appendTerminalLine(QStringLiteral("The run ended: ") +
                                    QString::fromLocal8Bit(failure.what()));
    }
}

/// A run keeps a thread of the pool for itself, and the toolkit waits for others in it, for instance to
/// convert the icon of a window that is shown: on a single processor the window would wait for the run.
void keepAThreadForTheToolkit() {
    QThreadPool* const pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(std::max(pool->maxThreadCount(), 2));
}

} // namespace

bool startRunTask(const RunTask& task) {
    if (!fluvane::tryStartRun())
        return false;
    keepAThreadForTheToolkit();
    QtConcurrent::run([task] { runDriver(task); });
    return true;
}
