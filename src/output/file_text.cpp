// Gathering and handing on.
#include "output/file_text.h"

#include <QIODevice>

namespace fluvane {

namespace {

char* copied(char* to, std::string_view text) {
    return to + text.copy(to, text.size());
}

} // namespace

FileText::FileText(QIODevice& device)
    : m_device(device), m_chunk(new char[chunkBytes]), m_end(m_chunk.get()) {}

FileText& FileText::operator+=(std::string_view text) {
    while (!text.empty()) {
        makeRoom(1);
        const auto room = static_cast<std::size_t>(m_chunk.get() + chunkBytes - m_end);
        const std::string_view part = text.substr(0, room);
        m_end = copied(m_end, part);
        text.remove_prefix(part.size());
    }
    return *this;
}

FileText& FileText::operator+=(char character) {
    return *this += std::string_view(&character, 1);
}

void FileText::appendNumber(double value, std::string_view after) {
    makeRoom(roomForNumber + after.size());
    m_end = copied(writeNumber(m_end, value), after);
}

void FileText::appendInteger(std::int64_t value, std::string_view after) {
    makeRoom(roomForNumber + after.size());
    m_end = copied(writeInteger(m_end, value), after);
}

bool FileText::finish() {
    handOn();
    return m_whole;
}

void FileText::makeRoom(std::size_t bytes) {
    if (static_cast<std::size_t>(m_chunk.get() + chunkBytes - m_end) < bytes)
        handOn();
}

void FileText::handOn() {
    const qint64 size = m_end - m_chunk.get();
    m_whole = m_whole && m_device.write(m_chunk.get(), size) == size;
    m_end = m_chunk.get();
}

void appendNumber(FileText& text, double value) {
    text.appendNumber(value, {});
}

void appendInteger(FileText& text, std::int64_t value) {
    text.appendInteger(value, {});
}

} // namespace fluvane
