// Reading a mesh file and building its geometry, by phase and size. Of either also the time in the system,
// which clears every page of memory before it is first used. Linux and other systems of its kind only.
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
#include "timing.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <omp.h>
#include <sys/resource.h>
#include <vector>

using namespace fluvane;

namespace {

using Clock = std::chrono::steady_clock;

/// Seconds of all its threads that the process spent in the system.
double systemSeconds() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_stime.tv_sec) + static_cast<double>(usage.ru_stime.tv_usec) * 1e-6;
}

/// How long a phase takes: medians of its turns, and the fastest.
class Phase {
public:
    bool measure(const auto& work) {
        const double systemBefore = systemSeconds();
        const auto start = Clock::now();
        const bool done = work();
        m_seconds.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        m_system.push_back(systemSeconds() - systemBefore);
        return done;
    }
    double seconds() const { return bench::median(m_seconds); }
    double fastest() const { return *std::min_element(m_seconds.begin(), m_seconds.end()); }
    double system() const { return bench::median(m_system); }

private:
    std::vector<double> m_seconds;
    std::vector<double> m_system;
};

/// Reads the file and builds the geometry again and again on so many threads (0: one a processor); figures
/// for each phase.
void readAndPrepare(benchmark::State& state, const QString& path, std::int64_t threads,
                    bool (*read)(const QString&), bool (*build)()) {
    setTerminalSink([](const QString&) {});
    const auto loud = qScopeGuard([] { setTerminalSink({}); });
    omp_set_num_threads(threads > 0 ? static_cast<int>(threads) : omp_get_num_procs());
    // A turn ahead: a virtual machine may get its memory from the host only when it first asks for it.
    if (!read(path) || !build())
        return state.SkipWithError("the mesh was refused");
    Phase reading, geometry;
    for ([[maybe_unused]] auto iteration : state) {
        if (!reading.measure([&] { return read(path); }))
            state.SkipWithError("the mesh was refused");
        if (!geometry.measure([&] { return build(); }))
            state.SkipWithError("the geometry was refused");
    }
    const double cells = mesh.cellCount;
    state.counters["cells"] = cells;
    state.counters["threads"] = omp_get_max_threads();
    state.counters["read_s"] = reading.seconds();
    state.counters["read_fastest_s"] = reading.fastest();
    state.counters["read_system_s"] = reading.system();
    state.counters["geometry_s"] = geometry.seconds();
    state.counters["geometry_fastest_s"] = geometry.fastest();
    state.counters["geometry_system_s"] = geometry.system();
    state.counters["MB/s"] = static_cast<double>(QFileInfo(path).size()) * 1e-6 / reading.seconds();
    state.counters["read_ns/cell"] = reading.seconds() / cells * 1e9;
    state.counters["geometry_ns/cell"] = geometry.seconds() / cells * 1e9;
}

/// Arguments: cells along a side of a square of quadrilaterals, threads.
void quadrilaterals(benchmark::State& state) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("mesh.msh");
    const int n = static_cast<int>(state.range(0));
    support::resetProcessState();
    support::useD2Q9();
    support::makeMesh(support::rectangles(n, n), 4, support::sidesOfBox());
    support::writeMeshFile(path);
    readAndPrepare(state, path, state.range(1), readMesh2D, buildGeometry2D);
}

/// Arguments: bricks of five tetrahedra along an edge of a cube, velocities (19, or 0: geometry without the
/// solver's arrays), cells numbered at random, threads.
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
    readAndPrepare(state, path, state.range(3), readMesh3D, buildGeometry3D);
}

} // namespace

BENCHMARK(quadrilaterals)
    ->ArgNames({"n", "threads"})
    ->ArgsProduct({{256, 512, 1024}, {1, 0}})
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(tetrahedra)
    ->ArgNames({"n", "velocities", "shuffled", "threads"})
    ->ArgsProduct({{20, 58}, {0, 19}, {0, 1}, {1, 0}})
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
