// The Fluent ASCII layout of the 3D mesh of the process.
#include "support/mesh_file_3d.h"

#include "mesh/mesh.h"

#include <QFile>

#include <algorithm>
#include <cstdlib>

namespace fluvane::support {

namespace {

QByteArray hex(std::int64_t value) {
    return QByteArray::number(qlonglong{value}, 16);
}

/// The nodes in the order that points into the first cell, then the cells.
QByteArray faceLine(const FaceRecord3D& face) {
    const CellRecord3D& cell = mesh.cells3D[static_cast<std::size_t>(face.c0)];
    const auto at = [&](std::size_t k) {
        const auto p = static_cast<std::size_t>(face.nodes[k]);
        return Vec3{mesh.pointX[p], mesh.pointY[p], mesh.pointZ[p]};
    };
    const Vec3 p0 = at(0), p1 = at(1), p2 = at(2);
    const Vec3 a{p1.x - p0.x, p1.y - p0.y, p1.z - p0.z}, b{p2.x - p0.x, p2.y - p0.y, p2.z - p0.z};
    const double outward = (a.y * b.z - a.z * b.y) * (p0.x - cell.xc) +
                           (a.z * b.x - a.x * b.z) * (p0.y - cell.yc) +
                           (a.x * b.y - a.y * b.x) * (p0.z - cell.zc);
    std::array<std::int32_t, 4> nodes = face.nodes;
    if (outward > 0.0)
        std::reverse(nodes.begin(), nodes.begin() + face.nodeCount);
    QByteArray line;
    for (std::size_t k = 0; k < static_cast<std::size_t>(face.nodeCount); ++k)
        line += hex(nodes[k] + 1) + " ";
    return line + hex(face.c0 + 1) + " " + hex(face.c1 + 1) + "\n";
}

void appendZone(QByteArray& text, int id, std::int32_t first, std::int32_t end, int type) {
    text += "(13 (" + hex(id) + " " + hex(first + 1) + " " + hex(end) + " " + hex(type) + " 3)(\n";
    for (std::int32_t i = first; i < end; ++i)
        text += faceLine(mesh.faces3D[static_cast<std::size_t>(i)]);
    text += ")\n)\n";
}

QByteArray nodeBlock() {
    const QByteArray points = hex(mesh.pointCount);
    QByteArray text =
        "(0 \"Node Section\")\n(10 (0 1 " + points + " 0 3))\n(10 (1 1 " + points + " 1 3)\n(\n";
    for (std::size_t i = 0; i < mesh.pointX.size(); ++i)
        text += QByteArray::number(mesh.pointX[i], 'g', 17) + " " +
                QByteArray::number(mesh.pointY[i], 'g', 17) + " " +
                QByteArray::number(mesh.pointZ[i], 'g', 17) + "\n";
    return text + "))\n";
}

} // namespace

QByteArray meshFileText3D(const char* lineEnd) {
    const QByteArray cells = hex(mesh.cellCount), faces = hex(mesh.totalFaceCount());
    QByteArray text = "(0 \"Fluvane test mesh\")\n(0 \"Dimension\")\n(2 3)\n" + nodeBlock();
    text += "(0 \"Cells\")\n(12 (0 1 " + cells + " 0))\n(12 (2 1 " + cells + " 1 2))\n";
    text += "(0 \"Faces\")\n(13 (0 1 " + faces + " 0))\n(0 \"Interior faces\")\n";
    appendZone(text, 3, 0, mesh.interiorFaceCount, 2);
    QByteArray names = "(0 \"Zone Sections\")\n(45 (2 fluid FLUID)())\n(45 (3 interior int_FLUID)())\n";
    std::int32_t first = mesh.interiorFaceCount;
    for (std::size_t z = 0; z < mesh.zoneNames.size(); ++z) {
        const QByteArray name = mesh.zoneNames[z].toUtf8();
        text += "(0 \"Faces of zone " + name + "\")\n";
        appendZone(text, static_cast<int>(z) + 4, first, mesh.zoneLastFace[z], 3);
        names += "(45 (" + QByteArray::number(static_cast<int>(z) + 4) + " wall " + name + ")())\n";
        first = mesh.zoneLastFace[z];
    }
    text += names;
    return text.replace("\n", lineEnd);
}

void writeMeshFile3D(const QString& path) {
    QFile file(path);
    const QByteArray text = meshFileText3D();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        std::abort();
}

} // namespace fluvane::support
