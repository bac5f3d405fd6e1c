"""Values between cell centres, along lines, on grids and on slices, where the exact ones are known."""

import unittest

import numpy
import view_data
from fluvane_view.errors import ViewError
from fluvane_view.interpolation import NodeMeans
from fluvane_view.plane_sheet import PlaneResult
from fluvane_view.result_file import read_result
from fluvane_view.solid import Solid


def area_of(sheet):
    """By the triangles from the centres."""
    vertices, triangles, _ = sheet.fans()
    a, b, c = (vertices[triangles[:, i]] for i in range(3))
    p, q = b - a, c - a
    return numpy.abs(p[:, 0] * q[:, 1] - p[:, 1] * q[:, 0]).sum() / 2.0


class Plane(unittest.TestCase):
    def setUp(self):
        self.sheet = PlaneResult(read_result(view_data.DATA / "mixed_600.dat"))
        x, y = self.sheet.centres.T
        self.sheet.result.fields["linear"] = 2.0 * x - 3.0 * y + 1.0

    @staticmethod
    def linear(points):
        return 2.0 * points[..., 0] - 3.0 * points[..., 1] + 1.0

    def test_linear_field_comes_out_exactly_at_inner_nodes(self):
        inner = ~self.sheet.rim_points()
        self.assertEqual(inner.sum(), 25)
        nodes = self.sheet.vertex_values("linear")[: len(self.sheet.points)]
        numpy.testing.assert_allclose(nodes[inner], self.linear(self.sheet.points[inner]), atol=1e-10)

    def test_nothing_lies_outside_the_range_of_the_cells_around(self):
        for name in ("linear", "T", "u", "rho"):
            values = self.sheet.cell_values(name)
            nodes = self.sheet.vertex_values(name)[: len(self.sheet.points)]
            for i, node in enumerate(nodes):
                around = values[(self.sheet.polygons == i).any(axis=1)]
                self.assertTrue(around.min() - 1e-12 <= node <= around.max() + 1e-12)

    def test_mean_stays_within_the_cells_around_where_they_lie_lopsided(self):
        # The weight of the farthest cell would be negative: the others lie nearly all on its side.
        centres = numpy.array([[-0.1, 0.1], [-0.1, -0.1], [5.0, 0.0], [6.0, 0.0]])
        means = NodeMeans(numpy.zeros((1, 2)), numpy.zeros((4, 1), int), centres, numpy.array([False]))
        for cell in range(4):
            mean = means.of(numpy.arange(4) == cell)[0]
            self.assertTrue(0.0 <= mean <= 1.0, (cell, mean))

    def test_line_is_exact_for_a_linear_field_away_from_walls(self):
        start, end = numpy.array([0.25, 0.3]), numpy.array([0.75, 0.7])
        values = self.sheet.on_line(["linear"], start, end, 57)[0]
        numpy.testing.assert_allclose(values, self.linear(numpy.linspace(start, end, 57)), atol=1e-10)

    def test_line_through_a_centre_has_the_cells_own_value_there(self):
        for cell in (0, 17, 59):
            centre = self.sheet.centres[cell]
            values = self.sheet.on_line(["T"], centre - [0.0, 0.01], centre + [0.0, 0.01], 3)[0]
            self.assertAlmostEqual(values[1], self.sheet.cell_values("T")[cell], delta=1e-12)

    def test_line_is_continuous_from_wall_to_wall(self):
        values = self.sheet.on_line(["T"], numpy.array([0.0, 0.43]), numpy.array([1.0, 0.43]), 20001)[0]
        self.assertTrue(numpy.isfinite(values).all())
        # The field falls by about 0.8 from 0 to 1: no step of a 20000th may be more than a few times that share.
        self.assertLess(numpy.abs(numpy.diff(values)).max(), 1e-3)

    def test_own_values_are_those_of_the_cell_around(self):
        start, end = numpy.array([0.01, 0.43]), numpy.array([0.99, 0.43])
        values = self.sheet.on_line(["T"], start, end, 50, own_values=True)[0]
        own = self.sheet.cell_values("T")
        self.assertTrue(numpy.isin(values, own).all())
        self.assertEqual(values[0], own[numpy.argmin(numpy.abs(self.sheet.centres - [0.08, 0.43]).sum(axis=1))])

    def test_line_beyond_the_mesh_is_nan_there_alone(self):
        values = self.sheet.on_line(["T"], numpy.array([-1.0, 0.5]), numpy.array([2.0, 0.5]), 301)[0]
        self.assertEqual(numpy.flatnonzero(numpy.isfinite(values)).tolist(), list(range(100, 201)))

    def test_grid_agrees_with_lines(self):
        xs, ys = numpy.linspace(-0.1, 1.1, 25), numpy.linspace(0.0, 1.0, 7)
        grid = self.sheet.on_grid(["T"], xs, ys)[0]
        self.assertEqual(grid.shape, (7, 25))
        for y, row in zip(ys, grid):
            line = self.sheet.on_line(["T"], numpy.array([xs[0], y]), numpy.array([xs[-1], y]), 25)[0]
            numpy.testing.assert_allclose(row, line, atol=1e-12)
        self.assertTrue(numpy.isnan(grid[:, 0]).all())

    def test_rim_is_that_of_the_unit_square(self):
        edges, at_rim = self.sheet.edges()
        ends = self.sheet.points[edges[at_rim]]
        self.assertAlmostEqual(numpy.linalg.norm(ends[:, 0] - ends[:, 1], axis=1).sum(), 4.0, delta=1e-5)
        self.assertAlmostEqual(area_of(self.sheet), 1.0, delta=1e-5)

    def test_points_without_cells_change_nothing(self):
        result = read_result(view_data.DATA / "mixed_600.dat")
        result.points = numpy.concatenate([[[9.0, 9.0]], result.points])
        result.cells = result.cells + 1
        sheet = PlaneResult(result)
        self.assertEqual(sheet.bounds()[1].tolist(), [1.0, 1.0])
        self.assertEqual(sheet.vertex_values("T").tolist(), self.sheet.vertex_values("T").tolist())


