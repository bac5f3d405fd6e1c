// The 3D face kernels for a single record.
#include "solver3d/face_kernels.h"

#include "solver2d/record_kernels.h"

namespace fluvane {

void reconstructInteriorFace3D(FaceRecord3D& face) {
    runOnRecord(&LoopKernels3D::reconstruct, indexIn(mesh.faces3D, face));
}

void treatBoundaryFace3DHeat(FaceRecord3D& face) {
    StepConstants heatAlone = stepConstants3D();
    heatAlone.flowOn = false;
    runOnRecord(&LoopKernels3D::boundary, indexIn(mesh.faces3D, face), heatAlone);
}

void treatBoundaryFace3DFlow(FaceRecord3D& face) {
    StepConstants flowAlone = stepConstants3D();
    flowAlone.heat = HeatForm::off;
    runOnRecord(&LoopKernels3D::boundary, indexIn(mesh.faces3D, face), flowAlone);
}

} // namespace fluvane
