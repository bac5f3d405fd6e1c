// Timing of repeated work for the benchmarks.
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace fluvane::bench {

/// Seconds that one of `repetitions` calls takes.
double secondsPerCall(int repetitions, const auto& work) {
    const auto start = std::chrono::steady_clock::now();
    for (int n = 0; n < repetitions; ++n)
        work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / repetitions;
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace fluvane::bench
