"""The command line: what to make of which files."""

import argparse
import os
import pathlib
import re
import sys
import warnings

import numpy

from .errors import ViewError
from .look import STYLES, Look, apart
from .output import refuse_clashes, targets
from .result_file import read_result
from .run_files import files_of_run, moments_of, run_name, run_of
from .run_texts import kind_of
from .solid import AXES

_OVERVIEW = """\
fluvane-view FILE makes a picture of a result file beside it, and a plot of a text saved from the terminal
or of a history file. For anything else name what you want:

  picture    pictures of result files                      fluvane-view picture --help
  animate    a GIF over the files of a run
  line       values along a line, as a plot and as CSV
  residuals  a plot of a text saved from the terminal
  history    a plot of _fl.txt and _Tave.txt
  vtu        VTU files and a time series for ParaView
  tecplot    a Tecplot layout that other programs read right
  info       what a result file holds
"""

_EXAMPLES = {
    "picture": """\
examples:
  fluvane-view cav_12000.dat                             the file's own picture: cav_12000.png
  fluvane-view picture cav_12000.dat --show u --vectors --mesh
  fluvane-view picture cav_12000.dat --show rho --style cells --range 0.99 1.01
  fluvane-view picture melt_0.5.dat --show T --front --streamlines --isolines T
  fluvane-view picture cav_12000.dat --style none --mesh -o mesh.pdf
  fluvane-view picture cav_12000.dat --zoom 0.6 0 1 0.4 --dpi 300
  fluvane-view picture box_600.dat --slice y=10 --vectors    a plane through a 3D result
  fluvane-view picture box_600.dat --boundary --mesh         its boundary
""",
    "animate": """\
examples:
  fluvane-view animate melt_0.dat                        all files of this run: melt.gif
  fluvane-view animate melt_0.*.dat --show fl --front --per-second 4 -o front.gif
  fluvane-view animate box_0.dat --slice y=10 --streamlines
""",
    "line": """\
examples:
  fluvane-view line cav_12000.dat --along y --show u v   through the middle: cav_12000_line.png and .csv
  fluvane-view line cav_12000.dat --along x --through 0 0.25
  fluvane-view line ann_10000.dat --from 0.9 0 --to 3 0 --show T --count 500
  fluvane-view line box_600.dat --along z --through 10 10 0 --own-values
""",
    "residuals": """\
example:
  fluvane-view residuals terminal.txt                    terminal.png
""",
    "history": """\
examples:
  fluvane-view history melt_fl.txt melt_Tave.txt         melt_fl.png with both
  fluvane-view history melt_fl.txt --as-written          without undoing the accumulation of the file
""",
    "vtu": """\
examples:
  fluvane-view vtu cav_12000.dat                         cav_12000.vtu
  fluvane-view vtu melt_*.dat -o paraview                one VTU a file and melt.pvd, in the folder paraview
  fluvane-view vtu melt_0.dat --run                      all files of this run
""",
    "tecplot": """\
example:
  fluvane-view tecplot cav_12000.dat                     cav_12000_portable.dat
""",
    "info": """\
example:
  fluvane-view info cav_12000.dat
""",
}


def _positive(kind, least, most):
    def convert(text):
        value = kind(text)
        if not least <= value <= most:
            raise argparse.ArgumentTypeError(f"expected {least} to {most}, found {text}")
        return value

    convert.__name__ = kind.__name__
    return convert


def _finite(text):
    try:
        value = float(text)
    except ValueError:
        value = numpy.nan
    # Greater ones could not be squared.
    if not abs(value) < 1e100:
        raise argparse.ArgumentTypeError(f'expected a number between -1e100 and 1e100, found "{text}"')
    return value


def _slice(text):
    axis, sign, position = text.partition("=")
    try:
        if sign and axis in AXES and numpy.isfinite(float(position)):
            return AXES.index(axis), float(position)
    except ValueError:
        pass
    raise argparse.ArgumentTypeError(f'expected x=, y= or z= and a number, found "{text}"')


def _colours(text):
    import matplotlib

    if text not in matplotlib.colormaps:
        raise argparse.ArgumentTypeError(f'expected a colour map of matplotlib, such as viridis, found "{text}"')
    return text


