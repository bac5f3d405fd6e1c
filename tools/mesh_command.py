"""The command line of the mesh companion: converting, reporting, making."""

import argparse
import os
import pathlib
import sys
import tempfile
import warnings

import cell_order
import foreign_meshes
import mesh_makers
import mesh_quality
from fluent_mesh import FluentMesh, MeshError, mesh_lines
from gmsh_session import GmshMissing
from mesh_table import CellSource, table_from_cells, table_from_faces
from mesh_zones import finish_zones

ABOUT = "Makes meshes that Fluvane opens: from other programs' files, or from scratch; and tells what a mesh is like."
CONVERT = """\
Reads Gmsh files (all versions, ASCII or binary), Fluent meshes with faces (ASCII or binary sections, not HDF5), and
what meshio reads: VTK, VTU, SU2, Abaqus, CGNS, Medit, Nastran and more. Cells must be triangles or quadrilaterals in
a plane, or tetrahedra. Middle points of curved cells are dropped. Boundary zones keep their names: physical groups
of Gmsh, zones of Fluent, markers, sets, or numbers in cell data. Boundary faces without a name go by the side of the
box they lie on, or are called wall. Groups between cells become interior faces, unless --wall names them.

examples:
  fluvane-mesh convert wing.msh wing_f.msh
  fluvane-mesh convert pipe.vtu pipe.msh --scale 0.001
  fluvane-mesh convert plate.su2 plate.msh --dimension 2
  fluvane-mesh convert room.msh room_f.msh --wall partition
"""
REPORT = """\
Counts, extent, shapes of the cells, and the time step that the program takes: CFL times the smallest face (its length
in 2D, its area in 3D), over the speed of sound (the root of RT) and the reference velocity (Ma times as much).

examples:
  fluvane-mesh report cavity.msh
  fluvane-mesh report cavity.msh --CFL 0.8 --Ma 0.05
"""
MAKE = """\
examples:
  fluvane-mesh make box
  fluvane-mesh make box long.msh --cells 120 20 --size 6 1 --triangles
  fluvane-mesh make stretched-box --cells 64 --stretch 8
  fluvane-mesh make stretched-box plate.msh --cells 80 40 --size 4 1 --stretch 1 20 --fine both low
  fluvane-mesh make annulus --radii 1 2 --cells 16 96
  fluvane-mesh make channel-cylinder --cells 24 --refine 6 --wake 8
  fluvane-mesh make cube --cells 12 --size 1 1 2
"""
SHAPES = {
    "box": "a rectangle of equal cells",
    "stretched-box": "a rectangle whose cells are finer towards its sides",
    "annulus": "a ring between two circles",
    "channel-cylinder": "free triangles in a channel around a cylinder; made by Gmsh",
    "cube": "a box of tetrahedra",
}


class _Form(argparse.RawDescriptionHelpFormatter, argparse.ArgumentDefaultsHelpFormatter):
    """Texts as they are written, and the defaults behind the options' texts."""

    def _get_help_string(self, action):
        return action.help if action.default is None else super()._get_help_string(action)


def _positive(text):
    value = float(text)
    if not 0.0 < value < float("inf"):
        raise argparse.ArgumentTypeError(f"{text} is not a positive number")
    return value


def _not_negative(text):
    return 0.0 if float(text) == 0.0 else _positive(text)


def _count(text):
    value = int(text)
    if not 1 <= value <= 100000:
        raise argparse.ArgumentTypeError(f"{text} is not a number from 1 to 100000")
    return value


def parser():
    top = argparse.ArgumentParser(prog="fluvane-mesh", description=ABOUT, epilog="Each command has its own --help.")
    commands = top.add_subparsers(dest="command", required=True, metavar="convert | report | make")
    own = _command(commands, "convert", "turns a file of another program into one that Fluvane opens", CONVERT)
    own.add_argument("input", metavar="IN", type=pathlib.Path)
    own.add_argument("output", metavar="OUT.msh", type=pathlib.Path)
    own.add_argument("--dimension", type=int, choices=(2, 3), help="what to take of a file with both (default: 3D)")
    own.add_argument("--scale", type=_positive, default=1.0, help="factor on all coordinates")
    own.add_argument("--wall", action="append", default=[], metavar="NAME",
                     help="make a wall of two sides of this group between cells; may be repeated")
    own.add_argument("--tags", metavar="ARRAY", help="the cell data whose numbers tell the boundary zones")
    own.add_argument("--merge", type=_not_negative, metavar="DISTANCE",
                     help="make one point of those nearer than this (0: at the very same place)")
    _add_order(own)
    _add_step(own)
    own = _command(commands, "report", "tells what a mesh is like", REPORT)
    own.add_argument("input", metavar="FILE.msh", type=pathlib.Path)
    own.add_argument("--dimension", type=int, choices=(2, 3), help=argparse.SUPPRESS)
    _add_step(own)
    own = commands.add_parser("make", help="makes a sample mesh", description="Makes a sample mesh.", epilog=MAKE,
                              formatter_class=_Form)
    shapes = own.add_subparsers(dest="shape", required=True, metavar=" | ".join(SHAPES))
    for shape, text in SHAPES.items():
        _add_shape(shapes, shape, text)
    return top


