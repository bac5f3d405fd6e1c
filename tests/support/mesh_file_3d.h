// Writes the 3D mesh of the process as a file that its reader takes.
#pragma once

#include <QByteArray>
#include <QString>

namespace fluvane::support {

/// The present 3D mesh in the Fluent ASCII layout: every point is declared, and by the right-hand rule over
/// its nodes every face points into its first cell. The geometry must have been built.
QByteArray meshFileText3D(const char* lineEnd = "\n");

/// The same into a file. Aborts the program when it cannot be written.
void writeMeshFile3D(const QString& path);

} // namespace fluvane::support