def _add_look(parser):
    add = parser.add_argument
    add("--show", metavar="NAME", help="variable to show: as in the file, or speed; default: T, else speed")
    add("--style", choices=STYLES, default="smooth", help="between cell centres and node means (default), flat, or not")
    add("--levels", type=_positive(int, 2, 256), default=64, help="number of colours of the smooth style, default 64")
    add("--range", type=_finite, nargs=2, metavar=("LOW", "HIGH"), help="range of the colours")
    add("--colours", type=_colours, metavar="MAP", help="colour map of matplotlib")
    add("--isolines", metavar="NAME", help="lines of equal values of this variable")
    add("--isoline-count", type=_positive(int, 1, 200), default=12, help="how many of them, default 12")
    add("--vectors", action="store_true", help="arrows of the velocity")
    add("--streamlines", action="store_true", help="streamlines")
    add("--mesh", action="store_true", help="lines of the mesh")
    add("--front", action="store_true", help="where the liquid fraction is a half")
    add("--zoom", type=_finite, nargs=4, metavar=("X0", "Y0", "X1", "Y1"), help="part of the plane to show")
    add("--slice", type=_slice, metavar="AXIS=POSITION", help="3D: a plane, such as z=0.5")
    add("--boundary", action="store_true", help="3D: the boundary; default: three slices and the boundary")
    add("--title", help="instead of file name, parameters and time")
    _add_dpi(parser)


def _add_dpi(parser):
    parser.add_argument("--dpi", type=_positive(int, 20, 1200), default=150, help="dots an inch, default 150")


def _add_output(parser, what):
    parser.add_argument("-o", "--out", type=pathlib.Path, metavar="PATH", help=what)


class _Parser(argparse.ArgumentParser):
    """Takes -1e-3 for a number; the library knows negative numbers without an exponent only."""

    def __init__(self, *arguments, **options):
        super().__init__(*arguments, **options)
        self._negative_number_matcher = re.compile(r"-(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?$")


