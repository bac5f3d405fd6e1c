// The walk from marker to marker through a Fluent ASCII mesh, and its checks.
#include "mesh/fluent_reader.h"

#include <optional>
#include <utility>

namespace fluvane {

namespace {

const char* numberWord(std::size_t number) {
    constexpr std::array<const char*, 5> words{"no", "one", "two", "three", "four"};
    return words[number];
}

const char* ordinalWord(std::size_t place) {
    constexpr std::array<const char*, 7> words{"zeroth", "first", "second", "third",
                                               "fourth", "fifth", "sixth"};
    return words[place];
}

} // namespace

bool FluentReader::read() {
    while (m_scan.next())
        if (!readMarkedLine())
            return false;
    return checkEnd();
}

bool FluentReader::readMarkedLine() {
    const std::string_view line = m_scan.line();
    const std::int64_t number = m_scan.lineNumber();
    const bool nodes = m_scan.has("Node Section");
    const bool faces = m_scan.has("(13 (0");
    const bool boundaryZone = m_scan.has("Faces of zone");
    const bool names = m_scan.has("Zone Sections");
    if (m_scan.has(m_dimension.foreignMark))
        return m_scan.refuse(
            QStringLiteral("a %1 mesh").arg(QLatin1String(m_dimension.name)),
            QStringLiteral("%1, the mark of a %2 one")
                .arg(quotedText(m_dimension.foreignMark), QLatin1String(m_dimension.foreignName)));
    if (!nodes && !faces && !boundaryZone && !names)
        return m_scan.checkUnmarkedLine();
    if (nodes && !readNodes())
        return false;
    if (faces && !readInteriorFaces(line, number))
        return false;
    if (boundaryZone && !readBoundaryZone())
        return false;
    if (!names)
        return true;
    if (m_namesRead || m_zoneEnds.empty())
        return m_scan.refuse(QStringLiteral("one \"Zone Sections\" after the faces"), quotedText(line));
    m_namesRead = true;
    return m_scan.readZoneNames(m_zoneEnds.size() - 1, m_zoneNames);
}

bool FluentReader::readNodes() {
    if (m_nodes.line != 0)
        return m_scan.refuseForeign(QStringLiteral("a single \"Node Section\""),
                                    QStringLiteral("another one"));
    const QString header = QStringLiteral("the two lines with the node counts");
    if (!m_scan.nextOrRefuse(header) || !m_scan.nextOrRefuse(header))
        return false;
    if (!m_scan.readCount("10", m_scan.roomFor(2 * m_dimension.coordinates),
                          QStringLiteral("what the rest of the file has room for"), m_nodes))
        return false;
    if (m_nodes.value < 1)
        return m_scan.refuse(QStringLiteral("at least one node"), QStringLiteral("0"));
    const QString opening = QStringLiteral("the line that opens the node block");
    if (!m_scan.nextOrRefuse(opening))
        return false;
    std::string_view rest = m_scan.line();
    if (parseDecimal(takeWord(rest)))
        return m_scan.refuseLine(opening);
    for (std::size_t k = 0; k < m_dimension.coordinates; ++k)
        m_coordinates[k].reserve(static_cast<std::size_t>(m_nodes.value) + 1);
    for (std::int32_t i = 0; i < m_nodes.value; ++i)
        if (!readNode())
            return false;
    return endNodes();
}

bool FluentReader::readNode() {
    const auto expected = [this] {
        return QStringLiteral("%1 decimal numbers for node %2 of %3")
                   .arg(QLatin1String(numberWord(m_dimension.coordinates)))
                   .arg(static_cast<qint64>(m_coordinates[0].size()) + 1)
                   .arg(m_nodes.value) +
               FluentScan::originOf(m_nodes);
    };
    if (!m_scan.next())
        return m_scan.nextOrRefuse(expected());
    std::string_view rest = m_scan.line();
    std::array<double, 3> position{};
    for (std::size_t k = 0; k < m_dimension.coordinates; ++k) {
        const std::optional<double> number = parseDecimal(takeWord(rest));
        if (!number)
            return m_scan.refuseLine(expected());
        position[k] = *number;
    }
    for (std::string_view word = takeWord(rest); !word.empty(); word = takeWord(rest))
        if (!parseDecimal(word))
            return m_scan.refuseLine(expected());
    for (std::size_t k = 0; k < m_dimension.coordinates; ++k)
        m_coordinates[k].push_back(position[k]);
    return true;
}

bool FluentReader::readInteriorFaces(std::string_view declaration, std::int64_t lineNumber) {
    if (m_total.line != 0 || m_nodes.line == 0)
        return m_scan.refuseForeign(QStringLiteral("one \"(13 (0\" after the \"Node Section\""),
                                    quotedText(declaration));
    if (!m_scan.readCount(declaration, lineNumber, m_scan.roomFor(m_dimension.shortestFaceLine),
                          QStringLiteral("what the rest of the file has room for"), m_total))
        return false;
    if (m_total.value < 1)
        return m_scan.refuseAt(lineNumber, QStringLiteral("at least one face"), QStringLiteral("0"));
    reserveFaces(static_cast<std::size_t>(m_total.value));
    const QString header = QStringLiteral("a line and the header of the interior face zone");
    return m_scan.nextOrRefuse(header) && m_scan.nextOrRefuse(header) && readFaceZone(true);
}

bool FluentReader::readBoundaryZone() {
    if (m_zoneEnds.empty() || m_namesRead)
        return m_scan.refuseForeign(
            QStringLiteral("boundary zones between the interior faces and the zone names"),
            quotedText(m_scan.line()));
    if (m_zoneEnds.size() > static_cast<std::size_t>(Mesh::maxZones))
        return m_scan.refuse(QStringLiteral("at most %1 boundary zones").arg(Mesh::maxZones),
                             QStringLiteral("one more"));
    return m_scan.nextOrRefuse(QStringLiteral("a face zone header")) && readFaceZone(false);
}

/// From the zone's header, the current line, to the line ")".
bool FluentReader::readFaceZone(bool interior) {
    m_zone.interior = interior;
    HeaderCount& last = m_zone.last;
    if (!m_scan.readCount("13", m_total.value,
                          QStringLiteral("the number of faces") + FluentScan::originOf(m_total), last))
        return false;
    m_zone.type = faceTypeOf(m_scan.line());
    m_zoneStarts.push_back({m_faceCount, m_scan.lineNumber() + 1});
    while (true) {
        if (!m_scan.next())
            return m_scan.nextOrRefuse(QStringLiteral("a face or \")\""));
        if (m_scan.line() == ")")
            break;
        if (m_faceCount >= last.value)
            return m_scan.refuseLine(QStringLiteral("\")\" after face %1").arg(last.value) +
                                     FluentScan::originOf(last));
        if (!readFace())
            return false;
        ++m_faceCount;
    }
    if (m_faceCount != last.value)
        return m_scan.refuse(QStringLiteral("a zone that ends with face %1").arg(last.value) +
                                 FluentScan::originOf(last),
                             QStringLiteral("the end after face %1").arg(m_faceCount));
    m_zoneEnds.push_back(last.value);
    return true;
}

void FluentReader::addOrigin() {
    for (std::size_t k = 0; k < m_dimension.coordinates; ++k)
        m_coordinates[k].push_back(0.0);
}

bool FluentReader::refuseFurtherNode(std::int64_t lineNumber, std::string_view line) const {
    return m_scan.refuseAt(lineNumber,
                           QStringLiteral("the end of the %1 nodes").arg(m_nodes.value) +
                               FluentScan::originOf(m_nodes),
                           quotedText(line));
}

bool FluentReader::refuseMixedZone() const {
    return m_scan.refuseForeign(
        QStringLiteral("faces without a leading node count"),
        QStringLiteral("a face zone of mixed type (line %1)").arg(m_zoneStarts.back().firstLine - 1));
}

bool FluentReader::checkFace(std::span<const std::int32_t> nodes, std::int32_t c0, std::int32_t c1) const {
    const std::int32_t points = m_nodes.value;
    bool sound = true;
    for (std::size_t k = 0; k < nodes.size(); ++k) {
        sound = sound && nodes[k] >= 1 && nodes[k] <= points;
        for (std::size_t j = 0; j < k; ++j)
            sound = sound && nodes[j] != nodes[k];
    }
    if (!sound)
        return m_scan.refuseLine(QStringLiteral("%1 different nodes from 1 to hexadecimal %2")
                                     .arg(QLatin1String(numberWord(nodes.size())))
                                     .arg(points, 0, 16) +
                                 noteOnFaceLine());
    // Every cell has a face, and a face has two cells.
    const std::int64_t cells = std::int64_t{2} * m_total.value;
    const QLatin1String second(ordinalWord(nodes.size() + 2));
    if (c0 < 1 || c0 > cells)
        return m_scan.refuseLine(QStringLiteral("a first cell from 1 to hexadecimal %1 as the %2 number")
                                     .arg(cells, 0, 16)
                                     .arg(QLatin1String(ordinalWord(nodes.size() + 1))) +
                                 noteOnFaceLine());
    if (m_zone.interior && (c1 < 1 || c1 > cells || c1 == c0))
        return m_scan.refuseLine(
            QStringLiteral("an interior face with another cell from 1 to hexadecimal %1 as the %2 number")
                .arg(cells, 0, 16)
                .arg(second) +
            noteOnFaceLine());
    if (!m_zone.interior && c1 != 0)
        return m_scan.refuseForeign(
            QStringLiteral("a boundary face with 0 as the %1 number (all interior faces "
                           "stand in the first zone)")
                .arg(second),
            quotedText(m_scan.line()));
    return true;
}

bool FluentReader::checkEnd() const {
    if (m_nodes.line == 0)
        return m_scan.refuseForeign(QStringLiteral("a line with \"Node Section\""),
                                    QStringLiteral("none up to the end of the file"));
    if (m_zoneEnds.empty())
        return m_scan.refuseForeign(QStringLiteral("a line with \"(13 (0\""),
                                    QStringLiteral("none up to the end of the file"));
    if (m_faceCount != m_total.value)
        return m_scan.refuseForeign(QStringLiteral("%1 faces").arg(m_total.value) +
                                        FluentScan::originOf(m_total),
                                    QStringLiteral("%1 up to the end of the file").arg(m_faceCount));
    if (m_zoneEnds.size() > 1 && !m_namesRead)
        return m_scan.refuse(
            QStringLiteral("a line with \"Zone Sections\" and the names of %1 boundary zones")
                .arg(m_zoneEnds.size() - 1),
            QStringLiteral("none up to the end of the file"));
    return true;
}

void FluentReader::store() {
    mesh.sourceName = m_path;
    mesh.pointCount = static_cast<std::int32_t>(m_coordinates[0].size());
    mesh.pointX = std::move(m_coordinates[0]);
    mesh.pointY = std::move(m_coordinates[1]);
    mesh.pointZ = std::move(m_coordinates[2]);
    storeFaces(m_total.value);
    mesh.interiorFaceCount = m_zoneEnds.front();
    mesh.zoneCount = static_cast<std::int32_t>(m_zoneEnds.size() - 1);
    for (std::size_t k = 1; k < m_zoneEnds.size(); ++k)
        mesh.zoneLastFace[k - 1] = m_zoneEnds[k];
    mesh.zoneNames = std::move(m_zoneNames);
    mesh.faceLineStarts = std::move(m_zoneStarts);
    announce();
}

} // namespace fluvane
