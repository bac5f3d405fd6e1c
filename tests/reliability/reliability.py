"""What the reliability scripts share: starting the two processes, and telling whole files from parts."""

import argparse
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
CASES = ROOT / "cases"


class Failure(Exception):
    """Something broke that must not."""


def require(holds, message):
    if not holds:
        raise Failure(message)


def main(description, run, **options):
    """Parses --programs and the given number options, runs, says what broke."""
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("--programs", type=pathlib.Path, default=ROOT / "build/release/tests/reliability",
                        help="folder of case_process and window_process")
    for name, default in options.items():
        parser.add_argument("--" + name, type=int, default=default, help=f"default {default}")
    arguments = vars(parser.parse_args())
    try:
        run(arguments.pop("programs").resolve(), **arguments)
    except Failure as failure:
        print(f"FAILED: {failure}", file=sys.stderr)
        sys.exit(1)


def environment(**more):
    """Two threads a loop at most, and no screen."""
    return {"OMP_THREAD_LIMIT": "2", **os.environ, "QT_QPA_PLATFORM": "offscreen", **more}


def start(programs, name, *arguments, **options):
    """A process whose output is read; options as subprocess.Popen takes them."""
    options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "env": environment(), **options}
    return subprocess.Popen([programs / name, *map(str, arguments)], text=True, **options)


def run(programs, name, *arguments, timeout=600, **options):
    """Runs to the end: exit code, lines of standard output, standard error. A hang is a failure."""
    process = start(programs, name, *arguments, **options)
    try:
        out, err = process.communicate(timeout=timeout)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        raise Failure(f"{name} {' '.join(map(str, arguments))} did not end within {timeout} s") from None
    return process.returncode, out.splitlines(), err


def result_damage(path):
    """None for a whole result file, else what is wrong with it."""
    data = path.read_bytes()
    lines = data.split(b"\r\n")
    if lines.pop() != b"":
        return "does not end at the end of a line"
    zone = next((i for i, line in enumerate(lines) if line.startswith(b"ZONE ")), None)
    if zone is None:
        return "has no zone line"
    found = re.fullmatch(rb"ZONE N=(\d+), E=(\d+), ZONETYPE = FE(QUADRILATERAL|TETRAHEDRON)", lines[zone])
    if not found:
        return f"has the zone line {lines[zone]!r}"
    points, cells = int(found[1]), int(found[2])
    per_point, per_cell = (2, 6) if found[3] == b"QUADRILATERAL" else (3, 5)
    head = zone + 3
    values = head + per_point * points + per_cell * cells
    if len(lines) != values + cells:
        return f"has {len(lines)} lines, not {values + cells}"
    try:
        for line in lines[head:values]:
            float(line)
        if any(len([int(word) for word in line.split()]) != 4 for line in lines[values:]):
            return "has a cell without four corners"
    except ValueError as error:
        return str(error)
    return None


def require_whole_results(folder):
    """The number of result files in the folder, all of them whole."""
    files = sorted(folder.glob("*.dat"))
    for path in files:
        damage = result_damage(path)
        require(damage is None, f"{path.name} {damage}")
    return len(files)


def history_lines(path):
    """The number of lines of a history file, all of them whole."""
    data = path.read_bytes()
    lines = data.split(b"\r\n")
    require(lines.pop() == b"", f"{path.name} ends in part of a line")
    for line in lines:
        require(re.fullmatch(rb"\S+ \S+", line), f"{path.name} has the line {line!r}")
    return len(lines)
