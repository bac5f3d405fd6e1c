"""Plots over a line through the mesh, over steps and over time."""

import dataclasses

import numpy

from . import look as looks
from .errors import ViewError
from .interpolation import DESCRIPTION
from .output import write_whole
from .pictures import pyplot, save_figure
from .plane_sheet import PlaneResult
from .result_file import Result, read_result
from .run_files import label_of
from .run_texts import means_of_moments, read_history, read_residuals
from .solid import AXES, Solid


@dataclasses.dataclass
class Line:
    """Values at evenly spaced places from one point to another."""

    result: Result
    names: list
    places: numpy.ndarray  # (places, 2 or 3)
    columns: list  # one array a name; nan outside the mesh
    own_values: bool  # of the cell around each place, without interpolation

    def distances(self):
        return numpy.linalg.norm(self.places - self.places[0], axis=1)

    def interpolation(self):
        return "the value of the cell around each place" if self.own_values else DESCRIPTION


def sample_line(path, names, ends_of, count, own_values):
    """The Line through a result; ends_of(low, high) gives its two ends. Without names: the velocity and T.

    Places outside the mesh have the value nan, and those near a value that cannot be drawn. ViewError when all lie
    outside.
    """
    result = read_result(path)
    names = names or [name for name in ("u", "v", "w", "T") if name in result.fields] or list(result.fields)
    mesh = PlaneResult(result) if result.dimension == 2 else Solid(result)
    start, end = ends_of(*mesh.bounds())
    if len(start) != result.dimension or len(end) != result.dimension:
        raise ViewError(f"{path}: expected points of {result.dimension} coordinates, found {len(start)}")
    if not any(looks.apart(*sorted(coordinates)) for coordinates in zip(start, end)):
        raise ViewError(f"{path}: expected two different ends of the line")
    columns = mesh.on_line(names, start, end, count, own_values)
    places = numpy.linspace(start, end, count)
    if not any(numpy.isfinite(column).any() for column in columns) and not mesh.meets_line(start, end, count):
        low, high = mesh.bounds()
        box = " to ".join(str(tuple(float(f"{x:g}") for x in corner)) for corner in (low, high))
        raise ViewError(f"{path}: expected a line through the mesh, which lies in {box}, found one beside it")
    return Line(result, names, places, columns, own_values)


def save_line_table(out, line):
    """A CSV file; what the interpolation is stands in its first lines, behind a #."""
    head = ["s", *AXES[: line.result.dimension], *line.names]
    table = numpy.column_stack([line.distances(), line.places, *line.columns])

    def write(part):
        with open(part, "w", encoding="utf-8", newline="\n") as file:
            file.write(f"# {line.result.path}\n# interpolation: {line.interpolation()}; ")
            file.write("nan outside the mesh and near what is not finite or beyond 1e100\n")
            file.write(",".join(head) + "\n")
            for row in table:
                file.write(",".join(f"{value:.9g}" for value in row) + "\n")

    write_whole(out, write)


def save_line_plot(out, line, dpi):
    result, places = line.result, line.places
    varying = numpy.flatnonzero(places[0] != places[-1])
    if len(varying) == 1:
        along, over = AXES[varying[0]], places[:, varying[0]]
        fixed = [f"{AXES[i]} = {places[0, i]:g}" for i in range(result.dimension) if i != varying[0]]
        where = "along " + along + " at " + ", ".join(fixed)
    else:
        along, over = "distance along the line", line.distances()
        where = "from ({}) to ({})".format(*(", ".join(f"{x:g}" for x in end) for end in (places[0], places[-1])))
    panels = _panels(line.names)
    height = 1.6 + 3.0 * len(panels)
    figure = pyplot.figure(figsize=(7.2, height), layout="constrained")
    # Room for the note at the foot.
    figure.get_layout_engine().set(rect=(0.0, 0.2 / height, 1.0, 1.0 - 0.2 / height))
    columns = dict(zip(line.names, line.columns))
    for i, names in enumerate(panels):
        axes = figure.add_subplot(len(panels), 1, i + 1)
        _prepare(axes)
        labels = [looks.label_of(name, result.dimension) for name in names]
        for name, label in zip(names, labels):
            axes.plot(over, columns[name], label=label, linewidth=1.5)
        if len(names) > 1:
            axes.legend()
        if not any(numpy.isfinite(columns[name]).any() for name in names):
            note = "not finite, or beyond 1e100, along the whole line"
            axes.text(0.5, 0.5, note, ha="center", va="center", transform=axes.transAxes)
        axes.set_ylabel(", ".join(labels))
    axes.set_xlabel(along)
    figure.align_ylabels()
    parameters = ", ".join(text for text in (looks.parameter_text(result.parameters), label_of(result.path)) if text)
    title = f"{looks.plain(result.path.stem)}, {where}" + ("\n" + parameters if parameters else "")
    figure.suptitle(title, fontsize=11)
    figure.text(0.99, 0.005, line.interpolation(), ha="right", va="bottom", fontsize=6, color="0.4")
    save_figure(figure, out, dpi)


