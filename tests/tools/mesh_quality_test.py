"""Figures of the report, against those found by hand."""

import math
import unittest

import numpy as np

import mesh_quality
from mesh_command import table_of
from mesh_support import POINTS, QUADS, TRIANGLES
from mesh_table import CellSource


def plane():
    return table_of(CellSource(np.array(POINTS) * [2.0, 1.0], {4: np.array(QUADS), 3: np.array(TRIANGLES)}))


def space():
    # A corner of the cube and a regular tetrahedron on its slope.
    points = np.array([(0.0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 1, 1)])
    return table_of(CellSource(points, {4: np.array([(0, 1, 2, 3), (1, 2, 3, 4)])}))


def report(table, *step):
    return {line.split()[0]: line for line in mesh_quality.report_lines(table, *(step or (0.4, 0.333333, 0.1)))}


class Figures(unittest.TestCase):
    def test_angles_between_sides(self):
        low, high = mesh_quality.cell_angles(plane())
        sharp = math.degrees(math.atan(0.5))
        np.testing.assert_allclose(low, [90.0, sharp, sharp])
        np.testing.assert_allclose(high, [90.0, 90.0, 90.0])

    def test_angles_between_faces(self):
        low, high = mesh_quality.cell_angles(space())
        regular = math.degrees(math.acos(1.0 / 3.0))
        np.testing.assert_allclose(low, [math.degrees(math.acos(1.0 / math.sqrt(3.0))), regular])
        np.testing.assert_allclose(high, [90.0, regular])

    def test_smallest_face_is_a_length_in_the_plane_and_an_area_in_space(self):
        self.assertEqual(mesh_quality.face_measures(plane()).min(), 1.0)
        self.assertAlmostEqual(mesh_quality.face_measures(space()).min(), 0.5)

    def test_widths_of_the_cells(self):
        table = plane()
        widths = mesh_quality.cell_widths(table, mesh_quality.face_measures(table), np.array([2.0, 1.0, 1.0]))
        np.testing.assert_allclose(widths, [1.0, 2.0 / math.sqrt(5.0), 2.0 / math.sqrt(5.0)])
        table = space()
        widths = mesh_quality.cell_widths(table, mesh_quality.face_measures(table), np.array([1.0 / 6.0, 1.0 / 3.0]))
        np.testing.assert_allclose(widths, [1.0 / math.sqrt(3.0), 2.0 / math.sqrt(3.0)])

    def test_time_step_is_that_of_the_program(self):
        expected = 0.4 * 0.03125 / (math.sqrt(0.333333) + math.sqrt(0.333333) * 0.1)
        self.assertEqual(mesh_quality.time_step(0.03125, 0.4, 0.333333, 0.1), expected)

    def test_dx_is_never_above_10000(self):
        table = plane()
        table.points = table.points * 1e5
        self.assertIn("dx         10000,", report(table)["dx"])


class Report(unittest.TestCase):
    def test_lines(self):
        lines = report(plane())
        self.assertEqual(lines["cells"], "cells      2 triangles, 1 quadrilaterals")
        self.assertEqual(lines["faces"], "faces      8: 2 interior, 6 boundary")
        self.assertEqual(lines["extent"], "extent     x 0 to 4, y 0 to 1")
        self.assertEqual(lines["zone"], "zone       top: 2 faces, length 4")
        self.assertTrue(lines["areas"].startswith("areas      1 to 2 (1 : 2, neighbours up to 1 : 2), together 4"))
        self.assertTrue(lines["angles"].startswith("angles     26.57 to 90 degrees between sides"))
        self.assertEqual(lines["time"], "time step  0.629837 with CFL 0.4, RT 0.333333, Ma 0.1")
        self.assertNotIn("warning", lines)

    def test_too_long_a_step_for_a_sliver_is_told(self):
        table = plane()
        table.points[table.points[:, 0] > 2.0] *= [1.0, 0.01]
        lines = report(table, 1.0, 1.0, 0.0)
        self.assertIn("time step is too long for the thinnest cell", lines["warning"])


if __name__ == "__main__":
    unittest.main()
