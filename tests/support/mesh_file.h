// Writes the mesh of the process as a file that its reader takes.
#pragma once

#include <QByteArray>
#include <QString>

namespace fluvane::support {

/// The present 2D mesh in the Fluent ASCII layout; zone names as they stand.
QByteArray meshFileText();

/// The same into a file. Aborts the program when it cannot be written.
void writeMeshFile(const QString& path);

} // namespace fluvane::support
