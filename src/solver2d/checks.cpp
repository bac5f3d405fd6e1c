// Residuals and the search for a NaN.
#include "solver2d/checks.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/terminal.h"

#include <cmath>
#include <cstdio>

namespace fluvane {

namespace {

template <class Cells>
bool reportFirstNaN(const Cells& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (cells[i].rho != cells[i].rho || cells[i].T != cells[i].T) {
            std::printf("-nanf%zu\n", i);
            std::fflush(stdout);
            return true;
        }
    }
    return false;
}

} // namespace

bool reportChange(const ChangeSums& sums, double tolU, double tolT, const QString& prefix) {
    const double errorU = std::sqrt(sums.numU / (sums.denU + 1e-30));
    const double errorT = std::sqrt(sums.numT / (sums.denT + 1e-30));
    appendTerminalLine(prefix + "   error_u=" + QString::number(errorU) +
                       "   error_T=" + QString::number(errorT));
    return errorU < tolU && errorT < tolT;
}

bool checkConvergence2D(double tolU, double tolT, const QString& prefix) {
    ChangeSums sums;
    for (const CellRecord& cell : mesh.cells2D) {
        const double du = cell.u - cell.uPrev;
        const double dv = cell.v - cell.vPrev;
        sums.numU += du * du + dv * dv;
        sums.denU += cell.uPrev * cell.uPrev + cell.vPrev * cell.vPrev;
        const double dT = cell.T - cell.TPrev;
        const double areaSquare = cell.area * cell.area;
        sums.numT += dT * dT * areaSquare;
        sums.denT += cell.TPrev * cell.TPrev * areaSquare;
    }
    return reportChange(sums, tolU, tolT, prefix);
}

bool hasNaN() {
    return caseSettings.is3D ? reportFirstNaN(mesh.cells3D) : reportFirstNaN(mesh.cells2D);
}

} // namespace fluvane
