"""Reads what a run says beside its result files: residuals in the terminal's text, and histories."""

import pathlib
import re

import numpy

from .errors import ViewError, bad_line
from .result_file import read_bytes

_RESIDUAL = re.compile(r"Time Steps=(-?\d+)   error_u=(\S+)   error_T=(\S+)$")


def _lines(path):
    return read_bytes(path).decode("utf-8", "replace").splitlines()


def read_residuals(path):
    """(lines, 3): step, error_u, error_T of every residual line of a text saved from the terminal.

    Everything else in the text is passed over: other commands and zone names stand there too.
    """
    rows = []
    for number, line in enumerate(_lines(path), 1):
        match = _RESIDUAL.search(line.rstrip())
        if match:
            rows.append([_number(path, number, word) for word in match.groups()])
        elif "error_u=" in line:
            raise bad_line(path, number, '"Time Steps=N   error_u=A   error_T=B"', f'"{line.strip()}"')
    if not rows:
        raise ViewError(f'{path}: expected lines "Time Steps=N   error_u=A   error_T=B", found none')
    return numpy.array(rows)


def read_history(path):
    """(lines, 2): the Fourier number and the value of each line of a history file."""
    rows = []
    for number, line in enumerate(_lines(path), 1):
        words = line.split()
        if len(words) != 2:
            raise bad_line(path, number, "a Fourier number and a value", f'"{line.strip()}"')
        rows.append([_number(path, number, word) for word in words])
    if not rows:
        raise ViewError(f"{path}: expected lines of a Fourier number and a value, found none")
    return numpy.array(rows)


def _number(path, line, word):
    try:
        return float(word)
    except ValueError:
        raise bad_line(path, line, "a number", f'"{word}"') from None


def means_of_moments(accumulated, area):
    """The area-weighted mean of each moment from the accumulated figures of a history.

    Line k holds F_k = (F_(k-1) + the area integral of its moment) / (k times the area), with F_0 = 0. The means have
    the six digits of the figures, and fewer on areas far below 1.
    """
    k = numpy.arange(1, len(accumulated) + 1)
    before = numpy.concatenate([[0.0], accumulated[:-1]])
    return k * accumulated - before / area


def kind_of(path):
    """ "result", "residuals" or "history", by what the file begins with."""
    with_content = [line.strip() for line in read_bytes(path)[:65536].decode("latin-1").splitlines() if line.strip()]
    if with_content and with_content[0].startswith("TITLE"):
        return "result"
    if any("error_u=" in line for line in with_content):
        return "residuals"
    if pathlib.Path(path).stem.endswith(("_fl", "_Tave")):
        return "history"
    return "result"
