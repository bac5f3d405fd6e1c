// Prepares the cases of the benchmarks through the program's own functions.
#include "cases.h"

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "setup/boundary_assignment.h"
#include "setup/initial_fields.h"
#include "support/case_runner.h"
#include "support/mesh_builder.h"
#include "support/mesh_builder_3d.h"

#include <cstddef>
#include <cstdint>

namespace fluvane::bench {

namespace {

constexpr unsigned seed = 1;

void initialise(double L, double ReOrRa, Physics physics) {
    const int heat = physics == Physics::flow ? 0 : 1;
    const int phaseChange = physics == Physics::enthalpy ? 1 : 0;
    const auto fields = [&] { initialiseFields(L, 0.1, 0.71, ReOrRa, 1.0, heat, heat, 0, phaseChange, 0); };
    fields();
    if (physics == Physics::enthalpy) {
        setPhaseChange(1.0, 0.0, 0.0, 0.0);
        fields(); // the first enthalpy follows from the relation
    }
}

/// What the walls at low and high x are held at.
double wallTemperature(Physics physics, bool low) {
    if (physics == Physics::enthalpy)
        return low ? 1.0 : 0.0;
    return low ? 0.5 : -0.5;
}

} // namespace

const char* nameOf(Physics physics) {
    switch (physics) {
    case Physics::flow:
        return "flow";
    case Physics::flowAndHeat:
        return "flow and heat";
    case Physics::enthalpy:
        return "enthalpy";
    }
    return "";
}

const char* nameOf(Shape shape) {
    return shape == Shape::triangles ? "triangles" : "squares";
}

void prepareCavity(int n, Physics physics, Shape shape, Order order) {
    support::resetProcessState();
    support::useD2Q9();
    const bool triangles = shape == Shape::triangles;
    support::PlaneCells cells = triangles ? support::cutRectangles(n, n / 2) : support::rectangles(n, n);
    if (order == Order::shuffled)
        support::shuffleCells(cells, seed);
    support::makeMesh(cells, 4, support::sidesOfBox());
    support::useLattice(triangles ? 0.15 : 0.4);
    initialise(1.0, physics == Physics::flow ? 1000.0 : 1e5, physics);
    for (const int zone : {0, 1})
        support::assignZone(zone, support::wallAt(wallTemperature(physics, zone == 0)));
    support::assignZone(2, {});
    support::assignZone(3, support::movingWall(physics == Physics::flow ? 1.0 : 0.0, 0.0));
}

void prepareCube(int n, int velocities, Physics physics, Order order) {
    support::resetProcessState();
    if (velocities == 15)
        support::useD3Q15();
    else if (velocities == 19)
        support::useD3Q19();
    else
        support::useD3Q27();
    const double L = n;
    support::Tetrahedra cells = support::boxOfTetrahedra(n, n, n);
    if (order == Order::shuffled)
        support::shuffleCells(cells, seed);
    support::makeMesh(cells, 6, support::sidesOfBox3D({L, L, L}));
    support::useLattice(0.15);
    initialise(L, physics == Physics::flow ? 100.0 : 1e4, physics);
    std::int32_t first = mesh.interiorFaceCount;
    for (std::size_t zone = 0; zone < 6; ++zone) {
        const std::int32_t end = mesh.zoneLastFace[zone];
        const double lid = zone == 5 && physics == Physics::flow ? 1.0 : 0.0;
        assignBoundary3D(first, end, lid, 0.0, 0.0, 0, zone < 2 ? 1 : 0, wallTemperature(physics, zone == 0));
        first = end;
    }
}

} // namespace fluvane::bench
