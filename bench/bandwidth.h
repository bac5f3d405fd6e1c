// How many bytes a second the machine moves between its memory or caches and its processors.
#pragma once

#include <cstddef>

namespace fluvane::bench {

/// The five ways of moving whole arrays. Rates count every byte that moves: with ordinary stores also the
/// lines that are read only because they are written.
struct Bandwidth {
    double read = 0.0;         ///< bytes a second; summing arrays up
    double copy = 0.0;         ///< a = b
    double triad = 0.0;        ///< a = b + s c
    double streamedCopy = 0.0; ///< the same with stores past the caches; 0 where the processor has none
    double streamedTriad = 0.0;

    /// The best of those that write, as every loop of a step does.
    double bestThatWrites() const;
};

/// Measures on arrays of so many bytes in all, on the thread count set for OpenMP; the best of several tries,
/// since whatever else the machine does can only slow it down.
Bandwidth measureBandwidth(std::size_t bytes);

/// Sizes of the caches in bytes as the system tells them, ordinary ones where it does not: the second level
/// of one core and the last level.
std::size_t secondLevelCache();
std::size_t lastLevelCache();

} // namespace fluvane::bench
