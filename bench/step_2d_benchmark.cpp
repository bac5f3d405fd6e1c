// Speed of a 2D step beside the plain reference, on several thread counts, on well and badly ordered meshes.
#include "cases.h"
#include "plain_reference/plain_solver_2d.h"
#include "solver2d/time_step.h"
#include "step_turns.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

using namespace fluvane;
using bench::Order;
using bench::Physics;
using bench::Shape;

namespace {

/// Arguments: cells along a side, physics, shape.
void stepBesidePlainReference(benchmark::State& state) {
    const auto physics = static_cast<Physics>(state.range(1));
    const auto shape = static_cast<Shape>(state.range(2));
    bench::prepareCavity(static_cast<int>(state.range(0)), physics, shape);
    const auto plainSolver = std::make_unique<plain::PlainSolver2D>();
    bench::stepInTurns(state, step2D, [&] { plainSolver->step(); });
    state.SetLabel(std::string(bench::nameOf(shape)) + ", " + bench::nameOf(physics));
}

/// The same arguments.
void stepOnShuffledMesh(benchmark::State& state) {
    const auto n = static_cast<int>(state.range(0));
    const auto physics = static_cast<Physics>(state.range(1));
    const auto shape = static_cast<Shape>(state.range(2));
    bench::stepOrdersInTurns(
        state, step2D, [=] { bench::prepareCavity(n, physics, shape, Order::rowByRow); },
        [=] { bench::prepareCavity(n, physics, shape, Order::shuffled); });
    state.SetLabel(std::string(bench::nameOf(shape)) + ", " + bench::nameOf(physics));
}

constexpr auto flow = static_cast<long>(Physics::flow);
constexpr auto flowAndHeat = static_cast<long>(Physics::flowAndHeat);
constexpr auto enthalpy = static_cast<long>(Physics::enthalpy);
constexpr auto squares = static_cast<long>(Shape::quadrilaterals);
constexpr auto triangles = static_cast<long>(Shape::triangles);

void asTimed(benchmark::internal::Benchmark* b, int samples) {
    b->ArgNames({"n", "physics", "shape"})
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
    ->ArgsProduct({{64, 256}, {flow, flowAndHeat, enthalpy}, {squares, triangles}})
    ->Apply(manySamples);
BENCHMARK(stepBesidePlainReference)
    ->ArgsProduct({{1000}, {flow, flowAndHeat, enthalpy}, {squares, triangles}})
    ->Apply(fewSamples);
BENCHMARK(stepOnShuffledMesh)->ArgsProduct({{64, 256}, {flow}, {squares, triangles}})->Apply(manySamples);
BENCHMARK(stepOnShuffledMesh)->ArgsProduct({{1000}, {flow}, {squares, triangles}})->Apply(fewSamples);

BENCHMARK_MAIN();
