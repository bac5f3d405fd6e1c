"""The command line of the mesh companion, run as a user runs it; its own meshes, opened by the program."""

import math
import os
import pathlib
import stat
import subprocess
import unittest

import mesh_support
import strict_reader
from mesh_support import Opened, run

CASES = pathlib.Path(__file__).resolve().parents[2] / "cases"
SIDES = ["left", "right", "bottom", "top"]


class Make(mesh_support.MeshTest):
    def make(self, shape, *options):
        done = run("make", shape, self.out, *options)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        parsed = strict_reader.parse(self.out.read_bytes())
        mesh_support.shapes_of(parsed)
        opened = Opened(parsed.dimension, self.out)
        self.assertEqual(opened.cells, len(parsed.cell_codes))
        self.assertNotIn("note", done.stdout)
        return parsed, opened

    def names(self, opened):
        return [name for name, _ in opened.zones]

    def test_box(self):
        parsed, opened = self.make("box", "--cells", "6", "4", "--size", "3", "1")
        self.assertEqual(set(parsed.cell_codes), {3})
        self.assertEqual((opened.cells, opened.dx, self.names(opened)), (24, 0.25, SIDES))
        self.assertAlmostEqual(opened.measure, 3.0)
        self.assertEqual([count for _, count in opened.zones], [4, 4, 6, 6])

    def test_box_of_triangles_without_a_preferred_direction(self):
        parsed, opened = self.make("box", "--cells", "4", "--triangles")
        self.assertEqual((parsed.cell_codes, opened.measure), ([1] * 32, 1.0))
        slopes = [(b[0] - a[0]) * (b[1] - a[1]) for a, b in (
            (parsed.points[n0 - 1], parsed.points[n1 - 1]) for n0, n1, *_ in parsed.interior)]
        self.assertEqual((sum(s > 0 for s in slopes), sum(s < 0 for s in slopes)), (8, 8))

    def test_stretched_box(self):
        for fine, widths in (("low", [1, 2, 4]), ("high", [4, 2, 1]), ("both", [1, 4, 1])):
            parsed, opened = self.make("stretched-box", "--cells", "3", "--stretch", "4", "1", "--fine", fine)
            places = sorted({x for x, _ in parsed.points})
            found = [(b - a) * sum(widths) for a, b in zip(places, places[1:])]
            for one, two in zip(found, widths):
                self.assertAlmostEqual(one, two)
            self.assertAlmostEqual(opened.measure, 1.0)

    def test_annulus(self):
        parsed, opened = self.make("annulus", "--radii", "1", "2", "--cells", "4", "40", "--triangles")
        self.assertEqual((opened.cells, opened.zones), (320, [("inner", 40), ("outer", 40)]))
        self.assertAlmostEqual(opened.measure, 0.5 * 40 * math.sin(2 * math.pi / 40) * 3.0)

    def test_cube(self):
        parsed, opened = self.make("cube", "--cells", "3", "2", "2", "--size", "3", "1", "1", "--jitter", "0.1")
        self.assertEqual((opened.cells, self.names(opened)), (60, [*SIDES, "back", "front"]))
        self.assertEqual([count for _, count in opened.zones], [8, 8, 12, 12, 12, 12])
        self.assertAlmostEqual(opened.measure, 3.0)
        self.assertTrue(any(x % 1.0 for x, _, _ in parsed.points))
        self.assertEqual([max(axis) for axis in zip(*parsed.points)], [3.0, 1.0, 1.0])

    def test_channel_with_a_cylinder_is_finer_at_it_and_in_its_wake(self):
        options = ("--cells", "6", "--refine", "6", "--size", "10", "4", "--centre", "2", "2")
        counts = {}
        for wake in ("0", "4"):
            parsed, opened = self.make("channel-cylinder", *options, "--wake", wake)
            counts[wake] = opened.cells
            self.assertEqual(self.names(opened), ["bottom", "top", "cylinder", "inlet", "outlet"])
            around = dict(opened.zones)["cylinder"]
            self.assertAlmostEqual(math.pi / around, 4.0 / 6.0 / 6.0, delta=0.02)
            self.assertAlmostEqual(opened.measure, 40.0 - math.pi / 4.0, delta=0.05)
            ring = [parsed.points[face[0] - 1] for name, faces in parsed.zones if name == "cylinder" for face in faces]
            self.assertTrue(all(abs(math.hypot(x - 2.0, y - 2.0) - 0.5) < 1e-9 for x, y in ring))
        self.assertGreater(counts["4"], 1.2 * counts["0"])

    def test_name_of_the_file_follows_the_shape(self):
        command = [mesh_support.sys.executable, str(mesh_support.TOOL), "make", "box"]
        subprocess.run(command, cwd=self.folder, check=True, capture_output=True)
        self.assertEqual([p.name for p in self.folder.iterdir()], ["box.msh"])

    def test_what_cannot_be_made_is_refused_without_a_file(self):
        for options, reason in (
            (("annulus", "--radii", "2", "1"), "inner radius"),
            (("annulus", "--cells", "2", "2"), "at least 3 cells around"),
            (("stretched-box", "--stretch", "0.5"), "stretching must be at least 1"),
            (("box", "--cells", "1"), "single cell"),
            (("box", "--cells", "2", "3", "4"), "--cells takes one value or 2"),
            (("cube", "--jitter", "0.2"), "below 1/6"),
            (("channel-cylinder", "--radius", "3"), "must lie inside the channel"),
            (("channel-cylinder", "--refine", "0.5"), "must not be larger"),
        ):
            done = run("make", options[0], self.out, *options[1:])
            self.assertEqual(done.returncode, 1, options)
            self.assertRegex(done.stderr, f"^fluvane-mesh: {self.out}: .*{reason}.*\n$")
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_missing_gmsh_is_said_clearly(self):
        (self.folder / "gmsh.py").write_text("raise ImportError('not here')\n")
        path = os.pathsep.join([str(self.folder), os.environ.get("PYTHONPATH", "")])
        done = run("make", "channel-cylinder", self.out, PYTHONPATH=path)
        self.assertEqual(done.returncode, 1)
        self.assertIn("python3-gmsh", done.stderr)
        self.assertNotIn("Traceback", done.stderr)