class Space(unittest.TestCase):
    def setUp(self):
        self.solid = Solid(read_result(view_data.DATA / "cube_60.dat"))
        self.solid.result.fields["linear"] = self.linear(self.solid.centres)

    @staticmethod
    def linear(points):
        return points @ numpy.array([2.0, -3.0, 0.5]) + 1.0

    def test_slices_fill_the_section_of_the_box_wherever_they_lie(self):
        for axis in range(3):
            for position in (0.0, 1e-12, 0.3, 1.0, 1.7, 2.0):
                section = self.solid.slice(axis, position)
                self.assertAlmostEqual(area_of(section), 4.0, delta=1e-12, msg=(axis, position))
                edges, at_rim = section.edges()
                ends = section.points[edges[at_rim]]
                self.assertAlmostEqual(numpy.linalg.norm(ends[:, 0] - ends[:, 1], axis=1).sum(), 8.0, delta=1e-12)

    def test_slice_between_grid_planes_has_triangles_and_quadrilaterals(self):
        section = self.solid.slice(2, 0.3)
        self.assertTrue(0 < section.is_triangle.sum() < len(section.polygons))

    def test_slice_keeps_the_cells_values_and_the_axes_in_order(self):
        section = self.solid.slice(1, 0.6)
        self.assertEqual((section.axes, section.in_plane()), (("x", "z"), ("u", "w")))
        centres = numpy.insert(section.centres, 1, 0.6, axis=1)
        for centre, value in zip(centres, section.cell_values("T")):
            line = self.solid.on_line(["T"], centre, centre + [1e-9, 0.0, 0.0], 2, own_values=True)[0]
            self.assertEqual(line[0], value)

    def test_values_on_a_slice_are_those_of_lines_through_the_solid(self):
        section = self.solid.slice(2, 0.8)
        vertices, _, _ = section.fans()
        values = section.vertex_values("T")
        self.assertGreater(numpy.ptp(values), 0.1)
        for place, value in zip(numpy.insert(vertices, 2, 0.8, axis=1), values):
            # Lines inwards, so that rounding cannot lead outside.
            inwards = place + 1e-6 * (1.0 - place)
            line = self.solid.on_line(["T"], place, inwards, 2)[0]
            self.assertAlmostEqual(line[1], value, delta=1e-5)

    def test_slice_beside_the_mesh_is_refused(self):
        with self.assertRaisesRegex(ViewError, "slice with z from 0 to 2, found 2.5"):
            self.solid.slice(2, 2.5)

    def test_slice_through_a_gap_in_the_mesh_is_refused(self):
        result = read_result(view_data.DATA / "cube_60.dat")
        count = len(result.points)
        result.points = numpy.concatenate([result.points, result.points + [5.0, 0.0, 0.0]])
        result.cells = numpy.concatenate([result.cells, result.cells + count])
        with self.assertRaisesRegex(ViewError, "expected cells at x = 3.5, found a gap"):
            Solid(result).slice(0, 3.5)

    def test_slice_that_meets_only_a_corner_or_an_edge_is_refused(self):
        result = read_result(view_data.DATA / "cube_60.dat")
        result.points = numpy.array([[0.0, 0.0, 0.0], [1.0, 0.0, 0.0], [0.0, 1.0, 2.0], [0.0, -1.0, 3.0]])
        result.cells = numpy.arange(4)[None, :]
        solid = Solid(result)
        for position in (0.0, 3.0):
            with self.assertRaisesRegex(ViewError, f"expected cells at z = {position:g}, found only edges or corners"):
                solid.slice(2, position)
        self.assertGreater(area_of(solid.slice(2, 2.0)), 0.0)

    def test_boundary_is_closed_and_looks_outwards(self):
        faces = self.solid.points[self.solid.boundary]
        self.assertEqual(len(faces), 48)
        normals = numpy.cross(faces[:, 1] - faces[:, 0], faces[:, 2] - faces[:, 0]) / 2.0
        numpy.testing.assert_allclose(normals.sum(axis=0), 0.0, atol=1e-12)
        outwards = (normals * (faces.mean(axis=1) - 1.0)).sum(axis=1)
        self.assertGreater(outwards.min(), 0.0)
        self.assertAlmostEqual(numpy.linalg.norm(normals, axis=1).sum(), 24.0, delta=1e-12)

    def test_faces_of_the_boundary_lie_on_their_cells(self):
        for face, owner in zip(self.solid.boundary, self.solid.boundary_owners):
            self.assertTrue(set(face) <= set(self.solid.cells[owner]))

    def test_line_has_the_cells_own_value_at_a_centre_and_reaches_both_walls(self):
        centre = self.solid.centres[7]
        values = self.solid.on_line(["T"], centre * [0.0, 1.0, 1.0], centre * [0.0, 1.0, 1.0] + [2.0, 0.0, 0.0], 1601)[
            0
        ]
        self.assertTrue(numpy.isfinite(values).all())
        self.assertAlmostEqual(values[round(centre[0] * 800)], self.solid.cell_values("T")[7], delta=1e-3)
        self.assertLess(numpy.abs(numpy.diff(values)).max(), 5e-3)

    def test_linear_field_comes_out_exactly_at_the_inner_node(self):
        at = numpy.flatnonzero((self.solid.points == 1.0).all(axis=1))
        self.assertEqual(len(at), 1)
        self.assertAlmostEqual(self.solid.node_values("linear")[at[0]], self.linear(numpy.ones(3)), delta=1e-9)


if __name__ == "__main__":
    unittest.main()
