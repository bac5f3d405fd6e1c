// What each loop of a step takes beside the time that its bytes need at the bandwidth of the machine,
// measured in the same process.
#include "bandwidth.h"
#include "cases.h"
#include "mesh/mesh.h"
#include "mesh_bytes.h"
#include "solver2d/loop_kernels_2d.h"
#include "solver2d/loop_team.h"
#include "solver2d/step_traffic.h"
#include "solver3d/loop_kernels_3d.h"
#include "timing.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <omp.h>
#include <string>
#include <vector>

using namespace fluvane;

namespace {

/// A mesh with its physics, on some threads.
struct LoopCase {
    std::string mesh;
    bench::Physics physics;
    bool is3D;
    int threads;
    std::function<void()> prepare;
};

struct LoopResult {
    double seconds = 0.0; ///< median of the turns
    double fastest = 0.0; ///< the best of them, as the bandwidth is the best of its tries
    LoopTraffic traffic;
};

struct CaseResult {
    std::vector<LoopResult> loops;
    double cells = 0.0;
    bench::Bandwidth bandwidth; ///< the best before and after the loops
};

/// On arrays as large as those of the step, or so large that no cache holds any part of them.
bench::Bandwidth bandwidthOfStep() {
    return bench::measureBandwidth(std::min(bench::stepBytes(), 8 * bench::lastLevelCache()));
}

bench::Bandwidth better(const bench::Bandwidth& a, const bench::Bandwidth& b) {
    return {std::max(a.read, b.read), std::max(a.copy, b.copy), std::max(a.triad, b.triad),
            std::max(a.streamedCopy, b.streamedCopy), std::max(a.streamedTriad, b.streamedTriad)};
}

/// Steps loop by loop, on a team that stays together as in a run; the median time of each.
template <std::size_t N, class Data>
CaseResult timed(const StepConstants& constants, const Data& data, const std::array<Loop<Data>, N>& loops,
                 const std::array<LoopTraffic, N>& traffic) {
    CaseResult result;
    result.cells = mesh.cellCount;
    const bench::Bandwidth before = bandwidthOfStep();
    const int steps = std::max(1, static_cast<int>(2e5 / result.cells));
    const int samples = result.cells > 2e5 ? 5 : 9;
    std::array<std::vector<double>, N> seconds;
    const auto sampleLoops = [&] {
        std::array<double, N> sums{};
        for (int step = 0; step < steps; ++step)
            for (std::size_t n = 0; n < N; ++n)
                sums[n] += bench::secondsPerCall(
                    1, [&] { runLoops(constants, data, std::array<Loop<Data>, 1>{loops[n]}); });
        for (std::size_t n = 0; n < N; ++n)
            seconds[n].push_back(sums[n] / steps);
    };
    withTeam([&] {
        sampleLoops();
        for (auto& warmUp : seconds)
            warmUp.clear();
        for (int sample = 0; sample < samples; ++sample)
            sampleLoops();
    });
    result.bandwidth = better(before, bandwidthOfStep());
    for (std::size_t n = 0; n < N; ++n)
        result.loops.push_back(
            {bench::median(seconds[n]), *std::min_element(seconds[n].begin(), seconds[n].end()), traffic[n]});
    return result;
}

CaseResult timed2D() {
    const StepConstants constants = stepConstants2D();
    const LoopKernels2D& k = loopKernels2D(constants.velocityCount);
    const std::int32_t cells = mesh.cellCount, interior = mesh.interiorFaceCount;
    const std::int32_t faces = mesh.totalFaceCount();
    return timed<6, StepData2D>(constants, stepData2D(),
                                {{{k.collide, 0, cells},
                                  {k.gradients, 0, cells},
                                  {k.reconstruct, 0, interior},
                                  {k.boundary, interior, faces},
                                  {k.recover, 0, faces},
                                  {k.update, 0, cells}}},
                                stepTraffic2D());
}

CaseResult timed3D() {
    const StepConstants constants = stepConstants3D();
    const LoopKernels3D& k = loopKernels3D(constants.velocityCount);
    const std::int32_t cells = mesh.cellCount, interior = mesh.interiorFaceCount;
    return timed<5, StepData3D>(constants, stepData3D(),
                                {{{k.collide, 0, cells},
                                  {k.gradients, 0, cells},
                                  {k.reconstruct, 0, interior},
                                  {k.boundary, interior, mesh.totalFaceCount()},
                                  {k.update, 0, cells}}},
                                stepTraffic3D());
}

/// The result of the case, measured when it is first asked for and kept until another is asked for.
const CaseResult& resultOf(const std::shared_ptr<const LoopCase>& wanted) {
    static std::shared_ptr<const LoopCase> measured, prepared;
    static CaseResult result;
    if (measured == wanted)
        return result;
    omp_set_num_threads(wanted->threads);
    if (!prepared || prepared->mesh != wanted->mesh || prepared->physics != wanted->physics)
        wanted->prepare();
    prepared = measured = wanted;
    result = wanted->is3D ? timed3D() : timed2D();
    return result;
}

/// One loop, or with index -1 all of them together.
void loopOf(benchmark::State& state, const std::shared_ptr<const LoopCase>& wanted, int index) {
    for ([[maybe_unused]] auto iteration : state) {
        const CaseResult& result = resultOf(wanted);
        double seconds = 0.0, fastest = 0.0, bytes = 0.0, allocated = 0.0;
        for (std::size_t n = 0; n < result.loops.size(); ++n) {
            if (index >= 0 && n != static_cast<std::size_t>(index))
                continue;
            seconds += result.loops[n].seconds;
            fastest += result.loops[n].fastest;
            bytes += static_cast<double>(result.loops[n].traffic.bytes(RowStores::ordinary));
            allocated += static_cast<double>(result.loops[n].traffic.allocated);
        }
        const double bound = bytes / result.bandwidth.bestThatWrites();
        state.SetIterationTime(seconds);
        state.counters["cells"] = result.cells;
        state.counters["ns/cell"] = seconds / result.cells * 1e9;
        state.counters["bytes/cell"] = bytes / result.cells;
        state.counters["allocated_bytes/cell"] = allocated / result.cells;
        state.counters["GB/s"] = bytes / seconds * 1e-9;
        state.counters["bandwidth_GB/s"] = result.bandwidth.bestThatWrites() * 1e-9;
        state.counters["reading_GB/s"] = result.bandwidth.read * 1e-9;
        state.counters["bound_ns/cell"] = bound / result.cells * 1e9;
        state.counters["share_of_bound"] = bound / seconds;
        state.counters["fastest_ns/cell"] = fastest / result.cells * 1e9;
        state.counters["fastest_share_of_bound"] = bound / fastest;
    }
}

void registerCase(const LoopCase& wanted) {
    const auto shared = std::make_shared<const LoopCase>(wanted);
    std::vector<std::string> names;
    if (wanted.is3D)
        names = {"collide", "gradients", "reconstruct", "boundary", "update"};
    else
        names = {"collide", "gradients", "reconstruct", "boundary", "recover", "update"};
    const std::string prefix = wanted.mesh + "/" + bench::nameOf(wanted.physics) +
                               "/threads:" + std::to_string(wanted.threads) + "/";
    const auto add = [&](const std::string& name, int index) {
        benchmark::RegisterBenchmark((prefix + name).c_str(),
                                     [shared, index](benchmark::State& s) { loopOf(s, shared, index); })
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    };
    for (std::size_t n = 0; n < names.size(); ++n)
        add(names[n], static_cast<int>(n));
    add("all", -1);
}

void registerCases() {
    using bench::Physics;
    using bench::Shape;
    std::vector<int> threadCounts{1};
    if (omp_get_num_procs() > 1)
        threadCounts.push_back(omp_get_num_procs());
    for (const Shape shape : {Shape::quadrilaterals, Shape::triangles})
        for (const int n : {64, 256, 1000})
            for (const Physics physics : {Physics::flow, Physics::flowAndHeat, Physics::enthalpy})
                for (const int threads : threadCounts)
                    registerCase({std::string(bench::nameOf(shape)) + "/n:" + std::to_string(n), physics,
                                  false, threads, [=] { bench::prepareCavity(n, physics, shape); }});
    for (const int n : {10, 46})
        for (const Physics physics : {Physics::flow, Physics::flowAndHeat})
            for (const int threads : threadCounts)
                registerCase({"tetrahedra/n:" + std::to_string(n), physics, true, threads,
                              [=] { bench::prepareCube(n, 19, physics); }});
}

} // namespace

int main(int argc, char** argv) {
    registerCases();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