class CommandLine(mesh_support.MeshTest):
    def test_report_of_a_sample(self):
        done = run("report", CASES / "cavity" / "cavity_32.msh", "--CFL", "0.8", "--Ma", "0")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("cavity_32.msh: 2D\ncells      1024 quadrilaterals\npoints     1089\n", done.stdout)
        self.assertIn("zone       lid: 32 faces, length 1\n", done.stdout)
        self.assertIn(f"time step  {0.8 / 32 / math.sqrt(0.333333):.6g} with", done.stdout)

    def test_report_gives_the_dx_that_the_program_finds(self):
        for name in ("annulus/annulus_tri_8.msh", "cavity-3d/cavity_3d_10.msh"):
            done = run("report", CASES / name)
            dx = next(line.split()[1] for line in done.stdout.splitlines() if line.startswith("dx"))
            self.assertEqual(dx, f"{Opened(3 if '3d' in name else 2, CASES / name).dx:.6g},")

    def test_help_has_examples_for_every_command(self):
        for words in (("convert",), ("report",), ("make",), ("make", "box"), ("make", "stretched-box"),
                      ("make", "annulus"), ("make", "channel-cylinder"), ("make", "cube")):
            done = run(*words, "--help")
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertRegex(done.stdout, f"examples:\n  fluvane-mesh {' '.join(words)}")

    def test_examples_of_the_help_run(self):
        text = run("make", "--help").stdout
        examples = [line.split()[2:] for line in text.splitlines() if line.startswith("  fluvane-mesh make")]
        self.assertEqual(len(examples), 7)
        for words in examples:
            shape, *options = words
            options = options[1:] if options and options[0].endswith(".msh") else options
            done = run("make", shape, self.out, *options)
            self.assertEqual((done.returncode, done.stderr), (0, ""), words)

    def test_wrong_arguments_are_refused_with_a_reason(self):
        for arguments, reason in (
            ((), "required"),
            (("convert", "a.msh"), "OUT.msh"),
            (("make", "box", "--size", "-1", "1"), "not a positive number"),
            (("make", "box", "--cells", "0"), "not a number from 1"),
            (("report", "a.msh", "--CFL", "x"), "invalid"),
        ):
            done = run(*arguments)
            self.assertEqual(done.returncode, 2, arguments)
            self.assertIn(reason, done.stderr)
            self.assertNotIn("Traceback", done.stderr)

    def test_file_is_not_overwritten_by_its_own_conversion(self):
        path = self.write("a.msh", (CASES / "cavity" / "cavity_32.msh").read_bytes())
        done = run("convert", path, path)
        self.assertEqual(done.returncode, 1)
        self.assertIn("choose another name", done.stderr)
        self.assertEqual(path.read_bytes(), (CASES / "cavity" / "cavity_32.msh").read_bytes())

    def test_folder_that_does_not_exist_is_named(self):
        out = self.folder / "missing" / "a.msh"
        for arguments in (("make", "box", out), ("convert", CASES / "cavity" / "cavity_32.msh", out)):
            done = run(*arguments)
            self.assertEqual(done.returncode, 1)
            self.assertIn(str(out.parent), done.stderr)
            self.assertEqual(done.stderr.count("\n"), 1)

    def test_files_are_as_readable_as_the_user_wants_them(self):
        run("make", "box", self.out)
        mask = os.umask(0)
        os.umask(mask)
        self.assertEqual(stat.S_IMODE(self.out.stat().st_mode), 0o666 & ~mask)

    def test_names_in_other_scripts_survive(self):
        text = (CASES / "cavity" / "cavity_32.msh").read_text().replace("lid", "Wände")
        done = run("convert", self.write("a.msh", text), self.out, LC_ALL="C.UTF-8")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("(45 (7 wall Wände)())", self.out.read_text(encoding="utf-8"))
        Opened(2, self.out)

    def shell(self, command, **variables):
        """Runs a line of the shell in which $mesh is the tool; Python buffers its output as it does for users."""
        environment = {key: value for key, value in os.environ.items() if key != "PYTHONUNBUFFERED"} | variables
        line = command.replace("$mesh", f"'{mesh_support.sys.executable}' '{mesh_support.TOOL}'")
        return subprocess.run(["sh", "-c", line], cwd=self.folder, env=environment, capture_output=True, text=True)

    def test_closed_pipe_is_no_error(self):
        for words in (f"report '{CASES}/cavity/cavity_32.msh'", "--help"):
            done = self.shell(f"{{ $mesh {words}; echo $? >code; }} | true")
            self.assertEqual((done.stderr, (self.folder / "code").read_text()), ("", "0\n"), words)

    @unittest.skipUnless(os.path.exists("/dev/full"), "needs a device that is always full")
    def test_full_device_is_told_in_one_line(self):
        for words in (f"report '{CASES}/cavity/cavity_32.msh'", "make box", "--help"):
            for variables in ({}, {"PYTHONUNBUFFERED": "1"}):
                done = self.shell(f"$mesh {words} >/dev/full", **variables)
                self.assertEqual((done.returncode, done.stderr.count("\n")), (1, 1), done.stderr)
                self.assertRegex(done.stderr, "^fluvane-mesh: standard output: No space left")
        done = self.shell("$mesh make box /dev/full")
        self.assertEqual((done.returncode, done.stderr.count("\n")), (1, 1), done.stderr)
        self.assertRegex(done.stderr, "^fluvane-mesh: /dev/full: No space left")

    @unittest.skipUnless(hasattr(os, "mkfifo"), "needs pipes with names")
    def test_mesh_into_a_pipe_that_nobody_reads_to_its_end_is_told(self):
        os.mkfifo(self.folder / "pipe")
        done = self.shell("head -c 10 pipe >/dev/null & $mesh make box pipe --cells 200")
        self.assertEqual((done.returncode, done.stderr.count("\n")), (1, 1), done.stderr)
        self.assertRegex(done.stderr, "^fluvane-mesh: pipe: Broken pipe")

    def test_closed_streams_do_not_stop_the_work(self):
        done = self.shell("$mesh make box out.msh >&-")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        Opened(2, self.out)
        done = self.shell("$mesh report missing.msh 2>&-")
        self.assertEqual((done.returncode, done.stdout), (1, ""))

    def test_interruption_leaves_no_traceback(self):
        (self.folder / "meshio.py").write_text("raise KeyboardInterrupt\n")
        path = os.pathsep.join([str(self.folder), os.environ.get("PYTHONPATH", "")])
        done = run("report", self.write("a.vtu", "x"), PYTHONPATH=path)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (130, "", ""))

    def test_folder_as_output_is_named(self):
        done = run("make", "box", self.folder)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(done.stderr, f"fluvane-mesh: {self.folder}: Is a directory\n")
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_pipe_as_output_stays_a_pipe(self):
        os.mkfifo(self.out)
        done = self.shell("timeout 20 cat out.msh >copy.msh & $mesh make box out.msh; wait")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertTrue(stat.S_ISFIFO(self.out.stat().st_mode))
        Opened(2, self.folder / "copy.msh")

    def test_link_as_output_is_followed(self):
        (self.folder / "other").mkdir()
        self.out.symlink_to("other/real.msh")
        for _ in ("a file that is not there yet", "one that is"):
            done = run("make", "box", self.out)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertTrue(self.out.is_symlink())
            self.assertEqual([p.name for p in (self.folder / "other").iterdir()], ["real.msh"])
        Opened(2, self.folder / "other" / "real.msh")


if __name__ == "__main__":
    unittest.main()
