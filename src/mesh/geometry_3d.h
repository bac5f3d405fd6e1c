// Builds cells and derived geometry of a 3D mesh from its points and faces.
#pragma once

namespace fluvane {

/// Creates the cells and fills connectivity, neighbour lists (face neighbours, then the second ring), face
/// centres and areas, cell centres, volumes, unit outward normals and least-squares weights.
/// Returns false, with a problem line and an emptied mesh, when a cell has more than six faces, eight nodes
/// or 24 neighbours, a face names a point or cell that does not exist, or memory runs out. Returns false with
/// a problem line as well when a cell is not a tetrahedron; all but the volumes of such cells is then filled,
/// for inspection, and the caller empties the mesh. A singular least-squares system gives zero weights and a
/// problem line. The empty mesh stays empty, which is no failure.
bool buildGeometry3D();

/// The smallest face area, starting from 10000.0.
double minFaceArea3D();

} // namespace fluvane
