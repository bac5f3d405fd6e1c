// The kernels of one 2D cell.
#pragma once

namespace fluvane {

struct CellRecord;

/// Collision: from fTilde and the cell's moments to fTildePlus and fBarPlus, and the same for g; which of
/// them is chosen by the switches (Guo, Xu and Wang, Phys. Rev. E 88 (2013) 033305).
void collideCell(CellRecord& cell);

/// Least-squares gradients of fBarPlus and gBarPlus, neighbours added in the order they are stored.
void computeCellGradients(CellRecord& cell);

/// Finite-volume update from the fluxes over the cell's faces, then the new moments; flow before heat.
void updateCell(CellRecord& cell);

} // namespace fluvane
