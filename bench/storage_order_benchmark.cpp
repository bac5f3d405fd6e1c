// A step on meshes whose cells are numbered well and badly, as numbered and stored along a curve, interleaved
// in one process.
#include "dialogs/case_settings.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "setup/initial_fields.h"
#include "solver2d/time_step.h"
#include "solver3d/time_step.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "timing.h"
#include "velocity/lattice_properties.h"

#include <benchmark/benchmark.h>

#include <array>
#include <omp.h>
#include <utility>
#include <vector>

using namespace fluvane;
using bench::median;
using bench::secondsPerCall;

namespace {

void setUpRun(double length, bool heat) {
    setLatticeProperties(0.3, 1.0 / 3.0);
    initialiseFields(length, 0.1, 0.71, heat ? 1e5 : 100.0, 1.0, heat ? 1 : 0, heat ? 1 : 0, 0, 0, 0);
}

/// A square of n by n cells, or a box of n by n by n bricks of five tetrahedra.
Mesh meshOf(int dimensions, int n, bool heat, bool shuffled, Storage storage) {
    support::resetProcessState();
    if (dimensions == 2) {
        support::useD2Q9();
        support::PlaneCells square = support::rectangles(n, n);
        if (shuffled)
            support::shuffleCells(square, 1);
        support::makeMesh(square, 4, support::sidesOfBox());
        buildGeometry2D(storage);
        setUpRun(1.0, heat);
    } else {
        support::useD3Q19();
        const double size = n;
        support::Tetrahedra box = support::boxOfTetrahedra(n, n, n);
        if (shuffled)
            support::shuffleCells(box, 1);
        support::makeMesh(box, 6, support::sidesOfBox3D({size, size, size}));
        buildGeometry3D(storage);
        setUpRun(size, heat);
    }
    return std::exchange(mesh, Mesh{});
}

double nanosecondsPerCell(Mesh& candidate, int dimensions) {
    std::swap(mesh, candidate);
    const double cells = mesh.cellCount;
    const double seconds = secondsPerCall(1, dimensions == 2 ? step2D : step3D);
    std::swap(mesh, candidate);
    return seconds / cells * 1e9;
}

/// Arguments: dimensions, cells along a side, heat on, threads.
void badNumbering(benchmark::State& state) {
    const int dimensions = static_cast<int>(state.range(0));
    const int n = static_cast<int>(state.range(1));
    const bool heat = state.range(2) != 0;
    omp_set_num_threads(static_cast<int>(state.range(3)));
    std::array<Mesh, 4> candidates{meshOf(dimensions, n, heat, true, Storage::asNumbered),
                                   meshOf(dimensions, n, heat, true, Storage::automatic),
                                   meshOf(dimensions, n, heat, false, Storage::alongCurve),
                                   meshOf(dimensions, n, heat, false, Storage::asNumbered)};
    std::array<std::vector<double>, 4> times;
    for (Mesh& candidate : candidates)
        nanosecondsPerCell(candidate, dimensions);
    for ([[maybe_unused]] auto iteration : state)
        for (std::size_t i = 0; i < candidates.size(); ++i)
            times[i].push_back(nanosecondsPerCell(candidates[i], dimensions));
    const double good = median(times[3]);
    state.counters["cells"] = candidates[0].cellCount;
    state.counters["good_ns/cell"] = good;
    state.counters["shuffled_as_numbered"] = median(times[0]) / good;
    state.counters["shuffled_automatic"] = median(times[1]) / good;
    state.counters["good_along_curve"] = median(times[2]) / good;
}

} // namespace

BENCHMARK(badNumbering)
    ->ArgNames({"dimensions", "n", "heat", "threads"})
    ->ArgsProduct({{2}, {512}, {0, 1}, {1, 2}})
    ->ArgsProduct({{3}, {34}, {0, 1}, {1, 2}})
    ->Iterations(9)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
