"""The command line of fluvane-view, run as a user runs it."""

import csv
import os
import subprocess
import unittest
from unittest import mock

import numpy
import view_data
from fluvane_view import command, plots
from PIL import Image


def rewrite(path, change, name="mixed_600.dat"):
    """Writes the result file of that name with what `change` makes of the lines behind its header, one a number."""
    lines = (view_data.DATA / name).read_bytes().split(b"\r\n")
    first = next(i for i, line in enumerate(lines) if line.startswith(b"VARLOCATION")) + 1
    path.write_bytes(b"\r\n".join(lines[:first] + change(lines[first:])))


class CommandLine(unittest.TestCase):
    def made(self, folder, *arguments):
        """Runs it in the folder; the names of the files that it made."""
        before = set(os.listdir(folder))
        done = view_data.run(*arguments, cwd=folder)
        self.assertEqual((done.returncode, done.stderr), (0, ""), arguments)
        made = sorted(set(os.listdir(folder)) - before)
        self.assertEqual(sorted(done.stdout.split()), made)
        return made

    def test_file_alone_gives_a_picture_or_a_plot_beside_it(self):
        names = ("mixed_600.dat", "cube_60.dat", "mixed_terminal.txt", "melt_fl.txt")
        folder = view_data.folder_with(self, *names)
        for name in names:
            self.assertEqual(self.made(folder, name), [name[:-4] + ".png"])
            with Image.open(folder / (name[:-4] + ".png")) as picture:
                self.assertGreater(min(picture.size), 500)
                self.assertGreater(len(picture.convert("RGB").getcolors(1 << 24)), 20)

    def test_script_runs_from_any_folder_and_by_a_link(self):
        folder = view_data.folder_with(self, "mixed_600.dat", "mixed_terminal.txt")
        done = view_data.run_script("mixed_600.dat", cwd=folder)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "mixed_600.png\n", ""))
        (folder / "link").symlink_to(view_data.SCRIPT)
        done = subprocess.run([folder / "link", "vtu", "none.dat"], cwd=folder, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertEqual(
            done.stderr, "fluvane-view: none.dat: expected a file that can be read, found: No such file or directory\n"
        )

    def test_files_for_other_viewers_need_no_plotting_package(self):
        folder = view_data.folder_with(self, "mixed_600.dat")
        (folder / "matplotlib.py").write_text("raise ImportError('no plots here')\n")
        environment = {**os.environ, "PYTHONPATH": str(folder)}
        for arguments, code in ((["vtu"], 0), (["tecplot"], 0), (["info"], 0), (["picture"], 1)):
            done = subprocess.run(
                [view_data.SCRIPT, *arguments, "mixed_600.dat"],
                cwd=folder,
                env=environment,
                capture_output=True,
                text=True,
            )
            self.assertEqual(done.returncode, code, done.stderr)
        self.assertEqual(done.stderr, "fluvane-view: no plots here; expected Debian's package python3-matplotlib\n")

    def test_combinations_are_drawn(self):
        folder = view_data.folder_with(self, "melt_0.677596.dat", "cube_60.dat")
        plane = [
            "--show",
            "fl",
            "--style",
            "cells",
            "--vectors",
            "--streamlines",
            "--mesh",
            "--front",
            "--isolines",
            "T",
        ]
        self.made(folder, "picture", "melt_0.677596.dat", *plane, "--zoom", "0", "0.2", "0.5", "1", "-o", "a.png")
        self.made(folder, "picture", "melt_0.677596.dat", "--style", "none", "--mesh", "-o", "b.pdf")
        self.made(folder, "picture", "cube_60.dat", "--slice", "x=0.3", "--streamlines", "--vectors", "-o", "c.svg")
        self.made(folder, "picture", "cube_60.dat", "--boundary", "--mesh", "--dpi", "60", "-o", "d.png")
        with Image.open(folder / "d.png") as picture:
            self.assertLess(max(picture.size), 600)

    def test_several_files_go_into_a_folder(self):
        folder = view_data.folder_with(self, "mixed_0.dat", "mixed_600.dat")
        (folder / "out").mkdir()
        done = view_data.run("picture", "mixed_0.dat", "mixed_600.dat", "-o", "out", cwd=folder)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(sorted(os.listdir(folder / "out")), ["mixed_0.png", "mixed_600.png"])

    def table(self, path):
        lines = path.read_text().split("\n")
        self.assertTrue(lines[0].startswith("# ") and "interpolation: " in lines[1])
        rows = list(csv.DictReader(lines[2:]))
        return {key: numpy.array([float(row[key]) for row in rows]) for key in rows[0]}

    def test_line_gives_a_plot_and_a_table_that_says_how_it_was_made(self):
        folder = view_data.folder_with(self, "mixed_600.dat")
        made = self.made(
            folder, "line", "mixed_600.dat", "--along", "x", "--through", "0", "0.25", "--show", "T", "--count", "11"
        )
        self.assertEqual(made, ["mixed_600_line.csv", "mixed_600_line.png"])
        text = (folder / made[0]).read_text()
        self.assertIn("linear between cell centres and node means", text)
        table = self.table(folder / made[0])
        self.assertEqual(list(table), ["s", "x", "y", "T"])
        numpy.testing.assert_allclose(table["x"], numpy.linspace(0.0, 1.0, 11))
        self.assertEqual(set(table["y"]), {0.25})
        # From the hot wall to the cold one.
        self.assertGreater(table["T"][0], 0.3)
        self.assertLess(table["T"][-1], -0.3)

    def test_line_between_points_in_space(self):
        folder = view_data.folder_with(self, "cube_60.dat")
        ends = ["--from", "-1", "0.5", "0.5", "--to", "2", "0.5", "0.5"]
        self.made(folder, "line", "cube_60.dat", *ends, "--count", "4", "--own-values", "-o", "a.csv")
        table = self.table(folder / "a.csv")
        self.assertEqual(list(table), ["s", "x", "y", "z", "u", "v", "w", "T"])
        self.assertEqual(numpy.isnan(table["T"]).tolist(), [True, False, False, False])
        own = view_data.plain_reading(view_data.DATA / "cube_60.dat")[2]["T"]
        self.assertTrue(set(table["T"][1:]) <= set(own))
        self.assertEqual(table["s"].tolist(), [0.0, 1.0, 2.0, 3.0])

    def test_line_through_cells_without_drawable_values_says_so(self):
        folder = view_data.folder_with(self)
        for value in (b"nan", b"1e200"):
            # Before T stand two coordinates of 49 points and three variables of 60 cells.
            rewrite(folder / "a_0.dat", lambda lines: lines[:278] + [value] * 60 + lines[338:])
            done = view_data.run("line", "a_0.dat", "--show", "T", "u", "-o", "a.svg", cwd=folder)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertEqual((folder / "a.svg").read_text().count("not finite, or beyond 1e100"), 1)
            self.assertIn("near what is not finite or beyond 1e100", (folder / "a.csv").read_text())
            table = self.table(folder / "a.csv")
            self.assertTrue(numpy.isnan(table["T"]).all() and numpy.isfinite(table["u"]).all())
            done = view_data.run("line", "a_0.dat", "--show", "T", "-o", "b.svg", cwd=folder)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            done = view_data.run("line", "a_0.dat", "--show", "T", "--through", "5", "5", cwd=folder)
            self.assertIn("found one beside it", done.stderr)

    def test_dollars_are_letters(self):
        folder = view_data.folder_with(self, "mixed_600.dat")
        name = r"a$\x$_600"
        text = (folder / "mixed_600.dat").read_bytes().replace(b'"rho"', rb'"$\x$"')
        (folder / (name + ".dat")).write_bytes(text)
        for source, copy in (("melt_fl.txt", r"b$\x$_fl.txt"), ("mixed_terminal.txt", r"c$\x$.txt")):
            (folder / copy).write_bytes((view_data.DATA / source).read_bytes())
            self.assertEqual(self.made(folder, copy), [copy[:-4] + ".png"])
        made = self.made(folder, "line", name + ".dat", "--show", r"$\x$")
        self.assertEqual(made, [name + "_line.csv", name + "_line.png"])
        self.made(folder, name + ".dat", "--show", r"$\x$", "-o", "a.svg")
        # Letter by letter, as comments of the file tell.
        self.assertEqual((folder / "a.svg").read_text().count(r"$\x$"), 2)
        self.made(folder, "mixed_600.dat", "--title", r"$\foo$", "-o", "b.svg")
        self.assertIn(r"$\foo$", (folder / "b.svg").read_text())

    def test_history_is_plotted_with_and_without_its_accumulation(self):
        folder = view_data.folder_with(self, "melt_fl.txt", "melt_Tave.txt", "melt_0.dat")
        self.made(folder, "history", "melt_fl.txt", "melt_Tave.txt", "-o", "means.png")
        self.made(folder, "history", "melt_fl.txt", "melt_Tave.txt", "--as-written", "-o", "written.png")
        self.assertNotEqual((folder / "means.png").read_bytes(), (folder / "written.png").read_bytes())

    def test_each_history_is_divided_by_the_area_of_its_own_run(self):
        folder = view_data.folder_with(self, "melt_0.dat")
        for name in ("big[1]_0.dat", "lone_wide_0.dat"):
            # The two coordinates of 49 points, doubled.
            rewrite(folder / name, lambda rows: [b"%g" % (2 * float(x)) for x in rows[:98]] + rows[98:], "melt_0.dat")
        runs = ("melt", "big[1]", "lone")
        for run in runs:
            (folder / f"{run}_fl.txt").write_bytes((view_data.DATA / "melt_fl.txt").read_bytes())
        with mock.patch.object(plots, "means_of_moments", wraps=plots.means_of_moments) as means:
            self.made(folder, "history", *(f"{run}_fl.txt" for run in runs), "-o", "a.png")
        areas = [call.args[1] for call in means.call_args_list]
        numpy.testing.assert_allclose(areas, [1.0, 4.0], rtol=1e-5)

    def test_output_goes_where_a_link_leads_in_the_format_of_its_own_name(self):
        folder = view_data.folder_with(self, "mixed_600.dat")
        for old in (True, False):
            (folder / "link.png").symlink_to("kept")
            if old:
                (folder / "kept").write_text("old")
            done = view_data.run("picture", "mixed_600.dat", "-o", "link.png", cwd=folder)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertTrue((folder / "link.png").is_symlink())
            self.assertEqual((folder / "kept").read_bytes()[:4], b"\x89PNG")
            for name in ("link.png", "kept"):
                (folder / name).unlink()
        self.assertEqual(os.listdir(folder), ["mixed_600.dat"])

    def test_pipe_takes_the_output_and_stays(self):
        folder = view_data.folder_with(self, "mixed_600.dat")
        os.mkfifo(folder / "pipe.dat")
        (folder / "link.dat").symlink_to("pipe.dat")
        for name in ("pipe.dat", "link.dat"):
            end = os.open(folder / "pipe.dat", os.O_RDONLY | os.O_NONBLOCK)
            self.addCleanup(os.close, end)
            done = view_data.run("tecplot", "mixed_600.dat", "-o", name, cwd=folder)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertTrue((folder / "pipe.dat").is_fifo() and (folder / "link.dat").is_symlink())
            self.assertTrue(os.read(end, 60000).startswith(b"TITLE"))
        self.assertEqual(sorted(os.listdir(folder)), ["link.dat", "mixed_600.dat", "pipe.dat"])

    def test_closed_standard_output_keeps_nobody_from_making_files(self):
        folder = view_data.folder_with(self, "mixed_600.dat")

        def run_closed(*arguments):
            words = ["sh", "-c", 'exec "$@" >&-', "sh", view_data.SCRIPT, *arguments]
            return subprocess.run(words, cwd=folder, stderr=subprocess.PIPE, text=True)

        done = run_closed("vtu", "mixed_600.dat")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertTrue((folder / "mixed_600.vtu").exists())
        done = run_closed("info", "mixed_600.dat")
        expected = "fluvane-view: standard output: expected to be open, found it closed\n"
        self.assertEqual((done.returncode, done.stderr), (1, expected))

    def test_full_standard_output_is_named(self):
        folder = view_data.folder_with(self, "mixed_600.dat")
        for arguments in (["info", "mixed_600.dat"], ["tecplot", "mixed_600.dat"], ["--help"]):
            with open("/dev/full", "w") as full:
                done = subprocess.run(
                    [view_data.SCRIPT, *arguments], cwd=folder, stdout=full, stderr=subprocess.PIPE, text=True
                )
            self.assertEqual(done.returncode, 1)
            self.assertEqual(done.stderr, "fluvane-view: standard output: No space left on device\n")

    def test_help_has_examples_for_every_command(self):
        overview = view_data.run("--help")
        self.assertEqual(overview.returncode, 0)
        for command in ("picture", "animate", "line", "residuals", "history", "vtu", "tecplot", "info"):
            self.assertIn(f"  {command} ", overview.stdout)
            done = view_data.run(command, "--help")
            self.assertEqual(done.returncode, 0)
            self.assertIn(f"fluvane-view {command} ", done.stdout.split("example")[1])


class Refusals(unittest.TestCase):
    def refuse(self, folder, arguments, *texts, code=1):
        before = {name: (folder / name).stat().st_mtime_ns for name in os.listdir(folder)}
        done = view_data.run(*arguments, cwd=folder)
        self.assertEqual((done.returncode, done.stdout), (code, ""), (arguments, done.stderr))
        self.assertNotIn("Traceback", done.stderr)
        if code == 1:
            self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
            self.assertTrue(done.stderr.startswith("fluvane-view: "), done.stderr)
        for text in texts:
            self.assertIn(text, done.stderr)
        self.assertEqual({name: (folder / name).stat().st_mtime_ns for name in os.listdir(folder)}, before)

    def test_what_cannot_be_done_is_said_in_one_line_and_leaves_no_file(self):
        folder = view_data.folder_with(
            self, "mixed_0.dat", "mixed_600.dat", "cube_60.dat", "mixed_terminal.txt", "melt_fl.txt"
        )
        lines = (folder / "mixed_600.dat").read_bytes().split(b"\r\n")
        lines[299] = b"warm"
        (folder / "bad_0.dat").write_bytes(b"\r\n".join(lines))
        lines[7] = b'VARIABLES = "X", "Y"'
        (folder / "mesh_0.dat").write_bytes(b"\r\n".join(lines))
        for sub in ("r1", "r2", "out"):
            (folder / sub).mkdir()
            (folder / sub / "mixed_600.dat").symlink_to(folder / "mixed_600.dat")
        (folder / "out" / "mixed_600.dat").unlink()
        same = ["r1/mixed_600.dat", "r2/mixed_600.dat"]
        for arguments, *texts in (
            (["bad_0.dat"], "bad_0.dat:300: expected number 11 of 60 of T", '"warm"'),
            (["vtu", "bad_0.dat"], "bad_0.dat:300:"),
            (["line", "bad_0.dat"], "bad_0.dat:300:"),
            (["none_0.dat"], "none_0.dat", "No such file"),
            (["animate", "none_0.dat"], "none_0.dat"),
            (["picture", "mixed_terminal.txt"], "mixed_terminal.txt:1: expected a line that begins with TITLE"),
            (["tecplot", "mixed_terminal.txt"], "mixed_terminal.txt:1: expected a line that begins with TITLE"),
            (["picture", "mixed_600.dat", "--show", "q"], "rho, u, v, T, H, fl, speed", '"q"'),
            (["picture", "mixed_600.dat", "--isolines", "w"], '"w"'),
            (["picture", "cube_60.dat", "--front"], "expected the variable fl"),
            (["picture", "mixed_600.dat", "--slice", "z=0"], "expected a 3D result"),
            (["picture", "cube_60.dat", "--slice", "z=9"], "slice with z from 0 to 2, found 9"),
            (["mesh_0.dat"], "mesh_0.dat:8: expected variables of the cells after X, Y"),
            (["info", "mesh_0.dat"], "mesh_0.dat:8: expected variables of the cells after X, Y"),
            (["picture", *same, "-o", "out"], "out/mixed_600.png: expected the output of one file there"),
            (["vtu", *same, "-o", "out"], "out/mixed_600.vtu: expected the output of one file there"),
            (["vtu", *same, "-o", "new"], "new/mixed_600.vtu: expected the output of one file there"),
            (["vtu", *same], "expected files of one folder"),
            (["tecplot", *same, "-o", "out"], "out/mixed_600_portable.dat: expected the output of one file there"),
            (["line", *same, "-o", "out"], "out/mixed_600_line.png: expected the output of one file there"),
            (["residuals", "mixed_600.dat", "mixed_600.txt"], "mixed_600.png: expected the output of one file there"),
            (["line", "r.csv", "-o", "r.png"], "r.csv: expected another name for the output"),
            (["picture", "mixed_600.dat", "--range", "2", "1"], "LOW below HIGH", "found 2.0 1.0"),
            (["picture", "mixed_600.dat", "--range", "1", "1.0000000000000002"], "by more than rounding"),
            (["picture", "mixed_600.dat", "--zoom", "0.5", "0", "0.5000000000000001", "1"], "X0 below X1", "rounding"),
            (
                ["picture", "mixed_600.dat", "--zoom", "0.9999999999999999", "0", "2", "1", "--streamlines"],
                "found none of it there",
            ),
            (["picture", "mixed_600.dat", "--zoom", "2", "2", "3", "3", "--vectors"], "found none of it there"),
            (["picture", "mixed_600.dat", "-o", "mixed_600.dat"], "that of an input"),
            (["picture", "mixed_600.dat", "-o", "a.bmp"], ".png, .pdf, .svg"),
            (["picture", "mixed_600.dat", "-o", "none/a.png"], "none/a.png", "No such file"),
            (["picture", "mixed_0.dat", "mixed_600.dat", "-o", "a.png"], "a.png: expected an existing folder"),
            (["animate", "mixed_0.dat", "-o", "a.mp4"], ".gif"),
            (["line", "mixed_600.dat", "-o", "a.bmp"], "a.bmp: expected a name that ends in .png, .pdf, .svg"),
            (["line", "mixed_600.dat", "--from", "0", "0", "--to", "1e-200", "0"], "two different ends"),
            (["line", "mixed_600.dat", "--along", "z"], "found --along z"),
            (["line", "mixed_600.dat", "--through", "1", "2", "3"], "2 coordinates, found 3"),
            (["line", "mixed_600.dat", "--from", "0", "0"], "both --from and --to"),
            (["line", "mixed_600.dat", "--from", "5", "5", "--to", "6", "6"], "(0.0, 0.0) to (1.0, 1.0)"),
            (["line", "mixed_600.dat", "--from", "0", "0", "--to", "0", "0"], "two different ends"),
            (["residuals", "melt_fl.txt"], "melt_fl.txt", "found none"),
            (["history", "mixed_terminal.txt"], "mixed_terminal.txt:1: expected a Fourier number and a value"),
        ):
            with self.subTest(arguments=arguments):
                self.refuse(folder, arguments, *texts)

    def test_wrong_options_are_usage_errors(self):
        folder = view_data.folder_with(self, "mixed_600.dat")
        for arguments, *texts in (
            ([], "required"),
            (["picture"], "FILE"),
            (["picture", "mixed_600.dat", "--slice", "q=1"], "expected x=, y= or z="),
            (["picture", "mixed_600.dat", "--slice", "x=nan"], "expected x=, y= or z="),
            (["picture", "mixed_600.dat", "--colours", "mud"], "colour map"),
            (["picture", "mixed_600.dat", "--dpi", "1"], "20 to 1200"),
            (["picture", "mixed_600.dat", "--levels", "many"], "invalid int value"),
            (["line", "mixed_600.dat", "--count", "1"], "2 to 1000000"),
            (["line", "mixed_600.dat", "--from", "nan", "0", "--to", "1", "1"], "--from: expected a number", '"nan"'),
            (["line", "mixed_600.dat", "--from", "0", "0", "--to", "1", "1e300"], "--to: expected a number", '"1e300"'),
            (["line", "mixed_600.dat", "--through", "0.5", "inf"], "--through: expected a number", '"inf"'),
            (["picture", "mixed_600.dat", "--range", "0", "inf"], "--range: expected a number", '"inf"'),
            (["picture", "mixed_600.dat", "--zoom", "0", "0", "far", "1"], "--zoom: expected a number", '"far"'),
        ):
            with self.subTest(arguments=arguments):
                self.refuse(folder, arguments, *texts, code=2)

    def test_negative_numbers_may_have_an_exponent(self):
        parser = command.make_parser()
        options = parser.parse_args(["picture", "a.dat", "--range", "-1e-3", "-.5E-3", "--zoom", "-1", "-2.5", "1", "1"])
        self.assertEqual((options.range, options.zoom), ([-1e-3, -5e-4], [-1.0, -2.5, 1.0, 1.0]))
        options = parser.parse_args(["line", "a.dat", "--from", "-1.5e+1", "0", "--to", "1", "-2e0"])
        self.assertEqual((options.start, options.end), ([-15.0, 0.0], [1.0, -2.0]))

    def test_what_nobody_expected_is_said_in_one_line(self):
        folder = view_data.folder_with(self, "mixed_600.dat")
        with mock.patch.object(command, "read_result", side_effect=ZeroDivisionError("a\nb")):
            self.refuse(folder, ["info", "mixed_600.dat"], "an error of this program, ZeroDivisionError: a b")


if __name__ == "__main__":
    unittest.main()
