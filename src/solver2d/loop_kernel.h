// What a loop of a step is: a body over a range of records, and the team that shares the ranges out.
#pragma once

#include "solver2d/step_constants.h"
#include "solver2d/step_data.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <omp.h>

namespace fluvane {

/// One loop body over records first .. last - 1.
template <class Data>
using LoopKernel = void (*)(const StepConstants&, const Data&, std::int32_t first, std::int32_t last);

template <class Data>
struct Loop {
    LoopKernel<Data> kernel;
    std::int32_t first;
    std::int32_t last;
};

/// Runs the loops one after the other on the thread count set for OpenMP, each shared out in one contiguous
/// block a thread, with a barrier between two of them.
template <class Data, std::size_t N>
void runLoops(const StepConstants& constants, const Data& data, const std::array<Loop<Data>, N>& loops) {
#pragma omp parallel
    {
        const std::int64_t thread = omp_get_thread_num();
        const std::int64_t threads = omp_get_num_threads();
        for (std::size_t n = 0; n < N; ++n) {
            const Loop<Data>& loop = loops[n];
            const std::int64_t count = loop.last - loop.first;
            loop.kernel(constants, data, loop.first + static_cast<std::int32_t>(count * thread / threads),
                        loop.first + static_cast<std::int32_t>(count * (thread + 1) / threads));
            if (n + 1 < N) {
#pragma omp barrier
            }
        }
    }
}

} // namespace fluvane
