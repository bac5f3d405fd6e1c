"""Result files of the program for the tests of fluvane-view, read a second time in the plainest way."""

import contextlib
import io
import os
import pathlib
import shutil
import subprocess
import tempfile

from fluvane_view import command

DATA = pathlib.Path(__file__).resolve().parent / "data"
SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "tools" / "fluvane-view"


def run_script(*arguments, cwd=None):
    """Runs it as a user does."""
    return subprocess.run([str(SCRIPT), *map(str, arguments)], capture_output=True, text=True, cwd=cwd)


def run(*arguments, cwd=None):
    """The same within this process, which saves a second of loading each time."""
    out, err, here = io.StringIO(), io.StringIO(), os.getcwd()
    try:
        os.chdir(cwd or here)
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
            code = command.main([str(word) for word in arguments])
    except SystemExit as ended:  # how the library for arguments ends
        code = ended.code
    finally:
        os.chdir(here)
    return subprocess.CompletedProcess(arguments, code, out.getvalue(), err.getvalue())


def folder_with(test, *names):
    """A temporary folder with copies of these data files, gone after the test."""
    folder = tempfile.TemporaryDirectory()
    test.addCleanup(folder.cleanup)
    path = pathlib.Path(folder.name)
    for name in names:
        shutil.copy(DATA / name, path)
    return path


def plain_reading(path):
    """(points, cells, fields): lists from the numbers as they follow each other; triangles have three corners."""
    lines = pathlib.Path(path).read_text("ascii").split("\n")
    zone = next(line for line in lines if line.startswith("ZONE"))
    variables = next(line for line in lines if line.startswith("VARIABLES")).split('"')[1::2]
    first = next(i for i, line in enumerate(lines) if line.startswith("VARLOCATION")) + 1
    numbers = iter([float(word) for line in lines[first:] for word in line.split()])
    counts = [int(zone.split(key)[1].split(",")[0]) for key in ("N=", "E=")]
    axes = 2 if "QUADRILATERAL" in zone else 3
    columns = {name: [next(numbers) for _ in range(counts[i >= axes])] for i, name in enumerate(variables)}
    cells = [[int(next(numbers)) - 1 for _ in range(4)] for _ in range(counts[1])]
    assert next(numbers, None) is None
    cells = [cell[:3] if cell[3] == cell[0] else cell for cell in cells]
    points = list(zip(*(columns.pop(name) for name in "XYZ"[:axes])))
    return points, cells, columns
