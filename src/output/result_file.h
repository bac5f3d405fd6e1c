// Tecplot result files.
#pragma once

#include <QString>
#include <vector>

namespace fluvane {

/// One instant of a 2D case: what a result file needs of the fields and the settings, copied so that the
/// run may go on while the file is being written. The mesh itself is read when writing.
struct ResultSnapshot2D {
    struct Cell {
        double rho, u, v, T, H;
    };
    std::vector<Cell> cells;
    bool flowOn = false, heatOn = false, buoyancyOn = false;
    int thermalMode = 0, thermalScaleKind = 0;
    double Ra = 0, Re = 0, Pr = 0, dx = 0, CFL = 0, dt = 0, niu = 0, alpha = 0, U0 = 0, dT = 0, L = 0;
    double Hsolidus = 0, Hliquidus = 0;
    double error = 0; ///< exactSolutionError() of this instant
};

/// Copies the present state. The caller keeps a run from stepping meanwhile. Where memory is short the
/// snapshot has no cells, and the writers refuse it.
ResultSnapshot2D captureResult2D();

/// Writes a captured state to a Tecplot ASCII file: parameters, points, cell-centred fields, connectivity;
/// CR LF line ends, 6 significant digits. The file appears whole or not at all where the system allows it
/// (written beside, then renamed). Returns false when nothing could be written; says nothing.
bool writeResult2D(const QString& path, const ResultSnapshot2D& snapshot);

/// Captures the present state and writes it.
bool writeResult2D(const QString& path);

/// One instant of a 3D case.
struct ResultSnapshot3D {
    struct Cell {
        double rho, u, v, w, T;
    };
    std::vector<Cell> cells;
    bool heatOn = false;
    int thermalScaleKind = 0;
    double alpha = 0, dT = 0, L = 0;
};

/// Copies the present state of a 3D case. The caller keeps a run from stepping meanwhile.
ResultSnapshot3D captureResult3D();

/// Writes a captured 3D state as a zone of tetrahedra, in the way of `writeResult2D`. Deliberate differences
/// from the 2D file: no parameters and no error line, the velocity as stored, no enthalpy and liquid
/// fraction, and as many corners on a connectivity line as the cell has.
bool writeResult3D(const QString& path, const ResultSnapshot3D& snapshot);

/// Captures the present 3D state and writes it.
bool writeResult3D(const QString& path);

/// Relative L2 difference between the cell temperatures and the steady conduction profile between two
/// circles about the origin, ln(r / 3) / ln(0.3) + 1: 1 at radius 3, 2 at radius 0.9. Printed for every case,
/// whatever its geometry; 0 without cells.
double exactSolutionError();

} // namespace fluvane
