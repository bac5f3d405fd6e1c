#!/usr/bin/env python3
"""Measures the longest pauses of the window during a run, without and with the user at work in it."""

import pathlib
import tempfile

import reliability
from reliability import require

# Far beyond what is measured on a quiet machine; a window that waits for the whole run is beyond it.
SECONDS = 20.0


def run(programs, side):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        mesh = folder / "square.msh"
        code, _, err = reliability.run(programs, "case_process", "square", side, mesh)
        require(code == 0, f"no mesh: {err}")
        code, lines, err = reliability.run(programs, "window_process", "pauses", mesh, folder / "run.dat",
                                           10000000, 100000, 2000, cwd=folder, timeout=3600)
        require(code == 0, f"ended with {code}: {err}")
    pauses = {line.split()[1]: float(line.split()[2]) for line in lines if line.startswith("pause ")}
    require(len(pauses) == 8 and "closing during a run" in lines, f"the process said {lines}")
    print(f"{side * side} cells, longest pause in ms: " +
          ", ".join(f"{what} {pause:.1f}" for what, pause in pauses.items()))
    for what, pause in pauses.items():
        require(pause < 1000 * SECONDS, f"{what} stopped the window for {pause / 1000:.1f} s")


if __name__ == "__main__":
    reliability.main(__doc__, run, side=1000)
