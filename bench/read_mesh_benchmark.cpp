// Reading a mesh file and building its geometry, by phase and size.
#include "mesh/fluent_reader_2d.h"
#include "mesh/geometry_2d.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "support/mesh_builder.h"
#include "support/mesh_file.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <chrono>

using namespace fluvane;

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Argument: cells along a side of a square of quadrilaterals.
void readAndPrepare(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("mesh.msh");
    const int n = static_cast<int>(state.range(0));
    support::resetProcessState();
    support::useD2Q9();
    support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
    support::writeMeshFile(path);
    setTerminalSink([](const QString&) {});
    double reading = 0.0, geometry = 0.0;
    for ([[maybe_unused]] auto iteration : state) {
        auto start = Clock::now();
        if (!readMesh2D(path))
            state.SkipWithError("the mesh was refused");
        reading += secondsSince(start);
        start = Clock::now();
        buildGeometry2D();
        geometry += secondsSince(start);
    }
    setTerminalSink({});
    const double cells = mesh.cellCount;
    const auto runs = static_cast<double>(state.iterations());
    state.counters["read_s"] = reading / runs;
    state.counters["geometry_s"] = geometry / runs;
    state.counters["MB/s"] = static_cast<double>(QFileInfo(path).size()) * 1e-6 * runs / reading;
    state.counters["read_ns/cell"] = reading / runs / cells * 1e9;
    state.counters["geometry_ns/cell"] = geometry / runs / cells * 1e9;
}

} // namespace

BENCHMARK(readAndPrepare)->Arg(256)->Arg(512)->Arg(1024)->Iterations(3)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
