// The 3D cell kernels for a single record.
#include "solver3d/cell_kernels.h"

#include "solver2d/record_kernels.h"

namespace fluvane {

void collideCell3D(CellRecord3D& cell) {
    runOnRecord(&LoopKernels3D::collide, indexIn(mesh.cells3D, cell));
}

void computeCellGradients3D(CellRecord3D& cell) {
    runOnRecord(&LoopKernels3D::gradients, indexIn(mesh.cells3D, cell));
}

void updateCell3D(CellRecord3D& cell) {
    runOnRecord(&LoopKernels3D::update, indexIn(mesh.cells3D, cell));
}

} // namespace fluvane
