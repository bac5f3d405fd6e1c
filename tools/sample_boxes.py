"""The boxes of the 3D sample cases, as tetrahedra."""

import math
import random

from fluent_mesh import MeshError, number_points_by_use, sort_along_curve
from tetrahedra import build_tetrahedra

DUCT_LENGTH = 5  # duct heights
TOLERANCE = 1e-9
# In units of the spacing the thinnest tetrahedra are 1/sqrt(3) thick, and a point moves by sqrt(3) jitters at
# most, from either side: none can turn over below this.
MOST_JITTER = 1.0 / 6.0


class Box:
    """A box with a corner in the origin, along the axes.

    proportions: its sides in units of the one across; sides: zones at x = 0, x = end, y = 0, y = end, z = 0,
    z = end.
    """

    def __init__(self, proportions, sides, zone_order):
        self.proportions = proportions
        self.sides = sides
        self.zone_order = zone_order

    def counts(self, cells):
        """Cubes along x, y and z."""
        return tuple(share * cells for share in self.proportions)

    def zone_finder(self, ends):
        """zone_of for a box that reaches from the origin to `ends`."""
        planes = [(axis, place) for axis, end in enumerate(ends) for place in (0.0, end)]

        def zone_of(*corners):
            for (axis, place), name in zip(planes, self.sides):
                if all(abs(corner[axis] - place) < TOLERANCE * ends[axis] for corner in corners):
                    return name
            return None

        return zone_of


BOXES = {
    # The moving walls come after those at rest, as in 2D.
    "cavity-3d": Box((1, 1, 1), ("walls", "walls", "walls", "walls", "walls", "lid"), ("walls", "lid")),
    "heated-cube": Box(
        (1, 1, 1),
        ("hot", "cold", "adiabatic", "adiabatic", "adiabatic", "adiabatic"),
        ("hot", "cold", "adiabatic"),
    ),
    "duct-3d": Box(
        (DUCT_LENGTH, 1, 1),
        ("inlet", "outlet", "walls", "walls", "walls", "walls"),
        ("walls", "inlet", "outlet"),
    ),
}


def box_mesh(name, cells, spacing=(1.0, 1.0, 1.0), jitter=0.0):
    """A box of cubes, `cells` of them across, each cut into five tetrahedra.

    spacing: the cubes' edges along x, y and z. jitter: how far points inside the box move off their places at
    random (the same way each time), at most, along each axis, as a share of the spacing.
    """
    if not all(0.0 < length < math.inf for length in spacing):
        raise MeshError("the spacing must be positive and finite")
    if not 0.0 <= jitter < MOST_JITTER:
        raise MeshError("the jitter must be at least 0 and below 1/6, where tetrahedra begin to turn over")
    box = BOXES[name]
    counts = box.counts(cells)
    grid = [(i, j, k) for k in range(counts[2] + 1) for j in range(counts[1] + 1) for i in range(counts[0] + 1)]
    tetrahedra = []
    for cube in sort_along_curve(grid, _cubes(counts)):
        tetrahedra += _cut_cube(grid, cube)
    points, tetrahedra = number_points_by_use(_place(grid, counts, spacing, jitter), tetrahedra)
    ends = [count * length for count, length in zip(counts, spacing)]
    return build_tetrahedra(points, tetrahedra, box.zone_finder(ends), box.zone_order)


def _cubes(counts):
    """The eight grid points of each cube; bit 0 of a corner's place is its step along x, bit 1 along y, bit 2
    along z."""
    nx, ny, nz = counts
    row, layer = nx + 1, (nx + 1) * (ny + 1)
    corners = [(c & 1) + (c >> 1 & 1) * row + (c >> 2) * layer for c in range(8)]
    return [
        tuple(i + j * row + k * layer + corner for corner in corners)
        for k in range(nz)
        for j in range(ny)
        for i in range(nx)
    ]


def _cut_cube(grid, cube):
    """Four tetrahedra at the corners whose i + j + k is odd, and the one between them.

    So the diagonals of all squares join even points, and neighbouring cubes, mirror images of each other, fit.
    With the middle one third, the cells that touch it have numbers at most two away.
    """
    odd_corners = (0, 3, 5, 6) if sum(grid[cube[0]]) % 2 else (1, 2, 4, 7)
    at_corners = [tuple(cube[c ^ step] for step in (0, 1, 2, 4)) for c in odd_corners]
    between = tuple(cube[c ^ 7] for c in odd_corners)
    return [*at_corners[:2], between, *at_corners[2:]]


def _place(grid, counts, spacing, jitter):
    generator = random.Random(1)
    points = []
    for place in grid:
        inside = all(0 < index < count for index, count in zip(place, counts))
        if jitter and inside:
            place = [round(index + jitter * (2.0 * generator.random() - 1.0), 6) for index in place]
        points.append(tuple(index * length for index, length in zip(place, spacing)))
    return points