def _command(commands, name, text, epilog):
    return commands.add_parser(name, help=text, description=text[0].upper() + text[1:] + ".", epilog=epilog,
                               formatter_class=_Form)


def _add_order(own):
    own.add_argument("--order", choices=("auto", "keep", "curve"), default="auto",
                     help="numbers of the cells: as they are, along a curve that keeps neighbours together, or that "
                     "only where it pays")


def _add_step(own):
    own.add_argument("--CFL", type=_positive, default=0.4, help="for the time step")
    own.add_argument("--RT", type=_positive, default=0.333333, help="for the time step")
    own.add_argument("--Ma", type=_not_negative, default=0.1, help="for the time step")


def _add_shape(shapes, shape, text):
    examples = [line for line in MAKE.splitlines() if f"make {shape}" in line]
    own = shapes.add_parser(shape, help=text, description=text[0].upper() + text[1:] + ".",
                            epilog="\n".join(["examples:", *examples]), formatter_class=_Form)
    own.add_argument("output", metavar="OUT.msh", type=pathlib.Path, nargs="?", default=f"{shape}.msh")
    axes, sides = (3, [1.0, 1.0, 1.0]) if shape == "cube" else (2, [1.0, 1.0])
    if shape in ("box", "stretched-box", "cube"):
        own.add_argument("--cells", type=_count, nargs="+", default=[10 if axes == 3 else 32], metavar="N",
                         help="cells along each axis; one number goes for all")
        own.add_argument("--size", type=_positive, nargs=axes, default=sides, metavar="L", help="lengths of the sides")
    if shape in ("box", "stretched-box", "annulus"):
        own.add_argument("--triangles", action="store_true", help="cut each cell in two")
    if shape == "stretched-box":
        own.add_argument("--stretch", type=_positive, nargs="+", default=[5.0], metavar="R",
                         help="largest to smallest cell along x and y; one number goes for both")
        own.add_argument("--fine", choices=("low", "high", "both"), nargs="+", default=["both"],
                         help="the ends with fine cells, along x and y; one word goes for both")
    elif shape == "cube":
        own.add_argument("--jitter", type=float, default=0.0,
                         help="move inner points at random by at most this share of a cell, below 1/6")
    elif shape == "annulus":
        own.add_argument("--radii", type=_positive, nargs=2, default=[0.9, 3.0], metavar="R", help="inner and outer")
        own.add_argument("--cells", type=_count, nargs="+", default=[16], metavar="N",
                         help="cells across, and around (by itself: three times as many)")
    elif shape == "channel-cylinder":
        _add_channel(own)
    _add_step(own)


def _add_channel(own):
    own.add_argument("--size", type=_positive, nargs=2, default=[22.0, 4.1], metavar="L", help="length and height")
    own.add_argument("--centre", type=_positive, nargs=2, default=[2.0, 2.0], metavar="X", help="of the cylinder")
    own.add_argument("--radius", type=_positive, default=0.5, help="of the cylinder")
    own.add_argument("--cells", type=_count, default=16, metavar="N", help="cells across the height, far away")
    own.add_argument("--refine", type=_positive, default=4.0, help="how many times smaller cells are at the cylinder")
    own.add_argument("--reach", type=_positive, default=6.0, help="radii from its surface to where cells are full size")
    own.add_argument("--wake", type=_not_negative, default=5.0, help="diameters behind it that stay fine")


def _per_axis(options, name, axes):
    values = getattr(options, name)
    if len(values) not in (1, axes):
        raise MeshError(f"--{name} takes one value or {axes}")
    return values * axes if len(values) == 1 else values


def _made(options):
    """The mesh that `make` asks for."""
    shape = options.shape
    if shape == "cube":
        return mesh_makers.cube(tuple(_per_axis(options, "cells", 3)), options.size, options.jitter)
    if shape == "channel-cylinder":
        far = options.size[1] / options.cells
        return mesh_makers.channel_with_cylinder(
            *options.size, options.centre, options.radius, (far, far / options.refine), options.reach, options.wake
        )
    if shape == "annulus":
        if len(options.cells) > 2:
            raise MeshError("--cells takes one number or 2")
        across, around = (options.cells * 3)[0], options.cells[1] if len(options.cells) > 1 else 3 * options.cells[0]
        if around < 3:
            raise MeshError("a ring needs at least 3 cells around")
        return mesh_makers.ring(*options.radii, across, around, options.triangles)
    cells = _per_axis(options, "cells", 2)
    if shape == "box":
        lines = [mesh_makers.even(n, length) for n, length in zip(cells, options.size)]
    else:
        ratios, fine = _per_axis(options, "stretch", 2), _per_axis(options, "fine", 2)
        lines = [mesh_makers.stretched(*given) for given in zip(cells, options.size, ratios, fine)]
    return mesh_makers.rectangle(*lines, options.triangles)


