// Copies and adds arrays, with stores through the caches and past them.
#include "bandwidth.h"

#include "mesh/huge_array.h"
#include "solver2d/row.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <omp.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace fluvane::bench {

namespace {

using baseline::Row;

#if defined(__SSE2__)
constexpr bool storesPastCaches = true;
void storePast(double* to, double first, double second) {
    _mm_stream_pd(to, _mm_set_pd(second, first));
}
void endOfStores() {
    _mm_sfence();
}
#else
constexpr bool storesPastCaches = false;
void storePast(double*, double, double) {}
void endOfStores() {}
#endif

/// A thread's share of the memory, cut into arrays of whole lines.
struct Share {
    double* data;
    std::ptrdiff_t count;

    /// How long each of so many arrays is; an odd number of lines, so that they do not begin at the same
    /// place of a page.
    std::ptrdiff_t length(int arrays) const { return ((count / arrays / 8 - 1) | 1) * 8; }
};

/// Three arrays at once: on one alone the processor does not read ahead far enough.
void readArrays(const Share& share) {
    using Lane = Row<8>;
    const std::ptrdiff_t n = share.length(3);
    const double* const b = share.data + n;
    const double* const c = b + n;
    Lane sums[3] = {Lane::zero(), Lane::zero(), Lane::zero()};
    for (std::ptrdiff_t i = 0; i < n; i += Lane::size) {
        sums[0] = sums[0] + Lane::load(share.data + i);
        sums[1] = sums[1] + Lane::load(b + i);
        sums[2] = sums[2] + Lane::load(c + i);
    }
    double total[Lane::size];
    (sums[0] + sums[1] + sums[2]).store(total);
    benchmark::DoNotOptimize(total);
}

/// With a factor: for a mere copy the compiler takes the library's, which chooses its kind of store itself.
void copyArray(const Share& share, double factor) {
    const std::ptrdiff_t n = share.length(2);
    double* __restrict const a = share.data;
    const double* const b = share.data + n;
    for (std::ptrdiff_t i = 0; i < n; ++i)
        a[i] = factor * b[i];
}

void triadArray(const Share& share, double factor) {
    const std::ptrdiff_t n = share.length(3);
    double* __restrict const a = share.data;
    const double* const b = share.data + n;
    const double* const c = b + n;
    for (std::ptrdiff_t i = 0; i < n; ++i)
        a[i] = b[i] + factor * c[i];
}

void streamedCopyArray(const Share& share, double factor) {
    const std::ptrdiff_t n = share.length(2);
    const double* const b = share.data + n;
    for (std::ptrdiff_t i = 0; i < n; i += 2)
        storePast(share.data + i, factor * b[i], factor * b[i + 1]);
    endOfStores();
}

void streamedTriadArray(const Share& share, double factor) {
    const std::ptrdiff_t n = share.length(3);
    const double* const b = share.data + n;
    const double* const c = b + n;
    for (std::ptrdiff_t i = 0; i < n; i += 2)
        storePast(share.data + i, b[i] + factor * c[i], b[i + 1] + factor * c[i + 1]);
    endOfStores();
}

Share shareOf(HugeArray<double>& memory) {
    const auto total = static_cast<std::ptrdiff_t>(memory.size());
    const std::ptrdiff_t perThread = total / omp_get_num_threads() / 8 * 8;
    return {memory.data() + perThread * omp_get_thread_num(), perThread};
}

/// Bytes a second of a kernel that moves `moved` times each thread's share in one pass.
double rate(HugeArray<double>& memory, double moved, const auto& kernel) {
    using Clock = std::chrono::steady_clock;
    constexpr int tries = 7;
    constexpr double bytesPerTry = 1e8;
    const double bytes = static_cast<double>(memory.size() * sizeof(double)) * moved;
    const int passes = std::max(1, static_cast<int>(bytesPerTry / bytes));
    double best = std::numeric_limits<double>::infinity();
#pragma omp parallel
    {
        const Share share = shareOf(memory);
        for (int n = 0; n < tries; ++n) {
#pragma omp barrier
            const auto start = Clock::now();
            for (int pass = 0; pass < passes; ++pass) {
                kernel(share);
                benchmark::ClobberMemory();
            }
#pragma omp barrier
#pragma omp master
            best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count() / passes);
        }
    }
    return bytes / best;
}

/// 0 where the system does not tell.
std::size_t cacheSize(int level) {
    // Not sysconf(): on a virtual machine it tells the cache of the whole processor.
    for (const benchmark::CPUInfo::CacheInfo& cache : benchmark::CPUInfo::Get().caches)
        if (cache.level == level && cache.type != "Instruction")
            return static_cast<std::size_t>(cache.size);
    return 0;
}

} // namespace

double Bandwidth::bestThatWrites() const {
    return std::max({copy, triad, streamedCopy, streamedTriad});
}

Bandwidth measureBandwidth(std::size_t bytes) {
    HugeArray<double> memory(bytes / sizeof(double));
    double factor = 0.5;
    benchmark::DoNotOptimize(factor);
    Bandwidth b;
    b.read = rate(memory, 1.0, readArrays);
    b.copy = rate(memory, 3.0 / 2.0, [&](const Share& s) { copyArray(s, factor); });
    b.triad = rate(memory, 4.0 / 3.0, [&](const Share& s) { triadArray(s, factor); });
    if (storesPastCaches) {
        b.streamedCopy = rate(memory, 1.0, [&](const Share& s) { streamedCopyArray(s, factor); });
        b.streamedTriad = rate(memory, 1.0, [&](const Share& s) { streamedTriadArray(s, factor); });
    }
    return b;
}

std::size_t secondLevelCache() {
    const std::size_t size = cacheSize(2);
    return size > 0 ? size : std::size_t{512} << 10;
}

std::size_t lastLevelCache() {
    for (const int level : {4, 3, 2})
        if (const std::size_t size = cacheSize(level); size > 0)
            return size;
    return std::size_t{32} << 20;
}

} // namespace fluvane::bench
