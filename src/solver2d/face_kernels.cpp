// The face kernels for a single record.
#include "solver2d/face_kernels.h"

#include "solver2d/record_kernels.h"

namespace fluvane {

void reconstructInteriorFace(FaceRecord& face) {
    runOnRecord(&LoopKernels2D::reconstruct, indexIn(mesh.faces2D, face));
}

void recoverFaceDistributions(FaceRecord& face) {
    runOnRecord(&LoopKernels2D::recover, indexIn(mesh.faces2D, face));
}

void treatBoundaryFace(FaceRecord& face) {
    runOnRecord(&LoopKernels2D::boundary, indexIn(mesh.faces2D, face));
}

} // namespace fluvane