def make_parser():
    parser = _Parser(
        prog="fluvane-view", description=_OVERVIEW, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    commands = parser.add_subparsers(dest="command", metavar="COMMAND", required=True)

    def command(name, text, files="+"):
        sub = commands.add_parser(
            name,
            help=text,
            description=text,
            epilog=_EXAMPLES[name],
            formatter_class=argparse.RawDescriptionHelpFormatter,
        )
        sub.add_argument("files", nargs=files, type=pathlib.Path, metavar="FILE")
        return sub

    picture = command("picture", "Pictures of result files.")
    _add_look(picture)
    _add_output(picture, "picture (.png, .pdf, .svg), or a folder; default: beside each file")
    animate = command("animate", "A GIF over files in order of time; a single file stands for all of its run.")
    _add_look(animate)
    animate.add_argument("--per-second", type=_positive(float, 0.1, 50), default=6, help="frames a second, default 6")
    _add_output(animate, "GIF file, or a folder; default: beside the first file")
    _add_line(command("line", "Values along a line, as a plot and as CSV."))
    residuals = command("residuals", "A plot of the residuals in a text saved from the terminal.")
    history = command("history", "A plot of the histories of a transient run.")
    history.add_argument(
        "--as-written",
        action="store_true",
        help="the accumulated figures of the file; default: the means of the moments, when a result file of the run "
        "beside the history gives the area",
    )
    for sub in (residuals, history):
        _add_dpi(sub)
        _add_output(sub, "picture, or a folder; default: beside the (first) file")
    vtu = command("vtu", "VTU files; of several a .pvd file with their times too.")
    vtu.add_argument("--run", action="store_true", help="all files of the one's run")
    _add_output(vtu, "folder, made when missing, or with a single file its .vtu; default: beside each file")
    _add_output(command("tecplot", "Tecplot files that ParaView, VTK and meshio read right."), "file, or a folder")
    command("info", "What result files hold.")
    return parser


def _add_line(parser):
    add = parser.add_argument
    add("--show", nargs="+", metavar="NAME", help="variables; default: the velocity and T")
    add("--along", choices=AXES, help="from one end of the mesh to the other along this axis, default x")
    add("--through", type=_finite, nargs="+", metavar="X", help="a point on that line; default: the middle of the mesh")
    add("--from", dest="start", type=_finite, nargs="+", metavar="X", help="one end of a line")
    add("--to", dest="end", type=_finite, nargs="+", metavar="X", help="the other end")
    add("--count", type=_positive(int, 2, 1000000), default=201, help="number of places on the line, default 201")
    add("--own-values", action="store_true", help="the value of the cell around each place, without interpolation")
    _add_dpi(parser)
    _add_output(parser, "plot or CSV file, the other goes beside it, or a folder; default: beside each file")


def _say(path):
    print(path)


def _row(numbers):
    return " ".join(map(str, numbers))


def _look(arguments):
    a = arguments
    if a.range and not apart(*a.range):
        raise ViewError(f"expected --range LOW HIGH with LOW below HIGH by more than rounding, found {_row(a.range)}")
    if a.zoom and not (apart(a.zoom[0], a.zoom[2]) and apart(a.zoom[1], a.zoom[3])):
        raise ViewError(
            f"expected --zoom X0 Y0 X1 Y1 with X0 below X1 and Y0 below Y1 by more than rounding, found {_row(a.zoom)}"
        )
    return Look(
        show=a.show,
        style=a.style,
        levels=a.levels,
        range=tuple(a.range) if a.range else None,
        isolines=a.isolines,
        isoline_count=a.isoline_count,
        vectors=a.vectors,
        streamlines=a.streamlines,
        mesh=a.mesh,
        front=a.front,
        colours=a.colours,
        zoom=a.zoom,
        title=a.title,
        dpi=a.dpi,
    )


def _picture(a):
    from .pictures import View, save_picture

    look = _look(a)
    for path, out in zip(a.files, targets(a.files, ".png", a.out)):
        save_picture(path, out, look, View(a.slice, a.boundary))
        _say(out)


def _animate(a):
    from .pictures import View, save_animation

    files = run_of(a.files)
    moments = moments_of(files)
    out = a.files[0].with_name(run_name(a.files) + ".gif")
    if a.out is not None:
        out = a.out / out.name if a.out.is_dir() else a.out
    save_animation(moments, out, _look(a), View(a.slice, a.boundary), a.per_second)
    _say(out)


def _line_ends(a):
    if (a.start is None) != (a.end is None):
        raise ViewError("expected both --from and --to, found one of them")
    if a.start is not None and (a.along or a.through):
        raise ViewError("expected --from and --to, or --along and --through, found both")

    def ends(low, high):
        if a.start is not None:
            return numpy.array(a.start), numpy.array(a.end)
        axis = AXES.index(a.along or "x")
        start = numpy.array(a.through) if a.through else (low + high) / 2.0
        end = start.copy()
        if axis >= len(low):
            raise ViewError("expected --along x or --along y for a 2D result, found --along z")
        if len(start) == len(low):
            start[axis], end[axis] = low[axis], high[axis]
        return start, end

    if a.start is not None and len(a.start) != len(a.end):
        raise ViewError("expected as many coordinates after --from as after --to")
    return ends


def _line(a):
    from .pictures import check_ending
    from .plots import sample_line, save_line_plot, save_line_table

    ends = _line_ends(a)
    outs = targets(a.files, "_line.png", a.out)
    plots = [out.with_suffix(".png") if out.suffix == ".csv" else out for out in outs]
    tables = [out.with_suffix(".csv") for out in outs]
    refuse_clashes(a.files, plots + tables)
    for plot in plots:
        check_ending(plot)
    for path, plot, table in zip(a.files, plots, tables):
        line = sample_line(path, a.show, ends, a.count, a.own_values)
        save_line_table(table, line)
        save_line_plot(plot, line, a.dpi)
        _say(table)
        _say(plot)


def _residuals(a):
    from .plots import save_residuals

    for path, out in zip(a.files, targets(a.files, ".png", a.out)):
        save_residuals(path, out, a.dpi)
        _say(out)


def _history(a):
    from .plots import save_history

    (out,) = targets(a.files[:1], ".png", a.out)
    save_history(a.files, out, a.dpi, (lambda _: None) if a.as_written else _area_of_run)
    _say(out)


def _area_of_run(history):
    """The mesh's area from a result file of the history's run; None when there is none beside it."""
    run, bar, _ = history.stem.rpartition("_")
    for path in sorted(files_of_run(history.parent, run)) if bar else []:
        result = read_result(path)
        if result.dimension == 2:
            a, b, c, d = (result.points[result.cells[:, i]] for i in range(4))
            p, q = c - a, d - b
            # Half the cross product of the diagonals; of a triangle a b c a those are its sides a c and b a.
            return float(numpy.abs(p[:, 0] * q[:, 1] - p[:, 1] * q[:, 0]).sum() / 2.0)
    return None


def _vtu(a):
    from .exports import save_series, save_vtu

    files = run_of(a.files) if a.run else a.files
    single_file = len(files) == 1 and a.out is not None and a.out.suffix == ".vtu" and not a.out.is_dir()
    moments = moments_of(files)
    outs = targets([moment.path for moment in moments], ".vtu", a.out, not single_file)
    folders = {out.parent for out in outs}
    if len(folders) > 1:
        raise ViewError("expected files of one folder, or a folder after -o, for a time series")
    series = outs[0].with_name(run_name([moments[0].path]) + ".pvd") if len(outs) > 1 else None
    if a.out is not None and not single_file:
        a.out.mkdir(parents=True, exist_ok=True)
    for moment, out in zip(moments, outs):
        save_vtu(read_result(moment.path), out, moment.time if moment.label else None)
        _say(out)
    if series is not None:
        save_series(series, [(moment.time, out.name) for moment, out in zip(moments, outs)])
        _say(series)


def _tecplot(a):
    from .exports import save_portable

    for path, out in zip(a.files, targets(a.files, "_portable.dat", a.out)):
        save_portable(path, out)
        _say(out)


def _info(a):
    if sys.stdout is None:
        raise ViewError("standard output: expected to be open, found it closed")
    for path in a.files:
        result = read_result(path)
        triangles = int(result.is_triangle().sum())
        cells = len(result.cells)
        kinds = (
            f"{triangles} triangles, {cells - triangles} quadrilaterals"
            if result.dimension == 2
            else f"{cells} tetrahedra"
        )
        print(f"{path}: {result.dimension}D, {len(result.points)} points, {kinds}")
        if result.parameters:
            print("  " + ", ".join(f"{name} = {value:g}" for name, value in result.parameters.items()))
        for axis, values in zip("XYZ", result.points.T):
            print(f"  {axis:5} {values.min():>12.6g} to {values.max():.6g}")
        for name, values in result.fields.items():
            finite = values[numpy.isfinite(values)]
            bad = f", {len(values) - len(finite)} cells not finite" if len(finite) < len(values) else ""
            print(
                f"  {name:5} "
                + (f"{finite.min():>12.6g} to {finite.max():.6g}" if len(finite) else "none finite")
                + bad
            )


_COMMANDS = {
    "picture": _picture,
    "animate": _animate,
    "line": _line,
    "residuals": _residuals,
    "history": _history,
    "vtu": _vtu,
    "tecplot": _tecplot,
    "info": _info,
}


def _with_command(arguments):
    """Files without a command: what suits the first of them."""
    if not arguments or arguments[0] in _COMMANDS or arguments[0] in ("-h", "--help"):
        return arguments
    file = next((word for word in arguments if os.path.isfile(word)), None)
    kind = kind_of(file) if file else "result"
    return [{"result": "picture"}.get(kind, kind), *arguments]


def _run(arguments):
    try:
        parsed = make_parser().parse_args(_with_command(arguments))
    except SystemExit as ended:  # after the help or a wrong option
        return ended.code
    _COMMANDS[parsed.command](parsed)
    return 0


def _give_up_output():
    """What could not be written to standard output would be tried again at the end."""
    if sys.stdout is not None:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())


def main(arguments):
    """Runs one command; returns the exit code: 1, with one line on standard error, for what cannot be done."""
    # What libraries would say about a field that is not finite, say, helps nobody here.
    warnings.simplefilter("ignore")
    numpy.seterr(all="ignore")
    try:
        code = _run(arguments)
        # None when the caller closed it, which keeps nobody from making files.
        if sys.stdout is not None:
            sys.stdout.flush()
        return code
    except ViewError as error:
        message = str(error)
    except ImportError as error:
        message = f"{error}; expected Debian's package python3-matplotlib"
    except MemoryError:
        message = "not enough memory"
    except BrokenPipeError:
        # Whoever read the output has gone; there is nobody to tell.
        _give_up_output()
        return 1
    except OSError as error:
        # Only standard output has no name.
        if error.filename is None:
            _give_up_output()
        message = f"{error.filename or 'standard output'}: {error.strerror}"
    except KeyboardInterrupt:
        return 130
    except Exception as error:
        message = f"an error of this program, {type(error).__name__}: {error}"
    print("fluvane-view: " + " ".join(message.split("\n")), file=sys.stderr)
    return 1