def table_of(source, order="keep", walls=()):
    """A mesh whose zones and numbers are final."""
    build = table_from_cells if isinstance(source, CellSource) else table_from_faces
    table = build(source, walls)
    unknown = [name for name in walls if name not in table.zone_names]
    if unknown:
        raise MeshError(f"has no group {unknown[0]} (it has: {', '.join(table.zone_names) or 'none'})")
    finish_zones(table)
    if cell_order.reorder(table, order):
        table.notes.append("cells were renumbered so that neighbours have near numbers")
    return table


def fluent_mesh_of(table):
    """The same mesh as lists, for the writer of the layout."""
    faces = [a.tolist() for a in (*table.nodes.T, table.c0, table.c1)]
    faces = list(zip(*faces))
    interior = [face for face in faces if face[-1] >= 0]
    zones = [(name, []) for name in table.zone_names]
    for face, zone in zip(faces, table.zone.tolist()):
        if face[-1] < 0:
            zones[zone][1].append(face)
    sizes = table.sizes.tolist()
    cells = [cell[:size] for cell, size in zip(table.cells.tolist(), sizes)]
    return FluentMesh(table.points.tolist(), cells, interior, zones)


def write_mesh(table, path, comment):
    """Writes the file whole or not at all; devices and pipes in place, and behind a link the file it leads to."""
    lines = (line + "\n" for line in mesh_lines(fluent_mesh_of(table), comment))
    try:
        if path.exists() and not path.is_file():
            with open(path, "w", encoding="utf-8", newline="\n") as file:
                file.writelines(lines)
        else:
            _write_whole(pathlib.Path(os.path.realpath(path)), lines)
    except OSError as error:
        # The system names the file beside, or none.
        raise OSError(error.errno, error.strerror, str(path)) from error


def _write_whole(path, lines):
    with tempfile.NamedTemporaryFile("w", encoding="utf-8", newline="\n", dir=path.parent, delete=False) as file:
        try:
            file.writelines(lines)
            file.close()
            mask = os.umask(0)
            os.umask(mask)
            os.chmod(file.name, 0o666 & ~mask)
            os.replace(file.name, path)
        except BaseException:
            os.unlink(file.name)
            raise


def _report(name, table, options):
    print(f"{name}: {table.dimension}D")
    for line in mesh_quality.report_lines(table, options.CFL, options.RT, options.Ma):
        print(line)
    for note in table.notes:
        print(f"note       {note}")


def _convert(options):
    if options.output.exists() and options.input.exists() and options.output.samefile(options.input):
        raise MeshError("would be overwritten by its own conversion; choose another name")
    source = foreign_meshes.read_mesh(options.input, options.dimension, options.tags)
    if options.merge is not None:
        source = foreign_meshes.merge_points(source, options.merge)
    source.points = source.points * options.scale
    table = table_of(source, options.order, options.wall)
    write_mesh(table, options.output, "converted by fluvane-mesh")
    return table, options.output


def run(options):
    if options.command == "report":
        table, name = table_of(foreign_meshes.read_mesh(options.input, options.dimension)), options.input
    elif options.command == "convert":
        table, name = _convert(options)
    else:
        table, name = table_of(_made(options), "auto"), options.output
        table.notes.clear()  # they are about what was read
        write_mesh(table, name, f"{options.shape}, made by fluvane-mesh")
    _report(name, table, options)


STANDARD_OUTPUT = "standard output"


def main(arguments):
    for stream in ("stdout", "stderr"):
        if getattr(sys, stream) is None:  # closed by the shell
            setattr(sys, stream, open(os.devnull, "w"))
    # Zones may have names that the terminal cannot show. What is printed is kept until the end, also where Python
    # is told not to, so that a failure can be told from one of the files.
    sys.stdout.reconfigure(errors="replace", write_through=False)
    # Numbers beyond all bounds end in a refusal, not in lines about arithmetic.
    warnings.simplefilter("ignore")
    named = None
    try:
        try:
            options = parser().parse_args(arguments)
            named = options.output if options.command == "make" else options.input
            run(options)
        finally:
            _flush()
    except OSError as error:
        if isinstance(error, BrokenPipeError) and error.filename in (None, STANDARD_OUTPUT):
            return 0  # whoever read the report has gone; there is nobody to tell
        return _fail(error.filename or named, error.strerror or str(error))
    except (MeshError, GmshMissing) as error:
        return _fail(named, str(error))
    except MemoryError:
        return _fail(named, "needs more memory than there is")
    except KeyboardInterrupt:
        return 130
    except Exception as error:  # whatever a damaged file leads to: one line, as for every other
        return _fail(named, f"cannot be read ({type(error).__name__}: {error})")
    return 0


def _flush():
    """Sends off what was printed, as long as a failure can be told."""
    try:
        sys.stdout.flush()
    except OSError as error:
        # The interpreter would fail over the same text once more when it ends.
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        raise OSError(error.errno, error.strerror, STANDARD_OUTPUT) from error


def _fail(name, reason):
    print(f"fluvane-mesh: {name}: {' '.join(str(reason).split())}", file=sys.stderr)
    return 1
