"""Reads result files in the program's own layout, and portable ones made of them."""

import dataclasses
import pathlib
import re
import warnings

import numpy

from .errors import ViewError, bad_line

_NUMBER = re.compile(rb"[-+]?(\d+\.?\d*([eE][-+]?\d+)?|\.\d+([eE][-+]?\d+)?|inf|nan)$")
_PARAMETER = re.compile(r"([A-Za-z]\w*)\s*=\s*([^\s,]+)")
_COORDINATES = {"FEQUADRILATERAL": ["X", "Y"], "FETETRAHEDRON": ["X", "Y", "Z"]}
_MOST_HEADER_LINES = 40
_GREATEST = 1e100


@dataclasses.dataclass
class Result:
    """One result file. Fields hold one number a cell and are named as in the file."""

    path: pathlib.Path
    parameters: dict  # name to number, in the file's order; empty in 3D, where the program writes none
    points: numpy.ndarray  # (points, 2 or 3)
    cells: numpy.ndarray  # (cells, 4) point indices from 0; a triangle repeats its first corner
    fields: dict

    @property
    def dimension(self):
        return self.points.shape[1]

    def is_triangle(self):
        """True for each triangle of a 2D mesh."""
        return (self.cells[:, 3] == self.cells[:, 0]) & (self.dimension == 2)

    def has_mesh_of(self, other):
        return numpy.array_equal(self.cells, other.cells) and numpy.array_equal(self.points, other.points)

    def velocity(self):
        """(cells, 2 or 3), or None when the file lacks a component."""
        names = ["u", "v", "w"][: self.dimension]
        if any(name not in self.fields for name in names):
            return None
        return numpy.column_stack([self.fields[name] for name in names])

    def drawable(self, name):
        """The field with nan for what is not finite or beyond 1e100: of a run that blew up the rest can be drawn."""
        values = self.field(name)
        return numpy.where(numpy.abs(values) < _GREATEST, values, numpy.nan)

    def field(self, name):
        """A field of the file, or "speed", the velocity's magnitude."""
        if name in self.fields:
            return self.fields[name]
        velocity = self.velocity()
        if name == "speed" and velocity is not None:
            return numpy.sqrt((velocity**2).sum(axis=1))
        known = list(self.fields) + (["speed"] if velocity is not None else [])
        raise ViewError(f'{self.path}: expected one of the variables {", ".join(known)}, found "{name}"')


@dataclasses.dataclass
class Header:
    """What stands above the numbers of a result file."""

    lines: list  # with their line ends
    variables: list
    point_count: int
    cell_count: int
    zone_type: str
    parameters: dict

    @property
    def coordinates(self):
        return _COORDINATES[self.zone_type]

    def blocks(self):
        """(name, count) of each block of numbers in the file's order, the corners of the cells last."""
        fields = self.variables[len(self.coordinates) :]
        blocks = [(name, self.point_count) for name in self.coordinates] + [(name, self.cell_count) for name in fields]
        return blocks + [("corners of the cells", 4 * self.cell_count)]


def read_bytes(path):
    try:
        return pathlib.Path(path).read_bytes()
    except OSError as error:
        raise ViewError(f"{path}: expected a file that can be read, found: {error.strerror}") from None


def read_result(path):
    """The result in a file; ViewError names the line of the first thing that does not fit."""
    data = read_bytes(path)
    header = read_header(path, data)
    body = data[sum(map(len, header.lines)) :]
    numbers = _parse_numbers(path, header, body)
    arrays, start = {}, 0
    for name, count in header.blocks():
        arrays[name] = numbers[start : start + count]
        start += count
    corners = arrays.pop("corners of the cells")
    points = numpy.column_stack([arrays.pop(name) for name in header.coordinates])
    _check_points(path, header, body, points)
    cells = _check_corners(path, header, body, corners)
    return Result(pathlib.Path(path), header.parameters, points, cells, arrays)


def read_header(path, data):
    """The lines up to VARLOCATION. Parameters may stand behind a #, as in portable files."""
    lines, found, parameters, start = [], {}, {}, 0
    while "VARLOCATION" not in found:
        number = len(lines) + 1
        end = data.find(b"\n", start) + 1 or len(data)
        text = data[start:end].decode("latin-1").strip()
        waited = next(key for key in ("TITLE", "VARIABLES", "ZONE", "DATAPACKING", "VARLOCATION") if key not in found)
        if start == len(data):
            raise bad_line(path, number, f"a line that begins with {waited}", "the end of the file")
        key = re.match(r"[A-Z]+", text)
        if key and key[0] in ("TITLE", "VARIABLES", "ZONE", "DATAPACKING", "VARLOCATION"):
            found[key[0]] = (number, text)
        elif "TITLE" in found and _PARAMETER.search(text):
            parameters.update(_read_parameters(path, number, text))
        else:
            raise bad_line(path, number, f"a line that begins with {waited}", f'"{text}"' if text else "an empty line")
        if number > _MOST_HEADER_LINES:
            raise bad_line(path, number, f"a line that begins with {waited}", f"{number} lines without it")
        lines.append(data[start:end])
        start = end
    return _make_header(path, lines, found, parameters)


