"""Meshes as numpy arrays: cells from faces and faces from cells, faces turned to their cells, and what is refused."""

from dataclasses import dataclass, field

import numpy as np

from fluent_mesh import MeshError

FLAT = 1e-14  # of the edges' own measure: the rounding of an area or a volume that should be 0
MOST_ZONES = 100  # boundary zones that the program holds
SHAPES = {(2, 3): "triangles", (2, 4): "quadrilaterals", (3, 4): "tetrahedra"}  # dimension, nodes a cell


@dataclass
class CellSource:
    """What a file of cells holds. points: (n, 2 or 3); cells: nodes a cell -> (m, nodes a cell) point numbers
    from 0; groups: list of (name, (k, 2 or 3) point numbers) with the named faces; notes: lines for the user."""

    points: np.ndarray
    cells: dict
    groups: list = field(default_factory=list)
    notes: list = field(default_factory=list)


@dataclass
class FaceSource:
    """What a file of faces holds. nodes: (F, 2 or 3); c0, c1: cell numbers from 0, -1 for none; zone: number of
    the face's zone; zones: list of (name, is a wall). All numbers count from 0."""

    points: np.ndarray
    nodes: np.ndarray
    c0: np.ndarray
    c1: np.ndarray
    zone: np.ndarray
    zones: list
    notes: list = field(default_factory=list)


@dataclass
class MeshTable:
    """A whole mesh. cells: (m, 3 or 4) point numbers, counter-clockwise in 2D, -1 behind the third of a triangle
    among quadrilaterals; nodes, c0, c1: the faces, c0 to the left of n0 -> n1 or where the right-hand rule over
    the nodes points, c1 = -1 on the boundary and below c0 elsewhere; zone: number in zone_names, -1 for none."""

    points: np.ndarray
    cells: np.ndarray
    nodes: np.ndarray
    c0: np.ndarray
    c1: np.ndarray
    zone: np.ndarray
    zone_names: list
    notes: list

    @property
    def dimension(self):
        return self.points.shape[1]

    @property
    def sizes(self):
        """Nodes of each cell."""
        return (self.cells >= 0).sum(axis=1)

    def shape_counts(self):
        counts = np.bincount(self.sizes, minlength=5)
        return [(SHAPES[self.dimension, n], int(counts[n])) for n in (3, 4) if counts[n]]

    def centres(self):
        return cell_centres(self.points, self.cells)


def cell_centres(points, cells):
    """The mean of each cell's nodes."""
    held = cells >= 0
    return (points[cells] * held[:, :, None]).sum(axis=1) / held.sum(axis=1)[:, None]


def place(position):
    return "(" + ", ".join(f"{x:.6g}" for x in position) + ")"


def listed(names):
    """The names in a row, of many the first few."""
    names = list(names)
    return ", ".join(names) if len(names) <= 10 else ", ".join(names[:5]) + f" and {len(names) - 5} more"


def check_numbers(source):
    """Refuses cells and faces with numbers of points that are not there."""
    named = [("a cell", block) for block in source.cells.values()]
    for what, nodes in named + [(f"a face of {name}", faces) for name, faces in source.groups]:
        if np.size(nodes) and (np.min(nodes) < 0 or np.max(nodes) >= len(source.points)):
            raise MeshError(f"{what} names a point that the file does not hold")


def table_from_cells(source, walls=()):
    """The mesh of a file of cells. walls: groups between cells that become walls with two sides."""
    check_numbers(source)
    points = source.points
    dimension = points.shape[1]
    notes = list(source.notes)
    cells = _oriented(points, _padded(source.cells, dimension, notes), notes)
    nodes, owners = _sides(cells, dimension)
    group_of = [np.full(len(faces), k) for k, (_, faces) in enumerate(source.groups)]
    group_nodes = [np.asarray(faces).reshape(-1, dimension) for _, faces in source.groups]
    nodes = np.concatenate([nodes, *group_nodes])
    owners = np.concatenate([owners, np.full(len(nodes) - len(owners), -1)])
    groups = np.concatenate([np.full(int((owners >= 0).sum()), -1), *group_of]).astype(np.int64)
    # Equal faces side by side; the sort is stable, so cells come before groups and groups in their order.
    key = np.sort(nodes, axis=1)
    order = np.lexsort(key.T[::-1])
    new = np.ones(len(order), dtype=bool)
    new[1:] = (key[order[1:]] != key[order[:-1]]).any(axis=1)
    start = np.flatnonzero(new)
    run = np.cumsum(new) - 1
    cell_count = np.bincount(run, weights=owners[order] >= 0, minlength=len(start)).astype(np.int64)
    length = np.diff(np.append(start, len(order)))
    if (cell_count > 2).any():
        at = nodes[order[start[np.argmax(cell_count > 2)]]]
        raise MeshError(f"cells overlap: three or more share the face near {place(points[at].mean(axis=0))}")
    _note_groups(source, groups[order], run, cell_count, length, notes)
    start, cell_count, length = (a[cell_count > 0] for a in (start, cell_count, length))
    first = order[start]
    c1 = np.where(cell_count == 2, owners[order[np.minimum(start + 1, len(order) - 1)]], -1)
    behind = np.minimum(start + cell_count, len(order) - 1)
    zone = np.where(length > cell_count, groups[order[behind]], -1)
    table = MeshTable(
        points, cells, nodes[first], owners[first], c1, zone, [name for name, _ in source.groups], notes
    )
    table = _finished(table, [name in walls for name in table.zone_names])
    sort_faces(table)
    return table


