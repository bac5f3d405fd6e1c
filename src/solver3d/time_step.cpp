// The five loops of a 3D step, shared out over the threads.
#include "solver3d/time_step.h"

#include "mesh/mesh.h"
#include "solver3d/loop_kernels_3d.h"

namespace fluvane {

void step3D() {
    const StepConstants constants = stepConstants3D();
    const LoopKernels3D& kernels = loopKernels3D(constants.velocityCount);
    const std::int32_t cells = mesh.cellCount;
    const std::int32_t interior = mesh.interiorFaceCount;
    const std::array<Loop<StepData3D>, 5> loops{{{kernels.collide, 0, cells},
                                                 {kernels.gradients, 0, cells},
                                                 {kernels.reconstruct, 0, interior},
                                                 {kernels.boundary, interior, mesh.totalFaceCount()},
                                                 {kernels.update, 0, cells}}};
    runLoops(constants, stepData3D(), loops);
}

} // namespace fluvane
