// Parses, checks and stores a velocity file.
#include "velocity/velocity_file.h"

#include "dialogs/case_settings.h"
#include "output/terminal.h"
#include "velocity/text_file.h"
#include "velocity/velocity_set.h"

#include <cmath>
#include <new>

namespace fluvane {

namespace {

/// No table of 30 velocities is longer; what is longer is another kind of file.
constexpr std::int64_t longestFile = std::int64_t{1} << 20;

class VelocityReader {
public:
    VelocityReader(const QString& path, bool is3D)
        : m_path(path), m_components(is3D ? 3 : 2), m_table(velocitySet) {}

    bool read(std::string_view text);
    const VelocitySet& table() const { return m_table; }

private:
    bool readRow(std::size_t row, const LineScanner& lines);
    bool checkOpposites(std::int32_t lines) const;
    bool refuse(std::int64_t line, const QString& expected, const QString& found) const;

    QString m_path;
    int m_components;
    VelocitySet m_table; ///< starts as what the tables held: an empty line keeps its row
    double m_a = 0.0;    ///< of the last row that was read
    double m_b = 0.0;
};

bool VelocityReader::refuse(std::int64_t line, const QString& expected, const QString& found) const {
    reportProblem(QStringLiteral("Velocity file %1, line %2: expected %3, found %4")
                      .arg(m_path, QString::number(line), expected, found));
    return false;
}

bool VelocityReader::readRow(std::size_t row, const LineScanner& lines) {
    std::string_view rest = lines.line();
    std::array<double, 6> values{};
    const auto wanted = static_cast<std::size_t>(m_components) + 3;
    const QString expected = m_components == 3
                                 ? QStringLiteral("the six numbers \"xi_x xi_y xi_z a b opp\" of 3D")
                                 : QStringLiteral("the five numbers \"xi_x xi_y a b opp\" of 2D");
    std::size_t count = 0;
    for (std::string_view word = takeWord(rest); !word.empty(); word = takeWord(rest), ++count) {
        const std::optional<double> value = parseDecimal(word);
        if (!value || count == wanted)
            return refuse(lines.lineNumber(), expected, quotedText(lines.line()));
        values[count] = *value;
    }
    if (count != 0 && count != wanted)
        return refuse(lines.lineNumber(), expected, quotedText(lines.line()));
    if (count != 0) {
        if (m_components == 3)
            m_table.xi3D[row] = {values[0], values[1], values[2]};
        else
            m_table.xi2D[row] = {values[0], values[1]};
        m_a = values[wanted - 3];
        m_b = values[wanted - 2];
        const double opposite = values[wanted - 1];
        if (opposite != std::floor(opposite) || opposite < 0.0 || opposite >= VelocitySet::capacity)
            return refuse(lines.lineNumber(), QStringLiteral("the 0-based row of the opposite velocity"),
                          QString::number(opposite));
        m_table.opposite[row] = static_cast<std::int32_t>(opposite);
    }
    const double weight = m_a / m_b;
    if (!std::isfinite(weight))
        return refuse(lines.lineNumber(), QStringLiteral("a weight a / b with b other than 0"),
                      count == 0 ? QStringLiteral("an empty line before the first velocity")
                                 : QStringLiteral("a = %1, b = %2").arg(m_a).arg(m_b));
    m_table.weights[row] = weight;
    return true;
}

/// Whether opposites are lines of the file, the one that does not count included.
bool VelocityReader::checkOpposites(std::int32_t lines) const {
    for (std::int32_t k = 0; k < m_table.velocityCount; ++k) {
        const std::int32_t opposite = m_table.opposite[static_cast<std::size_t>(k)];
        if (opposite < 0 || opposite >= lines)
            return refuse(k + 1, QStringLiteral("an opposite velocity from 0 to %1").arg(lines - 1),
                          QString::number(opposite));
    }
    return true;
}

bool VelocityReader::read(std::string_view text) {
    const std::size_t lastFeed = text.rfind('\n');
    const std::string_view counted =
        lastFeed == std::string_view::npos ? text.substr(0, 0) : text.substr(0, lastFeed + 1);
    std::string_view uncounted = text.substr(counted.size());
    std::int32_t rows = 0;
    LineScanner lines(counted);
    for (; lines.next(); ++rows) {
        if (rows == VelocitySet::capacity)
            return refuse(lines.lineNumber(),
                          QStringLiteral("at most %1 velocities").arg(VelocitySet::capacity),
                          quotedText(lines.line()));
        if (!readRow(static_cast<std::size_t>(rows), lines))
            return false;
    }
    const std::string_view lost = takeWord(uncounted);
    if (rows == 0) {
        velocitySet.velocityCount = 0;
        return refuse(1, QStringLiteral("a velocity on a line that ends with a line feed"),
                      lost.empty() ? QStringLiteral("none") : QStringLiteral("a line without a line feed"));
    }
    m_table.velocityCount = rows;
    if (!checkOpposites(lost.empty() ? rows : rows + 1))
        return false;
    if (!lost.empty())
        reportProblem(
            QStringLiteral("Velocity file %1, line %2: the last line does not end with a line feed and "
                           "was not read; the set has %3 velocities")
                .arg(m_path, QString::number(rows + 1), QString::number(rows)));
    return true;
}

bool readWithinMemory(const QString& path) {
    const TextFile file = readTextFile(path, longestFile);
    if (!file.error.isEmpty()) {
        if (!file.opened)
            velocitySet.velocityCount = -1;
        reportProblem(QStringLiteral("Velocity file %1 cannot be read: %2").arg(path, file.error));
        return false;
    }
    VelocityReader reader(path, caseSettings.is3D);
    if (!reader.read(file.text()))
        return false;
    velocitySet = reader.table();
    return true;
}

} // namespace

bool readVelocityFile(const QString& path) {
    try {
        return readWithinMemory(path);
    } catch (const std::bad_alloc&) {
        reportProblem(QStringLiteral("Velocity file %1: not enough memory to read it").arg(path));
        return false;
    }
}

} // namespace fluvane
