"""Reads the faces, points and zone names of Fluent mesh files of any layout, ASCII or binary."""

import re
import warnings

import numpy as np

from fluent_mesh import MeshError
from mesh_table import FaceSource, listed

OPENING = re.compile(rb"\(\s*(\d+)")
HEADER = re.compile(rb"\s*\(([^()]*)\)")
TOKEN = re.compile(rb'[()"]')
NAMED_COMMENT = re.compile(rb'[Ff]aces of zone\s+([^\s"()]+)')
BINARY_END = re.compile(rb"\)\s*End of Binary Section\s+\d+\s*\)")
NUMBER = np.dtype("<i4")
INTERIOR, WALL = 2, 3
KINDS = {
    3: "wall", 4: "pressure-inlet", 5: "pressure-outlet", 7: "symmetry", 8: "periodic-shadow",
    9: "pressure-far-field", 10: "velocity-inlet", 12: "periodic", 14: "fan", 20: "mass-flow-inlet",
    24: "interface", 36: "outflow", 37: "axis",
}
MIXED, POLYGONS = 0, 5  # types of face zones whose faces begin with their number of nodes

# The digit of each byte, or one of these two.
NO_DIGIT, BLANK = 16, 17
DIGITS = np.full(256, NO_DIGIT, dtype=np.uint8)
DIGITS[np.frombuffer(b"0123456789", dtype=np.uint8)] = np.arange(10)
DIGITS[np.frombuffer(b"abcdef", dtype=np.uint8)] = np.arange(10, 16)
DIGITS[np.frombuffer(b"ABCDEF", dtype=np.uint8)] = np.arange(10, 16)
DIGITS[np.frombuffer(b" \t\r\n\v\f", dtype=np.uint8)] = BLANK


def hex_numbers(text):
    """All hexadecimal words of a text, of either letter case; None when something else stands among them."""
    digits = DIGITS[np.frombuffer(text, dtype=np.uint8)]
    if (digits == NO_DIGIT).any():
        return None
    inside = np.zeros(len(digits) + 2, dtype=np.int8)
    inside[1:-1] = digits != BLANK
    edges = np.flatnonzero(np.diff(inside))
    start, length = edges[::2], edges[1::2] - edges[::2]
    longest = int(length.max(initial=0))
    if longest > 15:
        return None
    value = np.zeros(len(start), dtype=np.int64)
    for k in range(longest):
        more = length > k
        value[more] = value[more] * 16 + digits[start[more] + k]
    return value


