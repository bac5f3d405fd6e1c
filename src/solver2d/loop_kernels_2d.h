// The loops of a 2D step as functions over a range of records, one set per instruction set.
#pragma once

#include "solver2d/loop_kernel.h"

namespace fluvane {

using LoopKernel2D = LoopKernel<StepData2D>;

struct LoopKernels2D {
    LoopKernel2D collide;     ///< cells
    LoopKernel2D gradients;   ///< cells
    LoopKernel2D reconstruct; ///< interior faces
    LoopKernel2D boundary;    ///< boundary faces
    LoopKernel2D recover;     ///< all faces
    LoopKernel2D update;      ///< cells
};

/// The kernels of the instruction set in use for the number of velocities.
const LoopKernels2D& loopKernels2D(int velocityCount);

} // namespace fluvane
