// Writes a file so that whoever opens it finds the old content or the new, never a part.
#pragma once

#include <QString>
#include <string_view>

namespace fluvane {

/// Writes `content` to a temporary file beside the target and renames it over the target; symbolic links are
/// followed. Where that cannot be done (no right to create files in the folder, a name too long to be
/// extended, a device or a pipe as target) the target itself is overwritten.
/// Returns false, and leaves an existing file as it was wherever renaming is possible, when the content could
/// not be written in full.
bool writeWholeFile(const QString& path, std::string_view content);

} // namespace fluvane
