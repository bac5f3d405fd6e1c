// The node and face lines of a 2D Fluent ASCII mesh.
#include "mesh/fluent_reader_2d.h"

#include "mesh/fluent_reader.h"

namespace fluvane {

namespace {

constexpr FluentDimension planeFiles{2, 8, "(2 3)", "two-dimensional", "three-dimensional"};

/// The numbers of a face line, 1-based as in the file.
struct FaceLine {
    std::array<std::int32_t, 2> nodes;
    std::int32_t c0;
    std::int32_t c1;
};

class Reader2D final : public FluentReader {
public:
    Reader2D(const QString& path, std::string_view text) : FluentReader(path, text, planeFiles) {}

private:
    bool endNodes() override;
    void reserveFaces(std::size_t count) override { m_faces.reserve(count); }
    bool readFace() override;
    void storeFaces(std::int32_t count) override;
    void announce() const override { appendTerminalLine(QString::number(mesh.pointCount)); }

    std::vector<FaceLine> m_faces;
};

/// No further node may follow; how the block is closed does not matter.
bool Reader2D::endNodes() {
    std::string_view rest = m_scan.peek();
    return !parseDecimal(takeWord(rest)) || refuseFurtherNode(m_scan.lineNumber() + 1, m_scan.peek());
}

bool Reader2D::readFace() {
    std::array<std::int32_t, 4> words{};
    std::string_view rest;
    if (!parseFaceWords(m_scan.line(), words.data(), 4, rest))
        return m_scan.refuseLine(QStringLiteral("a face as \"n0 n1 c0 c1\" in hexadecimal"));
    // Further words mean nothing, but a zone that ended here would take the sections after it for faces.
    if (rest.find(')') != std::string_view::npos)
        return m_scan.refuseLine(
            QStringLiteral("a face as \"n0 n1 c0 c1\" and the \")\" of its zone on a line of its own"));
    if (isMixedType() && words[0] == 2 && !takeWord(rest).empty())
        return refuseMixedZone();
    const FaceLine face{{words[0], words[1]}, words[2], words[3]};
    if (!checkFace(face.nodes, face.c0, face.c1))
        return false;
    m_faces.push_back(face);
    return true;
}

void Reader2D::storeFaces(std::int32_t count) {
    mesh.allocateFaces2D(count);
    const FaceLine* const lines = m_faces.data();
#pragma omp parallel for schedule(static)
    for (std::int32_t i = 0; i < count; ++i) {
        FaceRecord& face = mesh.faces2D[static_cast<std::size_t>(i)];
        face.n0 = lines[i].nodes[0] - 1;
        face.n1 = lines[i].nodes[1] - 1;
        face.c0 = lines[i].c0 - 1;
        face.c1 = lines[i].c1 - 1;
    }
}

} // namespace

bool readMesh2D(const QString& path) {
    return readMeshFile<Reader2D>(path);
}

} // namespace fluvane
