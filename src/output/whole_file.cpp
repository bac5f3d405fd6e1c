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
    if (path.isEmpty() || target.isDir())
        return false;
    if (target.exists() && !target.isFile())
        return writeInPlace(path, content); // renaming would put a plain file in place of a device or a pipe

    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return writeInPlace(path, content);
    if (!writeAll(file, content)) {
        file.cancelWriting(); // a full disk: the old file is worth more than part of the new one
        return false;
    }
    return file.commit() || writeInPlace(path, content);
}

} // namespace fluvane
