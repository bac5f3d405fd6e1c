// The loops of a 3D step as functions over a range of records, one set per instruction set.
#pragma once

#include "solver2d/loop_kernel.h"

namespace fluvane {

using LoopKernel3D = LoopKernel<StepData3D>;

struct LoopKernels3D {
    LoopKernel3D collide;     ///< cells
    LoopKernel3D gradients;   ///< cells
    LoopKernel3D reconstruct; ///< interior faces, recovery included
    LoopKernel3D boundary;    ///< boundary faces, recovery included
    LoopKernel3D update;      ///< cells
};

/// The kernels of the instruction set in use for the number of velocities.
const LoopKernels3D& loopKernels3D(int velocityCount);

} // namespace fluvane