class _Reader:
    def __init__(self, data):
        self.data = data
        self.dimension = 0
        self.points = []  # (first number, array)
        self.faces = []  # (zone id, kind, name in the comment before, (n, nodes + 2) array)
        self.names = {}
        self.cell_zones = {}
        self.comment_name = None
        self.periodic = False

    def fail(self, position, text):
        line = self.data.count(b"\n", 0, position) + 1
        raise MeshError(f"line {line}: {text}")

    def read(self):
        position = 0
        while True:
            opening = OPENING.search(self.data, position)
            if opening is None:
                return
            position = self._section(int(opening[1]), opening.start(), opening.end())

    def _section(self, index, start, position):
        """Reads the section whose number ends at `position`; returns where it ends."""
        binary, index = divmod(index, 1000)
        if index in (58, 59) and not binary:
            self.fail(start, f"holds a refined mesh (section {index}); write it with its faces only")
        if index in (10, 12, 13):
            return self._data(index, binary, start, position)
        if binary:
            mark = BINARY_END.search(self.data, position)
            return len(self.data) if mark is None else mark.end()
        end = self._close(start, position)
        text = self.data[position:end]
        if index == 0:
            name = NAMED_COMMENT.search(text)
            if name:
                self.comment_name = _text(name[1])
        elif index == 2:
            words = text.strip(b" \t\r\n)").split()
            if len(words) != 1 or words[0] not in (b"2", b"3"):
                self.fail(start, "tells a dimension other than 2 and 3")
            self.dimension = int(words[0])
        elif index in (39, 45):
            self._name(text)
        elif index == 18:
            self.periodic = True
        return end

    def _close(self, start, position):
        """Behind the parenthesis that closes the section opened at `start`."""
        depth = 1
        while depth:
            token = TOKEN.search(self.data, position)
            if token is None:
                self.fail(start, "a section without its closing parenthesis")
            position = token.end()
            if token[0] == b'"':
                position = self.data.find(b'"', position) + 1
                if position == 0:
                    self.fail(start, "a text without its closing quote")
            else:
                depth += 1 if token[0] == b"(" else -1
        return position

    def _name(self, text):
        header = HEADER.match(text)
        words = _text(header[1]).split() if header else []
        if len(words) >= 3 and words[0].isdigit():
            if words[1] in ("fluid", "solid"):
                self.cell_zones[int(words[0])] = words[2]
            else:
                self.names[int(words[0])] = words[2]

    def _data(self, index, binary, start, position):
        header = HEADER.match(self.data, position)
        words = [] if header is None else hex_numbers(header[1])
        if words is None or len(words) < 3:
            self.fail(start, f"section {index} without a header (zone first last ...)")
        words = [int(word) for word in words]
        bracket = re.compile(rb"\s*([()])").match(self.data, header.end())
        if bracket is None:
            self.fail(start, f"section {index} is neither closed nor followed by its numbers")
        if bracket[1] == b")":
            return bracket.end()
        body = bracket.end()
        count = words[2] - words[1] + 1
        if binary:
            end, after = self._binary_end(index, binary, start, body, words, count)
        else:
            end = self.data.find(b")", body)
            if end < 0:
                self.fail(start, f"section {index} without its closing parenthesis")
            after = self._close(start, end + 1) if self.data[end + 1 : end + 40].lstrip()[:1] == b")" else end + 1
        if index == 10:
            self._read_points(start, self.data[body:end], binary, words, count)
        elif index == 13 and words[0]:
            self._read_faces(start, self.data[body:end], binary, words, count)
        return after

    def _binary_end(self, index, binary, start, body, words, count):
        least = count * self._coordinates(words) * (8 if binary == 3 else 4) if index == 10 else 0
        if index == 13 and len(words) > 4 and words[4] in (2, 3, 4):
            least = count * (words[4] + 2) * NUMBER.itemsize
        mark = BINARY_END.search(self.data, body + max(least, 0))
        if mark is None:
            self.fail(start, f"binary section without its end ({count} entries declared)")
        return mark.start(), mark.end()

    def _coordinates(self, words):
        return words[4] if len(words) > 4 and words[4] in (2, 3) else self.dimension

    def _read_points(self, start, body, binary, words, count):
        if binary:
            values = np.frombuffer(body[: len(body) // 8 * 8] if binary == 3 else body[: len(body) // 4 * 4],
                                   dtype="<f8" if binary == 3 else "<f4").astype(float)
        else:
            values = _decimals(body)
            if values is None:
                self.fail(start, "something else than numbers among the points")
        axes = self._coordinates(words)
        if count < 1 or axes == 0 or len(values) != count * axes:
            self.fail(start, f"{count} points declared, found {len(values)} numbers")
        self.points.append((words[1], values.reshape(count, axes)))

    def _read_faces(self, start, body, binary, words, count):
        numbers = np.frombuffer(body[: len(body) // 4 * 4], dtype=NUMBER) if binary else hex_numbers(body)
        if numbers is None:
            self.fail(start, "something else than hexadecimal numbers among the faces")
        kind = words[3] if len(words) > 3 else 0
        shape = words[4] if len(words) > 4 else MIXED
        if kind == 31:
            self.fail(start, "holds a refined mesh (parent faces); write it with its faces only")
        if count < 1:
            self.fail(start, "a face zone without faces")
        leading = shape in (MIXED, POLYGONS)
        nodes = int(numbers[0]) if leading and len(numbers) else shape
        if not leading and len(numbers) != count * (nodes + 2):
            # Some programs, and the samples, write 2 for triangles as well.
            nodes = len(numbers) // count - 2
        width = nodes + 2 + leading
        if leading and (len(numbers) != count * width or (numbers[::width] != nodes).any()):
            nodes = 0  # of several kinds
        elif len(numbers) != count * width:
            self.fail(start, f"{count} faces declared, found {len(numbers)} numbers")
        self.faces.append((words[0], kind, self.comment_name, nodes, numbers.reshape(count, -1)[:, leading:]
                           if nodes else None, start))
        self.comment_name = None


def _text(data):
    try:
        return data.decode("utf-8")
    except UnicodeDecodeError:
        return data.decode("latin-1")


def _decimals(text):
    """All numbers of a text; None when something else stands among them."""
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        try:
            return np.fromstring(text, sep=" ")
        except (DeprecationWarning, ValueError):
            return None


def read_fluent(data):
    """The FaceSource of a file's bytes."""
    reader = _Reader(data)
    reader.read()
    if not reader.points:
        raise MeshError("holds no points")
    if not reader.faces:
        raise MeshError("holds no faces, only what Fluent calls cells; write it with its faces")
    dimension = reader.dimension or reader.points[0][1].shape[1]
    highest = max(first - 1 + len(p) for first, p in reader.points)
    if highest > len(data):
        raise MeshError(f"names point {highest}, and the file has no room for so many")
    points = np.full((highest, dimension), np.nan)
    for first, own in reader.points:
        if first < 1 or own.shape[1] < dimension:
            raise MeshError("points with too few coordinates, or numbered from 0")
        points[first - 1 : first - 1 + len(own)] = own[:, :dimension]
    return _assemble(reader, points)


def _assemble(reader, points):
    dimension = points.shape[1]
    zones, columns, notes, place = [], [], [], {}
    for number, kind, comment, nodes, faces, start in reader.faces:
        name = reader.names.get(number) or comment or f"{KINDS.get(kind, 'zone')}-{number}"
        if nodes != dimension:
            shape = f"faces of {nodes} nodes" if nodes else "faces of several shapes"
            wanted = "edges of 2 nodes" if dimension == 2 else "triangles, the sides of tetrahedra"
            reader.fail(start, f"zone {name} has {shape}; the program needs {wanted}")
        faces = faces.astype(np.int64) - 1
        if faces.min() < -1 or faces[:, :dimension].min() < 0 or faces[:, :dimension].max() >= len(points):
            reader.fail(start, f"a face of zone {name} names a point that the file does not hold")
        between = (faces[:, dimension:] >= 0).all(axis=1)
        # A zone may stand in several sections.
        zone = np.full(len(faces), -1 if kind == INTERIOR else place.setdefault(number, len(zones)))
        if kind == INTERIOR and not between.all():
            notes.append(f"{int((~between).sum())} faces of the interior zone {name} have one cell only: a boundary")
        columns.append((faces, zone))
        if kind != INTERIOR and place[number] == len(zones):
            zones.append((name, kind == WALL))
    faces = np.concatenate([own for own, _ in columns])
    zone = np.concatenate([own for _, own in columns])
    _note(reader, notes)
    return FaceSource(
        points, faces[:, :dimension], faces[:, dimension], faces[:, dimension + 1], zone, zones, notes
    )


def _note(reader, notes):
    if len(reader.cell_zones) > 1:
        notes.append(f"the cell zones {listed(reader.cell_zones.values())} become one")
    interiors = len({number for number, kind, *_ in reader.faces if kind == INTERIOR})
    if interiors > 1:
        notes.append(f"{interiors} interior zones become one")
    if reader.periodic or any(kind in (8, 12) for _, kind, *_ in reader.faces):
        notes.append("periodic faces become plain boundary zones")
    if any(kind == 24 for _, kind, *_ in reader.faces):
        notes.append("interfaces between grids that do not meet node by node become plain boundary zones")
