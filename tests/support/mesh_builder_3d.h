// Tetrahedral meshes made in memory for tests and benchmarks.
#pragma once

#include "velocity/velocity_set.h"

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace fluvane::support {

struct Tetrahedra {
    std::vector<Vec3> points;
    std::vector<std::array<std::int32_t, 4>> cells;
};

/// A box of nx by ny by nz bricks with edges `edge`, from the origin; each brick is cut into five tetrahedra,
/// mirrored from brick to brick.
Tetrahedra boxOfTetrahedra(int nx, int ny, int nz, Vec3 edge = {1.0, 1.0, 1.0});

/// Moves every point by a smooth displacement that leaves the boundary of the box [0, size] where it is.
void distort(Tetrahedra& tetrahedra, Vec3 size, double amplitude);

/// Gives the cells new numbers in a reproducible random order.
void shuffleCells(Tetrahedra& tetrahedra, unsigned seed);

/// Which boundary zone a face belongs to, from its centre.
using ZoneOfFace = std::function<int(Vec3 centre)>;

/// x low, x high, y low, y high, z low, z high = 0 .. 5 of the box [0, size].
ZoneOfFace sidesOfBox3D(Vec3 size);

/// Makes `mesh` from the cells: interior faces first, then the zones 0 .. zoneCount - 1, and builds the
/// geometry. The velocity set must be there. Aborts the program when the geometry is refused.
void makeMesh(const Tetrahedra& tetrahedra, int zoneCount, const ZoneOfFace& zoneOf);

/// The velocity set of 15, 19 or 27 velocities, unscaled, and `is3D` on.
void useD3Q15();
void useD3Q19();
void useD3Q27();

/// Seven velocities: rest and axes; a count no kernel is specialised for.
void useD3Q7();

} // namespace fluvane::support
