// Builds cells and derived geometry of a 2D mesh from its points and faces.
#pragma once

namespace fluvane {

/// Creates the cells and fills connectivity, neighbour lists (face neighbours, then the second ring), face
/// midpoints and lengths, cell centres, areas, outward area vectors and least-squares weights.
/// Returns false, with a problem line and an emptied mesh, when a cell has more than four faces or nodes or
/// more than 20 neighbours. A singular least-squares system gives zero weights and a problem line.
bool buildGeometry2D();

/// The smallest face length, starting from 10000.0.
double minFaceLength2D();

} // namespace fluvane
