// The cases that the benchmarks step: cavities and cubes of any size, made in memory.
#pragma once

namespace fluvane::bench {

enum class Physics { flow, flowAndHeat, enthalpy };
enum class Shape { quadrilaterals, triangles };
enum class Order { rowByRow, shuffled }; ///< the numbers of the cells, and of the faces with them

const char* nameOf(Physics physics);
const char* nameOf(Shape shape);

/// The square cavity on a mesh of n by n cells (n even for triangles) with nine velocities, ready to step:
/// its lid slides, or with heat its left wall is hotter than its right one, or with enthalpy it melts from
/// the left.
void prepareCavity(int n, Physics physics, Shape shape = Shape::quadrilaterals,
                   Order order = Order::rowByRow);

/// The cube of n by n by n bricks of five tetrahedra with 15, 19 or 27 velocities, ready to step, in the same
/// way.
void prepareCube(int n, int velocities, Physics physics, Order order = Order::rowByRow);

} // namespace fluvane::bench
