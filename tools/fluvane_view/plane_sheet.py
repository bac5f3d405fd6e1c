"""A plane mesh of triangles and quadrilaterals with fields on it: a 2D result, or a slice through a 3D one."""

import numpy

from .interpolation import NodeMeans, locate_on_grid, locate_on_line, used_points_only


class Sheet:
    """Polygons in a plane. A field is known by its name, as `Result.field` knows it.

    Subclasses give `cell_values(name)`, one a polygon, and `vertex_values(name)`, one a point and then one a
    polygon's centre, which is how `fans` numbers them.
    """

    def __init__(self, points, polygons, axes):
        """polygons (polygons, 4); a triangle repeats its first corner. axes: the names of the two coordinates."""
        self.points = points
        self.polygons = polygons
        self.axes = axes
        self.is_triangle = polygons[:, 3] == polygons[:, 0]
        sums = points[polygons[:, :3]].sum(axis=1)
        fourth = numpy.where(self.is_triangle[:, None], 0.0, points[polygons[:, 3]])
        self.centres = (sums + fourth) / numpy.where(self.is_triangle, 3.0, 4.0)[:, None]
        self._edges = None
        self._fans = None

    def bounds(self):
        """(low, high), each of two coordinates."""
        return self.points.min(axis=0), self.points.max(axis=0)

    def fans(self):
        """(vertices, triangles, owners): each polygon cut from its centre to its sides."""
        if self._fans is None:
            a, b = self.polygons, numpy.roll(self.polygons, -1, axis=1)
            centre = len(self.points) + numpy.arange(len(a))
            triangles = numpy.stack([a, b, numpy.broadcast_to(centre[:, None], a.shape)], axis=2).reshape(-1, 3)
            real = triangles[:, 0] != triangles[:, 1]
            owners = numpy.repeat(numpy.arange(len(a)), 4)[real]
            self._fans = numpy.concatenate([self.points, self.centres]), triangles[real], owners
        return self._fans

    def edges(self):
        """(edges, is at the rim): pairs of points, each edge once; at the rim are those of one polygon alone."""
        if self._edges is None:
            a, b = self.polygons.ravel(), numpy.roll(self.polygons, -1, axis=1).ravel()
            real = a != b
            low, high = numpy.minimum(a, b)[real], numpy.maximum(a, b)[real]
            keys, counts = numpy.unique(low * len(self.points) + high, return_counts=True)
            self._edges = numpy.column_stack(numpy.divmod(keys, len(self.points))), counts == 1
        return self._edges

    def rim_points(self):
        edges, at_rim = self.edges()
        mask = numpy.zeros(len(self.points), bool)
        mask[edges[at_rim].ravel()] = True
        return mask

    def on_grid(self, names, xs, ys):
        """Each field at the nodes of a regular grid, (ys, xs) each; nan outside."""
        vertices, triangles, _ = self.fans()
        located = locate_on_grid(vertices, triangles, xs, ys)
        return [self._evaluate(located, triangles, name).reshape(len(ys), len(xs)) for name in names]

    def _located(self, start, end, count):
        vertices, triangles, _ = self.fans()
        return locate_on_line(vertices, triangles, start, end, count)

    def meets_line(self, start, end, count):
        """Whether one of `count` places from start to end lies in a cell."""
        return bool((self._located(start, end, count).simplex >= 0).any())

    def on_line(self, names, start, end, count, own_values=False):
        """Each field at `count` places from start to end; nan outside. own_values: the value of the cell around."""
        _, triangles, owners = self.fans()
        located = self._located(start, end, count)
        if own_values:
            inside = located.simplex >= 0
            return [numpy.where(inside, self.cell_values(name)[owners[located.simplex]], numpy.nan) for name in names]
        return [self._evaluate(located, triangles, name) for name in names]

    def _evaluate(self, located, triangles, name):
        corners = self.vertex_values(name)[triangles[located.simplex]]
        return numpy.where(located.simplex >= 0, (corners * located.shares).sum(axis=1), numpy.nan)


class PlaneResult(Sheet):
    """A 2D result."""

    def __init__(self, result):
        super().__init__(*used_points_only(result.points, result.cells), ("x", "y"))
        self.result = result
        corners = numpy.where(self.is_triangle[:, None] & (numpy.arange(4) == 3), -1, self.polygons)
        self._means = NodeMeans(self.points, corners, self.centres, self.rim_points())

    def take(self, result):
        """Shows another result on the same mesh."""
        self.result = result

    def cell_values(self, name):
        return self.result.drawable(name)

    def vertex_values(self, name):
        values = self.cell_values(name)
        return numpy.concatenate([self._means.of(values), values])

    def in_plane(self):
        """The names of the velocity's components in the plane."""
        return ("u", "v")
