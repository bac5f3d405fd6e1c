#!/usr/bin/env python3
"""Runs a small case for very many steps: no growth of memory, open files or time a step."""

import pathlib
import statistics
import tempfile

import reliability
from reliability import require

REPORTS = 20
# The first save touches memory for the first time; after it, less than this may come.
KILOBYTES_MORE = 512
KINDS = {"transient with melting and histories": 10, "steady flow": 0}


def soak(programs, number, steps, interval):
    """(step, seconds, kilobytes, open files) at REPORTS instants of one run."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        code, lines, err = reliability.run(programs, "case_process", "soak", number, 1, steps, interval,
                                           REPORTS, folder / "run.dat", timeout=7200)
        require(code == 0, f"ended with {code}:\n{err}")
        reliability.require_whole_results(folder)
        if number == KINDS["transient with melting and histories"]:
            found = reliability.history_lines(folder / "run_fl.txt")
            require(found == steps // 100, f"{found} history lines after {steps} steps")
    reports = [tuple(map(float, line.split()[1:])) for line in lines if line.startswith("use ")]
    require(len(reports) >= REPORTS, f"only {len(reports)} reports")
    return reports


def run(programs, steps):
    interval = max(steps // 1000, 10)
    for kind, number in KINDS.items():
        reports = soak(programs, number, steps, interval)
        micros = [(b[1] - a[1]) / (b[0] - a[0]) * 1e6 for a, b in zip(reports, reports[1:])]
        memory = [int(report[2]) for report in reports]
        files = {int(report[3]) for report in reports}
        half = len(micros) // 2
        early, late = statistics.median(micros[:half]), statistics.median(micros[half:])
        print(f"{kind}: {steps} steps, a file every {interval}; memory {memory[1]} kB, at the end "
              f"{memory[-1]} kB; open files {sorted(files)}; microseconds a step {early:.1f} in the first "
              f"half, {late:.1f} in the second")
        require(memory[-1] - memory[1] < KILOBYTES_MORE, f"the memory grew: {memory}")
        require(len(files) == 1, f"the open files changed: {files}")
        # Others may use the machine: only a step that becomes steadily slower is a fault.
        require(late < 3 * early, f"the steps became slower: {micros}")


if __name__ == "__main__":
    reliability.main(__doc__, run, steps=1000000)
