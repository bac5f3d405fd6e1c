// Builds cells and derived geometry of a 2D mesh from its points and faces.
#pragma once

#include "mesh/record_table.h"

#include <cstdint>

namespace fluvane {

/// The number of cells that the interior faces name. Deliberate: a face's second cell is looked at only when
/// its first cell does not raise the maximum; a last cell that is met in no other way is not counted, and
/// `buildGeometry2D` refuses the mesh.
std::int32_t countCells2D();

/// Creates the cells and fills connectivity, neighbour lists (face neighbours, then the second ring), face
/// midpoints and lengths, cell centres, areas, outward area vectors and least-squares weights.
/// Returns false, with a problem line and an emptied mesh, when a cell has more than four faces or nodes
/// (with four faces the two rings always fit the 20 neighbours), a face names a point or cell that does not
/// exist, or memory runs out. A singular least-squares system gives zero weights and a problem line; cells
/// whose faces do not close to a polygon give a problem line as well. The empty mesh stays empty, which is no
/// failure.
bool buildGeometry2D();

/// The same with a choice of how the records are stored.
bool buildGeometry2D(Storage storage);

/// The smallest face length, starting from 10000.0.
double minFaceLength2D();

} // namespace fluvane
