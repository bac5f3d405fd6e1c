// Text dumps of the mesh for inspection, in the working directory.
#pragma once

namespace fluvane {

/// Writes "point.txt": the coordinates of every point. Like the other two it takes the 2D or the 3D form by
/// `caseSettings.is3D`, overwrites an earlier file, and is empty for an empty mesh. Returns false, and says
/// nothing, when the file could not be written.
bool dumpPoints();

/// Writes "cell.txt": in 2D the least-squares neighbours and weights of every cell; in 3D its volume, its
/// outward unit normals and the sum of its area vectors, which is 0 up to rounding for a closed cell.
bool dumpCells();

/// Writes "face.txt": in 2D the stored face moments; in 3D owner, neighbour (-1: none) and area.
/// Deliberate: the text column of the 2D form is the zone name at the index of the face, not of its zone; it
/// is empty where there is no such name.
bool dumpFaces();

} // namespace fluvane
