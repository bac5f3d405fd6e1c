// Prepares the shipped cases through the program's own readers and set-up functions.
#include "reliability/cases.h"

#include "dialogs/case_settings.h"
#include "mesh/fluent_reader_2d.h"
#include "mesh/fluent_reader_3d.h"
#include "mesh/geometry_2d.h"
#include "mesh/geometry_3d.h"
#include "mesh/mesh.h"
#include "setup/boundary_assignment.h"
#include "setup/initial_fields.h"
#include "solver2d/drivers.h"
#include "solver3d/drivers.h"
#include "velocity/lattice_properties.h"
#include "velocity/velocity_file.h"

#include <array>

namespace fluvane::reliability {

namespace {

enum class Physics { flow, flowAndHeat, naturalConvection, conduction, melting };

struct Case {
    bool is3D;
    const char* velocities;
    const char* mesh;
    Physics physics;
    bool steady;
};

constexpr std::array<Case, 12> cases{{
    {false, "D2Q9.2Dv", "cavity/cavity_32.msh", Physics::flow, true},
    {true, "D3Q19.3Dv", "heated-cube/heated_cube_10.msh", Physics::flowAndHeat, true},
    {false, "D2Q5.2Dv", "annulus/annulus_16.msh", Physics::conduction, true},
    {true, "D3Q15.3Dv", "cavity-3d/cavity_3d_10.msh", Physics::flow, true},
    {false, "D2Q9.2Dv", "melting-cavity/melting_cavity_24.msh", Physics::melting, false},
    {true, "D3Q27.3Dv", "cavity-3d/cavity_3d_10.msh", Physics::conduction, false},
    {false, "D2Q7.2Dv", "annulus/annulus_tri_8.msh", Physics::conduction, false},
    {true, "D3Q19.3Dv", "cavity-3d/cavity_3d_10.msh", Physics::flow, false},
    {false, "D2Q9.2Dv", "heated-cavity/heated_cavity_32.msh", Physics::naturalConvection, true},
    {true, "D3Q27.3Dv", "heated-cube/heated_cube_10.msh", Physics::naturalConvection, true},
    {false, "D2Q9.2Dv", "melting-slab/melting_slab_5.msh", Physics::melting, false},
    {true, "D3Q15.3Dv", "heated-cube/heated_cube_10.msh", Physics::flowAndHeat, true},
}};

const Case& caseOf(int number) {
    return cases[static_cast<std::size_t>(number) % cases.size()];
}

bool readFiles(const Case& c, const QString& meshFile) {
    const QString folder = QStringLiteral(FLUVANE_CASES_DIR "/");
    caseSettings.is3D = c.is3D;
    if (!readVelocityFile(folder + "Velocity_file/" + c.velocities))
        return false;
    const QString path = meshFile.isEmpty() ? folder + c.mesh : meshFile;
    return c.is3D ? readMesh3D(path) && buildGeometry3D() : readMesh2D(path) && buildGeometry2D();
}

void setPhysics(const Case& c) {
    const bool heat = c.physics != Physics::flow;
    const bool melting = c.physics == Physics::melting;
    const int flowKind = c.physics == Physics::naturalConvection       ? 1
                         : c.physics == Physics::conduction || melting ? 2
                                                                       : 0;
    setLatticeProperties(c.is3D ? 0.15 : 0.4, 1.0 / 3.0);
    if (melting) {
        caseSettings.dT = 1.0; // as the dialogs leave it: the enthalpy relation is set before the fields
        setPhaseChange(0.1, 0.1, 0.1, 0.0);
    }
    const double Pr = flowKind == 2 ? 0.1 : 0.71;
    initialiseFields(1.0, 0.1, Pr, flowKind == 1 ? 1e4 : 20.0, 1.0, flowKind, heat ? 1 : 0, 0,
                     melting ? 1 : 0, c.steady ? 0 : 1);
}

/// Every wall at its own temperature where there is heat; the last one slides.
void setWalls(const Case& c) {
    std::int32_t first = mesh.interiorFaceCount;
    for (std::int32_t zone = 0; zone < mesh.zoneCount; ++zone) {
        const std::int32_t end = mesh.zoneLastFace[static_cast<std::size_t>(zone)];
        const bool last = zone + 1 == mesh.zoneCount;
        const double ux = last ? 1.0 : 0.0;
        const double T = 1.0 / (1.0 + zone);
        const int thermalKind = caseSettings.heatOn ? 1 : 0;
        if (c.is3D)
            assignBoundary3D(first, end, ux, 0.0, 0.0, 0, thermalKind, T);
        else
            assignBoundary2D(first, end, ux, 0.0, 0, thermalKind, T, 0.0);
        first = end;
    }
}

bool prepare(const Case& c, const QString& meshFile) {
    if (!readFiles(c, meshFile))
        return false;
    setPhysics(c);
    setWalls(c);
    return true;
}

} // namespace

bool prepareCase(int number) {
    return prepare(caseOf(number), QString());
}

bool prepareFlow(const QString& meshFile) {
    return prepare(caseOf(0), meshFile);
}

bool runCase(unsigned threads, int steps, int interval, const QString& file) {
    constexpr double never = 0.0; // below which no residual is
    if (caseSettings.is3D)
        return run3D(nullptr, threads, never, never, steps, interval, file);
    if (caseSettings.steadyState)
        return runSteady2D(nullptr, threads, never, never, steps, interval, file);
    return runTransient2D(nullptr, threads, steps, interval, file);
}

} // namespace fluvane::reliability
