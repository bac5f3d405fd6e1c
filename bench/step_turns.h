// Times steps in turns: on several thread counts, beside the plain reference, on well and badly ordered
// meshes.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>

namespace fluvane::bench {

using Step = std::function<void()>;

/// Steps the present mesh on one thread, on one a processor and on the 40 threads that the program proposes,
/// and the plain reference on the first two, in turns; the counters are medians.
void stepInTurns(benchmark::State& state, const Step& step, const Step& plainStep);

/// Steps a mesh whose cells are numbered row by row and the same one numbered at random in turns, on one
/// thread and on one a processor. Each function makes its mesh the present one.
void stepOrdersInTurns(benchmark::State& state, const Step& step, const std::function<void()>& prepareOrdered,
                       const std::function<void()>& prepareShuffled);

} // namespace fluvane::bench
