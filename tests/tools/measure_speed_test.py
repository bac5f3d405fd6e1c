"""Tables of the performance report from canned results, and the command that writes them."""

import json
import os
import pathlib
import stat
import subprocess
import sys
import tempfile
import unittest

import measure_speed
import speed_tables

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "tools" / "measure_speed.py"
REPORT = SCRIPT.parent.parent / "docs" / "performance.md"


def loop_entry(mesh, n, physics, threads, loop, **values):
    name = f"{mesh}/n:{n}/{physics}/threads:{threads}/{loop}/iterations:1/manual_time"
    standard = {"cells": n * n, "ns/cell": 20.0, "bytes/cell": 424.0,
                "allocated_bytes/cell": 144.0, "GB/s": 21.2, "bandwidth_GB/s": 26.5,
                "reading_GB/s": 53.0, "bound_ns/cell": 16.0, "share_of_bound": 0.8,
                "fastest_ns/cell": 18.0, "fastest_share_of_bound": 0.89}
    return {"name": name, **standard, **values}


def step_entry(name, **values):
    standard = {"cells": 4096.0, "processors": 2.0, "one_ns/cell": 125.0, "all_ns/cell": 62.5,
                "proposed_ns/cell": 80.0, "plain_one_ns/cell": 750.0, "plain_all_ns/cell": 400.0, "ratio_one": 6.0,
                "ratio_all": 6.4, "speedup": 2.0, "proposed/all": 1.25, "label": "squares, flow"}
    return {"name": name, **standard, **values}


def order_entry(name, **values):
    standard = {"cells": 1e6, "processors": 2.0, "one_ns/cell": 200.0, "shuffled_one_ns/cell": 500.0,
                "all_ns/cell": 100.0, "shuffled_all_ns/cell": 300.0, "ratio_one": 2.5, "ratio_all": 3.0,
                "label": "squares, flow"}
    return {"name": name, **standard, **values}


CANNED = {
    "machine_benchmark": [
        {"name": "bandwidth/place:2/threads:1/iterations:1", "label": "memory", "MiB": 256.0, "processors": 1.0,
         "read_GB/s": 12.34, "copy_GB/s": 20.0, "triad_GB/s": 21.0, "streamed_copy_GB/s": 15.0,
         "streamed_triad_GB/s": 0.0},
        {"name": "multiplyAdd/threads:1/iterations:1", "label": "AVX2", "processors": 1.0,
         "separate_Gop/s": 51.2, "fused_Gop/s": 0.0},
    ],
    "step_2d_benchmark": [
        step_entry("stepBesidePlainReference/n:64/physics:0/shape:0/iterations:9/manual_time"),
        order_entry("stepOnShuffledMesh/n:1000/physics:0/shape:0/iterations:3/manual_time"),
    ],
    "step_3d_benchmark": [
        step_entry("stepBesidePlainReference/n:10/velocities:19/physics:1/iterations:9/manual_time",
                   cells=5000.0, label="flow and heat"),
        order_entry("stepOnShuffledMesh/n:10/velocities:27/physics:0/iterations:9/manual_time", label="flow"),
    ],
    "loop_benchmark": [
        loop_entry("squares", n, "flow", threads, loop, **values)
        for n in (64, 1000)
        for threads in (1, 2)
        for loop, values in (("collide", {}), ("all", {"bytes/cell": 3076.0, "ns/cell": 200.0 / threads}))
    ],
    "read_mesh_benchmark": [
        {"name": "quadrilaterals/n:256/threads:1/iterations:3", "cells": 65536.0, "threads": 1.0, "read_s": 0.018,
         "read_fastest_s": 0.017, "read_system_s": 0.004, "read_ns/cell": 277.0, "geometry_s": 0.045,
         "geometry_fastest_s": 0.042, "geometry_system_s": 0.02, "geometry_ns/cell": 684.0, "MB/s": 240.0},
        {"name": "tetrahedra/n:58/velocities:0/shuffled:1/threads:0/iterations:3", "cells": 975560.0, "threads": 2.0,
         "read_s": 0.5,
         "read_fastest_s": 0.4, "read_system_s": 0.1, "read_ns/cell": 512.0, "geometry_s": 1.25,
         "geometry_fastest_s": 0.9, "geometry_system_s": 0.75, "geometry_ns/cell": 1281.0, "MB/s": 210.0},
    ],
    "write_result_benchmark": [
        {"name": "resultFile/n:256/iterations:9/manual_time", "MB": 9.5, "MB/s": 300.0, "wall_MB/s": 280.0,
         "stream_MB/s": 30.0, "ratio": 10.0},
        {"name": "formatting/kind:0/iterations:9/manual_time", "MB/s": 400.0},
    ],
    "memory_benchmark": [
        {"name": "squares/n:256/iterations:1", "cells": 65536.0, "arrays_bytes/cell": 1973.2,
         "resident_bytes/cell": 2045.4, "peak_bytes/cell": 2119.7},
    ],
}


