"""Reading of the program's result files, and what is said of files that do not fit."""

import pathlib
import unittest

import numpy
import view_data
from fluvane_view.errors import ViewError
from fluvane_view.result_file import read_result

ALL = ("mixed_0.dat", "mixed_600.dat", "melt_0.677596.dat", "cube_60.dat")


class Reading(unittest.TestCase):
    def test_points_cells_and_fields_are_those_of_a_plain_reading(self):
        for name in ALL:
            result = read_result(view_data.DATA / name)
            points, cells, fields = view_data.plain_reading(view_data.DATA / name)
            self.assertEqual(result.points.tolist(), [list(point) for point in points])
            corners = [
                row[:3] if triangle else row for row, triangle in zip(result.cells.tolist(), result.is_triangle())
            ]
            self.assertEqual(corners, cells)
            self.assertEqual({key: values.tolist() for key, values in result.fields.items()}, fields)

    def test_mixed_mesh_has_its_triangles_and_quadrilaterals(self):
        self.assertEqual(read_result(view_data.DATA / "mixed_600.dat").is_triangle().sum(), 48)

    def test_tetrahedra_are_no_triangles(self):
        self.assertEqual(read_result(view_data.DATA / "cube_60.dat").is_triangle().sum(), 0)

    def test_parameters_of_a_plane_file_and_none_of_a_solid_one(self):
        parameters = read_result(view_data.DATA / "melt_0.dat").parameters
        names = ["Isflow", "Isheat", "Isnatural", "Ra", "Re", "Pr", "dx", "CFL", "dt", "niu", "alpha", "error"]
        self.assertEqual(list(parameters), names)
        self.assertEqual((parameters["Ra"], parameters["Pr"], parameters["niu"]), (25000.0, 0.02, 5.16398e-05))
        self.assertEqual(read_result(view_data.DATA / "cube_60.dat").parameters, {})

    def test_speed_is_the_magnitude_in_two_and_three_dimensions(self):
        for name, axes in (("mixed_600.dat", "uv"), ("cube_60.dat", "uvw")):
            result = read_result(view_data.DATA / name)
            squares = sum(result.fields[axis] ** 2 for axis in axes)
            numpy.testing.assert_allclose(result.field("speed") ** 2, squares, rtol=1e-14)


