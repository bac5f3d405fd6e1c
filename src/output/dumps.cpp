// The mesh dumps.
#include "output/dumps.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "output/file_text.h"
#include "output/whole_file.h"

#include <QString>
#include <algorithm>
#include <string_view>

namespace fluvane {

namespace {

constexpr std::string_view lineEnd = "\r\n";

void appendVector(FileText& text, const Vec3& v) {
    appendNumber(text, v.x);
    text += ',';
    appendNumber(text, v.y);
    text += ',';
    appendNumber(text, v.z);
    text += lineEnd;
}

void appendCell2D(FileText& text, std::size_t index, const CellRecord& cell) {
    text += "m=";
    appendInteger(text, static_cast<std::int64_t>(index));
    text += "   cells_num=";
    appendInteger(text, cell.neighbourCount);
    text += lineEnd;
    for (std::int32_t k = 0; k < cell.neighbourCount; ++k) {
        text += "   k=";
        appendInteger(text, k);
        text += "    ";
        appendInteger(text, cell.neighbours[k]);
        text += "   ";
        appendNumber(text, cell.lsq[k].x);
        text += ',';
        appendNumber(text, cell.lsq[k].y);
        text += lineEnd;
    }
}

void appendCell3D(FileText& text, std::size_t index, const CellRecord3D& cell) {
    text += "m=";
    appendInteger(text, static_cast<std::int64_t>(index));
    text += "    V=";
    appendNumber(text, cell.volume);
    text += "   faces_num=";
    appendInteger(text, cell.faceCount);
    text += lineEnd;
    Vec3 closure;
    for (std::size_t j = 0; j < static_cast<std::size_t>(cell.faceCount); ++j) {
        const Vec3& normal = cell.normals[j];
        text += "  ";
        appendInteger(text, cell.faces[j]);
        text += "   ";
        appendVector(text, normal);
        const double area = mesh.faces3D[static_cast<std::size_t>(cell.faces[j])].area;
        closure.x += area * normal.x;
        closure.y += area * normal.y;
        closure.z += area * normal.z;
    }
    text += "  Intergal=";
    appendVector(text, closure);
}

void appendFace2D(FileText& text, std::size_t index, const FaceRecord& face) {
    text += "m=";
    appendInteger(text, static_cast<std::int64_t>(index));
    text += ",    ";
    if (index < mesh.zoneNames.size())
        text += mesh.zoneNames[index].toStdString();
    for (const double value : {face.rho, face.u, face.v}) {
        text += "   ";
        appendNumber(text, value);
    }
    for (const double value : {double{face.fl}, face.H}) {
        text += ' ';
        appendNumber(text, value);
    }
    text += lineEnd;
}

void appendFace3D(FileText& text, std::size_t index, const FaceRecord3D& face) {
    text += "m=";
    appendInteger(text, static_cast<std::int64_t>(index));
    text += ",  ";
    appendInteger(text, face.c0);
    text += "  ";
    appendInteger(text, face.c1);
    text += "  ";
    appendNumber(text, face.area);
    text += lineEnd;
}

/// The faces a dump shows; none when the records are those of the other dimension.
std::size_t shownFaces(std::size_t recordCount) {
    return std::min(recordCount, static_cast<std::size_t>(std::max(mesh.totalFaceCount(), 0)));
}

void appendPoints(FileText& text) {
    const bool is3D = caseSettings.is3D;
    const std::size_t count = is3D ? mesh.pointZ.size() : mesh.pointX.size();
    for (std::size_t i = 0; i < count; ++i) {
        text += "point ";
        text.appendNumber(mesh.pointX[i], ",");
        text.appendNumber(mesh.pointY[i], ",");
        if (is3D)
            appendNumber(text, mesh.pointZ[i]);
        else
            text += '0';
        text += lineEnd;
    }
}

void appendCells(FileText& text) {
    if (caseSettings.is3D) {
        for (std::size_t m = 0; m < mesh.cells3D.size(); ++m)
            appendCell3D(text, m, mesh.cells3D[m]);
    } else {
        for (std::size_t m = 0; m < mesh.cells2D.size(); ++m)
            appendCell2D(text, m, mesh.cells2D[m]);
    }
}

void appendFaces(FileText& text) {
    if (caseSettings.is3D) {
        const std::size_t count = shownFaces(mesh.faces3D.size());
        for (std::size_t m = 0; m < count; ++m)
            appendFace3D(text, m, mesh.faces3D[m]);
    } else {
        const std::size_t count = shownFaces(mesh.faces2D.size());
        for (std::size_t m = 0; m < count; ++m)
            appendFace2D(text, m, mesh.faces2D[m]);
    }
}

} // namespace

bool dumpPoints() {
    return writeWholeFile(QStringLiteral("point.txt"), appendPoints);
}

bool dumpCells() {
    return writeWholeFile(QStringLiteral("cell.txt"), appendCells);
}

bool dumpFaces() {
    return writeWholeFile(QStringLiteral("face.txt"), appendFaces);
}

} // namespace fluvane
