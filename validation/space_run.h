// A 3D case as a user sets it up: files, windows, steps.
#pragma once

#include "case.h"
#include "support/case_runner_3d.h"
#include "support/mesh_builder_3d.h"

namespace fluvane::validation {

/// A mesh of tetrahedra and the names of its zones, in the order of `zoneOf`. The shortest edges of the
/// bricks have length 1: the time step is built from the smallest face's area.
struct SpaceMesh {
    QString words;
    support::Tetrahedra tetrahedra;
    QStringList zoneNames;
    support::ZoneOfFace zoneOf;
    double side; ///< of the cube or of the duct's section
};

/// n by n by n cubes cut into five tetrahedra each; zones: x low, x high, y low, y high, z low, z high.
SpaceMesh cubeMesh(int n);

/// The same with the planes drawn to the walls by a hyperbolic tangent of steepness s; the bricks at the
/// walls have edges of length 1.
SpaceMesh wallClusteredCube(int n, double s);

/// A duct of `length` by n by n cubes along x; zones: walls, inlet, outlet.
SpaceMesh ductMesh(int length, int n);

/// What the windows ask for; the numbers are those of `initialiseFields`.
struct SpaceSetUp {
    QString velocityFile = "D3Q19.3Dv";
    double CFL = 0.25;
    double RT = 1.0 / 3.0;
    int flowKind = 0; ///< 0 forced, 1 natural
    bool heat = false;
    double L = 1.0;
    double Ma = 0.2;
    double Pr = 0.71;
    double ReOrRa = 1.0;
    std::vector<support::Zone3D> zones; ///< one a zone of the mesh

    double tolerance = 1e-6; ///< of the change in one step
    int interval = 200;      ///< steps between looks at it
    int maxSteps = 20000;
};

/// The lines of a report that tell what to type; "Time Steps" is that of the run.
QStringList describe(const SpaceMesh& space, const SpaceSetUp& setUp, const Run& run);

/// Writes the mesh file, reads velocity and mesh file, goes through lattice, physics and boundary window and
/// steps until the change in a step falls below the tolerance; then writes the result file. The driver's own
/// threshold of 1e-9 cannot be typed and would take several times as long. Aborts the program when a file is
/// refused.
Run runSteady3D(const Context& context, const QString& name, const SpaceMesh& space, const SpaceSetUp& setUp);

/// Sum of density times volume over the cells, relative to that of density 1, less 1.
double massChange3D();

/// Largest difference of the velocity in a cell and in its mirror image about the middle plane y = L / 2, in
/// units of U0; for meshes with an even number of cubes, which are their own image. Infinite when a cell has
/// no image.
double asymmetry3D();

} // namespace fluvane::validation