def rows(text):
    """The cells of a table's rows below its head."""
    lines = [line for line in text.splitlines() if line.startswith("|")]
    return [[cell.strip() for cell in line.strip("|").split("|")] for line in lines[2:]]


class Numbers(unittest.TestCase):
    def test_keep_three_leading_digits_without_exponents(self):
        cases = [(1234.5, "1230"), (12.0, "12.0"), (0.01234, "0.0123"), (9.996, "10.0"), (999.6, "1000"), (0, "0")]
        for value, text in cases:
            self.assertEqual(speed_tables.rounded(value), text)

    def test_of_cells_read_as_people_say_them(self):
        self.assertEqual([speed_tables.thousands(n) for n in (4096, 486680, 1e6)], ["4 096", "486 680", "1.00 million"])


class Tables(unittest.TestCase):
    def test_every_table_has_as_many_cells_in_each_row_as_in_its_head(self):
        for name, make in speed_tables.BLOCKS.items():
            text = make(CANNED)
            head = None
            for line in text.splitlines():
                if not line.startswith("|"):
                    head = None
                    continue
                head = head or line.count("|")
                self.assertEqual(line.count("|"), head, f"{name}: {line}")
            self.assertTrue(rows(text), name)

    def test_what_was_not_run_is_said_to_be_not_measured(self):
        for name, make in speed_tables.BLOCKS.items():
            self.assertEqual(make({}), "Not measured.", name)

    def test_a_kind_of_store_or_instruction_the_machine_lacks_is_a_dash(self):
        self.assertEqual(rows(speed_tables.bandwidth(CANNED))[0],
                         ["memory", "256 MiB", "1", "12.3", "20.0", "21.0", "15.0", "–"])
        self.assertEqual(rows(speed_tables.multiply_add(CANNED)), [["AVX2", "1", "51.2", "–"]])

    def test_steps_are_rates_and_the_ratio_of_40_threads_is_one_of_rates(self):
        self.assertEqual(rows(speed_tables.steps_2d(CANNED)),
                         [["4 096", "squares, flow", "8.00", "16.0", "12.5", "0.800", "2.00", "1.88", "6.0", "6.4"]])
        self.assertEqual(rows(speed_tables.steps_3d(CANNED))[0][:3], ["5 000", "19", "flow and heat"])
        self.assertIn("40 : 2", speed_tables.steps_2d(CANNED))

    def test_orders_of_both_dimensions_stand_in_one_table(self):
        table = rows(speed_tables.orders(CANNED))
        self.assertEqual(table[0], ["1.00 million", "squares, flow", "200", "500", "2.50", "100", "300", "3.00"])
        self.assertEqual(table[1][1], "tetrahedra, 27 velocities, flow")

    def test_loops_are_shown_for_the_largest_mesh_and_their_sums_for_every_mesh(self):
        text = speed_tables.loops(CANNED)
        self.assertIn("Squares, flow, 1.00 million cells; bandwidth 26.5 GB/s on 1, 26.5 GB/s on 2 "
                      "(reading alone 53.0 GB/s on 1, 53.0 GB/s on 2):", text)
        self.assertEqual(rows(text)[0], ["collide", "424", "144", "20.0", "21.2", "80 %", "89 %", "20.0", "21.2", "80 %",
                                         "89 %"])
        self.assertEqual([row[0] for row in rows(text)], ["collide", "all"])
        sums = rows(speed_tables.loop_sums(CANNED))
        self.assertEqual([row[0] for row in sums], ["4 096", "1.00 million"])
        self.assertEqual(sums[0][1:4], ["squares, flow", "3076", "144"])

    def test_reading_names_the_kind_of_mesh(self):
        table = rows(speed_tables.reading(CANNED))
        self.assertEqual(table[0], ["65 536", "quadrilaterals", "1", "0.018 s", "0.017 s", "0.0040 s", "0.045 s",
                                    "0.042 s", "0.020 s", "684", "240"])
        self.assertEqual(table[1][1], "tetrahedra, 0 velocities, numbered at random")

    def test_writing_shows_files_but_not_single_numbers(self):
        self.assertEqual(rows(speed_tables.writing(CANNED)), [["256²", "9.50 MB", "300", "280", "30.0", "10"]])

    def test_a_benchmark_that_failed_makes_no_table(self):
        failed = {"name": "squares/n:256", "error_occurred": True, "error_message": "no mesh"}
        with self.assertRaisesRegex(speed_tables.TableError, "memory_benchmark: squares/n:256: no mesh"):
            speed_tables.memory({"memory_benchmark": [failed]})


