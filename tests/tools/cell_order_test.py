"""Renumbering: neighbours come near each other and nothing else changes."""

import unittest

import numpy as np

import cell_order
import mesh_makers
import mesh_support
import strict_reader
from fluent_mesh import mesh_bytes
from mesh_command import fluent_mesh_of, table_of


def shuffled(source):
    """The same cells and points in an order by chance."""
    generator = np.random.default_rng(3)
    place = generator.permutation(len(source.points))
    source.points = source.points[np.argsort(place)]
    source.cells = {n: generator.permutation(place[nodes]) for n, nodes in source.cells.items()}
    source.groups = [(name, place[faces]) for name, faces in source.groups]
    return source


def square(cells, triangles=False):
    return mesh_makers.rectangle(mesh_makers.even(cells, 1.0), mesh_makers.even(cells, 1.0), triangles)


def shapes(source, order):
    return mesh_support.shapes_of(strict_reader.parse(mesh_bytes(fluent_mesh_of(table_of(source, order)), "x")))


class Curve(unittest.TestCase):
    def test_each_step_along_the_curve_goes_to_a_neighbour(self):
        for axes, bits in ((2, 4), (3, 3)):
            side = 1 << bits
            places = np.stack(np.meshgrid(*[np.arange(side)] * axes), axis=axes).reshape(-1, axes).astype(float)
            keys = cell_order.curve_keys(places, bits)
            self.assertEqual(sorted(keys), list(range(side**axes)))
            steps = np.abs(np.diff(places[np.argsort(keys)], axis=0)).sum(axis=1)
            self.assertTrue((steps == 1.0).all())

    def test_points_in_one_place_are_no_trouble(self):
        self.assertEqual(len(set(cell_order.curve_keys(np.ones((3, 2))))), 1)


class Order(unittest.TestCase):
    def test_shuffled_meshes_are_put_in_order(self):
        for source in (shuffled(square(70, True)), shuffled(mesh_makers.cube((12, 12, 12), (1.0, 1.0, 1.0), 0.0))):
            before = cell_order.far_share(table_of(source, "keep"))
            table = table_of(source, "auto")
            self.assertGreater(before, 0.3)
            self.assertLess(cell_order.far_share(table), 0.1)
            self.assertIn("cells were renumbered so that neighbours have near numbers", table.notes)

    def test_mesh_in_a_kind_order_is_left_alone(self):
        self.assertEqual(table_of(square(70), "auto").notes, [])

    def test_renumbering_changes_no_cell_and_no_zone(self):
        for source in (shuffled(square(9, True)), shuffled(mesh_makers.cube((3, 2, 2), (1.0, 1.0, 1.0), 0.1))):
            self.assertEqual(shapes(source, "curve"), shapes(source, "keep"))

    def test_keeping_the_order_keeps_the_numbers(self):
        source = shuffled(square(5))
        table = table_of(source, "keep")
        self.assertEqual([set(c) for c in table.cells.tolist()], [set(c) for c in source.cells[4].tolist()])
        self.assertEqual(table.points.tolist(), source.points.tolist())


if __name__ == "__main__":
    unittest.main()
