#!/usr/bin/env python3
"""Closes the main window in every state: the process ends within a step and a write, and every file is whole."""

import pathlib
import random
import tempfile
import threading
import time

import reliability
from reliability import CASES, require

SMALL = CASES / "cavity" / "cavity_32.msh"
LARGE = CASES / "cavity" / "cavity_128.msh"
# state: the window's action, mesh, steps, interval. With interval 1 most of the time goes into writing.
STATES = {
    "idle": ("idle", SMALL, 0, 0),
    "bounded run": ("bounded", LARGE, 10000000, 1000),
    "unbounded run": ("unbounded", LARGE, 0, 1000),
    "transient run": ("transient", LARGE, 10000000, 1000),
    "while writing": ("bounded", LARGE, 10000000, 1),
    "writing without end": ("unbounded", SMALL, 0, 1),
}
# A step and a write of these meshes take milliseconds; the rest is for a machine that others use too.
SECONDS = 10.0


def close(programs, folder, state, delay):
    """Seconds from the closing of the window to the end of the process."""
    action, mesh, steps, interval = STATES[state]
    process = reliability.start(programs, "window_process", action, mesh, folder / "run.dat", steps, interval,
                                delay)
    watchdog = threading.Timer(120, process.kill)
    watchdog.start()
    said = process.stdout.readline()
    if state != "idle":
        said = process.stdout.readline() if said == "running\n" else said
    closed = time.monotonic()
    process.communicate()
    seconds = time.monotonic() - closed
    watchdog.cancel()
    require(process.returncode == 0, f"{state}: the process ended with {process.returncode}")
    expected = "closing" if state == "idle" else "closing during a run"
    require(said == expected + "\n", f"{state}: the process said {said!r}")
    return seconds


def run(programs, closings, seed):
    randomness = random.Random(seed)
    longest = dict.fromkeys(STATES, 0.0)
    files = 0
    for number in range(closings):
        state = list(STATES)[number % len(STATES)]
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            seconds = close(programs, folder, state, randomness.randrange(200))
            files += reliability.require_whole_results(folder)
        longest[state] = max(longest[state], seconds)
        require(seconds < SECONDS, f"{state}: the process ended {seconds:.1f} s after the closing")
    print(f"{closings} closings, {files} files whole; longest from closing to the end of the process: " +
          ", ".join(f"{state} {1000 * seconds:.0f} ms" for state, seconds in longest.items()))


if __name__ == "__main__":
    reliability.main(__doc__, run, closings=60, seed=1)
