// Times the loop of the instruction set in use.
#include "multiply_add.h"

#include "solver2d/instruction_set.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <vector>

namespace fluvane {

using MultiplyAddLoop = int (*)(long rounds, const double* factors, double* result);

namespace baseline {
int multiplyAdd(long rounds, const double* factors, double* result);
}
#if defined(FLUVANE_X86_KERNELS)
namespace avx2 {
int multiplyAdd(long rounds, const double* factors, double* result);
}
namespace avx2_fused {
int multiplyAdd(long rounds, const double* factors, double* result);
}
namespace avx512 {
int multiplyAdd(long rounds, const double* factors, double* result);
}
namespace avx512_fused {
int multiplyAdd(long rounds, const double* factors, double* result);
}
#endif

namespace bench {

namespace {

struct Loops {
    MultiplyAddLoop separate;
    MultiplyAddLoop fused;
};

Loops loopsInUse() {
#if defined(FLUVANE_X86_KERNELS)
    switch (instructionSetInUse()) {
    case InstructionSet::avx512:
        return {avx512::multiplyAdd, avx512_fused::multiplyAdd};
    case InstructionSet::avx2:
        return {avx2::multiplyAdd, __builtin_cpu_supports("fma") ? avx2_fused::multiplyAdd : nullptr};
    case InstructionSet::baseline:
        break;
    }
#endif
    return {baseline::multiplyAdd, nullptr};
}

double operationsPerSecond(MultiplyAddLoop loop) {
    using Clock = std::chrono::steady_clock;
    constexpr long rounds = 2000000;
    constexpr std::size_t most = 32 * 8;
    double best = std::numeric_limits<double>::infinity();
    int count = 0;
#pragma omp parallel reduction(+ : count)
    {
        std::vector<double> factors(16, 0.5), numbers(most, 1.0); // x = x / 2 + 1/2 stays 1
        for (int n = 0; n < 9; ++n) {
#pragma omp barrier
            const auto start = Clock::now();
            count = loop(rounds, factors.data(), numbers.data());
            benchmark::DoNotOptimize(numbers.data());
#pragma omp barrier
#pragma omp master
            best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
        }
    }
    return 2.0 * count * static_cast<double>(rounds) / best;
}

} // namespace

MultiplyAdd measureMultiplyAdd() {
    const Loops loops = loopsInUse();
    return {operationsPerSecond(loops.separate), loops.fused ? operationsPerSecond(loops.fused) : 0.0};
}

} // namespace bench

} // namespace fluvane
