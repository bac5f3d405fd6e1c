"""Where output files go, and writing them whole or not at all."""

import os
import pathlib

from .errors import ViewError


def beside(path, ending):
    """The input's name with another ending: cav_100.dat gives cav_100.png for ".png"."""
    path = pathlib.Path(path)
    stem = path.name[: -len(path.suffix)] if path.suffix in (".dat", ".txt") else path.name
    return path.with_name(stem + ending)


def target(inputs, path, ending, out):
    """The output file for one input: `out`, a file of that name in the folder `out`, or one beside the input.

    Refuses to overwrite an input, and to write several outputs into one file.
    """
    chosen = beside(path, ending)
    if out is not None:
        out = pathlib.Path(out)
        chosen = out / chosen.name if out.is_dir() else out
        if not out.is_dir() and len(inputs) > 1:
            raise ViewError(f"{out}: expected an existing folder for the output of {len(inputs)} files")
    if any(chosen.resolve() == pathlib.Path(one).resolve() for one in inputs):
        raise ViewError(f"{chosen}: expected another name for the output, found that of an input")
    return chosen


def write_whole(path, write):
    """Calls `write` with a file name beside `path` of the same ending, then renames what it wrote."""
    path = pathlib.Path(path)
    part = path.with_name(f".{path.stem}.{os.getpid()}{path.suffix}")
    try:
        write(part)
        os.replace(part, path)
    except OSError as error:
        raise ViewError(f"{path}: expected a file that can be written, found: {error.strerror or error}") from None
    finally:
        part.unlink(missing_ok=True)
