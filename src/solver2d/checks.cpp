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

bool checkConvergence2D(double tolU, double tolT, const QString& prefix) {
    double numU = 0.0, denU = 0.0, numT = 0.0, denT = 0.0;
    for (const CellRecord& cell : mesh.cells2D) {
        const double du = cell.u - cell.uPrev;
        const double dv = cell.v - cell.vPrev;
        numU += du * du + dv * dv;
        denU += cell.uPrev * cell.uPrev + cell.vPrev * cell.vPrev;
        const double dT = cell.T - cell.TPrev;
        const double areaSquare = cell.area * cell.area;
        numT += dT * dT * areaSquare;
        denT += cell.TPrev * cell.TPrev * areaSquare;
    }
    const double errorU = std::sqrt(numU / (denU + 1e-30));
    const double errorT = std::sqrt(numT / (denT + 1e-30));
    appendTerminalLine(prefix + "   error_u=" + QString::number(errorU) +
                       "   error_T=" + QString::number(errorT));
    return errorU < tolU && errorT < tolT;
}

bool hasNaN() {
    return caseSettings.is3D ? reportFirstNaN(mesh.cells3D) : reportFirstNaN(mesh.cells2D);
}

} // namespace fluvane
