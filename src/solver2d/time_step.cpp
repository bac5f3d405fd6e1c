// The six loops of a 2D step, shared out over the threads.
#include "solver2d/time_step.h"

#include "mesh/mesh.h"
#include "solver2d/loop_kernels_2d.h"

#include <omp.h>

namespace fluvane {

StepData2D stepData2D() {
    CellPools& p = mesh.cellPools;
    StepData2D d;
    d.cells = mesh.cells2D.data();
    d.faces = mesh.faces2D.data();
    d.neighbourStart = mesh.neighbourStart.data();
    d.neighbours = mesh.neighbourList.data();
    d.lsq = mesh.lsqList2D.data();
    d.fTilde = p.fTilde.data();
    d.fBarPlus = p.fBarPlus.data();
    d.fTildePlus = p.fTildePlus.data();
    d.gTilde = p.gTilde.data();
    d.gBarPlus = p.gBarPlus.data();
    d.gTildePlus = p.gTildePlus.data();
    d.gradFBarPlus = p.gradFBarPlus.data();
    d.gradGBarPlus = p.gradGBarPlus.data();
    d.fFace = mesh.facePools.fFace.data();
    d.gFace = mesh.facePools.gFace.data();
    return d;
}

void step2D() {
    const StepConstants constants = stepConstants2D();
    const StepData2D data = stepData2D();
    const LoopKernels2D& kernels = loopKernels2D(constants.velocityCount);
    const std::int32_t cells = mesh.cellCount;
    const std::int32_t interior = mesh.interiorFaceCount;
    const std::int32_t faces = mesh.totalFaceCount();

#pragma omp parallel
    {
        const std::int64_t thread = omp_get_thread_num();
        const std::int64_t threads = omp_get_num_threads();
        // One contiguous block per thread and loop, as a static schedule without chunk size cuts it.
        const auto share = [&](LoopKernel2D kernel, std::int32_t first, std::int32_t last) {
            const std::int64_t count = last - first;
            kernel(constants, data, first + static_cast<std::int32_t>(count * thread / threads),
                   first + static_cast<std::int32_t>(count * (thread + 1) / threads));
        };
        share(kernels.collide, 0, cells);
#pragma omp barrier
        share(kernels.gradients, 0, cells);
#pragma omp barrier
        share(kernels.reconstruct, 0, interior);
#pragma omp barrier
        share(kernels.boundary, interior, faces);
#pragma omp barrier
        share(kernels.recover, 0, faces);
#pragma omp barrier
        share(kernels.update, 0, cells);
    }
}

} // namespace fluvane
