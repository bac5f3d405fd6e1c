"""Names of boundary zones."""

import unittest

import numpy as np

import mesh_makers
import mesh_zones
from fluent_mesh import MeshError
from mesh_command import table_of


def box(groups):
    source = mesh_makers.rectangle(mesh_makers.even(4, 2.0), mesh_makers.even(4, 1.0), False)
    source.groups = groups(dict(source.groups))
    return source


class Names(unittest.TestCase):
    def names(self, *given):
        table = table_of(box(lambda sides: list(zip(given, sides.values()))))
        return table.zone_names, table.notes

    def test_names_become_single_words_without_brackets_and_quotes(self):
        names, notes = self.names(" hot wall ", 'a(b)"c"', "\t", "Wände")
        self.assertEqual(names, ["hot_wall", "a_b_c", "zone", "Wände"])
        self.assertIn("zone ' hot wall ' is called hot_wall in the file", notes)

    def test_names_that_become_equal_get_numbers(self):
        self.assertEqual(self.names("a b", "a_b", "a  b", "c")[0], ["a_b", "a_b-2", "a_b-3", "c"])

    def test_unnamed_sides_do_not_take_a_name_that_is_given(self):
        def groups(sides):
            return [("left", sides["right"])]

        self.assertEqual(table_of(box(groups)).zone_names, ["left", "left-2", "bottom", "top"])

    def test_round_boundaries_are_walls_though_one_side_touches_the_box(self):
        ring = mesh_makers.ring(1.0, 2.0, 2, 6, False)
        ring.groups = []
        self.assertEqual(table_of(ring).zone_names, ["wall", "wall-2"])

    def channel(self, cells):
        """A wavy channel without groups, straight at its ends."""
        source = mesh_makers.rectangle(mesh_makers.even(40, 4.0), mesh_makers.even(cells, 1.0), False)
        source.groups = []
        x, y = source.points.T
        source.points = np.stack([x, y + 0.1 * np.sin(9.0 * x) + 0.2 * np.sin(np.pi * x) ** 2 * np.sign(y - 0.5)], 1)
        return source

    def sizes(self, source):
        table = table_of(source)
        return list(zip(table.zone_names, np.bincount(table.zone[table.c1 < 0]).tolist()))

    def test_flat_ends_of_a_wavy_channel_are_sides(self):
        self.assertEqual(self.sizes(self.channel(6)), [("left", 6), ("right", 6), ("wall", 80)])

    def test_few_faces_on_a_side_are_no_flat_end(self):
        self.assertEqual(self.sizes(self.channel(2)), [("wall", 84)])

    def test_ends_that_cover_little_of_a_side_are_part_of_the_wall(self):
        source = self.channel(6)
        source.points[:, 1] += 3.0 * source.points[:, 0] * (4.0 - source.points[:, 0])
        self.assertEqual(self.sizes(source), [("wall", 92)])

    def test_flat_ends_of_a_round_body_in_space_are_sides(self):
        source = mesh_makers.cube((8, 8, 6), (2.0, 2.0, 3.0), 0.0)
        source.groups = []
        x, y = source.points.T[:2] - 1.0
        # The square of the cross-section becomes a disc.
        source.points[:, 0], source.points[:, 1] = x * np.sqrt(1.0 - y**2 / 2.0), y * np.sqrt(1.0 - x**2 / 2.0)
        self.assertEqual([name for name, _ in self.sizes(source)], ["back", "front", "wall"])

    def test_points_that_no_cell_uses_do_not_move_the_sides(self):
        for point in ((9.0, 9.0), (np.nan, np.nan)):
            source = box(lambda sides: [])
            source.points = np.concatenate([source.points, [point]])
            self.assertEqual(table_of(source).zone_names, list(mesh_zones.SIDES[:4]))

    def test_more_zones_than_the_program_holds_are_refused(self):
        def groups(count):
            line = mesh_makers.rectangle(mesh_makers.even(count, 1.0), mesh_makers.even(2, 1.0), False)
            sides = dict(line.groups)
            named = [(f"z{k}", face[None]) for k, face in enumerate(sides.pop("bottom"))]
            line.groups = [("rest", np.concatenate(list(sides.values())))] + named
            return line

        self.assertEqual(len(table_of(groups(99)).zone_names), 100)
        with self.assertRaisesRegex(MeshError, "has 101 boundary zones, and the program holds 100"):
            table_of(groups(100))


class Links(unittest.TestCase):
    def test_everything_tied_together_gets_its_lowest_number(self):
        a, b = np.array([7, 3, 5, 9]), np.array([3, 1, 6, 8])
        self.assertEqual(mesh_zones.linked(10, a, b).tolist(), [0, 1, 2, 1, 4, 5, 5, 1, 8, 8])

    def test_long_chains_in_any_order(self):
        order = np.random.default_rng(1).permutation(1000)
        label = mesh_zones.linked(1000, order[:-1], order[1:])
        self.assertTrue((label == 0).all())


if __name__ == "__main__":
    unittest.main()
