// Parses a 2D Fluent ASCII mesh, checks it against its own counts, then stores it.
#include "mesh/fluent_reader_2d.h"

#include "mesh/fluent_scan.h"
#include "mesh/mesh.h"
#include "output/terminal.h"

#include <limits>
#include <utility>

namespace fluvane {

namespace {

constexpr std::size_t shortestNodeLine = 4; // "0 0" and its end
constexpr std::size_t shortestFaceLine = 8; // "1 2 1 0" and its end

/// The numbers of a face line, 1-based as in the file.
struct FaceLine {
    std::int32_t n0;
    std::int32_t n1;
    std::int32_t c0;
    std::int32_t c1;
};

class Reader2D {
public:
    Reader2D(const QString& path, std::string_view text) : m_path(path), m_scan(path, text) {}

    /// The whole file; false after a refusal.
    bool read();
    /// Fills the empty mesh with what was read.
    void store();

private:
    bool readMarkedLine();
    bool readNodes();
    bool readNode();
    bool readInteriorFaces(std::string_view declaration, std::int64_t lineNumber);
    bool readBoundaryZone();
    bool readFaceZone(bool interior);
    bool readFace(bool interior, bool mixed, const HeaderCount& last);
    bool checkFace(bool interior, const FaceLine& face) const;
    bool checkEnd() const;

