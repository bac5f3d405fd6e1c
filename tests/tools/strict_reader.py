"""A second, independent reading of the mesh layout that accepts nothing but the layout, to the letter."""

import re


class Parsed:
    """dimension; points; interior (n0, n1, c0, c1), in 3D (n0, n1, n2, c0, c1); zones: list of (name, faces);
    cell_codes; all numbers 1-based."""

    def __init__(self):
        self.dimension = 0
        self.points = []
        self.interior = []
        self.zones = []
        self.cell_codes = []

    @property
    def faces(self):
        return self.interior + [face for _, faces in self.zones for face in faces]


class _Lines:
    def __init__(self, data):
        text = data.decode("ascii")
        if "\r" in text or not text.endswith("\n"):
            raise AssertionError("lines must end in a single line feed, the last one too")
        self.lines = text[:-1].split("\n")
        self.at = 0

    def next(self, pattern):
        if self.at == len(self.lines):
            raise AssertionError(f"the file ends where {pattern!r} should stand")
        line = self.lines[self.at]
        self.at += 1
        match = re.fullmatch(pattern, line)
        if match is None:
            raise AssertionError(f"line {self.at}: {line!r} is not {pattern!r}")
        return match

    def peek(self):
        return self.lines[self.at] if self.at < len(self.lines) else ""


HEX = "([0-9a-f]+)"
DECIMAL = r"(-?\d+(?:\.\d+)?(?:e-?\d+)?)"


def parse(data):
    """Parsed for the bytes of a file; AssertionError names the first line out of place."""
    lines, result = _Lines(data), Parsed()
    lines.next(r'\(0 "[^"()]*"\)')
    lines.next(r'\(0 "Dimension"\)')
    result.dimension = int(lines.next(r"\(2 ([23])\)")[1])
    lines.next(r'\(0 "Node Section"\)')
    count = lines.next(rf"\(10 \(0 1 {HEX} 0 {result.dimension}\)\)")[1]
    lines.next(rf"\(10 \(1 1 {count} 1 {result.dimension}\)")
    lines.next(r"\(")
    point = " ".join([DECIMAL] * result.dimension)
    for _ in range(int(count, 16)):
        result.points.append(tuple(map(float, lines.next(point).groups())))
    lines.next(r"\)\)")
    _parse_cells(lines, result)
    lines.next(r'\(0 "Faces"\)')
    total = int(lines.next(rf"\(13 \(0 1 {HEX} 0\)\)")[1], 16)
    lines.next(r'\(0 "Interior faces"\)')
    result.interior = _parse_faces(lines, result.dimension, 3, 1, 2)
    first, zone = len(result.interior) + 1, 4
    while lines.peek() != '(0 "Zone Sections")':
        name = lines.next(r'\(0 "Faces of zone (\S+)"\)')[1]
        faces = _parse_faces(lines, result.dimension, zone, first, 3)
        result.zones.append((name, faces))
        first, zone = first + len(faces), zone + 1
    if first - 1 != total:
        raise AssertionError(f"{total} faces declared, {first - 1} found")
    lines.next(r'\(0 "Zone Sections"\)')
    lines.next(r"\(45 \(2 fluid FLUID\)\(\)\)")
    lines.next(r"\(45 \(3 interior int_FLUID\)\(\)\)")
    for number, (name, _) in enumerate(result.zones, 4):
        lines.next(rf"\(45 \({number} wall {re.escape(name)}\)\(\)\)")
    if lines.at != len(lines.lines):
        raise AssertionError(f"line {lines.at + 1} is one too many")
    return result


def _parse_cells(lines, result):
    lines.next(r'\(0 "Cells"\)')
    count = lines.next(rf"\(12 \(0 1 {HEX} 0\)\)")[1]
    codes = "[13]" if result.dimension == 2 else "2"
    match = lines.next(rf"\(12 \(2 1 {count} 1 (?:({codes})\)\)|0\)\()")
    if match[1]:
        result.cell_codes = [int(match[1])] * int(count, 16)
        return
    result.cell_codes = [int(lines.next(f"({codes})")[1]) for _ in range(int(count, 16))]
    lines.next(r"\)\)")


