"""Cells from faces and faces from cells, on meshes small enough to check by hand."""

import unittest

import numpy as np

import mesh_table
from fluent_mesh import MeshError
from mesh_support import POINTS, QUADS, TRIANGLES
from mesh_table import CellSource, FaceSource, table_from_cells, table_from_faces


def source(cells=None, points=POINTS, groups=()):
    return CellSource(np.array(points), cells or {4: np.array(QUADS), 3: np.array(TRIANGLES)},
                      [(name, np.array(faces)) for name, faces in groups])


def rows(table):
    """All faces as tuples, those of the boundary with the name of their zone."""
    names = [*table.zone_names, None]
    return [(*nodes, c0, c1, names[zone]) for nodes, c0, c1, zone
            in zip(table.nodes.tolist(), table.c0.tolist(), table.c1.tolist(), table.zone.tolist())]


class FromCells(unittest.TestCase):
    def test_faces_are_those_counted_by_hand(self):
        groups = [("low", [(0, 1), (4, 1)]), ("up", [(3, 2)])]
        found = rows(table_from_cells(source(groups=groups)))
        self.assertEqual(found, sorted(found, key=lambda face: face[2:4]))
        self.assertEqual(set(found), {
            (3, 0, 0, -1, None), (0, 1, 0, -1, "low"), (2, 3, 0, -1, "up"), (1, 4, 1, -1, "low"),
            (2, 1, 1, 0, None), (4, 5, 2, -1, None), (5, 2, 2, -1, None), (2, 4, 2, 1, None)})

    def test_quadrilaterals_with_two_corners_in_one_point_become_triangles(self):
        for corner in range(4):
            quads = np.roll(np.array([(1, 4, 2, 2), (4, 5, 2, 2)]), corner, axis=1)
            table = table_from_cells(source({4: np.concatenate([QUADS, quads])}))
            self.assertEqual(table.sizes.tolist(), [4, 3, 3])
            self.assertEqual({frozenset(c) - {-1} for c in table.cells.tolist()},
                             {frozenset(c) for c in QUADS + TRIANGLES})
            self.assertIn("2 quadrilaterals with two corners in one point became triangles", table.notes)

    def test_face_in_two_groups_goes_to_the_first(self):
        table = table_from_cells(source(groups=[("a", [(0, 1)]), ("b", [(1, 0), (1, 4)])]))
        self.assertEqual({face[-1]: face[:2] for face in rows(table) if face[-1]}, {"a": (0, 1), "b": (1, 4)})
        self.assertIn("1 face in several groups, given to the first", table.notes)

    def test_group_faces_of_no_cell_are_left_out(self):
        table = table_from_cells(source(groups=[("a", [(0, 1), (0, 5)])]))
        self.assertEqual([face[:2] for face in rows(table) if face[-1]], [(0, 1)])
        self.assertIn("a: 1 face of no cell, left out", table.notes)

    def test_crossed_quadrilaterals_are_refused(self):
        points = [*POINTS[:3], (0.2, -0.5), *POINTS[4:]]
        with self.assertRaisesRegex(MeshError, "sides that cross or bend in"):
            table_from_cells(source(points=points))

    def test_numbers_of_points_that_are_not_there_are_refused(self):
        corner = np.array([(0.0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1), (1, 1, 1)])
        space = {4: np.array([(0, 1, 2, 3), (1, 2, 3, 4)])}
        for cells, points in (({4: np.array(QUADS), 3: np.array(TRIANGLES)}, POINTS), (space, corner)):
            face = list(range(len(points[0])))
            for number in (-1, -7, len(points), 10**6):
                for size, own in cells.items():
                    spoilt = {**cells, size: own.copy()}
                    spoilt[size][-1, -1] = number
                    with self.assertRaisesRegex(MeshError, "^a cell names a point that the file does not hold"):
                        table_from_cells(source(spoilt, points))
                with self.assertRaisesRegex(MeshError, "^a face of lid names a point that the file does not hold"):
                    table_from_cells(source(cells, points, [("lid", [face, [*face[1:], number]])]))

    def test_long_lists_of_names_are_cut_short(self):
        self.assertEqual(mesh_table.listed("abcdefghij"), "a, b, c, d, e, f, g, h, i, j")
        self.assertEqual(mesh_table.listed("abcdefghijk"), "a, b, c, d, e and 6 more")

    def test_no_cells_at_all(self):
        with self.assertRaisesRegex(MeshError, "holds no triangles or quadrilaterals"):
            table_from_cells(source({3: np.empty((0, 3), int)}))


class FromFaces(unittest.TestCase):
    def test_cells_come_back_from_their_faces(self):
        made = table_from_cells(source(groups=[("all", [(0, 1), (1, 4), (4, 5), (5, 2), (2, 3), (3, 0)])]))
        turned = made.nodes[:, ::-1]
        for nodes in (made.nodes, turned):
            back = table_from_faces(FaceSource(made.points, nodes, made.c0, made.c1, made.zone, [("all", True)]))
            self.assertEqual(rows(back), rows(made))
            self.assertEqual([set(c) for c in back.cells.tolist()], [set(c) for c in made.cells.tolist()])

    def test_tetrahedra_that_share_a_side_and_lie_on_the_same_side_of_it_are_refused(self):
        points = np.array([(0.0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1), (0.1, 0.1, 2)])
        with self.assertRaisesRegex(MeshError, "1 pairs of cells overlap"):
            table_from_cells(CellSource(points, {4: np.array([(0, 1, 2, 3), (0, 1, 2, 4)])}))


class Measures(unittest.TestCase):
    def test_areas_and_volumes(self):
        cells = np.array([(0, 1, 2, 3), (1, 4, 2, -1), (2, 4, 1, -1)])
        self.assertEqual(mesh_table.measures(np.array(POINTS), cells)[0].tolist(), [1.0, 0.5, -0.5])
        corner = np.array([(0.0, 0, 0), (1, 0, 0), (0, 2, 0), (0, 0, 3)])
        self.assertEqual(mesh_table.measures(corner, np.array([(0, 1, 2, 3), (0, 2, 1, 3)]))[0].tolist(), [1.0, -1.0])


if __name__ == "__main__":
    unittest.main()
