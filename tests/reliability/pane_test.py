#!/usr/bin/env python3
"""Says very many lines to the terminal pane: its memory stays bounded however long a run talks.

A run of a small case that reports every step says some 300 lines a second: a million an hour.
"""

import reliability
from reliability import require

# The pane keeps its last lines, as many may wait for it, and while they come in it holds both. A line takes
# about a kilobyte: kept forever, the lines of the short form would take more than this already.
KILOBYTES_MORE = 65536


def run(programs, lines):
    code, said, err = reliability.run(programs, "window_process", "lines", lines, timeout=3600)
    require(code == 0, f"ended with {code}: {err}")
    memory = [int(line.split()[2]) for line in said if line.startswith("memory ")]
    require(len(memory) == 10, f"the process said {said}")
    print(f"{lines} lines: memory after each tenth in kB {memory}")
    require(max(memory) - memory[0] < KILOBYTES_MORE, f"the memory grew: {memory}")


if __name__ == "__main__":
    reliability.main(__doc__, run, lines=1000000)
