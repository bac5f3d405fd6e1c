"""The shipped 2D velocity sets: file rules and moments."""

import pathlib
import unittest
from fractions import Fraction

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "cases" / "Velocity_file"
FLOW_SETS = ("D2Q7.2Dv", "D2Q9.2Dv")
HEAT_SETS = ("D2Q5.2Dv",)
MOST_ROWS = 30
# Whole-number sets are exact. The decimals of the others are doubles: two roundings a product.
ROUNDING = {"D2Q7.2Dv": Fraction(1, 10**15)}


class Row:
    def __init__(self, line):
        x, y, a, b, opposite = line.split()
        self.x, self.y = Fraction(x), Fraction(y)
        self.weight = Fraction(a) / Fraction(b)
        self.opposite = int(opposite)


def rows(name):
    return [Row(line) for line in (FOLDER / name).read_text("ascii").splitlines()]


class VelocityFiles(unittest.TestCase):
    def each(self):
        for name in FLOW_SETS + HEAT_SETS:
            with self.subTest(set=name):
                yield name, rows(name)

    def check_moment(self, name, px, py, expected):
        moment = sum(row.weight * row.x**px * row.y**py for row in rows(name))
        self.assertLessEqual(abs(moment - expected), ROUNDING.get(name, 0), f"{name}: x^{px} y^{py}")

    def test_every_set_in_the_folder_is_tested(self):
        self.assertEqual(sorted(p.name for p in FOLDER.glob("*.2Dv")), sorted(FLOW_SETS + HEAT_SETS))

    def test_every_line_ends_with_one_line_feed_and_none_is_empty(self):
        for name, _ in self.each():
            data = (FOLDER / name).read_bytes()
            self.assertTrue(data.endswith(b"\n"))
            self.assertNotIn(b"\r", data)
            self.assertTrue(all(line.strip() for line in data[:-1].split(b"\n")))

    def test_names_tell_the_number_of_velocities(self):
        for name, table in self.each():
            self.assertEqual(len(table), int(name[3:].split(".")[0]))
            self.assertLessEqual(len(table), MOST_ROWS)

    def test_rest_velocity_comes_first_and_only_there(self):
        for _, table in self.each():
            self.assertEqual([i for i, row in enumerate(table) if row.x == 0 and row.y == 0], [0])

    def test_opposites_are_opposite(self):
        for _, table in self.each():
            for row in table:
                other = table[row.opposite]
                self.assertEqual((other.x, other.y, other.weight), (-row.x, -row.y, row.weight))

    def test_weights_are_positive_and_sum_to_one(self):
        for _, table in self.each():
            self.assertTrue(all(row.weight > 0 for row in table))
            self.assertEqual(sum(row.weight for row in table), 1)

    def test_second_moment_is_a_third_of_the_unit_tensor(self):
        for name, _ in self.each():
            self.check_moment(name, 2, 0, Fraction(1, 3))
            self.check_moment(name, 0, 2, Fraction(1, 3))
            self.check_moment(name, 1, 1, 0)

    def test_odd_moments_vanish(self):
        for name, _ in self.each():
            for order in (1, 3, 5):
                for px in range(order + 1):
                    self.check_moment(name, px, order - px, 0)

    def test_fourth_moment_of_flow_sets_is_isotropic(self):
        for name in FLOW_SETS:
            for px, expected in ((4, Fraction(1, 3)), (3, 0), (2, Fraction(1, 9)), (1, 0), (0, Fraction(1, 3))):
                self.check_moment(name, px, 4 - px, expected)

    def test_conduction_set_is_not_fit_for_flow(self):
        moment = sum(row.weight * row.x**2 * row.y**2 for row in rows("D2Q5.2Dv"))
        self.assertEqual(moment, 0)


if __name__ == "__main__":
    unittest.main()
