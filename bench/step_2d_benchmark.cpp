// Speed of a 2D step: the program beside the plain reference, interleaved in one process.
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "plain_reference/plain_solver_2d.h"
#include "setup/boundary_assignment.h"
#include "setup/initial_fields.h"
#include "solver2d/time_step.h"
#include "support/mesh_builder.h"
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

/// The lid-driven or the side-heated cavity at n by n cells, ready to step.
void prepareCavity(int n, bool heat, bool triangles) {
    support::resetProcessState();
    support::useD2Q9();
    support::makeMesh(triangles ? support::cutRectangles(n, n / 2) : support::rectangles(n, n), 4,
                      support::sidesOfBox());
    setLatticeProperties(triangles ? 0.15 : 0.4, 1.0 / 3.0);
    initialiseFields(1.0, 0.1, 0.71, heat ? 1e5 : 1000.0, 1.0, heat ? 1 : 0, heat ? 1 : 0, 0, 0, 0);
    std::int32_t first = mesh.interiorFaceCount;
    for (std::size_t zone = 0; zone < 4; ++zone) {
        const std::int32_t end = mesh.zoneLastFace[zone];
        const bool lid = zone == 3 && !heat;
        assignBoundary2D(first, end, lid ? 1.0 : 0.0, 0.0, 0, zone < 2 ? 1 : 0, zone == 0 ? 0.5 : -0.5, 0.0);
        first = end;
    }
}

/// Arguments: cells along a side, heat on, threads, triangles.
void stepBesidePlainReference(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    prepareCavity(n, state.range(1) != 0, state.range(3) != 0);
    omp_set_num_threads(static_cast<int>(state.range(2)));
    const auto plainSolver = std::make_unique<plain::PlainSolver2D>();
    const double cells = mesh.cellCount;
    const int stepsPerSample = std::max(1, static_cast<int>(2e5 / cells));

    step2D();
    plainSolver->step();
    std::vector<double> ours, plain, ratio;
    for ([[maybe_unused]] auto iteration : state) {
        const double a = secondsPerCall(stepsPerSample, [] { step2D(); });
        const double b = secondsPerCall(stepsPerSample, [&] { plainSolver->step(); });
        ours.push_back(a);
        plain.push_back(b);
        ratio.push_back(b / a);
        state.SetIterationTime(a);
    }
    state.counters["Mcellsteps/s"] = cells / median(ours) * 1e-6;
    state.counters["plain_Mcellsteps/s"] = cells / median(plain) * 1e-6;
    state.counters["ns/cell"] = median(ours) / cells * 1e9;
    state.counters["ratio"] = median(ratio);
}

void everySize(benchmark::internal::Benchmark* b) {
    b->ArgNames({"n", "heat", "threads", "triangles"});
    for (const int triangles : {0, 1})
        for (const int n : {64, 256, 1024})
            for (const int heat : {0, 1})
                for (const int threads : {1, 2})
                    b->Args({n, heat, threads, triangles});
}

} // namespace

BENCHMARK(stepBesidePlainReference)
    ->Apply(everySize)
    ->Iterations(9)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
