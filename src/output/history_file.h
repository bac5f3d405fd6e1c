// A time history written line by line while a run goes on.
#pragma once

#include <QFile>
#include <QString>

namespace fluvane {

/// Begins an empty file and hands each line to the system as soon as it is complete, so that the file holds
/// every line written whatever becomes of the process. A file that cannot be opened swallows its lines, and
/// so does a full disk: no part of a line stays behind, and lines are written again once there is room.
/// Deliberate: the terminal does not name such a file; standard error does, once.
class HistoryFile {
public:
    explicit HistoryFile(const QString& path);

    /// One line: the Fourier number, a blank, the value; six significant digits, CR LF.
    void append(double fourierNumber, double value);

private:
    void complainOnce();

    QFile m_file;
    qint64 m_end = 0; ///< of the last whole line
    bool m_complained = false;
};

} // namespace fluvane