    QString m_path;
    FluentScan m_scan;
    HeaderCount m_nodes;
    HeaderCount m_total; ///< faces
    std::vector<double> m_x;
    std::vector<double> m_y;
    std::vector<FaceLine> m_faces;
    std::vector<FaceLineStart> m_zoneStarts;
    std::vector<std::int32_t> m_zoneEnds; ///< the interior zone's first, once it was read
    std::vector<QString> m_zoneNames;
    bool m_namesRead = false;
};

bool Reader2D::read() {
    while (m_scan.next())
        if (!readMarkedLine())
            return false;
    return checkEnd();
}

bool Reader2D::readMarkedLine() {
    const std::string_view line = m_scan.line();
    const std::int64_t number = m_scan.lineNumber();
    const bool nodes = m_scan.has("Node Section");
    const bool faces = m_scan.has("(13 (0");
    const bool boundaryZone = m_scan.has("Faces of zone");
    const bool names = m_scan.has("Zone Sections");
    if (m_scan.has("(2 3)"))
        return m_scan.refuse(QStringLiteral("a two-dimensional mesh"),
                             QStringLiteral("\"(2 3)\", the mark of a three-dimensional one"));
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

bool Reader2D::readNodes() {
    if (m_nodes.line != 0)
        return m_scan.refuseForeign(QStringLiteral("a single \"Node Section\""),
                                    QStringLiteral("another one"));
    const QString header = QStringLiteral("the two lines with the node counts");
    if (!m_scan.nextOrRefuse(header) || !m_scan.nextOrRefuse(header))
        return false;
    if (!m_scan.readCount("10", m_scan.roomFor(shortestNodeLine),
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
    m_x.reserve(static_cast<std::size_t>(m_nodes.value));
    m_y.reserve(static_cast<std::size_t>(m_nodes.value));
    for (std::int32_t i = 0; i < m_nodes.value; ++i)
        if (!readNode())
            return false;
    rest = m_scan.peek();
    if (parseDecimal(takeWord(rest)))
        return m_scan.refuseAt(m_scan.lineNumber() + 1,
                               QStringLiteral("the end of the %1 nodes").arg(m_nodes.value) +
                                   FluentScan::originOf(m_nodes),
                               quotedText(m_scan.peek()));
    return true;
}

bool Reader2D::readNode() {
    const auto expected = [this] {
        return QStringLiteral("two decimal numbers for node %1 of %2")
                   .arg(static_cast<qint64>(m_x.size()) + 1)
                   .arg(m_nodes.value) +
               FluentScan::originOf(m_nodes);
    };
    if (!m_scan.next())
        return m_scan.nextOrRefuse(expected());
    std::string_view rest = m_scan.line();
    const std::optional<double> x = parseDecimal(takeWord(rest));
    const std::optional<double> y = parseDecimal(takeWord(rest));
    if (!x || !y)
        return m_scan.refuseLine(expected());
    for (std::string_view word = takeWord(rest); !word.empty(); word = takeWord(rest))
        if (!parseDecimal(word))
            return m_scan.refuseLine(expected());
    m_x.push_back(*x);
    m_y.push_back(*y);
    return true;
}

bool Reader2D::readInteriorFaces(std::string_view declaration, std::int64_t lineNumber) {
    if (m_total.line != 0 || m_nodes.line == 0)
        return m_scan.refuseForeign(QStringLiteral("one \"(13 (0\" after the \"Node Section\""),
                                    quotedText(declaration));
    if (!m_scan.readCount(declaration, lineNumber, m_scan.roomFor(shortestFaceLine),
                          QStringLiteral("what the rest of the file has room for"), m_total))
        return false;
    if (m_total.value < 1)
        return m_scan.refuseAt(lineNumber, QStringLiteral("at least one face"), QStringLiteral("0"));
    m_faces.reserve(static_cast<std::size_t>(m_total.value));
    const QString header = QStringLiteral("a line and the header of the interior face zone");
    return m_scan.nextOrRefuse(header) && m_scan.nextOrRefuse(header) && readFaceZone(true);
}

bool Reader2D::readBoundaryZone() {
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
bool Reader2D::readFaceZone(bool interior) {
    HeaderCount last;
    if (!m_scan.readCount("13", m_total.value,
                          QStringLiteral("the number of faces") + FluentScan::originOf(m_total), last))
        return false;
    const int type = faceTypeOf(m_scan.line());
    const auto firstFace = static_cast<std::int32_t>(m_faces.size());
    m_zoneStarts.push_back({firstFace, m_scan.lineNumber() + 1});
    while (true) {
        if (!m_scan.nextOrRefuse(QStringLiteral("a face or \")\"")))
            return false;
        if (m_scan.line() == ")")
            break;
        if (!readFace(interior, type == 0 || type == 5, last))
            return false;
    }
    if (m_faces.size() != static_cast<std::size_t>(last.value))
        return m_scan.refuse(QStringLiteral("a zone that ends with face %1").arg(last.value) +
                                 FluentScan::originOf(last),
                             QStringLiteral("the end after face %1").arg(m_faces.size()));
    m_zoneEnds.push_back(last.value);
    return true;
}

bool Reader2D::readFace(bool interior, bool mixed, const HeaderCount& last) {
    FaceLine face{};
    std::array<std::int32_t, 4> words{};
    std::string_view rest;
    if (m_faces.size() >= static_cast<std::size_t>(last.value))
        return m_scan.refuseLine(QStringLiteral("\")\" after face %1").arg(last.value) +
                                 FluentScan::originOf(last));
    if (!parseFaceWords(m_scan.line(), words.data(), 4, rest) || !onlyHexWords(rest))
        return m_scan.refuseLine(QStringLiteral("a face as \"n0 n1 c0 c1\" in hexadecimal"));
    if (mixed && words[0] == 2 && !takeWord(rest).empty())
        return m_scan.refuseForeign(
            QStringLiteral("faces without a leading node count"),
            QStringLiteral("a face zone of mixed type (line %1)").arg(m_zoneStarts.back().firstLine - 1));
    face = {words[0], words[1], words[2], words[3]};
    if (!checkFace(interior, face))
        return false;
    m_faces.push_back(face);
    return true;
}

bool Reader2D::checkFace(bool interior, const FaceLine& face) const {
    const std::int32_t points = m_nodes.value;
    if (face.n0 < 1 || face.n0 > points || face.n1 < 1 || face.n1 > points || face.n0 == face.n1)
        return m_scan.refuseLine(
            QStringLiteral("two different nodes from 1 to hexadecimal %1").arg(points, 0, 16));
    // Every cell has a face, and a face has two cells.
    const std::int64_t cells = std::int64_t{2} * m_total.value;
    if (face.c0 < 1 || face.c0 > cells)
        return m_scan.refuseLine(
            QStringLiteral("a first cell from 1 to hexadecimal %1 as the third number").arg(cells, 0, 16));
    if (interior && (face.c1 < 1 || face.c1 > cells || face.c1 == face.c0))
        return m_scan.refuseLine(
            QStringLiteral("an interior face with another cell from 1 to hexadecimal %1 as the fourth number")
                .arg(cells, 0, 16));
    if (!interior && face.c1 != 0)
        return m_scan.refuseForeign(
            QStringLiteral("a boundary face with 0 as the fourth number (all interior faces "
                           "stand in the first zone)"),
            quotedText(m_scan.line()));
    return true;
}

bool Reader2D::checkEnd() const {
    if (m_nodes.line == 0)
        return m_scan.refuseForeign(QStringLiteral("a line with \"Node Section\""),
                                    QStringLiteral("none up to the end of the file"));
    if (m_zoneEnds.empty())
        return m_scan.refuseForeign(QStringLiteral("a line with \"(13 (0\""),
                                    QStringLiteral("none up to the end of the file"));
    if (m_faces.size() != static_cast<std::size_t>(m_total.value))
        return m_scan.refuseForeign(QStringLiteral("%1 faces").arg(m_total.value) +
                                        FluentScan::originOf(m_total),
                                    QStringLiteral("%1 up to the end of the file").arg(m_faces.size()));
    if (m_zoneEnds.size() > 1 && !m_namesRead)
        return m_scan.refuse(
            QStringLiteral("a line with \"Zone Sections\" and the names of %1 boundary zones")
                .arg(m_zoneEnds.size() - 1),
            QStringLiteral("none up to the end of the file"));
    return true;
}

void Reader2D::store() {
    mesh.sourceName = m_path;
    mesh.pointCount = m_nodes.value;
    mesh.pointX = std::move(m_x);
    mesh.pointY = std::move(m_y);
    mesh.allocateFaces2D(m_total.value);
    const FaceLine* const lines = m_faces.data();
    const std::int32_t count = m_total.value;
#pragma omp parallel for schedule(static)
    for (std::int32_t i = 0; i < count; ++i) {
        FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
        face.n0 = lines[i].n0 - 1;
        face.n1 = lines[i].n1 - 1;
        face.c0 = lines[i].c0 - 1;
        face.c1 = lines[i].c1 - 1;
    }
    mesh.interiorFaceCount = m_zoneEnds.front();
    mesh.zoneCount = static_cast<std::int32_t>(m_zoneEnds.size() - 1);
    for (std::size_t k = 1; k < m_zoneEnds.size(); ++k)
        mesh.zoneLastFace[k - 1] = m_zoneEnds[k];
    mesh.zoneNames = std::move(m_zoneNames);
    mesh.faceLineStarts = std::move(m_zoneStarts);
    appendTerminalLine(QString::number(mesh.pointCount));
}

} // namespace

bool readMesh2D(const QString& path) {
    mesh.clear();
    try {
        const TextFile file = readTextFile(path, std::numeric_limits<std::int64_t>::max());
        if (!file.error.isEmpty()) {
            reportProblem(QStringLiteral("Mesh file %1 cannot be read: %2").arg(path, file.error));
            return !file.opened;
        }
        Reader2D reader(path, file.text());
        if (!reader.read())
            return false;
        reader.store();
        return true;
    } catch (const std::bad_alloc&) {
        mesh.clear();
        reportProblem(QStringLiteral("Mesh file %1: not enough memory for this mesh").arg(path));
        return false;
    }
}

} // namespace fluvane
