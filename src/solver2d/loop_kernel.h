// What a loop of a step is: a body over a range of records, and the team that shares the ranges out.
#pragma once

#include "solver2d/loop_team.h"
#include "solver2d/step_constants.h"
#include "solver2d/step_data.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

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

/// Runs the loops one after the other on the thread count set for OpenMP, each shared out in contiguous
/// blocks, with a barrier between two of them.
template <class Data, std::size_t N>
void runLoops(const StepConstants& constants, const Data& data, const std::array<Loop<Data>, N>& loops) {
    const auto work = [&](const TeamMember& member) {
        for (std::size_t n = 0; n < N; ++n) {
            if (n > 0)
                member.barrier();
            const auto [first, last] = member.shareOf(loops[n].first, loops[n].last);
            loops[n].kernel(constants, data, first, last);
        }
    };
    runOnTeam(std::cref(work)); // by value, what it refers to would need memory in every step
}

} // namespace fluvane
