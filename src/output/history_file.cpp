// Unbuffered lines of a history file.
#include "output/history_file.h"

#include "output/number_format.h"

#include <string>

namespace fluvane {

HistoryFile::HistoryFile(const QString& path) : m_file(path) {
    m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
}

void HistoryFile::append(double fourierNumber, double value) {
    if (!m_file.isOpen())
        return;
    std::string line;
    appendNumber(line, fourierNumber);
    line += ' ';
    appendNumber(line, value);
    line += "\r\n";
    m_file.write(line.data(), static_cast<qint64>(line.size()));
}

} // namespace fluvane
