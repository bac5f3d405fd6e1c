"""A mesh of tetrahedra with fields on it: slices by a plane, the boundary's faces, and lines through it."""

import numpy

from .errors import ViewError
from .interpolation import NodeMeans, barycentric, locate_on_line, used_points_only
from .plane_sheet import Sheet

AXES = ("x", "y", "z")
_FACES = numpy.array([[1, 2, 3], [0, 3, 2], [0, 1, 3], [0, 2, 1]])
# By the number of corners above the plane, which come first: the edges cut, in order around the section.
_CUT_EDGES = {
    1: numpy.array([(0, 1), (0, 2), (0, 3), (0, 1)]),
    2: numpy.array([(0, 2), (0, 3), (1, 3), (1, 2)]),
    3: numpy.array([(3, 0), (3, 1), (3, 2), (3, 0)]),
}


class Solid:
    """A 3D result."""

    def __init__(self, result):
        self.points, self.cells = used_points_only(result.points, result.cells)
        self.result = result
        self.centres = self.points[self.cells].mean(axis=1)
        self.boundary, self.boundary_owners = self._boundary()
        on_boundary = numpy.zeros(len(self.points), bool)
        on_boundary[self.boundary.ravel()] = True
        self._means = NodeMeans(self.points, self.cells, self.centres, on_boundary)

    def take(self, result):
        """Shows another result on the same mesh."""
        self.result = result

    def bounds(self):
        return self.points.min(axis=0), self.points.max(axis=0)

    def _boundary(self):
        """(faces (n, 3), owners): the faces that only one cell has, anticlockwise seen from outside."""
        faces = self.cells[:, _FACES].reshape(-1, 3)
        ordered = numpy.sort(faces, axis=1)
        order = numpy.lexsort(ordered.T)
        differs = (ordered[order][1:] != ordered[order][:-1]).any(axis=1)
        first = numpy.concatenate([[True], differs])
        last = numpy.concatenate([differs, [True]])
        single = order[first & last]
        faces, owners = faces[single], single // 4
        a, b, c = (self.points[faces[:, i]] for i in range(3))
        inward = (numpy.cross(b - a, c - a) * (self.centres[owners] - a)).sum(axis=1) > 0.0
        faces[inward] = faces[inward][:, ::-1]
        return faces, owners

    def cell_values(self, name):
        return self.result.drawable(name)

    def node_values(self, name):
        return self._means.of(self.cell_values(name))

    def _located(self, start, end, count):
        return locate_on_line(self.points, self.cells, start, end, count)

    def meets_line(self, start, end, count):
        """As `Sheet.meets_line`."""
        return bool((self._located(start, end, count).simplex >= 0).any())

    def on_line(self, names, start, end, count, own_values=False):
        """As `Sheet.on_line`."""
        located = self._located(start, end, count)
        inside = located.simplex >= 0
        values = []
        for name in names:
            at = self.cell_values(name)[located.simplex]
            if not own_values:
                corners = self.node_values(name)[self.cells[located.simplex]]
                at = _inside_value(corners, at, located.shares)
            values.append(numpy.where(inside, at, numpy.nan))
        return values

    def slice(self, axis, position):
        """The section by the plane where coordinate `axis` (0, 1, 2) has the value `position`."""
        return Slice(self, axis, position)


def _inside_value(corners, own, shares):
    """The field in a tetrahedron cut from its centre to its sides: linear between corners and centre."""
    return (corners * shares).sum(axis=1) + 4.0 * shares.min(axis=1) * (own - corners.mean(axis=1))


