// x = x a + b on independent rows. Compiled once per instruction set, with and without fusing the two.
#include "solver2d/row.h"

namespace fluvane::FLUVANE_ISA {

namespace {

using Vector = Row<laneCount>;

/// Enough chains that none waits for the one before; the registers hold them and the two factors.
constexpr int chains = laneCount == 8 ? 20 : 12;

} // namespace

/// Runs `rounds` multiplications and additions on each number; returns how many numbers there are.
int multiplyAdd(long rounds, const double* factors, double* result) {
    const Vector a = Vector::load(factors);
    const Vector b = Vector::load(factors + laneCount);
    // Unrolled, or the chains pass through memory.
    Vector x[chains];
#pragma GCC unroll 20
    for (int n = 0; n < chains; ++n)
        x[n] = Vector::load(result + n * laneCount);
    for (long round = 0; round < rounds; ++round)
#pragma GCC unroll 20
        for (int n = 0; n < chains; ++n)
            x[n] = x[n] * a + b;
#pragma GCC unroll 20
    for (int n = 0; n < chains; ++n)
        x[n].store(result + n * laneCount);
    return chains * laneCount;
}

} // namespace fluvane::FLUVANE_ISA
