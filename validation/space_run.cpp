// Goes through a 3D case as the windows do.
#include "space_run.h"

#include "dialogs/case_settings.h"
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "output/result_file.h"
#include "require.h"
#include "setup/initial_fields.h"
#include "solver2d/run_support.h"
#include "support/mesh_builder.h"
#include "support/mesh_file_3d.h"
#include "velocity/lattice_properties.h"
#include "velocity/velocity_file.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>

namespace fluvane::validation {

namespace {

QString zoneWords(const support::Zone3D& z) {
    QString words = z.flowKind == 2 ? "\"Outflow\"" : "\"No Slip->Translation\"";
    if (z.velocity.x != 0.0)
        words += ", ux " + number(z.velocity.x);
    if (z.thermalKind == 1)
        words += ", \"Constant T\" " + number(z.value);
    return words;
}

void prepare3D(const Context& context, const QString& name, const SpaceMesh& space, const SpaceSetUp& s) {
    support::resetProcessState();
    const QString velocities = QString(FLUVANE_CASES_DIR) + "/Velocity_file/" + s.velocityFile;
    const QString meshFile = QDir(context.folder).filePath(name + ".msh");
    caseSettings.is3D = true;
    require(readVelocityFile(velocities), s.velocityFile);
    support::makeMesh(space.tetrahedra, static_cast<int>(space.zoneNames.size()), space.zoneOf);
    mesh.zoneNames.assign(space.zoneNames.begin(), space.zoneNames.end());
    support::writeMeshFile3D(meshFile);
    require(readMesh3D(meshFile) && buildGeometry3D(), meshFile);
    setLatticeProperties(s.CFL, s.RT);
    initialiseFields(s.L, s.Ma, s.Pr, s.ReOrRa, 1.0, s.flowKind, s.heat ? 1 : 0, 0, 0, 0);
    require(static_cast<int>(s.zones.size()) == mesh.zoneCount, "a condition for each zone of " + name);
    for (std::size_t z = 0; z < s.zones.size(); ++z)
        support::assignZone(static_cast<int>(z), s.zones[z]);
    require(setThreads(context.threads), "the threads asked for");
}

QString wordsFor(int nx, int n) {
    return QString("%1 x %2 x %2 cubes, %3 tetrahedra").arg(nx).arg(n).arg(5 * nx * n * n);
}

} // namespace

SpaceMesh cubeMesh(int n) {
    const double L = n;
    return {wordsFor(n, n),
            support::boxOfTetrahedra(n, n, n),
            {"left", "right", "front", "back", "bottom", "top"},
            support::sidesOfBox3D({L, L, L}),
            L};
}

SpaceMesh wallClusteredCube(int n, double s) {
    SpaceMesh space = cubeMesh(n);
    const auto place = [s](double t) { return 0.5 + 0.5 * std::tanh(s * (2.0 * t - 1.0)) / std::tanh(s); };
    const double side = 1.0 / place(1.0 / n), widest = side * (place(0.5 + 0.5 / n) - place(0.5 - 0.5 / n));
    for (Vec3& p : space.tetrahedra.points)
        p = {side * place(p.x / n), side * place(p.y / n), side * place(p.z / n)};
    space.side = side;
    space.words.replace("cubes", QString("bricks, edges 1 at the walls to %1").arg(number(widest, 2)));
    space.zoneOf = support::sidesOfBox3D({side, side, side});
    return space;
}

SpaceMesh ductMesh(int length, int n) {
    return {wordsFor(length, n),
            support::boxOfTetrahedra(length, n, n),
            {"walls", "inlet", "outlet"},
            [length](Vec3 p) {
                if (p.x < 1e-9)
                    return 1;
                return p.x > length - 1e-9 ? 2 : 0;
            },
            double(n)};
}

QStringList describe(const SpaceMesh& space, const SpaceSetUp& s, const Run& run) {
    QStringList lines;
    lines << "Files: velocity file `" + s.velocityFile + "`; mesh of " + space.words +
                 QString(", the shortest edges one length unit long, the side %1").arg(number(space.side));
    lines << "Lattice: \"CFL number(0~1.0)\" " + number(s.CFL) + ", \"RT(>0)\" " + number(s.RT, 6);
    QString physics = QString("Physics: \"Flow type\" \"%1\", \"Heat transfer\" \"%2\", L %3, \"Ma\" %4")
                          .arg(s.flowKind == 1 ? "Natural" : "Forced", s.heat ? "Considered" : "None",
                               number(s.L), number(s.Ma));
    if (s.heat)
        physics += ", \"dT\" 1, \"Pr\" " + number(s.Pr);
    lines << physics + (s.flowKind == 1 ? ", \"Ra\" " : ", \"Re\" ") + number(s.ReOrRa, 6);
    QStringList zones;
    for (std::size_t z = 0; z < s.zones.size(); ++z)
        zones << space.zoneNames[static_cast<int>(z)] + " " + zoneWords(s.zones[z]);
    lines << "Boundary: " + zones.join("; ");
    lines << QString("Compute: \"Time Steps\" %1; by then a step changes the fields by less than %2")
                 .arg(run.steps)
                 .arg(number(s.tolerance));
    return lines;
}

Run runSteady3D(const Context& context, const QString& name, const SpaceMesh& space, const SpaceSetUp& s) {
    prepare3D(context, name, space, s);
    Run run;
    run.name = name;
    run.mesh = space.words;
    run.cells = mesh.cellCount;
    run.Ma = s.Ma;
    run.CFL = s.CFL;
    const auto start = std::chrono::steady_clock::now();
    run.steps = support::runUntilSteady3D(s.tolerance, s.interval, s.maxSteps);
    run.residual = support::residual3D();
    run.resultFile = QString("%1_%2.dat").arg(name).arg(run.steps);
    run.ended = writeResult3D(QDir(context.folder).filePath(run.resultFile)) && run.steps > 0;
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%s: %d steps, %.1f s, residual %.1e%s\n", qPrintable(name), run.steps, run.seconds,
                run.residual, run.ended ? "" : ", BROKEN OFF");
    std::fflush(stdout);
    return run;
}

double massChange3D() {
    double mass = 0.0, volume = 0.0;
    for (const CellRecord3D& c : mesh.cells3D) {
        mass += c.volume * c.rho;
        volume += c.volume;
    }
    return mass / volume - 1.0;
}

double asymmetry3D() {
    const auto place = [](double x, double y, double z) {
        return std::array{std::lround(1e4 * x), std::lround(1e4 * y), std::lround(1e4 * z)};
    };
    std::map<std::array<long, 3>, const CellRecord3D*> cells;
    for (const CellRecord3D& c : mesh.cells3D)
        cells[place(c.xc, c.yc, c.zc)] = &c;
    double largest = 0.0;
    for (const CellRecord3D& c : mesh.cells3D) {
        const auto image = cells.find(place(c.xc, caseSettings.L - c.yc, c.zc));
        if (image == cells.end())
            return INFINITY;
        const CellRecord3D& m = *image->second;
        largest = std::max(largest, std::hypot(c.u - m.u, c.v + m.v, c.w - m.w));
    }
    return largest / caseSettings.U0;
}

} // namespace fluvane::validation
