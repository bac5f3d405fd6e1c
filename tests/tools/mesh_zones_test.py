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
