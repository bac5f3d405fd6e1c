"""Where output files go, and writing them whole or not at all."""

import os
import pathlib
import tempfile

from .errors import ViewError


def beside(path, ending):
    """The input's name with another ending: cav_100.dat gives cav_100.png for ".png"."""
    path = pathlib.Path(path)
    stem = path.name[: -len(path.suffix)] if path.suffix in (".dat", ".txt") else path.name
    return path.with_name(stem + ending)


def targets(inputs, ending, out, folder=None):
    """One output file for each input: `out`, a file of that name in the folder `out`, or one beside the input.

    `folder` tells whether `out` is one, also before it is made; by default whether there is one. Refuses what
    `refuse_clashes` refuses.
    """
    chosen = [beside(path, ending) for path in inputs]
    if out is not None:
        if out.is_dir() if folder is None else folder:
            chosen = [out / path.name for path in chosen]
        elif len(inputs) > 1:
            raise ViewError(f"{out}: expected an existing folder for the output of {len(inputs)} files")
        else:
            chosen = [out]
    refuse_clashes(inputs, chosen)
    return chosen


def refuse_clashes(inputs, outputs):
    """ViewError when an output would overwrite an input or another output."""
    read = {os.path.realpath(path) for path in inputs}
    written = set()
    for path in outputs:
        real = os.path.realpath(path)
        if real in read:
            raise ViewError(f"{path}: expected another name for the output, found that of an input")
        if real in written:
            raise ViewError(f"{path}: expected the output of one file there, found that of two files")
        written.add(real)


def write_whole(path, write):
    """Calls `write` with a file name of the same ending, then puts what it wrote in the place of `path`.

    A file is replaced at once, where a link to it leads. A pipe or device stays what it is and takes the content.
    """
    path = pathlib.Path(path)
    try:
        if path.exists() and not path.is_file():
            with tempfile.TemporaryDirectory() as folder:
                part = pathlib.Path(folder, "part" + path.suffix)
                write(part)
                with open(path, "wb") as file:
                    file.write(part.read_bytes())
        else:
            _replace(pathlib.Path(os.path.realpath(path)), path.suffix, write)
    except OSError as error:
        raise ViewError(f"{path}: expected a file that can be written, found: {error.strerror or error}") from None


def _replace(path, ending, write):
    # The ending, which decides the format, is that of the name given: a link may lead to another.
    part = path.with_name(f".{path.stem}.{os.getpid()}{ending}")
    try:
        write(part)
        os.replace(part, path)
    finally:
        part.unlink(missing_ok=True)
