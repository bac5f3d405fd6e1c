"""Face tables of polygonal 2D meshes, the order of cells and points, and the ASCII Fluent layout that this
program and others read, in two and three dimensions."""

INTERIOR_ZONE = 3  # zone 1 holds the points, zone 2 the cells
ELEMENT_CODES = {(2, 3): 1, (2, 4): 3, (3, 4): 2}  # dimension, nodes of a cell -> the layout's code of its shape


class MeshError(ValueError):
    """A mesh that the layout cannot hold; the text says what is wrong with which cell or edge."""


class FluentMesh:
    """A mesh as the file holds it.

    points: (x, y) pairs or (x, y, z) triples; cells: tuples of point numbers; interior: faces (n0, n1, c0, c1)
    or, in 3D, (n0, n1, n2, c0, c1); zones: list of (name, faces), in file order, c1 = -1 in every face. All
    numbers count from 0 here and from 1 in the file. In 2D cells run counter-clockwise and c0 lies to the left
    of n0 -> n1; in 3D cells are tetrahedra and the right-hand rule over a face's points gives a normal into c0.
    """

    def __init__(self, points, cells, interior, zones):
        self.points = points
        self.cells = cells
        self.interior = interior
        self.zones = zones

    @property
    def dimension(self):
        return len(self.points[0])

    @property
    def face_count(self):
        return len(self.interior) + sum(len(faces) for _, faces in self.zones)


def polygon_area(points, cell):
    """Signed area of a cell, positive when its points run counter-clockwise."""
    twice = 0.0
    for a, b in zip(cell, cell[1:] + cell[:1]):
        twice += points[a][0] * points[b][1] - points[b][0] * points[a][1]
    return 0.5 * twice


def build_mesh(points, cells, zone_of, zone_order):
    """Make the face table of a 2D mesh.

    cells: tuples of three or four point numbers, either way round. zone_of(p, q) gets the coordinates of a
    boundary edge's ends and returns its zone's name; zone_order fixes the order of the zones. Raises
    MeshError for flat cells, unused points, edges with more than two cells, and unknown or empty zones.

    c0 of an interior face is the cell with the higher number: the last cell is then some face's c0, so
    readers that derive the number of cells from the faces find it whichever side they look at first.
    """
    cells = [_counter_clockwise(points, number, cell) for number, cell in enumerate(cells)]
    waiting = {}
    interior = []
    for number, cell in enumerate(cells):
        for a, b in zip(cell, cell[1:] + cell[:1]):
            # A neighbour runs along the same edge the other way round.
            other = waiting.pop((b, a), None)
            if other is not None:
                interior.append((a, b, number, other))
            elif (a, b) in waiting:
                raise MeshError(f"edge {a}-{b} belongs to cells that overlap")
            else:
                waiting[(a, b)] = number
    zones = {name: [] for name in zone_order}
    for (a, b), number in waiting.items():
        name = zone_of(points[a], points[b])
        if name not in zones:
            raise MeshError(f"edge {a}-{b} lies in the unknown zone {name!r}")
        zones[name].append((a, b, number, -1))
    for name, faces in zones.items():
        if not faces:
            raise MeshError(f"zone {name!r} has no edges")
    used = {node for cell in cells for node in cell}
    if len(used) != len(points):
        raise MeshError(f"{len(points) - len(used)} points belong to no cell")
    return FluentMesh(points, cells, interior, list(zones.items()))


def _counter_clockwise(points, number, cell):
    if (2, len(cell)) not in ELEMENT_CODES:
        raise MeshError(f"cell {number} has {len(cell)} points")
    area = polygon_area(points, tuple(cell))
    if area == 0.0:
        raise MeshError(f"cell {number} is flat")
    return tuple(cell) if area > 0.0 else tuple(reversed(cell))


def number_points_by_use(points, cells):
    """Drop unused points and number the others in the order in which the cells meet them."""
    new_number = {}
    for cell in cells:
        for node in cell:
            new_number.setdefault(node, len(new_number))
    return [points[node] for node in new_number], [tuple(new_number[n] for n in cell) for cell in cells]


def sort_along_curve(points, cells, bits=16):
    """Sort the cells of a 2D or 3D mesh along a Hilbert curve through their centres: neighbours in space become
    neighbours in memory at every cache size, which free meshers do not care about."""
    axes = range(len(points[0]))
    centres = [tuple(sum(points[n][axis] for n in cell) / len(cell) for axis in axes) for cell in cells]
    low = [min(c[axis] for c in centres) for axis in axes]
    span = max(max(c[axis] for c in centres) - low[axis] for axis in axes) or 1.0
    top = (1 << bits) - 1
    index = _hilbert_index_2d if len(axes) == 2 else _hilbert_index_3d
    keys = [index(*(int((c[axis] - low[axis]) / span * top) for axis in axes), bits) for c in centres]
    return [cells[i] for i in sorted(range(len(cells)), key=lambda i: (keys[i], centres[i]))]


