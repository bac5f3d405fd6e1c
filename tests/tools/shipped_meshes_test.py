"""The meshes in the cases' folders: what the generator writes, readable to the letter, small."""

import math
import unittest

import make_sample_meshes
import strict_reader

CASES = make_sample_meshes.CASES
LIMIT = 1 << 20
AREAS = {
    "cavity": 1.0,
    "heated-cavity": 1.0,
    "channel": 6.0,
    "annulus": math.pi * (3.0**2 - 0.9**2),
    "melting-slab": 5.0,
    "melting-cavity": 1.0,
}
ZONES = {
    "cavity": ["bottom", "left", "right", "lid"],
    "heated-cavity": ["left", "right", "bottom", "top"],
    "channel": ["bottom", "top", "inlet", "outlet"],
    "annulus": ["inner", "outer"],
    "melting-slab": ["left", "right", "bottom", "top"],
    "melting-cavity": ["left", "right", "bottom", "top"],
}


class ShippedMeshes(unittest.TestCase):
    def each(self):
        for name, shape, cells, triangles in make_sample_meshes.SHIPPED:
            with self.subTest(mesh=name):
                yield CASES / name, shape, cells, triangles

    def test_every_mesh_in_the_folders_is_one_that_the_generator_knows(self):
        there = sorted(str(path.relative_to(CASES).as_posix()) for path in CASES.rglob("*.msh"))
        self.assertEqual(there, sorted(name for name, *_ in make_sample_meshes.SHIPPED))

    def test_structured_meshes_are_byte_for_byte_what_the_generator_writes(self):
        for path, shape, cells, triangles in self.each():
            if not triangles:
                # No assertEqual: it would print two whole files.
                self.assertTrue(path.read_bytes() == make_sample_meshes.mesh_file(shape, cells, False))

    def test_cells_close_have_positive_areas_and_fill_the_domain(self):
        for path, shape, _, triangles in self.each():
            mesh = strict_reader.parse(path.read_bytes())
            self.assertEqual(set(mesh.cell_codes), {1 if triangles else 3})
            polygons = strict_reader.cell_polygons(mesh)
            self.assertEqual({len(polygon) for polygon in polygons}, {3 if triangles else 4})
            areas = [strict_reader.area(mesh, polygon) for polygon in polygons]
            self.assertGreater(min(areas), 0.0)
            # Straight edges cut a little off the outer circle and add a little at the inner one.
            tolerance = 0.02 * AREAS[shape] if shape == "annulus" else 1e-12
            self.assertAlmostEqual(math.fsum(areas), AREAS[shape], delta=tolerance)

    def test_every_point_belongs_to_a_cell(self):
        for path, _, _, _ in self.each():
            mesh = strict_reader.parse(path.read_bytes())
            used = {node for face in mesh.faces for node in face[:2]}
            self.assertEqual(used, set(range(1, len(mesh.points) + 1)))

    def test_zones_have_the_names_the_instructions_use(self):
        for path, shape, _, _ in self.each():
            mesh = strict_reader.parse(path.read_bytes())
            self.assertEqual([name for name, _ in mesh.zones], ZONES[shape])

    def test_boundary_points_of_the_annulus_lie_on_the_circles(self):
        for path, shape, _, _ in self.each():
            if shape == "annulus":
                mesh = strict_reader.parse(path.read_bytes())
                for name, radius in (("inner", 0.9), ("outer", 3.0)):
                    for n0, n1, _, _ in dict(mesh.zones)[name]:
                        self.assertAlmostEqual(math.hypot(*mesh.points[n0 - 1]), radius, delta=1e-11)
                        self.assertAlmostEqual(math.hypot(*mesh.points[n1 - 1]), radius, delta=1e-11)

    def test_triangles_are_not_slivers(self):
        for path, _, _, triangles in self.each():
            if triangles:
                mesh = strict_reader.parse(path.read_bytes())
                self.assertGreater(min(map(self.quality, self.corners(mesh))), 0.6)

    def test_neighbouring_triangles_have_near_numbers(self):
        for path, _, _, triangles in self.each():
            if triangles:
                mesh = strict_reader.parse(path.read_bytes())
                apart = sorted(c0 - c1 for _, _, c0, c1 in mesh.interior)
                self.assertLess(apart[len(apart) // 2], 16)

    def test_no_file_of_a_case_is_over_one_mebibyte(self):
        for path in CASES.rglob("*"):
            if path.is_file():
                self.assertLessEqual(path.stat().st_size, LIMIT, path)

    @staticmethod
    def corners(mesh):
        for polygon in strict_reader.cell_polygons(mesh):
            yield [mesh.points[node - 1] for node in polygon]

    @staticmethod
    def quality(corners):
        """1 for an equilateral triangle, 0 for a flat one."""
        (ax, ay), (bx, by), (cx, cy) = corners
        area = 0.5 * ((bx - ax) * (cy - ay) - (by - ay) * (cx - ax))
        squares = (bx - ax) ** 2 + (by - ay) ** 2 + (cx - bx) ** 2 + (cy - by) ** 2 + (ax - cx) ** 2 + (ay - cy) ** 2
        return 4.0 * math.sqrt(3.0) * area / squares


if __name__ == "__main__":
    unittest.main()
