// The kernels of one 3D cell.
#pragma once

namespace fluvane {

struct CellRecord3D;

/// Collision: from fTilde and the cell's moments to fTildePlus and fBarPlus, and the same for g; which of
/// them is chosen by the switches (Guo, Xu and Wang, Phys. Rev. E 88 (2013) 033305). Deliberate: no heat
/// source, and the temperature equilibrium in both thermal modes.
void collideCell3D(CellRecord3D& cell);

/// Least-squares gradients of fBarPlus and gBarPlus, neighbours added in the order they are stored.
void computeCellGradients3D(CellRecord3D& cell);

/// Finite-volume update from the fluxes over the cell's faces, then the new moments; flow before heat. The
/// buoyancy force acts along z.
void updateCell3D(CellRecord3D& cell);

} // namespace fluvane
