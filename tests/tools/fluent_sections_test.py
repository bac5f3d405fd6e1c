"""Fluent files of layouts other than the program's, converted and opened."""

import pathlib
import re
import unittest

import fluent_mesh
import mesh_support
import sample_boxes
import strict_reader
from mesh_support import OddFluent, run

CASES = pathlib.Path(__file__).resolve().parents[2] / "cases"


def plane_mesh():
    """18 by 3 squares: numbers with letters in hexadecimal."""
    points = [(i / 4.0, j / 4.0) for j in range(4) for i in range(19)]
    cells = [(k, k + 1, k + 20, k + 19) for j in range(3) for i in range(18) for k in [j * 19 + i]]
    cells[7:8] = [cells[7][:3], (cells[7][0], cells[7][2], cells[7][3])]
    zones = ("floor", "rest")
    return fluent_mesh.build_mesh(points, cells, lambda p, q: zones[p[1] + q[1] > 0.0], zones)


def space_mesh():
    return sample_boxes.box_mesh("heated-cube", 2)


class Layouts(mesh_support.MeshTest):
    def compare(self, mesh, options=(), **layout):
        expected = mesh_support.shapes_of(strict_reader.parse(fluent_mesh.mesh_bytes(mesh, "x")))
        path = self.write("odd.cas", OddFluent(mesh, **layout).content())
        parsed, said = self.convert(path, *options)
        self.assertEqual(mesh_support.shapes_of(parsed), expected)
        return said

    def test_no_comments_and_no_node_counts(self):
        self.compare(plane_mesh())
        self.compare(space_mesh())

    def test_upper_case_hexadecimal(self):
        self.assertIn(b" 1A ", OddFluent(plane_mesh(), upper=True).content())
        self.compare(plane_mesh(), upper=True, comments=True)

    def test_mixed_zones_with_a_leading_node_count(self):
        self.compare(plane_mesh(), mixed=True, comments=True)
        self.compare(space_mesh(), mixed=True)

    def test_interior_zone_after_the_boundary(self):
        self.compare(plane_mesh(), interior_at=2)
        self.compare(space_mesh(), interior_at=1)

    def test_several_interior_zones_become_one(self):
        said = self.compare(plane_mesh(), parts=3, interior_at=1)
        self.assertIn("3 interior zones become one", said)

    def test_faces_either_way_round_and_boundary_cells_second(self):
        self.compare(plane_mesh(), turn=True)
        self.compare(space_mesh(), turn=True)

    def test_binary_sections(self):
        self.compare(plane_mesh(), binary=True)
        self.compare(space_mesh(), binary=True, mixed=True)

    def test_carriage_returns(self):
        mesh = plane_mesh()
        path = self.write("dos.msh", fluent_mesh.mesh_bytes(mesh, "x").replace(b"\n", b"\r\n"))
        expected = mesh_support.shapes_of(strict_reader.parse(fluent_mesh.mesh_bytes(mesh, "x")))
        self.assertEqual(mesh_support.shapes_of(self.convert(path)[0]), expected)

    def test_zones_without_names_are_called_by_type_and_number(self):
        path = self.write("odd.msh", OddFluent(plane_mesh(), names=False).content())
        self.assertEqual([name for name, _ in self.convert(path)[0].zones], ["wall-10", "wall-11"])

    def test_names_may_stand_in_the_comments_alone(self):
        text = fluent_mesh.mesh_bytes(plane_mesh(), "x").decode()
        path = self.write("odd.msh", text[: text.index('(0 "Zone Sections")')])
        self.assertEqual([name for name, _ in self.convert(path)[0].zones], ["floor", "rest"])

    def test_zones_and_interior_in_several_sections_are_one_each(self):
        for names in (True, False):
            data = OddFluent(plane_mesh(), names=names, parts=2).content()
            # One face of the last of the boundary zones, and of the second interior zone, in a section of its own.
            for zone in (b"a", b"c"):
                head, first, last, kind, body = re.search(
                    rb"(\(13\(%s) (\w+) (\w+) (\d 2\)\n\(\n)([^)]*\n)\)\)\n" % zone, data).groups()
                one, rest = body.split(b"\n", 1)
                second = b"%x" % (int(first, 16) + 1)
                new = b"%s %s %s %s%s))\n" * 2 % (head, first, first, kind, one, head, second, last, kind, rest)
                data = data.replace(b"%s %s %s %s%s))\n" % (head, first, last, kind, body), new)
            self.assertEqual(data.count(b"(13(c "), 2)
            parsed, said = self.convert(self.write("odd.msh", data))
            sizes = {"floor": 18, "rest": 24} if names else {"wall-11": 18, "wall-12": 24}
            self.assertEqual({name: len(faces) for name, faces in parsed.zones}, sizes)
            self.assertIn("2 interior zones become one", said)

    def test_mark_of_the_order_of_bytes_is_passed_over(self):
        self.convert(self.write("odd.msh", b"\xef\xbb\xbf" + OddFluent(plane_mesh(), comments=True).content()))
        self.convert(self.write("odd.msh", b"\xef\xbb\xbf" + fluent_mesh.mesh_bytes(plane_mesh(), "x")))

    def test_samples_convert_to_themselves(self):
        for name in ("cavity/cavity_32.msh", "annulus/annulus_tri_8.msh", "cavity-3d/cavity_3d_10.msh"):
            self.convert(CASES / name, "--order", "keep")
            # All but the comment in the first line.
            found, expected = (path.read_bytes().split(b"\n", 1)[1] for path in (self.out, CASES / name))
            self.assertEqual(found, expected, name)

    def test_cell_numbers_without_faces_are_closed_up(self):
        mesh = plane_mesh()
        mesh.interior = [(a, b, c0 + 5, c1 + 5) for a, b, c0, c1 in mesh.interior]
        mesh.zones = [(name, [(a, b, c0 + 5, -1) for a, b, c0, _ in faces]) for name, faces in mesh.zones]
        path = self.write("odd.msh", OddFluent(mesh).content())
        self.assertEqual(len(self.convert(path)[0].cell_codes), len(mesh.cells))

    def test_wall_between_cells_gets_two_sides(self):
        mesh = plane_mesh()
        mesh.zones.append(("sheet", mesh.interior[:2]))
        mesh.interior = mesh.interior[2:]
        parsed, said = self.convert(self.write("odd.msh", OddFluent(mesh).content()))
        zones = {name: [face[:2] for face in faces] for name, faces in parsed.zones}
        self.assertEqual(list(zones), ["floor", "rest", "sheet", "sheet-shadow"])
        self.assertEqual({frozenset(face) for face in zones["sheet"]}, {frozenset(f) for f in zones["sheet-shadow"]})
        self.assertIn("sheet: 2 faces between cells, now a wall of two sides", said)