def _make_header(path, lines, found, parameters):
    for key in ("TITLE", "VARIABLES", "ZONE", "DATAPACKING"):
        if key not in found:
            raise bad_line(path, found["VARLOCATION"][0], f"a line that begins with {key}", "VARLOCATION")
    number, zone = found["ZONE"]
    match = re.match(r"ZONE\s+N\s*=\s*(\d+)\s*,\s*E\s*=\s*(\d+)\s*,\s*ZONETYPE\s*=\s*(\w+)$", zone)
    if not match or match[3] not in _COORDINATES:
        kinds = " or ".join(_COORDINATES)
        raise bad_line(path, number, f'"ZONE N=points, E=cells, ZONETYPE = {kinds}"', f'"{zone}"')
    if not re.match(r"DATAPACKING\s*=\s*BLOCK$", found["DATAPACKING"][1]):
        raise bad_line(path, found["DATAPACKING"][0], '"DATAPACKING = BLOCK"', f'"{found["DATAPACKING"][1]}"')
    number, text = found["VARIABLES"]
    variables = re.findall(r'"([^"]*)"', text)
    coordinates = _COORDINATES[match[3]]
    if variables[: len(coordinates)] != coordinates or len(set(variables)) != len(variables):
        raise bad_line(path, number, f"variables that begin with {', '.join(coordinates)}", f'"{text}"')
    if len(variables) == len(coordinates):
        raise bad_line(path, number, f"variables of the cells after {', '.join(coordinates)}", f'"{text}"')
    if int(match[1]) == 0 or int(match[2]) == 0:
        raise bad_line(path, found["ZONE"][0], "at least one point and one cell", f'"{zone}"')
    return Header(lines, variables, int(match[1]), int(match[2]), match[3], parameters)


def _read_parameters(path, number, text):
    values = {}
    for name, value in _PARAMETER.findall(text):
        if not _NUMBER.match(value.lstrip("+-").encode("latin-1")):
            raise bad_line(path, number, f"a number after {name}=", f'"{value}"')
        values[name] = float(value)
    return values


def _parse_numbers(path, header, body):
    expected = sum(count for _, count in header.blocks())
    with warnings.catch_warnings(record=True) as complaints:
        warnings.simplefilter("always")
        try:
            numbers = numpy.empty(0) if body.isspace() or not body else numpy.fromstring(body, sep=" ")
        except ValueError:  # what later versions do instead of the warning
            numbers = numpy.empty(0)
    if len(numbers) == expected and not complaints:
        return numbers
    raise _number_fault(path, header, body, expected)


def _is_number(word):
    return bool(_NUMBER.match(word))


def _number_fault(path, header, body, expected):
    """The first thing that is no number, is missing or is too much; slow, and only for files that do not fit."""
    count = 0
    lines = body.rstrip().split(b"\n") if body.strip() else []
    for line, text in enumerate(lines, len(header.lines) + 1):
        for word in text.split():
            if count == expected:
                return bad_line(path, line, f"the end of the file after {header.cell_count} cells", _shown(word))
            if not _is_number(word):
                return bad_line(path, line, _place(header, count), _shown(word))
            count += 1
    return bad_line(path, len(header.lines) + len(lines) + 1, _place(header, count), "the end of the file")


def _shown(word):
    return f'"{word.decode("latin-1")}"'


def _place(header, index):
    """What the number with this index is: "number 3 of 36 of T"."""
    for name, count in header.blocks():
        if index < count:
            return f"number {index + 1} of {count} of {name}"
        index -= count
    return "the end of the file"


def _line_of(header, body, index):
    """The line of the number with this index; quick only in short files, for messages."""
    for line, text in enumerate(body.split(b"\n"), len(header.lines) + 1):
        index -= len(text.split())
        if index < 0:
            return line
    return len(header.lines)


def _check_points(path, header, body, points):
    """Coordinates must be numbers that can be squared, and no axis may lack an extent."""
    numbers = points.T.ravel()
    bad = numpy.flatnonzero(~(numpy.abs(numbers) < _GREATEST))
    if len(bad):
        raise bad_line(path, _line_of(header, body, bad[0]), "a finite coordinate", f"{numbers[bad[0]]:g}")
    extent = numpy.ptp(points, axis=0)
    flat = numpy.flatnonzero(extent <= 1e-12 * extent.max())
    if len(flat):
        line, axis = len(header.lines) + 1 + flat[0] * len(points), header.coordinates[flat[0]]
        raise bad_line(path, line, f"points with different {axis}", f"{axis} = {points[0, flat[0]]:g} for all")


def _check_corners(path, header, body, corners):
    indices = numpy.nan_to_num(corners, nan=0.0, posinf=0.0, neginf=0.0).astype(numpy.int64)
    bad = numpy.flatnonzero((indices != corners) | (indices < 1) | (indices > header.point_count))
    if len(bad):
        before = sum(count for _, count in header.blocks()[:-1])
        line = _line_of(header, body, before + bad[0])
        raise bad_line(path, line, f"a point from 1 to {header.point_count}", f"{corners[bad[0]]:g}")
    return indices.reshape(-1, 4) - 1
