// Writes a file so that whoever opens it finds the old content or the new, never a part.
#pragma once

#include <QString>
#include <functional>
#include <string_view>

namespace fluvane {

class FileText;

/// Writes `content` to a temporary file beside the target and renames it over the target; symbolic links are
/// followed. Where that cannot be done (no right to create files in the folder, a name too long to be
/// extended, a device or a pipe as target) the target itself is overwritten.
/// Returns false, and leaves an existing file as it was wherever renaming is possible, when the content could
/// not be written in full.
bool writeWholeFile(const QString& path, std::string_view content);

/// The same with a content that is made while it is being written: `append` appends all of it to the text it
/// is given. It is called a second time, and must append the same, when renaming fails at the end.
bool writeWholeFile(const QString& path, const std::function<void(FileText&)>& append);

} // namespace fluvane
