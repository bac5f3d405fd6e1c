// Reads a two-dimensional Fluent ASCII mesh.
#pragma once

#include <QString>

namespace fluvane {

/// Reads points, faces, boundary zones and zone names into `mesh`; the velocity set must have been read
/// before. The previous mesh, of whatever dimension, is gone in every case.
///
/// Returns true at the end of the file, and also, with an empty mesh and a problem line, when the file cannot
/// be opened for reading and writing. Returns false with an empty mesh and a problem line naming file, line,
/// expected and found when the file is three-dimensional or not of the supported layout.
bool readMesh2D(const QString& path);

} // namespace fluvane