def _hilbert_index_2d(x, y, bits):
    index = 0
    side = 1 << (bits - 1)
    while side:
        right = 1 if x & side else 0
        upper = 1 if y & side else 0
        index += side * side * ((3 * right) ^ upper)
        if not upper:
            if right:
                x, y = ~x, ~y
            x, y = y, x
        side >>= 1
    return index


def _hilbert_index_3d(x, y, z, bits):
    """J. Skilling's transform (AIP Conf. Proc. 707, 381-387, 2004): undo the rotations from the coarsest level
    to the finest, then take the Gray code of the bits in turn."""
    side = 1 << (bits - 1)
    while side > 1:
        below = side - 1
        if x & side:
            x ^= below
        if y & side:
            x ^= below
        else:
            swap = (x ^ y) & below
            x, y = x ^ swap, y ^ swap
        if z & side:
            x ^= below
        else:
            swap = (x ^ z) & below
            x, z = x ^ swap, z ^ swap
        side >>= 1
    y ^= x
    z ^= y
    flip = 0
    for bit in range(1, bits):
        if z >> bit & 1:
            flip ^= (1 << bit) - 1
    x, y, z = x ^ flip, y ^ flip, z ^ flip
    index = 0
    for bit in reversed(range(bits)):
        index = index << 3 | (x >> bit & 1) << 2 | (y >> bit & 1) << 1 | (z >> bit & 1)
    return index


def mesh_lines(mesh, comment):
    """The lines of the file, without their ends.

    Every line has its place: readers of this layout look for the comments and count lines after them, so
    counts are clean lower-case hexadecimal words and nothing may move to a neighbouring line.
    """
    if any(bracket in comment for bracket in '()"'):
        raise MeshError("the comment may hold neither parentheses nor quotes")
    points, cells = len(mesh.points), len(mesh.cells)
    yield f'(0 "{comment}")'
    yield '(0 "Dimension")'
    yield f"(2 {mesh.dimension})"
    yield '(0 "Node Section")'
    yield f"(10 (0 1 {points:x} 0 {mesh.dimension}))"
    yield f"(10 (1 1 {points:x} 1 {mesh.dimension})"
    yield "("
    for point in mesh.points:
        yield " ".join(map(_decimal, point))
    yield "))"
    yield '(0 "Cells")'
    yield f"(12 (0 1 {cells:x} 0))"
    yield from _cell_lines(mesh.dimension, mesh.cells)
    yield '(0 "Faces")'
    yield f"(13 (0 1 {mesh.face_count:x} 0))"
    yield '(0 "Interior faces")'
    yield from _face_lines(INTERIOR_ZONE, 1, mesh.interior, 2)
    first = len(mesh.interior) + 1
    for zone, (name, faces) in enumerate(mesh.zones, INTERIOR_ZONE + 1):
        yield f'(0 "Faces of zone {name}")'
        yield from _face_lines(zone, first, faces, 3)
        first += len(faces)
    yield '(0 "Zone Sections")'
    yield "(45 (2 fluid FLUID)())"
    yield f"(45 ({INTERIOR_ZONE} interior int_FLUID)())"
    for zone, (name, _) in enumerate(mesh.zones, INTERIOR_ZONE + 1):
        yield f"(45 ({zone} wall {name})())"


def _decimal(value):
    """The shortest decimal that reads back as the same number, whole numbers without a point."""
    text = repr(value + 0.0)
    return text[:-2] if text.endswith(".0") else text


def _cell_lines(dimension, cells):
    codes = [ELEMENT_CODES[dimension, len(cell)] for cell in cells]
    if len(set(codes)) == 1:
        yield f"(12 (2 1 {len(cells):x} 1 {codes[0]}))"
        return
    yield f"(12 (2 1 {len(cells):x} 1 0)("
    yield from map(str, codes)
    yield "))"


def _face_lines(zone, first, faces, kind):
    yield f"(13 ({zone:x} {first:x} {first + len(faces) - 1:x} {kind} 2)("
    for face in faces:
        yield " ".join([f"{number + 1:x}" for number in face])
    yield ")"
    yield ")"


def mesh_bytes(mesh, comment):
    """The whole file, line feeds as line ends."""
    return "".join(line + "\n" for line in mesh_lines(mesh, comment)).encode("ascii")