class Refusals(mesh_support.MeshTest):
    def odd(self, change=lambda data: data, mesh=None, **layout):
        return self.write("odd.msh", change(OddFluent(mesh or plane_mesh(), **layout).content()))

    def test_quadrilateral_faces_in_space(self):
        text = "(2 3)(10 (1 1 4 1 3)(0 0 0 1 0 0 1 1 0 0 1 0))(13 (3 1 1 3 4)(1 2 3 4 1 0))(39 (3 wall side)())"
        self.refuse(self.write("odd.msh", text), "zone side has faces of 4 nodes; .* tetrahedra")

    def test_zones_of_several_shapes(self):
        text = "(2 3)(10 (1 1 4 1 3)(0 0 0 1 0 0 1 1 0 0 1 0))(13 (3 1 2 3 0)(3 1 2 3 1 0 4 1 2 3 4 1 0))"
        self.refuse(self.write("odd.msh", text), "zone wall-3 has faces of several shapes")

    def test_cells_without_faces(self):
        self.refuse(self.write("odd.msh", "(2 2)(10 (1 1 3 1 2)(0 0 1 0 0 1))(12 (2 1 1 1 1))"), "holds no faces")

    def test_pentagons_made_of_five_faces(self):
        mesh = fluent_mesh.build_mesh(
            mesh_support.POINTS, mesh_support.QUADS + mesh_support.TRIANGLES, lambda p, q: "all", ("all",)
        )
        # Without the face between them the square and its neighbour are one cell of five sides.
        faces = [tuple(0 if c == 1 else c for c in face[2:]) for face in mesh.interior]
        mesh.interior = [f[:2] + c for f, c in zip(mesh.interior, faces) if c[0] != c[1]]
        mesh.zones = [(n, [f[:2] + (0 if f[2] == 1 else f[2], -1) for f in own]) for n, own in mesh.zones]
        self.refuse(self.odd(mesh=mesh), "1 cell has other shapes .* the first has 5 faces")

    def test_cells_whose_faces_do_not_close(self):
        mesh = plane_mesh()
        (name, faces), *others = mesh.zones
        mesh.zones = [(name, [(faces[0][0], faces[2][1], *faces[0][2:]), *faces[1:]]), *others]
        self.refuse(self.odd(mesh=mesh), "1 cell has faces that do not close")

    def test_faces_without_cells_and_with_one_cell_twice(self):
        mesh = plane_mesh()
        mesh.interior[0] = (*mesh.interior[0][:3], mesh.interior[0][2])
        self.refuse(self.odd(mesh=mesh), "1 faces have the same cell on both sides")
        mesh = plane_mesh()
        mesh.zones[0][1][0] = (*mesh.zones[0][1][0][:2], -1, -1)
        self.refuse(self.odd(mesh=mesh), "1 faces belong to no cell")

    def test_points_that_are_not_there(self):
        mesh = plane_mesh()
        mesh.interior[0] = (500, *mesh.interior[0][1:])
        self.refuse(self.odd(mesh=mesh), "names a point that the file does not hold")

    def test_numbers_too_high_for_the_file(self):
        mesh = plane_mesh()
        mesh.interior[0] = (*mesh.interior[0][:2], 10**9, 0)
        self.refuse(self.odd(mesh=mesh), "names cell 1000000001, and its 130 faces cannot have so many")
        self.refuse(self.odd(lambda data: data.replace(b"(10(1 1 26 ", b"(10(1 3fffffdb 40000000 ")), "names point 1073741824")

    def test_coordinates_beyond_all_bounds_are_refused_in_one_line(self):
        self.refuse(self.odd(lambda data: data.replace(b"0.25 0.0", b"1e300 0.0")), "cell")

    def test_refined_meshes(self):
        self.refuse(self.odd(lambda data: data + b"(59 (1 1 2 3 4)(\n2 1 2\n))\n"), r"refined mesh \(section 59\)")

    def test_other_dimension_than_asked_for(self):
        self.refuse(self.odd(), "is a 2D mesh", "--dimension", "3")

    def test_damage_is_told_with_its_line(self):
        data = OddFluent(plane_mesh()).content()
        self.refuse(self.write("a.msh", data[: len(data) // 2]), r"line \d+: section 13 without its closing")
        self.refuse(self.write("b.msh", data.replace(b"0.25 ", b"0.2x5 ", 1)), r"line 3: something else than numbers")
        data = data.replace(b"0.25 ", b"", 1)
        self.refuse(self.write("c.msh", data), r"line 3: 38 points declared, found 75 numbers")

    def test_every_cut_of_a_file_is_refused_in_one_line_or_read(self):
        """No traceback wherever a file breaks off."""
        data = OddFluent(space_mesh(), comments=True).content()
        for end in range(0, len(data), len(data) // 25):
            path = self.write("cut.msh", data[:end])
            done = run("report", path)
            self.assertNotIn("Traceback", done.stderr)
            if done.returncode:
                self.assertRegex(done.stderr, r"^fluvane-mesh: [^\n]+\n$")


if __name__ == "__main__":
    unittest.main()
