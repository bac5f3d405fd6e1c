// The Fluent ASCII layout of the mesh of the process.
#include "support/mesh_file.h"

#include "mesh/mesh.h"

#include <QFile>

#include <cstdlib>

namespace fluvane::support {

namespace {

QByteArray hex(std::int64_t value) {
    return QByteArray::number(qlonglong{value}, 16);
}

void appendZone(QByteArray& text, int id, std::int32_t first, std::int32_t end, int type) {
    text += "(13 (" + hex(id) + " " + hex(first + 1) + " " + hex(end) + " " + hex(type) + " 2)(\n";
    for (std::int32_t i = first; i < end; ++i) {
        const FaceRecord& f = mesh.faces2D[static_cast<std::size_t>(i)];
        text += hex(f.n0 + 1) + " " + hex(f.n1 + 1) + " " + hex(f.c0 + 1) + " " + hex(f.c1 + 1) + "\n";
    }
    text += ")\n)\n";
}

} // namespace

QByteArray meshFileText() {
    QByteArray text = "(0 \"Fluvane test mesh\")\n(0 \"Dimension\")\n(2 2)\n(0 \"Node Section\")\n";
    const QByteArray points = hex(mesh.pointCount), faces = hex(mesh.totalFaceCount());
    text += "(10 (0 1 " + points + " 0 2))\n(10 (1 1 " + points + " 1 2)\n(\n";
    for (std::size_t i = 0; i < mesh.pointX.size(); ++i)
        text += QByteArray::number(mesh.pointX[i], 'g', 17) + " " +
                QByteArray::number(mesh.pointY[i], 'g', 17) + "\n";
    text += "))\n(0 \"Faces\")\n(13 (0 1 " + faces + " 0))\n(0 \"Interior faces\")\n";
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
    return text + names;
}

void writeMeshFile(const QString& path) {
    QFile file(path);
    const QByteArray text = meshFileText();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        std::abort();
}

} // namespace fluvane::support