def sort_faces(table):
    """Faces in the order of their cells."""
    order = np.lexsort((table.c1, table.c0))
    table.nodes, table.c0, table.c1, table.zone = (a[order] for a in (table.nodes, table.c0, table.c1, table.zone))


def table_from_faces(source, walls=()):
    """The mesh of a file of faces. walls: zones between cells that become walls with two sides."""
    c0, c1 = np.where(source.c0 < 0, source.c1, source.c0), np.where(source.c0 < 0, -1, source.c1)
    if (c0 < 0).any():
        raise MeshError(f"{int((c0 < 0).sum())} faces belong to no cell")
    if (c0 == c1).any():
        raise MeshError(f"{int((c0 == c1).sum())} faces have the same cell on both sides")
    highest = int(max(c0.max(), c1.max()))
    # Every cell has a face, and a face has two cells.
    if highest >= 2 * len(c0):
        raise MeshError(f"names cell {highest + 1}, and its {len(c0)} faces cannot have so many")
    notes = list(source.notes)
    # Numbers that no face has would be cells without faces.
    used = np.zeros(highest + 1, dtype=bool)
    used[c0] = used[c1[c1 >= 0]] = True
    number = np.append(np.cumsum(used) - 1, -1)
    c0, c1 = number[c0], number[c1]
    cells = _oriented(source.points, _cells_of_faces(source, c0, c1), [])
    table = MeshTable(
        source.points, cells, source.nodes, c0, c1, source.zone, [name for name, _ in source.zones], notes
    )
    return _finished(table, [wall or name in walls for name, wall in source.zones])


def _padded(cells, dimension, notes):
    """All cells in one array; quadrilaterals with two nodes in one become triangles."""
    blocks = {n: np.asarray(block, dtype=np.int64) for n, block in cells.items() if len(block)}
    if not blocks:
        raise MeshError("holds no " + ("triangles or quadrilaterals" if dimension == 2 else "tetrahedra"))
    width = max(blocks)
    rows = []
    for n, block in blocks.items():
        if dimension == 2 and n == 4:
            block = _collapsed(block, notes)
        rows.append(np.pad(block, ((0, 0), (0, width - n)), constant_values=-1))
    return np.concatenate(rows)


def _collapsed(quads, notes):
    twin = quads == np.roll(quads, -1, axis=1)
    at = np.flatnonzero(twin.sum(axis=1) == 1)
    if len(at):
        notes.append(f"{len(at)} quadrilaterals with two corners in one point became triangles")
        quads = quads.copy()
        column = twin[at].argmax(axis=1)
        kept = (column[:, None] + np.arange(1, 4)) % 4
        quads[at, :3] = np.take_along_axis(quads[at], kept, axis=1)
        quads[at, 3] = -1
    return quads


def measures(points, cells):
    """Signed areas or volumes, and the measure that the rounding is relative to."""
    if points.shape[1] == 2:
        corner = points[np.where(cells < 0, cells[:, :1], cells)]
        edge = np.roll(corner, -1, axis=1) - corner
        from_first = corner - corner[:, :1]
        twice = from_first[:, :, 0] * edge[:, :, 1] - from_first[:, :, 1] * edge[:, :, 0]
        return 0.5 * twice.sum(axis=1), (edge**2).sum(axis=2).max(axis=1)
    a, b, c = (points[cells[:, k]] - points[cells[:, 0]] for k in (1, 2, 3))
    lengths = [np.linalg.norm(v, axis=1) for v in (a, b, c)]
    return np.einsum("ij,ij->i", np.cross(a, b), c) / 6.0, lengths[0] * lengths[1] * lengths[2]