def _panels(names):
    """The velocity's components and the speed share a panel; every other variable has a scale of its own."""
    moving = [name for name in names if name in ("u", "v", "w", "speed")]
    return ([moving] if moving else []) + [[name] for name in names if name not in moving]


def _prepare(axes):
    axes.grid(True, color="0.88", linewidth=0.6)
    axes.set_axisbelow(True)


def _plot_figure():
    figure = pyplot.figure(figsize=(7.2, 4.8))
    axes = figure.add_subplot()
    figure.subplots_adjust(left=0.12, right=0.97, bottom=0.13, top=0.88)
    _prepare(axes)
    return figure, axes


_FAR = 1000.0


def save_residuals(path, out, dpi):
    """Both residuals over the steps; a residual of 0, of what is switched off, has no place on the scale."""
    table = read_residuals(path)
    figure, axes = _plot_figure()
    # Where the steps start anew another run begins.
    new_run = numpy.flatnonzero(numpy.diff(table[:, 0]) < 0) + 1
    first = numpy.concatenate([[0], new_run])
    beyond = False
    drawn = 0
    for column, name in ((1, "error_u"), (2, "error_T")):
        values = numpy.where(numpy.isfinite(table[:, column]) & (table[:, column] > 0.0), table[:, column], numpy.nan)
        # Of a field that was 0 before the first step the change is divided by next to nothing.
        far = first[values[first] > _FAR]
        if len(far) < numpy.isfinite(values).sum():
            values[far] = numpy.nan
            beyond |= bool(len(far))
        if numpy.isfinite(values).any():
            steps, values = (numpy.insert(column, new_run, numpy.nan) for column in (table[:, 0], values))
            axes.semilogy(steps, values, marker="o", markersize=3, linewidth=1.3, label=name, color=f"C{drawn}")
            drawn += 1
    if not drawn:
        raise ViewError(f"{path}: expected a residual above 0, found none")
    if beyond:
        note = f"not shown: first lines above {_FAR:g}, of fields that started from 0"
        figure.text(0.99, 0.005, note, ha="right", va="bottom", fontsize=6, color="0.4")
    axes.set_xlabel("time steps")
    axes.set_ylabel("residual")
    axes.legend()
    figure.suptitle(f"{looks.plain(path.stem)}: change since the step before", fontsize=11)
    save_figure(figure, out, dpi)


_MEANS = {"_fl": "mean liquid fraction", "_Tave": "mean temperature"}


def save_history(paths, out, dpi, area_of):
    """Histories over the Fourier number, each below the other; of those with an area the means of the moments.

    area_of(path) is the area of the mesh that a history belongs to, or None.
    """
    figure = pyplot.figure(figsize=(7.2, 1.2 + 3.4 * len(paths)), layout="constrained")
    for i, path in enumerate(paths):
        table, area = read_history(path), area_of(path)
        values = means_of_moments(table[:, 1], area) if area else table[:, 1]
        axes = figure.add_subplot(len(paths), 1, i + 1)
        axes.plot(
            table[:, 0], values, linewidth=1.5, color=f"C{i}", marker="o" if len(table) < 30 else "", markersize=3
        )
        axes.grid(True, color="0.88", linewidth=0.6)
        name = next((text for ending, text in _MEANS.items() if path.stem.endswith(ending)), "value")
        axes.set_ylabel(name if area else name + ",\naccumulated as written")
        axes.set_title(looks.plain(path.stem), fontsize=10)
        axes.set_xlabel("Fourier number")
    save_figure(figure, out, dpi)