class ChangedFiles(unittest.TestCase):
    def setUp(self):
        self.folder = view_data.folder_with(self)

    def changed(self, name, change):
        path = self.folder / name
        path.write_bytes(change((view_data.DATA / name).read_bytes()))
        return path

    def test_bare_line_feeds_are_accepted(self):
        result = read_result(self.changed("mixed_600.dat", lambda data: data.replace(b"\r\n", b"\n")))
        self.assertEqual(result.fields["T"].tolist(), view_data.plain_reading(view_data.DATA / "mixed_600.dat")[2]["T"])

    def test_numbers_that_are_not_finite_are_read(self):
        def spoil(data):
            lines = data.split(b"\r\n")
            # Eleven lines of header, twice 49 coordinates, 60 densities; u follows.
            lines[11 + 98 + 60 : 11 + 98 + 64] = [b"nan", b"-nan", b"inf", b"-inf"]
            return b"\r\n".join(lines)

        u = read_result(self.changed("mixed_600.dat", spoil)).fields["u"]
        self.assertTrue(numpy.isnan(u[:2]).all())
        self.assertEqual(u[2:4].tolist(), [numpy.inf, -numpy.inf])
        self.assertTrue(numpy.isfinite(u[4:]).all())

    def test_further_variables_are_read_as_fields_of_cells(self):
        def add(data):
            head, body = data.split(b"CELLCENTERED)\r\n")
            lines = body.split(b"\r\n")
            exact = [b"%d" % i for i in range(60)]
            lines[98 + 360 : 98 + 360] = exact
            return head.replace(b'"fl"', b'"fl","Texact"') + b"CELLCENTERED)\r\n" + b"\r\n".join(lines)

        result = read_result(self.changed("mixed_600.dat", add))
        self.assertEqual(list(result.fields), ["rho", "u", "v", "T", "H", "fl", "Texact"])
        self.assertEqual(result.fields["Texact"].tolist(), list(range(60)))

    def refuse(self, name, change, line, *texts):
        path = self.changed(name, change)
        with self.assertRaises(ViewError) as caught:
            read_result(path)
        message = str(caught.exception)
        self.assertTrue(message.startswith(f"{path}:{line}: expected "), message)
        for text in texts:
            self.assertIn(text, message)
        self.assertNotIn("\n", message)

    @staticmethod
    def line_replaced(number, text):
        def change(data):
            lines = data.split(b"\r\n")
            lines[number - 1] = text
            return b"\r\n".join(lines)

        return change

    def test_word_between_the_numbers_is_named_with_its_line(self):
        self.refuse("mixed_600.dat", self.line_replaced(12, b"0.1x"), 12, "number 1 of 49 of X", '"0.1x"')
        # 11 header lines, 98 coordinates, 180 of rho, u and v: then T.
        self.refuse("mixed_600.dat", self.line_replaced(291, b"1.5.2"), 291, "number 2 of 60 of T", '"1.5.2"')

    def test_missing_number_is_named_where_the_file_ends(self):
        def cut(data):
            return b"\r\n".join(data.split(b"\r\n")[:200]) + b"\r\n"

        self.refuse("mixed_600.dat", cut, 201, "number 32 of 60 of u", "the end of the file")

    def test_more_lines_than_declared_are_refused(self):
        self.refuse("mixed_600.dat", lambda data: data + b"1 2 3 1 \r\n", 530, "the end of the file after 60 cells")
        self.refuse("mixed_600.dat", lambda data: data + b"more\r\n", 530, "the end of the file", '"more"')

    def test_corner_beyond_the_points_is_refused(self):
        last = 11 + 98 + 360 + 60
        for text in (b"1 2 50 1 ", b"0 2 3 0 ", b"1 2.5 3 1 ", b"1 2 nan 1 "):
            self.refuse("mixed_600.dat", self.line_replaced(last, text), last, "a point from 1 to 49")

    def test_coordinate_that_is_not_finite_is_refused(self):
        self.refuse("cube_60.dat", self.line_replaced(6 + 27, b"nan"), 33, "a finite coordinate")

    def test_header_lines_are_asked_for_by_name(self):
        self.refuse("mixed_600.dat", lambda data: b"", 1, "TITLE", "the end of the file")
        self.refuse("mixed_600.dat", lambda data: b"\x89PNG" + data, 1, "TITLE")
        self.refuse("mixed_600.dat", self.line_replaced(8, b""), 8, "VARIABLES", "an empty line")
        self.refuse("mixed_600.dat", self.line_replaced(11, b"0"), 11, "VARLOCATION")
        self.refuse("mixed_600.dat", self.line_replaced(5, b"Ra=much"), 5, "a number after Ra=", '"much"')
        self.refuse("mixed_600.dat", self.line_replaced(10, b"DATAPACKING = POINT"), 10, "BLOCK")
        self.refuse("mixed_600.dat", self.line_replaced(9, b"ZONE N=49, E=60, ZONETYPE = FEBRICK"), 9, "FETETRAHEDRON")
        self.refuse("mixed_600.dat", self.line_replaced(8, b'VARIABLES = "A", "Y","T"'), 8, "X, Y")

    def test_empty_mesh_is_said(self):
        text = b"ZONE N=0, E=0, ZONETYPE = FEQUADRILATERAL"
        self.refuse("mixed_600.dat", self.line_replaced(9, text), 9, "at least one point and one cell")

    def test_missing_file_is_named(self):
        with self.assertRaisesRegex(ViewError, "none.dat: expected a file that can be read"):
            read_result(pathlib.Path("none.dat"))


if __name__ == "__main__":
    unittest.main()
