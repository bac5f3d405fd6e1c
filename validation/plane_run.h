// A 2D case as a user sets it up and runs it: files, windows, driver.
#pragma once

#include "case.h"
#include "support/case_runner.h"
#include "support/mesh_builder.h"

#include <functional>

namespace fluvane::validation {

/// A mesh and the names of its zones, in the order of `zoneOf`.
struct PlaneMesh {
    QString words; ///< "64 x 64 squares"
    support::PlaneCells cells;
    QStringList zoneNames;
    support::ZoneOfEdge zoneOf;
};

/// The zones of a box: left, right, bottom, top.
PlaneMesh boxMesh(const QString& words, const support::PlaneCells& cells, double lx = 1.0, double ly = 1.0);

/// n by n squares on the unit square, and 2 n^2 triangles.
PlaneMesh squares(int n);
PlaneMesh triangles(int n);

/// n by n rectangles whose nodes lie at 0.5 + 0.5 tanh(s (2 i / n - 1)) / tanh(s): finest at the walls.
PlaneMesh wallClusteredRectangles(int n, double s);

/// What the windows ask for; the numbers are those of `initialiseFields`.
struct PlaneSetUp {
    QString velocityFile = "D2Q9.2Dv";
    double CFL = 0.4;
    double RT = 1.0 / 3.0;
    int flowKind = 0; ///< 0 forced, 1 natural, 2 conduction only
    bool heat = false;
    int scaleKind = 0; ///< 0 temperature difference, 1 flux, 2 source
    double scale = 1.0;
    double L = 1.0;
    double Ma = 0.1;
    double Pr = 1.0; ///< the diffusivity itself in conduction
    double ReOrRa = 1.0;
    std::vector<support::Zone> zones; ///< one a zone of the mesh

    double tolerance = 1e-9;
    int interval = 1000; ///< steps between reports
    int maxSteps = 1000000;
    /// Where the boundary window cannot give a profile: called after it, with the mesh set up.
    std::function<void()> afterBoundary;
};

/// The lines of a report that tell what to type.
QStringList describe(const PlaneMesh& plane, const PlaneSetUp& setUp);

/// Writes the mesh file, reads velocity and mesh file, goes through lattice, physics and boundary window and
/// initialises; nothing is run yet. Aborts the program when a file is refused.
void prepare(const Context& context, const QString& name, const PlaneMesh& plane, const PlaneSetUp& setUp);

/// The same, then the steady driver until convergence or maxSteps; only the last result file stays. The
/// process state is that of the end of the run.
Run runSteady(const Context& context, const QString& name, const PlaneMesh& plane, const PlaneSetUp& setUp);

/// The same with the transient driver for `steps` steps; all result files stay.
Run runTransient(const Context& context, const QString& name, const PlaneMesh& plane, const PlaneSetUp& setUp,
                 int steps, int saveInterval);

/// `error_u` and `error_T` reports: the larger one, from a terminal line of the driver.
double residualOf(const QString& line);

} // namespace fluvane::validation