def _oriented(points, cells, notes):
    """Cells counter-clockwise, tetrahedra of positive volume; refuses flat cells and points without numbers."""
    used = np.unique(cells[cells >= 0])
    if not np.isfinite(points[used]).all():
        raise MeshError("a cell names a point that the file does not hold")
    measure, scale = measures(points, cells)
    word = "area" if points.shape[1] == 2 else "volume"
    flat = np.abs(measure) <= FLAT * scale
    if flat.any():
        at = int(flat.argmax())
        centre = place(cell_centres(points, cells[at : at + 1])[0])
        raise MeshError(f"{_cells(flat.sum())} no {word}, the first is cell {at + 1} near {centre}")
    turned = np.flatnonzero(measure < 0.0)
    if len(turned):
        # The order of a tetrahedron's points means nothing in most formats.
        if points.shape[1] == 2 and len(turned) < len(cells):
            notes.append(f"{len(turned)} of {len(cells)} cells ran the other way round and were turned")
        cells = cells.copy()
        # The second and the last node change places.
        last = (cells[turned] >= 0).sum(axis=1) - 1
        cells[turned, 1], cells[turned, last] = cells[turned, last], cells[turned, 1]
    return cells


def _cells(count):
    return "1 cell has" if count == 1 else f"{int(count)} cells have"


def _sides(cells, dimension):
    """All faces of all cells, and the cells that they belong to."""
    number = np.arange(len(cells))
    if dimension == 3:
        corners = ((0, 1, 2), (0, 3, 1), (0, 2, 3), (1, 3, 2))
        return np.concatenate([cells[:, c] for c in corners]), np.tile(number, 4)
    following = np.roll(cells, -1, axis=1)
    following = np.where(following < 0, cells[:, :1], following)
    nodes = np.stack([cells, following], axis=2).reshape(-1, 2)
    held = nodes[:, 0] >= 0
    return nodes[held], np.repeat(number, cells.shape[1])[held]


def _cells_of_faces(source, c0, c1):
    """Each cell's nodes, put together from its faces."""
    dimension = source.points.shape[1]
    inner = np.flatnonzero(c1 >= 0)
    owner = np.concatenate([c0, c1[inner]])
    face = np.concatenate([np.arange(len(c0)), inner])[np.argsort(owner, kind="stable")]
    count = np.bincount(owner)
    start = np.cumsum(count) - count
    sizes = (3, 4) if dimension == 2 else (4,)
    odd = ~np.isin(count, sizes)
    if odd.any():
        at = int(odd.argmax())
        what = "triangles and quadrilaterals" if dimension == 2 else "tetrahedra"
        raise MeshError(f"{_cells(odd.sum())} other shapes than {what}, the first has {count[at]} faces")
    cells = np.full((len(count), count.max()), -1)
    for size in sizes:
        rows = np.flatnonzero(count == size)
        own = source.nodes[face[start[rows][:, None] + np.arange(size)]]
        cells[rows[:, None], np.arange(size)] = _ring(own) if dimension == 2 else _corners(own)
    return cells


def _ring(faces):
    """The nodes of polygons in turn, from their sides (m, k, 2)."""
    rows = np.arange(len(faces))
    unused = np.ones(faces.shape[:2], dtype=bool)
    unused[:, 0] = False
    ring = [faces[:, 0, 0], faces[:, 0, 1]]
    closed = np.ones(len(faces), dtype=bool)
    for _ in range(1, faces.shape[1]):
        at = (faces == ring[-1][:, None, None]).any(axis=2) & unused
        closed &= at.any(axis=1)
        side = at.argmax(axis=1)
        unused[rows, side] = False
        pair = faces[rows, side]
        ring.append(np.where(pair[:, 0] == ring[-1], pair[:, 1], pair[:, 0]))
    closed &= ring.pop() == ring[0]
    if not closed.all():
        raise MeshError(f"{_cells((~closed).sum())} faces that do not close")
    return np.stack(ring, axis=1)


def _corners(faces):
    """The nodes of tetrahedra, from their sides (m, 4, 3): each node lies on three."""
    held = np.sort(faces.reshape(len(faces), 12), axis=1)
    corners = held[:, ::3]
    closed = (held.reshape(-1, 4, 3) == corners[:, :, None]).all(axis=(1, 2)) & (np.diff(corners) > 0).all(axis=1)
    if not closed.all():
        raise MeshError(f"{_cells((~closed).sum())} faces that do not close")
    return corners


def _note_groups(source, groups, run, cell_count, length, notes):
    """Says which named faces are no use as a boundary."""
    lone = np.bincount(groups[(groups >= 0) & (cell_count[run] == 0)], minlength=len(source.groups))
    for k in np.flatnonzero(lone):
        notes.append(f"{source.groups[k][0]}: {_faces(lone[k])} of no cell, left out")
    doubly = int(((cell_count == 1) & (length > 2)).sum())
    if doubly:
        notes.append(f"{_faces(doubly)} in several groups, given to the first")


