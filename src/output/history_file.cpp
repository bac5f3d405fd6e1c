// Unbuffered lines of a history file.
#include "output/history_file.h"

#include "output/number_format.h"
#include "output/terminal.h"

#include <string>
#include <utility>

namespace fluvane {

HistoryFile::HistoryFile(const QString& path) : m_file(path) {
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        complainOnce();
}

void HistoryFile::append(double fourierNumber, double value) {
    if (!m_file.isOpen())
        return;
    std::string line;
    appendNumber(line, fourierNumber);
    line += ' ';
    appendNumber(line, value);
    line += "\r\n";
    const auto size = static_cast<qint64>(line.size());
    if (m_file.write(line.data(), size) == size) {
        m_end += size;
        return;
    }
    complainOnce();
    if (!m_file.isSequential()) {
        m_file.resize(m_end);
        m_file.seek(m_end);
    }
}

void HistoryFile::complainOnce() {
    if (!std::exchange(m_complained, true))
        sayOnStandardError(m_file.fileName() + QStringLiteral(": lines could not be written"));
}

} // namespace fluvane
