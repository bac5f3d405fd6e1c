"""The shipped velocity sets: file rules and moments."""

import itertools
import math
import pathlib
import unittest
from fractions import Fraction

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "cases" / "Velocity_file"
FLOW_SETS = ("D2Q7.2Dv", "D2Q9.2Dv", "D3Q15.3Dv", "D3Q19.3Dv", "D3Q27.3Dv")
HEAT_SETS = ("D2Q5.2Dv",)
MOST_ROWS = 30
# Whole-number sets are exact. The decimals of the others are doubles: two roundings a product.
ROUNDING = {"D2Q7.2Dv": Fraction(1, 10**15)}


class Row:
    def __init__(self, line, axes):
        *velocity, a, b, opposite = line.split()
        if len(velocity) != axes:
            raise AssertionError(f"{line!r} does not hold {axes} components")
        self.velocity = tuple(map(Fraction, velocity))
        self.weight = Fraction(a) / Fraction(b)
        self.opposite = int(opposite)


def axes_of(name):
    return int(name[1])


def rows(name):
    return [Row(line, axes_of(name)) for line in (FOLDER / name).read_text("ascii").splitlines()]


def powers(axes, order):
    """All exponents of the components that add up to an order."""
    return [p for p in itertools.product(range(order + 1), repeat=axes) if sum(p) == order]


def moment(table, exponents):
    return sum(row.weight * math.prod(c**p for c, p in zip(row.velocity, exponents)) for row in table)


class VelocityFiles(unittest.TestCase):
    def each(self):
        for name in FLOW_SETS + HEAT_SETS:
            with self.subTest(set=name):
                yield name, rows(name)

    def check_moments(self, name, order, expected):
        """expected(exponents) is the value that the weighted mean of that product must have."""
        table = rows(name)
        for exponents in powers(axes_of(name), order):
            error = abs(moment(table, exponents) - expected(exponents))
            self.assertLessEqual(error, ROUNDING.get(name, 0), f"{name}: exponents {exponents}")

    def test_every_set_in_the_folder_is_tested(self):
        self.assertEqual(sorted(p.name for p in FOLDER.glob("*.?Dv")), sorted(FLOW_SETS + HEAT_SETS))

    def test_names_end_in_the_dimension_they_begin_with(self):
        for name, _ in self.each():
            self.assertTrue(name.endswith(f".{axes_of(name)}Dv"))

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
            self.assertEqual([i for i, row in enumerate(table) if not any(row.velocity)], [0])

    def test_no_velocity_is_listed_twice(self):
        for _, table in self.each():
            self.assertEqual(len({row.velocity for row in table}), len(table))

    def test_opposites_are_opposite(self):
        for _, table in self.each():
            for row in table:
                other = table[row.opposite]
                self.assertEqual((other.velocity, other.weight), (tuple(-c for c in row.velocity), row.weight))

    def test_weights_are_positive_and_sum_to_one(self):
        for _, table in self.each():
            self.assertTrue(all(row.weight > 0 for row in table))
            self.assertEqual(sum(row.weight for row in table), 1)

    def test_second_moment_is_a_third_of_the_unit_tensor(self):
        for name, _ in self.each():
            self.check_moments(name, 2, lambda p: Fraction(1, 3) if 2 in p else 0)

    def test_odd_moments_vanish(self):
        for name, _ in self.each():
            for order in (1, 3, 5):
                self.check_moments(name, order, lambda p: 0)

    def test_fourth_moment_of_flow_sets_is_isotropic(self):
        """(d_ij d_kl + d_ik d_jl + d_il d_jk) / 9: a third for x x x x, a ninth for x x y y, else nothing."""
        for name in FLOW_SETS:
            self.check_moments(
                name, 4, lambda p: Fraction(1, 3) if 4 in p else Fraction(1, 9) if p.count(2) == 2 else 0
            )

    def test_conduction_set_is_not_fit_for_flow(self):
        self.assertEqual(moment(rows("D2Q5.2Dv"), (2, 2)), 0)

    def test_only_the_full_cube_has_the_sixth_product_of_a_gaussian(self):
        values = {name: moment(rows(name), (2, 2, 2)) for name in FLOW_SETS if axes_of(name) == 3}
        self.assertEqual(values, {"D3Q15.3Dv": Fraction(1, 9), "D3Q19.3Dv": 0, "D3Q27.3Dv": Fraction(1, 27)})


if __name__ == "__main__":
    unittest.main()
