"""Files for other viewers, read back with VTK and meshio and compared with a plain reading of the originals."""

import unittest
import xml.etree.ElementTree

import meshio
import numpy
import view_data
import vtk
from vtk.util.numpy_support import vtk_to_numpy

RESULTS = ("mixed_600.dat", "melt_0.677596.dat", "cube_60.dat")
VTK_KINDS = {("2D", 3): vtk.VTK_TRIANGLE, ("2D", 4): vtk.VTK_QUAD, ("3D", 4): vtk.VTK_TETRA}


def read_vtu(path):
    reader = vtk.vtkXMLUnstructuredGridReader()
    reader.SetFileName(str(path))
    reader.Update()
    return reader.GetOutput()


def arrays_of(data):
    return {data.GetArrayName(i): vtk_to_numpy(data.GetArray(i)) for i in range(data.GetNumberOfArrays())}


def corners_of(grid, cell):
    ids = grid.GetCell(cell).GetPointIds()
    return [ids.GetId(i) for i in range(ids.GetNumberOfIds())]


class Exports(unittest.TestCase):
    def converted(self, command, name, ending):
        folder = view_data.folder_with(self, name)
        done = view_data.run(command, folder / name)
        out = folder / (name[:-4] + ending)
        self.assertEqual((done.returncode, done.stderr, done.stdout), (0, "", f"{out}\n"))
        return out

    def check_points(self, found, points):
        flat = [list(point) + [0.0] * (3 - len(point)) for point in points]
        numpy.testing.assert_array_equal(found, flat)


class Vtu(Exports):
    def test_vtk_reads_true_cells_fields_and_parameters_in_double_precision(self):
        for name in RESULTS:
            grid = read_vtu(self.converted("vtu", name, ".vtu"))
            points, cells, fields = view_data.plain_reading(view_data.DATA / name)
            self.check_points(vtk_to_numpy(grid.GetPoints().GetData()), points)
            self.assertEqual(grid.GetPoints().GetData().GetDataTypeAsString(), "double")
            self.assertEqual([corners_of(grid, i) for i in range(grid.GetNumberOfCells())], cells)
            dimension = f"{len(points[0])}D"
            kinds = [grid.GetCellType(i) for i in range(len(cells))]
            self.assertEqual(kinds, [VTK_KINDS[dimension, len(cell)] for cell in cells])
            found = arrays_of(grid.GetCellData())
            velocity = found.pop("velocity")
            self.assertEqual(list(found), list(fields))
            for key, values in fields.items():
                self.assertEqual(found[key].dtype, numpy.float64)
                self.assertEqual(found[key].tolist(), values)
            expected = [fields["u"], fields["v"], fields.get("w", [0.0] * len(cells))]
            numpy.testing.assert_array_equal(velocity, numpy.transpose(expected))

    def test_parameters_are_field_data(self):
        grid = read_vtu(self.converted("vtu", "mixed_600.dat", ".vtu"))
        facts = {key: values.tolist() for key, values in arrays_of(grid.GetFieldData()).items()}
        expected = {
            "Isflow": 1,
            "Isheat": 1,
            "Isnatural": 1,
            "Ra": 10000,
            "Re": 0,
            "Pr": 0.71,
            "dx": 0.153498,
            "CFL": 0.2,
            "dt": 0.0483394,
            "niu": 0.000486484,
            "alpha": 0.000685189,
            "error": 1.01365,
        }
        self.assertEqual(facts, {"TimeValue": [600.0], **{key: [value] for key, value in expected.items()}})

    def test_meshio_reads_the_same(self):
        for name in RESULTS:
            mesh = meshio.read(self.converted("vtu", name, ".vtu"))
            points, cells, fields = view_data.plain_reading(view_data.DATA / name)
            self.check_points(mesh.points, points)
            self.assertEqual([row for block in mesh.cells for row in block.data.tolist()], cells)
            for key, values in fields.items():
                self.assertEqual(numpy.concatenate(mesh.cell_data[key]).tolist(), values)
            if "Ra" in mesh.field_data:
                self.assertEqual(mesh.field_data["TimeValue"].tolist(), [float(name[:-4].split("_")[1])])

    def test_series_names_the_files_of_a_run_in_order_with_their_times(self):
        for names, times in (
            (("mixed_600.dat", "mixed_0.dat", "mixed_100.dat"), [0.0, 100.0, 600.0]),
            (("melt_0.677596.dat", "melt_0.dat", "melt_0.271039.dat"), [0.0, 0.271039, 0.677596]),
        ):
            folder = view_data.folder_with(self, *names)
            done = view_data.run("vtu", folder / names[0], "--run", "-o", folder / "out")
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            series = folder / "out" / (names[0].split("_")[0] + ".pvd")
            sets = xml.etree.ElementTree.parse(series).getroot().findall("Collection/DataSet")
            self.assertEqual([float(one.get("timestep")) for one in sets], times)
            for one, time in zip(sets, times):
                facts = arrays_of(read_vtu(series.parent / one.get("file")).GetFieldData())
                self.assertEqual(facts["TimeValue"].tolist(), [time])

    def test_single_file_takes_the_name_given_and_makes_no_series(self):
        folder = view_data.folder_with(self, "cube_60.dat")
        done = view_data.run("vtu", folder / "cube_60.dat", "-o", folder / "other.vtu")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(sorted(path.name for path in folder.iterdir()), ["cube_60.dat", "other.vtu"])

    def test_folder_may_have_a_files_ending(self):
        folder = view_data.folder_with(self, "cube_60.dat")
        (folder / "out.vtu").mkdir()
        done = view_data.run("vtu", folder / "cube_60.dat", "-o", folder / "out.vtu")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertTrue((folder / "out.vtu" / "cube_60.vtu").exists())

    def test_numbers_that_are_not_finite_survive(self):
        folder = view_data.folder_with(self)
        lines = (view_data.DATA / "cube_60.dat").read_bytes().split(b"\r\n")
        lines[5 + 81 : 5 + 83] = [b"nan", b"-inf"]
        (folder / "cube_60.dat").write_bytes(b"\r\n".join(lines))
        self.assertEqual(view_data.run("vtu", folder / "cube_60.dat").returncode, 0)
        rho = arrays_of(read_vtu(folder / "cube_60.vtu").GetCellData())["rho"]
        self.assertTrue(numpy.isnan(rho[0]) and rho[1] == -numpy.inf and numpy.isfinite(rho[2:]).all())


