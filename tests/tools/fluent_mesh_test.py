"""Face tables and the layout, on meshes small enough to check by hand."""

import unittest

import fluent_mesh
import strict_reader

# A square on the left, two triangles on the right:
#   3---2---5
#   |   | \ |
#   0---1---4
POINTS = [(0.0, 0.0), (1.0, 0.0), (1.0, 1.0), (0.0, 1.0), (2.0, 0.0), (2.0, 1.0)]
CELLS = [(0, 1, 2, 3), (1, 4, 2), (4, 5, 2)]
ZONES = ("lower", "rest")


def zone_of(p, q):
    return "lower" if p[1] == 0.0 and q[1] == 0.0 else "rest"


def small_mesh():
    return fluent_mesh.build_mesh(POINTS, CELLS, zone_of, ZONES)


class FaceTable(unittest.TestCase):
    def test_interior_faces_come_first_and_zones_in_the_order_asked_for(self):
        parsed = strict_reader.parse(fluent_mesh.mesh_bytes(small_mesh(), "x"))
        self.assertEqual(len(parsed.interior), 2)
        self.assertEqual([(name, len(faces)) for name, faces in parsed.zones], [("lower", 2), ("rest", 4)])

    def test_first_cell_lies_to_the_left_of_the_face(self):
        for cells in (CELLS, [tuple(reversed(cell)) for cell in CELLS]):
            mesh = fluent_mesh.build_mesh(POINTS, cells, zone_of, ZONES)
            for n0, n1, c0, _ in mesh.interior + [f for _, faces in mesh.zones for f in faces]:
                (ax, ay), (bx, by) = POINTS[n0], POINTS[n1]
                cx = sum(POINTS[n][0] for n in mesh.cells[c0]) / len(mesh.cells[c0])
                cy = sum(POINTS[n][1] for n in mesh.cells[c0]) / len(mesh.cells[c0])
                self.assertGreater((bx - ax) * (cy - ay) - (by - ay) * (cx - ax), 0.0)

    def test_last_cell_is_the_first_cell_of_some_interior_face(self):
        mesh = small_mesh()
        self.assertEqual(max(face[2] for face in mesh.interior), len(CELLS) - 1)
        self.assertTrue(all(face[2] > face[3] for face in mesh.interior))

    def test_boundary_faces_have_their_cell_first(self):
        for _, faces in strict_reader.parse(fluent_mesh.mesh_bytes(small_mesh(), "x")).zones:
            for _, _, c0, c1 in faces:
                self.assertGreater(c0, 0)
                self.assertEqual(c1, 0)

    def test_cells_close_and_their_areas_add_up(self):
        parsed = strict_reader.parse(fluent_mesh.mesh_bytes(small_mesh(), "x"))
        areas = [strict_reader.area(parsed, polygon) for polygon in strict_reader.cell_polygons(parsed)]
        self.assertEqual(areas, [1.0, 0.5, 0.5])


class Layout(unittest.TestCase):
    def test_file_of_one_cell_kind_to_the_letter(self):
        mesh = fluent_mesh.build_mesh(POINTS[:4], [(0, 1, 2), (0, 2, 3)], lambda p, q: "all", ("all",))
        expected = """(0 "two triangles")
(0 "Dimension")
(2 2)
(0 "Node Section")
(10 (0 1 4 0 2))
(10 (1 1 4 1 2)
(
0 0
1 0
1 1
0 1
))
(0 "Cells")
(12 (0 1 2 0))
(12 (2 1 2 1 1))
(0 "Faces")
(13 (0 1 5 0))
(0 "Interior faces")
(13 (3 1 1 2 2)(
1 3 2 1
)
)
(0 "Faces of zone all")
(13 (4 2 5 3 2)(
1 2 1 0
2 3 1 0
3 4 2 0
4 1 2 0
)
)
(0 "Zone Sections")
(45 (2 fluid FLUID)())
(45 (3 interior int_FLUID)())
(45 (4 wall all)())
"""
        self.assertEqual(fluent_mesh.mesh_bytes(mesh, "two triangles"), expected.encode())

    def test_mixed_cells_are_listed_one_code_a_cell(self):
        text = fluent_mesh.mesh_bytes(small_mesh(), "x").decode()
        self.assertIn('(12 (2 1 3 1 0)(\n3\n1\n1\n))\n(0 "Faces")\n', text)
        self.assertEqual(strict_reader.parse(text.encode()).cell_codes, [3, 1, 1])

    def test_counts_and_indices_are_lower_case_hexadecimal(self):
        points = [(float(i), float(j)) for j in (0, 1) for i in range(18)]
        cells = [(i, i + 1, i + 19, i + 18) for i in range(17)]
        text = fluent_mesh.mesh_bytes(fluent_mesh.build_mesh(points, cells, lambda p, q: "all", ("all",)), "x").decode()
        self.assertIn("\n(10 (0 1 24 0 2))\n", text)
        self.assertIn("\n(12 (0 1 11 0))\n", text)
        self.assertIn("\n1d b b a\n", text)

    def test_zone_ids_above_nine_are_hexadecimal_before_faces_and_decimal_before_names(self):
        points = [(float(i), float(j)) for j in (0, 1) for i in range(5)]
        cells = [(i, i + 1, i + 6, i + 5) for i in range(4)]
        names = tuple(f"z{i}" for i in range(10))
        mesh = fluent_mesh.build_mesh(points, cells, lambda p, q, left=list(names): left.pop(), names)
        text = fluent_mesh.mesh_bytes(mesh, "x").decode()
        self.assertIn('(0 "Faces of zone z6")\n(13 (a ', text)
        self.assertIn("\n(45 (10 wall z6)())\n", text)
        strict_reader.parse(text.encode())

    def test_coordinates_read_back_as_the_same_numbers(self):
        odd = [(0.1 + 0.2, -1.0 / 3.0), (1e-9, 5e-324), (123456789.123, 1e22), (-0.0, 7.0)]
        mesh = fluent_mesh.FluentMesh(odd, [(0, 1, 2)], [], [])
        start = '(\n'
        text = fluent_mesh.mesh_bytes(mesh, "x").decode()
        lines = text[text.index(start) + 2 : text.index("\n))\n")].split("\n")
        self.assertEqual([tuple(map(float, line.split())) for line in lines], odd)
        self.assertEqual(lines[3], "0 7")

    def test_brackets_in_the_comment_are_refused(self):
        for comment in ("(2 3)", 'a "b"'):
            with self.assertRaises(fluent_mesh.MeshError):
                fluent_mesh.mesh_bytes(small_mesh(), comment)


