"""Files for other viewers: VTU with a time series over them, and a Tecplot layout that they read right."""

import base64
import re
from xml.sax.saxutils import quoteattr

import numpy

from .output import write_whole
from .result_file import read_bytes, read_header

_TRIANGLE, _QUADRILATERAL, _TETRAHEDRON = 5, 9, 10


def portable_bytes(path):
    """The file with a # before each parameter line and the cells' variables alone in the cell-centred range.

    The other lines are as they were, line ends included.
    """
    data = read_bytes(path)
    header = read_header(path, data)
    first, last = len(header.coordinates) + 1, len(header.variables)
    lines = []
    for line in header.lines:
        if line.startswith(b"VARLOCATION"):
            end = line[len(line.rstrip(b"\r\n")) :]
            line = b"VARLOCATION = ([%d-%d]=CELLCENTERED)" % (first, last) + end
        elif re.match(rb"[A-Za-z]\w*=", line):
            line = b"#" + line
        lines.append(line)
    return b"".join(lines) + data[sum(map(len, header.lines)) :]


def save_portable(path, out):
    data = portable_bytes(path)
    write_whole(out, lambda part: part.write_bytes(data))


def _corners(result):
    """(connectivity, ends, types) as VTK has them: true triangles with three corners."""
    if result.dimension == 3:
        count = numpy.full(len(result.cells), 4)
        kinds = numpy.full(len(result.cells), _TETRAHEDRON)
    else:
        count = numpy.where(result.is_triangle(), 3, 4)
        kinds = numpy.where(result.is_triangle(), _TRIANGLE, _QUADRILATERAL)
    connectivity = result.cells[numpy.arange(4) < count[:, None]]
    return connectivity, numpy.cumsum(count), kinds


_TYPES = {"f8": "Float64", "i8": "Int64", "u1": "UInt8"}


def _element(name, values, kind, extra=""):
    """A DataArray element with its numbers in base 64, behind their size in bytes.

    Not in one raw block at the end of the file, which is shorter: meshio takes arrays of small files for each other
    there.
    """
    values = numpy.ascontiguousarray(values, "<" + kind)
    components = f' NumberOfComponents="{values.shape[1]}"' if values.ndim == 2 else ""
    numbers = base64.b64encode(numpy.array(values.nbytes, "<u8").tobytes() + values.tobytes()).decode("ascii")
    attributes = f'type="{_TYPES[kind]}" Name={quoteattr(name)}{components}{extra} format="binary"'
    return f"<DataArray {attributes}>\n{numbers}\n</DataArray>\n"


def _three_components(values):
    return values if values.shape[1] == 3 else numpy.column_stack([values, numpy.zeros(len(values))])


def vtu_bytes(result, time=None):
    """An unstructured grid in double precision: the fields, the velocity as a vector, parameters as field data."""
    single = ' NumberOfTuples="1"'
    facts = dict(result.parameters) if time is None else {"TimeValue": time, **result.parameters}
    field_data = "".join(_element(name, [value], "f8", single) for name, value in facts.items())
    cell_data = "".join(_element(name, values, "f8") for name, values in result.fields.items())
    if result.velocity() is not None:
        cell_data += _element("velocity", _three_components(result.velocity()), "f8")
    points = _element("Points", _three_components(result.points), "f8")
    connectivity, ends, kinds = _corners(result)
    cells = _element("connectivity", connectivity, "i8") + _element("offsets", ends, "i8")
    cells += _element("types", kinds, "u1")
    text = (
        '<?xml version="1.0"?>\n'
        '<VTKFile type="UnstructuredGrid" version="1.0" byte_order="LittleEndian" header_type="UInt64">\n'
        f"<UnstructuredGrid>\n<FieldData>\n{field_data}</FieldData>\n"
        f'<Piece NumberOfPoints="{len(result.points)}" NumberOfCells="{len(result.cells)}">\n'
        f"<PointData/>\n<CellData>\n{cell_data}</CellData>\n<Points>\n{points}</Points>\n<Cells>\n{cells}</Cells>\n"
        "</Piece>\n</UnstructuredGrid>\n</VTKFile>\n"
    )
    return text.encode("utf-8")


def save_vtu(result, out, time=None):
    data = vtu_bytes(result, time)
    write_whole(out, lambda part: part.write_bytes(data))


def save_series(out, entries):
    """A .pvd file over (time, name of the VTU beside it)."""
    sets = "".join(f'<DataSet timestep="{time!r}" part="0" file={quoteattr(name)}/>\n' for time, name in entries)
    text = (
        '<?xml version="1.0"?>\n<VTKFile type="Collection" version="1.0" byte_order="LittleEndian">\n'
        f"<Collection>\n{sets}</Collection>\n</VTKFile>\n"
    )
    write_whole(out, lambda part: part.write_text(text, encoding="utf-8"))
