"""Values between cell centres: means at the nodes, and linear pieces between nodes and centres.

Every cell is cut into simplices, each from its centre to one of its sides. The field is linear on each of them, from
the cell's own value at the centre to the nodes' values at the corners. So it is continuous, it has the program's own
value at every centre, a linear field comes out exactly inside, and nothing lies outside the range of the cells
around: at a wall, of which the files say nothing, it takes the value of the cells there.
"""

import numpy

DESCRIPTION = "linear between cell centres and node means; at a wall the value of the cells there"


class NodeMeans:
    """Weighted means over the cells around each node."""

    def __init__(self, points, cells, centres, on_boundary):
        """cells (cells, corners) with -1 for a corner that is not there; on_boundary tells nodes at the rim."""
        present = cells >= 0
        self._nodes = cells[present]
        self._owners = numpy.nonzero(present)[0]
        self._count = len(points)
        self._weights = self._linear_weights(points, centres, on_boundary)
        self._sums = self._add(self._weights)

    def _add(self, values):
        return numpy.bincount(self._nodes, values, self._count)

    def _linear_weights(self, points, centres, on_boundary):
        """1 + l . (centre - node) with l such that a linear field comes out exactly (Holmes and Connell 1989).

        They are kept within 0 and 2, which bounds the mean by the cells around. At the rim the cells lie on one side
        and no such weights exist: there they fall with the distance.
        """
        away = centres[self._owners] - points[self._nodes]
        dimension = away.shape[1]
        matrix = numpy.empty((self._count, dimension, dimension))
        for i in range(dimension):
            for j in range(dimension):
                matrix[:, i, j] = self._add(away[:, i] * away[:, j])
        right = numpy.column_stack([-self._add(away[:, i]) for i in range(dimension)])
        inside = ~on_boundary & (self._add(None) > dimension)
        # A hundred-billionth of the size on the diagonal: flat stars of cells give plain means and no failure.
        size = numpy.trace(matrix, axis1=1, axis2=2)
        matrix[:, range(dimension), range(dimension)] += (1e-11 * size + ~inside)[:, None]
        slope = numpy.where(inside[:, None], numpy.linalg.solve(matrix, right[:, :, None])[:, :, 0], 0.0)
        linear = numpy.clip(1.0 + (slope[self._nodes] * away).sum(axis=1), 0.0, 2.0)
        near = 1.0 / numpy.sqrt((away**2).sum(axis=1) + 1e-300)
        weights = numpy.where(inside[self._nodes], linear, near)
        lost = self._add(weights) <= 0.0
        return numpy.where(lost[self._nodes], near, weights)

    def of(self, cell_values):
        """One mean a node; every node must have a cell."""
        return self._add(self._weights * cell_values[self._owners]) / self._sums


def used_points_only(points, cells):
    """The points that cells use and the cells in their numbers: meshing programs leave unused points behind."""
    used = numpy.zeros(len(points), bool)
    used[cells.ravel()] = True
    return points[used], (numpy.cumsum(used) - 1)[cells]


def barycentric(corners, points):
    """Shares of the corners (m, d + 1, d) of simplices at one point (m, d) each; flat simplices give nan."""
    edges = (corners[:, 1:] - corners[:, :1]).transpose(0, 2, 1)
    flat = numpy.linalg.det(edges) == 0.0
    edges[flat] = numpy.eye(edges.shape[1])
    shares = numpy.linalg.solve(edges, (points - corners[:, 0])[:, :, None])[:, :, 0]
    shares[flat] = numpy.nan
    return numpy.column_stack([1.0 - shares.sum(axis=1), shares])


def expand(counts):
    """For counts 2, 0, 3: which row each of the five entries belongs to, and its number within the row."""
    rows = numpy.repeat(numpy.arange(len(counts)), counts)
    return rows, numpy.arange(len(rows)) - numpy.repeat(numpy.cumsum(counts) - counts, counts)


class Located:
    """For each place asked for, the simplex around it (-1: none) and the shares of its corners."""

    def __init__(self, count, corners):
        self.simplex = numpy.full(count, -1)
        self.shares = numpy.zeros((count, corners))
        self._least = numpy.full(count, -1e-9)

    def offer(self, places, simplices, shares):
        """Takes what lies inside; of several, the one deepest inside."""
        least = shares.min(axis=1)
        good = numpy.flatnonzero(least >= self._least[places])
        good = good[numpy.argsort(least[good], kind="stable")]
        # numpy keeps the last of equal indices: the deepest.
        places = places[good]
        self.simplex[places], self.shares[places], self._least[places] = simplices[good], shares[good], least[good]


def locate_on_grid(points, triangles, xs, ys):
    """Where the nodes of a regular grid lie, row by row."""
    located = Located(len(xs) * len(ys), 3)
    corners = points[triangles]
    low, high = corners.min(axis=1), corners.max(axis=1)
    slack = 1e-9 * (high - low).max()
    first_x, first_y = numpy.searchsorted(xs, low[:, 0] - slack), numpy.searchsorted(ys, low[:, 1] - slack)
    wide = numpy.searchsorted(xs, high[:, 0] + slack, "right") - first_x
    tall = numpy.searchsorted(ys, high[:, 1] + slack, "right") - first_y
    some = numpy.flatnonzero(wide * tall)
    chunks = numpy.cumsum(wide[some] * tall[some]) // 2_000_000
    for chunk in numpy.split(some, numpy.flatnonzero(numpy.diff(chunks)) + 1):
        rows, k = expand(wide[chunk] * tall[chunk])
        triangle = chunk[rows]
        i, j = first_x[triangle] + k % wide[triangle], first_y[triangle] + k // wide[triangle]
        shares = barycentric(corners[triangle], numpy.column_stack([xs[i], ys[j]]))
        located.offer(j * len(xs) + i, triangle, shares)
    return located


def locate_on_line(points, simplices, start, end, count):
    """Where `count` places lie that stand evenly from start to end."""
    located = Located(count, simplices.shape[1])
    length = numpy.linalg.norm(end - start)
    along = (end - start) / length
    across = numpy.linalg.svd(along[None, :])[2][1:]
    offset = points - start
    slack = 1e-9 * max(length, numpy.ptp(points, axis=0).max())
    met = numpy.ones(len(simplices), bool)
    for axis in across:
        side = (offset @ axis)[simplices]
        met &= (side.min(axis=1) <= slack) & (side.max(axis=1) >= -slack)
    met = numpy.flatnonzero(met)
    places = numpy.linspace(0.0, length, count)
    reach = (offset @ along)[simplices[met]]
    first = numpy.searchsorted(places, reach.min(axis=1) - slack)
    counts = numpy.searchsorted(places, reach.max(axis=1) + slack, "right") - first
    rows, k = expand(counts)
    place = first[rows] + k
    simplex = met[rows]
    where = start + (end - start) * (place / (count - 1))[:, None]
    located.offer(place, simplex, barycentric(points[simplices[simplex]], where))
    return located
