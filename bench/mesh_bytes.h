// How many bytes the arrays of the present mesh take.
#pragma once

#include <cstddef>

namespace fluvane::bench {

/// All arrays: points, records, lists and pools.
std::size_t meshBytes();

/// The arrays that a step with the present settings works on: without the points, and without the pools of
/// what is not solved.
std::size_t stepBytes();

} // namespace fluvane::bench