class Refusals(unittest.TestCase):
    def refuse(self, text, points=POINTS, cells=CELLS, zone=zone_of, zones=ZONES):
        with self.assertRaisesRegex(fluent_mesh.MeshError, text):
            fluent_mesh.build_mesh(points, cells, zone, zones)

    def test_unused_points(self):
        self.refuse("1 points belong to no cell", points=POINTS + [(9.0, 9.0)])

    def test_pentagons(self):
        self.refuse("cell 0 has 5 points", cells=[(0, 1, 4, 5, 3)])

    def test_flat_cells(self):
        self.refuse("cell 0 is flat", cells=[(0, 1, 4)])

    def test_overlapping_cells(self):
        self.refuse("overlap", cells=CELLS + [(0, 1, 2)])

    def test_edges_in_no_known_zone(self):
        self.refuse("unknown zone None", zone=lambda p, q: None)

    def test_zones_without_edges(self):
        self.refuse("'upper' has no edges", zones=ZONES + ("upper",))


class Order(unittest.TestCase):
    def test_points_are_numbered_as_the_cells_meet_them_and_unused_ones_dropped(self):
        points, cells = fluent_mesh.number_points_by_use(POINTS, [(5, 2, 4)])
        self.assertEqual(points, [POINTS[5], POINTS[2], POINTS[4]])
        self.assertEqual(cells, [(0, 1, 2)])

    def test_cells_along_the_curve_touch_the_one_before(self):
        n = 16
        points = [(float(i), float(j)) for j in range(n + 1) for i in range(n + 1)]
        cells = [(k, k + 1, k + n + 2, k + n + 1) for j in range(n) for i in range(n) for k in [j * (n + 1) + i]]
        scattered = sorted(cells, key=lambda cell: (cell[0] * 7919) % 1009)
        ordered = fluent_mesh.sort_along_curve(points, scattered)
        self.assertEqual(sorted(ordered), sorted(cells))
        for one, two in zip(ordered, ordered[1:]):
            self.assertEqual(len(set(one) & set(two)), 2)

    def test_cubes_along_the_curve_touch_the_one_before(self):
        n = 8
        points = [(float(i), float(j), float(k)) for k in range(n + 1) for j in range(n + 1) for i in range(n + 1)]
        corners = [i + j * (n + 1) + k * (n + 1) ** 2 for k in (0, 1) for j in (0, 1) for i in (0, 1)]
        origins = [m for m, point in enumerate(points) if max(point) < n]
        cells = [tuple(origin + corner for corner in corners) for origin in origins]
        scattered = sorted(cells, key=lambda cell: (cell[0] * 7919) % 1009)
        ordered = fluent_mesh.sort_along_curve(points, scattered)
        self.assertEqual(sorted(ordered), sorted(cells))
        for one, two in zip(ordered, ordered[1:]):
            self.assertEqual(len(set(one) & set(two)), 4)


if __name__ == "__main__":
    unittest.main()
