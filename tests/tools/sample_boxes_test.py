"""The boxes of the 3D sample cases: sizes, zones, shapes, order and the moved points."""

import math
import unittest

import fluent_mesh
import sample_boxes
import strict_reader


def parsed(name, cells, **options):
    return strict_reader.parse(fluent_mesh.mesh_bytes(sample_boxes.box_mesh(name, cells, **options), "x"))


def volumes(mesh):
    return [strict_reader.volume(mesh, faces) for faces in strict_reader.tetrahedra(mesh)]


def faces_by_corners(mesh):
    return {frozenset(mesh.points[node - 1] for node in face[:3]) for face in mesh.faces}


class Boxes(unittest.TestCase):
    def test_cubes_become_five_tetrahedra_of_a_third_and_four_sixths(self):
        for cells in (2, 3):
            found = sorted(volumes(parsed("cavity-3d", cells)))
            self.assertEqual(len(found), 5 * cells**3)
            for value, expected in zip(found, [1.0 / 6.0] * 4 * cells**3 + [1.0 / 3.0] * cells**3):
                self.assertAlmostEqual(value, expected, delta=1e-14)

    def test_smallest_face_is_half_a_square_whatever_the_number_of_cells(self):
        for cells in (2, 5):
            mesh = parsed("cavity-3d", cells)
            areas = []
            for *nodes, _, _ in mesh.faces:
                sides = [math.dist(mesh.points[nodes[i] - 1], mesh.points[nodes[i - 1] - 1]) for i in range(3)]
                half = sum(sides) / 2.0
                areas.append(math.sqrt(half * math.prod(half - side for side in sides)))
            self.assertAlmostEqual(min(areas), 0.5, delta=1e-14)

    def test_zones_lie_on_their_sides_and_cover_them(self):
        sides = {
            "cavity-3d": {"lid": (2, 4.0)},
            "heated-cube": {"hot": (0, 0.0), "cold": (0, 4.0)},
            "duct-3d": {"inlet": (0, 0.0), "outlet": (0, 20.0)},
        }
        # Two triangles a square, on as many sides as are left.
        others = {"cavity-3d": ("walls", 5 * 32), "heated-cube": ("adiabatic", 4 * 32), "duct-3d": ("walls", 4 * 160)}
        for name, planes in sides.items():
            mesh = parsed(name, 4)
            zones = dict(mesh.zones)
            for zone, (axis, place) in planes.items():
                faces = zones.pop(zone)
                self.assertEqual(len(faces), 32)
                for *nodes, _, _ in faces:
                    self.assertEqual({mesh.points[node - 1][axis] for node in nodes}, {place})
            self.assertEqual([(zone, len(faces)) for zone, faces in zones.items()], [others[name]])

    def test_moving_walls_come_last_and_heated_walls_first(self):
        self.assertEqual([name for name, _ in parsed("cavity-3d", 2).zones], ["walls", "lid"])
        self.assertEqual([name for name, _ in parsed("heated-cube", 2).zones], ["hot", "cold", "adiabatic"])
        self.assertEqual([name for name, _ in parsed("duct-3d", 2).zones], ["walls", "inlet", "outlet"])

    def test_duct_is_five_heights_long(self):
        mesh = parsed("duct-3d", 2)
        self.assertEqual([max(axis) for axis in zip(*mesh.points)], [10.0, 2.0, 2.0])
        self.assertAlmostEqual(math.fsum(volumes(mesh)), 40.0, delta=1e-12)

    def test_even_numbers_of_cubes_make_mirror_images_about_the_middles(self):
        for axis in range(3):
            mesh = parsed("cavity-3d", 4)
            faces = faces_by_corners(mesh)
            mesh.points = [tuple(4.0 - x if a == axis else x for a, x in enumerate(p)) for p in mesh.points]
            self.assertEqual(faces_by_corners(mesh), faces)

    def test_even_numbers_of_cubes_leave_no_cell_with_three_walls(self):
        for cells, most in ((4, 2), (3, 3)):
            walls = [0] * (5 * cells**3)
            for _, faces in parsed("cavity-3d", cells).zones:
                for *_, c0, _ in faces:
                    walls[c0 - 1] += 1
            self.assertEqual(max(walls), most)

    def test_neighbouring_cells_have_near_numbers(self):
        apart = sorted(c0 - c1 for *_, c0, c1 in parsed("cavity-3d", 16).interior)
        self.assertLessEqual(apart[len(apart) // 2], 8)
        far = 5 * 4**3  # the cells of a block whose records stay close at hand
        self.assertLess(sum(distance > far for distance in apart) / len(apart), 0.15)

    def test_points_are_numbered_as_the_cells_meet_them(self):
        count = 0
        for cell in sample_boxes.box_mesh("duct-3d", 2).cells:
            new = sorted(node for node in cell if node >= count)
            self.assertEqual(new, list(range(count, count + len(new))))
            count += len(new)


class Spacing(unittest.TestCase):
    def test_stretches_each_axis_by_its_own_length(self):
        mesh = parsed("heated-cube", 4, spacing=(0.5, 1.0, 2.25))
        self.assertEqual([max(axis) for axis in zip(*mesh.points)], [2.0, 4.0, 9.0])
        self.assertAlmostEqual(math.fsum(volumes(mesh)), 72.0, delta=1e-11)
        found = [(name, len(faces)) for name, faces in mesh.zones]
        self.assertEqual(found, [("hot", 32), ("cold", 32), ("adiabatic", 128)])

    def test_unusable_lengths_are_refused(self):
        for length in (0.0, -1.0, math.inf, math.nan):
            with self.assertRaisesRegex(fluent_mesh.MeshError, "spacing"):
                sample_boxes.box_mesh("heated-cube", 2, spacing=(1.0, length, 1.0))


class Jitter(unittest.TestCase):
    def test_moves_every_inner_point_and_no_outer_one_by_no_more_than_asked(self):
        still, moved = parsed("cavity-3d", 5), parsed("cavity-3d", 5, jitter=0.1)
        self.assertEqual(moved.faces, still.faces)
        inner = 0
        for there, here in zip(still.points, moved.points):
            inside = all(0.0 < x < 5.0 for x in there)
            inner += inside
            self.assertEqual(here != there, inside)
            self.assertLessEqual(max(abs(a - b) for a, b in zip(here, there)), 0.1 + 1e-9)
        self.assertEqual(inner, 4**3)

    def test_most_allowed_turns_no_cell_over(self):
        still = sample_boxes.box_mesh("cavity-3d", 12)
        moved = sample_boxes.box_mesh("cavity-3d", 12, jitter=0.1666)
        # A cell that turned over would have been numbered the other way round to be positive.
        self.assertEqual(moved.cells, still.cells)

    def test_comes_out_the_same_each_time(self):
        # Figures, not two runs: the bytes must not hang on the machine or the version of the language.
        points = sample_boxes.box_mesh("cavity-3d", 2, jitter=0.1).points
        (inner,) = [point for point in points if all(0.0 < x < 2.0 for x in point)]
        self.assertEqual(inner, (0.926873, 1.069487, 1.052755))

    def test_as_much_as_could_turn_cells_over_is_refused(self):
        for jitter in (1.0 / 6.0, -0.1, math.nan):
            with self.assertRaisesRegex(fluent_mesh.MeshError, "jitter"):
                sample_boxes.box_mesh("cavity-3d", 2, jitter=jitter)


if __name__ == "__main__":
    unittest.main()
