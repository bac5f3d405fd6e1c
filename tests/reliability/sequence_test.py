#!/usr/bin/env python3
"""Runs many cases in one process, 2D and 3D in turn: each result equals that of a process of its own."""

import pathlib
import re
import tempfile

import reliability
from reliability import require

DIFFERENT = 12  # cases, after which they begin again
# Deliberate: the numbers of a set-up that a case does not use keep what the case before typed, and the head of
# a 2D result file shows them.
# Likewise the liquid fraction of a transient case in the temperature form follows from the enthalpy relation as
# it stands.
TEMPERATURE_FORM = {6}
LEFT_OVER = re.compile(rb"^(Ra=)[^,]*(,  Re=)[^,]*|^(niu=)[^,]*", re.MULTILINE)


def results(folder, number):
    """Name → content of the case's files, without what another case left over."""
    return {path.name.replace(f"case{number}_", ""): LEFT_OVER.sub(rb"", path.read_bytes())
            for path in sorted(folder.glob(f"case{number}_*"))
            if not (number % DIFFERENT in TEMPERATURE_FORM and path.name.endswith("_fl.txt"))}


def run_cases(programs, folder, first, end, threads, steps):
    folder.mkdir()
    code, _, err = reliability.run(programs, "case_process", "sequence", first, end, threads, steps, folder,
                                   timeout=3600)
    require(code == 0, f"cases {first} to {end - 1} ended with {code}:\n{err}")


def run(programs, cases, steps):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        alone = []
        for number in range(min(cases, DIFFERENT)):
            run_cases(programs, folder / str(number), number, number + 1, 1, steps)
            alone.append(results(folder / str(number), number))
            require(len(alone[number]) >= 2, f"case {number} wrote {list(alone[number])}")
        run_cases(programs, folder / "all", 0, cases, 2, steps)
        reliability.require_whole_results(folder / "all")
        for number in range(cases):
            found = results(folder / "all", number)
            expected = alone[number % DIFFERENT]
            different = [file for file in {**found, **expected} if found.get(file) != expected.get(file)]
            require(not different, f"case {number}: {different} differ from a fresh process's")
    print(f"{cases} cases one after another in one process: each file equals a fresh process's")


if __name__ == "__main__":
    reliability.main(__doc__, run, cases=200, steps=20)
