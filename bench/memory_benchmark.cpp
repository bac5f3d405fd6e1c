// Memory a cell: the arrays of the mesh, what stays resident for a run, and the peak while a mesh is opened.
// Linux only; each case runs in a process of its own, so that none finds memory another one left.
#include "cases.h"
#include "mesh/fluent_reader_2d.h"
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "mesh_bytes.h"
#include "output/terminal.h"
#include "setup/initial_fields.h"
#include "solver2d/time_step.h"
#include "solver3d/time_step.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "support/mesh_file.h"
#include "support/mesh_file_3d.h"
#include "velocity/lattice_properties.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

using namespace fluvane;

namespace {

struct Usage {
    double cells = 0.0;
    double arrays = 0.0;   ///< bytes
    double resident = 0.0; ///< beyond that of the process without a mesh, after a step
    double peak = 0.0;     ///< the same at its highest
};

/// Bytes in a line of the process's status, such as "VmRSS:".
double statusBytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kibibytes = 0.0;
        if (word == name && status >> kibibytes)
            return kibibytes * 1024.0;
    }
    return 0.0;
}

/// Runs `work` in a child process and returns what it returned; false when the child failed.
bool inChild(Usage& usage, const auto& work) {
    int ends[2] = {};
    if (pipe(ends) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        const Usage result = work();
        const bool written = write(ends[1], &result, sizeof result) == ssize_t{sizeof result};
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    const bool complete = read(ends[0], &usage, sizeof usage) == ssize_t{sizeof usage};
    close(ends[0]);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0 && complete;
}

/// Opens the file and steps once, flow and heat.
Usage openAndStep(const QString& path, bool is3D) {
    support::resetProcessState();
    is3D ? support::useD3Q19() : support::useD2Q9();
    setTerminalSink([](const QString&) {});
    const double before = statusBytes("VmRSS:");
    if (!(is3D ? readMesh3D(path) && buildGeometry3D() : readMesh2D(path) && buildGeometry2D()))
        _exit(1);
    setLatticeProperties(0.15, 1.0 / 3.0);
    initialiseFields(1.0, 0.1, 0.71, 1e4, 1.0, 1, 1, 0, 0, 0);
    is3D ? step3D() : step2D();
    return {static_cast<double>(mesh.cellCount), static_cast<double>(bench::meshBytes()),
            statusBytes("VmRSS:") - before, statusBytes("VmHWM:") - before};
}

void report(benchmark::State& state, bool is3D, const auto& writeFile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("mesh.msh");
    Usage usage;
    for ([[maybe_unused]] auto iteration : state)
        if (!inChild(usage, [&] { return writeFile(path), Usage{}; }) ||
            !inChild(usage, [&] { return openAndStep(path, is3D); }))
            state.SkipWithError("the mesh could not be made or opened");
    state.counters["cells"] = usage.cells;
    state.counters["arrays_bytes/cell"] = usage.arrays / usage.cells;
    state.counters["resident_bytes/cell"] = usage.resident / usage.cells;
    state.counters["peak_bytes/cell"] = usage.peak / usage.cells;
}

/// Argument: cells along a side.
void squares(benchmark::State& state) {
    report(state, false, [&](const QString& path) {
        bench::prepareCavity(static_cast<int>(state.range(0)), bench::Physics::flow);
        support::writeMeshFile(path);
    });
}

/// Argument: bricks of five tetrahedra along an edge.
void tetrahedra(benchmark::State& state) {
    report(state, true, [&](const QString& path) {
        bench::prepareCube(static_cast<int>(state.range(0)), 19, bench::Physics::flow);
        support::writeMeshFile3D(path);
    });
}

} // namespace

BENCHMARK(squares)->ArgName("n")->Arg(256)->Arg(1000)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(tetrahedra)->ArgName("n")->Arg(10)->Arg(46)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
