"""Face tables of tetrahedra, on meshes small enough to check by hand."""

import unittest

import fluent_mesh
import strict_reader
import tetrahedra

# Two corners of unit cubes, back to back: cell 0 on the side of +z, cell 1 on the side of -z.
POINTS = [(0.0, 0.0, 0.0), (1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0), (0.0, 0.0, -1.0)]
CELLS = [(0, 1, 2, 3), (0, 1, 2, 4)]
ZONES = ("upper", "lower")


def zone_of(p, q, r):
    return "upper" if p[2] + q[2] + r[2] > 0.0 else "lower"


def small_mesh(cells=CELLS):
    return tetrahedra.build_tetrahedra(POINTS, cells, zone_of, ZONES)


def normal(a, b, c):
    u, v = [tuple(x - y for x, y in zip(p, a)) for p in (b, c)]
    return (u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0])


class FaceTable(unittest.TestCase):
    def test_volume_is_positive_for_a_corner_and_its_neighbours_along_x_y_and_z(self):
        self.assertAlmostEqual(tetrahedra.tetrahedron_volume(POINTS, (0, 1, 2, 3)), 1.0 / 6.0, delta=1e-16)
        self.assertAlmostEqual(tetrahedra.tetrahedron_volume(POINTS, (0, 2, 1, 3)), -1.0 / 6.0, delta=1e-16)

    def test_normals_point_into_the_first_cell_whatever_the_order_of_its_points(self):
        for cells in (CELLS, [(1, 0, 2, 3), (4, 2, 1, 0)], [(3, 2, 0, 1), (2, 4, 0, 1)]):
            mesh = small_mesh(cells)
            faces = mesh.interior + [face for _, zone in mesh.zones for face in zone]
            self.assertEqual(len(faces), 7)
            for *nodes, c0, _ in faces:
                corners = [POINTS[n] for n in nodes]
                centre = [sum(POINTS[n][axis] for n in CELLS[c0]) / 4.0 for axis in range(3)]
                toward = sum(n * (c - p) for n, c, p in zip(normal(*corners), centre, corners[0]))
                self.assertGreater(toward, 0.0)

    def test_last_cell_is_the_first_cell_of_some_interior_face(self):
        self.assertEqual([face[3:] for face in small_mesh().interior], [(1, 0)])

    def test_faces_lie_in_their_zones_with_their_cell_first(self):
        zones = [(name, [face[3:] for face in faces]) for name, faces in small_mesh().zones]
        self.assertEqual(zones, [("upper", [(0, -1)] * 3), ("lower", [(1, -1)] * 3)])

    def test_file_to_the_letter(self):
        expected = """(0 "two tetrahedra")
(0 "Dimension")
(2 3)
(0 "Node Section")
(10 (0 1 5 0 3))
(10 (1 1 5 1 3)
(
0 0 0
1 0 0
0 1 0
0 0 1
0 0 -1
))
(0 "Cells")
(12 (0 1 2 0))
(12 (2 1 2 1 2))
(0 "Faces")
(13 (0 1 7 0))
(0 "Interior faces")
(13 (3 1 1 2 2)(
1 3 2 2 1
)
)
(0 "Faces of zone upper")
(13 (4 2 4 3 2)(
1 4 2 1 0
1 3 4 1 0
2 4 3 1 0
)
)
(0 "Faces of zone lower")
(13 (5 5 7 3 2)(
1 2 5 2 0
1 5 3 2 0
2 3 5 2 0
)
)
(0 "Zone Sections")
(45 (2 fluid FLUID)())
(45 (3 interior int_FLUID)())
(45 (4 wall upper)())
(45 (5 wall lower)())
"""
        data = fluent_mesh.mesh_bytes(small_mesh(), "two tetrahedra")
        self.assertEqual(data.decode(), expected)
        self.assertEqual(len(strict_reader.tetrahedra(strict_reader.parse(data))), 2)


class Refusals(unittest.TestCase):
    def refuse(self, text, points=POINTS, cells=CELLS, zone=zone_of, zones=ZONES):
        with self.assertRaisesRegex(fluent_mesh.MeshError, text):
            tetrahedra.build_tetrahedra(points, cells, zone, zones)

    def test_unused_points(self):
        self.refuse("1 points belong to no cell", points=POINTS + [(9.0, 9.0, 9.0)])

    def test_pyramids(self):
        self.refuse("cell 0 has 5 points", cells=[(0, 1, 2, 3, 4)])

    def test_flat_cells(self):
        self.refuse("cell 1 is flat", cells=[CELLS[0], (0, 3, 4, 1)])

    def test_overlapping_cells(self):
        self.refuse("overlap", points=POINTS + [(0.0, 0.0, 2.0)], cells=CELLS[:1] + [(0, 1, 2, 5)])

    def test_faces_in_no_known_zone(self):
        self.refuse("unknown zone None", zone=lambda p, q, r: None)

    def test_zones_without_faces(self):
        self.refuse("'inner' has no faces", zones=ZONES + ("inner",))


class StrictReading(unittest.TestCase):
    """The second reading must notice what could be wrong, or the tests that lean on it could not fail."""

    def notice(self, text, change):
        parsed = strict_reader.parse(fluent_mesh.mesh_bytes(small_mesh(), "x"))
        change(parsed)
        with self.assertRaisesRegex(AssertionError, text):
            strict_reader.tetrahedra(parsed)

    @staticmethod
    def swap(faces, places):
        faces[0] = tuple(faces[0][place] for place in places)

    def test_notices_a_boundary_face_turned_round(self):
        self.notice("do not close", lambda parsed: self.swap(parsed.zones[0][1], (0, 2, 1, 3, 4)))

    def test_notices_cells_swapped(self):
        self.notice("do not close", lambda parsed: self.swap(parsed.interior, (0, 1, 2, 4, 3)))

    def test_notices_all_faces_turned_round(self):
        def turn(parsed):
            parsed.interior = [(a, c, b, *rest) for a, b, c, *rest in parsed.interior]
            parsed.zones = [(n, [(a, c, b, *rest) for a, b, c, *rest in faces]) for n, faces in parsed.zones]

        self.notice("does not point into", turn)

    def test_notices_a_missing_face(self):
        self.notice("3 faces", lambda parsed: parsed.zones[0][1].pop())


if __name__ == "__main__":
    unittest.main()
