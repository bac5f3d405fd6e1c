"""The meshes in the cases' folders: what the generator writes, readable to the letter, small."""

import functools
import math
import unittest

import make_sample_meshes
import strict_reader

CASES = make_sample_meshes.CASES
SHIPPED = [(CASES / name, *rest) for name, *rest in make_sample_meshes.SHIPPED]
LIMIT = 1 << 20
LIMIT_3D = 2 << 20
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
# Sides in units of the number of cubes across, and zones with their faces in units of the squares of one side.
SIDES = {"cavity-3d": (1, 1, 1), "heated-cube": (1, 1, 1), "duct-3d": (5, 1, 1)}
ZONES_3D = {
    "cavity-3d": [("walls", 10), ("lid", 2)],
    "heated-cube": [("hot", 2), ("cold", 2), ("adiabatic", 8)],
    "duct-3d": [("walls", 40), ("inlet", 2), ("outlet", 2)],
}


@functools.cache
def parsed(path):
    return strict_reader.parse(path.read_bytes())


class ShippedFiles(unittest.TestCase):
    def test_every_mesh_in_the_folders_is_one_that_the_generator_knows(self):
        there = sorted(str(path.relative_to(CASES).as_posix()) for path in CASES.rglob("*.msh"))
        self.assertEqual(there, sorted(name for name, *_ in make_sample_meshes.SHIPPED))

    def test_meshes_without_free_triangles_are_byte_for_byte_what_the_generator_writes(self):
        for path, shape, cells, triangles in SHIPPED:
            with self.subTest(mesh=path.name):
                if not triangles:
                    # No assertEqual: it would print two whole files.
                    self.assertTrue(path.read_bytes() == make_sample_meshes.mesh_file(shape, cells))

    def test_every_point_belongs_to_a_cell(self):
        for path, *_ in SHIPPED:
            with self.subTest(mesh=path.name):
                mesh = parsed(path)
                used = {node for face in mesh.faces for node in face[: mesh.dimension]}
                self.assertEqual(used, set(range(1, len(mesh.points) + 1)))

    def test_every_face_is_there_once(self):
        for path, *_ in SHIPPED:
            with self.subTest(mesh=path.name):
                mesh = parsed(path)
                self.assertEqual(len({frozenset(face[: mesh.dimension]) for face in mesh.faces}), len(mesh.faces))

    def test_no_file_of_a_case_is_over_one_mebibyte_or_in_three_dimensions_two(self):
        for path in CASES.rglob("*"):
            if path.is_file() and path.suffix in (".msh", ".2Dv", ".3Dv", ".md"):
                limit = LIMIT_3D if path.parent.name in SIDES else LIMIT
                self.assertLessEqual(path.stat().st_size, limit, path)


class ShippedMeshes2D(unittest.TestCase):
    def each(self):
        for path, shape, cells, triangles in SHIPPED:
            if shape in AREAS:
                with self.subTest(mesh=path.name):
                    yield path, shape, cells, triangles

    def test_cells_close_have_positive_areas_and_fill_the_domain(self):
        for path, shape, _, triangles in self.each():
            mesh = parsed(path)
            self.assertEqual(set(mesh.cell_codes), {1 if triangles else 3})
            polygons = strict_reader.cell_polygons(mesh)
            self.assertEqual({len(polygon) for polygon in polygons}, {3 if triangles else 4})
            areas = [strict_reader.area(mesh, polygon) for polygon in polygons]
            self.assertGreater(min(areas), 0.0)
            # Straight edges cut a little off the outer circle and add a little at the inner one.
            tolerance = 0.02 * AREAS[shape] if shape == "annulus" else 1e-12
            self.assertAlmostEqual(math.fsum(areas), AREAS[shape], delta=tolerance)

    def test_zones_have_the_names_the_instructions_use(self):
        for path, shape, _, _ in self.each():
            mesh = parsed(path)
            self.assertEqual([name for name, _ in mesh.zones], ZONES[shape])

    def test_boundary_points_of_the_annulus_lie_on_the_circles(self):
        for path, shape, _, _ in self.each():
            if shape == "annulus":
                mesh = parsed(path)
                for name, radius in (("inner", 0.9), ("outer", 3.0)):
                    for n0, n1, _, _ in dict(mesh.zones)[name]:
                        self.assertAlmostEqual(math.hypot(*mesh.points[n0 - 1]), radius, delta=1e-11)
                        self.assertAlmostEqual(math.hypot(*mesh.points[n1 - 1]), radius, delta=1e-11)

    def test_triangles_are_not_slivers(self):
        for path, _, _, triangles in self.each():
            if triangles:
                mesh = parsed(path)
                self.assertGreater(min(map(self.quality, self.corners(mesh))), 0.6)

    def test_neighbouring_triangles_have_near_numbers(self):
        for path, _, _, triangles in self.each():
            if triangles:
                mesh = parsed(path)
                apart = sorted(c0 - c1 for _, _, c0, c1 in mesh.interior)
                self.assertLess(apart[len(apart) // 2], 16)

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


class ShippedMeshes3D(unittest.TestCase):
    def each(self):
        for path, shape, cells, _ in SHIPPED:
            if shape in SIDES:
                with self.subTest(mesh=path.name):
                    yield parsed(path), shape, cells

    def test_every_mesh_is_of_a_known_shape(self):
        self.assertEqual({shape for _, shape, _, _ in SHIPPED}, {*AREAS, *SIDES})

    def test_cells_close_have_faces_that_point_inwards_and_fill_the_box(self):
        for mesh, shape, cells in self.each():
            volumes = [strict_reader.volume(mesh, faces) for faces in strict_reader.tetrahedra(mesh)]
            counts = [cells * side for side in SIDES[shape]]
            self.assertEqual(len(volumes), 5 * math.prod(counts))
            self.assertGreater(min(volumes), 0.16)
            self.assertAlmostEqual(math.fsum(volumes), math.prod(counts), delta=1e-8)

    def test_boxes_reach_from_the_origin_one_length_unit_a_cube(self):
        for mesh, shape, cells in self.each():
            self.assertEqual([min(axis) for axis in zip(*mesh.points)], [0.0, 0.0, 0.0])
            self.assertEqual([max(axis) for axis in zip(*mesh.points)], [cells * side for side in SIDES[shape]])

    def test_zones_have_the_names_the_instructions_use_and_their_sides_faces(self):
        for mesh, shape, cells in self.each():
            found = [(name, len(faces)) for name, faces in mesh.zones]
            self.assertEqual(found, [(name, share * cells**2) for name, share in ZONES_3D[shape]])

    def test_neighbouring_cells_have_near_numbers(self):
        for mesh, _, _ in self.each():
            apart = sorted(face[3] - face[4] for face in mesh.interior)
            self.assertGreater(apart[0], 0)
            self.assertLessEqual(apart[len(apart) // 2], 8)


if __name__ == "__main__":
    unittest.main()
