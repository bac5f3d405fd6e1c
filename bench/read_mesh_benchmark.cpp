// Reading a mesh file and building its geometry, by phase and size.
#include "mesh/fluent_reader_2d.h"
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "support/mesh_file.h"
#include "support/mesh_file_3d.h"

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

/// Reads the file and builds the geometry again and again; one figure a phase.
void readAndPrepare(benchmark::State& state, const QString& path, bool (*read)(const QString&),
                    bool (*build)()) {
    setTerminalSink([](const QString&) {});
    double reading = 0.0, geometry = 0.0;
    for ([[maybe_unused]] auto iteration : state) {
        auto start = Clock::now();
        if (!read(path))
            state.SkipWithError("the mesh was refused");
        reading += secondsSince(start);
        start = Clock::now();
        if (!build())
            state.SkipWithError("the geometry was refused");
        geometry += secondsSince(start);
    }
    setTerminalSink({});
    const double cells = mesh.cellCount;
    const auto runs = static_cast<double>(state.iterations());
    state.counters["cells"] = cells;
    state.counters["read_s"] = reading / runs;
    state.counters["geometry_s"] = geometry / runs;
    state.counters["MB/s"] = static_cast<double>(QFileInfo(path).size()) * 1e-6 * runs / reading;
    state.counters["read_ns/cell"] = reading / runs / cells * 1e9;
    state.counters["geometry_ns/cell"] = geometry / runs / cells * 1e9;
}

/// Argument: cells along a side of a square of quadrilaterals.
void quadrilaterals(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("mesh.msh");
    const int n = static_cast<int>(state.range(0));
    support::resetProcessState();
    support::useD2Q9();
    support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
    support::writeMeshFile(path);
    readAndPrepare(state, path, readMesh2D, buildGeometry2D);
}

/// Arguments: bricks of five tetrahedra along an edge of a cube, velocities (19, or 0: geometry without the
/// solver's arrays), cells numbered at random.
void tetrahedra(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("mesh.msh");
    const int n = static_cast<int>(state.range(0));
    support::resetProcessState();
    support::Tetrahedra box = support::boxOfTetrahedra(n, n, n);
    const double size = n;
    support::distort(box, {size, size, size}, 0.1);
    if (state.range(2) != 0)
        support::shuffleCells(box, 1);
    support::makeMesh(box, 6, support::sidesOfBox3D({size, size, size}));
    support::writeMeshFile3D(path);
    if (state.range(1) != 0)
        support::useD3Q19();
    readAndPrepare(state, path, readMesh3D, buildGeometry3D);
}

} // namespace

BENCHMARK(quadrilaterals)->Arg(256)->Arg(512)->Arg(1024)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(tetrahedra)
    ->ArgNames({"n", "velocities", "shuffled"})
    ->ArgsProduct({{20, 58}, {0, 19}, {0, 1}})
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