class Portable(Exports):
    def test_vtk_reads_the_right_cell_data(self):
        for name in RESULTS:
            reader = vtk.vtkTecplotReader()
            reader.SetFileName(str(self.converted("tecplot", name, "_portable.dat")))
            reader.Update()
            grid = reader.GetOutput().GetBlock(0)
            points, cells, fields = view_data.plain_reading(view_data.DATA / name)
            numpy.testing.assert_allclose(
                vtk_to_numpy(grid.GetPoints().GetData())[:, : len(points[0])], points, rtol=1e-6, atol=1e-7
            )
            # This layout has no triangles: a b c a.
            padded = [cell + cell[:1] if len(cell) == 3 else cell for cell in cells]
            self.assertEqual([corners_of(grid, i) for i in range(grid.GetNumberOfCells())], padded)
            found = arrays_of(grid.GetCellData())
            self.assertEqual(sorted(found), sorted(fields))
            for key, values in fields.items():
                numpy.testing.assert_allclose(found[key], values, rtol=1e-6)

    def test_meshio_reads_the_right_cell_data(self):
        for name in RESULTS:
            mesh = meshio.read(self.converted("tecplot", name, "_portable.dat"))
            points, _, fields = view_data.plain_reading(view_data.DATA / name)
            numpy.testing.assert_array_equal(mesh.points, points)
            self.assertEqual(set(mesh.cell_data), set(fields))
            for key, values in fields.items():
                self.assertEqual(numpy.concatenate(mesh.cell_data[key]).tolist(), values)

    def test_only_the_parameter_lines_and_the_range_change(self):
        for name, changed in (("mixed_600.dat", {1, 2, 3, 4, 5, 6, 10}), ("cube_60.dat", {4})):
            old = (view_data.DATA / name).read_bytes().split(b"\r\n")
            new = self.converted("tecplot", name, "_portable.dat").read_bytes().split(b"\r\n")
            self.assertEqual(len(old), len(new))
            self.assertEqual({i for i, (a, b) in enumerate(zip(old, new)) if a != b}, changed)
            for i in changed & set(range(1, 7)) if len(changed) > 1 else ():
                self.assertEqual(new[i], b"#" + old[i])
        self.assertEqual(new[4], b"VARLOCATION = ([4-8]=CELLCENTERED)")

    def test_own_reader_reads_it_with_its_parameters(self):
        out = self.converted("tecplot", "mixed_600.dat", "_portable.dat")
        first, second = (view_data.run("info", path).stdout for path in (view_data.DATA / "mixed_600.dat", out))
        self.assertIn("Ra = 10000", first)
        self.assertEqual(first.split("\n")[1:], second.split("\n")[1:])


if __name__ == "__main__":
    unittest.main()
