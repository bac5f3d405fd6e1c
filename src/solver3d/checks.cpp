// Residuals of a 3D field.
#include "solver3d/checks.h"

#include "mesh/mesh.h"
#include "solver2d/checks.h"

namespace fluvane {

bool checkConvergence3D(const QString& prefix) {
    constexpr double tolerance = 1e-9; // deliberate: the run's tolerances are not used
    ChangeSums sums;
    for (const CellRecord3D& cell : mesh.cells3D) {
        const double du = cell.u - cell.uPrev;
        const double dv = cell.v - cell.vPrev;
        const double dw = cell.w - cell.wPrev;
        sums.numU += du * du + dv * dv + dw * dw;
        sums.denU += cell.uPrev * cell.uPrev + cell.vPrev * cell.vPrev + cell.wPrev * cell.wPrev;
        // Deliberate: not weighted by the volume, unlike the area in two dimensions.
        const double dT = cell.T - cell.TPrev;
        sums.numT += dT * dT;
        sums.denT += cell.TPrev * cell.TPrev;
    }
    return reportChange(sums, tolerance, tolerance, prefix);
}

} // namespace fluvane
