// What the drivers of both dimensions share.
#include "solver2d/run_support.h"

#include "mesh/mesh.h"
#include "solver2d/checks.h"
#include "solver2d/loop_team.h"
#include "velocity/velocity_set.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <omp.h>
#include <thread>
#include <vector>

namespace fluvane {

namespace {

enum class Outcome { goesOn, converged, notANumber };

QString fileOf(const SteadyRun& run, std::int64_t n) {
    return run.base + "_" + QString::number(qlonglong{n}) + ".dat";
}

void stepHoldingGate(const SteadyRun& run) {
    const RunHold hold;
    run.step();
}

bool foundNaN() {
    const RunHold hold;
    return hasNaN();
}

bool converged(const SteadyRun& run, std::int64_t n) {
    const RunHold hold;
    return run.check("Time Steps=" + QString::number(qlonglong{n}));
}

Outcome advance(const SteadyRun& run, std::int64_t n) {
    stepHoldingGate(run);
    if (n % run.saveInterval != 0)
        return Outcome::goesOn;
    run.save(fileOf(run, n));
    if (foundNaN())
        return Outcome::notANumber;
    return converged(run, n) ? Outcome::converged : Outcome::goesOn;
}

/// Starts so many threads at the same time and ends them again.
bool canStart(unsigned threads) {
    std::atomic<bool> seen{false};
    std::vector<std::thread> started;
    try {
        started.reserve(threads);
        while (started.size() < threads)
            started.emplace_back([&seen] { seen.wait(false); });
    } catch (const std::exception&) {
    }
    seen = true;
    seen.notify_all();
    for (std::thread& thread : started)
        thread.join();
    return started.size() == threads;
}

/// Whether the calling thread can have a team of so many. The OpenMP runtime keeps the threads of its last
/// team, so only those beyond are tried.
bool canHaveTeam(unsigned threads) {
    thread_local unsigned had = 1;
    if (threads > had && !canStart(threads - had))
        return false;
    had = threads;
    return true;
}

} // namespace

bool meshHasDimension(bool is3D) {
    const std::size_t records = is3D ? mesh.cells3D.size() : mesh.cells2D.size();
    return records == static_cast<std::size_t>(mesh.cellCount);
}

bool canRun(bool is3D, int saveInterval) {
    QString reason;
    if (saveInterval < 1)
        reason =
            QString("\"Terminal\" is %1, but must be at least 1: nothing was started.").arg(saveInterval);
    else if (!meshHasDimension(is3D))
        reason = "The mesh is of the other dimension: read a mesh again. Nothing was started.";
    else if (mesh.cellCount > 0 && !mesh.matchesVelocitySet())
        reason = "The velocity file was read after the mesh: read the mesh again. Nothing was started.";
    else if (!velocitySet.hasAllOpposites())
        reason = "A velocity has no opposite: end the last line of the velocity file with a line feed and "
                 "read it again. Nothing was started.";
    if (!reason.isEmpty())
        appendTerminalLine(reason);
    return reason.isEmpty();
}

bool setThreads(unsigned threads) {
    if (threads == 0)
        return true;
    if (!canHaveTeam(std::min(threads, static_cast<unsigned>(omp_get_thread_limit())))) {
        appendTerminalLine(
            QString("%1 threads cannot be had here: ask for fewer. Nothing was started.").arg(threads));
        return false;
    }
    omp_set_num_threads(static_cast<int>(threads));
    return true;
}

QString baseName(const QString& fileName) {
    const int nameStart = static_cast<int>(fileName.lastIndexOf('/')) + 1;
    return fileName.left(nameStart) + fileName.mid(nameStart).remove(".dat");
}

void sayEnd(std::clock_t start) {
    appendTerminalLine("Compute done");
    appendTerminalLine("time=" + QString::number(static_cast<qlonglong>(std::clock() - start)));
}

namespace {

bool stepToTheEnd(const SteadyRun& run) {
    const std::clock_t start = std::clock();
    const bool unlimited = run.steps == 0;
    std::int64_t n = 0;
    for (; unlimited || n < run.steps; ++n) {
        if (stopRequested())
            return false;
        const Outcome outcome = advance(run, n);
        if (outcome == Outcome::notANumber) {
            if (run.namesNaN && !unlimited)
                appendTerminalLine("Wrong");
            return false;
        }
        if (outcome == Outcome::converged) {
            if (unlimited == run.repeatsUnlimited)
                run.save(fileOf(run, n));
            break;
        }
    }
    run.save(fileOf(run, n));
    if (foundNaN())
        return false;
    converged(run, n);
    sayEnd(start);
    return true;
}

} // namespace

bool runSteadily(const SteadyRun& run) {
    bool ended = false;
    withTeam([&] { ended = stepToTheEnd(run); });
    return ended;
}

} // namespace fluvane
