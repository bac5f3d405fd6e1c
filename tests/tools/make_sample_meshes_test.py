"""The command line of the mesh generator, run as a user runs it."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import strict_reader

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "tools" / "make_sample_meshes.py"


def run(*arguments, **environment):
    return subprocess.run(
        [sys.executable, str(SCRIPT), *arguments], capture_output=True, text=True, env={**os.environ, **environment}
    )


class CommandLine(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_writes_one_mesh_of_the_size_asked_for(self):
        out = self.folder / "file.msh"
        done = run("cavity", "--cells", "20", "--out", str(out))
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(len(strict_reader.parse(out.read_bytes()).cell_codes), 400)

    def test_writes_a_box_with_the_spacing_and_the_jitter_asked_for(self):
        out = self.folder / "file.msh"
        done = run("duct-3d", "--cells", "4", "--spacing", "2", "1", "1", "--jitter", "0.1", "--out", str(out))
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        mesh = strict_reader.parse(out.read_bytes())
        self.assertEqual(len(mesh.cell_codes), 5 * 20 * 4 * 4)
        self.assertEqual([max(axis) for axis in zip(*mesh.points)], [40.0, 4.0, 4.0])
        self.assertTrue(any(x % 2 for x, _, _ in mesh.points))

    def test_box_that_cannot_be_made_is_refused_without_a_file(self):
        out = self.folder / "file.msh"
        for option in (["--jitter", "0.2"], ["--spacing", "1", "0", "1"]):
            done = run("cavity-3d", "--cells", "2", *option, "--out", str(out))
            self.assertEqual(done.returncode, 1)
            self.assertIn(option[0][2:], done.stderr)
            self.assertNotIn("Traceback", done.stderr)
        self.assertFalse(out.exists())

    def test_wrong_arguments_are_refused_with_a_reason(self):
        out = str(self.folder / "file.msh")
        for arguments, reason in (
            (["sphere", "--cells", "4", "--out", out], "invalid choice"),
            (["cavity"], "--cells and --out"),
            (["cavity", "--cells", "1", "--out", out], "at least 2"),
            (["all", "--cells", "8"], "fixed sizes"),
            (["all", "--jitter", "0"], "fixed sizes"),
            (["cavity-3d", "--cells", "4", "--triangles", "--out", out], "2D shapes"),
            (["cavity", "--cells", "4", "--jitter", "0.1", "--out", out], "3D shapes"),
            (["cavity", "--cells", "4", "--spacing", "1", "1", "2", "--out", out], "3D shapes"),
        ):
            done = run(*arguments)
            self.assertEqual(done.returncode, 2, arguments)
            self.assertIn(reason, done.stderr)
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_folder_that_does_not_exist_is_named(self):
        out = self.folder / "missing" / "file.msh"
        done = run("cavity", "--cells", "4", "--out", str(out))
        self.assertEqual(done.returncode, 1)
        self.assertIn(str(out), done.stderr)
        self.assertNotIn("Traceback", done.stderr)

    def test_missing_gmsh_is_said_clearly(self):
        (self.folder / "gmsh.py").write_text("raise ImportError('not here')\n")
        out = self.folder / "file.msh"
        done = run("cavity", "--cells", "4", "--triangles", "--out", str(out), PYTHONPATH=str(self.folder))
        self.assertEqual(done.returncode, 1)
        self.assertIn("python3-gmsh", done.stderr)
        self.assertNotIn("Traceback", done.stderr)
        self.assertFalse(out.exists())

    def test_free_triangles_fill_the_domain(self):
        try:
            import gmsh  # noqa: F401
        except ImportError:
            self.skipTest("Gmsh's Python module is not installed for this interpreter")
        out = self.folder / "file.msh"
        done = run("annulus", "--cells", "4", "--triangles", "--out", str(out))
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        mesh = strict_reader.parse(out.read_bytes())
        self.assertEqual(set(mesh.cell_codes), {1})
        areas = [strict_reader.area(mesh, polygon) for polygon in strict_reader.cell_polygons(mesh)]
        self.assertGreater(min(areas), 0.0)
        self.assertGreater(sum(areas), 24.0)


if __name__ == "__main__":
    unittest.main()
