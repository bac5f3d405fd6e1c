// Builds cells and derived geometry of a 3D mesh from its points and faces.
#pragma once

#include "mesh/record_table.h"

namespace fluvane {

/// Creates the cells and fills connectivity, neighbour lists (face neighbours, then the second ring), face
/// centres and areas, cell centres, volumes, unit outward normals and least-squares weights.
/// Returns false, with a problem line and an emptied mesh, when a cell has more than six faces, eight nodes
/// or 24 neighbours (cells of four faces have at most 16), a face has not three or four nodes or names a
/// point or cell that does not exist, or memory runs out. Returns false with one problem line as well when
/// cells are not tetrahedra; everything but the volumes of such cells is then filled, for inspection, and the
/// caller empties the mesh. Flat cells and singular least-squares systems (which get zero weights) give a
/// problem line each; a face whose first three nodes lie on one line has the normal (0, 0, 0). The empty mesh
/// stays empty, which is no failure.
bool buildGeometry3D();

/// The same with a choice of how the records are stored.
bool buildGeometry3D(Storage storage);

/// The smallest face area, starting from 10000.0. Deliberate: quadrilaterals count with the area of their
/// projection on the x-y plane, so an upright one makes it 0.
double minFaceArea3D();

} // namespace fluvane
