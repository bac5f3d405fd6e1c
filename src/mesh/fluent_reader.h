// What the readers of both dimensions do in the same way: the walk from marker to marker, the counts, the
// zones and the checks of a Fluent ASCII mesh.
#pragma once

#include "mesh/fluent_scan.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "velocity/text_file.h"

#include <QString>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <string_view>
#include <vector>

namespace fluvane {

/// In what the files of one dimension differ from those of the other.
struct FluentDimension {
    std::size_t coordinates;      ///< numbers a node line
    std::size_t shortestFaceLine; ///< bytes, with the line's end
    std::string_view foreignMark; ///< stands in files of the other dimension
    const char* name;             ///< "two-dimensional"
    const char* foreignName;
};

/// Reads one file and checks it against its own counts; the mesh is touched by `store` alone.
class FluentReader {
public:
    FluentReader(const QString& path, std::string_view text, const FluentDimension& dimension)
        : m_path(path), m_dimension(dimension), m_scan(path, text) {}
    virtual ~FluentReader() = default;

    /// The whole file; false, with a problem line, after a refusal.
    bool read();
    /// Fills the empty mesh with what was read.
    void store();

protected:
    /// Whether the header of the present face zone leaves the number of nodes to its lines.
    bool isMixedType() const { return m_zone.type == 0 || m_zone.type == 5; }

    /// Adds the point (0, 0, 0).
    void addOrigin();

    /// Refuses nodes and cells (1-based) that the file cannot mean.
    bool checkFace(std::span<const std::int32_t> nodes, std::int32_t c0, std::int32_t c1) const;
    /// Refuses a line that holds one node more than declared.
    bool refuseFurtherNode(std::int64_t lineNumber, std::string_view line) const;
    /// Refuses a zone whose lines begin with their node count.
    bool refuseMixedZone() const;

private:
    struct FaceZone {
        bool interior = false;
        int type = -1; ///< of its faces, from the header
        HeaderCount last;
    };

    /// Whether the node block ends behind the current line, which holds the last declared node.
    virtual bool endNodes() = 0;
    virtual void reserveFaces(std::size_t count) = 0;
    /// Parses, checks and keeps the current line.
    virtual bool readFace() = 0;
    /// What a complaint about the current face line should add.
    virtual QString noteOnFaceLine() const { return {}; }
    virtual void storeFaces(std::int32_t count) = 0;
    /// Says to the terminal what is said once the mesh is there.
    virtual void announce() const = 0;

    bool readMarkedLine();
    bool readNodes();
    bool readNode();
    bool readInteriorFaces(std::string_view declaration, std::int64_t lineNumber);
    bool readBoundaryZone();
    bool readFaceZone(bool interior);
    bool checkEnd() const;

    QString m_path;
    FluentDimension m_dimension;
    HeaderCount m_nodes;
    std::array<std::vector<double>, 3> m_coordinates;
    HeaderCount m_total; ///< faces
    std::int32_t m_faceCount = 0;
    FaceZone m_zone; ///< the present one
    std::vector<FaceLineStart> m_zoneStarts;
    std::vector<std::int32_t> m_zoneEnds; ///< the interior zone's first, once it was read
    std::vector<QString> m_zoneNames;
    bool m_namesRead = false;

protected:
    FluentScan m_scan;
};

/// Empties the mesh and reads the file with a reader of the dimension. True with an empty mesh and a problem
/// line when the file cannot be opened; false with an empty mesh and a problem line after a refusal.
template <class Reader>
bool readMeshFile(const QString& path) {
    mesh.clear();
    try {
        const TextFile file = readTextFile(path, std::numeric_limits<std::int64_t>::max());
        if (!file.error.isEmpty()) {
            reportProblem(QStringLiteral("Mesh file %1 cannot be read: %2").arg(path, file.error));
            return !file.opened;
        }
        Reader reader(path, file.text());
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
