#!/usr/bin/env python3
"""Kills runs at random instants: no half result file under a final name, no history line lost.

Three kinds of run in turn: one that saves a file of several chunks every step, one that saves again and again
under one name, and a small transient one with histories.
"""

import os
import pathlib
import random
import signal
import tempfile
import time

import reliability
from reliability import CASES, require

HISTORY_INTERVAL = 100


def is_writing(pid, folder):
    """Has the process a file of the folder open that has no name yet, or a temporary one?"""
    for descriptor in pathlib.Path(f"/proc/{pid}/fd").iterdir():
        try:
            target = os.readlink(descriptor)
        except FileNotFoundError:  # closed meanwhile: the process stops a moment after it is told to
            continue
        if target.startswith(str(folder)) and (target.endswith("(deleted)") or ".dat." in target):
            return True
    return False


def kill_after_ready(programs, folder, arguments, seconds):
    """Kills `seconds` after the process was ready: its terminal lines, and whether it was writing a result."""
    said = folder / "said"
    with said.open("wb") as out:
        process = reliability.start(programs, "case_process", *arguments, stdout=out)
        deadline = time.monotonic() + 60
        while b"ready\n" not in said.read_bytes():
            require(process.poll() is None and time.monotonic() < deadline, "the process did not start")
            time.sleep(0.002)
        time.sleep(seconds)
        require(process.poll() is None, f"the process ended by itself: {arguments}")
        process.send_signal(signal.SIGSTOP)
        writing = is_writing(process.pid, folder)
        process.send_signal(signal.SIGKILL)
        process.communicate()
    return said.read_text().split("\n")[:-1], writing


def saves_every_step(programs, folder, seconds):
    _, writing = kill_after_ready(programs, folder, ["run", 1, 2, 1000000, 1, folder / "run.dat"], seconds)
    return reliability.require_whole_results(folder), writing


def saves_under_one_name(programs, folder, seconds):
    path = folder / "same.dat"
    _, writing = kill_after_ready(programs, folder, ["rewrite", CASES / "cavity" / "cavity_128.msh", path], seconds)
    require(path.exists(), "the file that was there is gone")
    return reliability.require_whole_results(folder), writing


def writes_histories(programs, folder, seconds):
    said, writing = kill_after_ready(programs, folder,
                                     ["run", 10, 2, 10000000, 20, folder / "run.dat"], seconds)
    steps = [int(line.removeprefix("time=")) for line in said if line.startswith("time=")]
    for name in ("run_fl.txt", "run_Tave.txt") if steps else ():
        lines = reliability.history_lines(folder / name)
        least = steps[-1] // HISTORY_INTERVAL + 1
        require(least <= lines, f"{name} has {lines} lines after step {steps[-1]}")
    return reliability.require_whole_results(folder), writing


KINDS = (saves_every_step, saves_under_one_name, writes_histories)


def run(programs, kills, seed):
    randomness = random.Random(seed)
    files = in_a_write = 0
    for number in range(kills):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            found, writing = KINDS[number % len(KINDS)](programs, folder, randomness.uniform(0.0, 0.4))
            files += found
            in_a_write += writing
    print(f"{kills} kills, {in_a_write} of them while a file was being written, {files} files looked at: "
          "every one whole")
    require(files > kills, "hardly anything was written")
    require(in_a_write > 0, "no kill came while a file was being written")


if __name__ == "__main__":
    reliability.main(__doc__, run, kills=300, seed=1)
