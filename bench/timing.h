// Timing of repeated work for the benchmarks.
#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace fluvane::bench {

/// Seconds that one of `repetitions` calls takes.
double secondsPerCall(int repetitions, const auto& work) {
    const auto start = std::chrono::steady_clock::now();
    for (int n = 0; n < repetitions; ++n)
        work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / repetitions;
}

/// The same in seconds that the process was on a core: what else a busy machine does is left out.
double coreSecondsPerCall(int repetitions, const auto& work) {
    const std::clock_t start = std::clock();
    for (int n = 0; n < repetitions; ++n)
        work();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / repetitions;
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace fluvane::bench
