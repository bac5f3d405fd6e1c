// Speed of a 3D step: the program beside the plain reference, interleaved in one process.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "plain_reference/plain_solver_3d.h"
#include "setup/boundary_assignment.h"
#include "setup/initial_fields.h"
#include "solver3d/time_step.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"
#include "timing.h"
#include "velocity/lattice_properties.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <omp.h>
#include <vector>

using namespace fluvane;
using bench::median;
using bench::secondsPerCall;

namespace {

/// The lid-driven or the side-heated cube of n by n by n bricks of five tetrahedra, ready to step.
void prepareCube(int n, int velocities, bool heat) {
    support::resetProcessState();
    if (velocities == 15)
        support::useD3Q15();
    else if (velocities == 19)
        support::useD3Q19();
    else
        support::useD3Q27();
    const double L = n;
    support::makeMesh(support::boxOfTetrahedra(n, n, n), 6, support::sidesOfBox3D({L, L, L}));
    setLatticeProperties(0.15, 1.0 / 3.0);
    initialiseFields(L, 0.1, 0.71, heat ? 1e4 : 100.0, 1.0, heat ? 1 : 0, heat ? 1 : 0, 0, 0, 0);
    std::int32_t first = mesh.interiorFaceCount;
    for (std::size_t zone = 0; zone < 6; ++zone) {
        const std::int32_t end = mesh.zoneLastFace[zone];
        const bool lid = zone == 5 && !heat;
        assignBoundary3D(first, end, lid ? 1.0 : 0.0, 0.0, 0.0, 0, zone < 2 ? 1 : 0, zone == 0 ? 0.5 : -0.5);
        first = end;
    }
}

/// Arguments: bricks along a side, velocities, heat on, threads.
void stepBesidePlainReference(benchmark::State& state) {
    prepareCube(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), state.range(2) != 0);
    omp_set_num_threads(static_cast<int>(state.range(3)));
    const auto plainSolver = std::make_unique<plain::PlainSolver3D>();
    const double cells = mesh.cellCount;
    const int stepsPerSample = std::max(1, static_cast<int>(5e4 / cells));

    step3D();
    plainSolver->step();
    std::vector<double> ours, plain, ratio;
    for ([[maybe_unused]] auto iteration : state) {
        const double a = secondsPerCall(stepsPerSample, [] { step3D(); });
        const double b = secondsPerCall(stepsPerSample, [&] { plainSolver->step(); });
        ours.push_back(a);
        plain.push_back(b);
        ratio.push_back(b / a);
        state.SetIterationTime(a);
    }
    state.counters["cells"] = cells;
    state.counters["Mcellsteps/s"] = cells / median(ours) * 1e-6;
    state.counters["plain_Mcellsteps/s"] = cells / median(plain) * 1e-6;
    state.counters["ns/cell"] = median(ours) / cells * 1e9;
    state.counters["ratio"] = median(ratio);
}

void everySize(benchmark::internal::Benchmark* b) {
    b->ArgNames({"n", "velocities", "heat", "threads"});
    for (const int velocities : {15, 19, 27})
        for (const int n : {10, 46})
            for (const int heat : {0, 1})
                for (const int threads : {1, 2})
                    b->Args({n, velocities, heat, threads});
}

} // namespace

BENCHMARK(stepBesidePlainReference)
    ->Apply(everySize)
    ->Iterations(9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
