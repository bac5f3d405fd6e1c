// Counts how often files are put in place in a folder, also when one replaces another of the same content.
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

namespace fluvane::support {

/// Watches from its construction on; files made in the folder and files renamed into it count. Linux only.
class PlacedFiles {
public:
    explicit PlacedFiles(const QString& folder) : m_queue(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        inotify_add_watch(m_queue, folder.toLocal8Bit().constData(), IN_MOVED_TO | IN_CREATE);
    }
    ~PlacedFiles() { close(m_queue); }
    PlacedFiles(const PlacedFiles&) = delete;
    PlacedFiles& operator=(const PlacedFiles&) = delete;

    /// How often a file of this name came, up to now.
    int count(const QString& name) {
        alignas(inotify_event) std::array<char, 4096> buffer{};
        for (ssize_t got = 0; (got = read(m_queue, buffer.data(), buffer.size())) > 0;)
            for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
                inotify_event event{};
                std::memcpy(&event, buffer.data() + at, sizeof event);
                m_names << QString::fromLocal8Bit(buffer.data() + at + sizeof event);
                at += sizeof event + event.len;
            }
        return static_cast<int>(m_names.count(name));
    }

private:
    int m_queue;
    QStringList m_names;
};

} // namespace fluvane::support