class Blocks(unittest.TestCase):
    def test_replace_what_stands_between_their_markers_and_nothing_else(self):
        document = ("# A\n<!-- begin one -->\nold\n<!-- end one -->\nhand-written\n"
                    "<!-- begin two -->\n<!-- end two -->\n")
        once = speed_tables.replaced(document, {"one": "1", "two": "2"})
        self.assertEqual(once, "# A\n<!-- begin one -->\n\n1\n\n<!-- end one -->\nhand-written\n"
                               "<!-- begin two -->\n\n2\n\n<!-- end two -->\n")
        self.assertEqual(speed_tables.replaced(once, {"one": "1", "two": "2"}), once)

    def test_missing_doubled_crossed_and_unknown_markers_are_refused(self):
        pair = "<!-- begin one --><!-- end one -->"
        crossed = "<!-- end one --><!-- begin one -->"
        for document in ("", pair + pair, "<!-- begin one -->" + pair, pair + "<!-- end one -->", crossed):
            with self.assertRaisesRegex(speed_tables.TableError, "one pair of markers for the block one"):
                speed_tables.replaced(document, {"one": "1"})
        with self.assertRaisesRegex(speed_tables.TableError, "unknown blocks: gone"):
            speed_tables.replaced(pair + "<!-- begin gone --><!-- end gone -->", {"one": "1"})

    def test_the_shipped_report_has_a_place_for_every_table(self):
        texts = speed_tables.rendered({"machine": {"Processor": "x"}, "programs": CANNED})
        text = speed_tables.replaced(REPORT.read_text(), texts)
        self.assertIn("- Processor: x", text)
        self.assertIn("| 256² | 9.50 MB |", text)


class Machine(unittest.TestCase):
    CPU = {"Model name": "Some CPU", "CPU(s)": "2", "Thread(s) per core": "1", "Flags": "sse2 avx2 fma",
           "L2 cache": "1 MiB (2 instances)", "L3 cache": "32 MiB (1 instance)", "Hypervisor vendor": "KVM"}

    def test_is_described_by_what_the_figures_depend_on(self):
        facts = measure_speed.machine_facts(self.CPU, 8 * 2**20, "Some System 1", "g++ 12, Release build", 0.25,
                                            "2024-05-06")
        self.assertEqual(facts, {
            "Processor": "Some CPU, virtual (KVM); 2 processors, 1 thread a core; avx2, fma",
            "Caches": "L2 1 MiB (2 instances), L3 32 MiB (1 instance)",
            "Memory": "8 GiB",
            "System and compiler": "Some System 1; g++ 12, Release build",
            "Measured": "2024-05-06, load average at the start 0.2",
        })