def _parse_faces(lines, dimension, zone, first, kind):
    last = int(lines.next(rf"\(13 \({zone:x} {first:x} {HEX} {kind} 2\)\(")[1], 16)
    faces = []
    pattern = " ".join([HEX] * (dimension + 2))
    for _ in range(last - first + 1):
        match = lines.next(pattern)
        faces.append(tuple(int(word, 16) for word in match.groups()))
    lines.next(r"\)")
    lines.next(r"\)")
    return faces


def cell_polygons(parsed):
    """Each cell's points in order, counter-clockwise, put together from its faces alone.

    AssertionError when a cell's faces do not close, or when a cell is not on the left of n0 -> n1 as c0.
    """
    steps = [{} for _ in parsed.cell_codes]
    for n0, n1, c0, c1 in parsed.faces:
        for cell, start, end in ((c0, n0, n1), (c1, n1, n0)):
            if cell:
                if start in steps[cell - 1]:
                    raise AssertionError(f"two faces of cell {cell} start at point {start}")
                steps[cell - 1][start] = end
    polygons = []
    for number, step in enumerate(steps, 1):
        start = next(iter(step))
        polygon, node = [start], step[start]
        while node != start:
            polygon.append(node)
            if node not in step or len(polygon) > len(step):
                raise AssertionError(f"the faces of cell {number} do not close")
            node = step[node]
        if len(polygon) != len(step):
            raise AssertionError(f"the faces of cell {number} make more than one polygon")
        polygons.append(polygon)
    return polygons


def area(parsed, polygon):
    """Signed area, positive counter-clockwise."""
    corners = [parsed.points[node - 1] for node in polygon]
    return 0.5 * sum(p[0] * q[1] - q[0] * p[1] for p, q in zip(corners, corners[1:] + corners[:1]))


def tetrahedra(parsed):
    """Each cell's four faces as triples of points whose normals, by the right-hand rule, point into it.

    AssertionError when a cell has other than four faces and points, when its faces do not close, or when a normal
    of one of them points away from its c0 or into its c1.
    """
    faces_of = [[] for _ in parsed.cell_codes]
    for n0, n1, n2, c0, c1 in parsed.faces:
        faces_of[c0 - 1].append((n0, n1, n2))
        if c1:
            faces_of[c1 - 1].append((n0, n2, n1))
    for number, faces in enumerate(faces_of, 1):
        nodes = {node for face in faces for node in face}
        if len(faces) != 4 or len(nodes) != 4:
            raise AssertionError(f"cell {number} has {len(faces)} faces and {len(nodes)} points")
        edges = {edge for a, b, c in faces for edge in ((a, b), (b, c), (c, a))}
        if len(edges) != 12 or any((b, a) not in edges for a, b in edges):
            raise AssertionError(f"the faces of cell {number} do not close")
        for face in faces:
            (opposite,) = nodes.difference(face)
            if _triple_product(parsed, face, opposite) <= 0.0:
                raise AssertionError(f"face {face} does not point into cell {number}")
    return faces_of


def volume(parsed, faces):
    """Volume of a tetrahedron by the divergence theorem over its faces, as tetrahedra() gives them."""
    origin = faces[0][0]
    return sum(_triple_product(parsed, face, origin) for face in faces) / 6.0


def _triple_product(parsed, face, node):
    """(p1 - p0) x (p2 - p0) . (p - p0): positive where the face's normal points at p."""
    px, py, pz = parsed.points[face[0] - 1]
    (ax, ay, az), (bx, by, bz), (cx, cy, cz) = (
        (x - px, y - py, z - pz) for x, y, z in (parsed.points[n - 1] for n in (face[1], face[2], node))
    )
    return (ay * bz - az * by) * cx + (az * bx - ax * bz) * cy + (ax * by - ay * bx) * cz
