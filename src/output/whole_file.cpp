// Writing beside and renaming, or in place.
#include "output/whole_file.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace fluvane {

namespace {

bool writeAll(QFileDevice& file, std::string_view content) {
    const auto size = static_cast<qint64>(content.size());
    return file.write(content.data(), size) == size && file.flush();
}

bool writeInPlace(const QString& path, std::string_view content) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && writeAll(file, content);
}

} // namespace

bool writeWholeFile(const QString& path, std::string_view content) {
    const QFileInfo target(path);
    // Renaming over a device, a pipe or a link to nothing would put a plain file in its place.
    const bool replaceable = target.exists() ? target.isFile() : !target.isSymLink();
    if (path.isEmpty() || target.isDir())
        return false;
    if (!replaceable)
        return writeInPlace(path, content);

    QSaveFile file(target.exists() ? target.canonicalFilePath() : path);
    if (!file.open(QIODevice::WriteOnly))
        return writeInPlace(path, content);
    if (!writeAll(file, content)) {
        file.cancelWriting(); // a full disk: the old file is worth more than part of the new one
        return false;
    }
    return file.commit() || writeInPlace(path, content);
}

} // namespace fluvane
