"""The domains of the sample cases: sizes, zones and shapes of their structured meshes."""

import math
import unittest

import fluent_mesh
import sample_shapes
import strict_reader


def parsed(shape, cells):
    return strict_reader.parse(fluent_mesh.mesh_bytes(sample_shapes.structured_mesh(shape, cells), "x"))


def total_area(mesh):
    return math.fsum(strict_reader.area(mesh, polygon) for polygon in strict_reader.cell_polygons(mesh))


class Squares(unittest.TestCase):
    def test_all_cavities_fill_the_unit_square(self):
        for shape in ("cavity", "heated-cavity", "melting-cavity"):
            mesh = parsed(shape, 10)
            self.assertEqual(len(mesh.cell_codes), 100)
            self.assertAlmostEqual(total_area(mesh), 1.0, delta=1e-14)

    def test_zones_lie_on_their_sides(self):
        sides = {"bottom": (1, 0.0), "left": (0, 0.0), "right": (0, 1.0), "lid": (1, 1.0), "top": (1, 1.0)}
        for shape in ("cavity", "heated-cavity", "melting-cavity"):
            mesh = parsed(shape, 7)
            self.assertEqual(len(mesh.zones), 4)
            for name, faces in mesh.zones:
                axis, place = sides[name]
                self.assertEqual(len(faces), 7)
                for n0, n1, _, _ in faces:
                    self.assertEqual((mesh.points[n0 - 1][axis], mesh.points[n1 - 1][axis]), (place, place))

    def test_moving_walls_come_last_and_heated_walls_first(self):
        self.assertEqual([name for name, _ in parsed("cavity", 2).zones], ["bottom", "left", "right", "lid"])
        for shape in ("heated-cavity", "melting-cavity", "melting-slab"):
            self.assertEqual([name for name, _ in parsed(shape, 2).zones], ["left", "right", "bottom", "top"])


class Channel(unittest.TestCase):
    def test_is_six_heights_long_with_square_cells(self):
        mesh = parsed("channel", 4)
        self.assertEqual(len(mesh.cell_codes), 4 * 24)
        self.assertAlmostEqual(total_area(mesh), 6.0, delta=1e-13)
        self.assertEqual(
            [(name, len(faces)) for name, faces in mesh.zones],
            [("bottom", 24), ("top", 24), ("inlet", 4), ("outlet", 4)],
        )
        for name, place in (("inlet", 0.0), ("outlet", 6.0)):
            for n0, n1, _, _ in dict(mesh.zones)[name]:
                self.assertEqual((mesh.points[n0 - 1][0], mesh.points[n1 - 1][0]), (place, place))


class Slab(unittest.TestCase):
    def test_is_five_heights_long_and_heated_at_its_short_side(self):
        mesh = parsed("melting-slab", 4)
        self.assertEqual(len(mesh.cell_codes), 4 * 20)
        self.assertAlmostEqual(total_area(mesh), 5.0, delta=1e-13)
        self.assertEqual(
            [(name, len(faces)) for name, faces in mesh.zones],
            [("left", 4), ("right", 4), ("bottom", 20), ("top", 20)],
        )
        for n0, n1, _, _ in dict(mesh.zones)["left"]:
            self.assertEqual((mesh.points[n0 - 1][0], mesh.points[n1 - 1][0]), (0.0, 0.0))


class Ring(unittest.TestCase):
    def test_boundary_points_lie_on_the_circles(self):
        mesh = parsed("annulus", 8)
        for name, radius in (("inner", 0.9), ("outer", 3.0)):
            faces = dict(mesh.zones)[name]
            self.assertEqual(len(faces), 24)
            for n0, n1, _, _ in faces:
                for node in (n0, n1):
                    self.assertAlmostEqual(math.hypot(*mesh.points[node - 1]), radius, delta=4e-15)

    def test_area_is_that_of_the_ring_of_polygons(self):
        around = 24
        polygons = 0.5 * around * math.sin(2 * math.pi / around) * (3.0**2 - 0.9**2)
        self.assertAlmostEqual(total_area(parsed("annulus", 8)), polygons, delta=1e-13)

    def test_directions_agree_with_the_mathematics_library(self):
        for i in range(48):
            cosine, sine = sample_shapes._direction(sample_shapes.Decimal(i) / 48)
            self.assertAlmostEqual(float(cosine), math.cos(2 * math.pi * i / 48), delta=1e-15)
            self.assertAlmostEqual(float(sine), math.sin(2 * math.pi * i / 48), delta=1e-15)

    def test_points_on_the_axes_are_exact(self):
        points = parsed("annulus", 4).points
        for corner in ((3.0, 0.0), (0.0, 3.0), (-3.0, 0.0), (0.0, -3.0)):
            self.assertIn(corner, points)


if __name__ == "__main__":
    unittest.main()
