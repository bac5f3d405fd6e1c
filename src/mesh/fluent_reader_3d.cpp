// The node and face lines of a 3D Fluent ASCII mesh.
#include "mesh/fluent_reader_3d.h"

#include "mesh/fluent_reader.h"

#include <algorithm>

namespace fluvane {

namespace {

constexpr FluentDimension spaceFiles{3, 10, "(2 2)", "three-dimensional", "two-dimensional"};

constexpr int cellWords = 2; // behind the nodes of a face line
constexpr std::size_t mostNodes = 4;

/// The numbers of a face line, 1-based as in the file: three or four nodes, then the two cells.
struct FaceLine {
    std::array<std::int32_t, mostNodes + cellWords> words;
    std::int32_t nodeCount;

    std::span<const std::int32_t> nodes() const {
        return {words.data(), static_cast<std::size_t>(nodeCount)};
    }
    std::int32_t c0() const { return words[static_cast<std::size_t>(nodeCount)]; }
    std::int32_t c1() const { return words[static_cast<std::size_t>(nodeCount) + 1]; }
};

class Reader3D final : public FluentReader {
public:
    Reader3D(const QString& path, std::string_view text) : FluentReader(path, text, spaceFiles) {}

private:
    bool endNodes() override;
    void reserveFaces(std::size_t count) override { m_faces.reserve(count); }
    bool readFace() override;
    bool refuseWords() const;
    QString noteOnFaceLine() const override;
    void storeFaces(std::int32_t count) override;
    void announce() const override;

    std::vector<FaceLine> m_faces;
    std::int64_t m_upperCaseLines = 0;
    std::int64_t m_firstUpperCaseLine = 0;
};

/// The nodes end at the line "))". Deliberate: one point more than declared follows them, at the origin.
bool Reader3D::endNodes() {
    const QString closing = QStringLiteral("the line \"))\" after the nodes");
    if (!m_scan.nextOrRefuse(closing))
        return false;
    std::string_view rest = m_scan.line();
    if (parseDecimal(takeWord(rest)))
        return refuseFurtherNode(m_scan.lineNumber(), m_scan.line());
    if (m_scan.line() != "))")
        return m_scan.refuseLine(closing);
    addOrigin();
    return true;
}

/// Deliberate: unlike in 2D, upper-case letters count 0.
bool Reader3D::readFace() {
    FaceLine face{};
    int words = 0;
    constexpr int most = face.words.size();
    if (!parseLowerCaseFaceWords(m_scan.line(), face.words.data(), most, words) || words < most - 1)
        return refuseWords();
    if (isMixedType() && (words > most || (words == most && face.words[0] == 3)))
        return refuseMixedZone();
    if (words > most)
        return refuseWords();
    face.nodeCount = words - cellWords;
    if (!checkFace(face.nodes(), face.c0(), face.c1()))
        return false;
    if (hasUpperCaseHex(m_scan.line()) && m_upperCaseLines++ == 0)
        m_firstUpperCaseLine = m_scan.lineNumber();
    m_faces.push_back(face);
    return true;
}

bool Reader3D::refuseWords() const {
    return m_scan.refuseLine(
        QStringLiteral("a face as \"n0 n1 n2 c0 c1\" or \"n0 n1 n2 n3 c0 c1\" in hexadecimal"));
}

QString Reader3D::noteOnFaceLine() const {
    return hasUpperCaseHex(m_scan.line()) ? QStringLiteral(" (upper-case letters count 0 there)") : QString();
}

void Reader3D::storeFaces(std::int32_t count) {
    mesh.allocateFaces3D(count);
    const FaceLine* const lines = m_faces.data();
#pragma omp parallel for schedule(static)
    for (std::int32_t i = 0; i < count; ++i) {
        FaceRecord3D& face = mesh.faces3D[static_cast<std::size_t>(i)];
        face.nodeCount = lines[i].nodeCount;
        std::transform(lines[i].nodes().begin(), lines[i].nodes().end(), face.nodes.begin(),
                       [](std::int32_t n) { return n - 1; });
        face.c0 = lines[i].c0() - 1;
        face.c1 = lines[i].c1() - 1;
    }
}

void Reader3D::announce() const {
    for (const QString& name : mesh.zoneNames)
        appendTerminalLine(name);
    if (m_upperCaseLines > 0)
        reportProblem(QStringLiteral("Mesh file %1, line %2: expected lower-case hexadecimal numbers, found "
                                     "upper-case letters, which count 0 (%3 lines in all)")
                          .arg(mesh.sourceName, QString::number(m_firstUpperCaseLine),
                               QString::number(m_upperCaseLines)));
}

} // namespace

bool readMesh3D(const QString& path) {
    return readMeshFile<Reader3D>(path);
}

} // namespace fluvane
