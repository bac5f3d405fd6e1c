// Picks the kernels for the machine's instruction set at run time.
#include "solver2d/instruction_set.h"

#include "solver2d/loop_kernels_2d.h"
#include "solver3d/loop_kernels_3d.h"

#include <atomic>

namespace fluvane {

namespace baseline {
const LoopKernels2D& loopKernels2D(int velocityCount);
const LoopKernels3D& loopKernels3D(int velocityCount);
} // namespace baseline
#if defined(FLUVANE_X86_KERNELS)
namespace avx2 {
const LoopKernels2D& loopKernels2D(int velocityCount);
const LoopKernels3D& loopKernels3D(int velocityCount);
} // namespace avx2
namespace avx512 {
const LoopKernels2D& loopKernels2D(int velocityCount);
const LoopKernels3D& loopKernels3D(int velocityCount);
} // namespace avx512
#endif

InstructionSet widestInstructionSet() {
#if defined(FLUVANE_X86_KERNELS)
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq"))
        return InstructionSet::avx512;
    if (__builtin_cpu_supports("avx2"))
        return InstructionSet::avx2;
#endif
    return InstructionSet::baseline;
}

namespace {

std::atomic<InstructionSet>& current() {
    static std::atomic<InstructionSet> set{widestInstructionSet()};
    return set;
}

} // namespace

bool useInstructionSet(InstructionSet set) {
    if (set > widestInstructionSet())
        return false;
    current().store(set);
    return true;
}

InstructionSet instructionSetInUse() {
    return current().load();
}

const LoopKernels2D& loopKernels2D(int velocityCount) {
#if defined(FLUVANE_X86_KERNELS)
    switch (instructionSetInUse()) {
    case InstructionSet::avx512:
        return avx512::loopKernels2D(velocityCount);
    case InstructionSet::avx2:
        return avx2::loopKernels2D(velocityCount);
    case InstructionSet::baseline:
        break;
    }
#endif
    return baseline::loopKernels2D(velocityCount);
}

const LoopKernels3D& loopKernels3D(int velocityCount) {
#if defined(FLUVANE_X86_KERNELS)
    switch (instructionSetInUse()) {
    case InstructionSet::avx512:
        return avx512::loopKernels3D(velocityCount);
    case InstructionSet::avx2:
        return avx2::loopKernels3D(velocityCount);
    case InstructionSet::baseline:
        break;
    }
#endif
    return baseline::loopKernels3D(velocityCount);
}

} // namespace fluvane