class Slice(Sheet):
    """A section through a solid; each polygon is the cut of one tetrahedron."""

    def __init__(self, solid, axis, position):
        self.solid = solid
        self.axis = axis
        self.position = position
        self._others = [i for i in range(3) if i != axis]
        points, polygons = self._cut()
        super().__init__(points, polygons, tuple(AXES[i] for i in self._others))
        corners = solid.points[solid.cells[self._owners]]
        centres = numpy.insert(self.centres, axis, position, axis=1)
        self._shares = barycentric(corners, centres)

    def _cut(self):
        low, high = (bound[self.axis] for bound in self.solid.bounds())
        if not low <= self.position <= high:
            raise ViewError(
                f"{self.solid.result.path}: expected a slice with {AXES[self.axis]} from {low:g} to {high:g}, "
                f"found {self.position:g}"
            )
        height = self.solid.points[:, self.axis] - self.position
        height[numpy.abs(height) < 1e-9 * (high - low)] = 0.0
        # A face in the plane belongs to the cell below it; at the lowest plane there is none below.
        above = height > 0.0 if self.position <= low + 1e-9 * (high - low) else height >= 0.0
        met = numpy.flatnonzero(above[self.solid.cells].any(axis=1) & ~above[self.solid.cells].all(axis=1))
        if not len(met):
            raise self._without_cells("a gap in the mesh")
        order = numpy.argsort(~above[self.solid.cells[met]], axis=1, kind="stable")
        cells = numpy.take_along_axis(self.solid.cells[met], order, axis=1)
        count = above[cells].sum(axis=1)
        ends = numpy.concatenate([cells[count == n][:, _CUT_EDGES[n]] for n in (1, 2, 3)])
        self._owners = numpy.concatenate([met[count == n] for n in (1, 2, 3)])
        return self._merge(ends, height)

    def _without_cells(self, found):
        place = f"{AXES[self.axis]} = {self.position:g}"
        return ViewError(f"{self.solid.result.path}: expected cells at {place}, found {found}")

    def _merge(self, ends, height):
        """Points and polygons from the edges (polygons, 4, 2) that the plane cuts."""
        # An edge that only touches the plane at a node stands for this node.
        for here, there in ((0, 1), (1, 0)):
            touching = height[ends[:, :, here]] == 0.0
            ends[:, :, there] = numpy.where(touching, ends[:, :, here], ends[:, :, there])
        low, high = ends.min(axis=2), ends.max(axis=2)
        keys, polygons = numpy.unique(low * len(height) + high, return_inverse=True)
        self._low, self._high = numpy.divmod(keys, len(height))
        fall = height[self._low] - height[self._high]
        self._share = numpy.where(fall == 0.0, 0.0, height[self._low] / numpy.where(fall == 0.0, 1.0, fall))
        points = self._between(self.solid.points)[:, self._others]
        polygons = polygons.reshape(-1, 4)
        polygons, kept = _without_flat_ones(points, polygons)
        if not len(polygons):
            raise self._without_cells("only edges or corners of the mesh")
        self._owners = self._owners[kept]
        used = numpy.unique(polygons)
        self._low, self._high, self._share = self._low[used], self._high[used], self._share[used]
        return points[used], numpy.searchsorted(used, polygons)

    def _between(self, values):
        share = self._share.reshape(-1, *[1] * (values.ndim - 1))
        return (1.0 - share) * values[self._low] + share * values[self._high]

    def cell_values(self, name):
        return self.solid.cell_values(name)[self._owners]

    def vertex_values(self, name):
        nodes = self.solid.node_values(name)
        corners = nodes[self.solid.cells[self._owners]]
        centres = _inside_value(corners, self.cell_values(name), self._shares)
        return numpy.concatenate([self._between(nodes), centres])

    def in_plane(self):
        return tuple("uvw"[i] for i in self._others)


def _without_flat_ones(points, polygons):
    """(polygons, which were kept): those without an area go; a quadrilateral with two equal corners is a triangle."""
    a, b, c, d = (points[polygons[:, i]] for i in range(4))
    p, q = c - a, d - b
    area = numpy.abs(p[:, 0] * q[:, 1] - p[:, 1] * q[:, 0])
    triangle = polygons[:, 3] == polygons[:, 0]
    r = b - a
    area = numpy.where(triangle, numpy.abs(r[:, 0] * p[:, 1] - r[:, 1] * p[:, 0]), area)
    kept = area > 1e-14 * numpy.prod(numpy.ptp(points, axis=0))
    polygons = polygons[kept]
    for i in range(3):
        # Equal corners i and i + 1: turn the corner i + 1 to the end, where it repeats the first.
        same = (polygons[:, i] == polygons[:, i + 1]) & (polygons[:, 3] != polygons[:, 0])
        polygons[same] = numpy.roll(polygons[same], -(i + 1), axis=1)
    return polygons, kept