def _faces(count):
    return "1 face" if count == 1 else f"{count} faces"


def _finished(table, is_wall):
    """Walls between cells get two sides, other inner zones go; faces turn to the cell with the higher number."""
    if len(table.cells) < 2:
        raise MeshError("holds a single cell")
    inner = (table.c1 >= 0) & (table.zone >= 0)
    two_sided = inner & np.append(is_wall, False)[table.zone].astype(bool)
    counts = np.bincount(table.zone[inner], minlength=len(table.zone_names))
    for k in np.flatnonzero(counts):
        name, faces = table.zone_names[k], _faces(counts[k])
        if is_wall[k]:
            sides = f"{name} and {name}-shadow"
            table.notes.append(f"{name}: {faces} between cells, now a wall of two sides, {sides}")
        else:
            table.notes.append(f"{name}: {faces} between cells, now interior faces")
    table.zone[inner & ~two_sided] = -1
    _split(table, np.flatnonzero(two_sided))
    swap = table.c1 > table.c0
    table.c0, table.c1 = np.where(swap, table.c1, table.c0), np.where(swap, table.c0, table.c1)
    _turn_faces(table)
    _check_neighbours(table)
    _check_centres(table)
    return table


def _split(table, faces):
    """Each face becomes a boundary face of its first cell, and another of its second in a zone of its own."""
    zones, shadow = np.unique(table.zone[faces], return_inverse=True)
    first = len(table.zone_names)
    table.zone_names = table.zone_names + [table.zone_names[k] + "-shadow" for k in zones]
    table.nodes = np.concatenate([table.nodes, table.nodes[faces]])
    table.c0 = np.concatenate([table.c0, table.c1[faces]])
    table.zone = np.concatenate([table.zone, first + shadow])
    table.c1 = np.concatenate([table.c1, np.full(len(faces), -1)])
    table.c1[faces] = -1


def _turn_faces(table):
    """Turns every face to its c0; a c1 that lies on the same side overlaps with it."""
    wrong = ~_faces_cell(table, table.c0, table.nodes)
    table.nodes = table.nodes.copy()
    table.nodes[wrong, -2], table.nodes[wrong, -1] = table.nodes[wrong, -1], table.nodes[wrong, -2]
    inner = np.flatnonzero(table.c1 >= 0)
    folded = inner[_faces_cell(table, table.c1[inner], table.nodes[inner])]
    if len(folded):
        at = table.nodes[folded[0]]
        raise MeshError(f"{len(folded)} pairs of cells overlap, the first near {place(table.points[at].mean(axis=0))}")


def _faces_cell(table, cell, nodes):
    """Whether each cell lies to the left of its face, or where its right-hand rule points."""
    own = table.cells[cell]
    if table.dimension == 2:
        at = (own == nodes[:, :1]).argmax(axis=1)
        following = (at + 1) % (own >= 0).sum(axis=1)
        return own[np.arange(len(own)), following] == nodes[:, 1]
    fourth = own.sum(axis=1) - nodes.sum(axis=1)
    a, b, c = (table.points[n] - table.points[nodes[:, 0]] for n in (nodes[:, 1], nodes[:, 2], fourth))
    return np.einsum("ij,ij->i", np.cross(a, b), c) > 0.0


def _check_neighbours(table):
    """The program counts the cells by their interior faces."""
    inner = table.c1 >= 0
    met = np.zeros(len(table.cells), dtype=bool)
    met[table.c0[inner]] = met[table.c1[inner]] = True
    if not met.all():
        at = int((~met).argmax())
        raise MeshError(f"{_cells((~met).sum())} no neighbour, the first near {place(table.centres()[at])}; are points "
                        "doubled that should be one?")


def _check_centres(table):
    """The program tells outside from inside by the mean of a cell's nodes, which must see all of its sides."""
    if table.dimension == 3 or table.cells.shape[1] == 3:
        return
    cells, sizes = table.cells, table.sizes
    centre = table.centres()
    bad = np.zeros(len(cells), dtype=bool)
    for k in range(4):
        rows = np.flatnonzero(sizes > k)
        p = table.points[cells[rows, k]]
        q = table.points[cells[rows, (k + 1) % sizes[rows]]]
        to_centre, side = centre[rows] - p, q - p
        bad[rows] |= side[:, 0] * to_centre[:, 1] - side[:, 1] * to_centre[:, 0] <= 0.0
    if bad.any():
        at = int(bad.argmax())
        raise MeshError(f"{_cells(bad.sum())} sides that cross or bend in past the centre, the first is cell {at + 1} "
                        f"near {place(centre[at])}")
