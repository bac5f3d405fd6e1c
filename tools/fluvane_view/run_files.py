"""Which files belong to one run, in which order, and at which time each was written."""

import dataclasses
import pathlib
import re

from .errors import ViewError

_NAME = re.compile(r"(.*)_([-+]?\d+(?:\.\d+)?(?:e[-+]?\d+)?)\.dat$")


@dataclasses.dataclass
class Moment:
    """One file of a series. The time is a step or a Fourier number, as the file's name gives it."""

    path: pathlib.Path
    time: float
    label: str  # "step 100", "Fo = 0.05", or "" when the name has no number


def _split(path):
    match = _NAME.match(path.name)
    return (match[1], match[2]) if match else (path.stem, None)


def moments_of(paths):
    """The files in order of time, each with its time; those without a number keep their order and count from 0."""
    paths = [pathlib.Path(path) for path in paths]
    parts = [_split(path) for path in paths]
    if any(number is None for _, number in parts):
        return [Moment(path, float(i), "") for i, path in enumerate(paths)]
    name = "Fo = " if any(_counts_fourier(path) for path in paths) else "step "
    moments = [Moment(path, float(number), name + number) for path, (_, number) in zip(paths, parts)]
    return sorted(moments, key=lambda moment: moment.time)


def _counts_fourier(path):
    """Steady runs number their files by the step, transient ones by the Fourier number and write histories."""
    base, number = _split(path)
    return not number.isdigit() or path.with_name(base + "_fl.txt").exists()


def run_of(paths):
    """The paths themselves when they are several; for a single one, all files of its run."""
    paths = [pathlib.Path(path) for path in paths]
    if len(paths) > 1:
        return paths
    base, number = _split(paths[0])
    if number is None:
        return paths
    if not paths[0].exists():
        raise ViewError(f"{paths[0]}: expected a result file, found nothing of that name")
    return files_of_run(paths[0].parent, base)


def files_of_run(folder, name):
    """The result files in a folder that are called `name` and a number, in no order."""
    parts = ((path, *_split(path)) for path in folder.iterdir())
    return [path for path, base, number in parts if base == name and number is not None]


def run_name(paths):
    """What the files of a run are called without their numbers."""
    return _split(pathlib.Path(paths[0]))[0]


def label_of(path):
    """ "step 100" or "Fo = 0.05" of one file; "" when its name has no number."""
    siblings = run_of([path]) if pathlib.Path(path).exists() else [path]
    named = {moment.path.name: moment.label for moment in moments_of(siblings)}
    return named.get(pathlib.Path(path).name, "")
