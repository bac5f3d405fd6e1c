// The most multiplications and additions a second that the cores do on rows of numbers in registers.
#pragma once

namespace fluvane::bench {

/// Measures with the instruction set that the kernels use. Multiplications and additions each count as one,
/// those of all threads together.
struct MultiplyAdd {
    double separate = 0.0; ///< operations a second, rounded after each, as the kernels do
    double fused = 0.0;    ///< the same in one instruction; 0 where the instruction set has none
};

/// On the thread count set for OpenMP.
MultiplyAdd measureMultiplyAdd();

} // namespace fluvane::bench
