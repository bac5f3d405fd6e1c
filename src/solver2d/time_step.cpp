// The six loops of a 2D step, shared out over the threads.
#include "solver2d/time_step.h"

#include "mesh/mesh.h"
#include "solver2d/loop_kernels_2d.h"

namespace fluvane {

void step2D() {
    const StepConstants constants = stepConstants2D();
    const LoopKernels2D& kernels = loopKernels2D(constants.velocityCount);
    const std::int32_t cells = mesh.cellCount;
    const std::int32_t interior = mesh.interiorFaceCount;
    const std::int32_t faces = mesh.totalFaceCount();
    const std::array<Loop<StepData2D>, 6> loops{{{kernels.collide, 0, cells},
                                                 {kernels.gradients, 0, cells},
                                                 {kernels.reconstruct, 0, interior},
                                                 {kernels.boundary, interior, faces},
                                                 {kernels.recover, 0, faces},
                                                 {kernels.update, 0, cells}}};
    runLoops(constants, stepData2D(), loops);
}

} // namespace fluvane