class CommandLine(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "bench").mkdir()
        (self.folder / "CMakeCache.txt").write_text("CMAKE_BUILD_TYPE:STRING=Release\n")
        self.report = self.folder / "report.md"
        names = ["machine", *speed_tables.BLOCKS]
        self.report.write_text("".join(f"<!-- begin {name} -->\n<!-- end {name} -->\n" for name in names))

    def program(self, name, benchmarks, code=0):
        """A benchmark that writes what it is told to, and beside it how it was called."""
        path = self.folder / "bench" / name
        path.write_text(
            f"#!{sys.executable}\n"
            "import json, os, sys\n"
            f"json.dump([sys.argv[1:], os.environ['OMP_PROC_BIND']], open({str(path) + '.call'!r}, 'w'))\n"
            "out = next(a.split('=', 1)[1] for a in sys.argv if a.startswith('--benchmark_out='))\n"
            f"json.dump({{'context': {{'host_name': 'secret'}}, 'benchmarks': {benchmarks!r}}}, open(out, 'w'))\n"
            f"sys.exit({code})\n"
        )
        path.chmod(path.stat().st_mode | stat.S_IXUSR)

    def run_script(self, *arguments):
        return subprocess.run(
            [sys.executable, str(SCRIPT), "--build", str(self.folder), "--report", str(self.report), *arguments],
            capture_output=True, text=True, env={**os.environ, "PYTHONDONTWRITEBYTECODE": "1"},
        )

    def test_runs_what_is_built_with_pinned_threads_and_writes_the_report(self):
        self.program("memory_benchmark", CANNED["memory_benchmark"])
        kept = self.folder / "kept.json"
        done = self.run_script("--save", str(kept))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("step_2d_benchmark is not built", done.stderr)
        text = self.report.read_text()
        self.assertIn("| 65 536 | squares | 1973 | 2045 | 2120 |", text)
        self.assertIn("Release build", text)
        self.assertNotIn("secret", text + kept.read_text())
        call = json.loads((self.folder / "bench" / "memory_benchmark.call").read_text())
        self.assertEqual(call[1], "spread")
        self.assertFalse(any("filter" in argument for argument in call[0]))

        (self.folder / "bench" / "memory_benchmark").unlink()
        self.report.write_text(text.replace("1973", "1"))
        self.assertEqual(self.run_script("--load", str(kept)).returncode, 0)
        self.assertEqual(self.report.read_text(), text)

    def test_the_quick_form_runs_small_sizes_and_leaves_the_report_alone(self):
        self.program("memory_benchmark", CANNED["memory_benchmark"])
        before = self.report.read_text()
        done = self.run_script("--quick")
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertIn("| 65 536 | squares | 1973 | 2045 | 2120 |", done.stdout)
        self.assertEqual(self.report.read_text(), before)
        call = json.loads((self.folder / "bench" / "memory_benchmark.call").read_text())
        self.assertIn("--benchmark_filter=" + measure_speed.PROGRAMS["memory_benchmark"], call[0])

    def test_a_failing_benchmark_leaves_the_report_alone(self):
        self.program("memory_benchmark", [], code=3)
        before = self.report.read_text()
        done = self.run_script()
        self.assertEqual((done.returncode, self.report.read_text()), (1, before))
        self.assertIn("memory_benchmark failed", done.stderr)

    def test_a_folder_without_benchmarks_is_refused(self):
        done = self.run_script()
        self.assertEqual(done.returncode, 1)
        self.assertIn("no benchmark is built", done.stderr)


if __name__ == "__main__":
    unittest.main()
