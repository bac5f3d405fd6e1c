// What the machine can do: bytes a second in the caches and beyond them, multiplications and additions.
#include "bandwidth.h"
#include "multiply_add.h"
#include "solver2d/instruction_set.h"

#include <benchmark/benchmark.h>

#include <omp.h>

using namespace fluvane;

namespace {

enum Place { secondLevel, lastLevel, memory };

/// Half of the cache, so that the arrays stay in it; several times the last one for the memory.
std::size_t bytesIn(Place place, int threads) {
    switch (place) {
    case secondLevel:
        return bench::secondLevelCache() / 2 * static_cast<std::size_t>(threads);
    case lastLevel:
        return bench::lastLevelCache() / 2;
    case memory:
        break;
    }
    return 8 * bench::lastLevelCache();
}

/// Arguments: where the arrays lie, threads (0: one a processor).
void bandwidth(benchmark::State& state) {
    const int asked = static_cast<int>(state.range(1));
    const int threads = asked > 0 ? asked : omp_get_num_procs();
    const auto place = static_cast<Place>(state.range(0));
    omp_set_num_threads(threads);
    const std::size_t bytes = bytesIn(place, threads);
    bench::Bandwidth b;
    for ([[maybe_unused]] auto iteration : state)
        b = bench::measureBandwidth(bytes);
    constexpr const char* names[] = {"second-level cache", "last-level cache", "memory"};
    state.SetLabel(names[place]);
    state.counters["processors"] = threads;
    state.counters["MiB"] = static_cast<double>(bytes) / (1 << 20);
    state.counters["read_GB/s"] = b.read * 1e-9;
    state.counters["copy_GB/s"] = b.copy * 1e-9;
    state.counters["triad_GB/s"] = b.triad * 1e-9;
    state.counters["streamed_copy_GB/s"] = b.streamedCopy * 1e-9;
    state.counters["streamed_triad_GB/s"] = b.streamedTriad * 1e-9;
}

/// Argument: threads (0: one a processor).
void multiplyAdd(benchmark::State& state) {
    const int asked = static_cast<int>(state.range(0));
    omp_set_num_threads(asked > 0 ? asked : omp_get_num_procs());
    bench::MultiplyAdd peak;
    for ([[maybe_unused]] auto iteration : state)
        peak = bench::measureMultiplyAdd();
    constexpr const char* names[] = {"baseline", "AVX2", "AVX-512"};
    state.SetLabel(names[static_cast<int>(instructionSetInUse())]);
    state.counters["processors"] = omp_get_max_threads();
    state.counters["separate_Gop/s"] = peak.separate * 1e-9;
    state.counters["fused_Gop/s"] = peak.fused * 1e-9;
}

} // namespace

BENCHMARK(bandwidth)
    ->ArgNames({"place", "threads"})
    ->ArgsProduct({{secondLevel, lastLevel, memory}, {1, 0}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(multiplyAdd)->ArgName("threads")->Arg(1)->Arg(0)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
