// The cell kernels for a single record.
#include "solver2d/cell_kernels.h"

#include "solver2d/record_kernels.h"

namespace fluvane {

void collideCell(CellRecord& cell) {
    runOnRecord(&LoopKernels2D::collide, indexIn(mesh.cells2D, cell));
}

void computeCellGradients(CellRecord& cell) {
    runOnRecord(&LoopKernels2D::gradients, indexIn(mesh.cells2D, cell));
}

void updateCell(CellRecord& cell) {
    runOnRecord(&LoopKernels2D::update, indexIn(mesh.cells2D, cell));
}

} // namespace fluvane
