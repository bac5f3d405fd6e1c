// Speed of a 3D step beside the plain reference, on several thread counts, on well and badly ordered meshes.
#include "cases.h"
#include "plain_reference/plain_solver_3d.h"
#include "solver3d/time_step.h"
#include "step_turns.h"

#include <benchmark/benchmark.h>

#include <memory>

using namespace fluvane;
using bench::Order;
using bench::Physics;

namespace {

/// Arguments: bricks along a side, velocities, physics.
void stepBesidePlainReference(benchmark::State& state) {
    const auto physics = static_cast<Physics>(state.range(2));
    bench::prepareCube(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), physics);
    const auto plainSolver = std::make_unique<plain::PlainSolver3D>();
    bench::stepInTurns(state, step3D, [&] { plainSolver->step(); });
    state.SetLabel(bench::nameOf(physics));
}

/// The same arguments.
void stepOnShuffledMesh(benchmark::State& state) {
    const auto n = static_cast<int>(state.range(0));
    const auto velocities = static_cast<int>(state.range(1));
    const auto physics = static_cast<Physics>(state.range(2));
    bench::stepOrdersInTurns(
        state, step3D, [=] { bench::prepareCube(n, velocities, physics, Order::rowByRow); },
        [=] { bench::prepareCube(n, velocities, physics, Order::shuffled); });
    state.SetLabel(bench::nameOf(physics));
}

constexpr auto flow = static_cast<long>(Physics::flow);
constexpr auto flowAndHeat = static_cast<long>(Physics::flowAndHeat);

void asTimed(benchmark::internal::Benchmark* b, int samples) {
    b->ArgNames({"n", "velocities", "physics"})
        ->Iterations(samples)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}
void manySamples(benchmark::internal::Benchmark* b) {
    asTimed(b, 9);
}
void fewSamples(benchmark::internal::Benchmark* b) {
    asTimed(b, 3);
}

} // namespace

BENCHMARK(stepBesidePlainReference)
    ->ArgsProduct({{10}, {15, 19, 27}, {flow, flowAndHeat}})
    ->Apply(manySamples);
BENCHMARK(stepBesidePlainReference)
    ->ArgsProduct({{46}, {15, 19, 27}, {flow, flowAndHeat}})
    ->Apply(fewSamples);
BENCHMARK(stepOnShuffledMesh)->ArgsProduct({{10}, {15, 19, 27}, {flow}})->Apply(manySamples);
BENCHMARK(stepOnShuffledMesh)->ArgsProduct({{46}, {15, 19, 27}, {flow}})->Apply(fewSamples);

BENCHMARK_MAIN();
