// Reads a mesh file as the program does and prints what came of it, for the tests of the mesh tools.
#include "dialogs/case_settings.h"
#include "mesh/fluent_reader_2d.h"
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "output/terminal.h"
#include "velocity/velocity_set.h"

#include <cstdio>
#include <cstring>

namespace {

using fluvane::mesh;

/// The cells' areas or volumes together.
double measureOfCells(bool inSpace) {
    double sum = 0.0;
    for (std::size_t c = 0; c < static_cast<std::size_t>(mesh.cellCount); ++c)
        sum += inSpace ? mesh.cells3D[c].volume : mesh.cells2D[c].area;
    return sum;
}

void printMesh(bool inSpace) {
    std::printf("cells %d\nfaces %d\ninterior %d\n", mesh.cellCount, mesh.totalFaceCount(),
                mesh.interiorFaceCount);
    std::printf("dx %.17g\n", inSpace ? fluvane::minFaceArea3D() : fluvane::minFaceLength2D());
    std::printf("measure %.17g\n", measureOfCells(inSpace));
    std::int32_t first = mesh.interiorFaceCount;
    for (std::size_t k = 0; k < static_cast<std::size_t>(mesh.zoneCount); ++k) {
        std::printf("zone %d %s\n", mesh.zoneLastFace[k] - first, qPrintable(mesh.zoneNames[k]));
        first = mesh.zoneLastFace[k];
    }
}

} // namespace

/// mesh_probe 2|3 FILE: exit code 0 when the mesh is read and its geometry built without a complaint.
int main(int argc, char* argv[]) {
    if (argc != 3)
        return 2;
    const bool inSpace = std::strcmp(argv[1], "3") == 0;
    const QString path = QString::fromLocal8Bit(argv[2]);
    fluvane::caseSettings.is3D = inSpace;
    fluvane::velocitySet.velocityCount = 1;
    fluvane::setTerminalSink([](const QString&) {});
    const bool read = inSpace ? fluvane::readMesh3D(path) && fluvane::buildGeometry3D()
                              : fluvane::readMesh2D(path) && fluvane::buildGeometry2D();
    const QStringList problems = fluvane::takeProblems();
    for (const QString& line : problems)
        std::fprintf(stderr, "%s\n", qPrintable(line));
    if (!read || !problems.isEmpty())
        return 1;
    printMesh(inSpace);
    return 0;
}
