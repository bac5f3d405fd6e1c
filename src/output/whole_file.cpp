// Writing beside and renaming, or in place.
#include "output/whole_file.h"

#include "output/file_text.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>

namespace fluvane {

namespace {

using Append = std::function<void(FileText&)>;

bool writeAll(QFileDevice& file, const Append& append) {
    FileText text(file);
    append(text);
    return text.finish() && file.flush();
}

/// Did the file fail to open because there is no room for one more? The file that is there already must not
/// be emptied then.
bool diskIsFull(const QFileDevice& file) {
    const QString cause = file.errorString();
    return cause == qt_error_string(ENOSPC)
#ifdef EDQUOT
           || cause == qt_error_string(EDQUOT)
#endif
        ;
}

bool writeInPlace(const QString& path, const Append& append) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && writeAll(file, append);
}

} // namespace

bool writeWholeFile(const QString& path, std::string_view content) {
    return writeWholeFile(path, [content](FileText& text) { text += content; });
}

bool writeWholeFile(const QString& path, const Append& append) {
    const QFileInfo target(path);
    if (path.isEmpty() || target.isDir())
        return false;
    if (target.exists() && !target.isFile())
        return writeInPlace(path, append); // renaming would put a plain file in place of a device or a pipe

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return !diskIsFull(file) && writeInPlace(path, append);
    if (!writeAll(file, append)) {
        file.cancelWriting(); // a full disk: the old file is worth more than part of the new one
        return false;
    }
    return file.commit() || writeInPlace(path, append);
}

} // namespace fluvane
