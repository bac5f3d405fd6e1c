// Meshes made in memory for tests and benchmarks.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace fluvane::support {

/// Cells as counter-clockwise node lists; a triangle has -1 as its fourth node.
struct PlaneCells {
    std::vector<double> x, y;
    std::vector<std::array<std::int32_t, 4>> cells;
};

/// nx by ny rectangles on [0, lx] x [0, ly], row by row.
PlaneCells rectangles(int nx, int ny, double lx = 1.0, double ly = 1.0);

/// The same rectangles, each cut into two triangles along alternating diagonals.
PlaneCells cutRectangles(int nx, int ny, double lx = 1.0, double ly = 1.0);

/// nr by nt quadrilaterals between two circles about the origin, all of the same shape: their size grows with
/// the radius. `triangles` cuts each in two.
PlaneCells ring(int nr, int nt, double inner, double outer, bool triangles = false);

/// Moves every point by a smooth displacement that leaves the boundary of the unit square where it is.
void distort(PlaneCells& cells, double amplitude);

/// Numbers the cells at random.
void shuffleCells(PlaneCells& cells, unsigned seed);

/// Which boundary zone an edge belongs to, from its midpoint.
using ZoneOfEdge = std::function<int(double x, double y)>;

/// Left, right, bottom, top = 0, 1, 2, 3 of [0, lx] x [0, ly].
ZoneOfEdge sidesOfBox(double lx = 1.0, double ly = 1.0);

/// Makes `mesh` from the cells: interior faces first, then the zones 0 .. zoneCount - 1, and builds the
/// geometry. The velocity set must be there. Aborts the program when the geometry is refused.
void makeMesh(const PlaneCells& cells, int zoneCount, const ZoneOfEdge& zoneOf);

/// The velocity set D2Q9, unscaled: rest, axes, diagonals.
void useD2Q9();

/// Thirteen velocities: rest, axes, diagonals and axes of length two; a count no kernel is specialised for.
void useD2Q13();

/// Everything process-wide as at start-up.
void resetProcessState();

} // namespace fluvane::support
