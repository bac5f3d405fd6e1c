// Refusals and remarks of the geometry passes.
#include "mesh/cell_graph.h"

#include "output/terminal.h"

#include <QStringList>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace fluvane {

namespace {

/// A 0-based index as the file counts.
QString fileNumber(std::int32_t index) {
    return QString::number(index + std::int64_t{1});
}

/// "nodes 3, 4 and 5".
QString nodeListOf(std::span<const std::int32_t> nodes) {
    if (nodes.empty())
        return QStringLiteral("another number of nodes");
    QString text = QStringLiteral("nodes ") + fileNumber(nodes[0]);
    for (std::size_t k = 1; k < nodes.size(); ++k)
        text +=
            (k + 1 < nodes.size() ? QStringLiteral(", ") : QStringLiteral(" and ")) + fileNumber(nodes[k]);
    return text;
}

/// Gives the system back what the tables of the passes left in the heap, which a run would carry along.
void trimHeap() {
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace

QString placeOf(std::int32_t face, std::int32_t cell) {
    return QStringLiteral("line %1, cell %2").arg(QString::number(mesh.faceLine(face)), fileNumber(cell));
}

bool refuseMesh(const QString& place, const QString& complaint) {
    const QString line = QStringLiteral("Mesh file %1, %2: %3").arg(mesh.sourceName, place, complaint);
    mesh.clear();
    reportProblem(line);
    return false;
}

bool checkHighestCell(std::int32_t highest) {
    const std::int64_t sides = std::int64_t{2} * mesh.totalFaceCount();
    return highest < sides || refuseMesh(QStringLiteral("cell %1").arg(fileNumber(highest)),
                                         QStringLiteral("expected at most %1 cells for %2 faces")
                                             .arg(sides)
                                             .arg(mesh.totalFaceCount()));
}

bool refuseFace(std::int32_t face, const char* expectedNodes, std::span<const std::int32_t> nodes,
                std::int32_t c0, std::int32_t c1, std::int32_t cells) {
    return refuseMesh(placeOf(face, std::max(c0, c1)),
                      QStringLiteral("expected %1 from 1 to %2 and cells from 1 to %3 (as the interior faces "
                                     "count them), found %4, cells %5 and %6")
                          .arg(QLatin1String(expectedNodes), QString::number(mesh.pointCount),
                               QString::number(cells), nodeListOf(nodes), fileNumber(c0), fileNumber(c1)));
}

bool refuseUnnamedCell(std::int32_t cell) {
    return refuseMesh(QStringLiteral("cell %1").arg(fileNumber(cell)),
                      QStringLiteral("expected a face that names the cell, found none"));
}

void reportCells(const FlawedCells& flawed, std::int32_t firstFace, const QString& flaw) {
    reportProblem(
        QStringLiteral("Mesh file %1, %2: %3 (%4 in all)")
            .arg(mesh.sourceName, placeOf(firstFace, flawed.first), flaw, QString::number(flawed.count)));
}

void addUp(std::vector<std::int32_t>& start) {
    std::int64_t total = 0;
    for (std::int32_t& offset : start) {
        total += offset;
        if (total > std::numeric_limits<std::int32_t>::max())
            throw std::bad_alloc();
        offset = static_cast<std::int32_t>(total);
    }
}

bool buildWithinMemory(bool (*build)(Storage), Storage storage) {
    try {
        const bool built = build(storage);
        trimHeap();
        return built;
    } catch (const std::bad_alloc&) {
        return refuseMesh(QStringLiteral("%1 faces").arg(mesh.totalFaceCount()),
                          QStringLiteral("not enough memory for the cells"));
    }
}

} // namespace fluvane
