// A time history written line by line while a run goes on.
#pragma once

#include <QFile>
#include <QString>

namespace fluvane {

/// Begins an empty file and hands each line to the system as soon as it is complete, so that the file holds
/// every line written whatever becomes of the process. A file that cannot be opened swallows its lines.
class HistoryFile {
public:
    explicit HistoryFile(const QString& path);

    /// One line: the Fourier number, a blank, the value; six significant digits, CR LF.
    void append(double fourierNumber, double value);

private:
    QFile m_file;
};

} // namespace fluvane
