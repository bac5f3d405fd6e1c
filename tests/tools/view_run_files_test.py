"""Which files belong to a run and when they were written; residuals and histories."""

import pathlib
import unittest

import numpy
import view_data
from fluvane_view.errors import ViewError
from fluvane_view.run_files import files_of_run, label_of, moments_of, run_name, run_of
from fluvane_view.run_texts import kind_of, means_of_moments, read_history, read_residuals


class Runs(unittest.TestCase):
    def make(self, *names):
        folder = view_data.folder_with(self)
        for name in names:
            (folder / name).touch()
        return folder

    def test_steps_are_ordered_as_numbers(self):
        folder = self.make("a_1000.dat", "a_200.dat", "a_0.dat")
        moments = moments_of(folder.iterdir())
        self.assertEqual([moment.time for moment in moments], [0.0, 200.0, 1000.0])
        self.assertEqual([moment.label for moment in moments], ["step 0", "step 200", "step 1000"])

    def test_fourier_numbers_are_told_from_steps_by_their_decimals_or_exponent(self):
        for name in ("a_0.5.dat", "a_1e-05.dat"):
            moments = moments_of([pathlib.Path("a_0.dat"), pathlib.Path(name)])
            self.assertEqual(moments[0].label, "Fo = 0")
            self.assertEqual(moments[1].time, float(name[2:-4]))

    def test_history_beside_a_file_says_that_its_number_is_a_fourier_number(self):
        folder = self.make("a_1.dat", "a_fl.txt", "b_1.dat")
        self.assertEqual(label_of(folder / "a_1.dat"), "Fo = 1")
        self.assertEqual(label_of(folder / "b_1.dat"), "step 1")

    def test_one_file_stands_for_its_run_and_no_other(self):
        folder = self.make("a_0.dat", "a_10.dat", "a_10_portable.dat", "a_b_0.dat", "a_fl.txt", "a_10.png", "aa_0.dat")
        self.assertEqual(sorted(path.name for path in run_of([folder / "a_0.dat"])), ["a_0.dat", "a_10.dat"])
        self.assertEqual(run_name([folder / "a_b_0.dat"]), "a_b")

    def test_brackets_in_a_runs_name_are_letters(self):
        folder = self.make("a[1]_0.dat", "a[1]_wide_0.dat", "a1_0.dat", "a[1].dat", "a[1]_fl.txt")
        self.assertEqual(files_of_run(folder, "a[1]"), [folder / "a[1]_0.dat"])

    def test_files_without_numbers_keep_their_order(self):
        moments = moments_of(["z.dat", "a.dat"])
        self.assertEqual([(str(m.path), m.time, m.label) for m in moments], [("z.dat", 0.0, ""), ("a.dat", 1.0, "")])


class Texts(unittest.TestCase):
    def write(self, text):
        path = view_data.folder_with(self) / "text.txt"
        path.write_bytes(text.encode())
        return path

    def test_residuals_of_a_terminal_text_the_other_lines_passed_over(self):
        table = read_residuals(view_data.DATA / "mixed_terminal.txt")
        self.assertEqual(table[:, 0].tolist(), [0, 100, 200, 300, 400, 500, 600])
        self.assertEqual(table[1].tolist(), [100.0, 0.0115348, 0.0041844])

    def test_residuals_that_are_not_finite_are_read(self):
        table = read_residuals(self.write("wall\r\nTime Steps=3   error_u=nan   error_T=inf\r\nWrong\r\n"))
        self.assertTrue(numpy.isnan(table[0, 1]) and numpy.isinf(table[0, 2]))

    def test_torn_residual_line_is_named(self):
        path = self.write("x\nTime Steps=3   error_u=0.1\n")
        with self.assertRaisesRegex(ViewError, f'{path}:2: expected "Time Steps=N'):
            read_residuals(path)

    def test_text_without_residuals_is_refused(self):
        with self.assertRaisesRegex(ViewError, "found none"):
            read_residuals(self.write("Compute done\n"))

    def test_history_lines(self):
        table = read_history(view_data.DATA / "melt_fl.txt")
        words = (view_data.DATA / "melt_fl.txt").read_text().split()
        self.assertEqual(table.ravel().tolist(), [float(word) for word in words])

    def test_history_line_that_does_not_fit_is_named(self):
        for text in ("0 1\r\n0.1\r\n", "0 1\n0.1 x\n"):
            path = self.write(text)
            with self.assertRaisesRegex(ViewError, f"{path}:2: expected a"):
                read_history(path)

    def test_means_undo_the_accumulation(self):
        area, means = 2.5, [0.1, 0.4, 0.35, 0.9]
        total, accumulated = 0.0, []
        for k, mean in enumerate(means, 1):
            total = (total + area * mean) / (k * area)
            accumulated.append(total)
        numpy.testing.assert_allclose(means_of_moments(numpy.array(accumulated), area), means, rtol=1e-12)

    def test_means_of_a_run_are_the_area_weighted_means_of_its_result_files(self):
        # The last line but one of the history belongs to step 2400; the files to other steps: interpolate.
        table = read_history(view_data.DATA / "melt_fl.txt")
        means = means_of_moments(table[:, 1], 1.0)
        fl = view_data.plain_reading(view_data.DATA / "melt_0.271039.dat")[2]["fl"]
        # 36 equal cells on the unit square.
        self.assertAlmostEqual(numpy.interp(0.271039, table[:, 0], means), sum(fl) / 36.0, delta=0.002)

    def test_kinds_of_files(self):
        kinds = {"mixed_0.dat": "result", "mixed_terminal.txt": "residuals", "melt_fl.txt": "history"}
        for name, kind in {**kinds, "melt_Tave.txt": "history", "cube_0.dat": "result"}.items():
            self.assertEqual(kind_of(view_data.DATA / name), kind)


if __name__ == "__main__":
    unittest.main()
