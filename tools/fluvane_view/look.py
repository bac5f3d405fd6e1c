"""What a picture shows and how, and what the program's variables are called in it."""

import dataclasses

import numpy

from .errors import ViewError

STYLES = ("smooth", "cells", "none")


@dataclasses.dataclass
class Look:
    """Options of a picture; None leaves the choice to the result."""

    show: str = None
    style: str = "smooth"
    levels: int = 64
    range: tuple = None
    isolines: str = None
    isoline_count: int = 12
    vectors: bool = False
    streamlines: bool = False
    mesh: bool = False
    front: bool = False
    colours: str = None
    zoom: tuple = None
    title: str = None
    dpi: int = 150


def completed(look, result):
    """The look with a variable to show, and with what suits it when nothing was asked for."""
    if look.show is not None:
        result.field(look.show)
        return look
    moving = result.velocity() is not None and numpy.nanmax(numpy.abs(result.velocity()), initial=0.0) > 0.0
    T = result.fields.get("T")
    warm = T is not None and numpy.nanmax(T) > numpy.nanmin(T)
    show = "T" if warm or not moving else "speed"
    if show not in result.fields and show != "speed":
        show = next(iter(result.fields))
    chosen = dataclasses.replace(look, show=show)
    if not (look.vectors or look.streamlines or look.mesh or look.front or look.isolines):
        chosen.streamlines = moving and result.dimension == 2
        chosen.front = has_front(result)
    return chosen


def has_front(result):
    """Whether some of it is liquid and some is solid."""
    fl = result.fields.get("fl")
    return fl is not None and bool(numpy.nanmin(fl) < 0.5 <= numpy.nanmax(fl))


def check(look, result):
    """ViewError for what this result cannot show."""
    if look.isolines is not None:
        result.field(look.isolines)
    if look.front and "fl" not in result.fields:
        raise ViewError(f"{result.path}: expected the variable fl for --front, found {', '.join(result.fields)}")
    if (look.vectors or look.streamlines) and result.velocity() is None:
        raise ViewError(f"{result.path}: expected the velocity u, v, found {', '.join(result.fields)}")


def plain(text):
    """The text as matplotlib shows it letter by letter: between two $ it would look for a formula."""
    return text.replace("$", r"\$")


def label_of(name, dimension):
    """2D files hold the velocity in units of the reference velocity, 3D files as it is."""
    unit = " / U0" if dimension == 2 else ""
    labels = {"speed": "speed" + unit, "T": "temperature T", "rho": "density rho", "H": "enthalpy H"}
    labels["fl"] = "liquid fraction fl"
    if name in ("u", "v", "w"):
        return name + unit
    return labels.get(name) or plain(name)


def colours_of(look):
    if look.colours:
        return look.colours
    names = {"T": "RdYlBu_r", "speed": "viridis", "fl": "Blues", "u": "RdBu_r", "v": "RdBu_r", "w": "RdBu_r"}
    return names.get(look.show, "cividis")


def apart(low, high):
    """Whether low lies below high by so much that rounding leaves places between them."""
    return high - low > max(1e-12 * max(abs(low), abs(high)), 1e-100)


def range_of(look, values):
    """Lowest and highest colour; a velocity component's are alike about 0. Never an empty interval."""
    if look.range is not None:
        return look.range
    finite = values[numpy.isfinite(values)]
    if not len(finite):
        return 0.0, 1.0
    low, high = float(finite.min()), float(finite.max())
    if look.show == "fl":
        low, high = min(low, 0.0), max(high, 1.0)
    elif look.show in ("u", "v", "w") and low < 0.0 < high:
        low, high = -max(-low, high), max(-low, high)
    least = 1e-6 * max(abs(low), abs(high))
    return (low, high) if high - low > least else (low - (least or 1.0), high + (least or 1.0))


def parameter_text(parameters):
    """What tells this case from others, of the parameters in a file."""
    if not parameters:
        return ""
    if parameters.get("Isnatural"):
        names = ["Ra", "Pr"]
    elif parameters.get("Isflow"):
        names = ["Re"] + (["Pr"] if parameters.get("Isheat") else [])
    else:
        names = ["alpha"]
    return ", ".join(f"{name} = {parameters[name]:g}" for name in names if name in parameters)


def title_of(look, result, label):
    """The file's name and, in a second line, the parameters and the moment."""
    if look.title is not None:
        return plain(look.title)
    second = ", ".join(text for text in (parameter_text(result.parameters), label) if text)
    return plain(result.path.stem) + ("\n" + second if second else "")
