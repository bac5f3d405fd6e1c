// Reads a three-dimensional Fluent ASCII mesh.
#pragma once

#include <QString>

namespace fluvane {

/// Reads points, faces, boundary zones and zone names into `mesh`; the velocity set must have been read
/// before. Deliberate: there is one point more than the file declares, at (0, 0, 0). The previous mesh, of
/// whatever dimension, is gone in every case. The zone names are said to the terminal in the file's order.
///
/// A face line of five words is a triangle, one of six a quadrilateral. Deliberate: unlike in 2D, upper-case
/// letters count 0 in face lines. What is still within the mesh is taken as it reads, with a problem line.
///
/// Returns true at the end of the file, and also, with an empty mesh and a problem line, when the file cannot
/// be opened for reading and writing. Returns false with an empty mesh and a problem line naming file, line,
/// expected and found when the file is two-dimensional or not of the supported layout.
bool readMesh3D(const QString& path);

} // namespace fluvane
